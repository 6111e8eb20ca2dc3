#pragma once

#include <config_items/if_config_item.h>

#include <boost/rational.hpp>

#include <cstdint>
#include <string>

namespace config_items {

/// An exact fraction with a unit, printed "1/3 s" (or "5 s" for a whole number).
/// The fraction is kept in lowest terms with a positive denominator.
class RationalScalarConfigItem : public IfValueConfigItem
{
public:
    using Rational = boost::rational<std::int64_t>;

    RationalScalarConfigItem() = default;
    RationalScalarConfigItem(Rational value, std::string unit) : m_value(value), m_unit(std::move(unit)) {}
    /// A zero denominator, or the smallest 64-bit number on either side (which has no
    /// positive counterpart), is a programming error: it asserts and gives 0.
    RationalScalarConfigItem(std::int64_t numerator, std::int64_t denominator, std::string unit);

    const Rational& getValue() const { return m_value; }
    std::int64_t getNumerator() const { return m_value.numerator(); }
    std::int64_t getDenominator() const { return m_value.denominator(); }
    const std::string& getUnit() const { return m_unit; }
    double toDouble() const;

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

private:
    Rational m_value;
    std::string m_unit;
};

} // namespace config_items
