#pragma once

#include <config_items/if_config_item_constraint.h>
#include <config_items/scalar_config_item.h>

#include <tuple>
#include <utility>

namespace config_items {

/// Inclusive bounds a value must lie within.
class IfRangeConstraint : public IfConfigItemConstraint
{};

/// Bounds of type @p T (double, int, unsigned int, or a ScalarConfigItem with its unit).
template <typename T>
class ValueRangeConstraint : public ConstraintBase<ValueRangeConstraint<T>, IfRangeConstraint>
{
public:
    using value_type = T;

    ValueRangeConstraint(T lower, T upper) : m_lower(std::move(lower)), m_upper(std::move(upper)) {}

    const T& getLower() const { return m_lower; }
    const T& getUpper() const { return m_upper; }
    auto fields() const { return std::tie(m_lower, m_upper); }

private:
    T m_lower;
    T m_upper;
};

} // namespace config_items
