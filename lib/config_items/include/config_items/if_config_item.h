#pragma once

#include <uni_base/countable.h>

#include <string>
#include <type_traits>

namespace config_items {

/// A typed configuration value. Every item prints itself and compares by class and
/// fields; parsing from text is done by the variant's parser, which knows the target.
class IfConfigItem : public uni::Countable<IfConfigItem>
{
public:
    virtual ~IfConfigItem() = default;
    virtual std::string toString() const = 0;
    /// True when @p other is of the same class with the same fields.
    virtual bool equals(const IfConfigItem& other) const = 0;
};

/// An item holding one value.
class IfValueConfigItem : public IfConfigItem
{};

/// An item holding a list of values.
class IfValueListConfigItem : public IfConfigItem
{};

/// Items compare through equals(), so that the variant and containers of items can use ==.
template <typename Item, typename = std::enable_if_t<std::is_base_of_v<IfConfigItem, Item>>>
bool operator==(const Item& a, const Item& b)
{
    return a.equals(b);
}

template <typename Item, typename = std::enable_if_t<std::is_base_of_v<IfConfigItem, Item>>>
bool operator!=(const Item& a, const Item& b)
{
    return !a.equals(b);
}

} // namespace config_items
