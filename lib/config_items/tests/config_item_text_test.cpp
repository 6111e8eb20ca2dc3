#include "item_printing.h"

#include <config_items/config_item_variant.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

namespace {

using namespace config_items;
using channel_config::ChannelID;
using channel_config::DAQChannelType;
using channel_config::DAQSampleResolution;
using channel_config::PhysicalQuantity;
using channel_config::SampleOccurrenceType;
using channel_config::UserScalingMode;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();

TEST(DoubleText, SeventeenDigitsSoThatTheValueReadsBack)
{
    EXPECT_EQ(doubleToString(0.1), "0.10000000000000001");
    EXPECT_EQ(doubleToString(1.0), "1");
    EXPECT_EQ(doubleToString(-2.5), "-2.5");
    EXPECT_EQ(doubleToString(1e20), "1e+20");
    EXPECT_EQ(doubleToString(1e-5), "1.0000000000000001e-05");
    EXPECT_EQ(doubleToString(0.0), "0");
    EXPECT_EQ(doubleToString(-0.0), "-0");
}

TEST(DoubleText, NonFiniteValuesAreWordsWithTheirSign)
{
    EXPECT_EQ(doubleToString(NaN), "nan");
    EXPECT_EQ(doubleToString(-NaN), "-nan");
    EXPECT_EQ(doubleToString(INF), "inf");
    EXPECT_EQ(doubleToString(-INF), "-inf");
}

TEST(DoubleText, MatchesPrintfPercentG17OnRandomValues)
{
    ASSERT_NE(std::setlocale(LC_NUMERIC, "C"), nullptr);
    std::mt19937_64 random(7);
    std::uniform_int_distribution<std::uint64_t> bits;
    for (int i = 0; i < 20000; ++i) {
        double value;
        const std::uint64_t pattern = bits(random);
        std::memcpy(&value, &pattern, sizeof value);
        if (!std::isfinite(value))
            continue;
        char expected[64];
        std::snprintf(expected, sizeof expected, "%.*g", 17, value);
        ASSERT_EQ(doubleToString(value), expected);
    }
}

TEST(ItemText, SingleValues)
{
    EXPECT_EQ(SingleValueConfigItem<double>(0.1).toString(), "0.10000000000000001");
    EXPECT_EQ(SingleValueConfigItem<int>(-42).toString(), "-42");
    EXPECT_EQ(SingleValueConfigItem<int>(std::numeric_limits<int>::min()).toString(), "-2147483648");
    EXPECT_EQ(SingleValueConfigItem<unsigned int>(4294967295u).toString(), "4294967295");
    EXPECT_EQ(SingleValueConfigItem<bool>(true).toString(), "true");
    EXPECT_EQ(SingleValueConfigItem<bool>(false).toString(), "false");
    EXPECT_EQ(SingleValueConfigItem<ChannelID>(ChannelID(1, 2)).toString(), "4294967298");
}

TEST(ItemText, StringIsTheValueItself)
{
    EXPECT_EQ(StringConfigItem("a \"b\" c", 40).toString(), "a \"b\" c");
    EXPECT_EQ(StringConfigItem().toString(), "");
}

TEST(ItemText, ScalarPutsABlankBeforeAUnitOnly)
{
    EXPECT_EQ(ScalarConfigItem(1.5, "mV").toString(), "1.5 mV");
    EXPECT_EQ(ScalarConfigItem(0.1, "").toString(), "0.10000000000000001");
    EXPECT_EQ(ScalarConfigItem(-INF, "V").toString(), "-inf V");
}

TEST(ItemText, RangeUsesSixSignificantDigits)
{
    EXPECT_EQ(RangeConfigItem<double>(-5, 5, "V", "V").toString(), "-5 V .. 5 V");
    EXPECT_EQ(RangeConfigItem<double>(0.1, 1.23456789, "", "mV").toString(), "0.1 .. 1.23457 mV");
    EXPECT_EQ(RangeConfigItem<double>(1e-7, 2e9).toString(), "1e-07 .. 2e+09");
}

TEST(ItemText, StringListQuotesAndEscapes)
{
    EXPECT_EQ(ValueListConfigItem<std::string>().toString(), "");
    EXPECT_EQ(ValueListConfigItem<std::string>({"plain"}).toString(), "\"plain\"");
    EXPECT_EQ(ValueListConfigItem<std::string>({"say \"hi\"", "it's", "a\\b", ""}).toString(),
              R"("say \"hi\"", "it\'s", "a\\b", "")");
}

TEST(ItemText, PointListPrintsFullPrecisionPairs)
{
    using Point = TupleValue<double, double>;
    EXPECT_EQ(ValueListConfigItem<Point>().toString(), "");
    EXPECT_EQ(ValueListConfigItem<Point>({{1, 2}, {0.1, -INF}}).toString(),
              "(1,2), (0.10000000000000001,-inf)");
}

TEST(ItemText, DecoratedNumberGluesItsParts)
{
    EXPECT_EQ(DecoratedNumberConfigItem(12, "#", "rpm").toString(), "#12rpm");
    EXPECT_EQ(DecoratedNumberConfigItem(0.5, "", "").toString(), "0.5");
}

TEST(ItemText, EnumerationsPrintTheirTextOrInvalid)
{
    EXPECT_EQ(SingleValueConfigItem<UserScalingMode>(UserScalingMode::TWO_POINT).toString(), "TwoPoint");
    EXPECT_EQ(SingleValueConfigItem<DAQChannelType>(DAQChannelType::OVERMAP_CHANNEL).toString(),
              "OVERMAP/Channel");
    EXPECT_EQ(SingleValueConfigItem<SampleOccurrenceType>(SampleOccurrenceType::SINGLE_VALUE).toString(),
              "SINGLE_VALUE");
    EXPECT_EQ(SingleValueConfigItem<DAQSampleResolution>(DAQSampleResolution::UTF8STR).toString(), "utf8str");
    EXPECT_EQ(SingleValueConfigItem<PhysicalQuantity>(PhysicalQuantity::NONE).toString(), "None");
    EXPECT_EQ(SingleValueConfigItem<DAQChannelType>(static_cast<DAQChannelType>(59)).toString(), "INVALID");
    EXPECT_EQ(SingleValueConfigItem<PhysicalQuantity>(static_cast<PhysicalQuantity>(-1)).toString(),
              "INVALID");
}

TEST(ItemText, GenericEnumShowsItsTypeWhenItHasOne)
{
    EXPECT_EQ(GenericEnumConfigItem("ChannelStored", "Auto").toString(), "ChannelStored:Auto");
    EXPECT_EQ(GenericEnumConfigItem("", "Auto").toString(), "Auto");
}

TEST(ItemText, ChannelIdListJoinsDecimals)
{
    EXPECT_EQ(ValueListConfigItem<ChannelID>({ChannelID(0, 7), ChannelID(1, 0)}).toString(), "7, 4294967296");
    EXPECT_EQ(ValueListConfigItem<ChannelID>().toString(), "");
}

TEST(ItemText, RationalInLowestTermsWithUnit)
{
    EXPECT_EQ(RationalScalarConfigItem(2, 6, "s").toString(), "1/3 s");
    EXPECT_EQ(RationalScalarConfigItem(10, 2, "").toString(), "5");
    EXPECT_EQ(RationalScalarConfigItem(1, -2, "m").toString(), "-1/2 m");
    EXPECT_EQ(RationalScalarConfigItem().toString(), "0");
}

TEST(ItemText, InvalidShowsItsMessageOrItsClass)
{
    EXPECT_EQ(InvalidConfigItem("no such key").toString(), "no such key");
    EXPECT_EQ(InvalidConfigItem().toString(), "InvalidConfigItem");
}

TEST(ItemEquality, NotANumberAndInfinitiesCountAsEqual)
{
    EXPECT_TRUE(SingleValueConfigItem<double>(NaN).equals(SingleValueConfigItem<double>(-NaN)));
    EXPECT_TRUE(SingleValueConfigItem<double>(INF).equals(SingleValueConfigItem<double>(-INF)));
    EXPECT_FALSE(SingleValueConfigItem<double>(INF).equals(SingleValueConfigItem<double>(NaN)));
    EXPECT_FALSE(SingleValueConfigItem<double>(1.0).equals(SingleValueConfigItem<double>(NaN)));
    EXPECT_TRUE(ScalarConfigItem(NaN, "V").equals(ScalarConfigItem(NaN, "V")));
    EXPECT_TRUE(RangeConfigItem<double>(-INF, NaN).equals(RangeConfigItem<double>(INF, NaN)));
    using Point = TupleValue<double, double>;
    EXPECT_TRUE(ValueListConfigItem<Point>({{NaN, 1}}).equals(ValueListConfigItem<Point>({{NaN, 1}})));
    EXPECT_TRUE(SingleValueConfigItem<double>(0.0).equals(SingleValueConfigItem<double>(-0.0)));
}

TEST(ItemEquality, DemandsTheSameClass)
{
    const SingleValueConfigItem<double> plain(1.0);
    const ScalarConfigItem scalar(1.0, "");
    const DecoratedNumberConfigItem decorated(1.0, "", "");
    EXPECT_FALSE(plain.equals(scalar));
    EXPECT_FALSE(scalar.equals(plain));
    EXPECT_FALSE(scalar.equals(decorated));
    EXPECT_FALSE(decorated.equals(plain));
    EXPECT_FALSE(SingleValueConfigItem<int>(1).equals(SingleValueConfigItem<unsigned int>(1)));
    EXPECT_FALSE(InvalidConfigItem("x").equals(StringConfigItem("x")));
}

TEST(ItemEquality, EveryFieldCounts)
{
    EXPECT_FALSE(StringConfigItem("a", 1).equals(StringConfigItem("a", 2))) << "size hint";
    EXPECT_FALSE(ScalarConfigItem(1, "V").equals(ScalarConfigItem(1, "mV")));
    EXPECT_FALSE(RangeConfigItem<double>(0, 1, "V", "V").equals(RangeConfigItem<double>(0, 1, "V", "")));
    EXPECT_FALSE(DecoratedNumberConfigItem(1, "a", "b").equals(DecoratedNumberConfigItem(1, "b", "a")));
    EXPECT_FALSE(GenericEnumConfigItem("T", "v").equals(GenericEnumConfigItem("", "v")));
    EXPECT_FALSE(RationalScalarConfigItem(1, 3, "s").equals(RationalScalarConfigItem(1, 3, "")));
    EXPECT_TRUE(RationalScalarConfigItem(1, 3, "s").equals(RationalScalarConfigItem(2, 6, "s")));
    EXPECT_FALSE(
        ValueListConfigItem<std::string>({"a"}).equals(ValueListConfigItem<std::string>({"a", "a"})));
    EXPECT_FALSE(
        ValueListConfigItem<std::string>({"a", "b"}).equals(ValueListConfigItem<std::string>({"b", "a"})));
    EXPECT_FALSE(SingleValueConfigItem<ChannelID>(ChannelID(1, 0))
                     .equals(SingleValueConfigItem<ChannelID>(ChannelID(0, 1))));
}

TEST(ItemEquality, OperatorsForwardToEquals)
{
    EXPECT_EQ(ScalarConfigItem(NaN, "V"), ScalarConfigItem(NaN, "V"));
    EXPECT_NE(ScalarConfigItem(1, "V"), ScalarConfigItem(2, "V"));
}

TEST(ItemCount, EveryLiveItemIsCounted)
{
    const long before = IfConfigItem::count();
    {
        const ScalarConfigItem scalar(1, "V");
        channel_config::ConfigItemVariant variant = scalar;
        std::vector<channel_config::ConfigItemVariant> copies(3, variant);
        EXPECT_EQ(IfConfigItem::count(), before + 5);
    }
    EXPECT_EQ(IfConfigItem::count(), before);
}

TEST(RationalItem, ZeroDenominatorIsAProgrammingError)
{
    uni_testing::AssertCapture asserts;
    const RationalScalarConfigItem item(1, 0, "s");
    EXPECT_TRUE(asserts.fired("denominator != 0"));
    EXPECT_EQ(item.toString(), "0 s");
}

} // namespace
