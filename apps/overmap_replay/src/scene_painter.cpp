#include <overmap_replay/scene_painter.h>

#include <lum_calc_extension/calculation_geometry.h>

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/object_manager.h>
#include <om_model/track.h>

#include <math_geo/projection_plane.h>

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace overmap_replay {

using math_geo::CoordinateSystem;
using math_geo::Point2D;

const QColor ScenePainter::CONE_COLOR(255, 140, 0);
const QColor ScenePainter::TRACK_FILL(221, 221, 216);
const QColor ScenePainter::BACKGROUND(247, 247, 242);

namespace {

constexpr double MINIMUM_EXTENT = 20.0; // metres, for scenes of one point
constexpr int MAXIMUM_SIDE = 16384;     // pixels; beyond that QImage allocations become absurd

/// Colours for cars that bring none of their own, or one that an earlier car has.
const QColor PALETTE[] = {QColor(214, 39, 40),   QColor(31, 119, 180), QColor(44, 160, 44),
                          QColor(148, 103, 189), QColor(140, 86, 75),  QColor(227, 119, 194),
                          QColor(23, 190, 207),  QColor(188, 189, 34)};
constexpr std::size_t PALETTE_SIZE = sizeof PALETTE / sizeof PALETTE[0];
const QColor CALCULATION_COLOR(106, 61, 154);
const QColor TEXT_COLOR(40, 40, 40);
const QColor GRID_COLOR(226, 226, 220);

bool finite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

double length(const QPointF& v)
{
    return std::hypot(v.x(), v.y());
}

/// 1, 2 or 5 times a power of ten, the largest not above @p value.
double niceStep(double value)
{
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (double factor : {5.0, 2.0, 1.0}) {
        if (factor * power <= value)
            return factor * power;
    }
    return power;
}

QString metresText(double metres)
{
    if (metres >= 1000.0)
        return QString::number(metres / 1000.0, 'g', 3) + QStringLiteral(" km");
    return QString::number(metres, 'g', 4) + QStringLiteral(" m");
}

/// Text with a light halo, so that it stays legible over lines and fills.
/// @p anchor is the left end of the base line, pixels.
void drawLabel(QPainter& painter, const QPointF& anchor, const QString& text, const QColor& color)
{
    QPainterPath path;
    path.addText(anchor, painter.font(), text);
    painter.save();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 220), 3.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(path);
    painter.restore();
}

QPolygonF mapped(const QTransform& view, const std::vector<QPointF>& points)
{
    QPolygonF polygon;
    polygon.reserve(static_cast<int>(points.size()));
    for (const QPointF& point : points) {
        if (finite(point))
            polygon << view.map(point);
    }
    return polygon;
}

} // namespace

/// A track ribbon in the picture frame: the filled pieces, and the lines along it.
struct ScenePainter::TrackShape
{
    const overmap::Track* track = nullptr;
    std::vector<QPolygonF> pieces;
    std::vector<QPointF> first_edge;
    std::vector<QPointF> second_edge;
    std::vector<QPointF> center_line;
};

ScenePainter::ScenePainter(const overmap::ObjectManager& manager) : m_manager(manager) {}

QPointF ScenePainter::toPicture(const Point2D& plane_point)
{
    Point2D point = plane_point;
    // SAE is a label without a conversion: its numbers are taken as they stand.
    if (point.getCoordinateSystem() == CoordinateSystem::SAE)
        point.setCoordinateSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    else
        point.toCoordSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    return QPointF(point.x, point.y);
}

QPointF ScenePainter::geoToPicture(const math_geo::GeoPosition& position) const
{
    return toPicture(m_manager.getReferencePlane()->toPlane(position));
}

bool ScenePainter::visible(const overmap::GeoObject& object) const
{
    return m_hidden.count(object.getId()) == 0;
}

QPointF ScenePainter::localToPicture(const overmap::PositionObject& object, const Point2D& local) const
{
    return geoToPicture(object.toGeo(local));
}

std::vector<ScenePainter::TrackShape> ScenePainter::trackShapes() const
{
    std::vector<TrackShape> shapes;
    for (const auto& object : m_manager.getObjects()) {
        const auto* track = dynamic_cast<const overmap::Track*>(object.get());
        if (track == nullptr || !visible(*track))
            continue;
        const lum::calc::TrackOutline outline = lum::calc::trackOutline(*track);
        if (outline.first_edge.size() < 2)
            continue;
        TrackShape shape;
        shape.track = track;
        for (std::size_t i = 0; i < outline.first_edge.size() && i < outline.second_edge.size(); ++i) {
            shape.first_edge.push_back(toPicture(outline.first_edge[i]));
            shape.second_edge.push_back(toPicture(outline.second_edge[i]));
        }
        for (const Point2D& point : outline.center_line)
            shape.center_line.push_back(toPicture(point));
        for (std::size_t i = 1; i < shape.first_edge.size(); ++i) {
            QPolygonF piece;
            piece << shape.first_edge[i - 1] << shape.first_edge[i] << shape.second_edge[i]
                  << shape.second_edge[i - 1];
            if (std::all_of(piece.begin(), piece.end(), finite))
                shape.pieces.push_back(piece);
        }
        shapes.push_back(std::move(shape));
    }
    return shapes;
}

QRectF ScenePainter::sceneBounds() const
{
    double min_x = INFINITY, min_y = INFINITY, max_x = -INFINITY, max_y = -INFINITY;
    const auto extend = [&](const QPointF& point) {
        if (!finite(point))
            return;
        min_x = std::min(min_x, point.x());
        max_x = std::max(max_x, point.x());
        min_y = std::min(min_y, point.y());
        max_y = std::max(max_y, point.y());
    };
    for (const TrackShape& shape : trackShapes()) {
        for (const QPolygonF& piece : shape.pieces) {
            for (const QPointF& point : piece)
                extend(point);
        }
    }
    for (const auto& object : m_manager.getObjects()) {
        const auto* position_object = dynamic_cast<const overmap::PositionObject*>(object.get());
        if (position_object == nullptr || !visible(*position_object))
            continue;
        extend(geoToPicture(position_object->getGeoPosition()));
        if (const auto* car = dynamic_cast<const overmap::Car*>(position_object)) {
            for (const Point2D& point : car->contourInLocalSystem())
                extend(localToPicture(*car, point));
        }
    }
    for (const DrivenPath& path : m_paths) {
        if (m_hidden.count(path.object_id) != 0)
            continue;
        for (const auto& position : path.positions) {
            if (position.valid())
                extend(geoToPicture(position));
        }
    }
    if (!(min_x <= max_x))
        return QRectF(-MINIMUM_EXTENT / 2, -MINIMUM_EXTENT / 2, MINIMUM_EXTENT, MINIMUM_EXTENT);
    QRectF bounds(QPointF(min_x, min_y), QPointF(max_x, max_y));
    const QPointF center = bounds.center();
    bounds.setWidth(std::max(bounds.width(), MINIMUM_EXTENT));
    bounds.setHeight(std::max(bounds.height(), MINIMUM_EXTENT));
    bounds.moveCenter(center);
    return bounds;
}

QTransform ScenePainter::viewTransform(const QSize& size) const
{
    const QRectF bounds = sceneBounds();
    const double w = size.width();
    const double h = size.height();
    // Room for labels beside the outermost objects, and for the corner texts.
    const double margin = std::max(24.0, 0.07 * std::min(w, h));
    const double scale =
        std::max(1e-9, std::min((w - 2 * margin) / bounds.width(), (h - 2 * margin) / bounds.height()));
    const QPointF c = bounds.center();
    return QTransform(scale, 0.0, 0.0, -scale, w / 2 - scale * c.x(), h / 2 + scale * c.y());
}

QImage ScenePainter::render(const QSize& size) const
{
    if (size.width() < 1 || size.height() < 1 || size.width() > MAXIMUM_SIDE || size.height() > MAXIMUM_SIDE)
        return QImage();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    QPainter painter(&image);
    paint(painter, size);
    painter.end();
    return image;
}

void ScenePainter::paint(QPainter& painter, const QSize& size) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.fillRect(QRect(QPoint(0, 0), size), BACKGROUND);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(std::clamp(size.height() / 62, 9, 28));
    painter.setFont(font);

    const QTransform view = viewTransform(size);
    const std::vector<TrackShape> tracks = trackShapes();
    if (m_grid_visible)
        paintGrid(painter, view, size);
    paintTracks(painter, view, tracks);
    paintPaths(painter, view);
    paintCalculations(painter, view);
    paintPositionObjects(painter, view);
    paintDecorations(painter, view, size);
    if (m_legend_visible)
        paintLegend(painter, size);
    painter.restore();
}

void ScenePainter::paintGrid(QPainter& painter, const QTransform& view, const QSize& size) const
{
    const double scale = view.m11();
    const double step = niceStep(std::max(1e-3, 110.0 / scale) * 1.5);
    const QRectF area = view.inverted().mapRect(QRectF(QPointF(0, 0), QSizeF(size)));
    painter.save();
    painter.setPen(QPen(GRID_COLOR, 1.0));
    for (double x = std::ceil(area.left() / step) * step; x <= area.right(); x += step) {
        const double px = view.map(QPointF(x, 0.0)).x();
        painter.drawLine(QPointF(px, 0.0), QPointF(px, size.height()));
    }
    for (double y = std::ceil(area.top() / step) * step; y <= area.bottom(); y += step) {
        const double py = view.map(QPointF(0.0, y)).y();
        painter.drawLine(QPointF(0.0, py), QPointF(size.width(), py));
    }
    painter.restore();
}

void ScenePainter::paintTracks(QPainter& painter, const QTransform& view,
                               const std::vector<TrackShape>& tracks) const
{
    painter.save();
    // One fill for all pieces of a track, so that overlapping pieces show no seams.
    for (const TrackShape& shape : tracks) {
        QPainterPath area;
        area.setFillRule(Qt::WindingFill);
        for (const QPolygonF& piece : shape.pieces) {
            QPolygonF closed = view.map(piece);
            closed << closed.front();
            area.addPolygon(closed);
        }
        painter.fillPath(area, TRACK_FILL);
    }
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const TrackShape& shape = tracks[i];
        QColor edge(QString::fromStdString(shape.track->getColor()));
        if (!edge.isValid())
            edge = QColor(102, 102, 102);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(edge.darker(115), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(mapped(view, shape.first_edge));
        painter.drawPolyline(mapped(view, shape.second_edge));
        QColor middle = edge;
        middle.setAlpha(150);
        painter.setPen(QPen(middle, 1.0, Qt::DashLine));
        painter.drawPolyline(mapped(view, shape.center_line));
    }
    QFont font = painter.font();
    font.setItalic(true);
    painter.setFont(font);
    for (const TrackShape& shape : tracks) {
        const QPolygonF line = mapped(view, shape.center_line);
        if (line.isEmpty() || shape.track->getName().empty())
            continue;
        // Beside the ribbon, a third along it, where the start of a loop does not crowd it.
        const QPointF at = line[line.size() / 3];
        QColor color(QString::fromStdString(shape.track->getColor()));
        color = color.isValid() ? color.darker(170) : TEXT_COLOR;
        const double half = shape.track->getWidth() * view.m11() / 2;
        drawLabel(painter, at + QPointF(half + 6.0, 4.0), QString::fromStdString(shape.track->getName()),
                  color);
    }
    painter.restore();
}

QColor ScenePainter::paletteColor(std::size_t index)
{
    return PALETTE[index % PALETTE_SIZE];
}

QColor ScenePainter::objectColor(const overmap::GeoObject& object) const
{
    const QColor color(QString::fromStdString(object.getColor()));
    return color.isValid() ? color : TEXT_COLOR;
}

std::map<std::int32_t, QColor> ScenePainter::carColors() const
{
    std::map<std::int32_t, QColor> colors;
    std::set<QRgb> taken;
    std::size_t next = 0;
    for (const auto& object : m_manager.getObjects()) {
        if (dynamic_cast<const overmap::Car*>(object.get()) == nullptr)
            continue;
        QColor color(QString::fromStdString(object->getColor()));
        if (!color.isValid() || taken.count(color.rgb()) != 0) {
            // The first palette colour no car has; when all are taken, round again.
            for (std::size_t tried = 0; tried < PALETTE_SIZE && taken.count(paletteColor(next).rgb()) != 0;
                 ++tried)
                ++next;
            color = paletteColor(next++);
        }
        taken.insert(color.rgb());
        colors.emplace(object->getId(), color);
    }
    return colors;
}

void ScenePainter::paintPaths(QPainter& painter, const QTransform& view) const
{
    const std::map<std::int32_t, QColor> car_colors = carColors();
    painter.save();
    painter.setBrush(Qt::NoBrush);
    for (const DrivenPath& path : m_paths) {
        const auto object = m_manager.findObjectById(path.object_id);
        if (m_hidden.count(path.object_id) != 0)
            continue;
        QPolygonF line;
        for (std::size_t k = 0; k < path.positions.size() && k < path.times.size(); ++k) {
            if (path.times[k] > m_time)
                break;
            if (path.positions[k].valid())
                line << view.map(geoToPicture(path.positions[k]));
        }
        const auto car_color = car_colors.find(path.object_id);
        QColor color = car_color != car_colors.end() ? car_color->second
                       : object                      ? objectColor(*object)
                                                     : TEXT_COLOR;
        color.setAlpha(170);
        painter.setPen(QPen(color, 2.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(line);
    }
    painter.restore();
}

double ScenePainter::carEnlargement(const overmap::PositionObject& car, double metres_to_pixels) const
{
    const double drawn = car.getLength() * metres_to_pixels;
    if (m_minimum_car_length <= 0.0 || !(drawn > 0.0) || drawn >= m_minimum_car_length)
        return 1.0;
    return m_minimum_car_length / drawn;
}

double ScenePainter::calculationValue(const overmap::Calculation& calculation) const
{
    const auto found = m_calculation_values.find(calculation.getId());
    return found == m_calculation_values.end() ? NAN : found->second;
}

bool ScenePainter::calculationLine(const overmap::Calculation& calculation, QPointF& from, QPointF& to) const
{
    if (!std::isfinite(calculationValue(calculation)))
        return false;
    const auto& from_object = calculation.getFrom();
    const auto& to_object = calculation.getTo();
    if (!from_object || !to_object || !visible(*from_object) || !visible(*to_object))
        return false;
    const std::optional<lum::calc::Measurement> measurement = lum::calc::measure(calculation);
    if (!measurement)
        return false;
    from = geoToPicture(measurement->from);
    to = geoToPicture(measurement->to);
    return finite(from) && finite(to);
}

void ScenePainter::paintCalculations(QPainter& painter, const QTransform& view) const
{
    painter.save();
    for (const auto& calculation : m_manager.getCalculations()) {
        QPointF from;
        QPointF to;
        if (!calculationLine(*calculation, from, to))
            continue;
        const double value = calculationValue(*calculation);
        const auto type = calculation->getDistanceType();

        // The ends as drawn: on an enlarged car, where its enlarged points stand.
        const auto drawn = [&](const std::shared_ptr<overmap::GeoObject>& object, const QPointF& point) {
            const auto* car = dynamic_cast<const overmap::Car*>(object.get());
            if (car == nullptr)
                return view.map(point);
            const double k = carEnlargement(*car, view.m11());
            const QPointF reference = localToPicture(*car, Point2D(0.0, 0.0, car->localCoordinateSystem()));
            return view.map(reference + (point - reference) * k);
        };
        const QPointF a = drawn(calculation->getFrom(), from);
        const QPointF b = drawn(calculation->getTo(), to);
        painter.setPen(QPen(CALCULATION_COLOR, 1.6, Qt::DashLine, Qt::FlatCap));
        painter.drawLine(a, b);
        QString text = QString::number(value, 'f', 1) + QStringLiteral(" m");
        if (type == overmap::DistanceType::X)
            text = QStringLiteral("x ") + text;
        else if (type == overmap::DistanceType::Y)
            text = QStringLiteral("y ") + text;
        // A short line has no room for its value beside the objects' names; the legend has it.
        if (length(b - a) >= 6.0 * painter.font().pixelSize()) {
            // Left of a steep line and above a flat one: names of objects stand to their right.
            const double text_width = QFontMetricsF(painter.font()).horizontalAdvance(text);
            const QPointF middle = (a + b) / 2;
            const bool steep = std::fabs(b.y() - a.y()) > std::fabs(b.x() - a.x());
            drawLabel(painter,
                      middle + (steep ? QPointF(-6.0 - text_width, 4.0) : QPointF(-text_width / 2, -6.0)),
                      text, CALCULATION_COLOR);
        }
    }
    painter.restore();
}

void ScenePainter::paintPositionObjects(QPainter& painter, const QTransform& view) const
{
    const double unit = painter.font().pixelSize(); // marker sizes follow the text
    const double scale = view.m11();
    const std::map<std::int32_t, QColor> car_colors = carColors();
    painter.save();
    // Cones and locators under the cars, whose labels go on top of all.
    struct Label
    {
        QPointF anchor;
        QString text;
        QColor color;
        double font_factor;
    };
    std::vector<Label> labels;
    for (const auto& object : m_manager.getObjects()) {
        const auto* position_object = dynamic_cast<const overmap::PositionObject*>(object.get());
        if (position_object == nullptr || !visible(*position_object))
            continue;
        const QPointF at = view.map(geoToPicture(position_object->getGeoPosition()));
        const QString name = QString::fromStdString(position_object->getName());
        if (dynamic_cast<const overmap::Cone*>(position_object) != nullptr) {
            const double h = unit * 0.95;
            QPolygonF triangle;
            triangle << at + QPointF(0.0, -0.62 * h) << at + QPointF(0.55 * h, 0.42 * h)
                     << at + QPointF(-0.55 * h, 0.42 * h);
            painter.setPen(QPen(CONE_COLOR.darker(150), 1.0));
            painter.setBrush(CONE_COLOR);
            painter.drawPolygon(triangle);
            labels.push_back({at + QPointF(0.6 * h + 3.0, 0.35 * h), name, TEXT_COLOR.lighter(160), 0.8});
        } else if (dynamic_cast<const overmap::Locator*>(position_object) != nullptr) {
            const QColor color = objectColor(*position_object);
            const double r = unit * 0.45;
            painter.setPen(QPen(color.darker(160), 1.4));
            painter.setBrush(Qt::NoBrush);
            painter.drawLine(at + QPointF(-1.8 * r, 0), at + QPointF(1.8 * r, 0));
            painter.drawLine(at + QPointF(0, -1.8 * r), at + QPointF(0, 1.8 * r));
            painter.setPen(QPen(Qt::white, 1.5));
            painter.setBrush(color);
            painter.drawEllipse(at, r, r);
            labels.push_back({at + QPointF(-1.8 * r, 1.8 * r + unit), name, color.darker(160), 1.0});
        }
    }
    for (const auto& object : m_manager.getObjects()) {
        const auto* car = dynamic_cast<const overmap::Car*>(object.get());
        if (car == nullptr || !visible(*car))
            continue;
        const QColor color = car_colors.at(car->getId());
        const CoordinateSystem system = car->localCoordinateSystem();
        const QPointF reference = localToPicture(*car, Point2D(0.0, 0.0, system));
        const double k = carEnlargement(*car, scale);
        const auto drawn = [&](const Point2D& local) {
            return view.map(reference + (localToPicture(*car, local) - reference) * k);
        };
        QPolygonF contour;
        for (const Point2D& point : car->contourInLocalSystem())
            contour << drawn(point);
        painter.setPen(QPen(color.darker(170), 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(color);
        painter.drawPolygon(contour);
        // The nose: a line from the reference point forward, so that the heading reads at a glance.
        const double nose = car->getLength() * 0.42;
        const Point2D forward = system == CoordinateSystem::X_RIGHT_Y_FRONT  ? Point2D(0.0, nose, system)
                                : system == CoordinateSystem::X_RIGHT_Y_BACK ? Point2D(0.0, -nose, system)
                                                                             : Point2D(nose, 0.0, system);
        painter.setPen(
            QPen(QColor(255, 255, 255, 200), std::max(1.0, unit * 0.12), Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(drawn(Point2D(0.0, 0.0, system)), drawn(forward));
        painter.setPen(QPen(Qt::white, 0.8));
        painter.setBrush(color.darker(220));
        const double dot = std::max(1.6, unit * 0.16);
        for (const overmap::Poi& poi : car->getPois())
            painter.drawEllipse(drawn(poi.position), dot, dot);
        const QRectF extent = contour.boundingRect();
        labels.push_back({QPointF(extent.right() + 5.0, extent.top() + 2.0),
                          QString::fromStdString(car->getName()), color.darker(150), 1.1});
    }
    QFont font = painter.font();
    for (const Label& label : labels) {
        QFont sized = font;
        sized.setPixelSize(std::max(8, static_cast<int>(std::lround(font.pixelSize() * label.font_factor))));
        sized.setBold(label.font_factor > 1.0);
        painter.setFont(sized);
        drawLabel(painter, label.anchor, label.text, label.color);
    }
    painter.setFont(font);
    painter.restore();
}

void ScenePainter::paintDecorations(QPainter& painter, const QTransform& view, const QSize& size) const
{
    const double unit = painter.font().pixelSize();
    const double pad = unit;
    painter.save();
    const QFont plain = painter.font();
    const QFontMetricsF metrics(plain);

    // Time and scene in the top left corner.
    QFont bold = plain;
    bold.setBold(true);
    bold.setPixelSize(static_cast<int>(std::lround(unit * 1.25)));
    const QString time_text = QStringLiteral("t = %1 s").arg(m_time, 0, 'f', 2);
    const QString description = QString::fromStdString(m_manager.getDescription());
    const QFontMetricsF bold_metrics(bold);
    const double box_width =
        std::max(bold_metrics.horizontalAdvance(time_text), metrics.horizontalAdvance(description)) + 2 * pad;
    const double box_height = bold_metrics.height() + (description.isEmpty() ? 0.0 : metrics.height()) + pad;
    painter.setPen(QPen(QColor(200, 200, 195), 1.0));
    painter.setBrush(QColor(255, 255, 255, 225));
    painter.drawRoundedRect(QRectF(pad, pad, box_width, box_height), 4.0, 4.0);
    painter.setPen(TEXT_COLOR);
    painter.setFont(bold);
    painter.drawText(QPointF(2 * pad, pad + pad / 2 + bold_metrics.ascent()), time_text);
    if (!description.isEmpty()) {
        painter.setFont(plain);
        painter.setPen(TEXT_COLOR.lighter(150));
        painter.drawText(QPointF(2 * pad, pad + pad / 2 + bold_metrics.height() + metrics.ascent()),
                         description);
    }

    // Scale bar in the bottom left corner: a round length near a sixth of the width.
    const double scale = view.m11();
    const double bar_metres = niceStep(size.width() / 6.0 / scale);
    const double bar = bar_metres * scale;
    const QPointF left(2 * pad, size.height() - 2 * pad);
    painter.setFont(plain);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 200));
    painter.drawRoundedRect(QRectF(left.x() - pad / 2, left.y() - metrics.height() - pad, bar + pad,
                                   metrics.height() + 1.5 * pad),
                            4.0, 4.0);
    painter.setPen(QPen(TEXT_COLOR, 2.0, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(left, left + QPointF(bar, 0.0));
    painter.drawLine(left + QPointF(0.0, -5.0), left + QPointF(0.0, 3.0));
    painter.drawLine(left + QPointF(bar, -5.0), left + QPointF(bar, 3.0));
    painter.drawLine(left + QPointF(bar / 2, -3.0), left + QPointF(bar / 2, 0.0));
    const QString bar_text = metresText(bar_metres);
    painter.drawText(QPointF(left.x() + (bar - metrics.horizontalAdvance(bar_text)) / 2, left.y() - 7.0),
                     bar_text);

    // North arrow in the top right corner, along the plane's north.
    const math_geo::GeoPosition center = m_manager.getReferencePlane()->getCenter();
    QPointF north = geoToPicture(math_geo::GeoPosition(
                        center.latitude + (center.latitude > 89.0 ? -1e-3 : 1e-3), center.longitude)) -
                    geoToPicture(center);
    if (center.latitude > 89.0)
        north = -north;
    const double north_length = length(north);
    const QPointF direction = north_length > 0.0
                                  ? QPointF(north.x() / north_length, -north.y() / north_length)
                                  : QPointF(0.0, -1.0);
    const double radius = unit * 1.7;
    const QPointF hub(size.width() - 2 * pad - radius, 2 * pad + radius);
    painter.setPen(QPen(QColor(200, 200, 195), 1.0));
    painter.setBrush(QColor(255, 255, 255, 225));
    painter.drawEllipse(hub, radius + pad * 0.4, radius + pad * 0.4);
    const QPointF side(-direction.y(), direction.x());
    QPolygonF arrow;
    arrow << hub + direction * radius * 0.85 << hub + side * radius * 0.38 - direction * radius * 0.5
          << hub - direction * radius * 0.2 << hub - side * radius * 0.38 - direction * radius * 0.5;
    painter.setPen(QPen(TEXT_COLOR, 1.0));
    painter.setBrush(TEXT_COLOR);
    painter.drawPolygon(arrow);
    bold.setPixelSize(static_cast<int>(unit));
    painter.setFont(bold);
    const QFontMetricsF n_metrics(bold);
    const QPointF n_center = hub - direction * radius * 0.62;
    painter.setPen(TEXT_COLOR);
    painter.drawText(QPointF(n_center.x() - n_metrics.horizontalAdvance(QStringLiteral("N")) / 2,
                             n_center.y() + n_metrics.ascent() / 2 - 1.0),
                     QStringLiteral("N"));
    painter.restore();
}

void ScenePainter::paintLegend(QPainter& painter, const QSize& size) const
{
    struct Entry
    {
        QString text;
        QString value;
        QColor color;
        bool car;
    };
    std::vector<Entry> entries;
    const std::map<std::int32_t, QColor> car_colors = carColors();
    for (const auto& object : m_manager.getObjects()) {
        const auto* car = dynamic_cast<const overmap::Car*>(object.get());
        if (car != nullptr && visible(*car))
            entries.push_back(
                {QString::fromStdString(car->getName()), QString(), car_colors.at(car->getId()), true});
    }
    for (const auto& calculation : m_manager.getCalculations()) {
        QPointF from;
        QPointF to;
        if (!calculationLine(*calculation, from, to))
            continue;
        QString value = QString::number(calculationValue(*calculation), 'f', 1) + QStringLiteral(" m");
        if (calculation->getDistanceType() == overmap::DistanceType::X)
            value = QStringLiteral("x ") + value;
        else if (calculation->getDistanceType() == overmap::DistanceType::Y)
            value = QStringLiteral("y ") + value;
        entries.push_back({QString::fromStdString(calculation->getName()), value, CALCULATION_COLOR, false});
    }
    if (entries.empty())
        return;

    painter.save();
    QFont font = painter.font();
    font.setPixelSize(std::max(8, static_cast<int>(std::lround(font.pixelSize() * 0.92))));
    painter.setFont(font);
    const QFontMetricsF metrics(font);
    const double unit = font.pixelSize();
    const double pad = unit * 0.8;
    const double key = unit * 2.0; // the swatch or dash sample
    double text_width = 0.0;
    double value_width = 0.0;
    for (const Entry& entry : entries) {
        text_width = std::max(text_width, metrics.horizontalAdvance(entry.text));
        value_width = std::max(value_width, metrics.horizontalAdvance(entry.value));
    }
    const double line = metrics.height() * 1.25;
    const double width =
        pad + key + pad + text_width + (value_width > 0.0 ? pad * 2 + value_width : 0.0) + pad;
    const double height = pad * 2 + line * static_cast<double>(entries.size());
    // Under the north arrow, against the right edge.
    const QRectF box(size.width() - unit - width, unit * 6.0, width, height);
    painter.setPen(QPen(QColor(200, 200, 195), 1.0));
    painter.setBrush(QColor(255, 255, 255, 230));
    painter.drawRoundedRect(box, 4.0, 4.0);
    double y = box.top() + pad;
    for (const Entry& entry : entries) {
        const double middle = y + line / 2;
        const QPointF key_left(box.left() + pad, middle);
        if (entry.car) {
            painter.setPen(QPen(entry.color.darker(170), 1.0));
            painter.setBrush(entry.color);
            painter.drawRoundedRect(QRectF(key_left.x(), middle - unit * 0.35, key, unit * 0.7), 2.0, 2.0);
        } else {
            painter.setPen(QPen(entry.color, 1.6, Qt::DashLine, Qt::FlatCap));
            painter.drawLine(key_left, key_left + QPointF(key, 0.0));
        }
        const double base = middle + metrics.ascent() / 2 - metrics.descent() / 2;
        painter.setPen(entry.car ? entry.color.darker(150) : TEXT_COLOR);
        painter.drawText(QPointF(key_left.x() + key + pad, base), entry.text);
        if (!entry.value.isEmpty()) {
            painter.setPen(entry.color);
            painter.drawText(QPointF(box.right() - pad - metrics.horizontalAdvance(entry.value), base),
                             entry.value);
        }
        y += line;
    }
    painter.restore();
}

} // namespace overmap_replay
