#include "config_constraints_to_string_visitor.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using lum::detail::ConfigConstraintsToStringVisitor;
using namespace channel_config;
using namespace config_items;

namespace {

QString lineFor(const ConstraintPtr& constraint)
{
    const QStringList lines = ConfigConstraintsToStringVisitor::describe({constraint});
    EXPECT_EQ(lines.size(), 1);
    return lines.value(0);
}

} // namespace

TEST(ConstraintText, OptionsNameLabelAndItemType)
{
    EXPECT_EQ(lineFor(std::make_shared<OptionConstraint<int>>("Low", -3)), "Option: 'Low' (SInt32)");
    EXPECT_EQ(lineFor(std::make_shared<OptionConstraint<GenericEnumConfigItem>>(
                  "Auto", GenericEnumConfigItem("ChannelStored", "Auto"))),
              "Option: 'Auto' (Enum ChannelStored)");
    // A label holding a placeholder must not swallow the type name.
    EXPECT_EQ(lineFor(std::make_shared<OptionConstraint<bool>>("%2 on", true)), "Option: '%2 on' (Bool)");
}

TEST(ConstraintText, RangesByBoundType)
{
    EXPECT_EQ(lineFor(std::make_shared<ValueRangeConstraint<double>>(-0.5, 10)),
              "Range: [-0.5, 10] (Double)");
    EXPECT_EQ(lineFor(std::make_shared<ValueRangeConstraint<unsigned int>>(1, 4000000000u)),
              "Range: [1, 4000000000] (UInt)");
    EXPECT_EQ(lineFor(std::make_shared<ValueRangeConstraint<int>>(-7, 7)), "Range: [-7, 7] (SInt)");
    EXPECT_EQ(lineFor(std::make_shared<ValueRangeConstraint<ScalarConfigItem>>(ScalarConfigItem(-5, "mV"),
                                                                               ScalarConfigItem(2.5, "%"))),
              "Range: [-5 mV, 2.5 %] (Scalar)");
    EXPECT_EQ(lineFor(std::make_shared<ValueRangeConstraint<float>>(0.f, 1.f)), "Range: unknown type");
}

TEST(ConstraintText, FlagsPrintTrueOrFalse)
{
    EXPECT_EQ(lineFor(std::make_shared<ConfigurableDuringAcquisitionConstraint>(true)),
              "ConfigurableDuringAcquisition: true");
    EXPECT_EQ(lineFor(std::make_shared<ReadOnlyConstraint>(false)), "ReadOnly: false");
    EXPECT_EQ(lineFor(std::make_shared<DerivedValueConstraint>(true)), "DerivedValue: true");
    EXPECT_EQ(lineFor(std::make_shared<FullyIndependentSampleRateConstraint>(true)),
              "FullyIndependentSampleRate: true");
    EXPECT_EQ(lineFor(std::make_shared<IndependentConfigItemConstraint>(false)),
              "IndependentConfigItem: false");
    EXPECT_EQ(lineFor(std::make_shared<TransientConstraint>(true)), "Transient: true");
}

TEST(ConstraintText, TextualConstraints)
{
    EXPECT_EQ(lineFor(std::make_shared<StringLengthConstraint>(1, 32)), "StringLength: [1, 32]");
    EXPECT_EQ(lineFor(std::make_shared<ListElementCountConstraint>(0, 3)),
              "ListElementCountConstraint: [0, 3]");
    EXPECT_EQ(lineFor(std::make_shared<StringFormatConstraint>("ip")), "StringFormat: ip");
    EXPECT_EQ(lineFor(std::make_shared<RegularExpressionConstraint>("[0-9]+")), "Expression: [0-9]+");
    EXPECT_EQ(lineFor(std::make_shared<ItemHintConstraint>("color")), "ItemHint: color");
    EXPECT_EQ(lineFor(std::make_shared<VisibilityConstraint>(VisibilityConstraint::PUBLIC)),
              "Visibility: PUBLIC");
    EXPECT_EQ(lineFor(std::make_shared<VisibilityConstraint>(VisibilityConstraint::NONE)),
              "Visibility: NONE");
    EXPECT_EQ(lineFor(std::make_shared<ChannelIdsConstraint>(4, 1, "Analog")),
              "ChannelIds: maximum 4 items with max dimension 1 and type Analog");
}

TEST(ConstraintText, LinkedItemsListEveryChannelInDecimal)
{
    const ChannelItemKeys keys = {{ChannelID(1, 2), {"Range", "Unit"}}, {ChannelID(7), {"Name"}}};
    EXPECT_EQ(lineFor(std::make_shared<DependentCfgItemConstraint>(keys)),
              "DependentCfgItem: channel 7 {Name} channel 4294967298 {Range, Unit} ");
    EXPECT_EQ(lineFor(std::make_shared<CoupledValueItemConstraint>(keys)),
              "CoupledValueItem: channel 7 {Name} channel 4294967298 {Range, Unit} ");
    EXPECT_EQ(lineFor(std::make_shared<DependentCfgItemConstraint>()), "DependentCfgItem: ");
}

TEST(ConstraintText, FilePathWithAllItsParts)
{
    EXPECT_EQ(lineFor(std::make_shared<FilePathConstraint>(FilePathConstraint::OUTPUT, "Save as", "/tmp",
                                                           std::vector<std::string>{"*.csv", "*.txt"}, true)),
              "Filepath: Output selection, multi select 'true', title 'Save as', path '/tmp'filters {*.csv, "
              "*.txt} ");
    EXPECT_EQ(lineFor(std::make_shared<FilePathConstraint>(FilePathConstraint::DIRECTORY, "", "",
                                                           std::vector<std::string>{}, false)),
              "Filepath: Directory selection, multi select 'false', title '', path ''filters {} ");
}

TEST(ConstraintText, OneLinePerConstraintInOrderNullsSkipped)
{
    const QStringList lines = ConfigConstraintsToStringVisitor::describe(
        {std::make_shared<ReadOnlyConstraint>(true), nullptr, std::make_shared<ItemHintConstraint>("x")});
    EXPECT_EQ(lines, QStringList({"ReadOnly: true", "ItemHint: x"}));
}

TEST(ConstraintText, AKindOutsideTheListIsUnsupported)
{
    // A bare BooleanConstraint names no property: no visit takes it.
    try {
        ConfigConstraintsToStringVisitor::describe(
            {std::make_shared<ReadOnlyConstraint>(true), std::make_shared<BooleanConstraint>(true)});
        FAIL() << "no exception";
    } catch (const std::invalid_argument& error) {
        EXPECT_EQ(std::string(error.what()).rfind("Unsupported type: ", 0), 0u) << error.what();
    }
}
