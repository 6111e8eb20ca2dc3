#include "om_ui_test_support.h"

#include <om_ui/qtrack.h>

#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <math_geo/geo_tools.h>
#include <uni_testing/model_tester.h>

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <thread>

namespace {

using math_geo::GeoPosition;
using overmap_ui::QTrack;
using overmap_ui::QTrackLine;
using overmap_ui::QTrackPath;

constexpr double PI = 3.14159265358979323846;

double metres(const QGeoCoordinate& a, const QGeoCoordinate& b)
{
    return GeoPosition(a.latitude(), a.longitude())
        .distanceTo(GeoPosition(b.latitude(), b.longitude()), math_geo::DistanceMethod::GEODESIC);
}

QUrl testData(const char* name)
{
    return QUrl::fromLocalFile(QStringLiteral(OM_UI_TEST_DATA_DIR "/") + QLatin1String(name));
}

class QTrackTest : public ::testing::Test
{
protected:
    QTrackTest() : plane(om_ui_test::sitePlane())
    {
        model = std::make_shared<overmap::TrackPath>(&plane);
        north = math_geo::destinationPoint(om_ui_test::SITE, 0.0, 10.0);
    }

    std::unique_ptr<QTrackPath> make()
    {
        auto track = std::make_unique<QTrackPath>(model, nullptr);
        uni_testing::attachModelTester(track->segments());
        return track;
    }

    math_geo::ProjectionPlane plane;
    std::shared_ptr<overmap::TrackPath> model;
    GeoPosition north;
};

TEST_F(QTrackTest, AStraightPieceIsOneQuadrilateralAroundItsLine)
{
    model->setPositions({om_ui_test::SITE, north});
    auto track = make();
    ASSERT_EQ(track->segments()->size(), 1);
    const overmap_ui::QTrackSegment* segment = track->segments()->at(0);
    const QGeoCoordinate start(om_ui_test::SITE.latitude, om_ui_test::SITE.longitude);
    EXPECT_NEAR(metres(segment->posA(), start), 1.5, 0.01);
    EXPECT_NEAR(metres(segment->posD(), start), 1.5, 0.01);
    EXPECT_NEAR(metres(segment->posA(), segment->posD()), 3.0, 0.01);
    EXPECT_NEAR(metres(segment->posA(), segment->posB()), 10.0, 0.02);
    EXPECT_NEAR(metres(segment->posB(), segment->posC()), 3.0, 0.01);
    EXPECT_EQ(segment->posStart(), start);
    EXPECT_NEAR(metres(segment->posEnd(), QGeoCoordinate(north.latitude, north.longitude)), 0.0, 1e-6);
    // The plane's x runs to the north: along the piece 10 m, across it 3 m.
    EXPECT_NEAR(track->width(), 10.0, 0.02);
    EXPECT_NEAR(track->length(), 3.0, 1e-9);
    EXPECT_EQ(track->getType(), overmap_ui::QGeoObject::TRACK_PATH);
}

TEST_F(QTrackTest, FewerThanTwoValidPositionsGiveNoSegments)
{
    model->setPositions({om_ui_test::SITE, GeoPosition(95.0, 11.6)});
    auto track = make();
    EXPECT_EQ(track->segments()->size(), 0);
    EXPECT_EQ(track->size(), QSizeF(0.0, 0.0));
    EXPECT_EQ(track->trackPointCount(), 2);
    EXPECT_FALSE(track->getTrackPoint(-1).isValid());
    EXPECT_FALSE(track->getTrackPoint(2).isValid());
    EXPECT_TRUE(track->getTrackPoint(0).isValid());

    QTrackLine line(std::make_shared<overmap::TrackLine>(&plane), nullptr);
    EXPECT_EQ(line.segments()->size(), 0) << "ends still on their markers";
}

TEST_F(QTrackTest, NoiseBelowATenthOfAMetreIsNotDrawn)
{
    std::vector<GeoPosition> positions;
    for (int i = 0; i <= 100; ++i) {
        const GeoPosition on_line = math_geo::destinationPoint(om_ui_test::SITE, 0.0, i * 1.0);
        positions.push_back(math_geo::destinationPoint(on_line, 90.0, (i % 2) * 0.05));
    }
    model->setPositions(positions);
    auto track = make();
    EXPECT_EQ(track->segments()->size(), 1);
    EXPECT_EQ(track->trackPointCount(), 101);
}

// The recorders below connect after the track's own forwarding of trackChanged to
// dataChanged, so they see dataChanged first.
TEST_F(QTrackTest, UnchangedValuesDoNotRebuild)
{
    model->setPositions({om_ui_test::SITE, north});
    auto track = make();
    const QObject* first = track->segments()->at(0);
    QSignalSpy segments(track.get(), &QTrack::segmentsChanged);
    QSignalSpy data(track.get(), &QTrack::dataChanged);
    ASSERT_TRUE(segments.isValid() && data.isValid());
    track->setTrackWidth(3.0 + 1e-13);
    track->setTrackOrigin(QTrack::ORIGIN_CENTER);
    track->setTrackRadius(0.0);
    EXPECT_EQ(segments.count(), 0);
    EXPECT_EQ(data.count(), 0);
    EXPECT_EQ(track->segments()->at(0), first);
    track->setTrackRadius(5.0);
    const int after_radius = segments.count();
    track->setTrackRadius(5.0);
    EXPECT_EQ(segments.count(), after_radius);
    track->setTrackRadius(0.0);
    data.clear();
    segments.clear();

    om_ui_test::SignalRecorder recorder(track.get());
    track->setTrackWidth(5.0);
    EXPECT_EQ(recorder.names(), (QStringList{"segmentsChanged", "extentChanged", "sizeChanged",
                                             "trackWidthChanged", "dataChanged", "trackChanged"}));
    EXPECT_NEAR(track->length(), 5.0, 1e-9);
    track->setTrackOrigin(QTrack::ORIGIN_LEFT);
    EXPECT_EQ(model->getOrigin(), 0.0);
    EXPECT_EQ(track->trackOrigin(), QTrack::ORIGIN_LEFT);
    track->setTrackOrigin(QTrack::ORIGIN_RIGHT);
    EXPECT_EQ(model->getOrigin(), 1.0);
    EXPECT_EQ(data.count(), 3);
}

TEST_F(QTrackTest, APlaneChangeTakesEffectOnRefreshOnly)
{
    model->setPositions({om_ui_test::SITE, north});
    model->setXYFlag(true);
    auto track = make();
    EXPECT_DOUBLE_EQ(track->segments()->at(0)->arcBearing(), 0.0);
    plane.setRotation(30.0);
    EXPECT_DOUBLE_EQ(track->segments()->at(0)->arcBearing(), 0.0);
    track->refresh();
    EXPECT_DOUBLE_EQ(track->segments()->at(0)->arcBearing(), 30.0) << "given in the plane, turned with it";
}

// A view may read the segments long after the rebuild that made them owed: they still
// show what the rebuild saw, not what the model or its plane did since without a rebuild.
struct LateReadRow
{
    const char* name;
    void (*meanwhile)(overmap::TrackPath& model, math_geo::ProjectionPlane& plane);
};

class QTrackLateRead : public QTrackTest, public ::testing::WithParamInterface<LateReadRow>
{};

TEST_P(QTrackLateRead, ShowsWhatTheRebuildSaw)
{
    model->setPositions({om_ui_test::SITE, north});
    QTrackPath track(model, nullptr);
    plane.setRotation(90.0);
    om_ui_test::SignalRecorder recorder(&track);
    track.refresh();
    EXPECT_EQ(recorder.names(), (QStringList{"segmentsChanged", "extentChanged", "sizeChanged"}));
    GetParam().meanwhile(*model, plane);

    // Turned by 90 degrees the piece runs across the plane's x: 3 m along it, 10 m across.
    EXPECT_NEAR(track.width(), 3.0, 1e-9);
    EXPECT_NEAR(track.length(), 10.0, 0.02);
    ASSERT_EQ(track.segments()->size(), 1);
    const overmap_ui::QTrackSegment* segment = track.segments()->at(0);
    const QGeoCoordinate start(om_ui_test::SITE.latitude, om_ui_test::SITE.longitude);
    EXPECT_EQ(segment->posStart(), start);
    EXPECT_NEAR(metres(segment->posEnd(), QGeoCoordinate(north.latitude, north.longitude)), 0.0, 1e-6);
    EXPECT_NEAR(metres(segment->posA(), segment->posD()), 3.0, 0.01);
    EXPECT_NEAR(metres(segment->posA(), start), 1.5, 0.01);
    EXPECT_EQ(recorder.names().size(), 3) << "reading tells nobody";
}

INSTANTIATE_TEST_SUITE_P(
    Values, QTrackLateRead,
    ::testing::Values(
        LateReadRow{"nothing", [](overmap::TrackPath&, math_geo::ProjectionPlane&) {}},
        LateReadRow{"plane_turned_back",
                    [](overmap::TrackPath&, math_geo::ProjectionPlane& p) { p.setRotation(0.0); }},
        LateReadRow{"width_set_in_the_model_alone",
                    [](overmap::TrackPath& m, math_geo::ProjectionPlane&) { m.setWidth(5.0); }},
        LateReadRow{"origin_set_in_the_model_alone",
                    [](overmap::TrackPath& m, math_geo::ProjectionPlane&) { m.setOrigin(0.0); }},
        LateReadRow{
            "vertices_set_in_the_model_alone",
            [](overmap::TrackPath& m, math_geo::ProjectionPlane&) {
                m.setPositions({om_ui_test::SITE, math_geo::destinationPoint(om_ui_test::SITE, 0.0, 20.0)});
            }}),
    [](const ::testing::TestParamInfo<LateReadRow>& info) { return std::string(info.param.name); });

TEST_F(QTrackTest, AReaderInAnotherThreadMakesNoSegments)
{
    model->setPositions({om_ui_test::SITE, north});
    QTrackPath track(model, nullptr);
    int seen_there = -1;
    std::thread render([&] { seen_there = track.segments()->size(); });
    render.join();
    EXPECT_EQ(seen_there, 0) << "children of the list are made in its own thread only";
    EXPECT_EQ(track.segments()->size(), 1);
}

// The arc centre of a path is its first drawn vertex, stored by the rebuild itself, before
// any view reads the segments.
struct CentreRow
{
    const char* name;
    std::vector<GeoPosition> positions;
    bool drawn;
};

class QTrackCentre : public QTrackTest, public ::testing::WithParamInterface<CentreRow>
{};

TEST_P(QTrackCentre, IsTheFirstValidVertexAtTheRebuild)
{
    const CentreRow& row = GetParam();
    model->setArcCenter(GeoPosition(1.0, 2.0));
    model->setPositions(row.positions);
    QTrackPath track(model, nullptr);
    const GeoPosition centre = model->getArcCenter();
    const GeoPosition expected = row.drawn ? om_ui_test::SITE : GeoPosition(1.0, 2.0);
    EXPECT_NEAR(centre.latitude, expected.latitude, 1e-12);
    EXPECT_NEAR(centre.longitude, expected.longitude, 1e-12);
    EXPECT_EQ(track.segments()->size(), row.drawn ? 1 : 0);
    if (row.drawn) {
        const QGeoCoordinate on_segment = track.segments()->at(0)->posCM();
        EXPECT_NEAR(on_segment.latitude(), expected.latitude, 1e-12);
        EXPECT_NEAR(on_segment.longitude(), expected.longitude, 1e-12);
    }
}

// Not a number, as a dropout of a recording: thinning keeps it, so what is left around it
// does not hang on how the cross-track distance treats it.
const GeoPosition DROPOUT(std::nan(""), std::nan(""));
const GeoPosition NORTH_10 = math_geo::destinationPoint(om_ui_test::SITE, 0.0, 10.0);

INSTANTIATE_TEST_SUITE_P(
    Values, QTrackCentre,
    ::testing::Values(CentreRow{"both_ends_valid", {om_ui_test::SITE, NORTH_10}, true},
                      CentreRow{"first_vertex_invalid", {DROPOUT, om_ui_test::SITE, NORTH_10}, true},
                      CentreRow{"last_vertex_invalid", {om_ui_test::SITE, NORTH_10, DROPOUT}, true},
                      CentreRow{"one_valid_vertex", {DROPOUT, om_ui_test::SITE}, false},
                      CentreRow{"one_vertex", {om_ui_test::SITE}, false}),
    [](const ::testing::TestParamInfo<CentreRow>& info) { return std::string(info.param.name); });

TEST_F(QTrackTest, KmlFilesOfTheRealWorldImport)
{
    auto track = make();
    om_ui_test::SignalRecorder recorder(track.get());
    ASSERT_TRUE(track->loadKmlFile(testData("Placemark_clippedAtDateLine.kml")));
    EXPECT_GT(track->trackPointCount(), 2);
    EXPECT_GT(track->segments()->size(), 0);
    EXPECT_GT(track->trackLength(), 100.0);
    const QStringList names = recorder.names();
    ASSERT_GE(names.size(), 4);
    EXPECT_EQ(names.mid(names.size() - 4),
              (QStringList{"trackPointCountChanged", "trackLengthChanged", "dataChanged", "trackChanged"}));

    const int count = track->trackPointCount();
    recorder.clear();
    EXPECT_FALSE(track->loadKmlFile(testData("Placemark_LineString_straight.kml"))) << "no Document";
    EXPECT_FALSE(track->loadKmlFile(testData("missing.kml")));
    EXPECT_EQ(track->trackPointCount(), count);
    EXPECT_EQ(recorder.names(), QStringList());
    // Placemarks inside a Folder are not looked for.
    EXPECT_FALSE(track->loadKmlFile(testData("sloppy_badCoord.kml")));
    EXPECT_FALSE(track->loadKmlFile(testData("MultiGeometry_multi-linestrings.kml")));
    EXPECT_EQ(track->trackPointCount(), count);
}

TEST_F(QTrackTest, AHundredThousandVertexTrackImportsAndBecomesSegments)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("loop.kml");
    {
        std::ofstream out(path.toStdString());
        out << "<kml><Document><Placemark><LineString><coordinates>\n" << std::setprecision(12);
        for (int i = 0; i < 100000; ++i) {
            const GeoPosition p = math_geo::destinationPoint(om_ui_test::SITE, i * 360.0 / 100000.0 + 90.0,
                                                             500.0 * std::sin(PI * i / 100000.0));
            out << p.longitude << ',' << p.latitude << ",0 ";
        }
        out << "</coordinates></LineString></Placemark></Document></kml>\n";
    }
    auto track = make();
    ASSERT_TRUE(track->loadKmlFile(QUrl::fromLocalFile(path)));
    EXPECT_GT(track->trackPointCount(), 100);
    EXPECT_LT(track->trackPointCount(), 100000);
    EXPECT_GT(track->segments()->size(), 50);
}

class QTrackLineTest : public ::testing::Test
{
protected:
    QTrackLineTest() : plane(om_ui_test::sitePlane())
    {
        model = std::make_shared<overmap::TrackLine>(&plane);
        line = std::make_unique<QTrackLine>(model, nullptr);
        line->setStartPosition(QGeoCoordinate(om_ui_test::SITE.latitude, om_ui_test::SITE.longitude));
        const GeoPosition east = math_geo::destinationPoint(om_ui_test::SITE, 90.0, 100.0);
        line->setEndPosition(QGeoCoordinate(east.latitude, east.longitude));
    }

    math_geo::ProjectionPlane plane;
    std::shared_ptr<overmap::TrackLine> model;
    std::unique_ptr<QTrackLine> line;
};

TEST_F(QTrackLineTest, LengthAndBearingMoveTheEnd)
{
    EXPECT_NEAR(line->lineLength(), 100.0, 1e-6);
    EXPECT_NEAR(line->bearing(), 90.0, 1e-3);
    EXPECT_EQ(line->segments()->size(), 1);
    QSignalSpy end(line.get(), &QTrackLine::endPositionChanged);
    ASSERT_TRUE(end.isValid());
    line->setBearing(90.0 + 1e-7);
    EXPECT_EQ(end.count(), 0);
    line->setBearing(180.0);
    EXPECT_EQ(end.count(), 1);
    EXPECT_LT(line->endPosition().latitude(), om_ui_test::SITE.latitude);
    EXPECT_NEAR(line->lineLength(), 100.0, 1e-3);
    line->setLineLength(50.0);
    EXPECT_NEAR(line->lineLength(), 50.0, 1e-3);
    EXPECT_NEAR(line->bearing(), 180.0, 1e-3);
    const math_geo::GeoBounds bounds = line->enclosingRectangle();
    EXPECT_NEAR(bounds.top() - bounds.bottom(), 50.0 / 111200.0, 1e-5);
}

TEST_F(QTrackLineTest, ARadiusMakesAnArcOfThePresentLength)
{
    QSignalSpy radius(line.get(), &QTrackLine::radiusChanged);
    ASSERT_TRUE(radius.isValid());
    line->setRadius(1e-7);
    EXPECT_EQ(radius.count(), 0);
    line->setRadius(50.0);
    EXPECT_EQ(radius.count(), 1);
    EXPECT_NEAR(model->getArcLength(), 100.0, 1e-6);
    EXPECT_DOUBLE_EQ(line->lineLength(), model->getArcLength());
    EXPECT_DOUBLE_EQ(line->bearing(), model->getArcBearing());
    ASSERT_EQ(line->segments()->size(), 1);
    EXPECT_DOUBLE_EQ(line->segments()->at(0)->radius(), 50.0);
    // The arc's centre lies 50 m off the start.
    EXPECT_NEAR(metres(line->segments()->at(0)->posCM(), line->startPosition()), 50.0, 0.1);
}

TEST_F(QTrackLineTest, EndsGivenInThePlane)
{
    line->setStartPositionXY(QPointF(0.0, 0.0));
    line->setEndPositionXY(QPointF(20.0, 0.0));
    EXPECT_TRUE(line->startUsesXY());
    EXPECT_TRUE(line->endUsesXY());
    EXPECT_NEAR(line->lineLength(), 20.0, 0.05);
    EXPECT_EQ(line->endPositionXY(), QPointF(20.0, 0.0));
    QSignalSpy circle(line.get(), &QTrackLine::circlePositionChanged);
    ASSERT_TRUE(circle.isValid());
    line->setCirclePositionXY(QPointF(10.0, 10.0));
    EXPECT_TRUE(line->circleUsesXY());
    EXPECT_EQ(circle.count(), 1);
    EXPECT_EQ(line->getType(), overmap_ui::QGeoObject::TRACK_LINE);
}

} // namespace
