#include <om_ui/contour_setup.h>

#include "om_ui_log.h"

#include <om_model/car.h>
#include <om_model/xml_elements.h>

#include <math_geo/geo_tools.h>
#include <math_geo/projection_plane.h>
#include <math_geo/rectangle.h>
#include <qt_utils/qt_checked_connect.h>
#include <uni_base/uni_log.h>

#include <QFile>
#include <QLineF>

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>

namespace overmap_ui {

using math_geo::Point2D;

namespace {
constexpr double MIN_AXIS = 0.001;
constexpr double FAR = 999.9;

/// Equal when the lesser magnitude is at least 1e12 times the difference.
bool sameValue(double a, double b)
{
    return std::min(std::fabs(a), std::fabs(b)) >= std::fabs(a - b) * 1e12;
}

/// As sameValue, but next to an exact zero a difference of 1e-12 is equal too.
bool mirrorEqual(double a, double b)
{
    if (a == 0.0 || b == 0.0)
        return std::fabs(a - b) <= 1e-12;
    return sameValue(a, b);
}

double distance(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

const char* const AXIS_ATTRIBUTES[4][2] = {{"mainAxisPt1X", "mainAxisPt1Y"},
                                           {"mainAxisPt2X", "mainAxisPt2Y"},
                                           {"minorAxisPt1X", "minorAxisPt1Y"},
                                           {"minorAxisPt2X", "minorAxisPt2Y"}};
} // namespace

ContourSetup::ContourSetup(QObject* parent) : QObject(parent)
{
    for (auto signal : {&ContourSetup::carLengthChanged, &ContourSetup::carWidthChanged,
                        &ContourSetup::mainAxisPt1Changed, &ContourSetup::mainAxisPt2Changed,
                        &ContourSetup::minorAxisPt1Changed, &ContourSetup::minorAxisPt2Changed})
        CHECKED_CONNECT(this, signal, this, &ContourSetup::updatePhysicalScale);
    resetContourPoints();
    updatePhysicalScale();
}

ContourSetup::~ContourSetup() = default;

void ContourSetup::updatePhysicalScale()
{
    const double x_scale = m_car_length / std::max(distance(m_main_axis_pt1, m_main_axis_pt2), MIN_AXIS);
    const double y_scale = m_car_width / std::max(distance(m_minor_axis_pt1, m_minor_axis_pt2), MIN_AXIS);
    if (sameValue(x_scale, m_physical_x_scale) && sameValue(y_scale, m_physical_y_scale))
        return;
    m_physical_x_scale = x_scale;
    m_physical_y_scale = y_scale;
    Q_EMIT physicalScaleChanged();
}

void ContourSetup::setCarLength(double value)
{
    if (sameValue(value, m_car_length))
        return;
    m_car_length = value;
    Q_EMIT carLengthChanged();
}

void ContourSetup::setCarWidth(double value)
{
    if (sameValue(value, m_car_width))
        return;
    m_car_width = value;
    Q_EMIT carWidthChanged();
}

void ContourSetup::rebuildMinorAxis(double length)
{
    const QPointF d = m_main_axis_pt1 - m_main_axis_pt2;
    const QPointF u = d / std::max(std::hypot(d.x(), d.y()), MIN_AXIS);
    const QPointF middle = (m_main_axis_pt1 + m_main_axis_pt2) / 2.0;
    const QPointF across(u.y(), -u.x());
    m_minor_axis_pt1 = middle + across * (length / 2.0);
    m_minor_axis_pt2 = middle - across * (length / 2.0);
    Q_EMIT minorAxisPt1Changed();
    Q_EMIT minorAxisPt2Changed();
}

void ContourSetup::setMainAxisPt1(QPointF pt)
{
    if (pt == m_main_axis_pt1)
        return;
    const double minor = std::max(distance(m_minor_axis_pt1, m_minor_axis_pt2), MIN_AXIS);
    m_main_axis_pt1 = pt;
    Q_EMIT mainAxisPt1Changed();
    rebuildMinorAxis(minor);
}

void ContourSetup::setMainAxisPt2(QPointF pt)
{
    if (pt == m_main_axis_pt2)
        return;
    const double minor = std::max(distance(m_minor_axis_pt1, m_minor_axis_pt2), MIN_AXIS);
    m_main_axis_pt2 = pt;
    Q_EMIT mainAxisPt2Changed();
    rebuildMinorAxis(minor);
}

void ContourSetup::setMinorAxisPoint(QPointF pt)
{
    // The user drags the width of the minor axis, not its direction: what counts is the
    // distance of the point from the main axis line.
    const QPointF d = m_main_axis_pt1 - m_main_axis_pt2;
    const double main_length = std::hypot(d.x(), d.y());
    double half = distance(pt, m_main_axis_pt1);
    if (main_length > 0.0) {
        const QPointF v = pt - m_main_axis_pt2;
        half = std::fabs(d.x() * v.y() - d.y() * v.x()) / main_length;
    }
    rebuildMinorAxis(2.0 * std::max(half, MIN_AXIS));
}

void ContourSetup::setMinorAxisPt1(QPointF pt)
{
    if (pt != m_minor_axis_pt1)
        setMinorAxisPoint(pt);
}

void ContourSetup::setMinorAxisPt2(QPointF pt)
{
    if (pt != m_minor_axis_pt2)
        setMinorAxisPoint(pt);
}

double ContourSetup::contourLength() const
{
    if (m_contour.empty())
        return 0.0;
    const auto [low, high] = std::minmax_element(m_contour.begin(), m_contour.end(),
                                                 [](QPointF a, QPointF b) { return a.x() < b.x(); });
    return high->x() - low->x();
}

double ContourSetup::contourWidth() const
{
    if (m_contour.empty())
        return 0.0;
    const auto [low, high] = std::minmax_element(m_contour.begin(), m_contour.end(),
                                                 [](QPointF a, QPointF b) { return a.y() < b.y(); });
    return high->y() - low->y();
}

void ContourSetup::setImageFile(const QUrl& url)
{
    if (url == m_image_file)
        return;
    m_image_file = url;
    Q_EMIT imageFileChanged();
}

void ContourSetup::setDescription(const QString& text)
{
    if (text == m_description)
        return;
    m_description = text;
    Q_EMIT descriptionChanged();
}

void ContourSetup::setImageStore(lum_utils::ImageStore* store)
{
    if (store == m_image_store)
        return;
    m_image_store = store;
    Q_EMIT imageStoreChanged();
}

void ContourSetup::emitShapeChange()
{
    Q_EMIT contourPointCountChanged();
    Q_EMIT contourLengthChanged();
    Q_EMIT contourWidthChanged();
}

void ContourSetup::emitPointChange(int idx)
{
    Q_EMIT contourPointChanged(idx);
    Q_EMIT contourLengthChanged();
    Q_EMIT contourWidthChanged();
}

QPointF ContourSetup::getContourPoint(int idx) const
{
    if (idx < 0 || idx >= contourPointCount())
        return QPointF(0.0, 0.0);
    return m_contour[static_cast<std::size_t>(idx)];
}

void ContourSetup::setContourPoint(int idx, QPointF pt)
{
    if (idx < 0 || idx >= contourPointCount())
        return;
    m_contour[static_cast<std::size_t>(idx)] = pt;
    emitPointChange(idx);
}

int ContourSetup::mirrorPartner(int idx) const
{
    if (idx < 0 || idx >= contourPointCount())
        return -1;
    const QPointF point = m_contour[static_cast<std::size_t>(idx)];
    for (int j = 0; j < contourPointCount(); ++j) {
        const QPointF other = m_contour[static_cast<std::size_t>(j)];
        if (j != idx && mirrorEqual(other.x(), point.x()) && mirrorEqual(other.y(), -point.y()))
            return j;
    }
    return -1;
}

void ContourSetup::setMirrorContourPoints(int idx, QPointF pt)
{
    if (idx < 0 || idx >= contourPointCount())
        return;
    const int partner = mirrorPartner(idx);
    setContourPoint(idx, pt);
    if (partner >= 0)
        setContourPoint(partner, QPointF(pt.x(), -pt.y()));
}

void ContourSetup::insertMirrorContourPoints(int idx, QPointF pt)
{
    const int n = contourPointCount();
    if (idx <= 0 || idx >= n)
        return;
    int a = idx;
    int b = n - idx + 1;
    if (idx > n / 2)
        std::swap(a, b);
    // The point with positive y always goes to the front half.
    m_contour.insert(m_contour.begin() + b, QPointF(pt.x(), -std::fabs(pt.y())));
    m_contour.insert(m_contour.begin() + a, QPointF(pt.x(), std::fabs(pt.y())));
    emitShapeChange();
}

int ContourSetup::insertMirrorContourPoints(QPointF pt)
{
    const int n = contourPointCount();
    std::vector<Point2D> closed;
    closed.reserve(m_contour.size() + 1);
    for (const QPointF& point : m_contour)
        closed.emplace_back(point.x(), point.y());
    if (!closed.empty())
        closed.push_back(closed.front());
    const auto k = static_cast<int>(math_geo::nearestSegment(Point2D(pt.x(), pt.y()), closed));
    if (k < 0)
        return -1;
    int index = k + 1;
    if (k >= n / 2) {
        index = n - k;
        pt.setY(-pt.y());
    }
    insertMirrorContourPoints(index, pt);
    return index;
}

void ContourSetup::appendMirrorContourPoints()
{
    const int m = contourPointCount() / 2;
    if (m < 1)
        return;
    const QPointF middle =
        (m_contour[static_cast<std::size_t>(m - 1)] + m_contour[static_cast<std::size_t>(m)]) / 2.0;
    insertMirrorContourPoints(m, middle);
}

void ContourSetup::deleteContourMirrorPoints(int idx)
{
    if (idx < 0 || idx >= contourPointCount())
        return;
    const int partner = mirrorPartner(idx);
    const int high = std::max(idx, partner);
    const int low = std::min(idx, partner);
    m_contour.erase(m_contour.begin() + high);
    if (low >= 0)
        m_contour.erase(m_contour.begin() + low);
    emitShapeChange();
}

void ContourSetup::clearContourPoints()
{
    const std::size_t n = m_contour.size();
    if (n <= 2)
        return;
    m_contour = {m_contour[0], m_contour[n / 2]};
    emitShapeChange();
}

void ContourSetup::resetContourPoints()
{
    const double h = m_car_length / 2.0;
    const double w = m_car_width / 2.0;
    m_contour = {{h, 0.0},  {0.7 * h, 0.9 * w},    {0.1 * h, w},  {-0.5 * h, 0.85 * w},
                 {-h, 0.0}, {-0.5 * h, -0.85 * w}, {0.1 * h, -w}, {0.7 * h, -0.9 * w}};
    emitShapeChange();
}

void ContourSetup::reset()
{
    setImageFile(QUrl());
    resetContourPoints();
    m_poi_list.clearList(true);
    setDescription(QString());
    setCarLength(3.0);
    setCarWidth(1.5);
    setMainAxisPt1(QPointF(100.0, 20.0));
    setMainAxisPt2(QPointF(100.0, 320.0));
    setMinorAxisPt1(QPointF(40.0, 170.0));
    setMinorAxisPt2(QPointF(160.0, 170.0));
}

void ContourSetup::createNCAPPois()
{
    double span = 0.0;
    if (!m_contour.empty()) {
        const auto [low, high] = std::minmax_element(m_contour.begin(), m_contour.end(),
                                                     [](QPointF a, QPointF b) { return a.y() < b.y(); });
        span = high->y() - low->y();
    }
    const double step = (span - 0.1) / 6.0;
    const std::pair<const char*, double> grid[] = {{"POI_FL3", 3.0}, {"POI_FL2", 2.0},  {"POI_FL1", 1.0},
                                                   {"POI_FC", 0.0},  {"POI_FR1", -1.0}, {"POI_FR2", -2.0},
                                                   {"POI_FR3", -3.0}};
    const std::size_t n = m_contour.size();
    for (const auto& [name, factor] : grid) {
        const double y = factor * step;
        const QLineF ray(FAR, y, -FAR, y);
        double best = -FAR;
        bool hit = false;
        for (std::size_t i = 0; i < n; ++i) {
            QPointF crossing;
            const QLineF edge(m_contour[i], m_contour[(i + 1) % n]);
            if (ray.intersects(edge, &crossing) == QLineF::BoundedIntersection) {
                best = std::max(best, crossing.x());
                hit = true;
            }
        }
        if (hit)
            m_poi_list.appendPoi(QPointF(best, y), QString::fromLatin1(name));
    }
}

QString ContourSetup::imageKey(const QUrl& url)
{
    return url.isLocalFile() ? url.toLocalFile() : url.toString();
}

bool ContourSetup::saveVehicle(QUrl url)
{
    const math_geo::ProjectionPlane plane;
    // Id 0 lies below the id counter: the helper takes no id from the scene.
    overmap::Car car(0, &plane);
    const math_geo::CoordinateSystem system = car.localCoordinateSystem();
    std::vector<Point2D> contour;
    for (const QPointF& point : m_contour)
        contour.emplace_back(point.x(), point.y(), system);
    car.setContour(contour);
    car.setDescription(m_description.toStdString());
    // The editor's POIs are the vehicle's: the first takes the place of the built-in centre.
    car.resetPois();
    const QList<QPOI*> pois = m_poi_list.typedList();
    for (int i = 0; i < pois.size(); ++i) {
        const QPointF offset = pois[i]->position();
        const overmap::Poi poi{Point2D(offset.x(), offset.y(), system), pois[i]->name().toStdString()};
        if (i == 0)
            car.setPoi(0, poi);
        else
            car.addPoi(poi);
    }

    pugi::xml_document document;
    car.saveVehicle(document);
    pugi::xml_node meta = document.document_element().child("MetaData");
    meta.attribute("length").set_value(overmap::xml::formatReal(m_car_length).c_str());
    meta.attribute("width").set_value(overmap::xml::formatReal(m_car_width).c_str());
    const QPointF axis_points[4] = {m_main_axis_pt1, m_main_axis_pt2, m_minor_axis_pt1, m_minor_axis_pt2};
    for (int i = 0; i < 4; ++i) {
        meta.append_attribute(AXIS_ATTRIBUTES[i][0]).set_value(axis_points[i].x());
        meta.append_attribute(AXIS_ATTRIBUTES[i][1]).set_value(axis_points[i].y());
    }
    const QString key = imageKey(m_image_file);
    if (!m_image_file.isEmpty() && m_image_store != nullptr && m_image_store->hasImageData(key)) {
        pugi::xml_node image = meta.append_child("Image");
        image.append_attribute("filename").set_value(key.toUtf8().constData());
        image.append_attribute("mimetype").set_value(m_image_store->mimeType(key).toUtf8().constData());
        image.text().set(m_image_store->imageData(key).toBase64().constData());
    }
    return document.save_file(QFile::encodeName(url.toLocalFile()).constData());
}

bool ContourSetup::loadVehicle(QUrl url)
{
    const QByteArray path = url.toLocalFile().toUtf8();
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(path.constData());
    if (!result) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
            << "Unable to read file " << path.constData() << " " << result.description();
        return false;
    }
    const math_geo::ProjectionPlane plane;
    overmap::Car car(0, &plane);
    if (!car.loadVehicle(document)) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Unable to load file" << path.constData();
        return false;
    }

    const pugi::xml_node meta = document.document_element().child("MetaData");
    const pugi::xml_node image = meta.child("Image");
    if (!meta || m_image_store == nullptr || !image) {
        setImageFile(QUrl());
    } else {
        const QString name = QString::fromUtf8(image.attribute("filename").value());
        m_image_store->setImageData(name, QString::fromUtf8(image.attribute("mimetype").value()),
                                    QByteArray::fromBase64(QByteArray(image.text().get())));
        setImageFile(QUrl::fromLocalFile(name));
    }
    // Each axis point is read when both its numbers are there, through its setter.
    const auto readAxisPoint = [&meta](int i, QPointF fallback, auto setter) {
        const pugi::xml_attribute x = meta.attribute(AXIS_ATTRIBUTES[i][0]);
        const pugi::xml_attribute y = meta.attribute(AXIS_ATTRIBUTES[i][1]);
        if (x && y)
            setter(QPointF(x.as_double(fallback.x()), y.as_double(fallback.y())));
    };
    readAxisPoint(0, m_main_axis_pt1, [this](QPointF pt) { setMainAxisPt1(pt); });
    readAxisPoint(1, m_main_axis_pt2, [this](QPointF pt) { setMainAxisPt2(pt); });
    readAxisPoint(2, m_minor_axis_pt1, [this](QPointF pt) { setMinorAxisPt1(pt); });
    readAxisPoint(3, m_minor_axis_pt2, [this](QPointF pt) { setMinorAxisPt2(pt); });

    setCarLength(car.getVehicleLength());
    setCarWidth(car.getVehicleWidth());
    m_contour.clear();
    for (const Point2D& point : car.getContour())
        m_contour.emplace_back(point.x, point.y);
    emitShapeChange();
    m_poi_list.clearList(true);
    for (const overmap::Poi& poi : car.getPois())
        m_poi_list.appendPoi(QPointF(poi.position.x, poi.position.y), QString::fromStdString(poi.name));
    setDescription(QString::fromStdString(car.getDescription()));
    m_vehicle_file = QString::fromUtf8(path);
    Q_EMIT vehicleFileChanged();
    return true;
}

} // namespace overmap_ui
