#pragma once

#include <config_items/basic_constraints.h>

namespace channel_config {

/// The item may be changed while a measurement runs.
class ConfigurableDuringAcquisitionConstraint
    : public config_items::ConstraintBase<ConfigurableDuringAcquisitionConstraint,
                                          config_items::BooleanConstraint>
{
public:
    using ConstraintBase::ConstraintBase;
};

/// The item is shown but cannot be edited.
class ReadOnlyConstraint
    : public config_items::ConstraintBase<ReadOnlyConstraint, config_items::BooleanConstraint>
{
public:
    using ConstraintBase::ConstraintBase;
};

/// The item's value follows from other items.
class DerivedValueConstraint
    : public config_items::ConstraintBase<DerivedValueConstraint, config_items::BooleanConstraint>
{
public:
    using ConstraintBase::ConstraintBase;
};

/// The item may differ between channels that otherwise share their settings.
class IndependentConfigItemConstraint
    : public config_items::ConstraintBase<IndependentConfigItemConstraint, config_items::BooleanConstraint>
{
public:
    using ConstraintBase::ConstraintBase;
};

/// The sample rate may be set per channel, free of any group.
class FullyIndependentSampleRateConstraint
    : public config_items::ConstraintBase<FullyIndependentSampleRateConstraint,
                                          IndependentConfigItemConstraint>
{
public:
    using ConstraintBase::ConstraintBase;
};

} // namespace channel_config
