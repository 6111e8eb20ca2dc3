#pragma once

#include <config_items/config_item_variant.h>
#include <config_items/if_config_item_constraint.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace config_items {

/// One permitted value of an item, with the label shown for it.
class IfOptionConstraint : public IfConfigItemConstraint
{
public:
    virtual const std::string& getLabel() const = 0;
    /// The type name of the option's value as the item texts give it ("SInt32", "Enum %1"
    /// filled in), or "UNKNOWN" for a value that no configuration item holds.
    virtual std::string getTypeName() const = 0;
};

namespace detail {
template <typename T, typename Variant>
struct IsAlternative;
template <typename T, typename... Items>
struct IsAlternative<T, std::variant<Items...>> : std::bool_constant<(std::is_same_v<T, Items> || ...)>
{};
template <typename T>
inline constexpr bool isConfigItemAlternative = IsAlternative<T, channel_config::ConfigItemVariant>::value;
} // namespace detail

/// An option whose value is @p T: an item class or a plain value (number, flag,
/// enumeration, channel id) held the way a SingleValueConfigItem<T> holds it.
template <typename T>
class OptionConstraint : public ConstraintBase<OptionConstraint<T>, IfOptionConstraint>
{
public:
    using value_type = T;

    OptionConstraint(std::string label, T value) : m_label(std::move(label)), m_value(std::move(value)) {}

    const std::string& getLabel() const override { return m_label; }
    const T& getValue() const { return m_value; }
    /// Items compare through their equals(), plain values with ==.
    auto fields() const { return std::tie(m_label, m_value); }

    std::string getTypeName() const override
    {
        if constexpr (detail::isConfigItemAlternative<T>)
            return channel_config::configItemTypeName(channel_config::ConfigItemVariant(m_value));
        else if constexpr (detail::isConfigItemAlternative<SingleValueConfigItem<T>>)
            return channel_config::configItemTypeName(
                channel_config::ConfigItemVariant(SingleValueConfigItem<T>(m_value)));
        else
            return channel_config::configItemTypeName(channel_config::CONFIG_ITEM_COUNT);
    }

private:
    std::string m_label;
    T m_value;
};

} // namespace config_items
