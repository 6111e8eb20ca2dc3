#include <om_ui/qtrack.h>

#include <om_model/coordinate_defaults.h>
#include <om_model/track.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <math_geo/geo_tools.h>
#include <math_geo/kml_reader.h>
#include <math_geo/projection_plane.h>
#include <math_geo/rectangle.h>
#include <math_geo/simplify_track.h>
#include <qt_utils/qt_checked_connect.h>
#include <uni_base/uni_assert.h>

#include <QFile>
#include <QQmlEngine>
#include <QThread>

#include <cmath>
#include <cstring>
#include <optional>

namespace overmap_ui {

using math_geo::GeoPosition;
using math_geo::Point2D;

namespace {
constexpr double DISPLAY_TOLERANCE = 0.1;
constexpr double IMPORT_TOLERANCE = 0.02;
constexpr double VALUE_TOLERANCE = 1e-12;
constexpr double LINE_TOLERANCE = 1e-6;

QGeoCoordinate toCoordinate(const GeoPosition& position)
{
    return QGeoCoordinate(position.latitude, position.longitude);
}

GeoPosition toPosition(const QGeoCoordinate& coordinate)
{
    return GeoPosition(coordinate.latitude(), coordinate.longitude());
}

bool finite(const Point2D& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

double referenceRotation(const overmap::Track& track)
{
    const math_geo::ProjectionPlane* plane = track.getPlane();
    return plane != nullptr ? plane->getRotation() : 0.0;
}
} // namespace

QTrackSegment::QTrackSegment(Values values, QObject* parent) : QObject(parent), m_values(std::move(values)) {}

QTrack::QTrack(std::shared_ptr<overmap::Track> model, QObject* parent)
    : QGeoObject(model, parent), m_model(std::move(model))
{
    QQmlEngine::setObjectOwnership(&m_segments, QQmlEngine::CppOwnership);
    CHECKED_CONNECT(this, &QTrack::trackChanged, this, &QGeoObject::dataChanged);
    rebuildSegments();
}

QTrack::~QTrack()
{
    m_segments.clearList(true);
}

void QTrack::setExtent(double width, double height)
{
    m_extent_width = width;
    m_extent_height = height;
    emitExtentChanged();
}

void QTrack::emitExtentChanged()
{
    Q_EMIT extentChanged();
    Q_EMIT sizeChanged();
}

double QTrack::width() const
{
    settle();
    return m_extent_width;
}

double QTrack::length() const
{
    settle();
    return m_extent_height;
}

QTrackSegmentList* QTrack::segments()
{
    settle();
    return &m_segments;
}

void QTrack::settle() const
{
    // The segments and the extent are what a rebuild would have made; making them on the
    // first read changes nothing a reader can see, so const readers may do it.
    // Segments are children of the list and are made in its thread only; a reader in
    // another thread (a render thread) sees what is there until the owner reads them.
    if (m_segments_owed && QThread::currentThread() == thread())
        const_cast<QTrack*>(this)->buildSegments();
}

void QTrack::takeVertices()
{
    const std::vector<GeoPosition>& source = m_model->getPositions();
    const bool same = source.size() == m_thinned_from.size() &&
                      (source.empty() || std::memcmp(source.data(), m_thinned_from.data(),
                                                     source.size() * sizeof(GeoPosition)) == 0);
    if (!same) {
        m_thinned_from = source;
        m_thinned_valid = false;
    }
}

const std::vector<GeoPosition>& QTrack::thinnedPositions()
{
    if (!m_thinned_valid) {
        m_thinned = math_geo::simplifyTrack(m_thinned_from, DISPLAY_TOLERANCE);
        math_geo::removeInvalidPositions(m_thinned);
        m_thinned_valid = true;
    }
    return m_thinned;
}

std::optional<GeoPosition> QTrack::firstOfThinned()
{
    if (!m_thinned_valid && m_thinned_from.size() >= 2 && m_thinned_from.front().valid() &&
        m_thinned_from.back().valid())
        return m_thinned_from.front();
    const std::vector<GeoPosition>& positions = thinnedPositions();
    if (positions.size() < 2)
        return std::nullopt;
    return positions.front();
}

void QTrack::rebuildSegments()
{
    m_segments_owed = false;
    m_segments.clearList(true);
    takeVertices();
    const std::optional<GeoPosition> first = firstOfThinned();
    if (!first) {
        setExtent(0.0, 0.0);
        return;
    }
    m_geometry.width = m_model->getWidth();
    m_geometry.origin = m_model->getOrigin();
    m_geometry.radius = m_model->getRadius();
    m_geometry.arc_bearing = m_model->getArcBearing();
    m_geometry.arc_length = m_model->getArcLength();
    m_geometry.xy_flag = m_model->getXYFlag();
    m_geometry.rotation = referenceRotation(*m_model);
    if (m_geometry.radius != 0.0) {
        // An arc has two vertices and its checks belong to the change that made it: at once.
        buildSegments();
        return;
    }
    // Without a radius the arc centre is the first vertex itself, worked out as the ribbon's
    // plane gives it; the ribbon waits until a view reads it.
    math_geo::ProjectionPlane plane(*first, 0.0, overmap::defaultPlaneCoordinateSystem());
    plane.setRotation(m_geometry.rotation);
    overmap::Track start(0, &plane);
    start.setPositions({*first});
    m_model->setArcCenter(plane.toGeoPosition(start.planePoints().front()));
    m_segments_owed = true;
    Q_EMIT segmentsChanged();
    emitExtentChanged();
}

void QTrack::buildSegments()
{
    m_segments_owed = false;
    const std::vector<GeoPosition>& positions = thinnedPositions();
    const bool announce = m_geometry.radius != 0.0;
    const auto fail = [&] {
        m_extent_width = 0.0;
        m_extent_height = 0.0;
        if (announce)
            emitExtentChanged();
    };
    if (positions.size() < 2)
        return fail();
    math_geo::ProjectionPlane plane(positions.front(), 0.0, overmap::defaultPlaneCoordinateSystem());
    plane.setRotation(m_geometry.rotation);

    // Id 0 lies below the counter, so the helper takes no id from the scene.
    overmap::Track track(0, &plane);
    track.setWidth(m_geometry.width);
    track.setOrigin(m_geometry.origin);
    track.setRadius(m_geometry.radius);
    track.setArcBearing(m_geometry.arc_bearing);
    track.setArcLength(m_geometry.arc_length);
    track.setXYFlag(m_geometry.xy_flag);
    track.setPositions(positions);

    const std::vector<Point2D>& first = track.firstEdge();
    const std::vector<Point2D>& second = track.secondEdge();
    const std::vector<Point2D>& plane_points = track.planePoints();
    if (first.empty() || second.size() < first.size() || plane_points.empty())
        return fail();
    const GeoPosition center = plane.toGeoPosition(plane_points.front());
    if (announce)
        m_model->setArcCenter(center);
    const double extra = m_geometry.xy_flag ? plane.getRotation() : 0.0;

    // A zero-length piece of a path gives not-a-number corners: such a piece is left out,
    // and takes no part in the extent.
    std::optional<math_geo::Rectangle> extent;
    QList<QObject*> made;
    made.reserve(static_cast<int>(first.size()));
    for (std::size_t i = 1; i < first.size(); ++i) {
        if (!finite(first[i - 1]) || !finite(first[i]) || !finite(second[i - 1]) || !finite(second[i]))
            continue;
        QTrackSegment::Values values;
        values.a = toCoordinate(plane.toGeoPosition(first[i - 1]));
        values.b = toCoordinate(plane.toGeoPosition(first[i]));
        values.c = toCoordinate(plane.toGeoPosition(second[i]));
        values.d = toCoordinate(plane.toGeoPosition(second[i - 1]));
        if (i < positions.size()) {
            values.start = toCoordinate(positions[i - 1]);
            values.end = toCoordinate(positions[i]);
        }
        values.radius = m_geometry.radius;
        values.arc_length = m_geometry.arc_length;
        values.center = toCoordinate(center);
        values.arc_bearing = m_geometry.arc_bearing + extra;
        made.append(new QTrackSegment(std::move(values), &m_segments));
        if (!extent)
            extent = math_geo::Rectangle::bounding({first[i - 1], second[i - 1]});
        extent->extend(first[i]);
        extent->extend(second[i]);
    }
    m_segments.append(made);
    if (announce)
        Q_EMIT segmentsChanged();
    m_extent_width = extent ? extent->width() : 0.0;
    m_extent_height = extent ? extent->height() : 0.0;
    if (announce)
        emitExtentChanged();
}

void QTrack::refresh()
{
    rebuildSegments();
}

QGeoCoordinate QTrack::getTrackPoint(int idx) const
{
    const std::vector<GeoPosition>& positions = m_model->getPositions();
    if (idx < 0 || static_cast<std::size_t>(idx) >= positions.size())
        return QGeoCoordinate();
    return toCoordinate(positions[static_cast<std::size_t>(idx)]);
}

double QTrack::trackWidth() const
{
    return m_model->getWidth();
}

void QTrack::setTrackWidth(double value)
{
    if (std::fabs(value - m_model->getWidth()) <= VALUE_TOLERANCE)
        return;
    m_model->setWidth(value);
    rebuildSegments();
    Q_EMIT trackWidthChanged();
    Q_EMIT trackChanged();
}

QTrack::Origin QTrack::trackOrigin() const
{
    const double origin = m_model->getOrigin();
    if (origin < 0.25)
        return ORIGIN_LEFT;
    return origin > 0.75 ? ORIGIN_RIGHT : ORIGIN_CENTER;
}

void QTrack::setTrackOrigin(Origin value)
{
    if (value == trackOrigin())
        return;
    m_model->setOrigin(value == ORIGIN_LEFT ? 0.0 : value == ORIGIN_RIGHT ? 1.0 : 0.5);
    rebuildSegments();
    Q_EMIT trackOriginChanged();
    Q_EMIT trackChanged();
}

int QTrack::trackPointCount() const
{
    return static_cast<int>(m_model->getPositions().size());
}

double QTrack::trackLength() const
{
    return m_model->pathLength();
}

double QTrack::trackRadius() const
{
    return m_model->getRadius();
}

void QTrack::setTrackRadius(double value)
{
    if (std::fabs(value - m_model->getRadius()) <= VALUE_TOLERANCE)
        return;
    m_model->setRadius(value);
    takeVertices();
    const std::optional<GeoPosition> first = firstOfThinned();
    if (first && !m_model->planePoints().empty()) {
        const math_geo::ProjectionPlane plane(*first, 0.0, overmap::defaultPlaneCoordinateSystem());
        m_model->setArcCenter(plane.toGeoPosition(m_model->planePoints().front()));
    }
    rebuildSegments();
    Q_EMIT trackRadiusChanged();
    Q_EMIT trackChanged();
}

// --- QTrackLine ---

QTrackLine::QTrackLine(std::shared_ptr<overmap::TrackLine> model, QObject* parent)
    : QTrack(model, parent), m_line(std::move(model))
{}

QTrackLine::~QTrackLine() = default;

math_geo::GeoBounds QTrackLine::enclosingRectangle() const
{
    const std::vector<GeoPosition>& positions = m_line->getPositions();
    if (positions.empty())
        return math_geo::GeoBounds(GeoPosition(), GeoPosition());
    math_geo::GeoBounds bounds(positions[0], positions[0]);
    if (positions.size() > 1)
        bounds.extend(positions[1]);
    return bounds;
}

Point2D QTrackLine::planePoint(QPointF point) const
{
    const math_geo::ProjectionPlane* plane = m_line->getPlane();
    return Point2D(point.x(), point.y(),
                   plane != nullptr ? plane->getXYCoordinateSystem()
                                    : overmap::defaultPlaneCoordinateSystem());
}

void QTrackLine::endsChanged()
{
    rebuildSegments();
    Q_EMIT startPositionChanged();
    Q_EMIT startUsesXYChanged();
    Q_EMIT endPositionChanged();
    Q_EMIT endUsesXYChanged();
    Q_EMIT lengthChanged();
    Q_EMIT bearingChanged();
    Q_EMIT trackPointCountChanged();
    Q_EMIT trackLengthChanged();
    Q_EMIT trackChanged();
}

QGeoCoordinate QTrackLine::startPosition() const
{
    return getTrackPoint(0);
}

void QTrackLine::setStartPosition(const QGeoCoordinate& position)
{
    if (toPosition(position) == m_line->getPositions().at(0) && !m_line->isStartByXY())
        return;
    m_line->setStart(toPosition(position));
    endsChanged();
}

QGeoCoordinate QTrackLine::endPosition() const
{
    return getTrackPoint(1);
}

void QTrackLine::setEndPosition(const QGeoCoordinate& position)
{
    if (toPosition(position) == m_line->getPositions().at(1) && !m_line->isEndByXY())
        return;
    m_line->setEnd(toPosition(position));
    endsChanged();
}

QPointF QTrackLine::startPositionXY() const
{
    return QPointF(m_line->getStartPoint().x, m_line->getStartPoint().y);
}

void QTrackLine::setStartPositionXY(QPointF point)
{
    if (planePoint(point) == m_line->getStartPoint() && m_line->isStartByXY())
        return;
    m_line->setStartXY(planePoint(point));
    endsChanged();
}

QPointF QTrackLine::endPositionXY() const
{
    return QPointF(m_line->getEndPoint().x, m_line->getEndPoint().y);
}

void QTrackLine::setEndPositionXY(QPointF point)
{
    if (planePoint(point) == m_line->getEndPoint() && m_line->isEndByXY())
        return;
    m_line->setEndXY(planePoint(point));
    endsChanged();
}

bool QTrackLine::startUsesXY() const
{
    return m_line->isStartByXY();
}

void QTrackLine::setStartUsesXY(bool value)
{
    if (value == m_line->isStartByXY())
        return;
    m_line->setStartByXY(value);
    endsChanged();
}

bool QTrackLine::endUsesXY() const
{
    return m_line->isEndByXY();
}

void QTrackLine::setEndUsesXY(bool value)
{
    if (value == m_line->isEndByXY())
        return;
    m_line->setEndByXY(value);
    endsChanged();
}

QGeoCoordinate QTrackLine::circlePosition() const
{
    return toCoordinate(m_line->getArcCenter());
}

void QTrackLine::setCirclePosition(const QGeoCoordinate& position)
{
    if (toPosition(position) == m_line->getArcCenter() && !m_line->isCenterByXY())
        return;
    m_line->setCenterPosition(toPosition(position));
    rebuildSegments();
    Q_EMIT circlePositionChanged();
    Q_EMIT circleUsesXYChanged();
    Q_EMIT trackChanged();
}

QPointF QTrackLine::circlePositionXY() const
{
    return QPointF(m_line->getCenterPoint().x, m_line->getCenterPoint().y);
}

void QTrackLine::setCirclePositionXY(QPointF point)
{
    if (planePoint(point) == m_line->getCenterPoint() && m_line->isCenterByXY())
        return;
    m_line->setCenterXY(planePoint(point));
    rebuildSegments();
    Q_EMIT circlePositionChanged();
    Q_EMIT circleUsesXYChanged();
    Q_EMIT trackChanged();
}

bool QTrackLine::circleUsesXY() const
{
    return m_line->isCenterByXY();
}

double QTrackLine::lineLength() const
{
    if (m_line->getRadius() != 0.0)
        return m_line->getArcLength();
    const GeoPosition start = m_line->getPositions().at(0);
    const GeoPosition end = m_line->getPositions().at(1);
    if (!UNI_ASSERT(start.valid()) || !UNI_ASSERT(end.valid()))
        return 0.0;
    return start.distanceTo(end, math_geo::DistanceMethod::HAVERSINE);
}

void QTrackLine::setLineLength(double value)
{
    if (std::fabs(value - lineLength()) <= LINE_TOLERANCE)
        return;
    m_line->setArcLength(value);
    if (m_line->getRadius() == 0.0)
        m_line->setEndSynced(math_geo::destinationPoint(m_line->getPositions().at(0), bearing(), value));
    endsChanged();
}

double QTrackLine::bearing() const
{
    if (m_line->getRadius() != 0.0)
        return m_line->getArcBearing();
    const GeoPosition start = m_line->getPositions().at(0);
    const GeoPosition end = m_line->getPositions().at(1);
    if (!UNI_ASSERT(start.valid()) || !UNI_ASSERT(end.valid()))
        return 0.0;
    return math_geo::wrapToRange(start.bearingTo(end), 0.0, 360.0);
}

void QTrackLine::setBearing(double value)
{
    if (std::fabs(value - bearing()) <= LINE_TOLERANCE)
        return;
    m_line->setArcBearing(value);
    if (m_line->getRadius() == 0.0)
        m_line->setEndSynced(math_geo::destinationPoint(m_line->getPositions().at(0), value, lineLength()));
    endsChanged();
}

double QTrackLine::radius() const
{
    return m_line->getRadius();
}

void QTrackLine::setRadius(double value)
{
    if (std::fabs(value - m_line->getRadius()) <= LINE_TOLERANCE)
        return;
    if (m_line->getRadius() == 0.0)
        m_line->setArcLength(lineLength());
    m_line->setRadius(value);
    rebuildSegments();
    Q_EMIT radiusChanged();
    Q_EMIT trackRadiusChanged();
    Q_EMIT lengthChanged();
    Q_EMIT bearingChanged();
    Q_EMIT trackChanged();
}

// --- QTrackPath ---

QTrackPath::QTrackPath(std::shared_ptr<overmap::TrackPath> model, QObject* parent)
    : QTrack(std::move(model), parent)
{}

QTrackPath::~QTrackPath() = default;

math_geo::GeoBounds QTrackPath::enclosingRectangle() const
{
    const std::vector<GeoPosition>& positions = trackModel()->getPositions();
    if (positions.empty())
        return math_geo::GeoBounds(GeoPosition(), GeoPosition());
    math_geo::GeoBounds bounds(positions.front(), positions.front());
    for (std::size_t i = 1; i < positions.size(); ++i)
        bounds.extend(positions[i]);
    return bounds;
}

bool QTrackPath::loadKmlFile(QUrl filename)
{
    const QByteArray path = QFile::encodeName(filename.toLocalFile());
    std::vector<GeoPosition> positions;
    if (!math_geo::readKmlFile(path.toStdString(), positions))
        return false;
    trackModel()->setPositions(math_geo::simplifyTrack(positions, IMPORT_TOLERANCE));
    rebuildSegments();
    Q_EMIT trackPointCountChanged();
    Q_EMIT trackLengthChanged();
    Q_EMIT trackChanged();
    return true;
}

} // namespace overmap_ui
