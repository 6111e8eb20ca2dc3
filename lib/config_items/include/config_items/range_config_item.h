#pragma once

#include <config_items/if_config_item.h>
#include <config_items/item_values.h>

#include <locale>
#include <sstream>
#include <string>
#include <typeinfo>

namespace config_items {

/// A closed interval with a unit at each end, printed "-5 V .. 5 V".
template <typename T>
class RangeConfigItem : public IfValueConfigItem
{
public:
    RangeConfigItem() = default;
    RangeConfigItem(T min, T max, std::string min_unit = {}, std::string max_unit = {})
        : m_min(min), m_max(max), m_min_unit(std::move(min_unit)), m_max_unit(std::move(max_unit))
    {}

    const T& getMin() const { return m_min; }
    const T& getMax() const { return m_max; }
    const std::string& getMinUnit() const { return m_min_unit; }
    const std::string& getMaxUnit() const { return m_max_unit; }

    /// The bounds go through a default stream: six significant digits, unlike the
    /// other items, so a range prints short.
    std::string toString() const override
    {
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out << m_min;
        if (!m_min_unit.empty())
            out << ' ' << m_min_unit;
        out << " .. " << m_max;
        if (!m_max_unit.empty())
            out << ' ' << m_max_unit;
        return out.str();
    }

    bool equals(const IfConfigItem& other) const override
    {
        if (typeid(other) != typeid(*this))
            return false;
        const auto& that = static_cast<const RangeConfigItem&>(other);
        return valuesEqual(m_min, that.m_min) && valuesEqual(m_max, that.m_max) &&
               m_min_unit == that.m_min_unit && m_max_unit == that.m_max_unit;
    }

private:
    T m_min{};
    T m_max{};
    std::string m_min_unit;
    std::string m_max_unit;
};

} // namespace config_items
