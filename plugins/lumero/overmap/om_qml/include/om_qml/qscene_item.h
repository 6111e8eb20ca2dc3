#pragma once

#include <om_ui/qobject_manager.h>
#include <om_ui/reference_plane.h>
#include <om_ui/viewport.h>

#include <QAbstractItemModel>
#include <QColor>
#include <QGeoCoordinate>
#include <QHash>
#include <QImage>
#include <QPointer>
#include <QPolygonF>
#include <QQuickPaintedItem>
#include <QSet>
#include <QString>
#include <QTransform>

#include <set>
#include <vector>

namespace overmap_ui {
class QCar;
class QPositionObject;
class QTrack;
} // namespace overmap_ui

namespace overmap_qml {

/// Paints a scene top-down through a Viewport: the metric grid, the aerial image, tracks
/// from their segments, calculations, cones, locators and cars, then compass and scale bar.
/// The position objects are the rows of objectsModel (so a filter model hides objects);
/// tracks and calculations come from the manager that owns those objects. Anything outside
/// the viewport is skipped before it is drawn.
class QSceneItem : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(overmap_ui::Viewport* viewport READ viewport WRITE setViewport NOTIFY viewportChanged)
    Q_PROPERTY(
        QAbstractItemModel* objectsModel READ objectsModel WRITE setObjectsModel NOTIFY objectsModelChanged)
    Q_PROPERTY(double displayTime READ displayTime WRITE setDisplayTime NOTIFY displayTimeChanged)
    Q_PROPERTY(
        QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY backgroundColorChanged)
    Q_PROPERTY(bool showCoordinateSystem READ showCoordinateSystem WRITE setShowCoordinateSystem NOTIFY
                   showCoordinateSystemChanged)
    Q_PROPERTY(bool printMode READ printMode WRITE setPrintMode NOTIFY printModeChanged)
    Q_PROPERTY(double compassShift READ compassShift WRITE setCompassShift NOTIFY compassShiftChanged)
    Q_PROPERTY(double scaleBottomMargin READ scaleBottomMargin WRITE setScaleBottomMargin NOTIFY
                   scaleBottomMarginChanged)
    Q_PROPERTY(bool backgroundImageVisible READ backgroundImageVisible WRITE setBackgroundImageVisible NOTIFY
                   backgroundImageVisibleChanged)
    Q_PROPERTY(double backgroundImageOpacity READ backgroundImageOpacity WRITE setBackgroundImageOpacity
                   NOTIFY backgroundImageOpacityChanged)
    Q_PROPERTY(overmap_ui::ReferencePlane* referencePlane READ referencePlane WRITE setReferencePlane NOTIFY
                   referencePlaneChanged)
    Q_PROPERTY(
        QObject* selectedObject READ selectedObject WRITE setSelectedObject NOTIFY selectedObjectChanged)

public:
    /// Colours of the locator by its quality ranges: the first range that holds the value
    /// of its channel names the grade, best first.
    static const QColor QUALITY_COLORS[3];

    explicit QSceneItem(QQuickItem* parent = nullptr);
    ~QSceneItem() override;

    overmap_ui::Viewport* viewport() const { return m_viewport; }
    void setViewport(overmap_ui::Viewport* viewport);
    QAbstractItemModel* objectsModel() const { return m_objects_model; }
    void setObjectsModel(QAbstractItemModel* model);
    /// Seconds; the time at which calculation results and locator qualities are read.
    double displayTime() const { return m_display_time; }
    void setDisplayTime(double time);
    QColor backgroundColor() const { return m_background_color; }
    void setBackgroundColor(const QColor& color);
    bool showCoordinateSystem() const { return m_show_coordinate_system; }
    void setShowCoordinateSystem(bool show);
    bool printMode() const { return m_print_mode; }
    void setPrintMode(bool print_mode);
    /// Pixels the compass moves left, to make room for a button in the corner.
    double compassShift() const { return m_compass_shift; }
    void setCompassShift(double shift);
    double scaleBottomMargin() const { return m_scale_bottom_margin; }
    void setScaleBottomMargin(double margin);
    bool backgroundImageVisible() const { return m_background_image_visible; }
    void setBackgroundImageVisible(bool visible);
    double backgroundImageOpacity() const { return m_background_image_opacity; }
    void setBackgroundImageOpacity(double opacity);
    /// The scene's plane, which places the aerial image; optional.
    overmap_ui::ReferencePlane* referencePlane() const { return m_reference_plane; }
    void setReferencePlane(overmap_ui::ReferencePlane* plane);

    /// Drawn with a ring around it; null for none.
    QObject* selectedObject() const { return m_selected; }
    void setSelectedObject(QObject* object);

    /// The shown position object drawn at @p point (pixels of the item), the topmost where
    /// several are: a car by its contour, any other within a few pixels of its place. Null
    /// where there is none.
    Q_INVOKABLE QObject* positionObjectAt(const QPointF& point) const;
    /// Whether a drag may move @p object: it stands still (no channel, no reference object).
    Q_INVOKABLE bool isMovable(QObject* object) const;

    /// The manager whose objects the model lists; null without a model or objects.
    overmap_ui::QObjectManager* objectsManager() const;
    /// The colour the locator is drawn in at the display time.
    QColor locatorColor(const overmap_ui::QPositionObject& locator) const;
    /// The text drawn at a calculation's line: the value of its result channel at the
    /// display time, empty without a channel or a value.
    QString calculationText(int calc_id) const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void viewportChanged();
    void objectsModelChanged();
    void displayTimeChanged();
    void backgroundColorChanged();
    void showCoordinateSystemChanged();
    void printModeChanged();
    void compassShiftChanged();
    void scaleBottomMarginChanged();
    void backgroundImageVisibleChanged();
    void backgroundImageOpacityChanged();
    void referencePlaneChanged();
    void selectedObjectChanged();

private Q_SLOTS:
    void scheduleUpdate();
    /// The layer of what stands still must be drawn anew.
    void markStill();
    /// Segments were made anew: every ribbon is read again on the next paint.
    void dropTrackCaches();

private:
    /// A track's ribbon in degrees (x longitude, y latitude), which an affine map takes to the screen.
    struct TrackCache
    {
        QPolygonF ribbon;
        QPolygonF first_edge;
        QPolygonF second_edge;
        QRectF bounds;
    };

    /// Connects the model's objects and the manager's lists, so that changes repaint.
    void watchModel();
    void watchObject(QObject* object);
    const TrackCache& trackCache(overmap_ui::QTrack* track);
    /// Degrees (x longitude, y latitude) to pixels, exact for the viewport's plane.
    QTransform degreesToScreen() const;
    bool isHidden(int object_id) const;

    /// @p reach: the pixels of the view (beyond its edges too) that the picture must cover.
    void paintGrid(QPainter& painter, const QRectF& reach) const;
    void paintBackgroundImage(QPainter& painter);
    void paintTracks(QPainter& painter, const QTransform& to_screen, const QRectF& reach);
    void paintCalculations(QPainter& painter) const;
    /// Either the objects that stand still (@p still) or those that move, where they fall in @p visible.
    void paintPositionObjects(QPainter& painter, bool still, const QRectF& visible) const;
    void paintSelection(QPainter& painter) const;
    /// Where @p car is drawn: its contour, grown to a minimum size on wide views.
    QPolygonF carOutline(const overmap_ui::QCar& car) const;
    void paintCompass(QPainter& painter) const;
    void paintScaleBar(QPainter& painter) const;

    QPointer<overmap_ui::Viewport> m_viewport;
    QPointer<QAbstractItemModel> m_objects_model;
    QPointer<overmap_ui::QObjectManager> m_watched_manager;
    QPointer<overmap_ui::ReferencePlane> m_reference_plane;
    QPointer<QObject> m_selected;
    double m_display_time = 0.0;
    QColor m_background_color = Qt::white;
    bool m_show_coordinate_system = true;
    bool m_print_mode = false;
    double m_compass_shift = 0.0;
    double m_scale_bottom_margin = 0.0;
    bool m_background_image_visible = true;
    double m_background_image_opacity = 1.0;
    /// The view for which the still layer was drawn.
    /// Pixels that the still layer reaches past each edge of the view.
    static constexpr int STILL_MARGIN = 192;
    struct StillKey
    {
        double rotation = 0.0;
        double scaling = 0.0;
        QSize size;
        std::set<int> hidden;
        bool operator==(const StillKey& other) const
        {
            return rotation == other.rotation && scaling == other.scaling && size == other.size &&
                   hidden == other.hidden;
        }
    };

    QHash<overmap_ui::QTrack*, TrackCache> m_track_cache;
    QSet<QObject*> m_watched;
    struct StillPlace
    {
        QGeoCoordinate position;
        double heading = 0.0;
    };
    /// Where each object that stands still was last seen.
    QHash<QObject*, StillPlace> m_still_places;
    QImage m_still_layer;
    StillKey m_still_key;
    /// The view's centre when the still layer was drawn.
    QGeoCoordinate m_still_center;
    bool m_still_valid = false;
    QString m_image_path;
    QImage m_image;
};

} // namespace overmap_qml
