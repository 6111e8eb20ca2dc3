#include <config_items/parse_string_visitor.h>

#include "config_item_exception.h"
#include "text_readers.h"

#include <uni_base/uni_assert.h>

#include <boost/regex.hpp>
#include <fmt/format.h>

#include <cmath>
#include <exception>

namespace channel_config {
namespace {

using namespace config_items;
namespace readers = config_items::detail;
using readers::readDouble;

// Each reader builds a complete new item or nothing; the caller swaps it in last,
// so a failure never leaves a half-written item behind.

/// Whole-text match. Boost gives up on pathological backtracking by throwing; for
/// us that is text that does not match.
bool matchWhole(const std::string& text, boost::smatch& match, const boost::regex& pattern)
{
    try {
        return boost::regex_match(text, match, pattern);
    } catch (const std::exception&) {
        return false;
    }
}

/// The number of a matched group, read with a decimal comma taken as a point.
std::optional<double> readGroupNumber(const boost::ssub_match& group)
{
    std::string number = group.str();
    for (char& c : number)
        if (c == ',')
            c = '.';
    return readDouble(number);
}

/// Matches the whole text and reads the number of the group "value".
std::optional<double> matchNumber(const std::string& text, boost::smatch& match, const boost::regex& pattern)
{
    if (!matchWhole(text, match, pattern))
        return std::nullopt;
    return readGroupNumber(match["value"]);
}

std::optional<ScalarConfigItem> readScalar(const std::string& text, const ScalarConfigItem& current)
{
    // An exact fraction first: "1/3 m" means the double nearest to a third. Other
    // texts skip the attempt, which would only end in an exception.
    if (readers::hasFractionForm(text)) {
        try {
            const RationalScalarConfigItem fraction = readers::readRationalScalar(text, false);
            return ScalarConfigItem(fraction.toDouble(), fraction.getUnit());
        } catch (const std::exception&) {
        }
    }
    static const boost::regex pattern(
        R"(\s*(?<value>[+-]?((\d+([\.,](\d+)?)?)|([\.,]\d+))([eE][+\-]?\d+)?)\s*(?<unit>.*?)\s*)");
    boost::smatch match;
    const auto value = matchNumber(text, match, pattern);
    if (!value)
        return std::nullopt;
    // A bare number keeps the unit the item has.
    const std::string unit = match["unit"].str();
    return ScalarConfigItem(*value, unit.empty() ? current.getUnit() : unit);
}

std::optional<RangeConfigItem<double>> readRange(const std::string& text)
{
    // One value v stands for the range from -|v| to |v|.
    static const boost::regex single(
        R"(\s*(?<value>[+-]?((\d+([\.,](\d+)?)?))|([\.,]\d+))\s*(?<unit>[^\s\.]*)\s*)");
    // The ".." between the bounds matches any two characters; stored texts were
    // written against this pattern, so it stays as it is.
    static const boost::regex pair(
        R"(\s*(?<minv>[+-]?\d+([\.,]\d+)?)\s*(?<minu>[^\s\.]*)?\s*..\s*(?<maxv>[+-]?\d+([\.,]\d+)?)\s*(?<maxu>[^\s\.]*)?\s*)");
    boost::smatch match;
    if (matchWhole(text, match, single)) {
        const auto value = readGroupNumber(match["value"]);
        if (!value)
            return std::nullopt;
        const double magnitude = std::fabs(*value);
        const std::string unit = match["unit"].str();
        // Zero gives 0 and 0, not -0 and 0.
        return RangeConfigItem<double>(magnitude == 0.0 ? 0.0 : -magnitude, magnitude, unit, unit);
    }
    if (!matchWhole(text, match, pair))
        return std::nullopt;
    auto min = readGroupNumber(match["minv"]);
    auto max = readGroupNumber(match["maxv"]);
    if (!min || !max)
        return std::nullopt;
    if (*min > *max)
        std::swap(min, max); // the units stay where they were typed
    return RangeConfigItem<double>(*min, *max, match["minu"].str(), match["maxu"].str());
}

std::optional<DecoratedNumberConfigItem> readDecoratedNumber(const std::string& text)
{
    static const boost::regex pattern(
        R"(\s*(?<pre>.*?)\s*(?<value>[+-]?\d+([\.,]\d+)?([eE][+\-]?\d+)?)\s*(?<post>.*?)\s*)");
    boost::smatch match;
    const auto value = matchNumber(text, match, pattern);
    if (!value)
        return std::nullopt;
    return DecoratedNumberConfigItem(*value, match["pre"].str(), match["post"].str());
}

RationalScalarConfigItem readRationalScalar(const std::string& text)
{
    try {
        return readers::readRationalScalar(text, true);
    } catch (const std::exception&) {
        throw ConfigItemException(fmt::format("Cannot convert '{}' to RationalScalar.", text));
    }
}

GenericEnumConfigItem readGenericEnum(const std::string& text, const GenericEnumConfigItem& current)
{
    const auto colon = text.find(':');
    if (colon != std::string::npos && text.find(':', colon + 1) == std::string::npos)
        return GenericEnumConfigItem(text.substr(0, colon), text.substr(colon + 1));
    return GenericEnumConfigItem(current.getEnumType(), text);
}

template <typename Enum>
std::optional<SingleValueConfigItem<Enum>> readEnum(const std::string& text)
{
    const auto value = enumFromString<Enum>(text);
    if (!value)
        return std::nullopt;
    return SingleValueConfigItem<Enum>(*value);
}

template <typename Item, typename Value>
std::optional<Item> wrap(const std::optional<Value>& value)
{
    if (!value)
        return std::nullopt;
    return Item(*value);
}

/// The new item for the alternative that @p item holds; nothing when the text does
/// not read as that alternative.
std::optional<ConfigItemVariant> readAs(const std::string& text, const ConfigItemVariant& item)
{
    switch (item.index()) {
    case configItemIndex<StringConfigItem>:
        return StringConfigItem(text, std::get<StringConfigItem>(item).getSizeHint());
    case configItemIndex<SingleValueConfigItem<double>>:
        return wrap<SingleValueConfigItem<double>>(readDouble(text));
    case configItemIndex<ScalarConfigItem>:
        return readScalar(text, std::get<ScalarConfigItem>(item));
    case configItemIndex<SingleValueConfigItem<int>>:
        return wrap<SingleValueConfigItem<int>>(readers::readInt32(text));
    case configItemIndex<SingleValueConfigItem<unsigned int>>:
        return wrap<SingleValueConfigItem<unsigned int>>(readers::readUInt32(text));
    case configItemIndex<SingleValueConfigItem<bool>>:
        return SingleValueConfigItem<bool>(text == "true" || text == "1");
    case configItemIndex<RangeConfigItem<double>>:
        return readRange(text);
    case configItemIndex<ValueListConfigItem<std::string>>:
        return ValueListConfigItem<std::string>(readers::readStringList(text));
    case configItemIndex<ValueListConfigItem<TupleValue<double, double>>>:
        return ValueListConfigItem<TupleValue<double, double>>(readers::readPointList(text));
    case configItemIndex<DecoratedNumberConfigItem>:
        return readDecoratedNumber(text);
    case configItemIndex<SingleValueConfigItem<UserScalingMode>>:
        return readEnum<UserScalingMode>(text);
    case configItemIndex<SingleValueConfigItem<DAQChannelType>>:
        return readEnum<DAQChannelType>(text);
    case configItemIndex<SingleValueConfigItem<DAQSampleResolution>>:
        return readEnum<DAQSampleResolution>(text);
    case configItemIndex<SingleValueConfigItem<PhysicalQuantity>>:
        return readEnum<PhysicalQuantity>(text);
    case configItemIndex<GenericEnumConfigItem>:
        return readGenericEnum(text, std::get<GenericEnumConfigItem>(item));
    case configItemIndex<SingleValueConfigItem<ChannelID>>:
        return wrap<SingleValueConfigItem<ChannelID>>(ChannelID::fromString(text));
    case configItemIndex<RationalScalarConfigItem>:
        return readRationalScalar(text);
    case configItemIndex<SingleValueConfigItem<SampleOccurrenceType>>:
    case configItemIndex<ValueListConfigItem<ChannelID>>:
        UNI_FAIL("Type not implemented yet!");
        return std::nullopt;
    case configItemIndex<InvalidConfigItem>:
    default:
        return std::nullopt;
    }
}

} // namespace

bool ParseStringVisitor::parse(const std::string& text, ConfigItemVariant& item) const
{
    std::optional<ConfigItemVariant> parsed;
    try {
        parsed = readAs(text, item);
    } catch (const ConfigItemException&) {
        return false;
    } catch (const std::exception&) {
        return false; // e.g. out of memory on a huge list: still no half-written item
    }
    if (!parsed)
        return false;
    item = std::move(*parsed);
    return true;
}

} // namespace channel_config
