#include <channel_config/config_constraints.h>

#include <gtest/gtest.h>

using namespace channel_config;
using namespace config_items;

TEST(ConstraintEquality, CloneKeepsTheClassAndComparesEqual)
{
    const ReadOnlyConstraint read_only(true);
    const auto copy = read_only.clone();
    ASSERT_NE(dynamic_cast<ReadOnlyConstraint*>(copy.get()), nullptr);
    EXPECT_TRUE(copy->equals(read_only));
    EXPECT_TRUE(read_only.equals(*copy));
    EXPECT_NE(copy.get(), static_cast<const IfConfigItemConstraint*>(&read_only));

    const FullyIndependentSampleRateConstraint fully(true);
    EXPECT_NE(dynamic_cast<FullyIndependentSampleRateConstraint*>(fully.clone().get()), nullptr);
    const BooleanConstraint plain(true);
    const auto plain_copy = plain.clone();
    EXPECT_EQ(typeid(*plain_copy), typeid(BooleanConstraint));
}

TEST(ConstraintEquality, EqualsDemandsTheClassAndTheFields)
{
    EXPECT_FALSE(ReadOnlyConstraint(true).equals(DerivedValueConstraint(true)));
    EXPECT_FALSE(DerivedValueConstraint(true).equals(ReadOnlyConstraint(true)));
    EXPECT_FALSE(ReadOnlyConstraint(true).equals(ReadOnlyConstraint(false)));
    EXPECT_FALSE(FullyIndependentSampleRateConstraint(true).equals(IndependentConfigItemConstraint(true)));
    EXPECT_FALSE(ItemHintConstraint("a").equals(RegularExpressionConstraint("a")));
    EXPECT_FALSE(StringLengthConstraint(1, 5).equals(ListElementCountConstraint(1, 5)));
    EXPECT_TRUE(StringLengthConstraint(1, 5).equals(StringLengthConstraint(1, 5)));
    EXPECT_FALSE(StringLengthConstraint(1, 5).equals(StringLengthConstraint(1, 6)));
    EXPECT_FALSE(VisibilityConstraint(VisibilityConstraint::NONE).equals(VisibilityConstraint()));
    EXPECT_FALSE(StringFormatConstraint("ip").equals(StringFormatConstraint("mac")));
    EXPECT_FALSE(TransientConstraint(true).equals(TransientConstraint(false)));
}

TEST(ConstraintEquality, LinkedItemsCompareWholeMaps)
{
    const ChannelItemKeys keys = {{ChannelID(1, 2), {"Range", "Unit"}}};
    const ChannelItemKeys other = {{ChannelID(1, 2), {"Range"}}};
    EXPECT_TRUE(DependentCfgItemConstraint(keys).equals(DependentCfgItemConstraint(keys)));
    EXPECT_FALSE(DependentCfgItemConstraint(keys).equals(DependentCfgItemConstraint(other)));
    EXPECT_FALSE(DependentCfgItemConstraint(keys).equals(CoupledValueItemConstraint(keys)));
}

TEST(ConstraintEquality, ChannelIdsAndFilePathCompareEveryField)
{
    EXPECT_TRUE(ChannelIdsConstraint(4, 1, "Analog").equals(ChannelIdsConstraint(4, 1, "Analog")));
    EXPECT_FALSE(ChannelIdsConstraint(4, 1, "Analog").equals(ChannelIdsConstraint(4, 2, "Analog")));
    EXPECT_FALSE(ChannelIdsConstraint(4, 1, "Analog").equals(ChannelIdsConstraint(4, 1, "CAN")));

    const FilePathConstraint path(FilePathConstraint::INPUT, "Open", "/data", {"*.csv"}, false);
    EXPECT_TRUE(path.equals(*path.clone()));
    EXPECT_FALSE(
        path.equals(FilePathConstraint(FilePathConstraint::OUTPUT, "Open", "/data", {"*.csv"}, false)));
    EXPECT_FALSE(
        path.equals(FilePathConstraint(FilePathConstraint::INPUT, "Open", "/data", {"*.csv"}, true)));
    EXPECT_FALSE(path.equals(FilePathConstraint(FilePathConstraint::INPUT, "Open", "/data", {}, false)));
    EXPECT_STREQ(FilePathConstraint::selectionTypeName(FilePathConstraint::DIRECTORY), "Directory");
    EXPECT_STREQ(FilePathConstraint::selectionTypeName(static_cast<FilePathConstraint::SelectionType>(7)),
                 "UNKNOWN");
}

TEST(OptionAndRange, OptionsCompareLabelValueAndType)
{
    EXPECT_TRUE(OptionConstraint<int>("one", 1).equals(OptionConstraint<int>("one", 1)));
    EXPECT_FALSE(OptionConstraint<int>("one", 1).equals(OptionConstraint<int>("uno", 1)));
    EXPECT_FALSE(OptionConstraint<int>("one", 1).equals(OptionConstraint<int>("one", 2)));
    EXPECT_FALSE(OptionConstraint<int>("one", 1).equals(OptionConstraint<unsigned int>("one", 1)));
    EXPECT_FALSE(OptionConstraint<ScalarConfigItem>("x", ScalarConfigItem(1, "V"))
                     .equals(OptionConstraint<ScalarConfigItem>("x", ScalarConfigItem(1, "mV"))));
}

TEST(OptionAndRange, OptionTypeNamesFollowTheItemTexts)
{
    EXPECT_EQ(OptionConstraint<int>("", 1).getTypeName(), "SInt32");
    EXPECT_EQ(OptionConstraint<unsigned int>("", 1).getTypeName(), "UInt32");
    EXPECT_EQ(OptionConstraint<double>("", 1).getTypeName(), "FloatingPoint");
    EXPECT_EQ(OptionConstraint<bool>("", true).getTypeName(), "Bool");
    EXPECT_EQ(OptionConstraint<ChannelID>("", ChannelID(3)).getTypeName(), "ChannelID");
    EXPECT_EQ(OptionConstraint<DAQChannelType>("", DAQChannelType{}).getTypeName(), "ChannelType");
    EXPECT_EQ(OptionConstraint<StringConfigItem>("", StringConfigItem("a", 12)).getTypeName(), "String (12)");
    EXPECT_EQ(OptionConstraint<GenericEnumConfigItem>("", GenericEnumConfigItem("ChannelStored", "Auto"))
                  .getTypeName(),
              "Enum ChannelStored");
    EXPECT_EQ(OptionConstraint<RangeConfigItem<double>>("", RangeConfigItem<double>()).getTypeName(),
              "DoubleRange");
    EXPECT_EQ(OptionConstraint<InvalidConfigItem>("", InvalidConfigItem()).getTypeName(), "Invalid");
    // The timing enumerations are no configuration item of their own.
    EXPECT_EQ(OptionConstraint<timing::TimeSource>("", timing::TimeSource{}).getTypeName(), "UNKNOWN");
    EXPECT_EQ(OptionConstraint<timing::IrigCode>("", timing::IrigCode{}).getTypeName(), "UNKNOWN");
}

TEST(OptionAndRange, RangesCompareBoundsAndType)
{
    EXPECT_TRUE(ValueRangeConstraint<double>(0, 1).equals(*ValueRangeConstraint<double>(0, 1).clone()));
    EXPECT_FALSE(ValueRangeConstraint<double>(0, 1).equals(ValueRangeConstraint<double>(0, 2)));
    EXPECT_FALSE(ValueRangeConstraint<double>(0, 1).equals(ValueRangeConstraint<int>(0, 1)));
    const ValueRangeConstraint<ScalarConfigItem> volts(ScalarConfigItem(-5, "V"), ScalarConfigItem(5, "V"));
    EXPECT_TRUE(volts.equals(*volts.clone()));
    EXPECT_FALSE(volts.equals(
        ValueRangeConstraint<ScalarConfigItem>(ScalarConfigItem(-5, "V"), ScalarConfigItem(5, "mV"))));
}
