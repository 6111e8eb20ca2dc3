#include <uni_base/countable.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace lum::qchannel {
class QChannel : public uni::Countable<QChannel>
{};
} // namespace lum::qchannel

namespace {

class Item : public uni::Countable<Item>
{
public:
    int value = 0;
};

class Other : public uni::Countable<Other>
{};

TEST(Countable, CountsConstructionCopiesMovesAndDestruction)
{
    EXPECT_EQ(Item::count(), 0);
    {
        Item a;
        EXPECT_EQ(Item::count(), 1);
        Item b(a);
        Item c(std::move(a));
        EXPECT_EQ(Item::count(), 3);
        b = c; // assignment makes no new instance
        EXPECT_EQ(Item::count(), 3);
        std::vector<Item> many(10);
        EXPECT_EQ(Item::count(), 13);
    }
    EXPECT_EQ(Item::count(), 0);
    EXPECT_EQ(Other::count(), 0) << "each class has its own counter";
}

TEST(Countable, DisplayNameUsesTheShortClassName)
{
    EXPECT_EQ(lum::qchannel::QChannel::countableName(), "::uni::Countable<QChannel>");
    lum::qchannel::QChannel leaked;
    const auto counts = uni::countableCounts();
    const auto it = std::find_if(counts.begin(), counts.end(),
                                 [](const auto& e) { return e.first == "::uni::Countable<QChannel>"; });
    ASSERT_NE(it, counts.end());
    EXPECT_EQ(it->second, 1);
}

} // namespace
