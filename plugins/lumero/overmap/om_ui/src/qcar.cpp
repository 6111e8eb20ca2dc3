#include <om_ui/qcar.h>

#include "om_ui_log.h"

#include <om_model/car.h>

#include <uni_base/uni_log.h>

#include <QFile>

#include <pugixml.hpp>

namespace overmap_ui {

using math_geo::Point2D;

QCar::QCar(std::shared_ptr<overmap::Car> model, QObject* parent)
    : QPositionObject(model, parent), m_car(model)
{
    // A new contour changes the object's size as the views see it.
    connect(this, &QCar::contourChanged, this, &QGeoObject::sizeChanged);
}

QCar::~QCar() = default;

QGeoCoordinate QCar::centerPosition() const
{
    const math_geo::GeoPosition center = m_car->toGeo(Point2D(0.0, 0.0, m_car->localCoordinateSystem()));
    return QGeoCoordinate(center.latitude, center.longitude);
}

void QCar::emitContourChange()
{
    Q_EMIT contourChanged();
    Q_EMIT centerPositionChanged();
    Q_EMIT dataChanged();
}

bool QCar::loadFromXML(QUrl filename)
{
    const QString path = filename.toLocalFile();
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(QFile::encodeName(path).constData());
    if (!result) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
            << "Unable to read file " << path.toStdString() << ": " << result.description();
        return false;
    }
    if (!m_car->loadVehicle(document))
        return false;
    emitContourChange();
    return true;
}

bool QCar::saveToXML(QUrl filename)
{
    pugi::xml_document document;
    m_car->saveVehicle(document);
    return document.save_file(QFile::encodeName(filename.toLocalFile()).constData());
}

int QCar::getContourPointCount() const
{
    return static_cast<int>(m_car->getContour().size());
}

QPointF QCar::getContourPoint(int idx, double scaling) const
{
    const std::vector<Point2D>& contour = m_car->getContour();
    if (idx < 0 || static_cast<std::size_t>(idx) >= contour.size())
        return QPointF(0.0, 0.0);
    const Point2D& point = contour[static_cast<std::size_t>(idx)];
    return QPointF(point.x, point.y) * scaling;
}

bool QCar::loadContour(QUrl filename)
{
    if (!m_car->loadContourFile(QFile::encodeName(filename.toLocalFile()).toStdString()))
        return false;
    emitContourChange();
    return true;
}

void QCar::resetContour()
{
    // The contour of a new car is the default rectangle.
    const overmap::Car fresh(m_car->getPlane());
    std::vector<Point2D> contour = fresh.getContour();
    for (Point2D& point : contour)
        point.setCoordinateSystem(m_car->localCoordinateSystem());
    m_car->setContour(contour);
    emitContourChange();
}

bool QCar::setSize(QSizeF size)
{
    std::vector<Point2D> contour = m_car->getContour();
    const double length = m_car->getLength();
    const double width = m_car->getWidth();
    if (contour.size() != 4 || length == 0.0 || width == 0.0)
        return false;
    for (Point2D& point : contour) {
        point.x *= size.height() / length;
        point.y *= size.width() / width;
    }
    m_car->setContour(contour);
    emitContourChange();
    return true;
}

QPointF QCar::gpsOffset() const
{
    const Point2D& offset = m_car->getGpsOffset();
    return QPointF(offset.x, offset.y);
}

void QCar::setGpsOffset(QPointF offset)
{
    if (offset == gpsOffset())
        return;
    m_car->setGpsOffset(Point2D(offset.x(), offset.y(), m_car->localCoordinateSystem()));
    Q_EMIT gpsOffsetChanged(offset);
    updateValidity();
    emitPlaceChanged();
    Q_EMIT dataChanged();
}

} // namespace overmap_ui
