#include "setup_fixture.h"
#include "test_support.h"

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

#include <lum_data/recording_channels.h>
#include <lum_import/importers.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <fstream>
#include <functional>
#include <sstream>

namespace {

using math_geo::GeoPosition;
using math_geo::Point2D;
using overmap::ObjectManager;
using overmap::XmlReadWriter;
using Names = std::vector<std::string>;

const char* const CH = "overmap";
const std::string GEO = "latitude=\"47.995\" longitude=\"10.245\" heading=\"10\"";
const std::string TRACK = "trackWidth=\"4\" trackOrigin=\"0.25\" trackRadius=\"0\" trackArcLength=\"0\" "
                          "trackArcBearing=\"0\"";

std::string cone(const std::string& attributes, const std::string& children = "")
{
    return "<Cone " + attributes + ">" + children + "</Cone>";
}
std::string objects(const std::string& inner)
{
    return "<Overmap><GeoObjects>" + inner + "</GeoObjects></Overmap>";
}
std::string tracks(const std::string& inner)
{
    return "<Overmap><Tracks>" + inner + "</Tracks></Overmap>";
}
std::string calculations(const std::string& inner)
{
    return "<Overmap><GeoObjects><Car objectId=\"1\" " + GEO + "/>" + cone("objectId=\"2\" " + GEO) +
           "</GeoObjects><Tracks><TrackPath objectId=\"3\" " + TRACK + "/></Tracks><Calculations>" + inner +
           "</Calculations></Overmap>";
}
std::string view(const std::string& children, const std::string& attributes = "")
{
    return "<Overmap><View latitude=\"1\" longitude=\"2\" rotation=\"0\" " + attributes + ">" + children +
           "</View></Overmap>";
}

struct Scene
{
    const ObjectManager& manager;
    const om_test::RecordingChannels& recording;
    const uni_testing::LogCapture& log;
    template <typename T = overmap::Cone>
    std::shared_ptr<T> get(std::int32_t id) const
    {
        return std::dynamic_pointer_cast<T>(manager.findObjectById(id));
    }
};

struct ReadRow
{
    const char* name;
    std::string text;
    bool read;
    std::vector<std::pair<int, std::string>> lines; // each logged once
    std::function<void(const Scene&)> check;
};

void PrintTo(const ReadRow& row, std::ostream* os)
{
    *os << row.name;
}

class XmlReader : public testing::TestWithParam<ReadRow>
{};

TEST_P(XmlReader, ReadsWhatItCanAndSaysWhatItCannot)
{
    const ReadRow& row = GetParam();
    om_test::RecordingChannels recording(4);
    om_test::ListChannelFetcher fetcher;
    fetcher.channels = recording.channels();
    ObjectManager manager;
    manager.setDescription("kept");
    manager.addObject(std::make_shared<overmap::Cone>(99, manager.getReferencePlane()));
    uni_testing::LogCapture log;
    EXPECT_EQ(XmlReadWriter(&manager, &fetcher).read(row.text), row.read);
    for (const auto& [severity, line] : row.lines)
        EXPECT_EQ(log.count(CH, severity, line), 1u) << line;
    row.check(Scene{manager, recording, log});
}

const std::string MAP = "<MapSetupView latitude=\"1\" longitude=\"2\" rotation=\"3\" mapScaleS=\"9\"/>";
const std::string IMAGE = "<BGImage imagePath=\"a.png\"/>";
// A part of the view that cannot be read ends the view: what came before stays, what follows is not read.
auto viewEndedAt(bool map_read, const char* image)
{
    return [=](const Scene& s) {
        EXPECT_EQ(s.manager.getMapSetupView().scale == 9.0, map_read);
        EXPECT_EQ(s.manager.getAerialImage().imagePath, image);
    };
}

const ReadRow READ_ROWS[] = {
    {"no_xml_leaves_the_scene",
     "<Overmap><GeoObjects>",
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.manager.getDescription(), "kept");
         EXPECT_NE(s.get(99), nullptr);
     }},
    {"only_a_comment",
     "<!-- only a comment -->",
     false,
     {},
     [](const Scene& s) { EXPECT_NE(s.get(99), nullptr); }},
    {"any_root_name",
     "<Scene description=\"other\"><GeoObjects>" + cone("objectId=\"3\" " + GEO) + "</GeoObjects></Scene>",
     true,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.manager.getDescription(), "other");
         EXPECT_EQ(s.manager.objectCount(), 1u);
         EXPECT_LT(om_test::metres(s.get(3)->getGeoPosition(), GeoPosition(47.995, 10.245)), 1e-6);
         EXPECT_EQ(s.get(3)->getHeading(), 10.0);
     }},
    {"view_placed_before_objects",
     "<Overmap><GeoObjects>" + cone("objectId=\"1\" positionX=\"4\" positionY=\"-2\" heading=\"0\"") +
         "</GeoObjects><View latitude=\"47.9\" longitude=\"10.1\" rotation=\"5\" "
         "usePlaneDefinitionPoints=\"true\">" +
         "<MapSetupView latitude=\"1\" longitude=\"2\" rotation=\"3\" mapScaleS=\"4\"/><BGImage "
         "imagePath=\"a.png\">"
         "<SecondaryPlanePoint latitude=\"47.8\" longitude=\"10.2\" positionX=\"7\" "
         "positionY=\"8\"/></BGImage></View></Overmap>",
     true,
     {},
     [](const Scene& s) {
         const math_geo::ProjectionPlane& plane = *s.manager.getReferencePlane();
         EXPECT_EQ(plane.getCenter(), GeoPosition(47.9, 10.1));
         EXPECT_EQ(plane.getRotation(), 5.0);
         EXPECT_TRUE(s.manager.getUsePlaneDefinitionPoints());
         EXPECT_EQ(s.manager.getMapSetupView().scale, 4.0);
         EXPECT_EQ(s.manager.getAerialImage().definition.secondaryPoint.y, 8.0);
         EXPECT_TRUE(s.get(1)->isXYPosition());
         EXPECT_EQ(s.get(1)->getGeoPosition(),
                   plane.toGeoPosition(Point2D(4, -2, overmap::defaultPlaneCoordinateSystem())));
     }},
    {"bad_view_number_ends_the_view_only",
     "<Overmap><GeoObjects>" + cone("objectId=\"1\" " + GEO) +
         "</GeoObjects><View description=\"north\" latitude=\"47.9\" longitude=\"10.1\" "
         "rotation=\"5\xC2\xB0\" "
         "usePlaneDefinitionPoints=\"true\"/></Overmap>",
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.manager.getViewDescription(), "north");
         EXPECT_FALSE(s.manager.getUsePlaneDefinitionPoints());
         EXPECT_NE(s.get(1), nullptr);
     }},
    {"only_exact_true",
     view("", "usePlaneDefinitionPoints=\"TRUE\""),
     true,
     {},
     [](const Scene& s) { EXPECT_FALSE(s.manager.getUsePlaneDefinitionPoints()); }},
    {"bad_primary_point",
     view("<PrimaryPlanePoint latitude=\"1\" longitude=\"2\" positionX=\"3\"/>" + MAP + IMAGE),
     false,
     {},
     viewEndedAt(false, "")},
    {"bad_image_point",
     view(MAP + "<BGImage imagePath=\"a.png\"><SecondaryPlanePoint longitude=\"2\" positionX=\"3\" "
                "positionY=\"3\"/></BGImage>"),
     false,
     {},
     viewEndedAt(true, "a.png")},
    {"bad_object_ids_drop_the_object",
     objects(cone("objectId=\"x1\" " + GEO) + cone(GEO) +
             cone("objectId=\"2\" heading=\"\" latitude=\"1\" longitude=\"2\"")),
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.manager.objectCount(), 1u);
         EXPECT_EQ(s.get(2)->getHeading(), 0.0) << "a missing heading keeps the object";
     }},
    {"bad_heading_not_made_good_by_pois_and_contour",
     objects("<Car objectId=\"1\" heading=\"x\" latitude=\"47.995\" longitude=\"10.245\""
             "><Pois><Poi name=\"a\" positionX=\"1\" positionY=\"2\"/></Pois><Contour>2 1\n-2 1\n-2 -1\n2 "
             "-1\n</Contour></Car>"),
     false,
     {},
     [](const Scene& s) { EXPECT_EQ(s.get<overmap::Car>(1)->getContour().size(), 4u); }},
    {"position_that_does_not_convert_keeps_the_old",
     objects(cone("objectId=\"1\" heading=\"15\" positionX=\"4\"") +
             cone("objectId=\"2\" heading=\"15\" latitude=\"47,9\" longitude=\"10\"")),
     false,
     {},
     [](const Scene& s) {
         EXPECT_FALSE(s.get(1)->isXYPosition());
         EXPECT_EQ(s.get(1)->getHeading(), 15.0);
         EXPECT_EQ(s.get(2)->getGeoPosition(), overmap::Cone(s.manager.getReferencePlane()).getGeoPosition());
     }},
    {"unsupported_coordinate_system",
     objects(cone("objectId=\"1\" coordinateSystem=\"din70000\" " + GEO)),
     false,
     {{SEV_DETAIL, "Unsupported coordinate system 'din70000' - using default"}},
     [](const Scene& s) {
         EXPECT_EQ(s.get(1)->localCoordinateSystem(), math_geo::CoordinateSystem::DIN70000);
     }},
    {"named_system_labels_object_and_pois",
     objects(cone("objectId=\"1\" coordinateSystem=\"SAE\" " + GEO,
                  "<Pois><Poi name=\"tip\" positionX=\"0\" positionY=\"1\"/></Pois>")),
     true,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.get(1)->getPoi(1).position.getCoordinateSystem(), math_geo::CoordinateSystem::SAE);
         EXPECT_EQ(s.get(1)->getPoi(0).name, "Center") << "a first POI elsewhere comes after Center";
     }},
    {"broken_antenna_offset_drops_the_car",
     objects("<Car objectId=\"1\" " + GEO + " gpsOffsetX=\"1\"/><Car objectId=\"2\" " + GEO +
             " gpsOffsetX=\"1\" gpsOffsetY=\"-0.5\"/>"),
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.get<overmap::Car>(1), nullptr);
         EXPECT_EQ(s.get<overmap::Car>(2)->getGpsOffset(),
                   Point2D(1, -0.5, math_geo::CoordinateSystem::DIN70000));
     }},
    {"unknown_element_stops_the_objects",
     objects(cone("objectId=\"1\" " + GEO) + "<Tree objectId=\"2\" referenceObjectID=\"1\"/>" +
             cone("objectId=\"3\" " + GEO)),
     false,
     {{SEV_DETAIL, "Unkown node in overmap config \"Tree\""}},
     [](const Scene& s) {
         EXPECT_NE(s.get(1), nullptr);
         EXPECT_EQ(s.get(3), nullptr);
         EXPECT_EQ(s.log.count(CH, SEV_NOTE, "Error parsing reference object"), 0u);
     }},
    {"first_poi_at_the_centre_takes_the_place_of_center",
     objects(cone("objectId=\"1\" " + GEO,
                  "<Pois><Poi name=\"Middle\" positionX=\"0\" positionY=\"0\"/><Point/>"
                  "<Poi name=\"bad\" positionX=\"1m\" positionY=\"0\"/><Poi name=\"Front\" positionX=\"1\" "
                  "positionY=\"0\"/></Pois>")),
     false,
     {{SEV_DETAIL, "Uknown node in overmap config in <Pois> \"Point\""}},
     [](const Scene& s) {
         ASSERT_EQ(s.get(1)->poiCount(), 2u);
         EXPECT_EQ(s.get(1)->getPoi(0).name, "Middle");
         EXPECT_EQ(s.get(1)->getPoi(1).name, "Front");
     }},
    {"contour_with_backslash_n_and_a_comma_pair",
     objects("<Car objectId=\"1\" " + GEO +
             "><Contour>2 1\\n-2 1\\n-2 -1\\n2 -1</Contour></Car><Car objectId=\"3\" " + GEO +
             "><Contour>2 1\n-2 1\n-2,-1\n2 -1\n</Contour></Car>"),
     true,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.get<overmap::Car>(1)->getContour().size(), 4u);
         EXPECT_EQ(s.get<overmap::Car>(3)->getContour().size(), 2u);
     }},
    {"channel_by_id_first_then_by_long_name",
     objects(cone("objectId=\"1\" " + GEO +
                  " latitudeChannelID=\"17179869185\" latitudeChannelLongName=\"speed\" "
                  "headingChannelID=\"99\" headingChannelLongName=\"heading\" longitudeChannelID=\"-1\" "
                  "longitudeChannelLongName=\"lon\"")),
     true,
     {{SEV_NOTE, "Can't find channel by id 99"},
      {SEV_NOTE, "Can't find channel by id -1"},
      {SEV_NOTE, "Can't find channel by name lon"}},
     [](const Scene& s) {
         EXPECT_EQ(s.get(1)->getLatitudeChannel(), s.recording.byName("latitude"));
         EXPECT_EQ(s.get(1)->getHeadingChannel(), s.recording.byName("heading"));
         EXPECT_EQ(s.get(1)->getLongitudeChannel(), nullptr);
     }},
    {"channel_id_that_is_no_number",
     objects(cone("objectId=\"1\" " + GEO + " headingChannelID=\"0x10\" headingChannelLongName=\"heading\"")),
     true,
     {{SEV_DETAIL, "Can't get channel 0x10"}},
     [](const Scene& s) { EXPECT_EQ(s.get(1)->getHeadingChannel(), nullptr); }},
    {"quality_positions_with_strtod_limits",
     "<Overmap><GeoObjects locatorId=\"8\"><Locator objectId=\"8\" " + GEO +
         "><QualityPosition lowerLimit=\"1.5abc\" upperLimit=\"2\" qualityChannelID=\"17179869189\"/>"
         "<QualityPosition upperLimit=\"junk\"/></Locator></GeoObjects></Overmap>",
     true,
     {},
     [](const Scene& s) {
         const auto locator = s.get<overmap::Locator>(8);
         ASSERT_EQ(locator->getQualityPositions().size(), 2u);
         EXPECT_EQ(locator->getQualityPositions()[0].lowerLimit, 1.5);
         EXPECT_EQ(locator->getQualityPositions()[0].channel, s.recording.byName("fix_quality"));
         EXPECT_EQ(locator->getQualityPositions()[1].upperLimit, 0.0);
         EXPECT_EQ(s.manager.getLocator(), locator);
     }},
    {"locator_id_of_no_object",
     "<Overmap><GeoObjects locatorId=\"5\">" + cone("objectId=\"4\" " + GEO) + "</GeoObjects></Overmap>",
     true,
     {},
     [](const Scene& s) { EXPECT_EQ(s.manager.getLocator(), nullptr); }},
    {"reference_keeps_the_files_numbers_in_the_parents_frame",
     objects(cone("objectId=\"2\" positionX=\"3\" positionY=\"1\" heading=\"0\" referenceObjectID=\"1\"") +
             "<Car objectId=\"1\" latitude=\"47.995\" longitude=\"10.245\" heading=\"90\"/>"),
     true,
     {{SEV_ERROR, "PositionObject::setXYPosition() - correcting the coordinate system"}},
     [](const Scene& s) {
         ASSERT_EQ(s.get(2)->getReferenceObject(), s.get<overmap::Car>(1));
         EXPECT_EQ(s.get(2)->getXYPosition(), Point2D(3, 1, math_geo::CoordinateSystem::DIN70000));
         EXPECT_LT(om_test::metres(s.get(2)->getGeoPosition(),
                                   s.get<overmap::Car>(1)->toGeo(s.get(2)->getXYPosition())),
                   1e-6);
     }},
    {"missing_reference_stops_the_reference_pass",
     objects(cone("objectId=\"2\" " + GEO + " referenceObjectID=\"9\"") +
             cone("objectId=\"3\" " + GEO + " referenceObjectID=\"2\"")),
     false,
     {{SEV_NOTE, "Error parsing reference object for object ID 2"}},
     [](const Scene& s) {
         EXPECT_EQ(s.get(3)->getReferenceObject(), nullptr);
         EXPECT_FALSE(s.log.contains(CH, SEV_NOTE, "object ID 3"));
     }},
    {"reference_id_that_is_no_number_stops_quietly",
     objects(cone("objectId=\"2\" " + GEO + " referenceObjectID=\"one\"") +
             cone("objectId=\"3\" " + GEO + " referenceObjectID=\"2\"")),
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.get(3)->getReferenceObject(), nullptr);
         EXPECT_FALSE(s.log.contains(CH, SEV_NOTE, "Error parsing reference object"));
     }},
    {"tracks",
     tracks("<TrackPath objectId=\"1\" name=\"loop\" " + TRACK +
            ">47.1 10.1 \n47.2 10.2 \n47.3 10.3 \n</TrackPath><TrackLine objectId=\"2\" " + TRACK +
            "><GPSPositions>47.1 10.1 \n47.2 10.2 \n</GPSPositions><StartXY positionX=\"1\" "
            "positionY=\"2\"/></TrackLine>"),
     true,
     {},
     [](const Scene& s) {
         const auto path = s.get<overmap::TrackPath>(1);
         EXPECT_EQ(path->getPositions().size(), 3u);
         EXPECT_EQ(path->getWidth(), 4.0);
         EXPECT_EQ(path->getOrigin(), 0.25);
         const auto line = s.get<overmap::TrackLine>(2);
         EXPECT_EQ(line->getStartPoint(), Point2D(1, 2, overmap::defaultPlaneCoordinateSystem()));
         EXPECT_FALSE(line->isEndByXY()) << "the end from GPSPositions where no EndXY was given";
         EXPECT_EQ(line->getPositions().at(1), GeoPosition(47.2, 10.2));
     }},
    {"bad_xy_start_taken_from_the_positions",
     tracks("<TrackLine objectId=\"2\" " + TRACK +
            "><GPSPositions>47.1 10.1 \n47.2 10.2 \n</GPSPositions><StartXY positionX=\"1\"/></TrackLine>"),
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.get<overmap::TrackLine>(2)->getPositions().at(0), GeoPosition(47.1, 10.1));
     }},
    {"track_line_without_positions",
     tracks("<TrackLine objectId=\"1\" " + TRACK + "><StartXY positionX=\"1\" positionY=\"2\"/></TrackLine>"),
     false,
     {{SEV_DETAIL, "TrackLine XML node does not containt GPSPositions node"}},
     [](const Scene& s) { EXPECT_EQ(s.manager.objectCount(), 0u); }},
    {"track_line_of_three_positions",
     tracks("<TrackLine objectId=\"1\" " + TRACK + "><GPSPositions>1 2 3 4 5 6</GPSPositions></TrackLine>"),
     false,
     {{SEV_DETAIL, "TrackLine XML node does not containt exactly 2 positions"}},
     [](const Scene&) {}},
    {"bad_track_id_ends_the_tracks",
     tracks("<TrackPath objectId=\"1\" trackWidth=\"wide\" trackOrigin=\"0.25\"/><TrackPath "
            "objectId=\"\"/><TrackPath objectId=\"3\"/>"),
     false,
     {},
     [](const Scene& s) {
         EXPECT_EQ(s.get<overmap::TrackPath>(1)->getWidth(),
                   overmap::TrackPath(s.manager.getReferencePlane()).getWidth());
         EXPECT_EQ(s.get<overmap::TrackPath>(1)->getOrigin(), 0.25) << "later attributes are still read";
         EXPECT_EQ(s.get<overmap::TrackPath>(3), nullptr);
     }},
    {"only_tracks_among_tracks",
     tracks("<Cone objectId=\"1\"/><TrackPath objectId=\"2\" " + TRACK + "/>"),
     false,
     {{SEV_DETAIL, "Only Track XML items allowed"}},
     [](const Scene& s) { EXPECT_EQ(s.manager.objectCount(), 0u); }},
    {"broken_calculations_dropped_quietly",
     calculations(
         "<Calculation calculationId=\"1\" fromId=\"1\"/><Calculation calculationId=\"2\" toId=\"2\"/>"
         "<Calculation calculationId=\"3\" fromId=\"1\" toId=\"2\" toPoiIdx=\"one\"/>"
         "<Calculation calculationId=\"4\" fromId=\"3\" toId=\"3\"/>"),
     true,
     {},
     [](const Scene& s) {
         ASSERT_EQ(s.manager.calculationCount(), 1u);
         const auto calculation = s.manager.calculationAt(0);
         EXPECT_EQ(calculation->getId(), 4);
         EXPECT_EQ(calculation->getFrom(), nullptr) << "a track as from-object";
         EXPECT_EQ(calculation->getTo(), s.manager.findObjectById(3));
         EXPECT_TRUE(calculation->getStoredUseToPoi());
         EXPECT_EQ(calculation->getResultTransformation(), overmap::ResultTransformation::AS_IS);
         EXPECT_TRUE(s.log.none(CH));
     }},
    {"calculation_choices_without_regard_to_case",
     calculations("<Calculation calculationId=\"4\" fromId=\"1\" toId=\"2\" fromPoiIdx=\"2\" "
                  "useFromPoi=\"TRUE\" useToPoi=\"False\" "
                  "distanceType=\"y\" trackTarget=\"edge\" "
                  "resultTransformation=\"Absolute\"/><Sum/><Calculation calculationId=\"5\"/>"),
     false,
     {{SEV_DETAIL, "Unkown node in overmap config in <Calculations> \"Sum\""}},
     [](const Scene& s) {
         ASSERT_EQ(s.manager.calculationCount(), 1u);
         const auto calculation = s.manager.calculationAt(0);
         EXPECT_EQ(calculation->getFromPoiIdx(), 2u);
         EXPECT_FALSE(calculation->getStoredUseToPoi());
         EXPECT_EQ(calculation->getDistanceType(), overmap::DistanceType::Y);
         EXPECT_EQ(calculation->getTrackTarget(), overmap::TrackTarget::EDGE);
         EXPECT_EQ(calculation->getResultTransformation(), overmap::ResultTransformation::ABSOLUTE);
     }},
};
INSTANTIATE_TEST_SUITE_P(Rows, XmlReader, testing::ValuesIn(READ_ROWS),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(XmlReaderEdges, WithoutFetcherAChannelIsAnAssertionAndAnInfiniteHeadingIsReported)
{
    ObjectManager manager;
    uni_testing::AssertCapture asserts;
    EXPECT_TRUE(
        XmlReadWriter(&manager, nullptr)
            .read(objects(cone(
                "objectId=\"1\" latitude=\"1\" longitude=\"2\" heading=\"-inf\" headingChannelID=\"5\""))));
    EXPECT_TRUE(asserts.fired("m_channel_fetcher != nullptr"));
    EXPECT_TRUE(asserts.fired("heading >= 0 && heading < 360.0"));
    EXPECT_TRUE(std::isnan(std::dynamic_pointer_cast<overmap::Cone>(manager.objectAt(0))->getHeading()));
    std::string text = "old";
    XmlReadWriter(nullptr, nullptr).write(text);
    EXPECT_TRUE(asserts.fired("m_manager != nullptr"));
    EXPECT_TRUE(text.empty());
}

Names attributeNames(const pugi::xml_node& node)
{
    Names names;
    for (pugi::xml_attribute attribute : node.attributes())
        names.emplace_back(attribute.name());
    return names;
}

Names childNames(const pugi::xml_node& node)
{
    Names names;
    for (pugi::xml_node child : node.children())
        names.emplace_back(child.name());
    return names;
}

/// A scene object the writer has no element for.
class Marker : public overmap::GeoObject
{
public:
    using GeoObject::GeoObject;
};

TEST(XmlWriter, ElementsAndAttributesInTheirOrderOnOneLine)
{
    om_test::RecordingChannels recording(2);
    ObjectManager manager;
    manager.setDescription("test drive");
    manager.setReferencePlane(math_geo::ProjectionPlane(GeoPosition(47.5, -10.25), 12.5));
    const math_geo::CoordinateSystem plane = manager.getReferencePlane()->getXYCoordinateSystem();
    auto car = std::make_shared<overmap::Car>(41, manager.getReferencePlane());
    car->setGeoPosition(GeoPosition(47.995, 10.245));
    car->setHeadingChannel(recording.byName("heading"));
    car->setGpsOffset(Point2D(0.5, 0.25, math_geo::CoordinateSystem::DIN70000));
    auto xy_car = std::make_shared<overmap::Car>(42, manager.getReferencePlane());
    xy_car->setXYPosition(Point2D(12.5, -3.0, plane));
    xy_car->setCoordinateSystem(math_geo::CoordinateSystem::X_RIGHT_Y_BACK); // has no name
    auto locator = std::make_shared<overmap::Locator>(77, manager.getReferencePlane());
    locator->clearQualityPositions();
    locator->addQualityPosition({3.5, 4.5, recording.byName("fix_quality")});
    locator->addQualityPosition({0.0, 1.0, nullptr});
    auto half = std::make_shared<overmap::TrackLine>(manager.getReferencePlane());
    half->setStart(GeoPosition(47.5, 10.25));
    half->setEndXY(Point2D(3, 4, plane));
    auto calculation = std::make_shared<overmap::Calculation>(9);
    calculation->setFrom(locator);
    calculation->setUseFromPoi(false); // no effect on a locator
    calculation->setResultTransformation(overmap::ResultTransformation::INVERT);
    for (const auto& object : std::initializer_list<std::shared_ptr<overmap::GeoObject>>{
             car, xy_car, locator, std::make_shared<Marker>(manager.getReferencePlane()), half})
        manager.addObject(object);
    manager.setLocator(locator);
    manager.addCalculation(calculation);
    uni_testing::LogCapture log;
    const std::string text = om_test::writeSetup(manager);
    EXPECT_TRUE(log.contains(CH, SEV_DETAIL, "Unknown geo object type to write in XML"));
    EXPECT_EQ(text.rfind("<?xml version=\"1.0\"?><Overmap version=\"1.0\" description=\"test drive\">", 0),
              0u);
    EXPECT_EQ(text.find(">\n"), std::string::npos) << "line feeds only inside texts";
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(text.c_str()));
    const pugi::xml_node root = document.document_element();
    EXPECT_EQ(childNames(root), (Names{"GeoObjects", "Tracks", "Calculations", "View"}));
    const pugi::xml_node view = root.child("View");
    EXPECT_EQ(attributeNames(view),
              (Names{"description", "latitude", "longitude", "rotation", "usePlaneDefinitionPoints"}));
    EXPECT_STREQ(view.attribute("longitude").value(), "-10.250000000000");
    EXPECT_EQ(childNames(view),
              (Names{"PrimaryPlanePoint", "SecondaryPlanePoint", "MapSetupView", "BGImage"}));
    EXPECT_EQ(attributeNames(view.child("MapSetupView")),
              (Names{"latitude", "longitude", "rotation", "mapScaleS"}));
    const pugi::xml_node geo_objects = root.child("GeoObjects");
    EXPECT_EQ(attributeNames(geo_objects), (Names{"description", "locatorId"}));
    EXPECT_EQ(childNames(geo_objects), (Names{"Car", "Car", "Locator"}));
    const pugi::xml_node car_element = geo_objects.first_child();
    EXPECT_EQ(attributeNames(car_element),
              (Names{"objectId", "name", "color", "latitude", "longitude", "heading", "headingChannelID",
                     "headingChannelLongName", "headingChannelDomain", "headingChannelShortName",
                     "coordinateSystem", "gpsOffsetX", "gpsOffsetY"}));
    EXPECT_STREQ(car_element.attribute("headingChannelID").value(), "8589934595"); // (2 << 32) | 3
    EXPECT_STREQ(car_element.attribute("coordinateSystem").value(), "DIN70000");
    EXPECT_STREQ(car_element.attribute("gpsOffsetY").value(), "0.250000000000");
    EXPECT_EQ(childNames(car_element), (Names{"Pois", "Contour"}));
    EXPECT_EQ(attributeNames(car_element.next_sibling()),
              (Names{"objectId", "name", "color", "positionX", "positionY", "heading"}));
    const pugi::xml_node quality = geo_objects.child("Locator").child("QualityPosition");
    EXPECT_EQ(attributeNames(quality),
              (Names{"lowerLimit", "upperLimit", "qualityChannelID", "qualityChannelLongName",
                     "qualityChannelDomain", "qualityChannelShortName"}));
    EXPECT_EQ(attributeNames(quality.next_sibling()), (Names{"lowerLimit", "upperLimit"}));
    EXPECT_EQ(attributeNames(root.child("Tracks").first_child()),
              (Names{"objectId", "name", "color", "trackWidth", "trackOrigin", "trackRadius",
                     "trackArcLength", "trackArcBearing"}));
    EXPECT_EQ(childNames(root.child("Tracks").first_child()), (Names{"GPSPositions", "EndXY"}));
    const pugi::xml_node calculation_element = root.child("Calculations").first_child();
    EXPECT_EQ(attributeNames(calculation_element),
              (Names{"calculationId", "name", "fromId", "fromPoiIdx", "useFromPoi", "toPoiIdx", "useToPoi",
                     "distanceType", "trackTarget", "resultTransformation"}));
    EXPECT_STREQ(calculation_element.attribute("useFromPoi").value(), "true");
    EXPECT_STREQ(calculation_element.attribute("resultTransformation").value(), "INVERT");
}

TEST(XmlRoundTrip, GeneratedSetupsWriteTheSameTextAfterAReadWithTheSameChannelsAndReferences)
{
    om_test::RecordingChannels recording;
    om_test::ListChannelFetcher fetcher;
    fetcher.channels = recording.channels();
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        ObjectManager original;
        om_test::generateSetup(original, seed, recording.channels());
        const std::string first = om_test::writeSetup(original);
        uni_testing::LogCapture log;
        ObjectManager copy;
        ASSERT_TRUE(XmlReadWriter(&copy, &fetcher).read(first)) << "seed " << seed << "\n" << first;
        EXPECT_EQ(log.count(CH, SEV_NOTE, ""), 0u) << "seed " << seed;
        ASSERT_EQ(om_test::writeSetup(copy), first) << "seed " << seed;
        ASSERT_EQ(copy.objectCount(), original.objectCount());
        for (std::size_t i = 0; i < copy.objectCount(); ++i) {
            const auto theirs = std::dynamic_pointer_cast<overmap::PositionObject>(original.objectAt(i));
            const auto ours = std::dynamic_pointer_cast<overmap::PositionObject>(copy.objectAt(i));
            if (!ours)
                continue;
            EXPECT_EQ(ours->getHeadingChannel(), theirs->getHeadingChannel()) << seed << ":" << i;
            const auto parent = ours->getReferenceObject();
            EXPECT_EQ(parent ? parent->getId() : -1,
                      theirs->getReferenceObject() ? theirs->getReferenceObject()->getId() : -1);
            EXPECT_TRUE(!parent || parent == copy.findPositionObjectById(parent->getId()));
            EXPECT_LT(om_test::metres(ours->getGeoPosition(), theirs->getGeoPosition()), 1e-6)
                << seed << ":" << i;
        }
    }
}

TEST(XmlExample, TheProvingGroundReadsOnTheExampleRecordingsAndWritesBackUnchanged)
{
    std::ifstream in(std::string(LUMERO_EXAMPLES_DIR) + "/setups/proving_ground.xml", std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    ASSERT_FALSE(text.str().empty());
    lum::data::MemoryChannelConfigManager config;
    const auto regions = std::make_shared<ferrin::DataRegionsManager>();
    om_test::ListChannelFetcher fetcher;
    for (std::uint32_t node : {1u, 2u}) {
        const auto imported = lum::import::importCsv(std::string(LUMERO_EXAMPLES_DIR) + "/recordings/car" +
                                                     std::to_string(node) + "_drive_100hz.csv");
        ASSERT_TRUE(imported) << imported.error;
        lum::data::RecordingChannelOptions options;
        options.node_id = node;
        options.first_stream_id = node * 100;
        for (const auto& channel :
             lum::data::makeRecordingChannels(imported.recording, config, regions, options))
            fetcher.channels.push_back(channel);
    }
    uni_testing::LogCapture log;
    ObjectManager manager;
    ASSERT_TRUE(XmlReadWriter(&manager, &fetcher).read(text.str()));
    EXPECT_EQ(log.count(CH, SEV_NOTE, "Can't find channel"), 0u);
    EXPECT_EQ(om_test::writeSetup(manager), text.str());
    const auto car2 = std::dynamic_pointer_cast<overmap::Car>(manager.findObjectById(2));
    ASSERT_NE(car2, nullptr);
    EXPECT_EQ(car2->getLatitudeChannel()->getChannelId(), channel_config::ChannelID(2, 1));
    const auto locator = std::dynamic_pointer_cast<overmap::Locator>(manager.getLocator());
    ASSERT_NE(locator, nullptr);
    for (const overmap::QualityPosition& range : locator->getQualityPositions())
        EXPECT_EQ(range.channel->getChannelId(), channel_config::ChannelID(1, 6));
    std::size_t cones = 0;
    for (const auto& object : manager.getObjects())
        cones += std::dynamic_pointer_cast<overmap::Cone>(object) != nullptr;
    EXPECT_EQ(cones, 13u);
    EXPECT_EQ(manager.calculationCount(), 6u);
}

} // namespace
