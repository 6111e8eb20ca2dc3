#include "setup_fixture.h"

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/coordinate_defaults.h>
#include <om_model/locator.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <uni_base/uni_log.h>
#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <pugixml.hpp>

#include <gtest/gtest.h>

namespace {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using overmap::ObjectManager;
using overmap::XmlReadWriter;

pugi::xml_document parse(const std::string& text)
{
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(text.c_str()));
    return document;
}

std::vector<std::string> attributeNames(const pugi::xml_node& node)
{
    std::vector<std::string> names;
    for (pugi::xml_attribute attribute : node.attributes())
        names.emplace_back(attribute.name());
    return names;
}

std::vector<std::string> childNames(const pugi::xml_node& node)
{
    std::vector<std::string> names;
    for (pugi::xml_node child : node.children())
        names.emplace_back(child.name());
    return names;
}

using Names = std::vector<std::string>;

TEST(XmlWriter, AnEmptySceneIsOneRawLineWithDeclarationAndAllFourParts)
{
    ObjectManager manager;
    manager.setDescription("test drive");
    const std::string text = om_test::writeSetup(manager);
    EXPECT_EQ(text.rfind("<?xml version=\"1.0\"?>", 0), 0u) << text;
    EXPECT_EQ(text.find('\n'), std::string::npos) << "no line breaks between elements";
    EXPECT_EQ(text.find('\t'), std::string::npos);
    const pugi::xml_document document = parse(text);
    const pugi::xml_node root = document.document_element();
    EXPECT_STREQ(root.name(), "Overmap");
    EXPECT_EQ(attributeNames(root), (Names{"version", "description"}));
    EXPECT_STREQ(root.attribute("version").value(), "1.0");
    EXPECT_STREQ(root.attribute("description").value(), "test drive");
    EXPECT_EQ(childNames(root), (Names{"GeoObjects", "Tracks", "Calculations", "View"}));
    EXPECT_EQ(attributeNames(root.child("GeoObjects")), (Names{"description"}))
        << "no locatorId without locator";
    const pugi::xml_node view = root.child("View");
    EXPECT_EQ(attributeNames(view),
              (Names{"description", "latitude", "longitude", "rotation", "usePlaneDefinitionPoints"}));
    EXPECT_EQ(childNames(view),
              (Names{"PrimaryPlanePoint", "SecondaryPlanePoint", "MapSetupView", "BGImage"}));
    EXPECT_EQ(attributeNames(view.child("MapSetupView")),
              (Names{"latitude", "longitude", "rotation", "mapScaleS"}));
    EXPECT_EQ(attributeNames(view.child("PrimaryPlanePoint")),
              (Names{"latitude", "longitude", "positionX", "positionY"}));
    EXPECT_EQ(childNames(view.child("BGImage")), (Names{"PrimaryPlanePoint", "SecondaryPlanePoint"}));
}

TEST(XmlWriter, RealsHaveTwelveDigitsBehindThePoint)
{
    ObjectManager manager;
    manager.setReferencePlane(math_geo::ProjectionPlane(GeoPosition(47.5, -10.25), 12.5));
    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    const pugi::xml_node view = document.document_element().child("View");
    EXPECT_STREQ(view.attribute("latitude").value(), "47.500000000000");
    EXPECT_STREQ(view.attribute("longitude").value(), "-10.250000000000");
    EXPECT_STREQ(view.attribute("rotation").value(), "12.500000000000");
}

TEST(XmlWriter, AGeoPlacedCarWritesItsAttributesInOrderWithPoisContourAndChannels)
{
    om_test::RecordingChannels recording(2);
    ObjectManager manager;
    auto car = std::make_shared<overmap::Car>(41, manager.getReferencePlane());
    car->setName("Car 1");
    car->setCoordinateSystem(CoordinateSystem::DIN70000);
    car->setGeoPosition(GeoPosition(47.995, 10.245));
    car->setHeading(90.0);
    car->setLatitudeChannel(recording.byName("latitude"));
    car->setLongitudeChannel(recording.byName("longitude"));
    car->setHeadingChannel(recording.byName("heading"));
    car->setContour({Point2D(2, 1, CoordinateSystem::DIN70000), Point2D(-2, 1, CoordinateSystem::DIN70000),
                     Point2D(-2, -1, CoordinateSystem::DIN70000)});
    car->setGpsOffset(Point2D(0.5, 0.25, CoordinateSystem::DIN70000));
    manager.addObject(car);

    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    const pugi::xml_node element = document.document_element().child("GeoObjects").child("Car");
    ASSERT_TRUE(element);
    EXPECT_EQ(attributeNames(element), (Names{"objectId",
                                              "name",
                                              "color",
                                              "latitude",
                                              "longitude",
                                              "heading",
                                              "latitudeChannelID",
                                              "latitudeChannelLongName",
                                              "latitudeChannelDomain",
                                              "latitudeChannelShortName",
                                              "longitudeChannelID",
                                              "longitudeChannelLongName",
                                              "longitudeChannelDomain",
                                              "longitudeChannelShortName",
                                              "headingChannelID",
                                              "headingChannelLongName",
                                              "headingChannelDomain",
                                              "headingChannelShortName",
                                              "coordinateSystem",
                                              "gpsOffsetX",
                                              "gpsOffsetY"}));
    EXPECT_STREQ(element.attribute("objectId").value(), "41");
    EXPECT_STREQ(element.attribute("coordinateSystem").value(), "DIN70000");
    EXPECT_STREQ(element.attribute("heading").value(), "90.000000000000");
    // Node 2, third column after the time: (2 << 32) | 3.
    EXPECT_STREQ(element.attribute("headingChannelID").value(), "8589934595");
    EXPECT_STREQ(element.attribute("headingChannelLongName").value(), "heading");
    EXPECT_STREQ(element.attribute("headingChannelShortName").value(), "heading");
    EXPECT_STREQ(element.attribute("gpsOffsetX").value(), "0.500000000000");
    EXPECT_EQ(childNames(element), (Names{"Pois", "Contour"}));
    EXPECT_EQ(std::distance(element.child("Pois").children().begin(), element.child("Pois").children().end()),
              static_cast<std::ptrdiff_t>(car->poiCount()));
    EXPECT_STREQ(element.child("Pois").first_child().attribute("name").value(), "Center");
    // setContour centres the outline: x runs -2..2, y -1..1 before, so it moves by (0, 0).
    EXPECT_STREQ(element.child("Contour").text().get(),
                 "2.000000000000 1.000000000000 \n-2.000000000000 1.000000000000 \n"
                 "-2.000000000000 -1.000000000000 \n");
}

TEST(XmlWriter, AnXYPlacedObjectWritesPositionXYInsteadOfLatitudeLongitudeAndNoAntennaOffset)
{
    ObjectManager manager;
    auto car = std::make_shared<overmap::Car>(manager.getReferencePlane());
    car->setXYPosition(Point2D(12.5, -3.0, overmap::defaultPlaneCoordinateSystem()));
    manager.addObject(car);
    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    const pugi::xml_node element = document.document_element().child("GeoObjects").child("Car");
    EXPECT_STREQ(element.attribute("positionX").value(), "12.500000000000");
    EXPECT_STREQ(element.attribute("positionY").value(), "-3.000000000000");
    EXPECT_FALSE(element.attribute("latitude"));
    EXPECT_FALSE(element.attribute("gpsOffsetX"));
}

TEST(XmlWriter, ASystemWithoutNameIsLeftOutAndComesBackAsTheDefault)
{
    ObjectManager manager;
    auto cone = std::make_shared<overmap::Cone>(manager.getReferencePlane());
    const CoordinateSystem fresh = cone->localCoordinateSystem();
    cone->setCoordinateSystem(CoordinateSystem::X_RIGHT_Y_BACK);
    manager.addObject(cone);
    const std::string text = om_test::writeSetup(manager);
    EXPECT_EQ(text.find("coordinateSystem"), std::string::npos);
    ObjectManager copy;
    om_test::ListChannelFetcher fetcher;
    ASSERT_TRUE(XmlReadWriter(&copy, &fetcher).read(text));
    EXPECT_EQ(std::dynamic_pointer_cast<overmap::Cone>(copy.objectAt(0))->localCoordinateSystem(), fresh);
}

TEST(XmlWriter, TracksGoUnderTracksWithTheirVerticesAsText)
{
    ObjectManager manager;
    const CoordinateSystem plane_system = manager.getReferencePlane()->getXYCoordinateSystem();
    auto path = std::make_shared<overmap::TrackPath>(manager.getReferencePlane());
    path->setPositions({GeoPosition(47.5, 10.25), GeoPosition(47.75, 10.5)});
    auto xy_line = std::make_shared<overmap::TrackLine>(manager.getReferencePlane());
    xy_line->setStartXY(Point2D(1, 2, plane_system));
    xy_line->setEndXY(Point2D(3, 4, plane_system));
    auto half = std::make_shared<overmap::TrackLine>(manager.getReferencePlane());
    half->setStart(GeoPosition(47.5, 10.25));
    half->setEndXY(Point2D(3, 4, plane_system));
    manager.addObject(path);
    manager.addObject(xy_line);
    manager.addObject(half);

    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    const pugi::xml_node tracks = document.document_element().child("Tracks");
    EXPECT_EQ(childNames(tracks), (Names{"TrackPath", "TrackLine", "TrackLine"}));
    const pugi::xml_node path_element = tracks.first_child();
    EXPECT_EQ(attributeNames(path_element), (Names{"objectId", "name", "color", "trackWidth", "trackOrigin",
                                                   "trackRadius", "trackArcLength", "trackArcBearing"}));
    EXPECT_STREQ(path_element.text().get(),
                 "47.500000000000 10.250000000000 \n47.750000000000 10.500000000000 \n");
    const pugi::xml_node xy_element = path_element.next_sibling();
    EXPECT_EQ(childNames(xy_element), (Names{"StartXY", "EndXY"})) << "both ends by XY: no GPSPositions";
    EXPECT_STREQ(xy_element.child("EndXY").attribute("positionY").value(), "4.000000000000");
    EXPECT_EQ(childNames(xy_element.next_sibling()), (Names{"GPSPositions", "EndXY"}));
}

TEST(XmlWriter, CalculationsWriteEffectiveFlagsAndLeaveUnsetEndsOut)
{
    ObjectManager manager;
    auto cone = std::make_shared<overmap::Cone>(5, manager.getReferencePlane());
    manager.addObject(cone);
    auto calculation = std::make_shared<overmap::Calculation>(9);
    calculation->setName("gap");
    calculation->setFrom(cone);
    calculation->setUseFromPoi(false); // no effect on a cone
    calculation->setResultTransformation(overmap::ResultTransformation::INVERT);
    manager.addCalculation(calculation);

    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    const pugi::xml_node element = document.document_element().child("Calculations").child("Calculation");
    EXPECT_EQ(attributeNames(element),
              (Names{"calculationId", "name", "fromId", "fromPoiIdx", "useFromPoi", "toPoiIdx", "useToPoi",
                     "distanceType", "trackTarget", "resultTransformation"}));
    EXPECT_STREQ(element.attribute("fromId").value(), "5");
    EXPECT_STREQ(element.attribute("useFromPoi").value(), "true");
    EXPECT_STREQ(element.attribute("distanceType").value(), "EUCLIDEAN");
    EXPECT_STREQ(element.attribute("trackTarget").value(), "CENTER");
    EXPECT_STREQ(element.attribute("resultTransformation").value(), "INVERT");
}

TEST(XmlWriter, LocatorIdAndQualityPositionsAreWritten)
{
    om_test::RecordingChannels recording;
    ObjectManager manager;
    auto locator = std::make_shared<overmap::Locator>(77, manager.getReferencePlane());
    locator->clearQualityPositions();
    locator->addQualityPosition({3.5, 4.5, recording.byName("fix_quality")});
    locator->addQualityPosition({0.0, 1.0, nullptr});
    manager.addObject(locator);
    manager.setLocator(locator);
    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    const pugi::xml_node objects = document.document_element().child("GeoObjects");
    EXPECT_STREQ(objects.attribute("locatorId").value(), "77");
    const pugi::xml_node element = objects.child("Locator");
    EXPECT_EQ(childNames(element), (Names{"Pois", "QualityPosition", "QualityPosition"}));
    const pugi::xml_node first = element.child("QualityPosition");
    EXPECT_EQ(attributeNames(first),
              (Names{"lowerLimit", "upperLimit", "qualityChannelID", "qualityChannelLongName",
                     "qualityChannelDomain", "qualityChannelShortName"}));
    EXPECT_STREQ(first.attribute("qualityChannelID").value(), "4294967301");
    EXPECT_EQ(attributeNames(first.next_sibling()), (Names{"lowerLimit", "upperLimit"}));
}

/// A scene object the writer has no element for.
class Marker : public overmap::GeoObject
{
public:
    using GeoObject::GeoObject;
};

TEST(XmlWriter, AnObjectOfUnknownTypeIsLoggedAndSkipped)
{
    ObjectManager manager;
    manager.addObject(std::make_shared<Marker>(manager.getReferencePlane()));
    manager.addObject(std::make_shared<overmap::Cone>(manager.getReferencePlane()));
    uni_testing::LogCapture log;
    const pugi::xml_document document = parse(om_test::writeSetup(manager));
    EXPECT_TRUE(log.contains("overmap", SEV_DETAIL, "Unknown geo object type to write in XML"));
    EXPECT_EQ(childNames(document.document_element().child("GeoObjects")), (Names{"Cone"}));
    EXPECT_FALSE(document.document_element().child("Tracks").first_child());
}

TEST(XmlWriter, AMissingManagerIsAnAssertionAndGivesEmptyText)
{
    uni_testing::AssertCapture asserts;
    std::string text = "old";
    XmlReadWriter(nullptr, nullptr).write(text);
    EXPECT_TRUE(asserts.fired("m_manager != nullptr"));
    EXPECT_TRUE(text.empty());
    EXPECT_FALSE(XmlReadWriter(nullptr, nullptr).read("<Overmap/>"));
}

} // namespace
