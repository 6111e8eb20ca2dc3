#pragma once

#include <om_ui/qgeo_object.h>

#include <math_geo/point_2d.h>
#include <qobject_list_model/qobjectlist_model_t.h>

#include <QGeoCoordinate>
#include <QObject>
#include <QPointF>
#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

namespace overmap {
class Track;
class TrackLine;
class TrackPath;
} // namespace overmap

namespace overmap_ui {

/// One drawn piece of a track ribbon: a quadrilateral on the globe (A and B on the first
/// edge, C and D on the second), the vertices it runs between, and for an arc its centre.
class QTrackSegment : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QGeoCoordinate posA READ posA NOTIFY posAChanged)
    Q_PROPERTY(QGeoCoordinate posB READ posB NOTIFY posBChanged)
    Q_PROPERTY(QGeoCoordinate posC READ posC NOTIFY posCChanged)
    Q_PROPERTY(QGeoCoordinate posD READ posD NOTIFY posDChanged)
    Q_PROPERTY(QGeoCoordinate posStart READ posStart NOTIFY posStartChanged)
    Q_PROPERTY(QGeoCoordinate posEnd READ posEnd NOTIFY posEndChanged)
    Q_PROPERTY(double radius READ radius NOTIFY radiusChanged)
    Q_PROPERTY(double arcLength READ arcLength NOTIFY arcLengthChanged)
    Q_PROPERTY(double arcBearing READ arcBearing NOTIFY arcBearingChanged)
    Q_PROPERTY(QGeoCoordinate posCM READ posCM NOTIFY posCMChanged)

public:
    struct Values
    {
        QGeoCoordinate a, b, c, d, start, end;
        double radius = 0.0;
        double arc_length = 0.0;
        double arc_bearing = 0.0;
        QGeoCoordinate center;
    };

    explicit QTrackSegment(Values values, QObject* parent = nullptr);

    QGeoCoordinate posA() const { return m_values.a; }
    QGeoCoordinate posB() const { return m_values.b; }
    QGeoCoordinate posC() const { return m_values.c; }
    QGeoCoordinate posD() const { return m_values.d; }
    QGeoCoordinate posStart() const { return m_values.start; }
    QGeoCoordinate posEnd() const { return m_values.end; }
    double radius() const { return m_values.radius; }
    double arcLength() const { return m_values.arc_length; }
    double arcBearing() const { return m_values.arc_bearing; }
    QGeoCoordinate posCM() const { return m_values.center; }

Q_SIGNALS:
    void posAChanged();
    void posBChanged();
    void posCChanged();
    void posDChanged();
    void posStartChanged();
    void posEndChanged();
    void radiusChanged();
    void arcLengthChanged();
    void arcBearingChanged();
    void posCMChanged();

private:
    Values m_values;
};

/// The segments of one track; they are its children and die with a rebuild.
class QTrackSegmentList : public QObjectListModelT<QTrackSegment>
{
    Q_OBJECT

public:
    using QObjectListModelT<QTrackSegment>::QObjectListModelT;
};

/// The Qt face of a track: the ribbon's segments for the map, rebuilt from the 0.1 m
/// thinned vertices whenever the geometry or the reference plane changes.
class QTrack : public QGeoObject
{
    Q_OBJECT
    Q_PROPERTY(overmap_ui::QTrackSegmentList* segments READ segments NOTIFY segmentsChanged)
    Q_PROPERTY(double trackWidth READ trackWidth WRITE setTrackWidth NOTIFY trackWidthChanged)
    Q_PROPERTY(Origin trackOrigin READ trackOrigin WRITE setTrackOrigin NOTIFY trackOriginChanged)
    Q_PROPERTY(int trackPointCount READ trackPointCount NOTIFY trackPointCountChanged)
    Q_PROPERTY(double trackLength READ trackLength NOTIFY trackLengthChanged)
    Q_PROPERTY(double trackRadius READ trackRadius WRITE setTrackRadius NOTIFY trackRadiusChanged)

public:
    enum Origin
    {
        ORIGIN_LEFT = 0,
        ORIGIN_CENTER = 1,
        ORIGIN_RIGHT = 2
    };
    Q_ENUM(Origin)

    QTrack(std::shared_ptr<overmap::Track> model, QObject* parent);
    ~QTrack() override;

    /// Extent of the drawn ribbon across, metres.
    double width() const override;
    /// Extent of the drawn ribbon along, metres.
    double length() const override;

    /// The segments; those of the last rebuild are made here, when first asked for.
    QTrackSegmentList* segments();
    double trackWidth() const;
    void setTrackWidth(double value);
    Origin trackOrigin() const;
    void setTrackOrigin(Origin value);
    int trackPointCount() const;
    double trackLength() const;
    double trackRadius() const;
    void setTrackRadius(double value);

    /// Makes the segments anew from the model.
    void rebuildSegments();

    const std::shared_ptr<overmap::Track>& trackModel() const { return m_model; }

public Q_SLOTS:
    QGeoCoordinate getTrackPoint(int idx) const;
    /// After the reference plane moved.
    virtual void refresh();

Q_SIGNALS:
    void segmentsChanged();
    void trackWidthChanged();
    void trackOriginChanged();
    void trackPointCountChanged();
    void trackLengthChanged();
    void trackRadiusChanged();
    void trackChanged();
    /// The extent of the ribbon (width() and length()) was worked out anew.
    void extentChanged();

private:
    /// What a rebuild read from the model and its plane, kept for the segments made later.
    struct Geometry
    {
        double width = 0.0;
        double origin = 0.0;
        double radius = 0.0;
        double arc_bearing = 0.0;
        double arc_length = 0.0;
        bool xy_flag = false;
        double rotation = 0.0;
    };

    void setExtent(double width, double height);
    void emitExtentChanged();
    /// Takes the model's vertices over for thinning, unless they are the ones taken last time.
    void takeVertices();
    /// The taken vertices thinned to 0.1 m and without invalid ones, worked out once for each
    /// new set of vertices: a plane change does not change them.
    const std::vector<math_geo::GeoPosition>& thinnedPositions();
    /// The first thinned vertex when at least two are left, else nothing. Where both ends are
    /// valid this needs no thinning, as thinning keeps the ends.
    std::optional<math_geo::GeoPosition> firstOfThinned();
    /// Makes the segments and the extent of the kept geometry.
    void buildSegments();
    /// Makes the segments of the last rebuild if they are still owed.
    void settle() const;

    std::shared_ptr<overmap::Track> m_model;
    std::vector<math_geo::GeoPosition> m_thinned_from;
    std::vector<math_geo::GeoPosition> m_thinned;
    bool m_thinned_valid = false;
    Geometry m_geometry;
    /// A rebuild happened whose segments nobody asked for yet.
    bool m_segments_owed = false;
    QTrackSegmentList m_segments;
    double m_extent_width = 0.0;
    double m_extent_height = 0.0;
};

/// A straight piece or an arc between two ends.
class QTrackLine : public QTrack
{
    Q_OBJECT
    Q_PROPERTY(
        QGeoCoordinate startPosition READ startPosition WRITE setStartPosition NOTIFY startPositionChanged)
    Q_PROPERTY(QGeoCoordinate endPosition READ endPosition WRITE setEndPosition NOTIFY endPositionChanged)
    Q_PROPERTY(QGeoCoordinate circlePosition READ circlePosition WRITE setCirclePosition NOTIFY
                   circlePositionChanged)
    Q_PROPERTY(
        QPointF startPositionXY READ startPositionXY WRITE setStartPositionXY NOTIFY startPositionChanged)
    Q_PROPERTY(QPointF endPositionXY READ endPositionXY WRITE setEndPositionXY NOTIFY endPositionChanged)
    Q_PROPERTY(
        QPointF circlePositionXY READ circlePositionXY WRITE setCirclePositionXY NOTIFY circlePositionChanged)
    Q_PROPERTY(bool startUsesXY READ startUsesXY WRITE setStartUsesXY NOTIFY startUsesXYChanged)
    Q_PROPERTY(bool endUsesXY READ endUsesXY WRITE setEndUsesXY NOTIFY endUsesXYChanged)
    Q_PROPERTY(bool circleUsesXY READ circleUsesXY NOTIFY circleUsesXYChanged)
    Q_PROPERTY(double length READ lineLength WRITE setLineLength NOTIFY lengthChanged)
    Q_PROPERTY(double bearing READ bearing WRITE setBearing NOTIFY bearingChanged)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY radiusChanged)

public:
    QTrackLine(std::shared_ptr<overmap::TrackLine> model, QObject* parent);
    ~QTrackLine() override;

    Type getType() const override { return TRACK_LINE; }
    math_geo::GeoBounds enclosingRectangle() const override;

    QGeoCoordinate startPosition() const;
    void setStartPosition(const QGeoCoordinate& position);
    QGeoCoordinate endPosition() const;
    void setEndPosition(const QGeoCoordinate& position);
    QGeoCoordinate circlePosition() const;
    void setCirclePosition(const QGeoCoordinate& position);
    QPointF startPositionXY() const;
    void setStartPositionXY(QPointF point);
    QPointF endPositionXY() const;
    void setEndPositionXY(QPointF point);
    QPointF circlePositionXY() const;
    void setCirclePositionXY(QPointF point);
    bool startUsesXY() const;
    void setStartUsesXY(bool value);
    bool endUsesXY() const;
    void setEndUsesXY(bool value);
    bool circleUsesXY() const;
    /// Straight: the haversine distance of the ends; arc: the arc length.
    double lineLength() const;
    void setLineLength(double value);
    /// Straight: the bearing from start to end in [0, 360]; arc: the arc bearing.
    double bearing() const;
    void setBearing(double value);
    double radius() const;
    void setRadius(double value);

Q_SIGNALS:
    void startPositionChanged();
    void startUsesXYChanged();
    void endPositionChanged();
    void endUsesXYChanged();
    void lengthChanged();
    void bearingChanged();
    void circlePositionChanged();
    void circleUsesXYChanged();
    void radiusChanged();

private:
    /// Segments anew and the signals of a change of the ends.
    void endsChanged();
    math_geo::Point2D planePoint(QPointF point) const;

    std::shared_ptr<overmap::TrackLine> m_line;
};

/// A driven line of many vertices, which can come from a KML file.
class QTrackPath : public QTrack
{
    Q_OBJECT

public:
    QTrackPath(std::shared_ptr<overmap::TrackPath> model, QObject* parent);
    ~QTrackPath() override;

    Type getType() const override { return TRACK_PATH; }
    math_geo::GeoBounds enclosingRectangle() const override;

    /// Replaces the vertices by the line strings of the file, thinned to 0.02 m. False,
    /// with the track unchanged, when the file cannot be read.
    Q_INVOKABLE bool loadKmlFile(QUrl filename);
};

} // namespace overmap_ui
