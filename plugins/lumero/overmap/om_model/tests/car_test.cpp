#include "test_support.h"

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/xml_elements.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>
#include <utility>

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using om_test::near;
using overmap::Car;

namespace {

constexpr CoordinateSystem DIN = CoordinateSystem::DIN70000;

class CarTest : public ::testing::Test
{
protected:
    math_geo::ProjectionPlane m_plane = om_test::sitePlane();
};

/// A file in the temporary folder that is removed with the object.
class TempFile
{
public:
    explicit TempFile(const std::string& content)
    {
        char name[] = "/tmp/om_contour_XXXXXX";
        const int fd = ::mkstemp(name);
        ::close(fd);
        m_path = name;
        std::ofstream(m_path, std::ios::binary) << content;
    }
    ~TempFile() { std::remove(m_path.c_str()); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// --- defaults and POIs ---------------------------------------------------------------

TEST_F(CarTest, NewCarIsFiveByTwoWithSevenPois)
{
    Car car(&m_plane);
    EXPECT_EQ(car.getName(), "Car");
    EXPECT_EQ(car.getColor(), "#FFA500");
    EXPECT_TRUE(car.hasSelectablePois());
    EXPECT_DOUBLE_EQ(car.getLength(), 5.0);
    EXPECT_DOUBLE_EQ(car.getWidth(), 2.0);
    EXPECT_EQ(car.getVehicleLength(), -1.0);
    ASSERT_EQ(car.poiCount(), 7u);
    EXPECT_EQ(car.getPoi(1).name, "Front left");
    EXPECT_TRUE(near(car.getPoi(1).position, Point2D(2.5, 1, DIN)));
    EXPECT_TRUE(near(car.getPoi(4).position, Point2D(-2.5, -1, DIN)));
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(car.getPoi(i).name, Car::standardPoiNames()[i]);
    ASSERT_EQ(car.getContour().size(), 4u);
    EXPECT_TRUE(near(car.getContour()[0], Point2D(2.5, 1, DIN)));
    EXPECT_TRUE(near(car.getContour()[2], Point2D(-2.5, -1, DIN)));
}

TEST_F(CarTest, LengthAndWidthMoveTheStandardPoisOnly)
{
    Car car(&m_plane);
    car.setPoi(2, overmap::Poi{car.getPoi(2).position, "Bumper"});
    car.addPoi(overmap::Poi{Point2D(7, 7, DIN), "Mirror"});
    car.setLength(4);
    car.setWidth(3);
    EXPECT_TRUE(near(car.getPoi(0).position, Point2D(0, 0, DIN)));
    EXPECT_TRUE(near(car.getPoi(1).position, Point2D(2, 1.5, DIN)));
    EXPECT_TRUE(near(car.getPoi(2).position, Point2D(2, 0, DIN)));
    EXPECT_TRUE(near(car.getPoi(3).position, Point2D(2, -1.5, DIN)));
    EXPECT_TRUE(near(car.getPoi(4).position, Point2D(-2, -1.5, DIN)));
    EXPECT_TRUE(near(car.getPoi(5).position, Point2D(-2, 0, DIN)));
    EXPECT_TRUE(near(car.getPoi(6).position, Point2D(-2, 1.5, DIN)));
    EXPECT_EQ(car.getPoi(2).name, "Bumper");
    EXPECT_EQ(car.getPoi(7).name, "Mirror");
    EXPECT_TRUE(near(car.getPoi(7).position, Point2D(7, 7, DIN)));
}

TEST_F(CarTest, TooFewPoisAreRebuiltWithTheStandardNames)
{
    Car car(&m_plane);
    car.resetPois();
    car.setWidth(4);
    ASSERT_EQ(car.poiCount(), 7u);
    EXPECT_EQ(car.getPoi(6).name, "Back left");
    EXPECT_TRUE(near(car.getPoi(6).position, Point2D(-2.5, 2, DIN)));
}

// --- contours ------------------------------------------------------------------------

TEST_F(CarTest, OffCentreContourIsLoggedAndMovedWithItsExtentKept)
{
    Car car(&m_plane);
    uni_testing::LogCapture log;
    car.setContour({Point2D(4, 1, DIN), Point2D(-2, 1, DIN), Point2D(-2, -1, DIN), Point2D(4, -1, DIN)});
    EXPECT_TRUE(log.contains("overmap", 6, "The given contour center is not in 0/0, but Point2D(1, 0)"));
    EXPECT_TRUE(near(car.getContour()[0], Point2D(3, 1, DIN)));
    EXPECT_TRUE(near(car.getContour()[1], Point2D(-3, 1, DIN)));
    EXPECT_DOUBLE_EQ(car.getLength(), 6.0);
    EXPECT_DOUBLE_EQ(car.getWidth(), 2.0);
    EXPECT_TRUE(near(car.getPoi(1).position, Point2D(3, 1, DIN)));
}

TEST_F(CarTest, ContourInAnotherSystemIsConverted)
{
    Car car(&m_plane);
    uni_testing::LogCapture log;
    const CoordinateSystem xrfy = CoordinateSystem::X_RIGHT_Y_FRONT;
    // Right/front points: 1 m to the right and 2 m forward is (2, -1) in the car's frame.
    car.setContour({Point2D(1, 2, xrfy), Point2D(-1, 2, xrfy), Point2D(-1, -2, xrfy), Point2D(1, -2, xrfy)});
    EXPECT_EQ(log.count("overmap", 1, "Car::setContour() - contour has different coordiante system"), 4u);
    EXPECT_TRUE(near(car.getContour()[0], Point2D(2, -1, DIN)));
}

TEST_F(CarTest, ContourOfFewerThanTwoPointsZeroesTheSizeButIsKept)
{
    Car car(&m_plane);
    car.setContour({Point2D(1, 1, DIN)});
    EXPECT_EQ(car.getLength(), 0.0);
    EXPECT_EQ(car.getWidth(), 0.0);
    ASSERT_EQ(car.getContour().size(), 1u);
    EXPECT_TRUE(near(car.getPoi(1).position, Point2D(0, 0, DIN)));
}

TEST_F(CarTest, ContourFileIsCentredBeforeItIsSet)
{
    TempFile file("0,0\n4,0\n4, 2\r\n 0 ,2\n");
    Car car(&m_plane);
    uni_testing::LogCapture log;
    ASSERT_TRUE(car.loadContourFile(file.path()));
    EXPECT_EQ(log.count("overmap", 6, "not in 0/0"), 0u);
    ASSERT_EQ(car.getContour().size(), 4u);
    EXPECT_TRUE(near(car.getContour()[0], Point2D(-2, -1, DIN)));
    EXPECT_TRUE(near(car.getContour()[2], Point2D(2, 1, DIN)));
    EXPECT_DOUBLE_EQ(car.getLength(), 4.0);
    EXPECT_DOUBLE_EQ(car.getWidth(), 2.0);
}

TEST_F(CarTest, ContourFileEmptyLinesAndSingleFieldsGiveZeros)
{
    TempFile file("3,1\n\n-3\n3,-1\n");
    const auto vertices = overmap::readContourFile(file.path(), DIN);
    ASSERT_EQ(vertices.size(), 4u);
    EXPECT_TRUE(near(vertices[1], Point2D(0, 0, DIN)));
    EXPECT_TRUE(near(vertices[2], Point2D(-3, 0, DIN)));
}

TEST_F(CarTest, ContourFileWithThreeFieldsIsRejected)
{
    TempFile file("0,0\n1,2,3\n4,2\n");
    Car car(&m_plane);
    const auto before = car.getContour();
    uni_testing::LogCapture log;
    EXPECT_TRUE(overmap::readContourFile(file.path(), DIN).empty());
    EXPECT_FALSE(car.loadContourFile(file.path()));
    EXPECT_TRUE(log.contains("overmap", 1, "Contour input file fas too many cordinates" + file.path()));
    EXPECT_EQ(car.getContour(), before);
}

TEST_F(CarTest, ContourFileWithAFieldThatDoesNotConvertIsRejected)
{
    // Fields are trimmed of blanks and line ends only, then converted whole.
    const std::pair<const char*, const char*> rows[] = {
        {"junk behind a number", "0,0\n4,0\n4,2x\n0,2\n"},
        {"a line of only a carriage return", "0,0\n4,0\n\r\n4,2\n0,2\n"},
        {"a tab before a number", "0,0\n4,0\n4,\t2\n0,2\n"},
    };
    for (const auto& [what, text] : rows) {
        TempFile file(text);
        Car car(&m_plane);
        uni_testing::LogCapture log;
        EXPECT_FALSE(car.loadContourFile(file.path())) << what;
        EXPECT_TRUE(log.contains("overmap", 1, "Error in parsing the contour input file " + file.path()))
            << what;
        EXPECT_DOUBLE_EQ(car.getLength(), 5.0) << what;
    }
}

TEST_F(CarTest, ContourFileWithTooFewVerticesChangesNothing)
{
    TempFile file("0,0\n4,2\n");
    Car car(&m_plane);
    uni_testing::LogCapture log;
    EXPECT_FALSE(car.loadContourFile(file.path()));
    EXPECT_EQ(car.getContour().size(), 4u);
    EXPECT_DOUBLE_EQ(car.getWidth(), 2.0);
    EXPECT_TRUE(log.none("overmap"));
}

TEST_F(CarTest, MissingContourFileIsLogged)
{
    Car car(&m_plane);
    uni_testing::LogCapture log;
    EXPECT_FALSE(car.loadContourFile("/nonexistent/car.csv"));
    EXPECT_TRUE(log.contains("overmap", 1, "Could not open contour input file /nonexistent/car.csv"));
}

// --- antenna offset ------------------------------------------------------------------

TEST_F(CarTest, AntennaOffsetSeparatesTheAntennaFromTheCentre)
{
    Car car(&m_plane);
    car.setGeoPosition(om_test::SITE); // the antenna's position
    car.setHeading(0);
    car.setGpsOffset(Point2D(1.5, 0, DIN));
    // Heading 0 faces north: the centre is 1.5 m south of the antenna.
    const GeoPosition centre = car.toGeo(Point2D(0, 0, DIN));
    EXPECT_TRUE(near(m_plane.toPlane(centre), Point2D(-1.5, 0, CoordinateSystem::X_FRONT_Y_LEFT), 1e-6));
    EXPECT_TRUE(near(car.toLocal(om_test::SITE), Point2D(1.5, 0, DIN), 1e-6));
    EXPECT_TRUE(near(car.getXYPosition(), Point2D(-1.5, 0, CoordinateSystem::X_FRONT_Y_LEFT), 1e-6))
        << "XY belongs to the centre, and the offset is not turned by the heading";
    EXPECT_EQ(car.getLastUpdateTime(), -1.0);
}

TEST_F(CarTest, AntennaOffsetPlaysNoPartInXYMode)
{
    Car car(&m_plane);
    car.setXYPosition(Point2D(10, 0, CoordinateSystem::X_FRONT_Y_LEFT));
    car.setGpsOffset(Point2D(1, 0, DIN));
    EXPECT_EQ(car.getGeoPosition(), m_plane.toGeoPosition(Point2D(10, 0, CoordinateSystem::X_FRONT_Y_LEFT)));
    EXPECT_EQ(car.toGeo(Point2D(0, 0, DIN)), car.getGeoPosition());
}

TEST_F(CarTest, AntennaOffsetMustBeInTheLocalSystem)
{
    Car car(&m_plane);
    uni_testing::AssertCapture asserts;
    car.setGpsOffset(Point2D(1, 0, CoordinateSystem::X_RIGHT_Y_FRONT));
    EXPECT_TRUE(asserts.fired("offset.getCoordinateSystem() == localCoordinateSystem()"));
    car.setCoordinateSystem(CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_EQ(car.getGpsOffset().getCoordinateSystem(), CoordinateSystem::X_FRONT_Y_LEFT);
    EXPECT_EQ(car.getContour()[0].getCoordinateSystem(), DIN) << "the contour keeps its label";
}

// --- vehicle documents ---------------------------------------------------------------

TEST_F(CarTest, VehicleDocumentRoundTrip)
{
    Car source(&m_plane);
    source.setContour(
        {Point2D(2, 0.9, DIN), Point2D(-2, 0.9, DIN), Point2D(-2, -0.9, DIN), Point2D(2, -0.9, DIN)});
    source.addPoi(overmap::Poi{Point2D(1.25, 0.5, DIN), "Driver's head"});
    source.setDescription("Test sedan");
    pugi::xml_document document;
    source.saveVehicle(document);
    EXPECT_STREQ(document.document_element().name(), "Car");
    EXPECT_STREQ(document.document_element().first_child().name(), "Pois");
    EXPECT_STREQ(document.document_element().child("MetaData").attribute("length").value(),
                 "-1.000000000000");

    Car target(&m_plane);
    ASSERT_TRUE(target.loadVehicle(document));
    EXPECT_EQ(target.getContour(), source.getContour());
    ASSERT_EQ(target.poiCount(), source.poiCount());
    for (std::size_t i = 0; i < source.poiCount(); ++i) {
        EXPECT_EQ(target.getPoi(i).name, source.getPoi(i).name);
        EXPECT_TRUE(near(target.getPoi(i).position, source.getPoi(i).position));
    }
    EXPECT_EQ(target.getDescription(), "Test sedan");
    EXPECT_DOUBLE_EQ(target.getVehicleLength(), -1.0);
}

TEST_F(CarTest, VehicleDocumentMetadataFallsBackToThePresentSize)
{
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<Car><Contour>3 1 -3 1 -3 -1 3 -1</Contour>"
                                     "<MetaData description=\"Van\" length=\"6.2\" width=\"wide\"/></Car>"));
    Car car(&m_plane);
    ASSERT_TRUE(car.loadVehicle(document));
    EXPECT_EQ(car.getDescription(), "Van");
    EXPECT_DOUBLE_EQ(car.getVehicleLength(), 6.0);
    EXPECT_DOUBLE_EQ(car.getVehicleWidth(), 2.0);

    ASSERT_TRUE(document.load_string("<Car><Contour>2 1 -2 1 -2 -1 2 -1</Contour></Car>"));
    ASSERT_TRUE(car.loadVehicle(document));
    EXPECT_DOUBLE_EQ(car.getVehicleLength(), 4.0);

    ASSERT_TRUE(document.load_string("<Car><MetaData length=\"4.5\" width=\"1.8\"/></Car>"));
    EXPECT_FALSE(car.loadVehicle(document)) << "neither contour nor POIs";
    EXPECT_DOUBLE_EQ(car.getVehicleLength(), 4.0);
    EXPECT_FALSE(car.loadVehicle(pugi::xml_document()));
}

// --- shared XML elements -------------------------------------------------------------

TEST_F(CarTest, FirstPoiAtTheOriginTakesThePlaceOfCenter)
{
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<Pois><Poi name=\"Ref\" positionX=\"0\" positionY=\"0\"/>"
                                     "<Poi name=\"Nose\" positionX=\"2.5\" positionY=\"0\"/></Pois>"));
    overmap::Cone cone(&m_plane);
    EXPECT_TRUE(overmap::xml::readPois(document.document_element(), cone));
    ASSERT_EQ(cone.poiCount(), 2u);
    EXPECT_EQ(cone.getPoi(0).name, "Ref");
    EXPECT_TRUE(near(cone.getPoi(1).position, Point2D(2.5, 0, DIN)));
}

TEST_F(CarTest, FirstPoiElsewhereKeepsCenter)
{
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<Pois><Poi name=\"Nose\" positionX=\"2.5\" positionY=\"0\"/></Pois>"));
    overmap::Cone cone(&m_plane);
    EXPECT_TRUE(overmap::xml::readPois(document.document_element(), cone));
    ASSERT_EQ(cone.poiCount(), 2u);
    EXPECT_EQ(cone.getPoi(0).name, "Center");
    EXPECT_EQ(cone.getPoi(1).name, "Nose");
}

TEST_F(CarTest, BadPoisAreSkippedAndUnknownNodesLogged)
{
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<Pois><Marker/><Poi name=\"A\" positionX=\"1\"/>"
                                     "<Poi name=\"B\" positionX=\"1\" positionY=\"2\"/></Pois>"));
    overmap::Cone cone(&m_plane);
    uni_testing::LogCapture log;
    EXPECT_FALSE(overmap::xml::readPois(document.document_element(), cone));
    EXPECT_TRUE(log.contains("overmap", 6, "Uknown node in overmap config in <Pois> \"Marker\""));
    ASSERT_EQ(cone.poiCount(), 2u);
    EXPECT_EQ(cone.getPoi(1).name, "B");
}

TEST_F(CarTest, OnlyContourTextReadsOldSeparatorsAndReadingStopsAtTheFirstNonNumber)
{
    EXPECT_EQ(overmap::xml::parsePointText("1 2 \\n3 4 \\n", DIN),
              (std::vector<Point2D>{Point2D(1, 2, DIN), Point2D(3, 4, DIN)}));
    EXPECT_EQ(overmap::xml::parsePointText("1 2\n3,4\n5 6", DIN), (std::vector<Point2D>{Point2D(1, 2, DIN)}));
    EXPECT_EQ(overmap::xml::parsePositionText("48.5 11.25 \n48.75 11.5"),
              (std::vector<GeoPosition>{GeoPosition(48.5, 11.25), GeoPosition(48.75, 11.5)}));
    EXPECT_EQ(overmap::xml::parsePositionText("48.5 11.25 \\n48.75 11.5"),
              (std::vector<GeoPosition>{GeoPosition(48.5, 11.25)}))
        << "track positions know no old separators";
}

TEST_F(CarTest, ElementsAreWrittenWithTwelveDigits)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Car");
    overmap::xml::writeContour(root, {Point2D(2.5, -1, DIN)});
    overmap::xml::writeContour(root, {});
    EXPECT_STREQ(root.first_child().child_value(), "2.500000000000 -1.000000000000 \n");
    EXPECT_FALSE(root.last_child().first_child()) << "no text node for an empty contour";
    EXPECT_EQ(overmap::xml::formatPositionText({GeoPosition(48.2, -11.5)}),
              "48.200000000000 -11.500000000000 \n");
    EXPECT_FALSE(overmap::xml::parseReal("12.5m").has_value());
    EXPECT_FALSE(overmap::xml::parseReal("").has_value());
    EXPECT_EQ(overmap::xml::parseReal("-1e3"), -1000.0);
}

} // namespace
