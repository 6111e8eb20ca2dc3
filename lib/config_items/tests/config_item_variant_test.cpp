#include "item_printing.h"

#include <config_items/config_item_variant.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using namespace config_items;
using namespace channel_config;

TEST(ConfigItemVariant, IndexIsTheDocumentedDiscriminant)
{
    EXPECT_EQ(CONFIG_ITEM_COUNT, 20u);
    EXPECT_EQ(configItemIndex<StringConfigItem>, 0u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<double>>, 1u);
    EXPECT_EQ(configItemIndex<ScalarConfigItem>, 2u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<int>>, 3u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<unsigned int>>, 4u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<bool>>, 5u);
    EXPECT_EQ(configItemIndex<RangeConfigItem<double>>, 6u);
    EXPECT_EQ(configItemIndex<ValueListConfigItem<std::string>>, 7u);
    EXPECT_EQ((configItemIndex<ValueListConfigItem<TupleValue<double, double>>>), 8u);
    EXPECT_EQ(configItemIndex<DecoratedNumberConfigItem>, 9u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<UserScalingMode>>, 10u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<DAQChannelType>>, 11u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<SampleOccurrenceType>>, 12u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<DAQSampleResolution>>, 13u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<PhysicalQuantity>>, 14u);
    EXPECT_EQ(configItemIndex<GenericEnumConfigItem>, 15u);
    EXPECT_EQ(configItemIndex<SingleValueConfigItem<ChannelID>>, 16u);
    EXPECT_EQ(configItemIndex<RationalScalarConfigItem>, 17u);
    EXPECT_EQ(configItemIndex<ValueListConfigItem<ChannelID>>, 18u);
    EXPECT_EQ(configItemIndex<InvalidConfigItem>, 19u);
}

TEST(ConfigItemVariant, MakesADefaultItemForEveryIndex)
{
    for (std::size_t i = 0; i < CONFIG_ITEM_COUNT; ++i) {
        const auto item = makeConfigItem(i);
        ASSERT_TRUE(item.has_value()) << i;
        EXPECT_EQ(item->index(), i);
    }
    EXPECT_FALSE(makeConfigItem(CONFIG_ITEM_COUNT).has_value());
}

TEST(ConfigItemVariant, TextIsThatOfTheItemHeld)
{
    EXPECT_EQ(channel_config::toString(ConfigItemVariant(ScalarConfigItem(2, "V"))), "2 V");
    EXPECT_EQ(channel_config::toString(ConfigItemVariant(InvalidConfigItem())), "InvalidConfigItem");
    const ConfigItemVariant item = SingleValueConfigItem<bool>(true);
    EXPECT_EQ(&asConfigItem(item), &std::get<SingleValueConfigItem<bool>>(item));
}

TEST(ConfigItemVariant, EqualityNeedsTheSameAlternative)
{
    const ConfigItemVariant as_double = SingleValueConfigItem<double>(1.0);
    const ConfigItemVariant as_scalar = ScalarConfigItem(1.0, "");
    EXPECT_NE(as_double, as_scalar);
    EXPECT_EQ(as_double, ConfigItemVariant(SingleValueConfigItem<double>(1.0)));
}

TEST(ConfigItemTypeName, TemplatesByIndex)
{
    const char* expected[] = {"String (%1)",      "FloatingPoint",    "Scalar",
                              "SInt32",           "UInt32",           "Bool",
                              "DoubleRange",      "StringList",       "PointList",
                              "DecoratedNumber",  "UserScalingMode",  "ChannelType",
                              "SampleOccurrence", "SampleResolution", "PhysicalQuantity",
                              "Enum %1",          "ChannelID",        "RationalScalar",
                              "ChannelIDList",    "Invalid"};
    for (std::size_t i = 0; i < CONFIG_ITEM_COUNT; ++i)
        EXPECT_EQ(configItemTypeName(i), expected[i]) << i;
    EXPECT_EQ(configItemTypeName(CONFIG_ITEM_COUNT), "UNKNOWN");
    EXPECT_EQ(configItemTypeName(std::size_t(-1)), "UNKNOWN");
}

TEST(ConfigItemTypeName, PlaceholderTakesSizeHintOrEnumType)
{
    EXPECT_EQ(configItemTypeName(ConfigItemVariant(StringConfigItem("x", 32))), "String (32)");
    EXPECT_EQ(configItemTypeName(ConfigItemVariant(GenericEnumConfigItem("ChannelStored", "No"))),
              "Enum ChannelStored");
    EXPECT_EQ(configItemTypeName(ConfigItemVariant(ScalarConfigItem())), "Scalar");
}

template <typename Enum>
void expectCompleteTable(const char* name, std::size_t size)
{
    const auto& map = enumTextMap<Enum>();
    EXPECT_EQ(map.size(), size) << name;
    for (std::size_t i = 0; i < size; ++i) {
        const auto value = static_cast<Enum>(i);
        EXPECT_NE(enumToString(value), "INVALID") << name << " " << i;
        EXPECT_EQ(enumFromString<Enum>(enumToString(value)), value) << name << " " << i;
    }
}

TEST(EnumTexts, EveryNumberHasExactlyOneText)
{
    expectCompleteTable<UserScalingMode>("UserScalingMode", 7);
    expectCompleteTable<DAQChannelType>("DAQChannelType", 59);
    expectCompleteTable<SampleOccurrenceType>("SampleOccurrenceType", 4);
    expectCompleteTable<DAQSampleResolution>("DAQSampleResolution", 19);
    expectCompleteTable<PhysicalQuantity>("PhysicalQuantity", 3);
    expectCompleteTable<timing::TimeSource>("TimeSource", 6);
    expectCompleteTable<timing::IrigCode>("IrigCode", 16);
}

TEST(EnumTexts, SpotChecksAgainstTheNumbering)
{
    EXPECT_EQ(enumToString(DAQChannelType::ANALOG), "Analog");
    EXPECT_EQ(enumToString(static_cast<DAQChannelType>(28)), "OVERMAP/Channel");
    EXPECT_EQ(enumToString(static_cast<DAQChannelType>(23)), "Position_HorizontalDilution");
    EXPECT_EQ(enumToString(static_cast<DAQChannelType>(52)), "ARXML/CAN_Frame");
    EXPECT_EQ(enumToString(static_cast<DAQChannelType>(58)), "ARef");
    EXPECT_EQ(enumToString(static_cast<DAQSampleResolution>(3)), "sint24");
    EXPECT_EQ(enumToString(static_cast<DAQSampleResolution>(18)), "none");
    EXPECT_EQ(enumToString(static_cast<UserScalingMode>(6)), "Polynomial");
    EXPECT_EQ(enumToString(static_cast<SampleOccurrenceType>(3)), "NEVER");
    EXPECT_EQ(enumToString(static_cast<PhysicalQuantity>(2)), "Stress");
}

TEST(EnumTexts, LookupIsExactAndTheThrowingAccessorSaysSo)
{
    EXPECT_FALSE(enumFromString<DAQChannelType>("analog").has_value());
    EXPECT_FALSE(enumFromString<DAQChannelType>(" Analog").has_value());
    try {
        (void)enumTextMap<DAQChannelType>().right.at("NoSuchType");
        FAIL() << "no exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "bimap<>: invalid key");
    }
}

TEST(EnumTexts, NamedTablesForGenericEnumerations)
{
    const auto* stored = namedEnumTextMap("ChannelStored");
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->left.at(0), "Auto");
    EXPECT_EQ(stored->left.at(1), "No");
    const auto* reduced = namedEnumTextMap("ReducedFormat");
    ASSERT_NE(reduced, nullptr);
    EXPECT_EQ(reduced->right.at("r_sf_sf"), 1);
    EXPECT_EQ(reduced->right.at("r_r_r"), 0);
    EXPECT_EQ(namedEnumTextMap("Nothing"), nullptr);
}

} // namespace
