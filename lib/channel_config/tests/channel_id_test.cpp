#include <channel_config/channel_id.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <sstream>

namespace {

using channel_config::ChannelID;

TEST(ChannelIdNumber, NodeIsTheHighHalfAndLocalTheLowHalf)
{
    const ChannelID id(0x12345678u, 0x9abcdef0u);
    EXPECT_EQ(id.toUInt64(), 0x123456789abcdef0ull);
    const ChannelID back(0x123456789abcdef0ull);
    EXPECT_EQ(back.getNodeId(), 0x12345678u);
    EXPECT_EQ(back.getLocalId(), 0x9abcdef0u);
    EXPECT_EQ(back, id);
}

TEST(ChannelIdNumber, EqualOnlyWhenBothHalvesAre)
{
    EXPECT_EQ(ChannelID(1, 2), ChannelID(1, 2));
    EXPECT_NE(ChannelID(1, 2), ChannelID(2, 1));
    EXPECT_NE(ChannelID(1, 2), ChannelID(1, 3));
    EXPECT_LT(ChannelID(0, 0xffffffffu), ChannelID(1, 0)) << "ordered by the combined number";
}

TEST(ChannelIdText, IsTheCombinedNumberInDecimal)
{
    EXPECT_EQ(ChannelID(1, 0).toString(), "4294967296");
    EXPECT_EQ(ChannelID(0, 42).toString(), "42");
    EXPECT_EQ(ChannelID(std::numeric_limits<std::uint64_t>::max()).toString(), "18446744073709551615");
    EXPECT_EQ(ChannelID().toString(), "0");
}

TEST(ChannelIdText, StreamIgnoresAHexBaseAndKeepsIt)
{
    std::ostringstream out;
    out << std::hex << ChannelID(0, 255) << ' ' << 255;
    EXPECT_EQ(out.str(), "255 ff");
}

TEST(ChannelIdText, ParsesWhatItPrints)
{
    for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{4294967296},
                                      std::numeric_limits<std::uint64_t>::max()}) {
        const ChannelID id(value);
        const auto parsed = ChannelID::fromString(id.toString());
        ASSERT_TRUE(parsed.has_value()) << value;
        EXPECT_EQ(*parsed, id);
    }
}

TEST(ChannelIdText, SignsAreTakenOffAndMinusNegates)
{
    EXPECT_EQ(ChannelID::fromString("+17"), ChannelID(17));
    EXPECT_EQ(ChannelID::fromString("-1"), ChannelID(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(ChannelID::fromString("-0"), ChannelID(0));
}

TEST(ChannelIdText, RejectsAnythingButDigits)
{
    for (const char* text : {"", "+", "-", "--1", "+-1", " 1", "1 ", "0x10", "12a", "1.0", "1e3"})
        EXPECT_FALSE(ChannelID::fromString(text).has_value()) << '"' << text << '"';
}

TEST(ChannelIdText, RejectsNumbersBeyondSixtyFourBits)
{
    EXPECT_FALSE(ChannelID::fromString("18446744073709551616").has_value());
    EXPECT_FALSE(ChannelID::fromString("-18446744073709551616").has_value());
}

TEST(ChannelIdKeys, WorkInOrderedAndHashedContainers)
{
    std::map<ChannelID, int> ordered{{ChannelID(2, 0), 2}, {ChannelID(1, 5), 1}};
    EXPECT_EQ(ordered.begin()->second, 1);
    EXPECT_NE(std::hash<ChannelID>()(ChannelID(1, 0)), std::hash<ChannelID>()(ChannelID(0, 1)));
}

} // namespace
