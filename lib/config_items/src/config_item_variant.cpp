#include <config_items/config_item_variant.h>

#include <array>
#include <utility>

namespace channel_config {
namespace {

constexpr std::array<const char*, CONFIG_ITEM_COUNT> TYPE_NAMES = {
    "String (%1)",      "FloatingPoint",    "Scalar",
    "SInt32",           "UInt32",           "Bool",
    "DoubleRange",      "StringList",       "PointList",
    "DecoratedNumber",  "UserScalingMode",  "ChannelType",
    "SampleOccurrence", "SampleResolution", "PhysicalQuantity",
    "Enum %1",          "ChannelID",        "RationalScalar",
    "ChannelIDList",    "Invalid",
};

static_assert(configItemIndex<config_items::StringConfigItem> == 0);
static_assert(configItemIndex<config_items::ScalarConfigItem> == 2);
static_assert(configItemIndex<config_items::DecoratedNumberConfigItem> == 9);
static_assert(configItemIndex<config_items::GenericEnumConfigItem> == 15);
static_assert(configItemIndex<config_items::RationalScalarConfigItem> == 17);
static_assert(configItemIndex<config_items::InvalidConfigItem> == 19);

std::string fillPlaceholder(std::string name, const std::string& argument)
{
    const auto at = name.find("%1");
    if (at != std::string::npos)
        name.replace(at, 2, argument);
    return name;
}

template <std::size_t... Indices>
std::optional<ConfigItemVariant> makeByIndex(std::size_t index, std::index_sequence<Indices...>)
{
    std::optional<ConfigItemVariant> item;
    const auto makeIf = [&](auto alternative) {
        if (index == decltype(alternative)::value)
            item.emplace(std::in_place_index<decltype(alternative)::value>);
    };
    (makeIf(std::integral_constant<std::size_t, Indices>()), ...);
    return item;
}

} // namespace

std::string configItemTypeName(std::size_t index)
{
    return index < TYPE_NAMES.size() ? TYPE_NAMES[index] : "UNKNOWN";
}

std::string configItemTypeName(const ConfigItemVariant& item)
{
    if (const auto* text = std::get_if<config_items::StringConfigItem>(&item))
        return fillPlaceholder(configItemTypeName(item.index()), std::to_string(text->getSizeHint()));
    if (const auto* generic = std::get_if<config_items::GenericEnumConfigItem>(&item))
        return fillPlaceholder(configItemTypeName(item.index()), generic->getEnumType());
    return configItemTypeName(item.index());
}

std::optional<ConfigItemVariant> makeConfigItem(std::size_t index)
{
    return makeByIndex(index, std::make_index_sequence<CONFIG_ITEM_COUNT>());
}

const config_items::IfConfigItem& asConfigItem(const ConfigItemVariant& item)
{
    return std::visit(
        [](const auto& alternative) -> const config_items::IfConfigItem& { return alternative; }, item);
}

std::string toString(const ConfigItemVariant& item)
{
    return asConfigItem(item).toString();
}

} // namespace channel_config
