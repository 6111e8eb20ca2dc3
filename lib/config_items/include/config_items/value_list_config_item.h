#pragma once

#include <config_items/if_config_item.h>
#include <config_items/item_values.h>

#include <string>
#include <typeinfo>
#include <vector>

namespace config_items {

/// Two values that travel together, such as the x and y of a point.
template <typename First, typename Second>
struct TupleValue
{
    First first{};
    Second second{};
};

template <typename First, typename Second>
bool valuesEqual(const TupleValue<First, Second>& a, const TupleValue<First, Second>& b)
{
    return valuesEqual(a.first, b.first) && valuesEqual(a.second, b.second);
}

namespace detail {
/// Each string in double quotes with `"`, `'` and `\` escaped by a backslash, joined by ", ".
std::string listText(const std::vector<std::string>& values);
/// Each point as "(x,y)", joined by ", ".
std::string listText(const std::vector<TupleValue<double, double>>& values);
/// Decimal ids joined by ", ".
std::string listText(const std::vector<channel_config::ChannelID>& values);
} // namespace detail

/// An ordered list of values.
template <typename T>
class ValueListConfigItem : public IfValueListConfigItem
{
public:
    using value_type = T;

    ValueListConfigItem() = default;
    explicit ValueListConfigItem(std::vector<T> values) : m_values(std::move(values)) {}

    const std::vector<T>& getValues() const { return m_values; }

    std::string toString() const override { return detail::listText(m_values); }

    bool equals(const IfConfigItem& other) const override
    {
        if (typeid(other) != typeid(*this))
            return false;
        const auto& that = static_cast<const ValueListConfigItem&>(other).m_values;
        if (m_values.size() != that.size())
            return false;
        for (std::size_t i = 0; i < m_values.size(); ++i)
            if (!valuesEqual(m_values[i], that[i]))
                return false;
        return true;
    }

private:
    std::vector<T> m_values;
};

} // namespace config_items
