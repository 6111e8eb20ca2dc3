#include <math_geo/kml_reader.h>

#include <uni_base/uni_log.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

using math_geo::GeoPosition;
using math_geo::readKmlFile;

constexpr const char* JOINED = "Only one LineString in a KML file is supported - attaching the coordinates";

std::string writeKml(const std::string& name, const std::string& text)
{
    const std::string path = ::testing::TempDir() + "math_geo_" + name + ".kml";
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

std::string lineStringKml(const std::string& coordinates)
{
    return "<kml><Document><Placemark><LineString><coordinates>" + coordinates +
           "</coordinates></LineString></Placemark></Document></kml>";
}

std::string realFile(const char* name)
{
    return std::string(LUMERO_REALDATA_DIR "/kml/") + name;
}

TEST(KmlReaderFile, ReadsLonLatAltTuplesLatitudeSecond)
{
    std::vector<GeoPosition> positions;
    ASSERT_TRUE(readKmlFile(writeKml("plain", lineStringKml("10.5,47.1,0 10.6,47.2,0")), positions));
    ASSERT_EQ(positions.size(), 2u);
    EXPECT_EQ(positions[0], GeoPosition(47.1, 10.5));
    EXPECT_EQ(positions[1], GeoPosition(47.2, 10.6));
}

TEST(KmlReaderFile, UnreadableFilesAndWrongRootsAreRefused)
{
    std::vector<GeoPosition> positions = {{1, 1}};
    EXPECT_FALSE(readKmlFile(::testing::TempDir() + "math_geo_no_such_file.kml", positions));
    EXPECT_FALSE(readKmlFile(writeKml("broken", "<kml><Document>"), positions));
    ASSERT_EQ(positions.size(), 1u) << "a file that does not load leaves the list alone";

    EXPECT_FALSE(readKmlFile(writeKml("capitals", "<KML><Document><Placemark><LineString><coordinates>1,2,3"
                                                  "</coordinates></LineString></Placemark></Document></KML>"),
                             positions));
    EXPECT_TRUE(positions.empty()) << "a loaded file empties the list before it is judged";
}

TEST(KmlReaderFile, PlacemarkMustSitInADocumentAndTheFirstSuchDocumentIsRead)
{
    std::vector<GeoPosition> positions;
    EXPECT_FALSE(readKmlFile(
        writeKml("bare", "<kml><Placemark><LineString><coordinates>1,2,3</coordinates></LineString>"
                         "</Placemark></kml>"),
        positions));
    EXPECT_FALSE(readKmlFile(writeKml("empty_doc", "<kml><Document/></kml>"), positions));
    EXPECT_TRUE(
        readKmlFile(writeKml("second_doc", "<kml><Document><name>x</name></Document><Document><Placemark>"
                                           "<LineString><coordinates>1,2,3</coordinates></LineString>"
                                           "</Placemark></Document></kml>"),
                    positions));
    ASSERT_EQ(positions.size(), 1u);
    EXPECT_EQ(positions[0], GeoPosition(2, 1));
}

TEST(KmlReaderLineStrings, EveryLineStringOfTheFileIsJoinedWithANote)
{
    uni_testing::LogCapture log;
    std::vector<GeoPosition> positions;
    // The second line string sits in another placemark of another folder: the search starts at the root.
    ASSERT_TRUE(readKmlFile(
        writeKml("two",
                 "<kml><Document><Placemark><Point><coordinates>9,9,9</coordinates></Point></Placemark>"
                 "<Placemark><LineString><coordinates>1,2,0</coordinates></LineString></Placemark>"
                 "<Folder><Placemark><LineString><coordinates>3,4,0 5,6,0</coordinates></LineString>"
                 "</Placemark></Folder></Document></kml>"),
        positions));
    ASSERT_EQ(positions.size(), 3u);
    EXPECT_EQ(positions[0], GeoPosition(2, 1));
    EXPECT_EQ(positions[2], GeoPosition(6, 5));
    EXPECT_TRUE(log.contains("math_geo", 5, JOINED));
    EXPECT_EQ(log.count("math_geo", 5, JOINED), 1u);
}

TEST(KmlReaderLineStrings, LineStringWithoutCoordinatesGivesNothingAndNoMessage)
{
    uni_testing::LogCapture log;
    std::vector<GeoPosition> positions;
    EXPECT_FALSE(readKmlFile(
        writeKml("no_coords", "<kml><Document><Placemark><LineString><tessellate>1</tessellate></LineString>"
                              "</Placemark></Document></kml>"),
        positions));
    EXPECT_TRUE(positions.empty());
    EXPECT_TRUE(log.none("math_geo"));
    // Followed by one with coordinates, the file is read.
    EXPECT_TRUE(readKmlFile(writeKml("no_coords_then", "<kml><Document><Placemark><LineString/><LineString>"
                                                       "<coordinates>1,2,3</coordinates></LineString>"
                                                       "</Placemark></Document></kml>"),
                            positions));
    EXPECT_EQ(positions.size(), 1u);
}

TEST(KmlReaderCoordinates, TrailingWhiteSpaceRepeatsTheLastPosition)
{
    std::vector<GeoPosition> positions;
    ASSERT_TRUE(
        readKmlFile(writeKml("trailing", lineStringKml("\n  10.5,47.1,0\n  10.6,47.2,0\n  ")), positions));
    ASSERT_EQ(positions.size(), 3u);
    EXPECT_EQ(positions[1], GeoPosition(47.2, 10.6));
    EXPECT_EQ(positions[2], GeoPosition(47.2, 10.6));
}

TEST(KmlReaderCoordinates, BlankCoordinatesGiveNoPositionButCount)
{
    std::vector<GeoPosition> positions;
    EXPECT_TRUE(readKmlFile(writeKml("blank", lineStringKml("  \n\t ")), positions));
    EXPECT_TRUE(positions.empty());
    EXPECT_TRUE(readKmlFile(writeKml("empty", lineStringKml("")), positions));
    EXPECT_TRUE(positions.empty());
}

TEST(KmlReaderCoordinates, TupleWithoutAltitudeSwallowsTheNextLongitude)
{
    uni_testing::LogCapture log;
    std::vector<GeoPosition> positions;
    // The first tuple takes 10.6 for its altitude; the text left, ",47.2", is unreadable.
    ASSERT_TRUE(readKmlFile(writeKml("two_d", lineStringKml("10.5,47.1 10.6,47.2")), positions));
    ASSERT_EQ(positions.size(), 1u);
    EXPECT_EQ(positions[0], GeoPosition(47.1, 10.5));
    EXPECT_TRUE(log.contains("math_geo", 1, "Unreadable KML coordinates"));
    // A single tuple without altitude is read as it stands.
    ASSERT_TRUE(readKmlFile(writeKml("one_2d", lineStringKml("10.5,47.1")), positions));
    ASSERT_EQ(positions.size(), 1u);
    EXPECT_EQ(positions[0], GeoPosition(47.1, 10.5));
}

TEST(KmlReaderCoordinates, UnreadableTextEndsItsElementKeepsWhatCameBeforeAndTheNextElementIsRead)
{
    uni_testing::LogCapture log;
    std::vector<GeoPosition> positions;
    ASSERT_TRUE(readKmlFile(writeKml("garbage", "<kml><Document><Placemark><LineString><coordinates>"
                                                "1,2,3 4,5,6 xx,7,8 9,10,11</coordinates></LineString>"
                                                "<LineString><coordinates>20,30,0</coordinates></LineString>"
                                                "</Placemark></Document></kml>"),
                            positions));
    ASSERT_EQ(positions.size(), 3u);
    EXPECT_EQ(positions[0], GeoPosition(2, 1));
    EXPECT_EQ(positions[1], GeoPosition(5, 4));
    EXPECT_EQ(positions[2], GeoPosition(30, 20));
    EXPECT_TRUE(log.contains("math_geo", 1, "Unreadable KML coordinates at \"xx,7,8\""));
}

TEST(KmlReaderCoordinates, ExponentsSignsAndSpaceAfterACommaAreRead)
{
    std::vector<GeoPosition> positions;
    ASSERT_TRUE(readKmlFile(writeKml("forms", lineStringKml("+1.5e1, -2.5E-1,3 1,2,7.7E+3")), positions));
    ASSERT_EQ(positions.size(), 2u);
    EXPECT_EQ(positions[0], GeoPosition(-0.25, 15));
    EXPECT_EQ(positions[1], GeoPosition(2, 1));
}

TEST(KmlReaderFile, Utf8FileNames)
{
    std::vector<GeoPosition> positions;
    ASSERT_TRUE(readKmlFile(writeKml("stra\xC3\x9F"
                                     "e_\xE2\x82\xAC",
                                     lineStringKml("1,2,3")),
                            positions));
    EXPECT_EQ(positions.size(), 1u);
}

TEST(KmlReaderRealFiles, LineStringsFromOtherWritersAreReadOrRefusedByTheRules)
{
    std::vector<GeoPosition> positions;
    // A Document with a Placemark and one line string with trailing white space: one repeated vertex.
    ASSERT_TRUE(readKmlFile(realFile("Style_styledLineString.kml"), positions));
    ASSERT_EQ(positions.size(), 12u);
    EXPECT_EQ(positions.front(), GeoPosition(36.09447672602546, -112.265654928602));
    EXPECT_EQ(positions[10], positions[11]);

    // The first Placemark holds a Point; the line strings of the others are still found and joined.
    {
        uni_testing::LogCapture log;
        ASSERT_TRUE(readKmlFile(realFile("Placemark_clippedAtDateLine.kml"), positions));
        ASSERT_EQ(positions.size(), 6u); // two tuples each, each line repeated once by the trailing space
        EXPECT_EQ(positions[0], GeoPosition(0, -180));
        EXPECT_EQ(positions[3], GeoPosition(-60, 30));
        EXPECT_EQ(log.count("math_geo", 5, JOINED), 1u);
    }

    // Another single line string, with altitudes and indented tuples.
    ASSERT_TRUE(readKmlFile(realFile("Placemark_LineString_absolute-extruded.kml"), positions));
    EXPECT_EQ(positions.front(), GeoPosition(36.09445214722695, -112.2656634181359));
    EXPECT_EQ(positions[positions.size() - 1], positions[positions.size() - 2]);

    // Mixed 2D and 3D tuples: only the first one is understood.
    {
        uni_testing::LogCapture log;
        ASSERT_TRUE(readKmlFile(realFile("Placemark_mixedDimsLines.kml"), positions));
        ASSERT_EQ(positions.size(), 1u);
        EXPECT_EQ(positions[0], GeoPosition(39.10402861679, -76.73150843510001));
        EXPECT_TRUE(log.contains("math_geo", 1, "Unreadable KML coordinates"));
    }

    // No Document around the Placemark, or Placemarks only inside Folders of the Document.
    for (const char* refused :
         {"Placemark_LineString_straight.kml", "Placemark_LineString_tessellate.kml",
          "xmlns_no-namespace.kml", "MultiGeometry_multi-linestrings.kml", "sloppy_badCoord.kml"})
        EXPECT_FALSE(readKmlFile(realFile(refused), positions)) << refused;
}

} // namespace
