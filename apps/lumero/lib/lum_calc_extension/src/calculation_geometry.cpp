#include <lum_calc_extension/calculation_geometry.h>

#include <om_model/calculation.h>
#include <om_model/position_object.h>
#include <om_model/track.h>

#include <math_geo/earth_model.h>
#include <math_geo/geo_tools.h>
#include <math_geo/projection_plane.h>

#include <algorithm>
#include <cmath>

namespace lum::calc {

using math_geo::GeoPosition;
using math_geo::Point2D;

namespace {

using math_geo::earth::RAD_TO_DEG;
/// Largest gap between a swept arc's chords and the arc, metres: well below what a GPS
/// position can tell.
constexpr double ARC_TOLERANCE = 1e-4;
constexpr int MAX_ARC_STEPS = 20000;

bool finite(const Point2D& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

bool finite(const GeoPosition& position)
{
    return std::isfinite(position.latitude) && std::isfinite(position.longitude);
}

double squaredLength(const Point2D& v)
{
    return v.x * v.x + v.y * v.y;
}

/// The point of @p line nearest to @p point: the segment from math_geo's search, then the
/// foot of the point on it, clamped to its ends.
std::optional<Point2D> nearestOnLine(const std::vector<Point2D>& line, const Point2D& point)
{
    if (line.empty())
        return std::nullopt;
    if (line.size() == 1)
        return line.front();
    const std::ptrdiff_t segment = math_geo::nearestSegment(point, line);
    const Point2D& a = line[static_cast<std::size_t>(segment)];
    const Point2D d = line[static_cast<std::size_t>(segment) + 1] - a;
    const double squared = squaredLength(d);
    const Point2D v = point - a;
    const double t = squared > 0.0 ? std::clamp((v.x * d.x + v.y * d.y) / squared, 0.0, 1.0) : 0.0;
    return a + d * t;
}

/// The point of the track that a calculation measures towards @p point (reference plane).
std::optional<Point2D> nearestOnTrack(const TrackOutline& outline, overmap::TrackTarget target,
                                      const Point2D& point)
{
    if (target == overmap::TrackTarget::CENTER)
        return nearestOnLine(outline.center_line, point);
    const std::optional<Point2D> first = nearestOnLine(outline.first_edge, point);
    const std::optional<Point2D> second = nearestOnLine(outline.second_edge, point);
    if (!first || !second)
        return first ? first : second;
    return squaredLength(*first - point) <= squaredLength(*second - point) ? first : second;
}

/// The measured point of a position object: its chosen POI, else its reference point.
std::optional<GeoPosition> objectPoint(const overmap::PositionObject& object, bool use_poi,
                                       std::uint32_t index)
{
    Point2D local(0.0, 0.0, object.localCoordinateSystem());
    if (use_poi && index < object.poiCount())
        local = object.getPoi(index).position;
    const GeoPosition position = object.toGeo(local);
    if (!finite(position))
        return std::nullopt;
    return position;
}

std::optional<GeoPosition> onTrack(const overmap::Track& track, overmap::TrackTarget target,
                                   const GeoPosition& towards)
{
    const math_geo::ProjectionPlane* plane = track.getPlane();
    if (plane == nullptr)
        return std::nullopt;
    const std::optional<Point2D> point = nearestOnTrack(trackOutline(track), target, plane->toPlane(towards));
    if (!point)
        return std::nullopt;
    return plane->toGeoPosition(*point);
}

} // namespace

TrackOutline trackOutline(const overmap::Track& track)
{
    TrackOutline outline;
    const auto& positions = track.getPositions();
    // Fewer than two ends, or an end not placed yet (a new track line), make no ribbon.
    if (positions.size() < 2 ||
        !std::all_of(positions.begin(), positions.end(), [](const GeoPosition& p) { return p.valid(); }))
        return outline;
    // The edges first: with a radius, the plane points rebuild what they need after them.
    const std::vector<Point2D> first = track.firstEdge();
    const std::vector<Point2D> second = track.secondEdge();
    if (first.size() < 2 || second.size() != first.size())
        return outline;
    if (track.getRadius() != 0.0 && !track.planePoints().empty()) {
        // An arc: its corners and its centre give radius and half width, swept around the
        // centre as the model made its corners.
        const Point2D center = track.planePoints().front();
        const Point2D half_width = (first[0] - second[0]) * 0.5;
        const Point2D radius = (first[0] + second[0]) * 0.5 - center;
        const double sweep = track.getArcLength() / track.getRadius() * RAD_TO_DEG;
        const double outer = radius.length() + half_width.length();
        // Chord steps whose sagitta on the outer edge stays within the tolerance.
        const double step =
            outer > ARC_TOLERANCE ? 2.0 * std::acos(1.0 - ARC_TOLERANCE / outer) * RAD_TO_DEG : 360.0;
        if (!std::isfinite(sweep) || !finite(center) || !finite(half_width) || !finite(radius))
            return outline;
        const int steps = std::clamp(static_cast<int>(std::ceil(std::fabs(sweep) / step)), 1, MAX_ARC_STEPS);
        for (int k = 0; k <= steps; ++k) {
            const double angle = -sweep * k / steps;
            const Point2D r = radius.rotate(angle);
            const Point2D w = half_width.rotate(angle);
            outline.center_line.push_back(center + r);
            outline.first_edge.push_back(center + r + w);
            outline.second_edge.push_back(center + r - w);
        }
        return outline;
    }
    // A repeated vertex leaves the model's lists not-a-number at it and at the next one:
    // those vertices are left out, and the ribbon runs straight across them.
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (!finite(first[i]) || !finite(second[i]))
            continue;
        outline.first_edge.push_back(first[i]);
        outline.second_edge.push_back(second[i]);
    }
    for (const Point2D& point : track.centerLine()) {
        if (finite(point))
            outline.center_line.push_back(point);
    }
    return outline;
}

std::optional<Measurement> measure(const overmap::Calculation& calculation)
{
    const auto& from_object = calculation.getFrom();
    const auto& to_object = calculation.getTo();
    if (!from_object || !to_object)
        return std::nullopt;
    const auto* from_position = dynamic_cast<const overmap::PositionObject*>(from_object.get());
    const auto* to_position = dynamic_cast<const overmap::PositionObject*>(to_object.get());
    const auto* from_track =
        from_position != nullptr ? nullptr : dynamic_cast<const overmap::Track*>(from_object.get());
    const auto* to_track =
        to_position != nullptr ? nullptr : dynamic_cast<const overmap::Track*>(to_object.get());
    const overmap::TrackTarget target = calculation.getTrackTarget();

    std::optional<GeoPosition> from;
    std::optional<GeoPosition> to;
    if (from_position != nullptr) {
        from = objectPoint(*from_position, calculation.useFromPoi(), calculation.getFromPoiIdx());
    } else if (from_track != nullptr) {
        // A track is measured towards the other side's point, so that one comes first;
        // between two tracks the middle of the other one's centre line stands for it.
        std::optional<GeoPosition> anchor;
        if (to_position != nullptr) {
            anchor = objectPoint(*to_position, calculation.useToPoi(), calculation.getToPoiIdx());
        } else if (to_track != nullptr && to_track->getPlane() != nullptr) {
            const TrackOutline outline = trackOutline(*to_track);
            if (!outline.center_line.empty())
                anchor =
                    to_track->getPlane()->toGeoPosition(outline.center_line[outline.center_line.size() / 2]);
        }
        if (anchor)
            from = onTrack(*from_track, target, *anchor);
    }
    if (!from)
        return std::nullopt;
    if (to_position != nullptr)
        to = objectPoint(*to_position, calculation.useToPoi(), calculation.getToPoiIdx());
    else if (to_track != nullptr)
        to = onTrack(*to_track, target, *from);
    if (!to)
        return std::nullopt;

    // The vector from one point to the other in the frame of the measuring object: each
    // object's plane is centred on it, so lengths there are true to well below a millimetre
    // over a test site.
    Point2D delta;
    if (const overmap::PositionObject* axes = from_position != nullptr ? from_position : to_position) {
        delta = axes->toLocal(*to) - axes->toLocal(*from);
    } else {
        const math_geo::ProjectionPlane* plane = from_track->getPlane();
        delta = plane->toPlane(*to) - plane->toPlane(*from);
    }
    Measurement result{*from, *to, 0.0};
    switch (calculation.getDistanceType()) {
    case overmap::DistanceType::X:
        result.value = delta.x;
        break;
    case overmap::DistanceType::Y:
        result.value = delta.y;
        break;
    default:
        result.value = delta.length();
        break;
    }
    if (calculation.getResultTransformation() == overmap::ResultTransformation::ABSOLUTE)
        result.value = std::fabs(result.value);
    else if (calculation.getResultTransformation() == overmap::ResultTransformation::INVERT)
        result.value = -result.value;
    if (!std::isfinite(result.value))
        return std::nullopt;
    return result;
}

} // namespace lum::calc
