#include <channel_config/boolean_constraints.h>
#include <channel_config/channel_ids_constraint.h>
#include <channel_config/config_constraints.h>
#include <channel_config/file_path_constraint.h>
#include <channel_config/item_link_constraints.h>

namespace channel_config {

using config_items::IfConfigItemConstraint;
using config_items::detail::sameClassEquals;

namespace {
template <class Own>
std::shared_ptr<IfConfigItemConstraint> cloneOf(const Own& self)
{
    return std::make_shared<Own>(self);
}
} // namespace

bool ConfigurableDuringAcquisitionConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> ConfigurableDuringAcquisitionConstraint::clone() const
{
    return cloneOf(*this);
}

bool ReadOnlyConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> ReadOnlyConstraint::clone() const
{
    return cloneOf(*this);
}

bool DerivedValueConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> DerivedValueConstraint::clone() const
{
    return cloneOf(*this);
}

bool IndependentConfigItemConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> IndependentConfigItemConstraint::clone() const
{
    return cloneOf(*this);
}

bool FullyIndependentSampleRateConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> FullyIndependentSampleRateConstraint::clone() const
{
    return cloneOf(*this);
}

bool DependentCfgItemConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> DependentCfgItemConstraint::clone() const
{
    return cloneOf(*this);
}

bool CoupledValueItemConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> CoupledValueItemConstraint::clone() const
{
    return cloneOf(*this);
}

bool ChannelIdsConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> ChannelIdsConstraint::clone() const
{
    return cloneOf(*this);
}

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

bool FilePathConstraint::equals(const IfConfigItemConstraint& other) const
{
    return sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> FilePathConstraint::clone() const
{
    return cloneOf(*this);
}

bool ConfigConstraints::empty() const
{
    return m_options.empty() && !m_visibility && !m_derived_value && !m_configurable_during_acqusition &&
           !m_fully_indepentend_sample_rate && !m_dependent_cfg_item && !m_coupled_value_item &&
           m_ranges.empty() && m_others.empty() && !m_independent_cfg_item && !m_read_only &&
           !m_channel_ids && !m_file_path && !m_item_hint;
}

} // namespace channel_config
