#include "test_support.h"

#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using om_test::near;
using overmap::TrackLine;
using overmap::TrackPath;

namespace {

constexpr CoordinateSystem FLU = CoordinateSystem::X_FRONT_Y_LEFT;

class TrackTest : public ::testing::Test
{
protected:
    /// A path through the given plane points of the reference plane.
    std::shared_ptr<TrackPath> path(const std::vector<Point2D>& points)
    {
        auto track = std::make_shared<TrackPath>(&m_plane);
        std::vector<GeoPosition> positions;
        for (const Point2D& point : points)
            positions.push_back(m_plane.toGeoPosition(point));
        track->setPositions(positions);
        return track;
    }

    math_geo::ProjectionPlane m_plane = om_test::sitePlane();
};

// The projection round trip costs a few nanometres.
constexpr double TOL = 1e-6;

TEST_F(TrackTest, StraightPathHasParallelEdges)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 0, FLU)});
    ASSERT_EQ(track->firstEdge().size(), 2u);
    EXPECT_TRUE(near(track->firstEdge()[0], Point2D(0, 1.5, FLU), TOL));
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(10, 1.5, FLU), TOL));
    EXPECT_TRUE(near(track->centerLine()[0], Point2D(0, 0, FLU), TOL));
    EXPECT_TRUE(near(track->centerLine()[1], Point2D(10, 0, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[0], Point2D(0, -1.5, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[1], Point2D(10, -1.5, FLU), TOL));
    ASSERT_EQ(track->planePoints().size(), 1u);
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(0, 0, FLU), TOL));
}

TEST_F(TrackTest, OriginMovesTheGivenLineAcrossTheRibbon)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 0, FLU)});
    track->setOrigin(0.0);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(10, 0, FLU), TOL));
    EXPECT_TRUE(near(track->centerLine()[0], Point2D(0, -1.5, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[0], Point2D(0, -3, FLU), TOL));
}

TEST_F(TrackTest, CornerGetsOneMitredPointPerEdge)
{
    // Forward 10 m, then a left turn of 90 degrees.
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 0, FLU), Point2D(10, 10, FLU)});
    ASSERT_EQ(track->firstEdge().size(), 3u);
    const Point2D corner(10, 0, FLU);
    const double mitre = 1.5 * std::sqrt(2.0);
    EXPECT_NEAR((track->firstEdge()[1] - corner).length(), mitre, TOL);
    EXPECT_NEAR((track->secondEdge()[1] - corner).length(), mitre, TOL);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(8.5, 1.5, FLU), TOL)) << "inside of the turn";
    EXPECT_TRUE(near(track->secondEdge()[1], Point2D(11.5, -1.5, FLU), TOL)) << "outside of the turn";
    EXPECT_TRUE(near(track->centerLine()[1], corner, TOL));
    EXPECT_TRUE(near(track->firstEdge()[2], Point2D(8.5, 10, FLU), TOL));
}

TEST_F(TrackTest, CollinearVertexGetsPlainPoints)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(5, 0, FLU), Point2D(10, 0, FLU)});
    ASSERT_EQ(track->firstEdge().size(), 3u);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(5, 1.5, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[1], Point2D(5, -1.5, FLU), TOL));
}

TEST_F(TrackTest, SinglePositionHasAPlanePointAndNoEdges)
{
    auto track = path({Point2D(3, 4, FLU)});
    ASSERT_EQ(track->planePoints().size(), 1u);
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(3, 4, FLU), TOL));
    EXPECT_TRUE(track->firstEdge().empty());
    EXPECT_TRUE(track->secondEdge().empty());
    EXPECT_EQ(track->pathLength(), 0.0);
    TrackPath empty(&m_plane);
    EXPECT_TRUE(empty.planePoints().empty());
    EXPECT_TRUE(empty.firstEdge().empty());
}

TEST_F(TrackTest, DefiningValuesRebuildTheCachesAndArcValuesDoNot)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 0, FLU)});
    track->setRadius(20.0);
    track->setArcLength(10.0);
    const Point2D built = track->firstEdge()[1];
    track->setArcLength(20.0);
    EXPECT_EQ(track->firstEdge()[1], built) << "arc length alone leaves the caches";
    track->setWidth(5.0);
    EXPECT_NE(track->firstEdge()[1], built) << "width empties them, and the arc length is picked up";
    EXPECT_NEAR((track->firstEdge()[0] - track->secondEdge()[0]).length(), 5.0, TOL);
}

TEST_F(TrackTest, PlaneNoiseDoesNotRebuildButARealMoveDoes)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(100, 0, FLU)});
    const Point2D built = track->firstEdge()[1];
    m_plane.setRotation(1e-7);
    EXPECT_EQ(track->firstEdge()[1].x, built.x) << "a rebuild would move this by about 2e-7 m";
    EXPECT_EQ(track->firstEdge()[1].y, built.y);
    m_plane.setRotation(90.0);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(-1.5, 100, FLU), TOL));
}

TEST_F(TrackTest, AMoveTakenOverByPlanePointsLeavesTheEdgesStale)
{
    // Edges and plane points share the cached plane: once the plane points have taken the
    // move over, the edges see none and keep their old numbers until a setter empties them.
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 0, FLU)});
    track->firstEdge();
    m_plane.setRotation(90.0);
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(0, 0, FLU), TOL));
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(10, 1.5, FLU), TOL)) << "stale";
    track->setWidth(3.0);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(-1.5, 10, FLU), TOL)) << "rebuilt";
}

TEST_F(TrackTest, ARepeatedVertexFromTheThirdOnIsNotANumberThereAndAtTheNext)
{
    struct Row
    {
        const char* what;
        std::vector<Point2D> points;
        std::vector<bool> not_a_number; // per vertex, in all three lists
        Point2D last_first_edge;
    };
    const Row rows[] = {
        {"repeat at index 2",
         {Point2D(0, 0, FLU), Point2D(10, 0, FLU), Point2D(10, 0, FLU), Point2D(20, 0, FLU),
          Point2D(30, 0, FLU)},
         {false, true, true, false, false},
         Point2D(30, 1.5, FLU)},
        {"repeat at index 1 pinches the start instead",
         {Point2D(0, 0, FLU), Point2D(0, 0, FLU), Point2D(10, 0, FLU)},
         {false, false, false},
         Point2D(10, 1.5, FLU)},
    };
    for (const Row& row : rows) {
        auto track = path(row.points);
        const std::vector<Point2D>* lists[] = {&track->firstEdge(), &track->centerLine(),
                                               &track->secondEdge()};
        for (const std::vector<Point2D>* list : lists) {
            ASSERT_EQ(list->size(), row.not_a_number.size()) << row.what;
            for (std::size_t i = 0; i < list->size(); ++i) {
                EXPECT_EQ(std::isnan((*list)[i].x), row.not_a_number[i]) << row.what << ", vertex " << i;
                EXPECT_EQ(std::isnan((*list)[i].y), row.not_a_number[i]) << row.what << ", vertex " << i;
            }
        }
        EXPECT_TRUE(near(track->firstEdge().back(), row.last_first_edge, TOL)) << row.what;
    }
    auto pinched = path({Point2D(0, 0, FLU), Point2D(0, 0, FLU), Point2D(10, 0, FLU)});
    EXPECT_TRUE(near(pinched->firstEdge()[0], Point2D(0, 0, FLU), TOL)) << "a zero normal at the start";
    EXPECT_TRUE(near(pinched->firstEdge()[1], Point2D(0, 1.5, FLU), TOL));
}

TEST_F(TrackTest, ArcEdgesHoldTheRibbonsFourCorners)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 10, FLU)});
    track->setRadius(10.0);
    track->setArcLength(10.0 * M_PI / 2.0); // a quarter turn
    ASSERT_EQ(track->planePoints().size(), 1u);
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(0, -10, FLU), TOL)) << "centre of the arc";
    ASSERT_EQ(track->firstEdge().size(), 2u);
    EXPECT_TRUE(near(track->firstEdge()[0], Point2D(0, 1.5, FLU), TOL));
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(11.5, 10, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[0], Point2D(0, -1.5, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[1], Point2D(8.5, 10, FLU), TOL));
}

TEST_F(TrackTest, ArcBearingAndPlaneRotationTurnTheArcUnlessGivenInXY)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 10, FLU)});
    track->setRadius(10.0);
    track->setArcBearing(90.0);
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(-10, 0, FLU), TOL));
    m_plane.setRotation(90.0);
    track->setXYFlag(true);
    track->setRadius(10.0); // empties the caches
    const Point2D p0 = m_plane.toPlane(track->getPositions()[0]);
    EXPECT_TRUE(near(track->planePoints()[0], p0 - Point2D(10, 0, FLU), TOL));
}

TEST_F(TrackTest, ArcNeedsTheOriginInTheMiddle)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 10, FLU)});
    track->setRadius(10.0);
    track->setOrigin(0.25);
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(track->firstEdge().size(), 2u);
    EXPECT_TRUE(asserts.fired("m_track_origin == 0.5"));
}

TEST_F(TrackTest, PathLengthIsGeodesic)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(300, 0, FLU), Point2D(300, 400, FLU)});
    EXPECT_NEAR(track->pathLength(), 700.0, 0.5);
}

// --- track lines ---------------------------------------------------------------------

TEST_F(TrackTest, NewTrackLineIsMarkedAsNotPlaced)
{
    TrackLine line(&m_plane);
    EXPECT_EQ(line.getName(), "Track line");
    EXPECT_EQ(line.getColor(), "#666666");
    ASSERT_EQ(line.getPositions().size(), 2u);
    EXPECT_EQ(line.getPositions()[1], GeoPosition(-9999.9, -9999.9));
    EXPECT_EQ(line.getArcCenter(), GeoPosition(-9999.9, -9999.9));
    EXPECT_EQ(TrackPath(&m_plane).getName(), "Track");
}

TEST_F(TrackTest, TrackLineKeepsBothFormsOfItsEnds)
{
    TrackLine line(&m_plane);
    const GeoPosition start(48.2001, 11.6001);
    line.setStart(start);
    EXPECT_EQ(line.getPositions()[0], start);
    EXPECT_TRUE(near(line.getStartPoint(), m_plane.toPlane(start)));
    EXPECT_FALSE(line.isStartByXY());

    const Point2D end(30, 5, FLU);
    line.setEndXY(end);
    EXPECT_TRUE(line.isEndByXY());
    EXPECT_TRUE(line.getXYFlag());
    EXPECT_EQ(line.getPositions()[1], m_plane.toGeoPosition(end));
    EXPECT_EQ(line.firstEdge().size(), 2u);

    line.setCenterXY(Point2D(15, -20, FLU));
    EXPECT_TRUE(line.isCenterByXY());
    EXPECT_EQ(line.getArcCenter(), m_plane.toGeoPosition(Point2D(15, -20, FLU)));
    line.setCenterPosition(start);
    EXPECT_FALSE(line.isCenterByXY());
    EXPECT_TRUE(near(line.getCenterPoint(), m_plane.toPlane(start)));
}

TEST_F(TrackTest, SyncedEndFollowsTheStartsWayOfBeingGiven)
{
    TrackLine line(&m_plane);
    line.setStartXY(Point2D(0, 0, FLU));
    EXPECT_TRUE(line.setEndSynced(GeoPosition(48.2002, 11.6)));
    EXPECT_TRUE(line.isEndByXY());
    EXPECT_TRUE(line.getXYFlag());
    line.setStart(GeoPosition(48.2, 11.6));
    EXPECT_FALSE(line.setEndSynced(GeoPosition(48.2002, 11.6)));
    EXPECT_FALSE(line.isEndByXY());
}

TEST_F(TrackTest, OnAnArcBothEndsAreGivenTheSameWay)
{
    TrackLine line(&m_plane);
    line.setEndByXY(true);
    EXPECT_FALSE(line.isStartByXY()) << "a straight line lets its ends differ";
    line.setRadius(25.0);
    line.setStartByXY(false);
    EXPECT_FALSE(line.isEndByXY());
    line.setEndByXY(true);
    EXPECT_TRUE(line.isStartByXY());
    EXPECT_TRUE(line.getXYFlag());
}

} // namespace
