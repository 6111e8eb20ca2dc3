#pragma once

#include <config_items/if_config_item.h>
#include <config_items/item_values.h>

#include <typeinfo>

namespace config_items {

/// One plain value: a number, a flag, an enumeration or a channel id.
template <typename T>
class SingleValueConfigItem : public IfValueConfigItem
{
public:
    using value_type = T;

    SingleValueConfigItem() = default;
    explicit SingleValueConfigItem(T value) : m_value(value) {}

    const T& getValue() const { return m_value; }
    void setValue(T value) { m_value = value; }

    std::string toString() const override { return detail::valueText(m_value); }

    bool equals(const IfConfigItem& other) const override
    {
        if (typeid(other) != typeid(*this))
            return false;
        return valuesEqual(m_value, static_cast<const SingleValueConfigItem&>(other).m_value);
    }

protected:
    T m_value{};
};

} // namespace config_items
