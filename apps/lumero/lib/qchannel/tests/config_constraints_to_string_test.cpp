#include "config_constraints_to_string_visitor.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using lum::detail::ConfigConstraintsToStringVisitor;
using namespace channel_config;
using namespace config_items;

namespace {

struct Row
{
    ConstraintPtr constraint;
    const char* text;
};

const ChannelItemKeys KEYS = {{ChannelID(1, 2), {"Range", "Unit"}}, {ChannelID(7), {"Name"}}};

} // namespace

// One line per constraint, in the wording of the properties page; a label holding a
// placeholder must not swallow the type name.
TEST(ConstraintText, EachKindHasItsLine)
{
    const Row rows[] = {
        {std::make_shared<OptionConstraint<int>>("Low", -3), "Option: 'Low' (SInt32)"},
        {std::make_shared<OptionConstraint<GenericEnumConfigItem>>(
             "Auto", GenericEnumConfigItem("ChannelStored", "Auto")),
         "Option: 'Auto' (Enum ChannelStored)"},
        {std::make_shared<OptionConstraint<bool>>("%2 on", true), "Option: '%2 on' (Bool)"},
        {std::make_shared<ValueRangeConstraint<double>>(-0.5, 10), "Range: [-0.5, 10] (Double)"},
        {std::make_shared<ValueRangeConstraint<unsigned int>>(1, 4000000000u),
         "Range: [1, 4000000000] (UInt)"},
        {std::make_shared<ValueRangeConstraint<int>>(-7, 7), "Range: [-7, 7] (SInt)"},
        {std::make_shared<ValueRangeConstraint<ScalarConfigItem>>(ScalarConfigItem(-5, "mV"),
                                                                  ScalarConfigItem(2.5, "%")),
         "Range: [-5 mV, 2.5 %] (Scalar)"},
        {std::make_shared<ValueRangeConstraint<float>>(0.f, 1.f), "Range: unknown type"},
        {std::make_shared<ConfigurableDuringAcquisitionConstraint>(true),
         "ConfigurableDuringAcquisition: true"},
        {std::make_shared<ReadOnlyConstraint>(false), "ReadOnly: false"},
        {std::make_shared<DerivedValueConstraint>(true), "DerivedValue: true"},
        {std::make_shared<FullyIndependentSampleRateConstraint>(true), "FullyIndependentSampleRate: true"},
        {std::make_shared<IndependentConfigItemConstraint>(false), "IndependentConfigItem: false"},
        {std::make_shared<TransientConstraint>(true), "Transient: true"},
        {std::make_shared<StringLengthConstraint>(1, 32), "StringLength: [1, 32]"},
        {std::make_shared<ListElementCountConstraint>(0, 3), "ListElementCountConstraint: [0, 3]"},
        {std::make_shared<StringFormatConstraint>("ip"), "StringFormat: ip"},
        {std::make_shared<RegularExpressionConstraint>("[0-9]+"), "Expression: [0-9]+"},
        {std::make_shared<ItemHintConstraint>("color"), "ItemHint: color"},
        {std::make_shared<VisibilityConstraint>(VisibilityConstraint::PUBLIC), "Visibility: PUBLIC"},
        {std::make_shared<VisibilityConstraint>(VisibilityConstraint::NONE), "Visibility: NONE"},
        {std::make_shared<ChannelIdsConstraint>(4, 1, "Analog"),
         "ChannelIds: maximum 4 items with max dimension 1 and type Analog"},
        {std::make_shared<DependentCfgItemConstraint>(KEYS),
         "DependentCfgItem: channel 7 {Name} channel 4294967298 {Range, Unit} "},
        {std::make_shared<CoupledValueItemConstraint>(KEYS),
         "CoupledValueItem: channel 7 {Name} channel 4294967298 {Range, Unit} "},
        {std::make_shared<DependentCfgItemConstraint>(), "DependentCfgItem: "},
        {std::make_shared<FilePathConstraint>(FilePathConstraint::OUTPUT, "Save as", "/tmp",
                                              std::vector<std::string>{"*.csv", "*.txt"}, true),
         "Filepath: Output selection, multi select 'true', title 'Save as', path '/tmp'filters {*.csv, "
         "*.txt} "},
        {std::make_shared<FilePathConstraint>(FilePathConstraint::DIRECTORY, "", "",
                                              std::vector<std::string>{}, false),
         "Filepath: Directory selection, multi select 'false', title '', path ''filters {} "}};
    for (const Row& row : rows)
        EXPECT_EQ(ConfigConstraintsToStringVisitor::describe({row.constraint}), QStringList{row.text})
            << row.text;
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
