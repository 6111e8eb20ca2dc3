#pragma once

#include <config_items/basic_constraints.h>

namespace channel_config {

/// The item may be changed while a measurement runs.
class ConfigurableDuringAcquisitionConstraint : public config_items::BooleanConstraint
{
public:
    using BooleanConstraint::BooleanConstraint;
    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

/// The item is shown but cannot be edited.
class ReadOnlyConstraint : public config_items::BooleanConstraint
{
public:
    using BooleanConstraint::BooleanConstraint;
    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

/// The item's value follows from other items.
class DerivedValueConstraint : public config_items::BooleanConstraint
{
public:
    using BooleanConstraint::BooleanConstraint;
    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

/// The item may differ between channels that otherwise share their settings.
class IndependentConfigItemConstraint : public config_items::BooleanConstraint
{
public:
    using BooleanConstraint::BooleanConstraint;
    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

/// The sample rate may be set per channel, free of any group.
class FullyIndependentSampleRateConstraint : public IndependentConfigItemConstraint
{
public:
    using IndependentConfigItemConstraint::IndependentConfigItemConstraint;
    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

} // namespace channel_config
