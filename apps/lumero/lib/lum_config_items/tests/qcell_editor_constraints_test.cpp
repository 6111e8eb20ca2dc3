// What a cell editor learns from the constraints of its key.

#include <lum_config_items/qcell_editor_constraints.h>
#include <lum_config_items/qconfig_value_types.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <cmath>
#include <limits>
#include <string>

namespace ci = config_items;
namespace cc = channel_config;
using ferrin_config::QCellEditorConstraints;
using Constraints = std::vector<std::shared_ptr<ci::IfConfigItemConstraint>>;

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();

std::shared_ptr<ci::IfConfigItemConstraint> scalarRange(double lower, const char* lower_unit, double upper,
                                                        const char* upper_unit)
{
    return std::make_shared<ci::ValueRangeConstraint<ci::ScalarConfigItem>>(
        ci::ScalarConfigItem(lower, lower_unit), ci::ScalarConfigItem(upper, upper_unit));
}

// The second type list lists each typed option and range itself, and the same kinds
// after them as the first list, in the order the cell visitor's table gives.
static_assert(cc::CellEditorConstraintsTypeList::size == 37);
static_assert(cc::ConfigConstraintsTypeList::size == 18);

struct LimitRow
{
    const char* name;
    Constraints constraints;
    double min;
    double max;
    QString unit;
    QCellEditorConstraints::EditorType editor;
};

void PrintTo(const LimitRow& row, std::ostream* out)
{
    *out << row.name;
}

class Limits : public ::testing::TestWithParam<LimitRow>
{};

TEST_P(Limits, WidestBoundsInTheFirstRangesUnit)
{
    const QCellEditorConstraints constraints(GetParam().constraints);
    EXPECT_DOUBLE_EQ(constraints.minValue(), GetParam().min);
    EXPECT_DOUBLE_EQ(constraints.maxValue(), GetParam().max);
    EXPECT_EQ(constraints.unit(), GetParam().unit);
    EXPECT_EQ(constraints.editorType(), GetParam().editor);
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, Limits,
    ::testing::Values(
        LimitRow{"no_range_is_unbounded", {}, -INF, INF, "", QCellEditorConstraints::EDITOR_NONE},
        LimitRow{"millivolts_then_volts",
                 {scalarRange(0, "mV", 500, "mV"), scalarRange(0, "V", 2, "V")},
                 0,
                 2000,
                 "mV",
                 QCellEditorConstraints::EDITOR_FLOAT},
        LimitRow{"lower_bound_converted_too",
                 {scalarRange(-100, "mV", 100, "mV"), scalarRange(-1, "V", 0.05, "V")},
                 -1000,
                 100,
                 "mV",
                 QCellEditorConstraints::EDITOR_FLOAT},
        LimitRow{"unknown_unit_left_unconverted",
                 {scalarRange(0, "mV", 5, "mV"), scalarRange(0, "furlong", 7, "furlong")},
                 0,
                 7,
                 "mV",
                 QCellEditorConstraints::EDITOR_FLOAT},
        LimitRow{"narrower_later_range_keeps_first",
                 {std::make_shared<ci::ValueRangeConstraint<int>>(-10, 10),
                  std::make_shared<ci::ValueRangeConstraint<int>>(-5, 5)},
                 -10,
                 10,
                 "",
                 QCellEditorConstraints::EDITOR_INT},
        LimitRow{"unsigned_and_double",
                 {std::make_shared<ci::ValueRangeConstraint<unsigned int>>(2u, 4u),
                  std::make_shared<ci::ValueRangeConstraint<double>>(-0.5, 3.0)},
                 -0.5,
                 4,
                 "",
                 QCellEditorConstraints::EDITOR_INT}),
    [](const auto& info) { return std::string(info.param.name); });

struct EditorRow
{
    const char* name;
    std::shared_ptr<ci::IfConfigItemConstraint> constraint;
    QCellEditorConstraints::EditorType editor;
    bool freely_editable;
    bool strict;
};

void PrintTo(const EditorRow& row, std::ostream* out)
{
    *out << row.name;
}

class EditorKind : public ::testing::TestWithParam<EditorRow>
{};

TEST_P(EditorKind, FollowsTheConstraintsKind)
{
    const QCellEditorConstraints constraints(Constraints{GetParam().constraint});
    EXPECT_EQ(constraints.editorType(), GetParam().editor);
    EXPECT_EQ(constraints.freelyEditable(), GetParam().freely_editable);
    EXPECT_EQ(constraints.strictValidation(), GetParam().strict);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EditorKind,
    ::testing::Values(
        EditorRow{"int_option_is_a_suggestion", std::make_shared<ci::OptionConstraint<int>>("one", 1),
                  QCellEditorConstraints::EDITOR_INT, true, false},
        EditorRow{"double_option", std::make_shared<ci::OptionConstraint<double>>("half", 0.5),
                  QCellEditorConstraints::EDITOR_FLOAT, true, false},
        EditorRow{
            "text_option",
            std::make_shared<ci::OptionConstraint<ci::StringConfigItem>>("a", ci::StringConfigItem("a")),
            QCellEditorConstraints::EDITOR_STRING, true, false},
        EditorRow{"flag_option", std::make_shared<ci::OptionConstraint<bool>>("on", true),
                  QCellEditorConstraints::EDITOR_BOOL, false, true},
        EditorRow{
            "enum_option_is_a_choice",
            std::make_shared<ci::OptionConstraint<cc::UserScalingMode>>("Scale", cc::UserScalingMode::SCALE),
            QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"range_option_is_a_choice",
                  std::make_shared<ci::OptionConstraint<ci::RangeConfigItem<double>>>(
                      "wide", ci::RangeConfigItem<double>(-10, 10, "V", "V")),
                  QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"generic_enum_option_is_a_choice",
                  std::make_shared<ci::OptionConstraint<ci::GenericEnumConfigItem>>(
                      "No", ci::GenericEnumConfigItem("ChannelStored", "No")),
                  QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"channel_type_option",
                  std::make_shared<ci::OptionConstraint<cc::DAQChannelType>>("CAN", cc::DAQChannelType::CAN),
                  QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"occurrence_option",
                  std::make_shared<ci::OptionConstraint<cc::SampleOccurrenceType>>(
                      "Sync", cc::SampleOccurrenceType::SYNC),
                  QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"resolution_option",
                  std::make_shared<ci::OptionConstraint<cc::DAQSampleResolution>>(
                      "Byte", cc::DAQSampleResolution::BYTE),
                  QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"irig_option",
                  std::make_shared<ci::OptionConstraint<timing::IrigCode>>("B000", timing::IrigCode::B000),
                  QCellEditorConstraints::EDITOR_STRING, false, true},
        EditorRow{"channel_option",
                  std::make_shared<ci::OptionConstraint<cc::ChannelID>>("c", cc::ChannelID(1, 2)),
                  QCellEditorConstraints::EDITOR_CHANNEL, false, true},
        EditorRow{"expression", std::make_shared<ci::RegularExpressionConstraint>("[a-z]+"),
                  QCellEditorConstraints::EDITOR_STRING, true, true},
        EditorRow{"string_format", std::make_shared<ci::StringFormatConstraint>("ip"),
                  QCellEditorConstraints::EDITOR_STRING, true, true},
        EditorRow{"string_length", std::make_shared<ci::StringLengthConstraint>(1, 8),
                  QCellEditorConstraints::EDITOR_STRING, true, false},
        EditorRow{"channel_ids", std::make_shared<cc::ChannelIdsConstraint>(3, 2, "Analog"),
                  QCellEditorConstraints::EDITOR_CHANNEL, true, false},
        EditorRow{"file_path",
                  std::make_shared<cc::FilePathConstraint>(cc::FilePathConstraint::INPUT, "t", "p",
                                                           std::vector<std::string>{}, false),
                  QCellEditorConstraints::EDITOR_FILE, true, false},
        EditorRow{"transient_says_nothing", std::make_shared<ci::TransientConstraint>(true),
                  QCellEditorConstraints::EDITOR_NONE, true, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CellEditorConstraints, OptionsListTheirTextsAndValues)
{
    const QCellEditorConstraints constraints(Constraints{
        std::make_shared<ci::OptionConstraint<cc::DAQSampleResolution>>("Text",
                                                                        cc::DAQSampleResolution::UTF8STR),
        std::make_shared<ci::OptionConstraint<timing::TimeSource>>("GPS", timing::TimeSource::GPS)});
    EXPECT_EQ(constraints.stringSelectOptions(), QStringList({"Text", "GPS"}));
    ASSERT_EQ(constraints.selectOptions().size(), 2);
    const auto* first = qobject_cast<ferrin_config::QCellEditorListItem*>(constraints.selectOptions().at(0));
    const auto* second = qobject_cast<ferrin_config::QCellEditorListItem*>(constraints.selectOptions().at(1));
    ASSERT_TRUE(first && second);
    const auto resolution = first->value().value<ferrin_config::QEnumType>();
    EXPECT_EQ(resolution.m_type, ferrin_config::QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM);
    EXPECT_EQ(resolution.m_value, 17);
    EXPECT_EQ(second->value().value<ferrin_config::QEnumType>().m_type,
              ferrin_config::QEnumType::TIMING_TIME_SOURCE);
}

TEST(CellEditorConstraints, FlagsCountsAndTexts)
{
    const QCellEditorConstraints constraints(
        Constraints{std::make_shared<cc::ConfigurableDuringAcquisitionConstraint>(true),
                    std::make_shared<ci::VisibilityConstraint>(ci::VisibilityConstraint::NONE),
                    std::make_shared<ci::ListElementCountConstraint>(1, 4),
                    std::make_shared<ci::ItemHintConstraint>("hint"),
                    std::make_shared<cc::ChannelIdsConstraint>(5, 3, "Analog")});
    EXPECT_TRUE(constraints.configurableDuringAcquisition());
    EXPECT_FALSE(constraints.readOnly());
    EXPECT_EQ(constraints.visibility(), QCellEditorConstraints::VISIBILITY_NONE);
    EXPECT_EQ(constraints.minListItems(), 1);
    // The channel list's own maximum comes last and wins.
    EXPECT_EQ(constraints.maxListItems(), 5);
    EXPECT_EQ(constraints.itemHint(), QString("hint"));
    EXPECT_EQ(constraints.maxChannelDimension(), 3);
    EXPECT_EQ(constraints.channelType(), QString("Analog"));
}

struct ReadOnlyRow
{
    const char* name;
    std::shared_ptr<ci::IfConfigItemConstraint> constraint;
    bool read_only;
};

void PrintTo(const ReadOnlyRow& row, std::ostream* out)
{
    *out << row.name;
}

class ReadOnly : public ::testing::TestWithParam<ReadOnlyRow>
{};

TEST_P(ReadOnly, OnlyATrueFlagLocksTheCell)
{
    EXPECT_EQ(QCellEditorConstraints(Constraints{GetParam().constraint}).readOnly(), GetParam().read_only);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, ReadOnly,
    ::testing::Values(ReadOnlyRow{"read_only", std::make_shared<cc::ReadOnlyConstraint>(true), true},
                      ReadOnlyRow{"writable", std::make_shared<cc::ReadOnlyConstraint>(false), false},
                      ReadOnlyRow{"derived", std::make_shared<cc::DerivedValueConstraint>(true), true},
                      ReadOnlyRow{"not_derived", std::make_shared<cc::DerivedValueConstraint>(false), false},
                      ReadOnlyRow{"independent_is_no_lock",
                                  std::make_shared<cc::IndependentConfigItemConstraint>(true), false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CellEditorConstraints, ADoubledOneOnlyKindAssertsAndTheLaterWins)
{
    uni_testing::AssertCapture asserts;
    const QCellEditorConstraints constraints(Constraints{std::make_shared<cc::ReadOnlyConstraint>(true),
                                                         std::make_shared<cc::ReadOnlyConstraint>(false)});
    EXPECT_TRUE(asserts.fired("!(m_config_constraints->m_read_only)"));
    EXPECT_FALSE(constraints.readOnly());
}

TEST(CellEditorConstraints, FilePathAnswersFromSelectionType)
{
    const QCellEditorConstraints folder(Constraints{
        std::make_shared<cc::FilePathConstraint>(cc::FilePathConstraint::DIRECTORY, "Pick", "/data",
                                                 std::vector<std::string>{"*.csv", "*.txt"}, true)});
    ASSERT_TRUE(folder.hasFilePath());
    EXPECT_EQ(folder.filePath()->dialogTitle(), QString("Pick"));
    EXPECT_EQ(folder.filePath()->defaultPath(), QString("/data"));
    EXPECT_EQ(folder.filePath()->nameFilters(), QStringList({"*.csv", "*.txt"}));
    EXPECT_TRUE(folder.filePath()->selectFolder());
    EXPECT_FALSE(folder.filePath()->selectExisting());
    EXPECT_TRUE(folder.filePath()->selectMultiple());

    const QCellEditorConstraints input(Constraints{std::make_shared<cc::FilePathConstraint>(
        cc::FilePathConstraint::INPUT, "", "", std::vector<std::string>{}, false)});
    EXPECT_TRUE(input.filePath()->selectExisting());
    EXPECT_FALSE(input.filePath()->selectFolder());
    EXPECT_FALSE(input.filePath()->selectMultiple());
    EXPECT_FALSE(QCellEditorConstraints().hasFilePath());
}

TEST(CellEditorConstraints, ExpressionSignalsOnlyRealChanges)
{
    QCellEditorConstraints constraints;
    QSignalSpy expression(&constraints, &QCellEditorConstraints::regularExpressionChanged);
    QSignalSpy has(&constraints, &QCellEditorConstraints::hasRegularExpressionChanged);
    ASSERT_TRUE(expression.isValid() && has.isValid());

    constraints.setRegularExpression("[0-9]+");
    EXPECT_TRUE(constraints.hasRegularExpression());
    EXPECT_EQ(expression.count(), 1);
    EXPECT_EQ(has.count(), 1);

    constraints.setRegularExpression("[0-9]+");
    EXPECT_EQ(expression.count(), 1);

    constraints.setRegularExpression("[a-f]+");
    EXPECT_EQ(expression.count(), 2);
    EXPECT_EQ(has.count(), 1);

    constraints.setRegularExpression("");
    EXPECT_FALSE(constraints.hasRegularExpression());
    EXPECT_EQ(expression.count(), 3);
    EXPECT_EQ(has.count(), 2);
}

TEST(CellEditorConstraints, AnInvalidExpressionIsReported)
{
    uni_testing::AssertCapture asserts;
    QCellEditorConstraints constraints;
    constraints.setRegularExpression("([a-z");
    EXPECT_TRUE(asserts.fired("m_regular_expression.isValid()"));
}

TEST(CellEditorConstraints, SubclassIsShownAsItself)
{
    // Listed before its base, the sample-rate kind is not taken for a plain independent item.
    struct Recorder : ferrin_config::QCellEditorConstraintsVisitor
    {
        using QCellEditorConstraintsVisitor::QCellEditorConstraintsVisitor;
        using QCellEditorConstraintsVisitor::visit;
        void visit(const cc::FullyIndependentSampleRateConstraint&) override { ++fully; }
        void visit(const cc::IndependentConfigItemConstraint&) override { ++plain; }
        int fully = 0;
        int plain = 0;
    };
    QCellEditorConstraints target;
    Recorder recorder(&target);
    recorder.visitAll({std::make_shared<cc::FullyIndependentSampleRateConstraint>(true),
                       std::make_shared<cc::IndependentConfigItemConstraint>(true)});
    EXPECT_EQ(recorder.fully, 1);
    EXPECT_EQ(recorder.plain, 1);
}

} // namespace
