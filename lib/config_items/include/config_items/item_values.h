#pragma once

#include <channel_config/channel_id.h>
#include <config_items/config_enums.h>

#include <string>
#include <type_traits>

namespace config_items {

/// "nan" or "inf" (with "-" when the sign bit is set), else the shortest form that
/// reads back exactly: 17 significant digits as printf's "%.17g", in any locale.
std::string doubleToString(double value);

/// Equal, or both not-a-number, or both infinite whatever their signs.
bool doublesEqual(double a, double b);

inline bool valuesEqual(double a, double b)
{
    return doublesEqual(a, b);
}

template <typename T>
bool valuesEqual(const T& a, const T& b)
{
    return a == b;
}

namespace detail {

std::string valueText(double value);
std::string valueText(int value);
std::string valueText(unsigned int value);
std::string valueText(bool value);
std::string valueText(channel_config::ChannelID value);

template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
std::string valueText(Enum value)
{
    return channel_config::enumToString(value);
}

} // namespace detail
} // namespace config_items
