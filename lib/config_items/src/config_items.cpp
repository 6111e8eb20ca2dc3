#include <config_items/decorated_number_config_item.h>
#include <config_items/generic_enum_config_item.h>
#include <config_items/invalid_config_item.h>
#include <config_items/item_values.h>
#include <config_items/rational_scalar_config_item.h>
#include <config_items/scalar_config_item.h>
#include <config_items/string_config_item.h>
#include <config_items/value_list_config_item.h>

#include <uni_base/uni_assert.h>

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace config_items {

std::string doubleToString(double value)
{
    if (std::isnan(value))
        return std::signbit(value) ? "-nan" : "nan";
    if (std::isinf(value))
        return value < 0 ? "-inf" : "inf";
    // fmt, unlike printf, ignores the C locale, so a decimal comma never sneaks in.
    return fmt::format("{:.17g}", value);
}

bool doublesEqual(double a, double b)
{
    if (a == b)
        return true;
    return (std::isnan(a) && std::isnan(b)) || (std::isinf(a) && std::isinf(b));
}

namespace detail {

std::string valueText(double value)
{
    return doubleToString(value);
}

std::string valueText(int value)
{
    return std::to_string(value);
}

std::string valueText(unsigned int value)
{
    return std::to_string(value);
}

std::string valueText(bool value)
{
    return value ? "true" : "false";
}

std::string valueText(channel_config::ChannelID value)
{
    return value.toString();
}

std::string listText(const std::vector<std::string>& values)
{
    std::string text;
    for (const std::string& value : values) {
        if (!text.empty())
            text += ", ";
        text += '"';
        for (const char c : value) {
            if (c == '"' || c == '\'' || c == '\\')
                text += '\\';
            text += c;
        }
        text += '"';
    }
    return text;
}

std::string listText(const std::vector<TupleValue<double, double>>& values)
{
    std::string text;
    for (const auto& point : values) {
        if (!text.empty())
            text += ", ";
        text += fmt::format("({},{})", doubleToString(point.first), doubleToString(point.second));
    }
    return text;
}

std::string listText(const std::vector<channel_config::ChannelID>& values)
{
    std::string text;
    for (const auto& id : values) {
        if (!text.empty())
            text += ", ";
        text += id.toString();
    }
    return text;
}

} // namespace detail

// Items of a class with a typed comparison forward to it; a cast that fails means
// another class, which is simply not equal.
template <typename Item>
static bool equalsSameClass(const Item& self, const IfConfigItem& other)
{
    if (typeid(other) != typeid(self))
        return false;
    try {
        return self.equals(dynamic_cast<const Item&>(other));
    } catch (const std::bad_cast&) {
        return false;
    }
}

std::string StringConfigItem::toString() const
{
    return m_value;
}

bool StringConfigItem::equals(const IfConfigItem& other) const
{
    return equalsSameClass(*this, other);
}

bool StringConfigItem::equals(const StringConfigItem& other) const
{
    return m_value == other.m_value && m_size_hint == other.m_size_hint;
}

std::string ScalarConfigItem::toString() const
{
    if (m_unit.empty())
        return doubleToString(m_value);
    return fmt::format("{} {}", doubleToString(m_value), m_unit);
}

bool ScalarConfigItem::equals(const IfConfigItem& other) const
{
    return equalsSameClass(*this, other);
}

bool ScalarConfigItem::equals(const ScalarConfigItem& other) const
{
    return doublesEqual(m_value, other.m_value) && m_unit == other.m_unit;
}

std::string DecoratedNumberConfigItem::toString() const
{
    return fmt::format("{}{}{}", m_prefix, doubleToString(m_value), m_postfix);
}

bool DecoratedNumberConfigItem::equals(const IfConfigItem& other) const
{
    return equalsSameClass(*this, other);
}

bool DecoratedNumberConfigItem::equals(const DecoratedNumberConfigItem& other) const
{
    return doublesEqual(m_value, other.m_value) && m_prefix == other.m_prefix && m_postfix == other.m_postfix;
}

std::string GenericEnumConfigItem::toString() const
{
    if (m_enum_type.empty())
        return m_value;
    return m_enum_type + ":" + m_value;
}

bool GenericEnumConfigItem::equals(const IfConfigItem& other) const
{
    if (typeid(other) != typeid(*this))
        return false;
    const auto& that = static_cast<const GenericEnumConfigItem&>(other);
    return m_enum_type == that.m_enum_type && m_value == that.m_value;
}

RationalScalarConfigItem::RationalScalarConfigItem(std::int64_t numerator, std::int64_t denominator,
                                                   std::string unit)
    : m_unit(std::move(unit))
{
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    if (!UNI_ASSERT(denominator != 0) || !UNI_ASSERT(numerator != lowest && denominator != lowest))
        return;
    m_value.assign(numerator, denominator);
}

double RationalScalarConfigItem::toDouble() const
{
    return boost::rational_cast<double>(m_value);
}

std::string RationalScalarConfigItem::toString() const
{
    std::string text = std::to_string(m_value.numerator());
    if (m_value.denominator() != 1)
        text += "/" + std::to_string(m_value.denominator());
    if (!m_unit.empty())
        text += " " + m_unit;
    return text;
}

bool RationalScalarConfigItem::equals(const IfConfigItem& other) const
{
    if (typeid(other) != typeid(*this))
        return false;
    const auto& that = static_cast<const RationalScalarConfigItem&>(other);
    return m_value == that.m_value && m_unit == that.m_unit;
}

std::string InvalidConfigItem::toString() const
{
    return m_message.empty() ? std::string("InvalidConfigItem") : m_message;
}

bool InvalidConfigItem::equals(const IfConfigItem& other) const
{
    if (typeid(other) != typeid(*this))
        return false;
    return m_message == static_cast<const InvalidConfigItem&>(other).m_message;
}

} // namespace config_items
