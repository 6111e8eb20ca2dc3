#pragma once

// Readable gtest output for items and variants of items.

#include <config_items/config_item_variant.h>

#include <ostream>
#include <type_traits>
#include <typeinfo>

namespace config_items {

template <typename Item, typename = std::enable_if_t<std::is_base_of_v<IfConfigItem, Item>>>
std::ostream& operator<<(std::ostream& out, const Item& item)
{
    return out << typeid(Item).name() << " \"" << item.toString() << '"';
}

} // namespace config_items
