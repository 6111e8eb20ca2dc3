#include <om_qml/qscene_item.h>

#include <om_ui/object_lists.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qcalculation.h>
#include <om_ui/qcar.h>
#include <om_ui/qchannel_fetcher.h>
#include <om_ui/qlocator.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qtrack.h>
#include <om_ui/reference_plane.h>
#include <om_ui/viewport.h>

#include <om_model/car.h>
#include <qchannel/qchannel.h>
#include <qobject_list_model/qobjectlist_model.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QSortFilterProxyModel>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace overmap_qml {

using overmap_ui::QGeoObject;
using overmap_ui::QPositionObject;

const QColor QSceneItem::QUALITY_COLORS[3] = {QColor(46, 160, 67), QColor(230, 160, 20), QColor(210, 40, 40)};

namespace {

/// Step of the projection that finds the affine map: small enough that the plane's scale
/// barely changes across it, large enough to leave rounding far behind.
constexpr double PROBE_DEGREES = 1e-3;
/// Screen points closer than this to the last kept one add nothing to a drawn line.
constexpr double SIMPLIFY_PIXELS = 0.75;
constexpr double MIN_CAR_PIXELS = 14.0;
constexpr double CONE_PIXELS = 9.0;
/// How near a click must come to a cone or locator to take it.
constexpr double PICK_PIXELS = 10.0;
/// A value's box moves out from its line in these steps while it covers something.
constexpr double LABEL_STEP_PIXELS = 6.0;
constexpr int LABEL_TRIES = 8;
const QColor SELECTION_COLOR(20, 110, 220);
const QColor GRID_COLOR(0, 0, 0, 28);
const QColor TRACK_FILL(120, 120, 120, 90);
const QColor CALCULATION_COLOR(106, 61, 154);
const QColor TEXT_COLOR(30, 30, 30);

/// 1, 2 or 5 times a power of ten, the largest not above @p value.
double roundStep(double value)
{
    const double decade = std::pow(10.0, std::floor(std::log10(value)));
    const double mantissa = value / decade;
    return decade * (mantissa >= 5.0 ? 5.0 : mantissa >= 2.0 ? 2.0 : 1.0);
}

QPointF toDegrees(const QGeoCoordinate& coordinate)
{
    return QPointF(coordinate.longitude(), coordinate.latitude());
}

/// The polygon on the screen without the points that lie within a pixel of their predecessor.
QPolygonF mappedThinned(const QTransform& to_screen, const QPolygonF& degrees)
{
    QPolygonF out;
    out.reserve(std::min(degrees.size(), 4096));
    QPointF last;
    for (int i = 0; i < degrees.size(); ++i) {
        const QPointF p = to_screen.map(degrees[i]);
        if (i == 0 || i + 1 == degrees.size() ||
            std::fabs(p.x() - last.x()) + std::fabs(p.y() - last.y()) >= SIMPLIFY_PIXELS) {
            out << p;
            last = p;
        }
    }
    return out;
}

void drawHaloText(QPainter& painter, const QPointF& baseline_left, const QString& text, const QColor& color)
{
    // A light shadow from the glyph cache, so that names stay legible over lines and fills.
    painter.setPen(QColor(255, 255, 255, 220));
    painter.drawText(baseline_left + QPointF(1.0, 1.0), text);
    painter.setPen(color);
    painter.drawText(baseline_left, text);
}

/// An object that stands still while time moves: no channel moves it, no other object carries it.
bool standsStill(const QPositionObject& object)
{
    return object.latitudeChannel() == nullptr && object.longitudeChannel() == nullptr &&
           object.headingChannel() == nullptr && object.referenceObject() == nullptr;
}

} // namespace

QSceneItem::QSceneItem(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    // Painted into an image first: on software OpenGL the raster engine is the fast one.
    setRenderTarget(QQuickPaintedItem::Image);
}

QSceneItem::~QSceneItem() = default;

void QSceneItem::scheduleUpdate()
{
    update();
}

void QSceneItem::setViewport(overmap_ui::Viewport* viewport)
{
    if (m_viewport == viewport)
        return;
    if (m_viewport)
        disconnect(m_viewport, nullptr, this, nullptr);
    m_viewport = viewport;
    if (m_viewport)
        connect(m_viewport, &overmap_ui::Viewport::viewportChanged, this, &QSceneItem::scheduleUpdate);
    Q_EMIT viewportChanged();
    update();
}

void QSceneItem::setObjectsModel(QAbstractItemModel* model)
{
    if (m_objects_model == model)
        return;
    if (m_objects_model)
        disconnect(m_objects_model, nullptr, this, nullptr);
    m_objects_model = model;
    if (m_objects_model) {
        const auto changed = [this] {
            watchModel();
            markStill();
        };
        connect(m_objects_model, &QAbstractItemModel::rowsInserted, this, changed);
        connect(m_objects_model, &QAbstractItemModel::rowsRemoved, this, changed);
        connect(m_objects_model, &QAbstractItemModel::modelReset, this, changed);
        // A filter model re-sorts after every move of an object: what it hides is part of the
        // still layer's key instead.
        connect(m_objects_model, &QAbstractItemModel::layoutChanged, this, &QSceneItem::scheduleUpdate);
        // A list that follows its objects' properties tells of every move: the objects' own
        // signals already say what that changes.
        connect(m_objects_model, &QAbstractItemModel::dataChanged, this, &QSceneItem::scheduleUpdate);
    }
    watchModel();
    m_still_valid = false;
    Q_EMIT objectsModelChanged();
    update();
}

void QSceneItem::setDisplayTime(double time)
{
    if (time == m_display_time)
        return;
    m_display_time = time;
    Q_EMIT displayTimeChanged();
    update();
}

void QSceneItem::setBackgroundColor(const QColor& color)
{
    if (color == m_background_color)
        return;
    m_background_color = color;
    m_still_valid = false;
    Q_EMIT backgroundColorChanged();
    update();
}

void QSceneItem::setShowCoordinateSystem(bool show)
{
    if (show == m_show_coordinate_system)
        return;
    m_show_coordinate_system = show;
    m_still_valid = false;
    Q_EMIT showCoordinateSystemChanged();
    update();
}

void QSceneItem::setPrintMode(bool print_mode)
{
    if (print_mode == m_print_mode)
        return;
    m_print_mode = print_mode;
    Q_EMIT printModeChanged();
    update();
}

void QSceneItem::setCompassShift(double shift)
{
    if (shift == m_compass_shift)
        return;
    m_compass_shift = shift;
    Q_EMIT compassShiftChanged();
    update();
}

void QSceneItem::setScaleBottomMargin(double margin)
{
    if (margin == m_scale_bottom_margin)
        return;
    m_scale_bottom_margin = margin;
    Q_EMIT scaleBottomMarginChanged();
    update();
}

void QSceneItem::setBackgroundImageVisible(bool visible)
{
    if (visible == m_background_image_visible)
        return;
    m_background_image_visible = visible;
    m_still_valid = false;
    Q_EMIT backgroundImageVisibleChanged();
    update();
}

void QSceneItem::setBackgroundImageOpacity(double opacity)
{
    if (opacity == m_background_image_opacity)
        return;
    m_background_image_opacity = opacity;
    m_still_valid = false;
    Q_EMIT backgroundImageOpacityChanged();
    update();
}

void QSceneItem::setReferencePlane(overmap_ui::ReferencePlane* plane)
{
    if (m_reference_plane == plane)
        return;
    if (m_reference_plane)
        disconnect(m_reference_plane, nullptr, this, nullptr);
    m_reference_plane = plane;
    m_still_valid = false;
    if (m_reference_plane)
        connect(m_reference_plane, &overmap_ui::ReferencePlane::planeChanged, this,
                &QSceneItem::scheduleUpdate);
    Q_EMIT referencePlaneChanged();
    update();
}

overmap_ui::QObjectManager* QSceneItem::objectsManager() const
{
    QAbstractItemModel* list = m_objects_model;
    while (auto* proxy = qobject_cast<QAbstractProxyModel*>(list))
        list = proxy->sourceModel();
    if (list == nullptr)
        return nullptr;
    if (auto* manager = qobject_cast<overmap_ui::QObjectManager*>(list->parent()))
        return manager;
    // A list of its own: the objects still know their manager.
    for (int row = 0; row < list->rowCount(); ++row) {
        QObject* object = list->index(row, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>();
        if (auto* manager = object ? qobject_cast<overmap_ui::QObjectManager*>(object->parent()) : nullptr)
            return manager;
    }
    return nullptr;
}

void QSceneItem::watchObject(QObject* object)
{
    // Once for each object: the set dies with the objects' connections when they go.
    if (object == nullptr || m_watched.contains(object))
        return;
    m_watched.insert(object);
    connect(object, &QObject::destroyed, this, [this, object] {
        m_watched.remove(object);
        m_still_places.remove(object);
    });
    if (auto* geo = qobject_cast<QGeoObject*>(object)) {
        connect(geo, &QGeoObject::colorChanged, this, &QSceneItem::markStill);
        connect(geo, &QGeoObject::nameChanged, this, &QSceneItem::markStill);
        connect(geo, &QGeoObject::sizeChanged, this, &QSceneItem::markStill);
    }
    if (auto* position = qobject_cast<QPositionObject*>(object)) {
        // Only what stands still is kept in the cached layer; a moving object is drawn anyway.
        // Objects without channels are told of every time step too: only a real change of
        // place counts for the still layer.
        const auto moved = [this, position] {
            if (standsStill(*position)) {
                const StillPlace place{position->position(), position->heading()};
                auto known = m_still_places.find(position);
                if (known == m_still_places.end() || !(known->position == place.position) ||
                    known->heading != place.heading) {
                    m_still_places.insert(position, place);
                    m_still_valid = false;
                }
            }
            update();
        };
        connect(position, &QPositionObject::positionChanged, this, moved);
        connect(position, &QPositionObject::headingChanged, this, moved);
    }
    if (auto* car = qobject_cast<overmap_ui::QCar*>(object))
        connect(car, &overmap_ui::QCar::contourChanged, this, &QSceneItem::scheduleUpdate);
    if (auto* track = qobject_cast<overmap_ui::QTrack*>(object)) {
        // A track makes its segments when they are first read, and that must happen in its
        // own thread: the render thread, which paints them, only reads what is made here.
        connect(track, &overmap_ui::QTrack::segmentsChanged, this, [this, track] {
            track->segments();
            dropTrackCaches();
        });
        track->segments();
    }
    if (auto* calculation = qobject_cast<overmap_ui::QCalculation*>(object))
        connect(calculation, &overmap_ui::QCalculation::dataChanged, this, &QSceneItem::scheduleUpdate);
}

void QSceneItem::dropTrackCaches()
{
    m_track_cache.clear();
    markStill();
}

void QSceneItem::watchModel()
{
    if (m_objects_model) {
        for (int row = 0; row < m_objects_model->rowCount(); ++row)
            watchObject(m_objects_model->index(row, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>());
    }
    overmap_ui::QObjectManager* manager = objectsManager();
    if (manager != m_watched_manager) {
        if (m_watched_manager)
            disconnect(m_watched_manager, nullptr, this, nullptr);
        m_watched_manager = manager;
        m_track_cache.clear();
        if (manager != nullptr) {
            // A rebuilt scene replaces its objects: their caches and connections go with them.
            connect(manager, &overmap_ui::QObjectManager::dataChanged, this, [this] {
                m_track_cache.clear();
                watchModel();
                markStill();
            });
        }
    }
    if (manager != nullptr) {
        for (QObject* track : manager->tracks()->list())
            watchObject(track);
        for (QObject* calculation : manager->calculations()->list())
            watchObject(calculation);
    }
}

bool QSceneItem::isHidden(int object_id) const
{
    auto* filter = qobject_cast<overmap_ui::PositionObjectsFilteredModel*>(m_objects_model.data());
    return filter != nullptr && filter->isFiltered(object_id);
}

QTransform QSceneItem::degreesToScreen() const
{
    const QGeoCoordinate c = m_viewport->center();
    const QPointF origin = m_viewport->projectGPSToScreen(c);
    const QPointF east =
        m_viewport->projectGPSToScreen(QGeoCoordinate(c.latitude(), c.longitude() + PROBE_DEGREES)) - origin;
    const QPointF north =
        m_viewport->projectGPSToScreen(QGeoCoordinate(c.latitude() + PROBE_DEGREES, c.longitude())) - origin;
    // The plane is equirectangular, so longitude and latitude reach the screen by an affine map.
    const double m11 = east.x() / PROBE_DEGREES;
    const double m12 = east.y() / PROBE_DEGREES;
    const double m21 = north.x() / PROBE_DEGREES;
    const double m22 = north.y() / PROBE_DEGREES;
    return QTransform(m11, m12, m21, m22, origin.x() - m11 * c.longitude() - m21 * c.latitude(),
                      origin.y() - m12 * c.longitude() - m22 * c.latitude());
}

const QSceneItem::TrackCache& QSceneItem::trackCache(overmap_ui::QTrack* track)
{
    auto found = m_track_cache.find(track);
    if (found != m_track_cache.end())
        return *found;
    TrackCache cache;
    const QList<QObject*> segments = track->segments()->list();
    // A and B run along the first edge, D and C along the second, segment after segment.
    for (int i = 0; i < segments.size(); ++i) {
        const auto* segment = static_cast<const overmap_ui::QTrackSegment*>(segments[i]);
        if (i == 0) {
            cache.first_edge << toDegrees(segment->posA());
            cache.second_edge << toDegrees(segment->posD());
        }
        cache.first_edge << toDegrees(segment->posB());
        cache.second_edge << toDegrees(segment->posC());
    }
    cache.ribbon = cache.first_edge;
    for (auto it = cache.second_edge.crbegin(); it != cache.second_edge.crend(); ++it)
        cache.ribbon << *it;
    cache.bounds = cache.ribbon.boundingRect();
    return *m_track_cache.insert(track, cache);
}

QColor QSceneItem::locatorColor(const QPositionObject& locator) const
{
    const auto* with_qualities = qobject_cast<const overmap_ui::QLocator*>(&locator);
    if (with_qualities != nullptr) {
        const int count = std::min(with_qualities->getPositionQualitiesCount(), 3);
        for (int i = 0; i < count; ++i) {
            const overmap_ui::QPositionQuality* quality = with_qualities->getPositionQuality(i);
            const lum::qchannel::QChannel* channel = quality->qualityChannel();
            if (channel == nullptr)
                continue;
            bool ok = false;
            const double value = channel->valueAtTime(m_display_time).toDouble(&ok);
            if (ok && value >= quality->lowerThreshold() && value <= quality->upperThreshold())
                return QUALITY_COLORS[i];
        }
    }
    return locator.color();
}

QString QSceneItem::calculationText(int calc_id) const
{
    overmap_ui::QObjectManager* manager = objectsManager();
    const overmap_ui::QChannelFetcher* fetcher = manager ? manager->channelFetcher() : nullptr;
    const lum::qchannel::QChannel* channel = fetcher ? fetcher->resultChannelOf(calc_id) : nullptr;
    if (channel == nullptr)
        return QString();
    bool ok = false;
    const double value = channel->valueAtTime(m_display_time).toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return QString();
    const QString unit = channel->unit().isEmpty() ? QStringLiteral("m") : channel->unit();
    return QString::number(value, 'f', 2) + QLatin1Char(' ') + unit;
}

void QSceneItem::markStill()
{
    m_still_valid = false;
    update();
}

void QSceneItem::paint(QPainter* painter)
{
    if (m_viewport == nullptr || width() <= 0.0 || height() <= 0.0) {
        if (m_background_color.alpha() > 0)
            painter->fillRect(boundingRect(), m_background_color);
        return;
    }
    // What does not move with time (grid, image, tracks, cones) is drawn once for each view
    // and then copied: during playback only the moving objects cost a frame. The layer
    // reaches past the view by a margin, so that a view that only moves (a followed object,
    // a drag) shifts the copy instead of drawing it anew.
    const QSize size(static_cast<int>(std::ceil(width())), static_cast<int>(std::ceil(height())));
    auto* filter = qobject_cast<overmap_ui::PositionObjectsFilteredModel*>(m_objects_model.data());
    const StillKey key{m_viewport->rotation(), m_viewport->scaling(), size,
                       filter ? filter->getFilteredIds() : std::set<int>()};
    QPoint shift;
    if (m_still_valid && key == m_still_key) {
        // Same turn and scale: moving the centre moves every point by the same pixels.
        const QPointF drawn_center =
            m_viewport->projectGPSToScreen(m_still_center) - QPointF(width() * 0.5, height() * 0.5);
        shift = drawn_center.toPoint();
        if (std::abs(shift.x()) > STILL_MARGIN || std::abs(shift.y()) > STILL_MARGIN)
            m_still_valid = false;
    }
    if (!m_still_valid || !(key == m_still_key)) {
        shift = QPoint();
        const QRectF reach =
            boundingRect().adjusted(-STILL_MARGIN, -STILL_MARGIN, STILL_MARGIN, STILL_MARGIN);
        m_still_layer =
            QImage(size + QSize(2 * STILL_MARGIN, 2 * STILL_MARGIN), QImage::Format_ARGB32_Premultiplied);
        m_still_layer.fill(m_background_color.alpha() > 0 ? m_background_color : QColor(Qt::transparent));
        QPainter still(&m_still_layer);
        still.translate(STILL_MARGIN, STILL_MARGIN);
        still.setRenderHint(QPainter::Antialiasing, true);
        QFont font = still.font();
        font.setPixelSize(12);
        still.setFont(font);
        if (m_show_coordinate_system)
            paintGrid(still, reach);
        if (m_background_image_visible)
            paintBackgroundImage(still);
        paintTracks(still, degreesToScreen(), reach);
        paintPositionObjects(still, true, reach.adjusted(-40.0, -40.0, 40.0, 40.0));
        m_still_key = key;
        m_still_center = m_viewport->center();
        m_still_valid = true;
    }
    painter->setCompositionMode(QPainter::CompositionMode_Source);
    painter->drawImage(QPointF(shift.x() - STILL_MARGIN, shift.y() - STILL_MARGIN), m_still_layer);
    painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter->setRenderHint(QPainter::Antialiasing, true);
    QFont font = painter->font();
    font.setPixelSize(12);
    painter->setFont(font);
    paintCalculations(*painter);
    paintPositionObjects(*painter, false, boundingRect().adjusted(-40.0, -40.0, 40.0, 40.0));
    paintSelection(*painter);
    paintCompass(*painter);
    paintScaleBar(*painter);
}

void QSceneItem::paintGrid(QPainter& painter, const QRectF& reach) const
{
    // Lines every round number of metres along the view's own axes, through its centre's
    // multiples, so that the grid moves with the scene.
    const double scaling = m_viewport->scaling();
    const double step = roundStep(60.0 / scaling);
    const double pixels = step * scaling;
    const QPointF middle(width() * 0.5, height() * 0.5);
    const double half_diagonal = std::hypot(reach.width(), reach.height()) * 0.5;
    const int lines = static_cast<int>(std::ceil(half_diagonal / pixels)) + 1;
    const double angle = -m_viewport->rotation();
    painter.save();
    painter.translate(middle);
    painter.rotate(angle);
    painter.setPen(QPen(GRID_COLOR, 1.0));
    for (int i = -lines; i <= lines; ++i) {
        const double at = i * pixels;
        painter.drawLine(QPointF(at, -half_diagonal), QPointF(at, half_diagonal));
        painter.drawLine(QPointF(-half_diagonal, at), QPointF(half_diagonal, at));
    }
    painter.restore();
}

void QSceneItem::paintBackgroundImage(QPainter& painter)
{
    overmap_ui::AerialImage* aerial = m_reference_plane ? m_reference_plane->backgroundImage() : nullptr;
    if (aerial == nullptr || aerial->imagePath().isEmpty() || m_background_image_opacity <= 0.0)
        return;
    if (aerial->imagePath() != m_image_path) {
        m_image_path = aerial->imagePath();
        const QUrl url(m_image_path);
        m_image = QImage(url.isLocalFile() ? url.toLocalFile() : m_image_path);
    }
    const QPointF p1 = aerial->primaryXYPoint();
    const QPointF p2 = aerial->secondaryXYPoint();
    const QPointF s1 = m_viewport->projectGPSToScreen(aerial->primaryGPSPoint());
    const QPointF s2 = m_viewport->projectGPSToScreen(aerial->secondaryGPSPoint());
    const QPointF image_span = p2 - p1;
    const double span_squared = QPointF::dotProduct(image_span, image_span);
    if (m_image.isNull() || span_squared <= 0.0)
        return;
    // The two tie points fix a similarity: turn and scale from image to screen, both y down.
    const QPointF screen_span = s2 - s1;
    const double a = (screen_span.x() * image_span.x() + screen_span.y() * image_span.y()) / span_squared;
    const double b = (screen_span.y() * image_span.x() - screen_span.x() * image_span.y()) / span_squared;
    const QTransform image_to_screen(a, b, -b, a, s1.x() - (a * p1.x() - b * p1.y()),
                                     s1.y() - (b * p1.x() + a * p1.y()));
    painter.save();
    painter.setOpacity(m_background_image_opacity);
    painter.setTransform(image_to_screen, true);
    painter.drawImage(QPointF(0.0, 0.0), m_image);
    painter.restore();
}

void QSceneItem::paintTracks(QPainter& painter, const QTransform& to_screen, const QRectF& reach)
{
    overmap_ui::QObjectManager* manager = objectsManager();
    if (manager == nullptr)
        return;
    painter.save();
    for (QObject* object : manager->tracks()->list()) {
        auto* track = qobject_cast<overmap_ui::QTrack*>(object);
        if (track == nullptr || isHidden(track->objectId()))
            continue;
        const TrackCache& cache = trackCache(track);
        if (cache.ribbon.size() < 3)
            continue;
        if (!to_screen.mapRect(cache.bounds).intersects(reach))
            continue;
        const QColor color = track->color();
        painter.setPen(Qt::NoPen);
        painter.setBrush(TRACK_FILL);
        painter.drawPolygon(mappedThinned(to_screen, cache.ribbon), Qt::WindingFill);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
        painter.drawPolyline(mappedThinned(to_screen, cache.first_edge));
        painter.drawPolyline(mappedThinned(to_screen, cache.second_edge));
    }
    painter.restore();
}

void QSceneItem::paintCalculations(QPainter& painter) const
{
    overmap_ui::QObjectManager* manager = objectsManager();
    if (manager == nullptr)
        return;
    // Where a side measures: a position object at its chosen POI or its reference point,
    // a track at its vertex nearest to the other side.
    const auto endOf = [this](QGeoObject* object, bool use_poi, int poi, QGeoCoordinate& at) {
        if (object == nullptr || isHidden(object->objectId()))
            return false;
        if (auto* position = qobject_cast<QPositionObject*>(object)) {
            at = use_poi ? position->getPoiGeoPosition(poi) : position->position();
            return at.isValid();
        }
        return false;
    };
    const auto nearestOnTrack = [](QGeoObject* object, const QGeoCoordinate& towards, QGeoCoordinate& at) {
        auto* track = qobject_cast<overmap_ui::QTrack*>(object);
        if (track == nullptr)
            return false;
        double best = -1.0;
        for (int i = 0; i < track->trackPointCount(); ++i) {
            const QGeoCoordinate point = track->getTrackPoint(i);
            const double d = point.distanceTo(towards);
            if (point.isValid() && (best < 0.0 || d < best)) {
                best = d;
                at = point;
            }
        }
        return best >= 0.0;
    };
    painter.save();
    std::vector<QRectF> placed;
    std::vector<QString> texts;
    // Where the cones and locators in sight are drawn: values keep off them.
    std::vector<QRectF> marks;
    if (m_objects_model != nullptr) {
        const QRectF visible = boundingRect();
        for (int row = 0; row < m_objects_model->rowCount(); ++row) {
            auto* object = qobject_cast<QPositionObject*>(
                m_objects_model->index(row, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>());
            if (object == nullptr || qobject_cast<overmap_ui::QCar*>(object) != nullptr ||
                isHidden(object->objectId()) || !object->position().isValid())
                continue;
            const QPointF at = m_viewport->projectGPSToScreen(object->position());
            if (visible.contains(at))
                marks.emplace_back(at - QPointF(PICK_PIXELS, PICK_PIXELS),
                                   QSizeF(2 * PICK_PIXELS, 2 * PICK_PIXELS));
        }
    }
    for (QObject* object : manager->calculations()->list()) {
        auto* calculation = qobject_cast<overmap_ui::QCalculation*>(object);
        if (calculation == nullptr)
            continue;
        QGeoCoordinate from;
        QGeoCoordinate to;
        const bool from_ok =
            endOf(calculation->fromObject(), calculation->useFromPoi(), calculation->fromPoiIdx(), from);
        const bool to_ok =
            endOf(calculation->toObject(), calculation->useToPoi(), calculation->toPoiIdx(), to);
        if (from_ok && !to_ok) {
            if (calculation->toObject() == nullptr || isHidden(calculation->toObject()->objectId()) ||
                !nearestOnTrack(calculation->toObject(), from, to))
                continue;
        } else if (!from_ok && to_ok) {
            if (calculation->fromObject() == nullptr || isHidden(calculation->fromObject()->objectId()) ||
                !nearestOnTrack(calculation->fromObject(), to, from))
                continue;
        } else if (!from_ok) {
            continue;
        }
        if (!m_viewport->isSegmentInside(from, to))
            continue;
        const QPointF a = m_viewport->projectGPSToScreen(from);
        const QPointF b = m_viewport->projectGPSToScreen(to);
        painter.setPen(QPen(CALCULATION_COLOR, 1.6, Qt::DashLine, Qt::FlatCap));
        painter.drawLine(a, b);
        const QString text = calculationText(calculation->calcId());
        if (!text.isEmpty()) {
            // On a light box beside the middle of the line: legible over tracks and the street
            // map, and the objects on the line (a slalom's cones) stay in sight.
            const QFontMetricsF metrics(painter.font());
            QRectF box = QRectF(0.0, 0.0, metrics.horizontalAdvance(text), metrics.height())
                             .adjusted(-3.0, -1.0, 3.0, 1.0);
            const QPointF along = b - a;
            const double length = std::hypot(along.x(), along.y());
            QPointF normal = length > 0.0 ? QPointF(along.y(), -along.x()) / length : QPointF(0.0, -1.0);
            if (normal.x() < 0.0 || (normal.x() == 0.0 && normal.y() > 0.0))
                normal = -normal; // to the right, or up for a level line
            const double clearance =
                std::abs(normal.x()) * box.width() / 2 + std::abs(normal.y()) * box.height() / 2 + 4.0;
            // Further out along the normal while it would cover an object or another value;
            // where no place is free within reach, the nearest one is taken.
            const auto blocked = [&](const QRectF& at) {
                return std::any_of(marks.begin(), marks.end(),
                                   [&](const QRectF& m) { return m.intersects(at); }) ||
                       std::any_of(placed.begin(), placed.end(),
                                   [&](const QRectF& m) { return m.intersects(at); });
            };
            box.moveCenter((a + b) / 2 + normal * clearance);
            for (int step = 1; step <= LABEL_TRIES && blocked(box); ++step) {
                bool free = false;
                for (const double side : {1.0, -1.0}) {
                    QRectF moved = box;
                    moved.moveCenter((a + b) / 2 + normal * (side * (clearance + step * LABEL_STEP_PIXELS)));
                    if (!blocked(moved)) {
                        box = moved;
                        free = true;
                        break;
                    }
                }
                if (free)
                    break;
            }
            placed.push_back(box);
            texts.push_back(text);
        }
    }
    // Over every line, so that no line crosses a value.
    const double ascent = QFontMetricsF(painter.font()).ascent();
    painter.setPen(QPen(CALCULATION_COLOR, 0.0));
    painter.setBrush(QColor(255, 255, 255, 215));
    for (std::size_t i = 0; i < placed.size(); ++i) {
        painter.drawRoundedRect(placed[i], 3.0, 3.0);
        painter.drawText(QPointF(placed[i].left() + 3.0, placed[i].top() + 1.0 + ascent), texts[i]);
    }
    painter.restore();
}

void QSceneItem::paintPositionObjects(QPainter& painter, bool still, const QRectF& visible) const
{
    if (m_objects_model == nullptr)
        return;
    const double scaling = m_viewport->scaling();
    const bool cone_names = scaling >= 4.0;
    struct Label
    {
        QPointF at;
        QString text;
        QColor color;
    };
    std::vector<Label> labels;
    std::vector<const overmap_ui::QCar*> cars;
    painter.save();
    for (int row = 0; row < m_objects_model->rowCount(); ++row) {
        auto* object = qobject_cast<QPositionObject*>(
            m_objects_model->index(row, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>());
        if (object == nullptr || isHidden(object->objectId()) || !object->position().isValid() ||
            standsStill(*object) != still)
            continue;
        if (auto* car = qobject_cast<const overmap_ui::QCar*>(object)) {
            cars.push_back(car); // on top of cones and locators
            continue;
        }
        const QPointF at = m_viewport->projectGPSToScreen(object->position());
        if (!visible.contains(at))
            continue;
        if (object->getType() == QGeoObject::CONE) {
            const double h = std::max(CONE_PIXELS, object->width() * scaling);
            QPolygonF triangle;
            triangle << at + QPointF(0.0, -0.6 * h) << at + QPointF(0.5 * h, 0.4 * h)
                     << at + QPointF(-0.5 * h, 0.4 * h);
            painter.setPen(QPen(object->color().darker(150), 0.0));
            painter.setBrush(object->color());
            painter.drawPolygon(triangle);
            if (cone_names)
                labels.push_back({at + QPointF(0.6 * h + 2.0, 0.4 * h), object->name(), TEXT_COLOR});
        } else {
            const QColor color = locatorColor(*object);
            const double r = 6.0;
            painter.setPen(QPen(color.darker(160), 1.4));
            painter.drawLine(at + QPointF(-2 * r, 0.0), at + QPointF(2 * r, 0.0));
            painter.drawLine(at + QPointF(0.0, -2 * r), at + QPointF(0.0, 2 * r));
            painter.setPen(QPen(Qt::white, 1.5));
            painter.setBrush(color);
            painter.drawEllipse(at, r, r);
            labels.push_back({at + QPointF(2 * r + 2.0, 2 * r), object->name(), color.darker(160)});
        }
    }
    for (const overmap_ui::QCar* car : cars) {
        const QPolygonF contour = carOutline(*car);
        if (contour.size() < 3)
            continue;
        const QRectF extent = contour.boundingRect();
        if (!extent.intersects(visible))
            continue;
        // A hairline outline: the cosmetic stroker is many times faster than joins of a wide pen.
        painter.setPen(QPen(car->color().darker(170), 0.0));
        painter.setBrush(car->color());
        painter.drawPolygon(contour);
        labels.push_back(
            {QPointF(extent.right() + 4.0, extent.top() + 10.0), car->name(), car->color().darker(150)});
    }
    for (const Label& label : labels)
        drawHaloText(painter, label.at, label.text, label.color);
    painter.restore();
}

QPolygonF QSceneItem::carOutline(const overmap_ui::QCar& car) const
{
    const overmap::Car& model = *car.carModel();
    const QPointF reference = m_viewport->projectGPSToScreen(car.position());
    QPolygonF contour;
    for (const math_geo::Point2D& point : model.contourInLocalSystem()) {
        const math_geo::GeoPosition geo = model.toGeo(point);
        contour << m_viewport->projectGPSToScreen(QGeoCoordinate(geo.latitude, geo.longitude));
    }
    // A car smaller than a finger's width on a wide view grows around its reference point.
    const double length_pixels = std::max(car.length(), car.width()) * m_viewport->scaling();
    if (length_pixels < MIN_CAR_PIXELS && length_pixels > 0.0) {
        const double k = MIN_CAR_PIXELS / length_pixels;
        for (QPointF& point : contour)
            point = reference + (point - reference) * k;
    }
    return contour;
}

void QSceneItem::setSelectedObject(QObject* object)
{
    if (object == m_selected)
        return;
    m_selected = object;
    Q_EMIT selectedObjectChanged();
    update();
}

QObject* QSceneItem::positionObjectAt(const QPointF& point) const
{
    if (m_objects_model == nullptr || m_viewport == nullptr)
        return nullptr;
    // Cars are drawn over the rest, later rows over earlier ones: search from the top.
    QObject* nearest = nullptr;
    double nearest_distance = PICK_PIXELS;
    for (int row = m_objects_model->rowCount() - 1; row >= 0; --row) {
        auto* object = qobject_cast<QPositionObject*>(
            m_objects_model->index(row, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>());
        if (object == nullptr || isHidden(object->objectId()) || !object->position().isValid())
            continue;
        if (auto* car = qobject_cast<overmap_ui::QCar*>(object)) {
            if (carOutline(*car).containsPoint(point, Qt::OddEvenFill))
                return car;
            continue;
        }
        const QPointF at = m_viewport->projectGPSToScreen(object->position());
        const double distance = std::hypot(at.x() - point.x(), at.y() - point.y());
        if (distance <= nearest_distance) {
            nearest = object;
            nearest_distance = distance;
        }
    }
    return nearest;
}

bool QSceneItem::isMovable(QObject* object) const
{
    auto* position = qobject_cast<QPositionObject*>(object);
    return position != nullptr && standsStill(*position);
}

void QSceneItem::paintSelection(QPainter& painter) const
{
    auto* object = qobject_cast<QPositionObject*>(m_selected.data());
    if (object == nullptr || isHidden(object->objectId()) || !object->position().isValid())
        return;
    QRectF box;
    if (auto* car = qobject_cast<overmap_ui::QCar*>(object))
        box = carOutline(*car).boundingRect();
    const QPointF at = m_viewport->projectGPSToScreen(object->position());
    if (box.isEmpty())
        box = QRectF(at, QSizeF()).adjusted(-PICK_PIXELS, -PICK_PIXELS, PICK_PIXELS, PICK_PIXELS);
    const QPointF middle = box.center();
    const double radius = std::hypot(box.width(), box.height()) * 0.5 + 4.0;
    painter.save();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 230), 4.0));
    painter.drawEllipse(middle, radius, radius);
    painter.setPen(QPen(SELECTION_COLOR, 2.0, Qt::DashLine));
    painter.drawEllipse(middle, radius, radius);
    painter.restore();
}

void QSceneItem::paintCompass(QPainter& painter) const
{
    const double radius = 16.0;
    const QPointF hub(width() - 10.0 - radius - m_compass_shift, 10.0 + radius);
    painter.save();
    painter.translate(hub);
    painter.setPen(QPen(QColor(180, 180, 175), 1.0));
    painter.setBrush(QColor(255, 255, 255, 220));
    painter.drawEllipse(QPointF(0.0, 0.0), radius, radius);
    // North turns against the map's heading.
    painter.rotate(-m_viewport->rotation());
    QPolygonF needle;
    needle << QPointF(0.0, -radius * 0.85) << QPointF(radius * 0.35, 0.0) << QPointF(-radius * 0.35, 0.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(200, 40, 40));
    painter.drawPolygon(needle);
    QPolygonF tail;
    tail << QPointF(0.0, radius * 0.85) << QPointF(radius * 0.35, 0.0) << QPointF(-radius * 0.35, 0.0);
    painter.setBrush(QColor(90, 90, 90));
    painter.drawPolygon(tail);
    painter.restore();
}

void QSceneItem::paintScaleBar(QPainter& painter) const
{
    const double scaling = m_viewport->scaling();
    const double metres = roundStep(width() / 5.0 / scaling);
    const double bar = metres * scaling;
    const QPointF left(12.0, height() - 12.0 - m_scale_bottom_margin);
    const QString text = metres >= 1000.0 ? QString::number(metres / 1000.0) + QStringLiteral(" km")
                                          : QString::number(metres) + QStringLiteral(" m");
    painter.save();
    painter.setPen(QPen(TEXT_COLOR, 2.0, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(left, left + QPointF(bar, 0.0));
    painter.drawLine(left, left + QPointF(0.0, -6.0));
    painter.drawLine(left + QPointF(bar, 0.0), left + QPointF(bar, -6.0));
    drawHaloText(painter, left + QPointF(4.0, -6.0), text, TEXT_COLOR);
    painter.restore();
}

} // namespace overmap_qml
