#pragma once

#include <channel_config/boolean_constraints.h>
#include <channel_config/channel_ids_constraint.h>
#include <channel_config/file_path_constraint.h>
#include <channel_config/item_link_constraints.h>
#include <config_items/basic_constraints.h>
#include <config_items/option_constraint.h>
#include <config_items/range_constraint.h>

#include <memory>
#include <optional>
#include <vector>

namespace channel_config {

/// Everything the constraints of one configuration key say, reduced to one flat
/// description by ConfigConstraintsVisitor.
struct ConfigConstraints
{
    std::vector<std::shared_ptr<config_items::IfOptionConstraint>> m_options;
    std::optional<config_items::VisibilityConstraint> m_visibility;
    std::optional<DerivedValueConstraint> m_derived_value;
    std::optional<ConfigurableDuringAcquisitionConstraint> m_configurable_during_acqusition;
    std::optional<FullyIndependentSampleRateConstraint> m_fully_indepentend_sample_rate;
    std::optional<DependentCfgItemConstraint> m_dependent_cfg_item;
    std::optional<CoupledValueItemConstraint> m_coupled_value_item;
    std::vector<std::shared_ptr<config_items::IfRangeConstraint>> m_ranges;
    /// String length, list element count, expression and string format constraints.
    std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>> m_others;
    std::optional<IndependentConfigItemConstraint> m_independent_cfg_item;
    std::optional<ReadOnlyConstraint> m_read_only;
    std::optional<ChannelIdsConstraint> m_channel_ids;
    std::optional<FilePathConstraint> m_file_path;
    std::optional<config_items::ItemHintConstraint> m_item_hint;

    /// True when no constraint has been recorded.
    bool empty() const;
};

} // namespace channel_config
