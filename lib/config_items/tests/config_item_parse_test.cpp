#include "item_printing.h"

#include <config_items/parse_string_visitor.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace config_items;
using namespace channel_config;
using Point = TupleValue<double, double>;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();

bool parse(const std::string& text, ConfigItemVariant& item)
{
    return ParseStringVisitor().parse(text, item);
}

template <typename Item>
Item parsedAs(const std::string& text, Item start = Item())
{
    ConfigItemVariant item = start;
    EXPECT_TRUE(parse(text, item)) << '"' << text << '"';
    return std::get<Item>(item);
}

// --- Round trips: the text of an item reads back as the same item. ---

struct RoundTrip
{
    const char* name;
    ConfigItemVariant item;
    /// What the target holds before: the alternative decides the reader; the size
    /// hint of a string and the type of a generic enumeration come from here.
    ConfigItemVariant target;
};

void PrintTo(const RoundTrip& c, std::ostream* out)
{
    *out << c.name;
}

class ItemRoundTrip : public testing::TestWithParam<RoundTrip>
{};

TEST_P(ItemRoundTrip, TextReadsBackAsTheSameItem)
{
    const RoundTrip& c = GetParam();
    const std::string text = channel_config::toString(c.item);
    ConfigItemVariant target = c.target;
    ASSERT_TRUE(parse(text, target)) << text;
    EXPECT_EQ(target, c.item) << text;
}

std::vector<RoundTrip> roundTrips()
{
    return {
        {"String", StringConfigItem(" spaced, \"quoted\" ", 16), StringConfigItem("", 16)},
        {"EmptyString", StringConfigItem("", 3), StringConfigItem("x", 3)},
        {"Double", SingleValueConfigItem<double>(0.1), SingleValueConfigItem<double>()},
        {"DoubleTiny", SingleValueConfigItem<double>(4.9406564584124654e-324),
         SingleValueConfigItem<double>()},
        {"DoubleHuge", SingleValueConfigItem<double>(-1.7976931348623157e308),
         SingleValueConfigItem<double>()},
        {"DoubleNan", SingleValueConfigItem<double>(NaN), SingleValueConfigItem<double>()},
        {"DoubleMinusInf", SingleValueConfigItem<double>(-INF), SingleValueConfigItem<double>()},
        {"Scalar", ScalarConfigItem(-0.001, "mV"), ScalarConfigItem()},
        {"ScalarExponent", ScalarConfigItem(6.02e23, "1/mol"), ScalarConfigItem()},
        {"ScalarWithoutUnit", ScalarConfigItem(2.5, ""), ScalarConfigItem()},
        {"Int", SingleValueConfigItem<int>(std::numeric_limits<int>::min()), SingleValueConfigItem<int>()},
        {"UInt", SingleValueConfigItem<unsigned int>(4294967295u), SingleValueConfigItem<unsigned int>()},
        {"BoolTrue", SingleValueConfigItem<bool>(true), SingleValueConfigItem<bool>()},
        {"BoolFalse", SingleValueConfigItem<bool>(false), SingleValueConfigItem<bool>(true)},
        {"Range", RangeConfigItem<double>(-2.5, 7, "mV", "V"), RangeConfigItem<double>()},
        {"RangeWithoutUnits", RangeConfigItem<double>(0.125, 100), RangeConfigItem<double>()},
        {"StringList", ValueListConfigItem<std::string>({"a, b", "say \"hi\"", "it's", "c:\\d", "", " x "}),
         ValueListConfigItem<std::string>()},
        {"EmptyStringList", ValueListConfigItem<std::string>(), ValueListConfigItem<std::string>({"x"})},
        {"PointList", ValueListConfigItem<Point>({{0.1, -2}, {NaN, INF}, {1e-300, 0}}),
         ValueListConfigItem<Point>()},
        {"EmptyPointList", ValueListConfigItem<Point>(), ValueListConfigItem<Point>({{1, 2}})},
        {"DecoratedNumber", DecoratedNumberConfigItem(0.1, "#", "rpm"), DecoratedNumberConfigItem()},
        {"DecoratedNumberBare", DecoratedNumberConfigItem(-3, "", ""),
         DecoratedNumberConfigItem(1, "a", "b")},
        {"UserScalingMode", SingleValueConfigItem<UserScalingMode>(UserScalingMode::TABLE_SCALING),
         SingleValueConfigItem<UserScalingMode>()},
        {"ChannelType", SingleValueConfigItem<DAQChannelType>(DAQChannelType::ARXML_CAN_FRAME),
         SingleValueConfigItem<DAQChannelType>()},
        {"SampleResolution", SingleValueConfigItem<DAQSampleResolution>(DAQSampleResolution::CDOUBLE),
         SingleValueConfigItem<DAQSampleResolution>()},
        {"PhysicalQuantity", SingleValueConfigItem<PhysicalQuantity>(PhysicalQuantity::STRAIN),
         SingleValueConfigItem<PhysicalQuantity>()},
        {"GenericEnum", GenericEnumConfigItem("ReducedFormat", "r_sf_sf"), GenericEnumConfigItem()},
        {"GenericEnumUntyped", GenericEnumConfigItem("", "Auto"), GenericEnumConfigItem()},
        {"ChannelId", SingleValueConfigItem<ChannelID>(ChannelID(0xffffffffu, 3)),
         SingleValueConfigItem<ChannelID>()},
        {"RationalFraction", RationalScalarConfigItem(-1, 3, "ms"), RationalScalarConfigItem()},
        {"RationalWhole", RationalScalarConfigItem(std::numeric_limits<std::int64_t>::max(), 1, ""),
         RationalScalarConfigItem()},
    };
}

INSTANTIATE_TEST_SUITE_P(EveryAlternative, ItemRoundTrip, testing::ValuesIn(roundTrips()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ItemRoundTripCoverage, EveryParsableAlternativeIsInTheTable)
{
    std::vector<bool> covered(CONFIG_ITEM_COUNT, false);
    for (const RoundTrip& c : roundTrips())
        covered[c.item.index()] = true;
    for (std::size_t i = 0; i < CONFIG_ITEM_COUNT; ++i) {
        const bool unparsable = i == configItemIndex<SingleValueConfigItem<SampleOccurrenceType>> ||
                                i == configItemIndex<ValueListConfigItem<ChannelID>> ||
                                i == configItemIndex<InvalidConfigItem>;
        EXPECT_EQ(covered[i], !unparsable) << configItemTypeName(i);
    }
}

// --- Failures: false, and the item stays as it was. ---

struct Failure
{
    const char* name;
    ConfigItemVariant item;
    std::vector<std::string> texts;
};

void PrintTo(const Failure& c, std::ostream* out)
{
    *out << c.name;
}

class ItemParseFailure : public testing::TestWithParam<Failure>
{};

TEST_P(ItemParseFailure, FailsAndLeavesTheItemAlone)
{
    const Failure& c = GetParam();
    for (const std::string& text : c.texts) {
        ConfigItemVariant item = c.item;
        EXPECT_FALSE(parse(text, item)) << '"' << text << '"';
        EXPECT_EQ(item, c.item) << '"' << text << '"';
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryAlternative, ItemParseFailure,
    testing::Values(
        Failure{"Double",
                SingleValueConfigItem<double>(7),
                {"", " ", "1e", "1E", "2+", "3-", "1e+", "abc", "1,5", "1.5 V", "0x10", "++1", "+-1", "1e999",
                 "1 2", "nanx"}},
        Failure{"Scalar", ScalarConfigItem(7, "V"), {"", "V", "abc 5", "e5", ". V", "1e999 V"}},
        Failure{"Int",
                SingleValueConfigItem<int>(7),
                {"", "+", "-", "2147483648", "-2147483649", "99999999999999999999", "1.0", "1e3", "+-1",
                 "0x1", "1 2", "12a"}},
        Failure{"UInt", SingleValueConfigItem<unsigned int>(7), {"", "-1", "4294967296", "1.0", " 1 1"}},
        Failure{
            "Range", RangeConfigItem<double>(1, 2, "V", "V"), {"", "abc", "1..", "..2", "1 .. x", "1.5.5 V"}},
        Failure{"StringList",
                ValueListConfigItem<std::string>({"keep"}),
                {"\"open", "\"a\" \"b\"", "a,", "a,,b", ",a", "\"a\"x", "\"ends in escape\\"}},
        Failure{"PointList",
                ValueListConfigItem<Point>({{1, 2}}),
                {"(1,2", "(1;2)", "(1,2),", "1,2", "(a,b)", "(1,2)(3,4)", "(1,2,3)", "()", "(1e,2)"}},
        Failure{"DecoratedNumber", DecoratedNumberConfigItem(1, "a", "b"), {"", "abc", "$.", "e"}},
        Failure{"UserScalingMode",
                SingleValueConfigItem<UserScalingMode>(UserScalingMode::BRIDGE),
                {"", "scale", "Scale ", "0", "INVALID"}},
        Failure{"ChannelType", SingleValueConfigItem<DAQChannelType>(), {"", "analog", "OVERMAP", "28"}},
        Failure{"SampleResolution", SingleValueConfigItem<DAQSampleResolution>(), {"Double", "int8", ""}},
        Failure{"PhysicalQuantity", SingleValueConfigItem<PhysicalQuantity>(), {"none", "Torque"}},
        Failure{"ChannelId",
                SingleValueConfigItem<ChannelID>(ChannelID(5)),
                {"", "-", "12a", " 12", "0x10", "18446744073709551616"}},
        Failure{"Rational",
                RationalScalarConfigItem(1, 2, "s"),
                {"", "abc", "1/", "/2", "1.", ".5", "1.5.2", "1 m s", "1 m2", "1e5", "99999999999999999999",
                 "9223372036854775807.5", "0.1234567890123456789", "1/2/3", "- 1"}},
        Failure{"Invalid", InvalidConfigItem("why"), {"", "why", "anything"}}),
    [](const auto& info) { return std::string(info.param.name); });

// --- Readers by alternative. ---

TEST(ParseString, StringKeepsItsSizeHint)
{
    const auto item = parsedAs<StringConfigItem>("  text  ", StringConfigItem("old", 12));
    EXPECT_EQ(item.getValue(), "  text  ");
    EXPECT_EQ(item.getSizeHint(), 12u);
}

TEST(ParseDouble, WhiteSpaceSignsAndWords)
{
    EXPECT_EQ(parsedAs<SingleValueConfigItem<double>>(" \t2.5\n").getValue(), 2.5);
    EXPECT_EQ(parsedAs<SingleValueConfigItem<double>>("+1e3").getValue(), 1000.0);
    EXPECT_EQ(parsedAs<SingleValueConfigItem<double>>("-.5").getValue(), -0.5);
    EXPECT_TRUE(std::isnan(parsedAs<SingleValueConfigItem<double>>("NaN").getValue()));
    EXPECT_EQ(parsedAs<SingleValueConfigItem<double>>("-Infinity").getValue(), -INF);
    EXPECT_EQ(parsedAs<SingleValueConfigItem<double>>("+INF").getValue(), INF);
}

TEST(ParseInt, SignedRangeIsExact)
{
    EXPECT_EQ(parsedAs<SingleValueConfigItem<int>>("-2147483648").getValue(),
              std::numeric_limits<int>::min());
    EXPECT_EQ(parsedAs<SingleValueConfigItem<int>>(" +2147483647 ").getValue(),
              std::numeric_limits<int>::max());
    EXPECT_EQ(parsedAs<SingleValueConfigItem<int>>("-0").getValue(), 0);
    ConfigItemVariant item = SingleValueConfigItem<int>(1);
    EXPECT_FALSE(parse("2147483648", item));
}

TEST(ParseUInt, FullRangeAndMinusZero)
{
    EXPECT_EQ(parsedAs<SingleValueConfigItem<unsigned int>>("4294967295").getValue(), 4294967295u);
    EXPECT_EQ(parsedAs<SingleValueConfigItem<unsigned int>>("+0").getValue(), 0u);
    EXPECT_EQ(parsedAs<SingleValueConfigItem<unsigned int>>("-0").getValue(), 0u);
}

TEST(ParseBool, NeverFailsAndOnlyTrueOrOneIsTrue)
{
    EXPECT_TRUE(parsedAs<SingleValueConfigItem<bool>>("true").getValue());
    EXPECT_TRUE(parsedAs<SingleValueConfigItem<bool>>("1").getValue());
    for (const char* text : {"maybe", "2", "TRUE", " true", "", "yes"})
        EXPECT_FALSE(
            parsedAs<SingleValueConfigItem<bool>>(text, SingleValueConfigItem<bool>(true)).getValue())
            << text;
}

TEST(ParseScalar, DecimalCommaAndUnit)
{
    const auto item = parsedAs<ScalarConfigItem>("1,5 mV");
    EXPECT_EQ(item.getValue(), 1.5);
    EXPECT_EQ(item.getUnit(), "mV");
}

TEST(ParseScalar, BareNumberKeepsTheUnit)
{
    const auto item = parsedAs<ScalarConfigItem>("3", ScalarConfigItem(1, "V"));
    EXPECT_EQ(item.getValue(), 3.0);
    EXPECT_EQ(item.getUnit(), "V");
    EXPECT_EQ(parsedAs<ScalarConfigItem>(" -2.5e-3 ", ScalarConfigItem(1, "V")).getUnit(), "V");
}

TEST(ParseScalar, FractionGivesTheNearestDouble)
{
    const auto item = parsedAs<ScalarConfigItem>("1/3 m");
    EXPECT_EQ(item.getValue(), 1.0 / 3.0);
    EXPECT_EQ(item.getUnit(), "m");
    EXPECT_EQ(parsedAs<ScalarConfigItem>("-2/8").getValue(), -0.25);
    // The unit of a fraction is the fraction's own, even when it has none.
    EXPECT_EQ(parsedAs<ScalarConfigItem>("1/4", ScalarConfigItem(1, "V")).getUnit(), "");
}

TEST(ParseScalar, UnitIsEverythingAfterTheNumber)
{
    const auto item = parsedAs<ScalarConfigItem>(".5   m/s^2  ");
    EXPECT_EQ(item.getValue(), 0.5);
    EXPECT_EQ(item.getUnit(), "m/s^2");
    EXPECT_EQ(parsedAs<ScalarConfigItem>("1e3Hz").getUnit(), "Hz");
    EXPECT_EQ(parsedAs<ScalarConfigItem>("1e3Hz").getValue(), 1000.0);
}

TEST(ParseScalar, ZeroDenominatorAssertsThenReadsAsNumberAndUnit)
{
    uni_testing::AssertCapture asserts;
    const auto item = parsedAs<ScalarConfigItem>("1/0 V");
    EXPECT_TRUE(asserts.fired("x.second != 0"));
    EXPECT_EQ(item.getValue(), 1.0);
    EXPECT_EQ(item.getUnit(), "/0 V");
}

TEST(ParseRange, TwoBoundsAreOrderedButTheirUnitsStay)
{
    const auto item = parsedAs<RangeConfigItem<double>>("5 V .. 1 mV");
    EXPECT_EQ(item.getMin(), 1.0);
    EXPECT_EQ(item.getMax(), 5.0);
    EXPECT_EQ(item.getMinUnit(), "V");
    EXPECT_EQ(item.getMaxUnit(), "mV");
    const auto plain = parsedAs<RangeConfigItem<double>>("5 .. 1");
    EXPECT_EQ(plain.getMin(), 1.0);
    EXPECT_EQ(plain.getMax(), 5.0);
}

TEST(ParseRange, OneValueIsSymmetricAboutZero)
{
    for (const char* text : {"5 V", "-5 V", " +5V "}) {
        const auto item = parsedAs<RangeConfigItem<double>>(text);
        EXPECT_EQ(item.getMin(), -5.0) << text;
        EXPECT_EQ(item.getMax(), 5.0) << text;
        EXPECT_EQ(item.getMinUnit(), "V") << text;
        EXPECT_EQ(item.getMaxUnit(), "V") << text;
    }
    const auto zero = parsedAs<RangeConfigItem<double>>("0");
    EXPECT_EQ(zero.toString(), "0 .. 0");
    EXPECT_EQ(parsedAs<RangeConfigItem<double>>(",25").getMax(), 0.25);
}

TEST(ParseRange, TheSeparatorIsAnyTwoCharacters)
{
    for (const char* text : {"1 .. 2", "1 - 2", "1,0..2,0"}) {
        const auto item = parsedAs<RangeConfigItem<double>>(text);
        EXPECT_EQ(item.getMin(), 1.0) << text;
        EXPECT_EQ(item.getMax(), 2.0) << text;
    }
}

TEST(ParseDecoratedNumber, AffixesAroundTheNumber)
{
    const auto item = parsedAs<DecoratedNumberConfigItem>("  $ 1,5e3 k  ");
    EXPECT_EQ(item.getPrefix(), "$");
    EXPECT_EQ(item.getValue(), 1500.0);
    EXPECT_EQ(item.getPostfix(), "k");
    const auto glued = parsedAs<DecoratedNumberConfigItem>("CH-12abc");
    EXPECT_EQ(glued.getPrefix(), "CH");
    EXPECT_EQ(glued.getValue(), -12.0);
    EXPECT_EQ(glued.getPostfix(), "abc");
}

TEST(ParseStringList, PrintedAndLooseForms)
{
    EXPECT_EQ(parsedAs<ValueListConfigItem<std::string>>(R"(  "a" ,"b\"c",   "d\\" )").getValues(),
              (std::vector<std::string>{"a", "b\"c", "d\\"}));
    EXPECT_EQ(parsedAs<ValueListConfigItem<std::string>>("red, dark green ,blue").getValues(),
              (std::vector<std::string>{"red", "dark green", "blue"}));
    EXPECT_TRUE(parsedAs<ValueListConfigItem<std::string>>("   ", ValueListConfigItem<std::string>({"x"}))
                    .getValues()
                    .empty());
}

TEST(ParsePointList, SpacesAroundNumbers)
{
    const auto points = parsedAs<ValueListConfigItem<Point>>(" ( 1 , 2 ),(-3.5,inf)").getValues();
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].first, 1.0);
    EXPECT_EQ(points[0].second, 2.0);
    EXPECT_EQ(points[1].first, -3.5);
    EXPECT_EQ(points[1].second, INF);
}

TEST(ParseGenericEnum, OneColonSplitsTypeAndValue)
{
    auto item = parsedAs<GenericEnumConfigItem>("ChannelStored:No", GenericEnumConfigItem("Old", "x"));
    EXPECT_EQ(item.getEnumType(), "ChannelStored");
    EXPECT_EQ(item.getValue(), "No");
    item = parsedAs<GenericEnumConfigItem>(":No", GenericEnumConfigItem("Old", "x"));
    EXPECT_EQ(item.getEnumType(), "");
    EXPECT_EQ(item.getValue(), "No");
}

TEST(ParseGenericEnum, NoneOrTwoColonsKeepTheType)
{
    auto item = parsedAs<GenericEnumConfigItem>("a:b:c", GenericEnumConfigItem("Keep", "x"));
    EXPECT_EQ(item.getEnumType(), "Keep");
    EXPECT_EQ(item.getValue(), "a:b:c");
    item = parsedAs<GenericEnumConfigItem>("Auto", GenericEnumConfigItem("ChannelStored", "No"));
    EXPECT_EQ(item.getEnumType(), "ChannelStored");
    EXPECT_EQ(item.getValue(), "Auto");
}

TEST(ParseEnumerations, EveryTextOfTheFourParsableTables)
{
    for (const auto& entry : enumTextMap<DAQChannelType>().left)
        EXPECT_EQ(parsedAs<SingleValueConfigItem<DAQChannelType>>(entry.second).getValue(), entry.first);
    for (const auto& entry : enumTextMap<DAQSampleResolution>().left)
        EXPECT_EQ(parsedAs<SingleValueConfigItem<DAQSampleResolution>>(entry.second).getValue(), entry.first);
    for (const auto& entry : enumTextMap<UserScalingMode>().left)
        EXPECT_EQ(parsedAs<SingleValueConfigItem<UserScalingMode>>(entry.second).getValue(), entry.first);
    for (const auto& entry : enumTextMap<PhysicalQuantity>().left)
        EXPECT_EQ(parsedAs<SingleValueConfigItem<PhysicalQuantity>>(entry.second).getValue(), entry.first);
}

TEST(ParseChannelId, DecimalWithOptionalSign)
{
    EXPECT_EQ(parsedAs<SingleValueConfigItem<ChannelID>>("4294967297").getValue(), ChannelID(1, 1));
    EXPECT_EQ(parsedAs<SingleValueConfigItem<ChannelID>>("+5").getValue(), ChannelID(0, 5));
    EXPECT_EQ(parsedAs<SingleValueConfigItem<ChannelID>>("-1").getValue(),
              ChannelID(0xffffffffu, 0xffffffffu));
}

TEST(ParseRational, ThreeNumberForms)
{
    auto item = parsedAs<RationalScalarConfigItem>("6/4 m");
    EXPECT_EQ(item.getNumerator(), 3);
    EXPECT_EQ(item.getDenominator(), 2);
    EXPECT_EQ(item.getUnit(), "m");
    item = parsedAs<RationalScalarConfigItem>("-1.25");
    EXPECT_EQ(item.getNumerator(), -5);
    EXPECT_EQ(item.getDenominator(), 4);
    EXPECT_EQ(item.getUnit(), "");
    item = parsedAs<RationalScalarConfigItem>(" 7s ");
    EXPECT_EQ(item.getNumerator(), 7);
    EXPECT_EQ(item.getDenominator(), 1);
    EXPECT_EQ(item.getUnit(), "s");
    item = parsedAs<RationalScalarConfigItem>("-0.5");
    EXPECT_EQ(item.toString(), "-1/2");
}

TEST(ParseRational, DecimalsAreExact)
{
    EXPECT_EQ(parsedAs<RationalScalarConfigItem>("0.1").toString(), "1/10");
    EXPECT_EQ(parsedAs<RationalScalarConfigItem>("1.50000000000000000000000").toString(), "3/2");
    EXPECT_EQ(parsedAs<RationalScalarConfigItem>("0.123456789012345678").toString(),
              "61728394506172839/500000000000000000");
}

TEST(ParseRational, ZeroDenominatorAssertsAndFails)
{
    uni_testing::AssertCapture asserts;
    ConfigItemVariant item = RationalScalarConfigItem(1, 2, "s");
    EXPECT_FALSE(parse("1/0 s", item));
    EXPECT_TRUE(asserts.fired("x.second != 0"));
    EXPECT_EQ(item, ConfigItemVariant(RationalScalarConfigItem(1, 2, "s")));
}

TEST(ParseUnimplemented, SampleOccurrenceAndChannelIdListAssert)
{
    const ConfigItemVariant items[] = {
        SingleValueConfigItem<SampleOccurrenceType>(SampleOccurrenceType::ASYNC),
        ValueListConfigItem<ChannelID>({ChannelID(1)})};
    for (const ConfigItemVariant& original : items) {
        uni_testing::AssertCapture asserts;
        ConfigItemVariant item = original;
        EXPECT_FALSE(parse(channel_config::toString(original), item));
        EXPECT_TRUE(asserts.fired("", "Type not implemented yet!"));
        EXPECT_EQ(item, original);
    }
}

} // namespace
