#include <lum_import/importers.h>

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using lum::import::importGpx;
using lum::import::importGpxText;

std::string realFile(const char* name)
{
    return std::string(LUMERO_REALDATA_DIR "/gpx/") + name;
}

TEST(GpxImport, HeadingIsBearingBetweenPointsSpeedFromFileOrDistance)
{
    const auto r = importGpxText(R"(<?xml version="1.0"?>
<gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>
 <trkpt lat="0.0" lon="0.0"><ele>5</ele><time>2020-01-01T00:00:00Z</time></trkpt>
 <trkpt lat="0.0" lon="0.001"><time>2020-01-01T00:00:10Z</time></trkpt>
 <trkpt lat="0.001" lon="0.001"><ele>7</ele><time>2020-01-01T00:00:20Z</time></trkpt>
</trkseg></trk></gpx>)");
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    EXPECT_EQ(rec.channel("latitude")->times, (std::vector<double>{0.0, 10.0, 20.0}));
    EXPECT_EQ(rec.channel("altitude")->times, (std::vector<double>{0.0, 20.0})) << "missing ele is a gap";
    const auto* heading = rec.channel("heading");
    ASSERT_EQ(heading->values.size(), 3u);
    EXPECT_NEAR(heading->values[0], 90.0, 1e-9) << "first point takes the first leg's bearing";
    EXPECT_NEAR(heading->values[1], 90.0, 1e-9);
    EXPECT_NEAR(heading->values[2], 0.0, 1e-6);
    double s12 = 0.0;
    GeographicLib::Geodesic::WGS84().Inverse(0.0, 0.0, 0.0, 0.001, s12);
    EXPECT_NEAR(rec.channel("speed")->values.at(0), s12 / 10.0 * 3.6, 1e-9);
    EXPECT_DOUBLE_EQ(rec.start_time, 1577836800.0);
    EXPECT_TRUE(rec.start_time_utc);
}

TEST(GpxImport, TenHertzFixesStayEvenlySpacedAcrossSecondsFromAnyFraction)
{
    std::string text = "<gpx><trk><trkseg>";
    for (int i = 0; i < 40; ++i) {
        const int tenths = 7 + i; // from 10:00:00.7 over four second boundaries
        text += "<trkpt lat=\"48.1\" lon=\"" + std::to_string(11.0 + 1e-5 * i) +
                "\"><time>2023-05-01T10:00:0" + std::to_string(tenths / 10) + "." +
                std::to_string(tenths % 10) + "Z</time></trkpt>";
    }
    text += "</trkseg></trk></gpx>";
    const auto r = importGpxText(text);
    ASSERT_TRUE(r) << r.error;
    const std::vector<double>& times = r.recording.channel("latitude")->times;
    ASSERT_EQ(times.size(), 40u);
    for (std::size_t i = 0; i < times.size(); ++i)
        EXPECT_NEAR(times[i], 0.1 * static_cast<double>(i), 1e-14) << "fix " << i;
    EXPECT_DOUBLE_EQ(r.recording.start_time, 1682935200.7);
}

TEST(GpxImport, APointsFirstTimeElevationAndSpeedCountInAnyOrderAndPrefix)
{
    const auto r = importGpxText(R"(<gpx xmlns:g="urn:g"><trk><trkseg>
 <trkpt lat="1" lon="2"><!-- fix --><g:speed>2</g:speed><ele>5</ele><ele>9</ele>
  <g:time>2020-01-01T00:00:00Z</g:time><time>2021-01-01T00:00:00Z</time><speed>4</speed></trkpt>
 <trkpt lat="1" lon="2.001"><time>2020-01-01T00:00:01Z</time><ele>6</ele></trkpt>
</trkseg></trk></gpx>)");
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    EXPECT_EQ(rec.channel("latitude")->times, (std::vector<double>{0.0, 1.0}));
    EXPECT_EQ(rec.channel("altitude")->values, (std::vector<double>{5.0, 6.0}));
    EXPECT_DOUBLE_EQ(rec.channel("speed")->values.at(0), 7.2) << "2 m/s from the first speed";
    EXPECT_DOUBLE_EQ(rec.start_time, 1577836800.0);
}

TEST(GpxImport, BrokenAndUnreplayableFilesAreRefusedWithAReason)
{
    struct Case
    {
        const char* text;
        const char* says;
    };
    const Case cases[] = {
        {"<gpx><trk><trkseg>", "not readable as XML"},
        {"<kml/>", "not a GPX document"},
        {"<gpx><wpt lat='1' lon='2'><time>2020-01-01T00:00:00Z</time></wpt></gpx>", "no track points"},
        {"<gpx><trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='1' lon='3'/></trkseg></trk></gpx>",
         "no times (2 points): it cannot be replayed"},
        {"<gpx><trk><trkseg><trkpt lat='91' "
         "lon='2'><time>2020-01-01T00:00:00Z</time></trkpt></trkseg></trk></gpx>",
         "no usable track point"},
    };
    for (const Case& c : cases) {
        const auto r = importGpxText(c.text, "t.gpx");
        EXPECT_FALSE(r) << c.text;
        EXPECT_NE(r.error.find(c.says), std::string::npos) << r.error;
    }
}

TEST(GpxImport, RealCarDriveGpx11)
{
    const auto r = importGpx(realFile("around-visnjan-with-car.gpx"));
    ASSERT_TRUE(r) << r.error;
    EXPECT_EQ(r.recording.channel("latitude")->values.size(), 104u);
    EXPECT_EQ(r.recording.bad_lines, 0u);
    EXPECT_NEAR(r.recording.channel("latitude")->values.front(), 45.2735188510, 1e-12);
    EXPECT_DOUBLE_EQ(r.recording.start_time, 1608272150.0); // 2020-12-18T06:15:50Z
}

TEST(GpxImport, RealGpx10SpeedElementIsUsed)
{
    const auto r = importGpx(realFile("track_with_speed.gpx"));
    ASSERT_TRUE(r) << r.error;
    const auto* speed = r.recording.channel("speed");
    ASSERT_EQ(speed->values.size(), 3u);
    EXPECT_DOUBLE_EQ(speed->values[0], 1.2 * 3.6);
    EXPECT_DOUBLE_EQ(speed->values[2], 3.2 * 3.6);
    EXPECT_EQ(r.recording.channel("latitude")->times, (std::vector<double>{0.0, 6.0, 13.0}));
}

TEST(GpxImport, EveryRealFileImportsOrIsRefusedWithAReason)
{
    const char* const importable[] = {"Mojstrovka.gpx", "korita-zbevnica.gpx", "gpx1.1_with_all_fields.gpx",
                                      "track-with-empty-segment.gpx"};
    for (const char* name : importable) {
        const auto r = importGpx(realFile(name));
        EXPECT_TRUE(r) << name << ": " << r.error;
        if (r) {
            EXPECT_FALSE(r.recording.channel("latitude")->values.empty()) << name;
        }
    }
    const auto korita = importGpx(realFile("korita-zbevnica.gpx"));
    EXPECT_GT(korita.recording.bad_lines, 0u) << "points without a time are skipped and counted";

    const auto waypoints_only = importGpx(realFile("unicode_with_bom.gpx"));
    EXPECT_FALSE(waypoints_only);
    EXPECT_NE(waypoints_only.error.find("no track points"), std::string::npos) << waypoints_only.error;
}

TEST(ImportRecording, PicksTheReaderByExtension)
{
    EXPECT_EQ(lum::import::importRecording(realFile("Mojstrovka.gpx")).recording.format, "GPX");
    EXPECT_EQ(lum::import::importRecording(LUMERO_REALDATA_DIR "/nmea/trimble_r2_rtk.nmea").recording.format,
              "NMEA 0183");
}

} // namespace
