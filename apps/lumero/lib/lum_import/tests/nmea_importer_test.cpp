#include <lum_import/importers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using lum::import::importNmeaText;

// Appends the checksum an NMEA sentence needs.
std::string sentence(const std::string& body)
{
    unsigned sum = 0;
    for (char c : body)
        sum ^= static_cast<unsigned char>(c);
    char tail[8];
    std::snprintf(tail, sizeof tail, "*%02X", sum);
    return "$" + body + tail + "\r\n";
}

const std::vector<std::string> CHANNELS = {"latitude", "longitude",   "altitude",   "heading",
                                           "speed",    "fix_quality", "satellites", "hdop"};

TEST(NmeaImport, ChannelsInOrderWithValuesFromRmcGgaVtg)
{
    const std::string log = sentence("GPRMC,120000.00,A,4807.038,N,01131.000,E,10.0,084.4,230394,003.1,W") +
                            sentence("GPGGA,120000.00,4807.0381,N,01131.0001,E,2,08,0.9,545.4,M,46.9,M,,") +
                            sentence("GPGSV,1,1,00") + sentence("PGRME,15.0,M,45.0,M,25.0,M") +
                            sentence("GPVTG,090.0,T,,M,5.0,N,9.26,K") +
                            sentence("GPVTG,091.0,T,,M,5.0,N,9.26,K"); // no epoch of its own: same epoch
    const auto r = importNmeaText(log);
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    ASSERT_EQ(rec.channels.size(), CHANNELS.size());
    for (std::size_t i = 0; i < CHANNELS.size(); ++i)
        EXPECT_EQ(rec.channels[i].name, CHANNELS[i]);
    auto value = [&](const char* name) { return rec.channel(name)->values.at(0); };
    EXPECT_DOUBLE_EQ(value("latitude"), 48.0 + 7.0381 / 60.0) << "GGA gives the position";
    EXPECT_DOUBLE_EQ(value("longitude"), 11.0 + 31.0001 / 60.0);
    EXPECT_DOUBLE_EQ(value("altitude"), 545.4);
    EXPECT_DOUBLE_EQ(value("heading"), 84.4) << "RMC's course over ground wins over VTG";
    EXPECT_DOUBLE_EQ(value("speed"), 18.52) << "knots to km/h";
    EXPECT_EQ(value("fix_quality"), 2.0);
    EXPECT_EQ(value("satellites"), 8.0);
    EXPECT_DOUBLE_EQ(value("hdop"), 0.9);
    EXPECT_TRUE(rec.start_time_utc);
    EXPECT_DOUBLE_EQ(rec.start_time, 764424000.0); // 1994-03-23T12:00:00Z
    EXPECT_EQ(rec.bad_lines, 0u);
}

TEST(NmeaImport, BadChecksumsAndDamagedLinesAreCounted)
{
    std::string good = sentence("GPGGA,000001,0100.000,S,00200.000,W,1,05,1.0,10.0,M,,M,,");
    std::string damaged = good;
    damaged[20] = '9';                           // checksum no longer matches
    const std::string log = "startup banner\n" + // line 1: ignored
                            sentence("GPRMC,000000,A,0100.000,S,00200.000,W,0,0,010100,,") + // 2
                            damaged +                                                        // 3: bad
                            "$GPGGA,000002,0100.000,S,00200.000,W,1,05\r\n" +                // 4: truncated
                            "xx$GPGGA,garbled\n" +                                           // 5: bad
                            good;                                                            // 6
    const auto r = importNmeaText(log);
    ASSERT_TRUE(r) << r.error;
    EXPECT_EQ(r.recording.bad_lines, 3u);
    EXPECT_EQ(r.recording.first_bad_line, 3u);
    const auto* lat = r.recording.channel("latitude");
    EXPECT_EQ(lat->times, (std::vector<double>{0.0, 1.0}));
    EXPECT_DOUBLE_EQ(lat->values[0], -(1.0));
    EXPECT_DOUBLE_EQ(r.recording.channel("longitude")->values[0], -2.0);
}

TEST(NmeaImport, PastMidnightTimeCountsForwardAndGapsStay)
{
    const std::string log =
        sentence("GPGGA,235958,0000.000,N,00000.000,E,1,05,1.0,1,M,,M,,") + // before any date
        sentence("GPRMC,235959,A,0000.000,N,00000.000,E,0,0,311299,,") +
        sentence("GPGGA,000001,0000.000,N,00000.000,E,1,05,1.0,1,M,,M,,") + // next day
        sentence("GPGGA,000101,0000.000,N,00000.000,E,1,05,1.0,1,M,,M,,");  // 60 s gap
    const auto r = importNmeaText(log);
    ASSERT_TRUE(r) << r.error;
    EXPECT_EQ(r.recording.channel("latitude")->times, (std::vector<double>{0.0, 1.0, 3.0, 63.0}));
    EXPECT_DOUBLE_EQ(r.recording.start_time, 946684798.0); // 1999-12-31T23:59:58Z
}

TEST(NmeaImport, NoFixGivesNoPositionButKeepsQuality)
{
    const std::string log = sentence("GPRMC,100000,V,,,,,,,150620,,") +
                            sentence("GPGGA,100000,,,,,0,00,99.9,,M,,M,,") +
                            sentence("GPGGA,100001,5000.000,N,00800.000,E,1,04,2.0,100,M,,M,,");
    const auto r = importNmeaText(log);
    ASSERT_TRUE(r) << r.error;
    EXPECT_EQ(r.recording.channel("latitude")->times, (std::vector<double>{1.0}));
    EXPECT_EQ(r.recording.channel("fix_quality")->values, (std::vector<double>{0.0, 1.0}));
}

TEST(NmeaImport, NothingUsableIsAnError)
{
    const auto r = importNmeaText("hello\n" + sentence("GPGSV,1,1,00"), "empty.nmea");
    EXPECT_FALSE(r);
    EXPECT_NE(r.error.find("empty.nmea: no samples"), std::string::npos) << r.error;
}

TEST(NmeaImport, RealGarminDriveAcrossMidnightWithGaps)
{
    const auto r = lum::import::importNmea(LUMERO_REALDATA_DIR "/nmea/garmin_drive_2005.nmea");
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    const auto* lat = rec.channel("latitude");
    ASSERT_GT(lat->times.size(), 4000u);
    EXPECT_EQ(rec.bad_lines, 0u);
    EXPECT_DOUBLE_EQ(rec.start_time, 1127692354.0); // 2005-09-25T23:52:34Z
    EXPECT_DOUBLE_EQ(lat->times.back(), 3 * 3600.0 + 3 * 60.0 + 58.0) << "02:56:32 next day";
    EXPECT_NEAR(lat->values.front(), 39.0 + 25.9702 / 60.0, 1e-12);
    EXPECT_NEAR(rec.channel("longitude")->values.front(), -(119.0 + 45.9354 / 60.0), 1e-12);
    // The receiver was off from 01:27:40 to 01:48:30: that stays a gap.
    double widest = 0.0;
    for (std::size_t i = 1; i < lat->times.size(); ++i)
        widest = std::max(widest, lat->times[i] - lat->times[i - 1]);
    EXPECT_DOUBLE_EQ(widest, 6510.0 - 5260.0);
}

TEST(NmeaImport, RealTrimbleRtkLog)
{
    const auto r = lum::import::importNmea(LUMERO_REALDATA_DIR "/nmea/trimble_r2_rtk.nmea");
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    EXPECT_EQ(rec.channel("latitude")->times.size(), 34u);
    EXPECT_EQ(rec.channel("fix_quality")->values.front(), 5.0) << "RTK float";
    EXPECT_NEAR(rec.channel("latitude")->values.front(), 34.0 + 3.47162394 / 60.0, 1e-12);
    EXPECT_DOUBLE_EQ(rec.start_time, 1513814207.0); // 2017-12-20T23:56:47Z
    EXPECT_DOUBLE_EQ(rec.channel("latitude")->times.back(), 33.0);
}

} // namespace
