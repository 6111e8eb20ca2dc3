#include <om_model/track.h>

#include <math_geo/earth_model.h>
#include <math_geo/line_2d.h>
#include <uni_base/uni_assert.h>

#include <array>
#include <cmath>

namespace overmap {

using math_geo::GeoPosition;
using math_geo::Point2D;

namespace {

/// Where the three offset lines lie across the ribbon: first edge, centre line, second edge.
constexpr std::array<double, 3> FRACTIONS{0.0, 0.5, 1.0};

/// @p d turned by -90 degrees and divided by its length; unguarded, so a zero direction
/// gives not-a-number. In X_RIGHT_Y_FRONT and X_FRONT_Y_LEFT this points to the right of
/// the direction of travel; DIN70000 turns the other way, as Point2D::rotate does.
Point2D rawNormal(const Point2D& d)
{
    const double length = d.length();
    if (d.getCoordinateSystem() == math_geo::CoordinateSystem::DIN70000)
        return Point2D(-d.y / length, d.x / length, d.getCoordinateSystem());
    return Point2D(d.y / length, -d.x / length, d.getCoordinateSystem());
}

/// rawNormal, with (0, 0) for a zero direction.
Point2D normal(const Point2D& d)
{
    if (d.length() == 0.0)
        return Point2D(0.0, 0.0, d.getCoordinateSystem());
    return rawNormal(d);
}

} // namespace

Track::Track(const math_geo::ProjectionPlane* plane) : GeoObject(plane)
{
    setName("Track");
    setColor("#666666");
}

Track::Track(std::int32_t id, const math_geo::ProjectionPlane* plane) : GeoObject(id, plane)
{
    setName("Track");
    setColor("#666666");
}

Track::~Track() = default;

void Track::clearCaches()
{
    m_center_line.clear();
    m_first_edge.clear();
    m_second_edge.clear();
    m_plane_points.clear();
}

void Track::setPositions(std::vector<GeoPosition> positions)
{
    m_positions = std::move(positions);
    clearCaches();
}

void Track::setWidth(double width)
{
    m_width = width;
    clearCaches();
}

void Track::setOrigin(double origin)
{
    m_track_origin = origin;
    clearCaches();
}

void Track::setRadius(double radius)
{
    m_radius = radius;
    clearCaches();
}

void Track::setArcLength(double length)
{
    m_arc_length = length;
}

void Track::setArcBearing(double bearing)
{
    m_arc_bearing = bearing;
}

void Track::setXYFlag(bool value)
{
    m_xy_flag = value;
}

void Track::setArcCenter(const GeoPosition& center)
{
    m_arc_center = center;
}

// Edges and plane points share one cached plane: once either getter has taken a moved plane
// over, the other sees no move and keeps its stale list until the next move or a setter.
void Track::rebuild() const
{
    buildEdges();
    buildPlanePoints();
}

const std::vector<Point2D>& Track::planePoints() const
{
    if (m_plane_points.empty() || planeMoved())
        buildPlanePoints();
    return m_plane_points;
}

double Track::pathLength() const
{
    double length = 0.0;
    for (std::size_t i = 1; i < m_positions.size(); ++i)
        length += m_positions[i - 1].distanceTo(m_positions[i], math_geo::DistanceMethod::GEODESIC);
    return length;
}

void Track::buildEdges() const
{
    m_cached_plane = referencePlane();
    std::array<std::vector<Point2D>*, 3> lists{&m_first_edge, &m_center_line, &m_second_edge};
    for (std::vector<Point2D>* list : lists) {
        list->clear();
        list->reserve(m_positions.size());
    }
    auto offset = [this](double fraction) { return (fraction - m_track_origin) * m_width; };
    auto appendPlain = [&](const Point2D& at, const Point2D& n) {
        for (std::size_t k = 0; k < 3; ++k)
            lists[k]->push_back(at + n * offset(FRACTIONS[k]));
    };

    std::vector<math_geo::Line2D> lines;
    lines.reserve(3);
    Point2D prev;
    Point2D direction;
    for (std::size_t i = 0; i < m_positions.size(); ++i) {
        const Point2D cur = m_cached_plane.toPlane(m_positions[i]);
        if (i == 0) {
            prev = cur;
            continue;
        }
        const Point2D d = cur - prev;
        if (i == 1) {
            appendPlain(prev, normal(d));
            for (std::size_t k = 0; k < 3; ++k)
                lines.emplace_back(lists[k]->back(), lists[k]->back() + d);
        } else {
            // A zero-length segment gives not-a-number lines here; their (NaN, NaN) crossing
            // marks this vertex and the next, and the painter leaves such vertices out.
            const Point2D n = rawNormal(d);
            std::vector<math_geo::Line2D> next;
            next.reserve(3);
            for (std::size_t k = 0; k < 3; ++k) {
                const Point2D start = cur + n * offset(FRACTIONS[k]);
                next.emplace_back(start, start + d);
            }
            if (const std::optional<Point2D> mitre = next[0].intersect(lines[0])) {
                const Point2D zero(0.0, 0.0, cur.getCoordinateSystem());
                m_center_line.push_back(next[1].intersect(lines[1]).value_or(zero));
                m_first_edge.push_back(*mitre);
                m_second_edge.push_back(next[2].intersect(lines[2]).value_or(zero));
            } else {
                appendPlain(prev, normal(d));
            }
            lines = std::move(next);
        }
        direction = d;
        prev = cur;
    }
    if (m_positions.size() >= 2)
        appendPlain(prev, normal(direction));
}

void Track::buildPlanePoints() const
{
    m_cached_plane = referencePlane();
    m_plane_points.clear();
    if (m_positions.empty())
        return;
    const Point2D p0 = m_cached_plane.toPlane(m_positions[0]);
    const math_geo::CoordinateSystem system = p0.getCoordinateSystem();
    double angle = m_xy_flag ? 0.0 : m_cached_plane.getRotation();
    angle -= m_arc_bearing;
    const Point2D r = Point2D(0.0, m_radius, system).rotate(angle);
    m_plane_points.push_back(p0 - r);
    if (m_radius == 0.0 || m_positions.size() < 2)
        return;
    UNI_ASSERT(m_track_origin == 0.5);
    const Point2D w = Point2D(0.0, m_width * 0.5, system).rotate(angle);
    const Point2D p1 = m_cached_plane.toPlane(m_positions[1]);
    const double sweep = m_arc_length / m_radius * math_geo::earth::RAD_TO_DEG;
    const Point2D v = Point2D(0.0, m_width * 0.5, p1.getCoordinateSystem()).rotate(angle).rotate(-sweep);
    m_first_edge = {p0 + w, p1 + v};
    m_second_edge = {p0 - w, p1 - v};
}

} // namespace overmap
