#include <lum_config_items/qcell_editor_constraints.h>

#include <lum_config_items/ferrin_config_item_utils.h>
#include <lum_config_items/qconfig_value_types.h>

#include <uni_base/uni_assert.h>
#include <uni_units/converter.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace ferrin_config {

namespace ci = config_items;
namespace cc = channel_config;

namespace {

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

int clampToInt(std::uint32_t value)
{
    return static_cast<int>(std::min<std::uint32_t>(value, std::numeric_limits<int>::max()));
}

/// The flat description again as a list, one-only kinds after the repeatable ones.
std::vector<std::shared_ptr<ci::IfConfigItemConstraint>> flatten(const cc::ConfigConstraints& flat)
{
    std::vector<std::shared_ptr<ci::IfConfigItemConstraint>> list(flat.m_options.begin(),
                                                                  flat.m_options.end());
    list.insert(list.end(), flat.m_ranges.begin(), flat.m_ranges.end());
    list.insert(list.end(), flat.m_others.begin(), flat.m_others.end());
    auto add = [&list](const auto& slot) {
        if (slot)
            list.push_back(std::make_shared<std::decay_t<decltype(*slot)>>(*slot));
    };
    add(flat.m_visibility);
    add(flat.m_derived_value);
    add(flat.m_configurable_during_acqusition);
    add(flat.m_fully_indepentend_sample_rate);
    add(flat.m_dependent_cfg_item);
    add(flat.m_coupled_value_item);
    add(flat.m_independent_cfg_item);
    add(flat.m_read_only);
    add(flat.m_channel_ids);
    add(flat.m_file_path);
    add(flat.m_item_hint);
    return list;
}

/// @p value in @p to_unit when both units are known, else unchanged.
double inUnit(double value, const QString& from_unit, const QString& to_unit)
{
    if (from_unit.isEmpty() || to_unit.isEmpty() || from_unit == to_unit)
        return value;
    double converted = value;
    if (units::simple::Converter().convert(value, from_unit.toStdString(), &converted, to_unit.toStdString()))
        return converted;
    return value;
}

} // namespace

QCellEditorListItem::QCellEditorListItem(QString text, QVariant value, QObject* parent)
    : QObject(parent), m_text(std::move(text)), m_value(std::move(value))
{}

QFilePathConstraint::QFilePathConstraint(const cc::FilePathConstraint& constraint, QObject* parent)
    : QObject(parent), m_selection_type(constraint.getSelectionType()),
      m_multi_selection(constraint.isMultiSelection()), m_dialog_title(qs(constraint.getTitle())),
      m_default_path(qs(constraint.getPath()))
{
    for (const std::string& filter : constraint.getFilters())
        m_name_filters << qs(filter);
}

bool QFilePathConstraint::selectExisting() const
{
    return m_selection_type == cc::FilePathConstraint::INPUT;
}

bool QFilePathConstraint::selectFolder() const
{
    return m_selection_type == cc::FilePathConstraint::DIRECTORY;
}

bool QFilePathConstraint::selectMultiple() const
{
    return m_multi_selection;
}

QCellEditorConstraints::QCellEditorConstraints(QObject* parent)
    : QObject(parent), m_min_value(-std::numeric_limits<double>::infinity()),
      m_max_value(std::numeric_limits<double>::infinity())
{}

QCellEditorConstraints::QCellEditorConstraints(
    const std::vector<std::shared_ptr<ci::IfConfigItemConstraint>>& constraints, QObject* parent)
    : QCellEditorConstraints(parent)
{
    // The flat reduction first: it is where a doubled one-only kind is caught.
    cc::ConfigConstraints flat;
    cc::ConfigConstraintsVisitor(&flat).visitAll(constraints);
    QCellEditorConstraintsVisitor(this).visitAll(flatten(flat));
}

template <typename T, typename Signal>
void QCellEditorConstraints::assign(T& member, T value, Signal signal)
{
    if (member == value)
        return;
    member = std::move(value);
    Q_EMIT(this->*signal)();
}

void QCellEditorConstraints::addOption(const QString& text, const QVariant& value)
{
    m_select_options.append(new QCellEditorListItem(text, value, this));
    m_string_select_options.append(text);
    Q_EMIT selectOptionsChanged();
    Q_EMIT stringSelectOptionsChanged();
}

void QCellEditorConstraints::addRange(double lower, const QString& lower_unit, double upper,
                                      const QString& upper_unit)
{
    if (!m_has_range) {
        m_has_range = true;
        m_min_unit = lower_unit;
        assign(m_unit, upper_unit, &QCellEditorConstraints::unitChanged);
        assign(m_max_value, upper, &QCellEditorConstraints::maxValueChanged);
        assign(m_min_value, lower, &QCellEditorConstraints::minValueChanged);
        return;
    }
    assign(m_max_value, std::max(m_max_value, inUnit(upper, upper_unit, m_unit)),
           &QCellEditorConstraints::maxValueChanged);
    assign(m_min_value, std::min(m_min_value, inUnit(lower, lower_unit, m_min_unit)),
           &QCellEditorConstraints::minValueChanged);
}

void QCellEditorConstraints::setRegularExpression(const QString& pattern)
{
    const bool had = hasRegularExpression();
    const QRegExp expression(pattern);
    if (expression == m_regular_expression)
        return;
    m_regular_expression = expression;
    UNI_ASSERT(m_regular_expression.isValid());
    Q_EMIT regularExpressionChanged();
    if (had != hasRegularExpression())
        Q_EMIT hasRegularExpressionChanged();
}

// --- visitor -----------------------------------------------------------------------------

QCellEditorConstraintsVisitor::QCellEditorConstraintsVisitor(QCellEditorConstraints* target)
    : m_target(target)
{
    UNI_ASSERT(m_target);
}

void QCellEditorConstraintsVisitor::visitAll(
    const std::vector<std::shared_ptr<ci::IfConfigItemConstraint>>& constraints)
{
    if (!m_target)
        return;
    for (const auto& constraint : constraints)
        if (constraint)
            ci::dispatchVisit(*this, *constraint);
}

void QCellEditorConstraintsVisitor::editor(QCellEditorConstraints::EditorType type)
{
    if (m_target->m_editor_type == QCellEditorConstraints::EDITOR_NONE)
        m_target->assign(m_target->m_editor_type, type, &QCellEditorConstraints::editorTypeChanged);
}

void QCellEditorConstraintsVisitor::option(const std::string& label, const QVariant& value,
                                           QCellEditorConstraints::EditorType type, bool free_text)
{
    m_target->addOption(qs(label), value);
    editor(type);
    // Options of a number or text are suggestions; of an enumeration, the only choices.
    if (!free_text) {
        m_target->assign(m_target->m_freely_editable, false, &QCellEditorConstraints::freelyEditableChanged);
        m_target->assign(m_target->m_strict_validation, true,
                         &QCellEditorConstraints::strictValidationChanged);
    }
}

using Editor = QCellEditorConstraints;

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<ci::InvalidConfigItem>& c)
{
    option(c.getLabel(), QVariant(), Editor::EDITOR_NONE, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<bool>& c)
{
    option(c.getLabel(), c.getValue(), Editor::EDITOR_BOOL, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<ci::StringConfigItem>& c)
{
    option(c.getLabel(), qs(c.getValue().getValue()), Editor::EDITOR_STRING, true);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<double>& c)
{
    option(c.getLabel(), c.getValue(), Editor::EDITOR_FLOAT, true);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<unsigned int>& c)
{
    option(c.getLabel(), c.getValue(), Editor::EDITOR_INT, true);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<int>& c)
{
    option(c.getLabel(), c.getValue(), Editor::EDITOR_INT, true);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<ci::ScalarConfigItem>& c)
{
    option(c.getLabel(), configItemToVariant(c.getValue()), Editor::EDITOR_FLOAT, true);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<ci::DecoratedNumberConfigItem>& c)
{
    option(c.getLabel(), configItemToVariant(c.getValue()), Editor::EDITOR_FLOAT, true);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<ci::RangeConfigItem<double>>& c)
{
    option(c.getLabel(), configItemToVariant(c.getValue()), Editor::EDITOR_STRING, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<ci::GenericEnumConfigItem>& c)
{
    option(c.getLabel(), configItemToVariant(c.getValue()), Editor::EDITOR_STRING, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<cc::DAQChannelType>& c)
{
    option(c.getLabel(), configItemToVariant(ci::SingleValueConfigItem(c.getValue())), Editor::EDITOR_STRING,
           false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<cc::SampleOccurrenceType>& c)
{
    option(c.getLabel(), configItemToVariant(ci::SingleValueConfigItem(c.getValue())), Editor::EDITOR_STRING,
           false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<cc::DAQSampleResolution>& c)
{
    option(c.getLabel(), configItemToVariant(ci::SingleValueConfigItem(c.getValue())), Editor::EDITOR_STRING,
           false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<cc::ChannelID>& c)
{
    option(c.getLabel(), static_cast<qulonglong>(c.getValue().toUInt64()), Editor::EDITOR_CHANNEL, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<cc::UserScalingMode>& c)
{
    option(c.getLabel(), configItemToVariant(ci::SingleValueConfigItem(c.getValue())), Editor::EDITOR_STRING,
           false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<timing::TimeSource>& c)
{
    option(c.getLabel(),
           QVariant::fromValue(QEnumType(QEnumType::TIMING_TIME_SOURCE, static_cast<int>(c.getValue()))),
           Editor::EDITOR_STRING, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::OptionConstraint<timing::IrigCode>& c)
{
    option(c.getLabel(),
           QVariant::fromValue(QEnumType(QEnumType::TIMING_IRIG_CODE, static_cast<int>(c.getValue()))),
           Editor::EDITOR_STRING, false);
}

void QCellEditorConstraintsVisitor::visit(const ci::ValueRangeConstraint<double>& c)
{
    m_target->addRange(c.getLower(), {}, c.getUpper(), {});
    editor(Editor::EDITOR_FLOAT);
}

void QCellEditorConstraintsVisitor::visit(const ci::ValueRangeConstraint<ci::ScalarConfigItem>& c)
{
    m_target->addRange(c.getLower().getValue(), qs(c.getLower().getUnit()), c.getUpper().getValue(),
                       qs(c.getUpper().getUnit()));
    editor(Editor::EDITOR_FLOAT);
}

void QCellEditorConstraintsVisitor::visit(const ci::ValueRangeConstraint<int>& c)
{
    m_target->addRange(c.getLower(), {}, c.getUpper(), {});
    editor(Editor::EDITOR_INT);
}

void QCellEditorConstraintsVisitor::visit(const ci::ValueRangeConstraint<unsigned int>& c)
{
    m_target->addRange(c.getLower(), {}, c.getUpper(), {});
    editor(Editor::EDITOR_INT);
}

void QCellEditorConstraintsVisitor::visit(const ci::StringLengthConstraint&)
{
    editor(Editor::EDITOR_STRING);
}

void QCellEditorConstraintsVisitor::visit(const ci::ListElementCountConstraint& c)
{
    m_target->assign(m_target->m_min_list_items, clampToInt(c.getMinimum()), &Editor::minListItemsChanged);
    m_target->assign(m_target->m_max_list_items, clampToInt(c.getMaximum()), &Editor::maxListItemsChanged);
}

void QCellEditorConstraintsVisitor::visit(const ci::VisibilityConstraint& c)
{
    m_target->assign(m_target->m_visibility,
                     c.getVisibility() == ci::VisibilityConstraint::NONE ? Editor::VISIBILITY_NONE
                                                                         : Editor::VISIBILITY_PUBLIC,
                     &Editor::visibilityChanged);
}

void QCellEditorConstraintsVisitor::visit(const ci::RegularExpressionConstraint& c)
{
    m_target->setRegularExpression(qs(c.getExpression()));
    editor(Editor::EDITOR_STRING);
    m_target->assign(m_target->m_strict_validation, true, &Editor::strictValidationChanged);
}

void QCellEditorConstraintsVisitor::visit(const ci::TransientConstraint&)
{
    // Whether a value is kept with the setup does not change how it is edited.
}

void QCellEditorConstraintsVisitor::visit(const ci::StringFormatConstraint&)
{
    editor(Editor::EDITOR_STRING);
    m_target->assign(m_target->m_strict_validation, true, &Editor::strictValidationChanged);
}

void QCellEditorConstraintsVisitor::visit(const ci::ItemHintConstraint& c)
{
    m_target->assign(m_target->m_item_hint, qs(c.getHint()), &Editor::itemHintChanged);
}

void QCellEditorConstraintsVisitor::visit(const cc::ConfigurableDuringAcquisitionConstraint& c)
{
    m_target->assign(m_target->m_configurable_during_acquisition, c.getValue(),
                     &Editor::configurableDuringAcquisitionChanged);
}

void QCellEditorConstraintsVisitor::visit(const cc::ReadOnlyConstraint& c)
{
    if (c.getValue())
        m_target->assign(m_target->m_read_only, true, &Editor::readOnlyChanged);
}

void QCellEditorConstraintsVisitor::visit(const cc::DerivedValueConstraint& c)
{
    // A derived value is computed from others: nothing to type in.
    if (c.getValue())
        m_target->assign(m_target->m_read_only, true, &Editor::readOnlyChanged);
}

void QCellEditorConstraintsVisitor::visit(const cc::DependentCfgItemConstraint&) {}

void QCellEditorConstraintsVisitor::visit(const cc::CoupledValueItemConstraint&) {}

void QCellEditorConstraintsVisitor::visit(const cc::FullyIndependentSampleRateConstraint&) {}

void QCellEditorConstraintsVisitor::visit(const cc::IndependentConfigItemConstraint&) {}

void QCellEditorConstraintsVisitor::visit(const cc::ChannelIdsConstraint& c)
{
    m_target->assign(m_target->m_max_channel_dimension, clampToInt(c.getMaxDimension()),
                     &Editor::maxChannelDimensionChanged);
    m_target->assign(m_target->m_channel_type, qs(c.getChannelType()), &Editor::channelTypeChanged);
    m_target->assign(m_target->m_max_list_items, clampToInt(c.getMaxCount()), &Editor::maxListItemsChanged);
    editor(Editor::EDITOR_CHANNEL);
}

void QCellEditorConstraintsVisitor::visit(const cc::FilePathConstraint& c)
{
    const bool had = m_target->hasFilePath();
    delete m_target->m_file_path;
    m_target->m_file_path = new QFilePathConstraint(c, m_target);
    Q_EMIT m_target->filePathChanged();
    if (!had)
        Q_EMIT m_target->hasFilePathChanged();
    editor(Editor::EDITOR_FILE);
}

} // namespace ferrin_config
