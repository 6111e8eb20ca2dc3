#pragma once

#include <om_model/calculation.h>

#include <math_geo/point_2d.h>

#include <boost/lexical_cast.hpp>
#include <pugixml.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// What the setup reader and writer share: the names of the enumerations, so that both
/// spell them alike, and the reader's way of reading attributes.
namespace overmap::setup_xml {

template <typename E>
struct NamedValue
{
    E value;
    const char* name;
};

/// The name of @p value, @p fallback for a value the table does not name.
template <typename E, std::size_t N>
const char* nameOf(const NamedValue<E> (&table)[N], E value, const char* fallback)
{
    for (const NamedValue<E>& entry : table)
        if (entry.value == value)
            return entry.name;
    return fallback;
}

/// The value named exactly @p name; nothing for another text.
template <typename E, std::size_t N>
std::optional<E> valueOf(const NamedValue<E> (&table)[N], std::string_view name)
{
    for (const NamedValue<E>& entry : table)
        if (name == entry.name)
            return entry.value;
    return std::nullopt;
}

constexpr NamedValue<math_geo::CoordinateSystem> COORDINATE_SYSTEMS[] = {
    {math_geo::CoordinateSystem::X_RIGHT_Y_FRONT, "X_RIGHT_Y_FRONT"},
    {math_geo::CoordinateSystem::X_FRONT_Y_LEFT, "X_FRONT_Y_LEFT"},
    {math_geo::CoordinateSystem::DIN70000, "DIN70000"},
    {math_geo::CoordinateSystem::SAE, "SAE"}};

constexpr NamedValue<DistanceType> DISTANCE_TYPES[] = {
    {DistanceType::EUCLIDEAN, "EUCLIDEAN"}, {DistanceType::X, "X"}, {DistanceType::Y, "Y"}};

constexpr NamedValue<TrackTarget> TRACK_TARGETS[] = {{TrackTarget::CENTER, "CENTER"},
                                                     {TrackTarget::EDGE, "EDGE"}};

constexpr NamedValue<ResultTransformation> RESULT_TRANSFORMATIONS[] = {
    {ResultTransformation::AS_IS, "AS_IS"},
    {ResultTransformation::ABSOLUTE, "ABSOLUTE"},
    {ResultTransformation::INVERT, "INVERT"}};

/// Reads the attributes of one element, each looked up once. Numbers are required: a
/// missing one or one that does not convert as a whole (boost::lexical_cast rules) gives
/// nothing and is remembered, so that the caller can tell at the end whether all was read.
class AttributeReader
{
public:
    explicit AttributeReader(const pugi::xml_node& element) : m_element(element) {}

    /// The attribute itself, for those whose mere presence decides what follows.
    pugi::xml_attribute find(const char* name) const { return m_element.attribute(name); }

    /// The text; nothing when missing, which is no failure.
    std::optional<std::string> text(const char* name) const
    {
        const pugi::xml_attribute attribute = find(name);
        if (!attribute)
            return std::nullopt;
        return std::string(attribute.value());
    }

    std::optional<double> real(const char* name) { return number<double>(find(name)); }
    std::optional<double> real(const pugi::xml_attribute& attribute) { return number<double>(attribute); }

    template <typename T>
    std::optional<T> number(const char* name)
    {
        return number<T>(find(name));
    }

    template <typename T>
    std::optional<T> number(const pugi::xml_attribute& attribute)
    {
        T value{};
        // A missing attribute reads as empty text, which fails like junk does.
        if (!boost::conversion::try_lexical_convert(std::string(attribute.value()), value)) {
            m_ok = false;
            return std::nullopt;
        }
        return value;
    }

    /// Like number(name), but @p fallback when the attribute is missing.
    template <typename T>
    std::optional<T> number(const char* name, T fallback)
    {
        const pugi::xml_attribute attribute = find(name);
        return attribute ? number<T>(attribute) : std::optional<T>(fallback);
    }

    /// Counts a failure found by the caller (a bad name, a bad child).
    void fail() { m_ok = false; }
    /// False once any required value could not be read.
    bool ok() const { return m_ok; }

private:
    pugi::xml_node m_element;
    bool m_ok = true;
};

} // namespace overmap::setup_xml
