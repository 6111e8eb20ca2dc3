#include <lum_import/importers.h>

#include <gtest/gtest.h>

#include <cstdint>

#include <cmath>

namespace {

using lum::import::importCsvText;

TEST(CsvImport, ReadsChannelsUnitsAndRelativeTimes)
{
    const auto r = importCsvText("# start_time=2024-05-01T10:00:00Z\n"
                                 "time [s],latitude [deg],speed (km/h),note\n"
                                 "10.00,48.1,0.5,1\n"
                                 "10.01,48.2,,2\r\n"
                                 "10.02,48.3,1.5,3\n");
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    ASSERT_EQ(rec.channels.size(), 3u);
    EXPECT_EQ(rec.channels[0].name, "latitude");
    EXPECT_EQ(rec.channels[0].unit, "deg");
    EXPECT_EQ(rec.channels[1].name, "speed");
    EXPECT_EQ(rec.channels[1].unit, "km/h");
    EXPECT_EQ(rec.channels[2].unit, "");
    EXPECT_EQ(rec.channels[0].times, (std::vector<double>{0.0, 10.01 - 10.0, 10.02 - 10.0}));
    EXPECT_EQ(rec.channels[0].values, (std::vector<double>{48.1, 48.2, 48.3}));
    // An empty cell is no sample, not a zero.
    EXPECT_EQ(rec.channels[1].values, (std::vector<double>{0.5, 1.5}));
    EXPECT_EQ(rec.channels[1].times.size(), 2u);
    EXPECT_TRUE(rec.start_time_utc);
    EXPECT_DOUBLE_EQ(rec.start_time, 1714557600.0 + 10.0) << "time 0 is the first sample";
    EXPECT_EQ(rec.bad_lines, 0u);
    EXPECT_EQ(rec.lines, 3u);
}

TEST(CsvImport, SemicolonSeparatorTakesDecimalComma)
{
    const auto r = importCsvText("t;a;b\n0,0;1,5;-2\n0,5;2,25;3e2\n");
    ASSERT_TRUE(r) << r.error;
    EXPECT_EQ(r.recording.channels[0].values, (std::vector<double>{1.5, 2.25}));
    EXPECT_EQ(r.recording.channels[1].values, (std::vector<double>{-2.0, 300.0}));
    EXPECT_EQ(r.recording.channels[0].times, (std::vector<double>{0.0, 0.5}));
    EXPECT_TRUE(std::isnan(r.recording.start_time)) << "a plain CSV has no absolute time";
}

TEST(CsvImport, BadRowsAreSkippedCountedAndTheFirstNamed)
{
    const auto r = importCsvText("time,x,y\n"
                                 "0,1,2\n"
                                 "0.1,1\n"     // line 3: truncated
                                 "0.2,abc,2\n" // line 4: not a number
                                 "0,5,5\n"     // line 5: time repeated
                                 "0.3,3,4,9\n" // line 6: one field too many
                                 "\n"          // blank: ignored
                                 "0.4,4,5\n"
                                 "x,1,1\n"); // line 9: bad time
    ASSERT_TRUE(r) << r.error;
    const auto& rec = r.recording;
    EXPECT_EQ(rec.bad_lines, 5u);
    EXPECT_EQ(rec.first_bad_line, 3u);
    EXPECT_EQ(rec.channels[0].values, (std::vector<double>{1.0, 4.0})) << "no half row is taken";
    EXPECT_EQ(rec.channels[1].values, (std::vector<double>{2.0, 5.0}));
}

TEST(CsvImport, FilesThatYieldNothingAreErrors)
{
    struct Case
    {
        const char* text;
        const char* says;
    };
    const Case cases[] = {
        {"", "no CSV header"},
        {"# only a comment\n\n", "no CSV header"},
        {"time\n0\n1\n", "at least one channel column"},
        {"time,x\n", "no samples"},
        {"time,x\nfoo,bar\n", "first at line 2"},
    };
    for (const Case& c : cases) {
        const auto r = importCsvText(c.text, "in.csv");
        EXPECT_FALSE(r) << c.text;
        EXPECT_NE(r.error.find(c.says), std::string::npos) << r.error;
        EXPECT_EQ(r.error.rfind("in.csv: ", 0), 0u) << "the error names the file: " << r.error;
    }
}

TEST(CsvImport, MissingFileIsAClearError)
{
    const auto r = lum::import::importCsv("/nonexistent/drive.csv");
    EXPECT_FALSE(r);
    EXPECT_NE(r.error.find("/nonexistent/drive.csv: cannot open"), std::string::npos) << r.error;
}

TEST(IsoTime, ParsesZonesFractionsAndRejectsJunk)
{
    double s = 0.0;
    bool utc = false;
    ASSERT_TRUE(lum::import::parseIsoTime("1970-01-01T00:00:00Z", s, utc));
    EXPECT_EQ(s, 0.0);
    EXPECT_TRUE(utc);
    ASSERT_TRUE(lum::import::parseIsoTime("2009-03-02T14:05:52Z", s, utc));
    EXPECT_EQ(s, 1236002752.0);
    ASSERT_TRUE(lum::import::parseIsoTime("2009-03-02T15:05:52.25+01:00", s, utc));
    EXPECT_EQ(s, 1236002752.25);
    ASSERT_TRUE(lum::import::parseIsoTime("2013-01-01T12:00:00", s, utc));
    EXPECT_FALSE(utc) << "no zone given";
    for (const char* bad : {"", "2013-01-01", "2013-13-01T00:00:00Z", "2013-01-01T25:00:00Z",
                            "2013-01-01T00:00:00Q", "2013-01-01T00:00:00.Z", "2013-01-01T00:00:00+1"})
        EXPECT_FALSE(lum::import::parseIsoTime(bad, s, utc)) << bad;
}

struct SplitTimeRow
{
    const char* name;
    const char* text;
    std::int64_t whole;
    double fraction;
};

class IsoTimeSplit : public ::testing::TestWithParam<SplitTimeRow>
{};

// The fraction is the nearest double to its digits, whatever the seconds before it.
TEST_P(IsoTimeSplit, KeepsWholeSecondsAndTheFractionApart)
{
    std::int64_t whole = 0;
    double fraction = -1.0;
    bool utc = false;
    ASSERT_TRUE(lum::import::parseIsoTime(GetParam().text, whole, fraction, utc));
    EXPECT_EQ(whole, GetParam().whole);
    EXPECT_EQ(fraction, GetParam().fraction);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IsoTimeSplit,
    ::testing::Values(SplitTimeRow{"NoFraction", "2009-03-02T14:05:52Z", 1236002752, 0.0},
                      SplitTimeRow{"Tenths", "2009-03-02T14:05:52.3Z", 1236002752, 0.3},
                      SplitTimeRow{"TenthsWithTrailingZeros", "2009-03-02T14:05:52.700Z", 1236002752, 0.7},
                      SplitTimeRow{"CommaAndZone", "2009-03-02T15:05:52,25+01:00", 1236002752, 0.25},
                      SplitTimeRow{"PastDoublePrecision", "2023-05-01T10:00:00.1000000000000000000001Z",
                                   1682935200, 0.1}),
    [](const ::testing::TestParamInfo<SplitTimeRow>& info) { return info.param.name; });

} // namespace
