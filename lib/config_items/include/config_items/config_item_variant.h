#pragma once

#include <channel_config/channel_id.h>
#include <config_items/config_enums.h>
#include <config_items/decorated_number_config_item.h>
#include <config_items/generic_enum_config_item.h>
#include <config_items/invalid_config_item.h>
#include <config_items/range_config_item.h>
#include <config_items/rational_scalar_config_item.h>
#include <config_items/scalar_config_item.h>
#include <config_items/single_value_config_item.h>
#include <config_items/string_config_item.h>
#include <config_items/value_list_config_item.h>

#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>

namespace channel_config {

/// The value of one configuration key. The index of the alternative is the stored
/// discriminant: keep the order, append new alternatives at the end only.
using ConfigItemVariant =
    std::variant<config_items::StringConfigItem,                                              // 0
                 config_items::SingleValueConfigItem<double>,                                 // 1
                 config_items::ScalarConfigItem,                                              // 2
                 config_items::SingleValueConfigItem<int>,                                    // 3
                 config_items::SingleValueConfigItem<unsigned int>,                           // 4
                 config_items::SingleValueConfigItem<bool>,                                   // 5
                 config_items::RangeConfigItem<double>,                                       // 6
                 config_items::ValueListConfigItem<std::string>,                              // 7
                 config_items::ValueListConfigItem<config_items::TupleValue<double, double>>, // 8
                 config_items::DecoratedNumberConfigItem,                                     // 9
                 config_items::SingleValueConfigItem<UserScalingMode>,                        // 10
                 config_items::SingleValueConfigItem<DAQChannelType>,                         // 11
                 config_items::SingleValueConfigItem<SampleOccurrenceType>,                   // 12
                 config_items::SingleValueConfigItem<DAQSampleResolution>,                    // 13
                 config_items::SingleValueConfigItem<PhysicalQuantity>,                       // 14
                 config_items::GenericEnumConfigItem,                                         // 15
                 config_items::SingleValueConfigItem<ChannelID>,                              // 16
                 config_items::RationalScalarConfigItem,                                      // 17
                 config_items::ValueListConfigItem<ChannelID>,                                // 18
                 config_items::InvalidConfigItem>;                                            // 19

constexpr std::size_t CONFIG_ITEM_COUNT = std::variant_size_v<ConfigItemVariant>;

namespace detail {
template <typename T, typename Variant>
struct ConfigItemIndex;

template <typename T, typename... Items>
struct ConfigItemIndex<T, std::variant<Items...>>
{
    static constexpr std::size_t find()
    {
        constexpr bool matches[] = {std::is_same_v<T, Items>...};
        std::size_t found = sizeof...(Items);
        for (std::size_t i = 0; i < sizeof...(Items); ++i)
            if (matches[i])
                found = i;
        return found;
    }
    static constexpr std::size_t value = find();
    static_assert(value < sizeof...(Items), "not an alternative of ConfigItemVariant");
};
} // namespace detail

/// The discriminant of item class @p T: configItemIndex<ScalarConfigItem> == 2.
template <typename T>
inline constexpr std::size_t configItemIndex = detail::ConfigItemIndex<T, ConfigItemVariant>::value;

/// The type name of an alternative as a template: "String (%1)" and "Enum %1" keep
/// their placeholder. "UNKNOWN" for an index outside the variant.
std::string configItemTypeName(std::size_t index);

/// The type name of the item held, with the size hint or the enum type put in for %1.
std::string configItemTypeName(const ConfigItemVariant& item);

/// A default-constructed item of alternative @p index; nothing for an index outside.
std::optional<ConfigItemVariant> makeConfigItem(std::size_t index);

/// The item held, through its common base.
const config_items::IfConfigItem& asConfigItem(const ConfigItemVariant& item);

/// The text form of the item held.
std::string toString(const ConfigItemVariant& item);

} // namespace channel_config
