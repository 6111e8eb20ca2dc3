#include <channel_config/config_constraints.h>
#include <channel_config/file_path_constraint.h>

namespace channel_config {

const char* FilePathConstraint::selectionTypeName(SelectionType type)
{
    switch (type) {
    case INPUT:
        return "Input";
    case OUTPUT:
        return "Output";
    case DIRECTORY:
        return "Directory";
    }
    return "UNKNOWN";
}

bool ConfigConstraints::empty() const
{
    return m_options.empty() && !m_visibility && !m_derived_value && !m_configurable_during_acqusition &&
           !m_fully_indepentend_sample_rate && !m_dependent_cfg_item && !m_coupled_value_item &&
           m_ranges.empty() && m_others.empty() && !m_independent_cfg_item && !m_read_only &&
           !m_channel_ids && !m_file_path && !m_item_hint;
}

} // namespace channel_config
