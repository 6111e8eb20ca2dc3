#pragma once

#include <config_items/if_config_item_constraint.h>
#include <config_items/scalar_config_item.h>

#include <utility>

namespace config_items {

/// Inclusive bounds a value must lie within.
class IfRangeConstraint : public IfConfigItemConstraint
{};

/// Bounds of type @p T (double, int, unsigned int, or a ScalarConfigItem with its unit).
template <typename T>
class ValueRangeConstraint : public IfRangeConstraint
{
public:
    using value_type = T;

    ValueRangeConstraint(T lower, T upper) : m_lower(std::move(lower)), m_upper(std::move(upper)) {}

    const T& getLower() const { return m_lower; }
    const T& getUpper() const { return m_upper; }

    bool equals(const IfConfigItemConstraint& other) const override
    {
        const auto* that = dynamic_cast<const ValueRangeConstraint*>(&other);
        return that && boundEquals(m_lower, that->m_lower) && boundEquals(m_upper, that->m_upper);
    }

    std::shared_ptr<IfConfigItemConstraint> clone() const override
    {
        return std::make_shared<ValueRangeConstraint>(*this);
    }

private:
    static bool boundEquals(const T& a, const T& b)
    {
        if constexpr (std::is_base_of_v<IfConfigItem, T>)
            return a.equals(b);
        else
            return a == b;
    }

    T m_lower;
    T m_upper;
};

} // namespace config_items
