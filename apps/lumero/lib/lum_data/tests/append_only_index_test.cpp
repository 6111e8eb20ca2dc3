#include <lum_data/append_only_index.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

struct Case
{
    const char* name;
    std::size_t count;
};

class AppendOnlyIndexFill : public testing::TestWithParam<Case>
{};

// Every entry reads back where it went in, on both sides of each chunk's edge.
TEST_P(AppendOnlyIndexFill, KeepsEveryEntryInPlace)
{
    lum::data::AppendOnlyIndex<std::size_t> index;
    EXPECT_TRUE(index.empty());
    for (std::size_t i = 0; i < GetParam().count; ++i) {
        index.push_back(i * 7 + 3);
        ASSERT_EQ(index.back(), i * 7 + 3);
    }
    ASSERT_EQ(index.size(), GetParam().count);
    for (std::size_t i = 0; i < GetParam().count; ++i)
        ASSERT_EQ(index[i], i * 7 + 3) << "entry " << i;
}

INSTANTIATE_TEST_SUITE_P(Sizes, AppendOnlyIndexFill,
                         testing::Values(Case{"one", 1}, Case{"first_chunk_full", 64},
                                         Case{"second_chunk_begun", 65}, Case{"second_chunk_full", 192},
                                         Case{"third_chunk_begun", 193}, Case{"several_chunks", 5000}),
                         [](const testing::TestParamInfo<Case>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
