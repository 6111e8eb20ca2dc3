// Sample layouts and reading the fields of one sample: narrow timestamps, size
// fields, fixed and variable strides, open-ended walks.
#include <daq/async_sample_stream.h>
#include <daq_data_block/data_block_pool.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::SampleDataBlock;
using daq::SampleDataBlockPtr;

// Writes little-endian fields into a byte buffer by hand, as an outside writer would.
void put(std::uint8_t* at, std::uint64_t value, std::uint32_t size)
{
    std::memcpy(at, &value, size);
}

TEST(AsyncSampleLayout, FixedSizeLayoutStridesOverTimestampAndValue)
{
    const AsyncSampleLayout layout = AsyncSampleLayout::fixedSize(8, sizeof(double));
    EXPECT_TRUE(layout.isValid());
    EXPECT_TRUE(layout.hasFixedSize());
    EXPECT_EQ(layout.m_sample_header_size, 16u);
    EXPECT_EQ(layout.m_value_offset, 8u);
    EXPECT_EQ(layout.m_fixed_sample_size, 8u);
    EXPECT_EQ(layout.timestampMask(), ~std::uint64_t{0});
}

TEST(AsyncSampleLayout, MaskCoversTheTimestampField)
{
    EXPECT_EQ(AsyncSampleLayout::fixedSize(1, 4).timestampMask(), 0xFFu);
    EXPECT_EQ(AsyncSampleLayout::fixedSize(3, 4).timestampMask(), 0xFFFFFFu);
    EXPECT_EQ(AsyncSampleLayout::fixedSize(4, 4).timestampMask(), 0xFFFFFFFFu);
    EXPECT_EQ(AsyncSampleLayout::fixedSize(7, 4).timestampMask(), 0xFFFFFFFFFFFFFFull);
}

TEST(AsyncSampleLayout, InvalidLayoutsAreRejected)
{
    EXPECT_FALSE(AsyncSampleLayout::fixedSize(0, 4).isValid()) << "no timestamp";
    EXPECT_FALSE(AsyncSampleLayout::fixedSize(9, 4).isValid()) << "timestamp wider than 64 bits";
    AsyncSampleLayout value_outside = AsyncSampleLayout::fixedSize(8, 8);
    value_outside.m_value_offset = 12;
    EXPECT_FALSE(value_outside.isValid());
    AsyncSampleLayout timestamp_outside = AsyncSampleLayout::variableSize(4, 2);
    timestamp_outside.m_timestamp_field.m_offset = 4;
    EXPECT_FALSE(timestamp_outside.isValid());
    EXPECT_TRUE(AsyncSampleLayout::variableSize(4, 2).isValid());
    EXPECT_TRUE(AsyncSampleLayout::variableSize(2, 0).hasFixedSize()) << "size field 0 means fixed size";
}

TEST(AsyncSampleLayout, StreamOverInvalidLayoutIsReportedAndFindsNothing)
{
    uni_testing::AssertCapture capture;
    AsyncSampleStream stream(AsyncSampleLayout::fixedSize(0, 4));
    EXPECT_TRUE(capture.fired("layout.isValid()"));
    EXPECT_FALSE(stream.isUsable());
    std::uint32_t count = 0;
    EXPECT_FALSE(stream.findBlockBefore(~0ull, count));
    EXPECT_FALSE(stream.findNextBlock(0, count));
}

TEST(AsyncSampleFields, NarrowTimestampsAreReadIntoZeroedValues)
{
    // Bytes after the field are set, so reading too wide would show.
    std::vector<std::uint8_t> sample(16, 0xEE);
    put(sample.data(), 0x123456, 3);
    AsyncSampleStream three(AsyncSampleLayout::fixedSize(3, 8));
    EXPECT_EQ(three.getTimestamp(sample.data()), 0x123456u);

    put(sample.data(), 0x0102030405060708ull, 8);
    AsyncSampleStream eight(AsyncSampleLayout::fixedSize(8, 8));
    EXPECT_EQ(eight.getTimestamp(sample.data()), 0x0102030405060708ull);

    AsyncSampleLayout offset_layout = AsyncSampleLayout::fixedSize(2, 8);
    offset_layout.m_timestamp_field.m_offset = 8;
    offset_layout.m_value_offset = 0;
    AsyncSampleStream offset(offset_layout);
    put(sample.data() + 8, 0xBEEF, 2);
    EXPECT_EQ(offset.getTimestamp(sample.data()), 0xBEEFu);
}

TEST(AsyncSampleFields, SampleSizeComesFromFieldOrFixedSize)
{
    std::vector<std::uint8_t> sample(16, 0xEE);
    AsyncSampleStream fixed(AsyncSampleLayout::fixedSize(8, 6));
    EXPECT_EQ(fixed.getSampleSize(sample.data()), 6u);

    put(sample.data() + 8, 0x0203, 2);
    AsyncSampleStream two(AsyncSampleLayout::variableSize(8, 2));
    EXPECT_EQ(two.getSampleSize(sample.data()), 0x0203u);

    put(sample.data() + 8, 0x01020304, 4);
    AsyncSampleStream four(AsyncSampleLayout::variableSize(8, 4));
    EXPECT_EQ(four.getSampleSize(sample.data()), 0x01020304u);
}

TEST(AsyncSampleFields, SizeFieldWiderThanFourBytesIsReported)
{
    std::vector<std::uint8_t> sample(32, 0);
    put(sample.data() + 8, 0x11, 8);
    AsyncSampleStream stream(AsyncSampleLayout::variableSize(8, 8));
    uni_testing::AssertCapture capture;
    EXPECT_EQ(stream.getSampleSize(sample.data()), 0x11u) << "goes on with the low four bytes";
    EXPECT_TRUE(capture.fired("m_sample_size_field.m_size < sizeof(std::uint32_t)"));
}

class NextSampleTest : public ::testing::Test
{
protected:
    void SetUp() override { m_block = daq::DataBlockPool::instance()->acquire(256); }
    SampleDataBlockPtr m_block;
};

TEST_F(NextSampleTest, FixedSizeStridesByHeaderSize)
{
    AsyncSampleLayout layout = AsyncSampleLayout::fixedSize(4, 2);
    layout.m_sample_header_size = 10; // padding behind the value
    AsyncSampleStream stream(layout);
    const std::uint8_t* value = nullptr;
    const std::uint8_t* first = stream.nextSample(*m_block, nullptr, &value, false);
    EXPECT_EQ(first, m_block->m_data);
    EXPECT_EQ(value, m_block->m_data + 4);
    const std::uint8_t* second = stream.nextSample(*m_block, first, &value, false);
    EXPECT_EQ(second, m_block->m_data + 10);
    EXPECT_EQ(value, m_block->m_data + 14);
}

TEST_F(NextSampleTest, VariableSizeStridesByHeaderAndValue)
{
    AsyncSampleStream stream(AsyncSampleLayout::variableSize(8, 2));
    std::uint8_t* data = m_block->m_data;
    put(data, 5, 8);
    put(data + 8, 3, 2); // three value bytes
    const std::uint8_t* second = stream.nextSample(*m_block, data, nullptr, false);
    EXPECT_EQ(second, data + 10 + 3);
}

TEST_F(NextSampleTest, OpenEndedWalkStopsAtLastTimestampOrDataLength)
{
    AsyncSampleStream stream(AsyncSampleLayout::fixedSize(8, 8));
    std::uint8_t* data = m_block->m_data;
    for (int i = 0; i < 4; ++i)
        put(data + 16 * i, 100 + i, 8);
    m_block->m_sample_count = SampleDataBlock::OPEN_COUNT;
    m_block->m_first_timestamp = 100;

    // The span ends at 102: the sample at 102 is the last one walked.
    m_block->m_time_span = 3;
    m_block->m_data_length = 64;
    const std::uint8_t* s = stream.nextSample(*m_block, data + 16, nullptr, true);
    EXPECT_EQ(s, data + 32);
    EXPECT_EQ(stream.nextSample(*m_block, s, nullptr, true), nullptr);

    // The data ends after two samples, whatever the span says.
    m_block->m_time_span = 100;
    m_block->m_data_length = 32;
    EXPECT_EQ(stream.nextSample(*m_block, data + 16, nullptr, true), nullptr);
    // Outside open-ended mode the caller's count decides.
    EXPECT_EQ(stream.nextSample(*m_block, data + 16, nullptr, false), data + 32);
    // An open block without data has no first sample.
    m_block->m_data_length = 0;
    EXPECT_EQ(stream.nextSample(*m_block, nullptr, nullptr, true), nullptr);
}

TEST_F(NextSampleTest, OpenEndedMaskComparesTruncatedTimestamps)
{
    // Two-byte timestamps: the block's last tick 0x1_0005 is stored as 0x0005.
    AsyncSampleStream stream(AsyncSampleLayout::fixedSize(2, 2));
    std::uint8_t* data = m_block->m_data;
    put(data, 0x0004, 2);
    put(data + 4, 0x0005, 2);
    put(data + 8, 0x0006, 2);
    m_block->m_sample_count = SampleDataBlock::OPEN_COUNT;
    m_block->m_first_timestamp = 0x10004;
    m_block->m_time_span = 2;
    m_block->m_data_length = 12;
    std::vector<const std::uint8_t*> index;
    EXPECT_EQ(stream.extendIndex(*m_block, index, 0), 2u);
}

TEST_F(NextSampleTest, ExtendIndexGoesOnFromTheLastEntry)
{
    AsyncSampleStream stream(AsyncSampleLayout::variableSize(4, 1));
    std::uint8_t* data = m_block->m_data;
    std::uint32_t offset = 0;
    for (std::uint32_t i = 0; i < 5; ++i) {
        put(data + offset, 10 + i, 4);
        put(data + offset + 4, i, 1);
        offset += 5 + i;
    }
    m_block->m_sample_count = 5;
    std::vector<const std::uint8_t*> index;
    EXPECT_EQ(stream.extendIndex(*m_block, index, 2), 2u);
    EXPECT_EQ(stream.extendIndex(*m_block, index, 0), 3u);
    ASSERT_EQ(index.size(), 5u);
    for (std::uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(stream.getTimestamp(index[i]), 10 + i);
    EXPECT_EQ(stream.extendIndex(*m_block, index, 0), 0u);

    uni_testing::AssertCapture capture;
    EXPECT_EQ(stream.extendIndex(*m_block, index, 3), 0u);
    EXPECT_TRUE(capture.fired("nr_entries_before<=max_samples"));
}

} // namespace
