#include <uni_units/converter.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

using units::simple::Converter;

namespace {

struct Case
{
    const char* name;
    double value;
    const char* from;
    const char* to;
    double expected;
};

void PrintTo(const Case& c, std::ostream* os)
{
    *os << c.name;
}

class ConverterCases : public ::testing::TestWithParam<Case>
{};

} // namespace

TEST_P(ConverterCases, Converts)
{
    const Case& c = GetParam();
    double result = -12345;
    ASSERT_TRUE(Converter().convert(c.value, c.from, &result, c.to));
    EXPECT_DOUBLE_EQ(result, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Units, ConverterCases,
    ::testing::Values(Case{"milli_to_base", 5, "mV", "V", 0.005}, Case{"kilo_to_base", 1, "kHz", "Hz", 1000},
                      Case{"base_to_milli", 2, "V", "mV", 2000}, Case{"same_unit", 7.5, "V", "V", 7.5},
                      Case{"same_exponent_other_spelling", 3, "kV", "kiloV", 3},
                      Case{"micro_spellings", 4, "\u00b5V", "\u03bcV", 4},
                      Case{"micro_to_nano", 1, "uA", "nA", 1000},
                      Case{"mega_to_kilo", 2, "MOhm", "k\u2126", 2000},
                      Case{"watt_hours_to_watt_seconds", 1, "Wh", "Ws", 3600},
                      Case{"watt_seconds_to_watt_hours", 7200, "J", "Wh", 2},
                      Case{"kilowatt_hours_to_kilojoule", 1, "kWh", "kJ", 3600},
                      Case{"milliwatt_hours_to_watt_hours", 500, "mWh", "Wh", 0.5},
                      Case{"no_dimension_check", 1, "mV", "kHz", 1e-6},
                      Case{"centimetre", 250, "cm", "m", 2.5}, Case{"deca_two_letters", 1, "daBd", "Bd", 10}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ConverterLookup, CaseAndWholeWordMatter)
{
    const Converter converter;
    ASSERT_NE(converter.find("MV"), nullptr);
    ASSERT_NE(converter.find("mV"), nullptr);
    EXPECT_EQ(converter.find("MV")->exponent, 6);
    EXPECT_EQ(converter.find("mV")->exponent, -3);
    EXPECT_EQ(converter.find("mv"), nullptr);
    EXPECT_EQ(converter.find("kVV"), nullptr);
    EXPECT_EQ(converter.find(""), nullptr);
    EXPECT_EQ(converter.find(" V"), nullptr);
}

TEST(ConverterLookup, UnknownUnitsLeaveTheResultAlone)
{
    const Converter converter;
    double result = 42;
    EXPECT_FALSE(converter.convert(1, "mv", &result, "V"));
    EXPECT_FALSE(converter.convert(1, "V", &result, "kVV"));
    EXPECT_FALSE(converter.convert(1, "", &result, "V"));
    EXPECT_FALSE(converter.convert(1, "V", &result, ""));
    EXPECT_EQ(result, 42);
    EXPECT_FALSE(converter.convert(1, "V", nullptr, "mV"));
}

TEST(ConverterLookup, HandlesShareOneTable)
{
    EXPECT_EQ(Converter().find("V"), Converter().find("V"));
}

TEST(ConverterValues, NonFiniteValuesPassThrough)
{
    const Converter converter;
    double result = 0;
    ASSERT_TRUE(converter.convert(std::numeric_limits<double>::infinity(), "kV", &result, "V"));
    EXPECT_EQ(result, std::numeric_limits<double>::infinity());
    ASSERT_TRUE(converter.convert(std::nan(""), "Wh", &result, "J"));
    EXPECT_TRUE(std::isnan(result));
}
