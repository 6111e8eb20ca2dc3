#include <channel_config/config_constraints_visitor.h>

#include <uni_base/uni_assert.h>

namespace channel_config {

using namespace config_items;

ConfigConstraintsVisitor::ConfigConstraintsVisitor(ConfigConstraints* target) : m_config_constraints(target)
{
    UNI_ASSERT(m_config_constraints);
}

std::size_t
ConfigConstraintsVisitor::visitAll(const std::vector<std::shared_ptr<IfConfigItemConstraint>>& constraints)
{
    std::size_t taken = 0;
    for (const auto& constraint : constraints)
        if (constraint && config_items::dispatchVisit(*this, *constraint))
            ++taken;
    return taken;
}

// Every visit checks the target: a visitor built on null asserted once and stays harmless.

void ConfigConstraintsVisitor::visit(const IfOptionConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_options.push_back(
            std::dynamic_pointer_cast<IfOptionConstraint>(constraint.clone()));
}

void ConfigConstraintsVisitor::visit(const IfRangeConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_ranges.push_back(
            std::dynamic_pointer_cast<IfRangeConstraint>(constraint.clone()));
}

void ConfigConstraintsVisitor::keepOther(const IfConfigItemConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_others.push_back(constraint.clone());
}

void ConfigConstraintsVisitor::visit(const StringLengthConstraint& constraint)
{
    keepOther(constraint);
}

void ConfigConstraintsVisitor::visit(const ListElementCountConstraint& constraint)
{
    keepOther(constraint);
}

void ConfigConstraintsVisitor::visit(const RegularExpressionConstraint& constraint)
{
    keepOther(constraint);
}

void ConfigConstraintsVisitor::visit(const StringFormatConstraint& constraint)
{
    keepOther(constraint);
}

void ConfigConstraintsVisitor::visit(const VisibilityConstraint& constraint)
{
    if (!m_config_constraints)
        return;
    UNI_ASSERT(!m_config_constraints->m_visibility.has_value());
    m_config_constraints->m_visibility = constraint;
}

void ConfigConstraintsVisitor::visit(const ConfigurableDuringAcquisitionConstraint& constraint)
{
    if (!m_config_constraints)
        return;
    UNI_ASSERT(!(m_config_constraints->m_configurable_during_acqusition));
    m_config_constraints->m_configurable_during_acqusition = constraint;
}

void ConfigConstraintsVisitor::visit(const ReadOnlyConstraint& constraint)
{
    if (!m_config_constraints)
        return;
    UNI_ASSERT(!(m_config_constraints->m_read_only));
    m_config_constraints->m_read_only = constraint;
}

void ConfigConstraintsVisitor::visit(const DerivedValueConstraint& constraint)
{
    if (!m_config_constraints)
        return;
    UNI_ASSERT(!(m_config_constraints->m_derived_value));
    m_config_constraints->m_derived_value = constraint;
}

void ConfigConstraintsVisitor::visit(const FullyIndependentSampleRateConstraint& constraint)
{
    if (!m_config_constraints)
        return;
    UNI_ASSERT(!(m_config_constraints->m_fully_indepentend_sample_rate));
    m_config_constraints->m_fully_indepentend_sample_rate = constraint;
}

void ConfigConstraintsVisitor::visit(const IndependentConfigItemConstraint& constraint)
{
    if (!m_config_constraints)
        return;
    UNI_ASSERT(!(m_config_constraints->m_independent_cfg_item));
    m_config_constraints->m_independent_cfg_item = constraint;
}

// The links of an item are restated whole each time: a later list replaces the earlier one.

void ConfigConstraintsVisitor::visit(const DependentCfgItemConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_dependent_cfg_item = constraint;
}

void ConfigConstraintsVisitor::visit(const CoupledValueItemConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_coupled_value_item = constraint;
}

void ConfigConstraintsVisitor::visit(const ChannelIdsConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_channel_ids = constraint;
}

void ConfigConstraintsVisitor::visit(const FilePathConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_file_path = constraint;
}

void ConfigConstraintsVisitor::visit(const ItemHintConstraint& constraint)
{
    if (m_config_constraints)
        m_config_constraints->m_item_hint = constraint;
}

void ConfigConstraintsVisitor::visit(const TransientConstraint&)
{
    // Whether a value is stored with the setup is no concern of the display layer.
}

} // namespace channel_config
