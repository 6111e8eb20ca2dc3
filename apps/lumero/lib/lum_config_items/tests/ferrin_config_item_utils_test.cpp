// Conversions between items and the Qt value types, and the display texts of values.

#include <lum_config_items/ferrin_config_item_utils.h>
#include <lum_config_items/qconfig_value_types.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QPointF>
#include <QStringList>

#include <cmath>
#include <string>

namespace ci = config_items;
namespace cc = channel_config;
using ferrin_config::QEnumType;

namespace {

// Rows make their values when run: a value type left in a static row would outlive
// Qt's meta type registry and leak at exit.
#define VALUE(...) [] { return QVariant(__VA_ARGS__); }

struct TextRow
{
    const char* name;
    QVariant (*value)();
    const char* text;
    /// The assertion message the conversion reports; empty for none.
    std::string complaint;
};

void PrintTo(const TextRow& row, std::ostream* out)
{
    *out << row.name;
}

class VariantText : public ::testing::TestWithParam<TextRow>
{};

TEST_P(VariantText, GivesTheTextAndReportsWhatItCannotShow)
{
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(ferrin_config::variantToString(GetParam().value()), QString(GetParam().text));
    if (GetParam().complaint.empty())
        EXPECT_EQ(asserts.size(), 0u);
    else
        EXPECT_TRUE(asserts.fired("", GetParam().complaint));
}

QVariant enumValue(QEnumType::EnumCfgItemType type, int value)
{
    return QVariant::fromValue(QEnumType(type, value));
}

INSTANTIATE_TEST_SUITE_P(
    Values, VariantText,
    ::testing::Values(
        TextRow{"plain_text", VALUE(QString("hello")), "hello", ""}, TextRow{"flag", VALUE(true), "true", ""},
        TextRow{"negative_int", VALUE(-42), "-42", ""},
        TextRow{"large_unsigned", VALUE(QVariant(qulonglong(18446744073709551615ull))),
                "18446744073709551615", ""},
        TextRow{"double_round_trips", VALUE(0.1), "0.10000000000000001", ""},
        TextRow{"scalar_in_parentheses", VALUE(QVariant::fromValue(ferrin_config::QScalar(1.5, "mV"))),
                "(1.5 mV)", ""},
        TextRow{"range_with_units", VALUE(QVariant::fromValue(ferrin_config::QDoubleRange(-5, 5, "V", "V"))),
                "-5 V .. 5 V", ""},
        TextRow{"range_without_units", VALUE(QVariant::fromValue(ferrin_config::QDoubleRange(1, 2, "", ""))),
                "1 .. 2", ""},
        TextRow{"ratio_with_unit", VALUE(QVariant::fromValue(ferrin_config::QRationalScalar(1, 3, "m"))),
                "1/3 m", ""},
        TextRow{"whole_ratio", VALUE(QVariant::fromValue(ferrin_config::QRationalScalar(4, 1, ""))), "4", ""},
        TextRow{"decorated", VALUE(QVariant::fromValue(ferrin_config::QDecoratedNumber(12, "#", " pcs"))),
                "#12 pcs", ""},
        TextRow{"string_list", VALUE(QStringList{"a", "b\"c"}), "\"a\", \"b\\\"c\"", ""},
        TextRow{"point_list", VALUE(QVariantList{QPointF(1, 2), QPointF(3.5, 4)}), "(1,2), (3.5,4)", ""},
        TextRow{"utf8_sample_format", VALUE(enumValue(QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM, 17)),
                "UTF8 string", ""},
        TextRow{"first_sample_format", VALUE(enumValue(QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM, 1)),
                "8 bit", ""},
        TextRow{"last_sample_format", VALUE(enumValue(QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM, 18)),
                "none", ""},
        TextRow{"sample_format_zero_is_err", VALUE(enumValue(QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM, 0)),
                "err", "Invalid channel type in cfg item conversion!"},
        TextRow{"sample_format_past_end", VALUE(enumValue(QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM, 19)),
                "err", "Invalid channel type in cfg item conversion!"},
        TextRow{"channel_type", VALUE(enumValue(QEnumType::CHANNEL_CONF_CHANNEL_TYPE_ENUM, 28)),
                "OVERMAP/Channel", ""},
        TextRow{"unknown_channel_type", VALUE(enumValue(QEnumType::CHANNEL_CONF_CHANNEL_TYPE_ENUM, 59)),
                "UNKNOWN", "Invalid channel type in cfg item conversion!"},
        TextRow{"scaling_mode", VALUE(enumValue(QEnumType::CHANNEL_CONF_USER_SCALING_MODE, 6)), "Polynomial",
                ""},
        TextRow{"unknown_scaling_mode", VALUE(enumValue(QEnumType::CHANNEL_CONF_USER_SCALING_MODE, 7)),
                "INVALID", "Invalid user scaling mode in cfg item conversion!"},
        TextRow{"quantity", VALUE(enumValue(QEnumType::CHANNEL_CONF_PHYSICAL_QUANTITY, 2)), "Stress", ""},
        TextRow{"unknown_quantity", VALUE(enumValue(QEnumType::CHANNEL_CONF_PHYSICAL_QUANTITY, -1)),
                "INVALID", "Invalid physicl quantity in cfg item conversion!"},
        TextRow{"occurrence_has_no_display_text",
                VALUE(enumValue(QEnumType::CHANNEL_CONF_SAMPLE_OCCURRENCE_TYPE_ENUM, 0)), "INVALID",
                "Invalid enum type for cfg item conversion!"},
        TextRow{"reduced_format_scaled",
                VALUE(QVariant::fromValue(ferrin_config::QGenericEnumType("ReducedFormat", "r_sf_sf"))),
                "scaled avg/rms", ""},
        TextRow{"reduced_format_by_number",
                VALUE(QVariant::fromValue(ferrin_config::QGenericEnumType("ReducedFormat", "1"))),
                "scaled avg/rms", ""},
        TextRow{"reduced_format_unknown",
                VALUE(QVariant::fromValue(ferrin_config::QGenericEnumType("ReducedFormat", "x"))), "INVALID",
                "Invalid reduced format in cfg item conversion!"},
        TextRow{"generic_enum",
                VALUE(QVariant::fromValue(ferrin_config::QGenericEnumType("ChannelStored", "No"))),
                "ChannelStored:No", ""},
        TextRow{"multiline", VALUE(QVariant::fromValue(ferrin_config::QMultilineStringType("a\nb", {}))),
                "a\nb", ""},
        TextRow{"point_is_no_kind", VALUE(QPointF(1, 2)), "INVALID", "Unknown object type in QVariant."},
        TextRow{"invalid_variant", VALUE(QVariant()), "INVALID", "Unknown object type in QVariant."}),
    [](const auto& info) { return std::string(info.param.name); });

// --- item <-> QVariant -------------------------------------------------------------------

struct ItemRow
{
    const char* name;
    cc::ConfigItemVariant item;
    int user_type; ///< meta type the QVariant must hold
};

void PrintTo(const ItemRow& row, std::ostream* out)
{
    *out << row.name;
}

class ItemRoundTrip : public ::testing::TestWithParam<ItemRow>
{};

TEST_P(ItemRoundTrip, TheValueTypeGivesTheSameItemBack)
{
    const QVariant variant = ferrin_config::configItemToVariant(GetParam().item);
    EXPECT_EQ(variant.userType(), GetParam().user_type);
    const auto back = ferrin_config::variantToConfigItem(variant);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(back->index(), GetParam().item.index());
    EXPECT_TRUE(cc::asConfigItem(*back).equals(cc::asConfigItem(GetParam().item))) << cc::toString(*back);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ItemRoundTrip,
    ::testing::Values(
        ItemRow{"text", ci::StringConfigItem("abc"), QMetaType::QString},
        ItemRow{"double", ci::SingleValueConfigItem<double>(2.5), QMetaType::Double},
        ItemRow{"scalar", ci::ScalarConfigItem(2.5, "mV"), qMetaTypeId<ferrin_config::QScalar>()},
        ItemRow{"int", ci::SingleValueConfigItem<int>(-7), QMetaType::Int},
        ItemRow{"unsigned", ci::SingleValueConfigItem<unsigned int>(7), QMetaType::UInt},
        ItemRow{"flag", ci::SingleValueConfigItem<bool>(true), QMetaType::Bool},
        ItemRow{"range", ci::RangeConfigItem<double>(-1, 2, "V", "mV"),
                qMetaTypeId<ferrin_config::QDoubleRange>()},
        ItemRow{"strings", ci::ValueListConfigItem<std::string>({"x", "y"}), QMetaType::QStringList},
        ItemRow{"points", ci::ValueListConfigItem<ci::TupleValue<double, double>>({{1, 2}, {3, 4}}),
                QMetaType::QVariantList},
        ItemRow{"decorated", ci::DecoratedNumberConfigItem(3, "<", ">"),
                qMetaTypeId<ferrin_config::QDecoratedNumber>()},
        ItemRow{"scaling_mode", ci::SingleValueConfigItem(cc::UserScalingMode::BRIDGE),
                qMetaTypeId<ferrin_config::QEnumType>()},
        ItemRow{"channel_type", ci::SingleValueConfigItem(cc::DAQChannelType::CAN),
                qMetaTypeId<ferrin_config::QEnumType>()},
        ItemRow{"resolution", ci::SingleValueConfigItem(cc::DAQSampleResolution::UTF8STR),
                qMetaTypeId<ferrin_config::QEnumType>()},
        ItemRow{"generic_enum", ci::GenericEnumConfigItem("ReducedFormat", "r_r_r"),
                qMetaTypeId<ferrin_config::QGenericEnumType>()},
        ItemRow{"rational", ci::RationalScalarConfigItem(1, 3, "m"),
                qMetaTypeId<ferrin_config::QRationalScalar>()}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ItemConversion, AnInvalidItemIsAnInvalidVariant)
{
    EXPECT_FALSE(ferrin_config::configItemToVariant(ci::InvalidConfigItem("gone")).isValid());
}

TEST(ItemConversion, TimingEnumerationsAreNoItem)
{
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(
        ferrin_config::variantToConfigItem(QVariant::fromValue(QEnumType(QEnumType::TIMING_IRIG_CODE, 3))));
    EXPECT_TRUE(asserts.fired("", "Unknown object type in QVariant."));
}

TEST(ItemConversion, AZeroDenominatorIsRefused)
{
    EXPECT_FALSE(
        ferrin_config::variantToConfigItem(QVariant::fromValue(ferrin_config::QRationalScalar(1, 0, ""))));
}

// --- matching a value to the current item ------------------------------------------------

struct MatchRow
{
    const char* name;
    QVariant (*value)();
    cc::ConfigItemVariant current;
    /// The text of the matched item; nothing when the value must not match.
    std::optional<std::string> text;
};

void PrintTo(const MatchRow& row, std::ostream* out)
{
    *out << row.name;
}

class MatchItem : public ::testing::TestWithParam<MatchRow>
{};

TEST_P(MatchItem, KeepsTheKindOfTheCurrentItem)
{
    const auto matched = ferrin_config::matchConfigItem(GetParam().value(), GetParam().current);
    ASSERT_EQ(matched.has_value(), GetParam().text.has_value());
    if (matched) {
        EXPECT_EQ(matched->index(), GetParam().current.index());
        EXPECT_EQ(cc::toString(*matched), *GetParam().text);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Values, MatchItem,
    ::testing::Values(
        MatchRow{"text_into_scalar", VALUE(QString("1,5 mV")), ci::ScalarConfigItem(0, "V"), "1.5 mV"},
        MatchRow{"bare_number_keeps_unit", VALUE(3), ci::ScalarConfigItem(0, "V"), "3 V"},
        MatchRow{"number_keeps_decoration", VALUE(2.5), ci::DecoratedNumberConfigItem(0, "#", "!"), "#2.5!"},
        MatchRow{"whole_double_into_int", VALUE(4.0), ci::SingleValueConfigItem<int>(0), "4"},
        MatchRow{"fraction_not_into_int", VALUE(4.5), ci::SingleValueConfigItem<int>(0), std::nullopt},
        MatchRow{"negative_not_into_unsigned", VALUE(-1), ci::SingleValueConfigItem<unsigned int>(0),
                 std::nullopt},
        MatchRow{"number_into_channel_id", VALUE(QVariant(qulonglong(4294967297ull))),
                 ci::SingleValueConfigItem<cc::ChannelID>(), "4294967297"},
        MatchRow{"text_refused_by_parser", VALUE(QString("abc")), ci::SingleValueConfigItem<int>(1),
                 std::nullopt},
        MatchRow{"flag_into_flag", VALUE(false), ci::SingleValueConfigItem<bool>(true), "false"},
        MatchRow{"flag_not_into_number", VALUE(true), ci::SingleValueConfigItem<double>(0), std::nullopt},
        MatchRow{"value_type_of_same_kind", VALUE(QVariant::fromValue(ferrin_config::QScalar(2, "A"))),
                 ci::ScalarConfigItem(0, "V"), "2 A"},
        MatchRow{"value_type_of_other_kind", VALUE(QVariant::fromValue(ferrin_config::QScalar(2, "A"))),
                 ci::SingleValueConfigItem<double>(0), std::nullopt},
        MatchRow{"nothing_matches_invalid", VALUE(QString("1")), ci::InvalidConfigItem(), std::nullopt},
        MatchRow{"unknown_meta_type", VALUE(QPointF(1, 1)), ci::SingleValueConfigItem<double>(0),
                 std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

// --- QConfigItemUtils --------------------------------------------------------------------

struct TimingRow
{
    const char* name;
    QString text;
    bool valid;
};

void PrintTo(const TimingRow& row, std::ostream* out)
{
    *out << row.name;
}

class CanBitTiming : public ::testing::TestWithParam<TimingRow>
{};

TEST_P(CanBitTiming, ReadsAllThreeFieldsOrNone)
{
    const QVariantMap fields = ferrin_config::QConfigItemUtils().parseCANBitTimingParameters(GetParam().text);
    if (!GetParam().valid) {
        EXPECT_TRUE(fields.isEmpty());
        return;
    }
    EXPECT_EQ(fields.value("SamplePoint"), QVariant(87.5));
    EXPECT_EQ(fields.value("TSeg1"), QVariant(13));
    EXPECT_EQ(fields.value("TSeg2"), QVariant(2));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, CanBitTiming,
    ::testing::Values(
        TimingRow{"parentheses", "CANBitTimingParameters(SamplePoint=87.5, TSeg1=13, TSeg2=2)", true},
        TimingRow{"braces_and_colons", " CANBitTimingParameters { TSeg2: 2; TSeg1: 13; SamplePoint: 87.5 } ",
                  true},
        TimingRow{"field_missing", "CANBitTimingParameters(SamplePoint=87.5, TSeg1=13)", false},
        TimingRow{"unknown_field", "CANBitTimingParameters(SamplePoint=87.5, TSeg1=13, SJW=2)", false},
        TimingRow{"not_a_number", "CANBitTimingParameters(SamplePoint=x, TSeg1=13, TSeg2=2)", false},
        TimingRow{"other_name", "BitTiming(SamplePoint=87.5, TSeg1=13, TSeg2=2)", false},
        TimingRow{"empty", "", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ConfigItemUtils, MultilineFormatIsGuessedFromTheText)
{
    const ferrin_config::QConfigItemUtils utils;
    auto format = [&utils](const QString& text) {
        return utils.makeMultilineString(text).value<ferrin_config::QMultilineStringType>().format();
    };
    EXPECT_EQ(format("  <a/>\n"), ferrin_config::QMultilineStringType::XML);
    EXPECT_EQ(format("one\ntwo"), ferrin_config::QMultilineStringType::MULTILINE);
    EXPECT_EQ(format("one"), ferrin_config::QMultilineStringType::PLAIN);
    EXPECT_EQ(utils.toString(utils.makeMultilineString("one\ntwo")), QString("one\ntwo"));
}

} // namespace
