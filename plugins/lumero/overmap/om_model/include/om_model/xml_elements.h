#pragma once

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pugi {
class xml_node;
}

namespace overmap {
class Car;
class PositionObject;
} // namespace overmap

/// Element code shared by the setup document and the vehicle document, so that both
/// write and read POIs, contours and vertex lists the same way.
namespace overmap::xml {

/// Fixed-point with exactly 12 digits behind the point, independent of the locale.
std::string formatReal(double value);
/// The whole text as a number (boost::lexical_cast rules); nothing for an empty or partly
/// numeric text.
std::optional<double> parseReal(const std::string& text);

/// Appends `Pois` to @p parent, with one `Poi` (name, positionX, positionY) per POI.
void writePois(pugi::xml_node& parent, const PositionObject& object);
/// Replaces the object's POIs by those of a `Pois` element. A first POI at (0, 0) takes
/// the place of "Center". False when a POI had to be skipped.
bool readPois(const pugi::xml_node& pois, PositionObject& object);

/// Appends `Contour` to @p parent, its text one "x y " line per vertex; no text when empty.
void writeContour(pugi::xml_node& parent, const std::vector<math_geo::Point2D>& contour);
/// Reads the vertices of a `Contour` element and hands them to Car::setContour.
bool readContour(const pugi::xml_node& contour, Car& car);

/// Pairs of numbers separated by white space, as points in @p system. Literal "\n"
/// sequences count as line feeds; reading stops at the first text that is no number.
std::vector<math_geo::Point2D> parsePointText(std::string_view text, math_geo::CoordinateSystem system);
/// The same loop for "latitude longitude" pairs, where "\n" is no separator.
std::vector<math_geo::GeoPosition> parsePositionText(std::string_view text);
/// "latitude longitude \n" per position, 12 digits behind the point.
std::string formatPositionText(const std::vector<math_geo::GeoPosition>& positions);

} // namespace overmap::xml
