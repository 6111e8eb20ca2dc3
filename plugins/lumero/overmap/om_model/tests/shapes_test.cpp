#include "test_support.h"

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>
#include <om_model/xml_elements.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cmath>
#include <fstream>

using math_geo::GeoPosition;
using math_geo::Point2D;
using om_test::near;
using overmap::TrackPath;
using CS = math_geo::CoordinateSystem;
using Points = std::vector<Point2D>;

namespace {

constexpr CS DIN = CS::DIN70000;
constexpr CS FLU = CS::X_FRONT_Y_LEFT;
constexpr double TOL = 1e-6; // the projection round trip costs a few nanometres
const double NO = NAN;

class TrackTest : public testing::Test
{
protected:
    std::shared_ptr<TrackPath> path(const Points& points)
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

struct RibbonRow
{
    const char* name;
    Points vertices;
    double origin;
    Points first, center, second; // (NO, NO): not a number there
};

void PrintTo(const RibbonRow& row, std::ostream* os)
{
    *os << row.name;
}

class TrackRibbon : public TrackTest, public testing::WithParamInterface<RibbonRow>
{};

TEST_P(TrackRibbon, EdgesOfAThreeMetreTrack)
{
    const RibbonRow& row = GetParam();
    auto track = path(row.vertices);
    track->setOrigin(row.origin);
    const Points* got[] = {&track->firstEdge(), &track->centerLine(), &track->secondEdge()};
    const Points* want[] = {&row.first, &row.center, &row.second};
    for (int list = 0; list < 3; ++list) {
        ASSERT_EQ(got[list]->size(), want[list]->size()) << list;
        for (std::size_t i = 0; i < got[list]->size(); ++i) {
            const Point2D& w = (*want[list])[i];
            if (std::isnan(w.x))
                EXPECT_TRUE(std::isnan((*got[list])[i].x) && std::isnan((*got[list])[i].y))
                    << list << ":" << i;
            else
                EXPECT_TRUE(near((*got[list])[i], w, TOL)) << list << ":" << i;
        }
    }
}

const Point2D GAP(NO, NO, FLU);
INSTANTIATE_TEST_SUITE_P(Rows, TrackRibbon,
                         testing::Values(RibbonRow{"straight",
                                                   {{0, 0, FLU}, {10, 0, FLU}},
                                                   0.5,
                                                   {{0, 1.5, FLU}, {10, 1.5, FLU}},
                                                   {{0, 0, FLU}, {10, 0, FLU}},
                                                   {{0, -1.5, FLU}, {10, -1.5, FLU}}},
                                         RibbonRow{"origin_on_the_first_edge",
                                                   {{0, 0, FLU}, {10, 0, FLU}},
                                                   0.0,
                                                   {{0, 0, FLU}, {10, 0, FLU}},
                                                   {{0, -1.5, FLU}, {10, -1.5, FLU}},
                                                   {{0, -3, FLU}, {10, -3, FLU}}},
                                         RibbonRow{"left_turn_mitred",
                                                   {{0, 0, FLU}, {10, 0, FLU}, {10, 10, FLU}},
                                                   0.5,
                                                   {{0, 1.5, FLU}, {8.5, 1.5, FLU}, {8.5, 10, FLU}},
                                                   {{0, 0, FLU}, {10, 0, FLU}, {10, 10, FLU}},
                                                   {{0, -1.5, FLU}, {11.5, -1.5, FLU}, {11.5, 10, FLU}}},
                                         RibbonRow{"collinear",
                                                   {{0, 0, FLU}, {5, 0, FLU}, {10, 0, FLU}},
                                                   0.5,
                                                   {{0, 1.5, FLU}, {5, 1.5, FLU}, {10, 1.5, FLU}},
                                                   {{0, 0, FLU}, {5, 0, FLU}, {10, 0, FLU}},
                                                   {{0, -1.5, FLU}, {5, -1.5, FLU}, {10, -1.5, FLU}}},
                                         RibbonRow{"repeat_from_the_third_is_not_a_number_there_and_next",
                                                   {{0, 0, FLU}, {10, 0, FLU}, {10, 0, FLU}, {20, 0, FLU}},
                                                   0.5,
                                                   {{0, 1.5, FLU}, GAP, GAP, {20, 1.5, FLU}},
                                                   {{0, 0, FLU}, GAP, GAP, {20, 0, FLU}},
                                                   {{0, -1.5, FLU}, GAP, GAP, {20, -1.5, FLU}}},
                                         RibbonRow{"repeat_at_the_start_pinches_it",
                                                   {{0, 0, FLU}, {0, 0, FLU}, {10, 0, FLU}},
                                                   0.5,
                                                   {{0, 0, FLU}, {0, 1.5, FLU}, {10, 1.5, FLU}},
                                                   {{0, 0, FLU}, {0, 0, FLU}, {10, 0, FLU}},
                                                   {{0, 0, FLU}, {0, -1.5, FLU}, {10, -1.5, FLU}}},
                                         RibbonRow{"single_position", {{3, 4, FLU}}, 0.5, {}, {}, {}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TrackTest, CachesFollowTheDefiningValuesAndRealPlaneMovesOnly)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(100, 0, FLU)});
    const Point2D built = track->firstEdge()[1];
    m_plane.setRotation(1e-7); // a rebuild would move the edge by about 2e-7 m
    EXPECT_EQ(track->firstEdge()[1].y, built.y);
    m_plane.setRotation(90.0);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(-1.5, 100, FLU), TOL));
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(0, 0, FLU), TOL));
    // Once the plane points have taken a move over, the edges keep their numbers until a setter.
    m_plane.setRotation(0.0);
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(0, 0, FLU), TOL));
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(-1.5, 100, FLU), TOL)) << "stale";
    track->setWidth(5.0);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(100, 2.5, FLU), TOL));
    EXPECT_NEAR(track->pathLength(), 100.0, 0.01);
    auto corner = path({Point2D(0, 0, FLU), Point2D(300, 0, FLU), Point2D(300, 400, FLU)});
    EXPECT_NEAR(corner->pathLength(), 700.0, 0.5);
}

TEST_F(TrackTest, ArcEdgesHoldTheFourCornersAndTurnWithBearingAndPlane)
{
    auto track = path({Point2D(0, 0, FLU), Point2D(10, 10, FLU)});
    track->setRadius(10.0);
    track->setArcLength(10.0 * M_PI / 2.0); // a quarter turn
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(0, -10, FLU), TOL)) << "centre of the arc";
    EXPECT_TRUE(near(track->firstEdge()[0], Point2D(0, 1.5, FLU), TOL));
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(11.5, 10, FLU), TOL));
    EXPECT_TRUE(near(track->secondEdge()[1], Point2D(8.5, 10, FLU), TOL));
    track->setArcLength(20.0);
    EXPECT_TRUE(near(track->firstEdge()[1], Point2D(11.5, 10, FLU), TOL)) << "arc length alone keeps caches";
    track->setArcBearing(90.0);
    track->setRadius(10.0); // empties the caches
    EXPECT_TRUE(near(track->planePoints()[0], Point2D(-10, 0, FLU), TOL));
    m_plane.setRotation(90.0);
    track->setXYFlag(true);
    track->setRadius(10.0);
    EXPECT_TRUE(
        near(track->planePoints()[0], m_plane.toPlane(track->getPositions()[0]) - Point2D(10, 0, FLU), TOL));
    track->setOrigin(0.25);
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(track->firstEdge().size(), 2u);
    EXPECT_TRUE(asserts.fired("m_track_origin == 0.5"));
}

TEST_F(TrackTest, TrackLineEndsAreGivenByGlobeOrPlaneAndAnArcGivesBothTheSameWay)
{
    overmap::TrackLine line(&m_plane);
    EXPECT_EQ(line.getPositions()[1], GeoPosition(-9999.9, -9999.9));
    line.setStart(GeoPosition(48.2001, 11.6001));
    EXPECT_TRUE(near(line.getStartPoint(), m_plane.toPlane(GeoPosition(48.2001, 11.6001))));
    line.setEndXY(Point2D(30, 5, FLU));
    EXPECT_TRUE(line.isEndByXY());
    EXPECT_TRUE(line.getXYFlag());
    EXPECT_FALSE(line.isStartByXY());
    EXPECT_EQ(line.getPositions()[1], m_plane.toGeoPosition(Point2D(30, 5, FLU)));
    line.setCenterXY(Point2D(15, -20, FLU));
    EXPECT_EQ(line.getArcCenter(), m_plane.toGeoPosition(Point2D(15, -20, FLU)));
    line.setCenterPosition(GeoPosition(48.2, 11.6));
    EXPECT_FALSE(line.isCenterByXY());
    EXPECT_FALSE(line.setEndSynced(GeoPosition(48.2002, 11.6))) << "follows the start: by globe";
    EXPECT_FALSE(line.isEndByXY());
    EXPECT_FALSE(line.getXYFlag());
    line.setStartXY(Point2D(0, 0, FLU));
    EXPECT_TRUE(line.getXYFlag());
    EXPECT_TRUE(line.setEndSynced(GeoPosition(48.2002, 11.6)));
    EXPECT_TRUE(line.isEndByXY());
    line.setRadius(25.0);
    line.setStartByXY(false);
    EXPECT_FALSE(line.isEndByXY());
    line.setEndByXY(true);
    EXPECT_TRUE(line.isStartByXY());
}

struct ContourFileRow
{
    const char* name;
    const char* text;
    Points read; // empty: refused
    std::string message;
};

void PrintTo(const ContourFileRow& row, std::ostream* os)
{
    *os << row.name;
}

class ContourFile : public testing::TestWithParam<ContourFileRow>
{};

TEST_P(ContourFile, IsReadCentredOrRefusedWithItsLine)
{
    const ContourFileRow& row = GetParam();
    const std::string path =
        row.text ? testing::TempDir() + "om_contour_" + row.name + ".csv" : "/nonexistent/car.csv";
    if (row.text)
        std::ofstream(path, std::ios::binary) << row.text;
    math_geo::ProjectionPlane plane = om_test::sitePlane();
    overmap::Car car(&plane);
    uni_testing::LogCapture log;
    EXPECT_EQ(car.loadContourFile(path), !row.read.empty());
    if (row.read.empty()) {
        EXPECT_EQ(car.getLength(), 5.0);
        EXPECT_EQ(row.message.empty() ? log.none("overmap") : log.contains("overmap", 1, row.message + path),
                  true);
    } else {
        EXPECT_EQ(car.getContour(), row.read);
        EXPECT_TRUE(log.none("overmap"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ContourFile,
    testing::Values(
        ContourFileRow{"centred_and_trimmed",
                       "0,0\n4,0\n4, 2\r\n 0 ,2\n",
                       {{-2, -1, DIN}, {2, -1, DIN}, {2, 1, DIN}, {-2, 1, DIN}},
                       ""},
        ContourFileRow{"empty_lines_and_single_fields_are_zeros",
                       "3,1\n\n-3\n3,-1\n",
                       {{3, 1, DIN}, {0, 0, DIN}, {-3, 0, DIN}, {3, -1, DIN}},
                       ""},
        ContourFileRow{"three_fields", "0,0\n1,2,3\n4,2\n", {}, "Contour input file fas too many cordinates"},
        ContourFileRow{
            "junk_behind_a_number", "0,0\n4,0\n4,2x\n0,2\n", {}, "Error in parsing the contour input file "},
        ContourFileRow{"only_a_carriage_return",
                       "0,0\n4,0\n\r\n4,2\n0,2\n",
                       {},
                       "Error in parsing the contour input file "},
        ContourFileRow{"a_tab_before_a_number",
                       "0,0\n4,0\n4,\t2\n0,2\n",
                       {},
                       "Error in parsing the contour input file "},
        ContourFileRow{"too_few_vertices", "0,0\n4,2\n", {}, ""},
        ContourFileRow{"missing", nullptr, {}, "Could not open contour input file "}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(VehicleDocument, RoundTripsAndMetadataFallsBackToThePresentSize)
{
    math_geo::ProjectionPlane plane = om_test::sitePlane();
    overmap::Car source(&plane);
    source.setContour(
        {Point2D(2, 0.9, DIN), Point2D(-2, 0.9, DIN), Point2D(-2, -0.9, DIN), Point2D(2, -0.9, DIN)});
    source.addPoi(overmap::Poi{Point2D(1.25, 0.5, DIN), "Driver's head"});
    source.setDescription("Test sedan");
    pugi::xml_document document;
    source.saveVehicle(document);
    EXPECT_STREQ(document.document_element().name(), "Car");
    EXPECT_STREQ(document.document_element().child("MetaData").attribute("length").value(),
                 "-1.000000000000");
    overmap::Car target(&plane);
    ASSERT_TRUE(target.loadVehicle(document));
    EXPECT_EQ(target.getContour(), source.getContour());
    ASSERT_EQ(target.poiCount(), 8u);
    EXPECT_EQ(target.getPoi(7).name, "Driver's head");
    EXPECT_TRUE(near(target.getPoi(7).position, Point2D(1.25, 0.5, DIN)));
    EXPECT_EQ(target.getDescription(), "Test sedan");
    ASSERT_TRUE(document.load_string("<Car><Contour>3 1 -3 1 -3 -1 3 -1</Contour>"
                                     "<MetaData description=\"Van\" length=\"6.2\" width=\"wide\"/></Car>"));
    ASSERT_TRUE(target.loadVehicle(document));
    EXPECT_EQ(target.getVehicleLength(), 6.0);
    EXPECT_EQ(target.getVehicleWidth(), 2.0);
    ASSERT_TRUE(document.load_string("<Car><MetaData length=\"4.5\" width=\"1.8\"/></Car>"));
    EXPECT_FALSE(target.loadVehicle(document)) << "neither contour nor POIs";
    EXPECT_EQ(target.getVehicleLength(), 6.0);
}

TEST(XmlElements, TextsAndNumbersAreReadAsAStreamReadsThemAndWrittenWithTwelveDigits)
{
    using overmap::xml::parsePositionText;
    EXPECT_EQ(overmap::xml::parsePointText("1 2 \\n3 4 \\n", DIN),
              (Points{Point2D(1, 2, DIN), Point2D(3, 4, DIN)}));
    EXPECT_EQ(overmap::xml::parsePointText("1 2\n3,4\n5 6", DIN), (Points{Point2D(1, 2, DIN)}));
    EXPECT_EQ(parsePositionText("48.5 11.25 \\n48.75 11.5"),
              std::vector<GeoPosition>{GeoPosition(48.5, 11.25)})
        << "track positions know no old separators";
    EXPECT_EQ(parsePositionText(" +1.5 -2e1\n.5 3.\t1e-400 4E+2 "),
              (std::vector<GeoPosition>{{1.5, -20.0}, {0.5, 3.0}, {0.0, 400.0}}));
    EXPECT_EQ(parsePositionText("1.5.5 7 8").size(), 2u) << "\"1.5.5\" is 1.5 then .5";
    for (const char* refused : {"1e 2", "1e400 2", "inf 2", "0x10 2", "1"})
        EXPECT_TRUE(parsePositionText(refused).empty()) << refused;
    // A number that ends where the view ends is not read on into what follows in memory.
    EXPECT_EQ(parsePositionText(std::string_view("1 23", 3)), std::vector<GeoPosition>{GeoPosition(1, 2)});
    EXPECT_EQ(parsePositionText(std::string_view("1 2.75", 5)),
              std::vector<GeoPosition>{GeoPosition(1, 2.7)});
    EXPECT_EQ(parsePositionText(std::string_view("1 1e25", 5)),
              std::vector<GeoPosition>{GeoPosition(1, 100)});
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Car");
    overmap::xml::writeContour(root, {Point2D(2.5, -1, DIN)});
    overmap::xml::writeContour(root, {});
    EXPECT_STREQ(root.first_child().child_value(), "2.500000000000 -1.000000000000 \n");
    EXPECT_FALSE(root.last_child().first_child()) << "no text node for an empty contour";
    EXPECT_FALSE(overmap::xml::parseReal("12.5m").has_value());
    EXPECT_FALSE(overmap::xml::parseReal("").has_value());
    EXPECT_EQ(overmap::xml::parseReal("-1e3"), -1000.0);
}

} // namespace
