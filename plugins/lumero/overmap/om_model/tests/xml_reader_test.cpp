#include "setup_fixture.h"
#include "test_support.h"

#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/coordinate_defaults.h>
#include <om_model/locator.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>
#include <om_model/xml_elements.h>

#include <uni_base/uni_log.h>
#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>

namespace {

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using math_geo::Point2D;
using overmap::ObjectManager;
using overmap::XmlReadWriter;

const char* const CH = "overmap";

/// A reader over a fresh manager and a fetcher with one small recording.
class XmlReader : public ::testing::Test
{
protected:
    XmlReader() { m_fetcher.channels = m_recording.channels(); }

    bool read(const std::string& body)
    {
        return XmlReadWriter(&m_manager, &m_fetcher).read("<?xml version=\"1.0\"?>" + body);
    }
    template <typename T>
    std::shared_ptr<T> object(std::int32_t id) const
    {
        return std::dynamic_pointer_cast<T>(m_manager.findObjectById(id));
    }
    static std::string cone(const std::string& attributes, const std::string& children = "")
    {
        return "<Cone " + attributes + ">" + children + "</Cone>";
    }
    static std::string objects(const std::string& inner)
    {
        return "<Overmap><GeoObjects>" + inner + "</GeoObjects></Overmap>";
    }
    static std::string tracks(const std::string& inner)
    {
        return "<Overmap><Tracks>" + inner + "</Tracks></Overmap>";
    }

    om_test::RecordingChannels m_recording{4};
    om_test::ListChannelFetcher m_fetcher;
    ObjectManager m_manager;
    uni_testing::LogCapture m_log;
};

const std::string GEO = "latitude=\"47.995\" longitude=\"10.245\" heading=\"10\"";
const std::string TRACK_ATTRIBUTES =
    "trackWidth=\"4\" trackOrigin=\"0.25\" trackRadius=\"0\" trackArcLength=\"0\" "
    "trackArcBearing=\"0\"";

// ---------------------------------------------------------------- document level

TEST_F(XmlReader, TextThatIsNoXmlOrHasNoElementLeavesTheManagerAlone)
{
    m_manager.addObject(std::make_shared<overmap::Cone>(m_manager.getReferencePlane()));
    m_manager.setDescription("kept");
    EXPECT_FALSE(read("<Overmap><GeoObjects>"));
    EXPECT_FALSE(XmlReadWriter(&m_manager, &m_fetcher).read(""));
    EXPECT_FALSE(XmlReadWriter(&m_manager, &m_fetcher).read("<!-- only a comment -->"));
    EXPECT_EQ(m_manager.objectCount(), 1u);
    EXPECT_EQ(m_manager.getDescription(), "kept");
}

TEST_F(XmlReader, AnyRootNameReadsAndAnEmptyRootClearsTheScene)
{
    m_manager.addObject(std::make_shared<overmap::Cone>(m_manager.getReferencePlane()));
    EXPECT_TRUE(read("<Scene description=\"other root\"><GeoObjects>" + cone("objectId=\"3\" " + GEO) +
                     "</GeoObjects></Scene>"));
    EXPECT_EQ(m_manager.getDescription(), "other root");
    ASSERT_EQ(m_manager.objectCount(), 1u);
    EXPECT_NE(object<overmap::Cone>(3), nullptr);
    EXPECT_TRUE(read("<Overmap/>"));
    EXPECT_EQ(m_manager.objectCount(), 0u);
}

// ---------------------------------------------------------------- view

TEST_F(XmlReader, TheViewSetsTheReferencePlaneBeforeObjectsArePlaced)
{
    ASSERT_TRUE(
        read("<Overmap><GeoObjects>" + cone("objectId=\"1\" positionX=\"0\" positionY=\"0\" heading=\"0\"") +
             "</GeoObjects><View latitude=\"47.9\" longitude=\"10.1\" rotation=\"5\" "
             "usePlaneDefinitionPoints=\"true\"><MapSetupView latitude=\"1\" longitude=\"2\" rotation=\"3\" "
             "mapScaleS=\"4\"/><BGImage imagePath=\"a.png\"><SecondaryPlanePoint latitude=\"47.8\" "
             "longitude=\"10.2\" positionX=\"7\" positionY=\"8\"/></BGImage></View></Overmap>"));
    EXPECT_EQ(m_manager.getReferencePlane()->getCenter(), GeoPosition(47.9, 10.1));
    EXPECT_EQ(m_manager.getReferencePlane()->getRotation(), 5.0);
    EXPECT_TRUE(m_manager.getUsePlaneDefinitionPoints());
    EXPECT_EQ(m_manager.getMapSetupView().scale, 4.0);
    EXPECT_EQ(m_manager.getAerialImage().imagePath, "a.png");
    EXPECT_EQ(m_manager.getAerialImage().definition.secondaryPoint.y, 8.0);
    EXPECT_LT(om_test::metres(object<overmap::Cone>(1)->getGeoPosition(), GeoPosition(47.9, 10.1)), 1e-6);
}

TEST_F(XmlReader, ABadViewNumberEndsTheViewPartButNotTheRest)
{
    EXPECT_FALSE(
        read("<Overmap><GeoObjects>" + cone("objectId=\"1\" " + GEO) +
             "</GeoObjects><View description=\"north\" latitude=\"47.9\" longitude=\"10.1\" rotation=\"5Â°\" "
             "usePlaneDefinitionPoints=\"true\"/></Overmap>"));
    EXPECT_EQ(m_manager.getViewDescription(), "north") << "what came before stays";
    EXPECT_FALSE(m_manager.getUsePlaneDefinitionPoints()) << "what came after is not read";
    EXPECT_EQ(m_manager.objectCount(), 1u);
}

// A part of the view that cannot be read ends the view with failure: what came before
// stays, what follows is not read.
struct BadViewPart
{
    std::string name;
    std::string children;
    bool mapRead;
    std::string imagePath;
};

void PrintTo(const BadViewPart& row, std::ostream* out)
{
    *out << row.name;
}

class XmlBadViewPart : public XmlReader, public ::testing::WithParamInterface<BadViewPart>
{};

TEST_P(XmlBadViewPart, EndsTheViewWithFailure)
{
    const BadViewPart& row = GetParam();
    EXPECT_FALSE(read("<Overmap><View latitude=\"1\" longitude=\"2\" rotation=\"0\">" + row.children +
                      "</View></Overmap>"));
    EXPECT_EQ(m_manager.getMapSetupView().scale == 9.0, row.mapRead);
    EXPECT_EQ(m_manager.getAerialImage().imagePath, row.imagePath);
}

const std::string MAP = "<MapSetupView latitude=\"1\" longitude=\"2\" rotation=\"3\" mapScaleS=\"9\"/>";
const std::string IMAGE = "<BGImage imagePath=\"a.png\"/>";
INSTANTIATE_TEST_SUITE_P(
    Rows, XmlBadViewPart,
    ::testing::Values(
        BadViewPart{"PrimaryPoint",
                    "<PrimaryPlanePoint latitude=\"1\" longitude=\"2\" positionX=\"3\"/>" + MAP + IMAGE,
                    false, ""},
        BadViewPart{"SecondaryPoint",
                    "<SecondaryPlanePoint latitude=\"1\" longitude=\"x\" positionX=\"3\" positionY=\"4\"/>" +
                        MAP + IMAGE,
                    false, ""},
        BadViewPart{"MapSetupView", "<MapSetupView latitude=\"1\" longitude=\"2\" rotation=\"3\"/>" + IMAGE,
                    false, ""},
        BadViewPart{"ImagePrimaryPoint",
                    MAP + "<BGImage imagePath=\"a.png\"><PrimaryPlanePoint latitude=\"1\" longitude=\"2\" "
                          "positionY=\"3\"/></BGImage>",
                    true, "a.png"},
        BadViewPart{"ImageSecondaryPoint",
                    MAP + "<BGImage imagePath=\"a.png\"><SecondaryPlanePoint longitude=\"2\" positionX=\"3\" "
                          "positionY=\"3\"/></BGImage>",
                    true, "a.png"}),
    [](const ::testing::TestParamInfo<BadViewPart>& info) { return info.param.name; });

TEST_F(XmlReader, OnlyTheExactTextTrueSwitchesPlaneDefinitionPointsOn)
{
    ASSERT_TRUE(read(
        "<Overmap><View latitude=\"1\" longitude=\"2\" rotation=\"0\" usePlaneDefinitionPoints=\"TRUE\"/>"
        "</Overmap>"));
    EXPECT_FALSE(m_manager.getUsePlaneDefinitionPoints());
}

// ---------------------------------------------------------------- position objects

TEST_F(XmlReader, ABadObjectIdDropsTheObject)
{
    EXPECT_FALSE(
        read(objects(cone("objectId=\"x1\" " + GEO) + cone("" + GEO) + cone("objectId=\"2\" " + GEO))));
    ASSERT_EQ(m_manager.objectCount(), 1u);
    EXPECT_NE(object<overmap::Cone>(2), nullptr);
}

TEST_F(XmlReader, AMissingHeadingKeepsTheObjectWithHeadingZero)
{
    EXPECT_FALSE(read(objects(cone("objectId=\"1\" heading=\"\" latitude=\"47.995\" longitude=\"10.245\""))));
    const auto read_cone = object<overmap::Cone>(1);
    ASSERT_NE(read_cone, nullptr);
    EXPECT_EQ(read_cone->getHeading(), 0.0);
    EXPECT_LT(om_test::metres(read_cone->getGeoPosition(), GeoPosition(47.995, 10.245)), 1e-6);
}

TEST_F(XmlReader, AContourAndPoisReadWellDoNotMakeGoodABadHeading)
{
    EXPECT_FALSE(read(objects("<Car objectId=\"1\" heading=\"x\" latitude=\"47.995\" longitude=\"10.245\">"
                              "<Pois><Poi name=\"a\" positionX=\"1\" positionY=\"2\"/></Pois>"
                              "<Contour>2 1\n-2 1\n-2 -1\n2 -1\n</Contour></Car>")));
    const auto car = object<overmap::Car>(1);
    ASSERT_NE(car, nullptr);
    EXPECT_EQ(car->getContour().size(), 4u);
}

TEST_F(XmlReader, APositionThatDoesNotConvertKeepsTheOldOneAndTheObject)
{
    EXPECT_FALSE(read(objects(cone("objectId=\"1\" heading=\"15\" positionX=\"4\"") +
                              cone("objectId=\"2\" heading=\"15\" latitude=\"47,9\" longitude=\"10\""))));
    ASSERT_EQ(m_manager.objectCount(), 2u);
    EXPECT_FALSE(object<overmap::Cone>(1)->isXYPosition());
    EXPECT_EQ(object<overmap::Cone>(1)->getHeading(), 15.0) << "heading still read";
    EXPECT_EQ(object<overmap::Cone>(2)->getGeoPosition(),
              overmap::Cone(m_manager.getReferencePlane()).getGeoPosition());
}

TEST_F(XmlReader, AnUnsupportedCoordinateSystemIsLoggedAndTheDefaultStays)
{
    const CoordinateSystem fresh = overmap::Cone(m_manager.getReferencePlane()).localCoordinateSystem();
    EXPECT_FALSE(read(objects(cone("objectId=\"1\" coordinateSystem=\"din70000\" " + GEO))));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "Unsupported coordinate system 'din70000' - using default"));
    ASSERT_NE(object<overmap::Cone>(1), nullptr);
    EXPECT_EQ(object<overmap::Cone>(1)->localCoordinateSystem(), fresh);
    EXPECT_EQ(object<overmap::Cone>(1)->getHeading(), 10.0);
}

TEST_F(XmlReader, ANamedCoordinateSystemLabelsTheObjectAndItsPois)
{
    ASSERT_TRUE(read(objects(cone("objectId=\"1\" coordinateSystem=\"SAE\" " + GEO,
                                  "<Pois><Poi name=\"tip\" positionX=\"0\" positionY=\"1\"/></Pois>"))));
    const auto read_cone = object<overmap::Cone>(1);
    EXPECT_EQ(read_cone->localCoordinateSystem(), CoordinateSystem::SAE);
    EXPECT_EQ(read_cone->getPoi(1).position.getCoordinateSystem(), CoordinateSystem::SAE);
}

TEST_F(XmlReader, AnXYPositionUsesThePlaneSystem)
{
    ASSERT_TRUE(read(objects(cone("objectId=\"1\" positionX=\"4\" positionY=\"-2\" heading=\"0\""))));
    const auto read_cone = object<overmap::Cone>(1);
    EXPECT_TRUE(read_cone->isXYPosition());
    EXPECT_TRUE(
        om_test::near(read_cone->getXYPosition(), Point2D(4, -2, overmap::defaultPlaneCoordinateSystem())));
}

TEST_F(XmlReader, ABrokenAntennaOffsetDropsTheCar)
{
    EXPECT_FALSE(read(objects("<Car objectId=\"1\" " + GEO + " gpsOffsetX=\"1\"/><Car objectId=\"2\" " + GEO +
                              " gpsOffsetX=\"1\" gpsOffsetY=\"-0.5\"/>")));
    EXPECT_EQ(object<overmap::Car>(1), nullptr);
    const auto car = object<overmap::Car>(2);
    ASSERT_NE(car, nullptr);
    EXPECT_EQ(car->getGpsOffset().x, 1.0);
    EXPECT_EQ(car->getGpsOffset().y, -0.5);
    EXPECT_EQ(car->getGpsOffset().getCoordinateSystem(), car->localCoordinateSystem());
}

TEST_F(XmlReader, AnUnknownElementAmongObjectsStopsThePartAndKeepsWhatWasRead)
{
    EXPECT_FALSE(
        read(objects(cone("objectId=\"1\" " + GEO) + "<Tree objectId=\"2\" referenceObjectID=\"1\"/>" +
                     cone("objectId=\"3\" " + GEO))));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "Unkown node in overmap config \"Tree\""));
    EXPECT_NE(object<overmap::Cone>(1), nullptr);
    EXPECT_EQ(object<overmap::Cone>(3), nullptr);
    EXPECT_EQ(m_log.count(CH, SEV_NOTE, "Error parsing reference object"), 0u)
        << "the reference pass skips it";
}

// ---------------------------------------------------------------- POIs and contour

TEST_F(XmlReader, AFirstPoiAtTheCentreTakesThePlaceOfCenter)
{
    ASSERT_TRUE(read(objects(cone("objectId=\"1\" " + GEO,
                                  "<Pois><Poi name=\"Middle\" positionX=\"0\" positionY=\"0\"/>"
                                  "<Poi name=\"Front\" positionX=\"1\" positionY=\"0\"/></Pois>"))));
    const auto read_cone = object<overmap::Cone>(1);
    ASSERT_EQ(read_cone->poiCount(), 2u);
    EXPECT_EQ(read_cone->getPoi(0).name, "Middle");
    EXPECT_EQ(read_cone->getPoi(1).name, "Front");
}

TEST_F(XmlReader, AFirstPoiElsewhereComesAfterCenter)
{
    ASSERT_TRUE(read(objects(cone("objectId=\"1\" " + GEO,
                                  "<Pois><Poi name=\"Front\" positionX=\"1\" positionY=\"0\"/></Pois>"))));
    const auto read_cone = object<overmap::Cone>(1);
    ASSERT_EQ(read_cone->poiCount(), 2u);
    EXPECT_EQ(read_cone->getPoi(0).name, "Center");
    EXPECT_EQ(read_cone->getPoi(1).name, "Front");
}

TEST_F(XmlReader, ABadPoiIsSkippedAndAnUnknownElementIsLogged)
{
    EXPECT_FALSE(read(objects(cone("objectId=\"1\" " + GEO,
                                   "<Pois><Point/><Poi name=\"bad\" positionX=\"1m\" positionY=\"0\"/>"
                                   "<Poi name=\"good\" positionX=\"2\" positionY=\"0\"/></Pois>"))));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "Uknown node in overmap config in <Pois> \"Point\""));
    const auto read_cone = object<overmap::Cone>(1);
    ASSERT_NE(read_cone, nullptr);
    ASSERT_EQ(read_cone->poiCount(), 2u);
    EXPECT_EQ(read_cone->getPoi(1).name, "good");
}

TEST_F(XmlReader, ContourTextWithLiteralBackslashNReadsLikeLineFeedsAndStopsAtACommaPair)
{
    ASSERT_TRUE(
        read(objects("<Car objectId=\"1\" " + GEO + "><Contour>2 1\\n-2 1\\n-2 -1\\n2 -1</Contour></Car>" +
                     "<Car objectId=\"2\" " + GEO + "><Contour>2 1\n-2 1\n-2 -1\n2 -1\n</Contour></Car>" +
                     "<Car objectId=\"3\" " + GEO + "><Contour>2 1\n-2 1\n-2,-1\n2 -1\n</Contour></Car>")));
    EXPECT_EQ(object<overmap::Car>(1)->getContour().size(), 4u);
    EXPECT_EQ(object<overmap::Car>(1)->getContour(), object<overmap::Car>(2)->getContour());
    EXPECT_EQ(object<overmap::Car>(3)->getContour().size(), 2u) << "kept the vertices before the error";
}

// ---------------------------------------------------------------- channels

TEST_F(XmlReader, AChannelIsFoundByIdFirst)
{
    const auto latitude = m_recording.byName("latitude");
    ASSERT_TRUE(
        read(objects(cone("objectId=\"1\" " + GEO + " latitudeChannelID=\"" +
                          latitude->getChannelId().toString() + "\" latitudeChannelLongName=\"speed\""))));
    EXPECT_EQ(object<overmap::Cone>(1)->getLatitudeChannel(), latitude);
    EXPECT_FALSE(m_log.contains(CH, SEV_NOTE, "Can't find"));
}

TEST_F(XmlReader, AChannelNotFoundByIdIsLookedUpByLongName)
{
    ASSERT_TRUE(read(objects(cone("objectId=\"1\" " + GEO +
                                  " headingChannelID=\"99\" headingChannelLongName=\"heading\" "
                                  "headingChannelDomain=\"x\" headingChannelShortName=\"y\""))));
    EXPECT_TRUE(m_log.contains(CH, SEV_NOTE, "Can't find channel by id 99"));
    EXPECT_EQ(object<overmap::Cone>(1)->getHeadingChannel(), m_recording.byName("heading"));
}

TEST_F(XmlReader, AChannelFoundNeitherWayIsLoggedTwiceAndClearsTheXYFlag)
{
    ASSERT_TRUE(read(objects(cone("objectId=\"1\" positionX=\"1\" positionY=\"2\" heading=\"0\" "
                                  "longitudeChannelID=\"-1\" longitudeChannelLongName=\"lon\""))));
    EXPECT_TRUE(m_log.contains(CH, SEV_NOTE, "Can't find channel by id -1"));
    EXPECT_TRUE(m_log.contains(CH, SEV_NOTE, "Can't find channel by name lon"));
    EXPECT_EQ(object<overmap::Cone>(1)->getLongitudeChannel(), nullptr);
    EXPECT_FALSE(object<overmap::Cone>(1)->isXYPosition()) << "the channel setter decides the placement";
}

TEST_F(XmlReader, AnIdThatIsNoNumberIsLoggedAndGivesNoChannel)
{
    ASSERT_TRUE(read(objects(
        cone("objectId=\"1\" " + GEO + " headingChannelID=\"0x10\" headingChannelLongName=\"heading\""))));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "Can't get channel 0x10"));
    EXPECT_EQ(object<overmap::Cone>(1)->getHeadingChannel(), nullptr) << "no fall-back to the name";
}

TEST(XmlReaderWithoutFetcher, AChannelWithoutFetcherIsAnAssertion)
{
    ObjectManager manager;
    uni_testing::AssertCapture asserts;
    XmlReadWriter(&manager, nullptr)
        .read("<Overmap><GeoObjects><Cone objectId=\"1\" " + GEO +
              " headingChannelID=\"5\"/></GeoObjects></Overmap>");
    EXPECT_TRUE(asserts.fired("m_channel_fetcher != nullptr"));
    EXPECT_EQ(manager.objectCount(), 1u);
}

// ---------------------------------------------------------------- locator

TEST_F(XmlReader, QualityPositionsReplaceTheDefaultsWithStrtodLimits)
{
    const auto quality = m_recording.byName("fix_quality");
    ASSERT_TRUE(read("<Overmap><GeoObjects locatorId=\"8\"><Locator objectId=\"8\" " + GEO +
                     "><QualityPosition lowerLimit=\"1.5abc\" upperLimit=\"2\" qualityChannelID=\"" +
                     quality->getChannelId().toString() +
                     "\"/><QualityPosition upperLimit=\"junk\"/></Locator>"
                     "</GeoObjects></Overmap>"));
    const auto locator = object<overmap::Locator>(8);
    ASSERT_NE(locator, nullptr);
    ASSERT_EQ(locator->getQualityPositions().size(), 2u);
    EXPECT_EQ(locator->getQualityPositions()[0].lowerLimit, 1.5);
    EXPECT_EQ(locator->getQualityPositions()[0].channel, quality);
    EXPECT_EQ(locator->getQualityPositions()[1].lowerLimit, 0.0);
    EXPECT_EQ(locator->getQualityPositions()[1].upperLimit, 0.0);
    EXPECT_EQ(locator->getQualityPositions()[1].channel, nullptr);
    EXPECT_EQ(m_manager.getLocator(), locator);
}

TEST_F(XmlReader, ALocatorIdIsTakenAsItIsOrMissedWithoutFailure)
{
    ASSERT_TRUE(read("<Overmap><GeoObjects locatorId=\"4\">" + cone("objectId=\"4\" " + GEO) +
                     "</GeoObjects></Overmap>"));
    EXPECT_EQ(m_manager.getLocator(), m_manager.findObjectById(4)) << "a cone as locator is not refused here";
    EXPECT_TRUE(read("<Overmap><GeoObjects locatorId=\"5\">" + cone("objectId=\"4\" " + GEO) +
                     "</GeoObjects></Overmap>"));
    EXPECT_EQ(m_manager.getLocator(), nullptr);
}

// ---------------------------------------------------------------- references

TEST_F(XmlReader, AReferencedObjectKeepsTheNumbersOfTheFileInItsParentsFrame)
{
    ASSERT_TRUE(read(
        objects(cone("objectId=\"2\" positionX=\"3\" positionY=\"1\" heading=\"0\" referenceObjectID=\"1\"") +
                "<Car objectId=\"1\" latitude=\"47.995\" longitude=\"10.245\" heading=\"90\"/>")));
    const auto read_cone = object<overmap::Cone>(2);
    ASSERT_EQ(read_cone->getReferenceObject(), object<overmap::Car>(1));
    EXPECT_EQ(read_cone->getXYPosition().x, 3.0);
    EXPECT_EQ(read_cone->getXYPosition().y, 1.0);
    EXPECT_EQ(read_cone->getXYPosition().getCoordinateSystem(),
              object<overmap::Car>(1)->localCoordinateSystem());
    EXPECT_LT(om_test::metres(read_cone->getGeoPosition(),
                              object<overmap::Car>(1)->toGeo(read_cone->getXYPosition())),
              1e-6);
    // The file's numbers come in the plane's system, the parent's frame is DIN 70000.
    EXPECT_EQ(m_log.count(CH, SEV_ERROR, ""), 1u);
    EXPECT_TRUE(
        m_log.contains(CH, SEV_ERROR, "PositionObject::setXYPosition() - correcting the coordinate system"));
}

TEST_F(XmlReader, AMissingReferenceStopsTheReferencePass)
{
    EXPECT_FALSE(read(objects(cone("objectId=\"2\" " + GEO + " referenceObjectID=\"9\"") +
                              cone("objectId=\"3\" " + GEO + " referenceObjectID=\"2\""))));
    EXPECT_TRUE(m_log.contains(CH, SEV_NOTE, "Error parsing reference object for object ID 2"));
    EXPECT_FALSE(m_log.contains(CH, SEV_NOTE, "object ID 3"));
    EXPECT_EQ(object<overmap::Cone>(3)->getReferenceObject(), nullptr) << "the pass stopped before it";
    EXPECT_EQ(m_manager.objectCount(), 2u);
}

TEST_F(XmlReader, AReferenceIdThatIsNoNumberStopsThePassWithoutALine)
{
    EXPECT_FALSE(read(objects(cone("objectId=\"2\" " + GEO + " referenceObjectID=\"one\"") +
                              cone("objectId=\"3\" " + GEO + " referenceObjectID=\"2\""))));
    EXPECT_FALSE(m_log.contains(CH, SEV_NOTE, "Error parsing reference object"));
    EXPECT_EQ(object<overmap::Cone>(3)->getReferenceObject(), nullptr) << "the pass stopped before it";
    EXPECT_EQ(m_manager.objectCount(), 2u);
}

// ---------------------------------------------------------------- tracks

TEST_F(XmlReader, TrackPathAndLinesRead)
{
    ASSERT_TRUE(read(tracks("<TrackPath objectId=\"1\" name=\"loop\" " + TRACK_ATTRIBUTES +
                            ">47.1 10.1 \n47.2 10.2 \n47.3 10.3 \n</TrackPath><TrackLine objectId=\"2\" " +
                            TRACK_ATTRIBUTES +
                            "><StartXY positionX=\"1\" positionY=\"2\"/><EndXY positionX=\"3\" "
                            "positionY=\"4\"/></TrackLine>")));
    const auto path = object<overmap::TrackPath>(1);
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->getName(), "loop");
    EXPECT_EQ(path->getPositions().size(), 3u);
    EXPECT_EQ(path->getWidth(), 4.0);
    EXPECT_EQ(path->getOrigin(), 0.25);
    const auto line = object<overmap::TrackLine>(2);
    ASSERT_NE(line, nullptr);
    EXPECT_TRUE(line->isStartByXY());
    EXPECT_TRUE(line->isEndByXY());
    EXPECT_EQ(line->getEndPoint().y, 4.0);
    EXPECT_EQ(line->getEndPoint().getCoordinateSystem(),
              m_manager.getReferencePlane()->getXYCoordinateSystem());
}

TEST_F(XmlReader, AGeoEndIsTakenFromGPSPositionsOnlyWhereNoXYEndWasGiven)
{
    ASSERT_TRUE(read(tracks("<TrackLine objectId=\"2\" " + TRACK_ATTRIBUTES +
                            "><GPSPositions>47.1 10.1 \n47.2 10.2 \n</GPSPositions><StartXY positionX=\"1\" "
                            "positionY=\"2\"/></TrackLine>")));
    const auto line = object<overmap::TrackLine>(2);
    EXPECT_TRUE(line->isStartByXY());
    EXPECT_EQ(line->getStartPoint().x, 1.0);
    EXPECT_FALSE(line->isEndByXY());
    EXPECT_EQ(line->getPositions().at(1), GeoPosition(47.2, 10.2));
}

TEST_F(XmlReader, ATrackLineWithoutTwoPositionsEndsTheTracksPart)
{
    EXPECT_FALSE(
        read(tracks("<TrackLine objectId=\"1\" " + TRACK_ATTRIBUTES +
                    "><StartXY positionX=\"1\" positionY=\"2\"/></TrackLine><TrackPath objectId=\"2\" " +
                    TRACK_ATTRIBUTES + "/>")));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "TrackLine XML node does not containt GPSPositions node"));
    EXPECT_EQ(m_manager.objectCount(), 0u);
    EXPECT_FALSE(read(tracks("<TrackLine objectId=\"1\" " + TRACK_ATTRIBUTES +
                             "><GPSPositions>1 2 3 4 5 6</GPSPositions></TrackLine>")));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "TrackLine XML node does not containt exactly 2 positions"));
}

TEST_F(XmlReader, ABadTrackIdEndsTheTracksPartKeepingEarlierTracks)
{
    EXPECT_FALSE(read(tracks("<TrackPath objectId=\"1\" " + TRACK_ATTRIBUTES + "/><TrackPath objectId=\"\" " +
                             TRACK_ATTRIBUTES + "/><TrackPath objectId=\"3\" " + TRACK_ATTRIBUTES + "/>")));
    EXPECT_NE(object<overmap::TrackPath>(1), nullptr);
    EXPECT_EQ(object<overmap::TrackPath>(3), nullptr);
}

TEST_F(XmlReader, ABadTrackAttributeKeepsItsDefaultAndTheTrack)
{
    EXPECT_FALSE(
        read(tracks("<TrackPath objectId=\"1\" trackWidth=\"wide\" trackOrigin=\"0.25\" trackRadius=\"0\" "
                    "trackArcLength=\"0\" trackArcBearing=\"0\"/>")));
    const auto path = object<overmap::TrackPath>(1);
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->getWidth(), overmap::TrackPath(m_manager.getReferencePlane()).getWidth());
    EXPECT_EQ(path->getOrigin(), 0.25) << "the later attributes are still read";
}

TEST_F(XmlReader, AnythingButATrackEndsTheTracksPart)
{
    EXPECT_FALSE(read(tracks("<Cone objectId=\"1\"/><TrackPath objectId=\"2\" " + TRACK_ATTRIBUTES + "/>")));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "Only Track XML items allowed"));
    EXPECT_EQ(m_manager.objectCount(), 0u);
}

// ---------------------------------------------------------------- calculations

class XmlCalculations : public XmlReader
{
protected:
    bool readCalculations(const std::string& inner)
    {
        return read("<Overmap><GeoObjects><Car objectId=\"1\" " + GEO + "/>" + cone("objectId=\"2\" " + GEO) +
                    "</GeoObjects><Tracks><TrackPath objectId=\"3\" " + TRACK_ATTRIBUTES +
                    "/></Tracks><Calculations>" + inner + "</Calculations></Overmap>");
    }
};

TEST_F(XmlCalculations, ABrokenCalculationIsDroppedQuietlyWithoutFailingTheRead)
{
    EXPECT_TRUE(readCalculations("<Calculation calculationId=\"1\" fromId=\"1\"/>"
                                 "<Calculation calculationId=\"2\" toId=\"2\"/>"
                                 "<Calculation calculationId=\"3\" fromId=\"1\" toId=\"2\" toPoiIdx=\"one\"/>"
                                 "<Calculation calculationId=\"4\" fromId=\"1\" toId=\"2\"/>"));
    ASSERT_EQ(m_manager.calculationCount(), 1u);
    EXPECT_EQ(m_manager.calculationAt(0)->getId(), 4);
    EXPECT_TRUE(m_log.none(CH));
}

TEST_F(XmlCalculations, MissingOptionsTakeTheirDefaults)
{
    ASSERT_TRUE(readCalculations("<Calculation calculationId=\"4\" fromId=\"1\" toId=\"3\"/>"));
    const auto calculation = m_manager.calculationAt(0);
    EXPECT_EQ(calculation->getName(), "");
    EXPECT_EQ(calculation->getFrom(), m_manager.findObjectById(1));
    EXPECT_EQ(calculation->getTo(), m_manager.findObjectById(3));
    EXPECT_TRUE(calculation->getStoredUseFromPoi());
    EXPECT_TRUE(calculation->getStoredUseToPoi());
    EXPECT_EQ(calculation->getDistanceType(), overmap::DistanceType::EUCLIDEAN);
    EXPECT_EQ(calculation->getTrackTarget(), overmap::TrackTarget::CENTER);
    EXPECT_EQ(calculation->getResultTransformation(), overmap::ResultTransformation::AS_IS);
}

TEST_F(XmlCalculations, ChoicesAreReadWithoutRegardToCase)
{
    ASSERT_TRUE(
        readCalculations("<Calculation calculationId=\"4\" fromId=\"1\" toId=\"2\" fromPoiIdx=\"2\" "
                         "useFromPoi=\"TRUE\" useToPoi=\"False\" distanceType=\"y\" trackTarget=\"edge\" "
                         "resultTransformation=\"Absolute\"/>"));
    const auto calculation = m_manager.calculationAt(0);
    EXPECT_EQ(calculation->getFromPoiIdx(), 2u);
    EXPECT_TRUE(calculation->getStoredUseFromPoi());
    EXPECT_FALSE(calculation->getStoredUseToPoi());
    EXPECT_EQ(calculation->getDistanceType(), overmap::DistanceType::Y);
    EXPECT_EQ(calculation->getTrackTarget(), overmap::TrackTarget::EDGE);
    EXPECT_EQ(calculation->getResultTransformation(), overmap::ResultTransformation::ABSOLUTE);
}

TEST_F(XmlCalculations, ADistanceTypeThatIsNotAllowedStaysEuclidean)
{
    ASSERT_TRUE(
        readCalculations("<Calculation calculationId=\"4\" fromId=\"1\" toId=\"2\" useFromPoi=\"false\" "
                         "distanceType=\"x\"/>"));
    EXPECT_EQ(m_manager.calculationAt(0)->getDistanceType(), overmap::DistanceType::EUCLIDEAN);
}

TEST_F(XmlCalculations, AFromIdOfATrackLeavesFromUnsetButKeepsTheCalculation)
{
    ASSERT_TRUE(readCalculations("<Calculation calculationId=\"4\" fromId=\"3\" toId=\"2\"/>"));
    ASSERT_EQ(m_manager.calculationCount(), 1u);
    EXPECT_EQ(m_manager.calculationAt(0)->getFrom(), nullptr);
}

TEST_F(XmlCalculations, AnUnknownElementEndsThePartWithFailure)
{
    EXPECT_FALSE(readCalculations("<Calculation calculationId=\"4\" fromId=\"1\" toId=\"2\"/><Sum/>"
                                  "<Calculation calculationId=\"5\" fromId=\"1\" toId=\"2\"/>"));
    EXPECT_TRUE(m_log.contains(CH, SEV_DETAIL, "Unkown node in overmap config in <Calculations> \"Sum\""));
    EXPECT_EQ(m_manager.calculationCount(), 1u);
}

} // namespace

namespace {

using math_geo::GeoPosition;

// The vertex loop reads numbers as `stream >> value` does: the longest number-shaped
// text, a leading '+', values too small to represent, and it stops at anything else.
TEST(XmlVertexText, NumbersReadAsAStreamReadsThem)
{
    using overmap::xml::parsePositionText;
    const auto positions = parsePositionText(" +1.5 -2e1\n.5 3.\t1e-400 4E+2 ");
    ASSERT_EQ(positions.size(), 3u);
    EXPECT_EQ(positions[0], GeoPosition(1.5, -20.0));
    EXPECT_EQ(positions[1], GeoPosition(0.5, 3.0));
    EXPECT_EQ(positions[2].latitude, 0.0);
    EXPECT_EQ(positions[2].longitude, 400.0);
    EXPECT_EQ(parsePositionText("1.5.5 7 8").size(), 2u) << "\"1.5.5\" is 1.5 then .5";
    EXPECT_TRUE(parsePositionText("1e 2").empty()) << "an exponent without digits is no number";
    EXPECT_TRUE(parsePositionText("1e400 2").empty()) << "overflow fails";
    EXPECT_TRUE(parsePositionText("inf 2").empty());
    EXPECT_TRUE(parsePositionText("0x10 2").empty()) << "0 then x";
    EXPECT_EQ(parsePositionText("1 2 3").size(), 1u) << "half a pair is dropped";
}

// The text is a view into a longer buffer: a number that ends where the view ends is not
// read on into what follows in memory.
struct ViewEnd
{
    const char* name;
    const char* buffer;
    std::size_t length;
    GeoPosition expected;
};

void PrintTo(const ViewEnd& row, std::ostream* out)
{
    *out << row.name;
}

class XmlVertexTextEnd : public ::testing::TestWithParam<ViewEnd>
{};

TEST_P(XmlVertexTextEnd, ReadingStopsAtTheEndOfTheView)
{
    const ViewEnd& row = GetParam();
    const auto positions = overmap::xml::parsePositionText(std::string_view(row.buffer, row.length));
    ASSERT_EQ(positions.size(), 1u);
    EXPECT_EQ(positions[0], row.expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, XmlVertexTextEnd,
                         ::testing::Values(ViewEnd{"Digits", "1 23", 3, GeoPosition(1.0, 2.0)},
                                           ViewEnd{"Fraction", "1 2.75", 5, GeoPosition(1.0, 2.7)},
                                           ViewEnd{"Exponent", "1 1e25", 5, GeoPosition(1.0, 100.0)}),
                         [](const ::testing::TestParamInfo<ViewEnd>& info) {
                             return std::string(info.param.name);
                         });

} // namespace

namespace {

TEST(XmlHeading, AnInfiniteHeadingIsStoredAsItComesOutAndReportedByTheRangeAssertion)
{
    ObjectManager manager;
    uni_testing::LogCapture log;
    uni_testing::AssertCapture asserts;
    om_test::ListChannelFetcher fetcher;
    EXPECT_TRUE(XmlReadWriter(&manager, &fetcher)
                    .read("<Overmap><GeoObjects><Cone objectId=\"1\" name=\"c\" latitude=\"1\" "
                          "longitude=\"2\" heading=\"-inf\"/>"
                          "</GeoObjects></Overmap>"));
    ASSERT_EQ(manager.objectCount(), 1u);
    EXPECT_TRUE(std::isnan(std::dynamic_pointer_cast<overmap::Cone>(manager.objectAt(0))->getHeading()));
    EXPECT_TRUE(asserts.fired("heading >= 0 && heading < 360.0"));
    EXPECT_FALSE(log.contains("overmap", SEV_ERROR, "Invalid heading for object c"));
}

} // namespace
