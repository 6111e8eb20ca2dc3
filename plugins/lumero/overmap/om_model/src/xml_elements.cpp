#include <om_model/xml_elements.h>

#include <om_model/car.h>
#include <om_model/position_object.h>

#include "om_log.h"

#include <boost/lexical_cast.hpp>
#include <fmt/format.h>
#include <pugixml.hpp>
#include <uni_base/uni_log.h>
#include <xpugixml/xpugixml.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace overmap::xml {

using math_geo::Point2D;

std::string formatReal(double value)
{
    return fmt::format("{:.12f}", value);
}

std::optional<double> parseReal(const std::string& text)
{
    double value = 0.0;
    if (!boost::conversion::try_lexical_convert(text, value))
        return std::nullopt;
    return value;
}

void writePois(pugi::xml_node& parent, const PositionObject& object)
{
    pugi::xml_node pois = parent.append_child("Pois");
    for (const Poi& poi : object.getPois()) {
        pugi::xml_node element = pois.append_child("Poi");
        xpugi::addAttribute(element, "name", poi.name);
        xpugi::addAttribute(element, "positionX", formatReal(poi.position.x));
        xpugi::addAttribute(element, "positionY", formatReal(poi.position.y));
    }
}

bool readPois(const pugi::xml_node& pois, PositionObject& object)
{
    bool result = true;
    object.resetPois();
    std::size_t index = 0;
    for (pugi::xml_node child = pois.first_child(); child; child = child.next_sibling()) {
        if (child.type() != pugi::node_element)
            continue;
        const std::size_t i = index++;
        if (std::string(child.name()) != "Poi") {
            UNI_LOG(detail::LOG_CHANNEL, SEV_DETAIL)
                << "Uknown node in overmap config in <Pois> \"" << child.name() << "\"";
            continue;
        }
        const std::string name = xpugi::getAttribute(child, "name");
        const std::optional<double> x = parseReal(xpugi::getAttribute(child, "positionX"));
        const std::optional<double> y = parseReal(xpugi::getAttribute(child, "positionY"));
        if (!x || !y) {
            result = false;
            continue;
        }
        const Point2D position(*x, *y, object.localCoordinateSystem());
        if (i == 0 && position == Point2D(0.0, 0.0, object.localCoordinateSystem()))
            object.setPoi(0, Poi{position, name});
        else
            object.addPoi(Poi{position, name});
    }
    if (object.poiCount() == 0)
        object.addPoi(Poi{Point2D(0.0, 0.0, object.localCoordinateSystem()), "Center"});
    return result;
}

void writeContour(pugi::xml_node& parent, const std::vector<Point2D>& contour)
{
    pugi::xml_node element = parent.append_child("Contour");
    std::string text;
    for (const Point2D& point : contour) {
        text += formatReal(point.x);
        text += ' ';
        text += formatReal(point.y);
        text += " \n";
    }
    xpugi::setText(element, text);
}

bool readContour(const pugi::xml_node& contour, Car& car)
{
    car.setContour(parsePointText(xpugi::getText(contour), car.localCoordinateSystem()));
    return true;
}

namespace {

bool isStreamSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Reads one double the way `stream >> value` does in the classic locale, without the
/// cost of a stream: skips white space (and, with @p escapes, the two characters
/// backslash-n that older contour files hold for line feeds), takes the longest text of the form
/// [+-]digits[.digits][e[+-]digits] and fails when that text is no number or overflows. Leaves @p p after the
/// text.
bool readStreamDouble(const char*& p, const char* end, double& value, bool escapes)
{
    for (;;) {
        if (p < end && isStreamSpace(*p))
            ++p;
        else if (escapes && end - p >= 2 && p[0] == '\\' && p[1] == 'n')
            p += 2;
        else
            break;
    }
    const char* start = p;
    const char* q = p;
    if (q < end && (*q == '+' || *q == '-'))
        ++q;
    bool mantissa = false;
    while (q < end && isDigit(*q)) {
        ++q;
        mantissa = true;
    }
    if (q < end && *q == '.') {
        ++q;
        while (q < end && isDigit(*q)) {
            ++q;
            mantissa = true;
        }
    }
    if (mantissa && q < end && (*q == 'e' || *q == 'E')) {
        ++q;
        if (q < end && (*q == '+' || *q == '-'))
            ++q;
        while (q < end && isDigit(*q))
            ++q;
    }
    p = q;
    const char* first = (start < q && *start == '+') ? start + 1 : start;
    if (first == q)
        return false;
    const std::from_chars_result result = std::from_chars(first, q, value);
    if (result.ec == std::errc() && result.ptr == q)
        return true;
    if (result.ec != std::errc::result_out_of_range || result.ptr != q)
        return false;
    // Out of range: a stream keeps a value too small to represent and fails on overflow.
    const std::string token(first, q);
    value = std::strtod(token.c_str(), nullptr);
    return std::isfinite(value);
}

/// Reads number pairs until the text ends or stops being numbers.
template <typename Append>
void readPairs(std::string_view text, bool escapes, Append append)
{
    const char* p = text.data();
    const char* end = p + text.size();
    double first = 0.0;
    double second = 0.0;
    while (readStreamDouble(p, end, first, escapes) && readStreamDouble(p, end, second, escapes))
        append(first, second);
}
} // namespace

std::vector<Point2D> parsePointText(std::string_view text, math_geo::CoordinateSystem system)
{
    std::vector<Point2D> points;
    readPairs(text, true, [&](double x, double y) { points.emplace_back(x, y, system); });
    return points;
}

std::vector<math_geo::GeoPosition> parsePositionText(std::string_view text)
{
    std::vector<math_geo::GeoPosition> positions;
    readPairs(text, false, [&](double lat, double lon) { positions.emplace_back(lat, lon); });
    return positions;
}

std::string formatPositionText(const std::vector<math_geo::GeoPosition>& positions)
{
    fmt::memory_buffer buffer;
    for (const math_geo::GeoPosition& position : positions)
        fmt::format_to(std::back_inserter(buffer), "{:.12f} {:.12f} \n", position.latitude,
                       position.longitude);
    return fmt::to_string(buffer);
}

} // namespace overmap::xml
