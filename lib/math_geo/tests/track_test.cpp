#include "segment_cross_track.h"

#include <math_geo/geo_tools.h>
#include <math_geo/kml_reader.h>
#include <math_geo/simplify_track.h>

#include <uni_testing/log_capture.h>

#include <boost/geometry/strategies/spherical/distance_cross_track.hpp>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using math_geo::GeoPosition;
using math_geo::readKmlFile;
using Positions = std::vector<GeoPosition>;

constexpr const char* JOINED = "Only one LineString in a KML file is supported - attaching the coordinates";
constexpr int SEV_ERROR = 1;
constexpr int SEV_NOTE = 5;

std::string line(const std::string& coordinates)
{
    return "<LineString><coordinates>" + coordinates + "</coordinates></LineString>";
}

std::string kml(const std::string& placemark_body)
{
    return "<kml><Document><Placemark>" + placemark_body + "</Placemark></Document></kml>";
}

struct KmlRow
{
    const char* name;
    std::string text;
    bool read;
    Positions positions;
    int severity = 0; // of the one message expected, 0: none
    std::string message = {};
};

void PrintTo(const KmlRow& row, std::ostream* os)
{
    *os << row.name;
}

class KmlReader : public testing::TestWithParam<KmlRow>
{};

TEST_P(KmlReader, ReadsTheLineStringsOfTheFirstPlacemarkInADocument)
{
    const KmlRow& row = GetParam();
    const std::string path = testing::TempDir() + "math_geo_\xE2\x82\xAC_" + row.name + ".kml";
    std::ofstream(path, std::ios::binary) << row.text;
    uni_testing::LogCapture log;
    Positions positions = {{89, 89}};
    EXPECT_EQ(readKmlFile(path, positions), row.read);
    EXPECT_EQ(positions, row.positions);
    if (row.severity == 0)
        EXPECT_TRUE(log.none("math_geo"));
    else
        EXPECT_EQ(log.count("math_geo", row.severity, row.message), 1u);
}

const KmlRow KML_ROWS[] = {
    {"longitude_first", kml(line("10.5,47.1,0 +1.5e1, -2.5E-1,7.7E+3")), true, {{47.1, 10.5}, {-0.25, 15}}},
    {"broken_xml_keeps_the_list", "<kml><Document>", false, {{89, 89}}},
    {"capital_root",
     "<KML><Document><Placemark>" + line("1,2,3") + "</Placemark></Document></KML>",
     false,
     {}},
    {"no_document", "<kml><Placemark>" + line("1,2,3") + "</Placemark></kml>", false, {}},
    {"second_document",
     "<kml><Document/><Document><Placemark>" + line("1,2,3") + "</Placemark></Document></kml>",
     true,
     {{2, 1}}},
    {"every_line_string_of_the_file_joined",
     "<kml><Document><Placemark><Point><coordinates>9,9,9</coordinates></Point></Placemark><Placemark>" +
         line("1,2,0") + "</Placemark><Folder><Placemark>" + line("3,4,0 5,6,0") +
         "</Placemark></Folder></Document></kml>",
     true,
     {{2, 1}, {4, 3}, {6, 5}},
     SEV_NOTE,
     JOINED},
    {"no_coordinates", kml("<LineString><tessellate>1</tessellate></LineString>"), false, {}},
    {"trailing_space_repeats_the_last",
     kml(line("\n 10.5,47.1,0\n 10.6,47.2,0\n ")),
     true,
     {{47.1, 10.5}, {47.2, 10.6}, {47.2, 10.6}}},
    {"blank", kml(line(" \n\t ")), true, {}},
    {"single_tuple_without_altitude", kml(line("10.5,47.1")), true, {{47.1, 10.5}}},
    // The first tuple takes 10.6 for its altitude; ",47.2" is left over and unreadable.
    {"tuples_without_altitude",
     kml(line("10.5,47.1 10.6,47.2")),
     true,
     {{47.1, 10.5}},
     SEV_ERROR,
     "Unreadable KML coordinates at \",47.2\", ignoring the rest of the element"},
    {"garbage_ends_its_element_only",
     kml(line("1,2,3 xx,7,8 9,10,11") + line("20,30,0")),
     true,
     {{2, 1}, {30, 20}},
     SEV_ERROR,
     "Unreadable KML coordinates at \"xx,7,8\", ignoring the rest of the element"},
};
INSTANTIATE_TEST_SUITE_P(Rows, KmlReader, testing::ValuesIn(KML_ROWS),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(KmlReaderRealFiles, FilesFromOtherWritersAreReadOrRefusedByTheRules)
{
    const std::string dir = LUMERO_REALDATA_DIR "/kml/";
    Positions positions;
    ASSERT_TRUE(readKmlFile(dir + "Style_styledLineString.kml", positions));
    ASSERT_EQ(positions.size(), 12u);
    EXPECT_EQ(positions.front(), GeoPosition(36.09447672602546, -112.265654928602));
    EXPECT_EQ(positions[10], positions[11]);
    uni_testing::LogCapture log;
    ASSERT_TRUE(readKmlFile(dir + "Placemark_clippedAtDateLine.kml", positions));
    EXPECT_EQ(positions.size(), 6u); // two line strings after a Point, each last tuple repeated
    EXPECT_EQ(positions[3], GeoPosition(-60, 30));
    EXPECT_EQ(log.count("math_geo", SEV_NOTE, JOINED), 1u);
    for (const char* refused : {"Placemark_LineString_straight.kml", "xmlns_no-namespace.kml",
                                "MultiGeometry_multi-linestrings.kml", "sloppy_badCoord.kml"})
        EXPECT_FALSE(readKmlFile(dir + refused, positions)) << refused;
}

/// Cross-track distance in metres on the Gaussian sphere at the segment's mean latitude, worked out by
/// Boost on the unit sphere.
double crossTrack(const GeoPosition& p, const GeoPosition& a, const GeoPosition& b)
{
    const boost::geometry::strategy::distance::cross_track<> unit_sphere;
    return unit_sphere.apply(p, a, b) * math_geo::gaussianRadius((a.latitude + b.latitude) / 2.0);
}

/// The plain recursion, every vertex measured: what the library must match vertex for vertex.
void referenceSimplify(const GeoPosition* in, std::size_t n, double tolerance, Positions& out)
{
    std::size_t idx = 0;
    double largest = -1.0;
    for (std::size_t i = 1; i + 1 < n; ++i)
        if (const double d = crossTrack(in[i], in[0], in[n - 1]); d > largest) {
            largest = d;
            idx = i;
        }
    if (idx == 0 || tolerance > largest) {
        out.push_back(in[n - 1]);
        return;
    }
    referenceSimplify(in, idx + 1, tolerance, out);
    referenceSimplify(in + idx, n - idx, tolerance, out);
}

/// A GPS drive at 100 Hz with noise, or jumps across the globe with repeated vertices and loops.
Positions generatedTrack(unsigned seed, bool wild)
{
    std::mt19937 rng(seed);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::uniform_real_distribution<double> lat(-89.0, 89.0);
    std::uniform_int_distribution<int> kind(0, 9);
    Positions out = {GeoPosition(48.0, 11.0)};
    GeoPosition p = out.front();
    for (std::size_t i = 1; i < 3000; ++i) {
        if (!wild) {
            p = math_geo::destinationPoint(p, (i / 500) % 3 == 0 ? 0.0 : 0.3 * (i % 500), 0.15);
            out.push_back(math_geo::destinationPoint(p, noise(rng) * 3600.0, std::fabs(noise(rng))));
        } else if (const int k = kind(rng); k < 2) {
            out.push_back(out[out.size() - 1 - std::min<std::size_t>(out.size() - 1, k * 4)]);
        } else {
            out.push_back(
                k < 6 ? math_geo::destinationPoint(out.back(), lat(rng) * 2, std::fabs(lat(rng)) * 10.0)
                      : GeoPosition(lat(rng), lat(rng) * 2));
        }
    }
    return out;
}

TEST(SimplifyTrack, SameVerticesAsThePlainRecursionOverGeneratedTracks)
{
    for (unsigned seed : {1u, 2u})
        for (bool wild : {false, true})
            for (double tolerance : {0.0, 0.02, 0.5, 1000.0}) {
                SCOPED_TRACE(testing::Message() << seed << " " << wild << " " << tolerance);
                const Positions in = generatedTrack(seed, wild);
                Positions expected = {in.front()};
                referenceSimplify(in.data(), in.size(), tolerance, expected);
                EXPECT_EQ(math_geo::simplifyTrack(in, tolerance), expected);
            }
}

TEST(SimplifyTrack, ShortTracksStayEqualDistancesKeepAndALoopMeasuresFromItsPoint)
{
    EXPECT_TRUE(math_geo::simplifyTrack({}, 1.0).empty());
    EXPECT_EQ(math_geo::simplifyTrack({{1, 2}}, 1.0), Positions({{1, 2}}));
    EXPECT_EQ(math_geo::simplifyTrack({{1, 2}, {1, 2}}, 1e9), Positions({{1, 2}, {1, 2}}));
    const Positions three = {{0, 0}, {0.00001, 0.0005}, {0, 0.001}};
    const double d = 1.1094626; // metres from the middle vertex to the equator
    EXPECT_EQ(math_geo::simplifyTrack(three, d - 1e-4).size(), 3u);
    EXPECT_EQ(math_geo::simplifyTrack(three, d + 1e-4).size(), 2u);
    Positions loop = {GeoPosition(50, 7)};
    for (int i = 1; i < 36; ++i)
        loop.push_back(math_geo::destinationPoint(loop.front(), i * 10.0, 100.0));
    loop.push_back(loop.front());
    EXPECT_EQ(math_geo::simplifyTrack(loop, 101.0).size(), 2u);
    EXPECT_GE(math_geo::simplifyTrack(loop, 99.0).size(), 3u);
    const Positions still(2000, GeoPosition(45, 9)); // every distance 0 equals the tolerance
    EXPECT_EQ(math_geo::simplifyTrack(still, 0.0).size(), still.size());
}

TEST(SegmentCrossTrack, SameValueAsBoostsStrategyToTheLastBit)
{
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> lat(-90.0, 90.0);
    std::normal_distribution<double> near(0.0, 1e-4);
    const boost::geometry::strategy::distance::comparable::cross_track<> strategy;
    for (int s = 0; s < 300; ++s) {
        const GeoPosition a(lat(rng), 2 * lat(rng));
        const GeoPosition b = s % 3 == 0   ? GeoPosition(lat(rng), 2 * lat(rng))
                              : s % 3 == 1 ? a
                                           : GeoPosition(a.latitude + near(rng), a.longitude + near(rng));
        const math_geo::detail::SegmentCrossTrack segment(a, b);
        for (int i = 0; i < 200; ++i) {
            const double t = i / 100.0 - 0.5;
            const GeoPosition p =
                i % 2 ? GeoPosition(lat(rng), 2 * lat(rng))
                      : GeoPosition(a.latitude + t * (b.latitude - a.latitude) + near(rng),
                                    a.longitude + t * (b.longitude - a.longitude) + near(rng));
            const double expected = strategy.apply(p, a, b);
            if (!std::isnan(expected)) {
                ASSERT_EQ(segment.apply(p), expected) << a << b << p;
            }
        }
    }
}

} // namespace
