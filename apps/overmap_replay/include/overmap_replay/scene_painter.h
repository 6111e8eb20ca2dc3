#pragma once

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QTransform>

#include <cstdint>
#include <map>
#include <set>
#include <vector>

class QPainter;

namespace overmap {
class ObjectManager;
class Car;
class GeoObject;
class PositionObject;
class Track;
class Calculation;
} // namespace overmap

namespace overmap_replay {

/// Where a moving object went: one position per time, times ascending. The picture draws
/// the part up to its display time and fits the whole of it, so that pictures of one
/// replay at different times share their frame.
struct DrivenPath
{
    std::int32_t object_id = 0;
    std::vector<double> times;                    ///< seconds
    std::vector<math_geo::GeoPosition> positions; ///< one per time
};

/// Draws a scene top-down into a QPainter, as it stands now: the caller brings the
/// objects to the display time first. The picture lies in the scene's reference plane,
/// with the plane's forward axis up when its rotation is 0 (north up), one metre the same
/// length across and down, fitted with a margin around every object and path.
///
/// Picture frame: metres of the reference plane with x to the right and y up, whatever
/// the plane's own axis convention; viewTransform() takes it to pixels.
///
/// Text needs a QGuiApplication; the rest draws without one.
class ScenePainter
{
public:
    /// Cones are drawn in this colour whatever their own, so that they read as cones.
    static const QColor CONE_COLOR;
    /// Track ribbons are filled in this colour; their edges take the track's colour.
    static const QColor TRACK_FILL;
    static const QColor BACKGROUND;

    /// Distinct colours for cars, from index 0 on, repeating after eight.
    static QColor paletteColor(std::size_t index);

    /// @p manager must outlive the painter; it is only read.
    explicit ScenePainter(const overmap::ObjectManager& manager);

    /// The time written into the picture and up to which paths are drawn, seconds.
    void setTime(double seconds) { m_time = seconds; }
    double time() const { return m_time; }
    void setPaths(std::vector<DrivenPath> paths) { m_paths = std::move(paths); }
    /// Objects left out of the picture and of its fitting (e.g. without a position yet).
    void setHiddenObjects(std::set<std::int32_t> ids) { m_hidden = std::move(ids); }
    /// Cars shorter than this on the picture are drawn enlarged around their reference
    /// point, so that a car on a wide view stays visible; 0 draws them to scale. Pixels.
    void setMinimumCarLength(double pixels) { m_minimum_car_length = pixels; }
    /// The metric grid under the scene; on at first.
    void setGridVisible(bool visible) { m_grid_visible = visible; }
    /// The key of cars and distances in the top right corner; on at first.
    void setLegendVisible(bool visible) { m_legend_visible = visible; }
    /// The values of the calculations at the picture's time, metres by calculation id, as
    /// their result channels give them. A calculation without a value here is not drawn.
    void setCalculationValues(std::map<std::int32_t, double> values)
    {
        m_calculation_values = std::move(values);
    }

    /// A point of the reference plane, in the plane's own axis convention, in the picture frame.
    static QPointF toPicture(const math_geo::Point2D& plane_point);
    /// A position on the globe in the picture frame, through the reference plane.
    QPointF geoToPicture(const math_geo::GeoPosition& position) const;

    /// The extent of every visible object and of every path, picture frame; an empty
    /// scene gives a square of 20 m around the plane's origin.
    QRectF sceneBounds() const;
    /// Picture frame to pixels of an image of @p size: the bounds centred, the same scale
    /// on both axes, a margin all round.
    QTransform viewTransform(const QSize& size) const;

    /// Where a calculation with a value is drawn, picture frame: between the points that it
    /// measures. False when it has no value or a side is missing, hidden or has no shape.
    bool calculationLine(const overmap::Calculation& calculation, QPointF& from, QPointF& to) const;

    /// Draws the whole picture into the rectangle (0, 0, size) of @p painter.
    void paint(QPainter& painter, const QSize& size) const;
    /// The picture as an image of @p size; a null image for an empty or oversized size.
    QImage render(const QSize& size) const;

private:
    struct TrackShape;

    std::vector<TrackShape> trackShapes() const;
    bool visible(const overmap::GeoObject& object) const;
    /// A local point of @p object in the picture frame, with the object's heading applied.
    QPointF localToPicture(const overmap::PositionObject& object, const math_geo::Point2D& local) const;
    /// The value of @p calculation, NaN for none.
    double calculationValue(const overmap::Calculation& calculation) const;

    void paintGrid(QPainter& painter, const QTransform& view, const QSize& size) const;
    void paintTracks(QPainter& painter, const QTransform& view, const std::vector<TrackShape>& tracks) const;
    void paintPaths(QPainter& painter, const QTransform& view) const;
    void paintCalculations(QPainter& painter, const QTransform& view) const;
    void paintPositionObjects(QPainter& painter, const QTransform& view) const;
    void paintDecorations(QPainter& painter, const QTransform& view, const QSize& size) const;
    void paintLegend(QPainter& painter, const QSize& size) const;
    /// The factor by which @p car is enlarged on a view of @p metres_to_pixels.
    double carEnlargement(const overmap::PositionObject& car, double metres_to_pixels) const;
    QColor objectColor(const overmap::GeoObject& object) const;
    /// Each car's fill, by id: its own colour unless invalid or an earlier car's, else
    /// the first free colour of the palette.
    std::map<std::int32_t, QColor> carColors() const;

    const overmap::ObjectManager& m_manager;
    double m_time = 0.0;
    std::vector<DrivenPath> m_paths;
    std::set<std::int32_t> m_hidden;
    double m_minimum_car_length = 0.0;
    bool m_grid_visible = true;
    bool m_legend_visible = true;
    std::map<std::int32_t, double> m_calculation_values;
};

} // namespace overmap_replay
