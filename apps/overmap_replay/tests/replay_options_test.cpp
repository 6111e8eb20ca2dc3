#include <overmap_replay/replay_options.h>

#include <gtest/gtest.h>

namespace {

using overmap_replay::parseArguments;
using overmap_replay::requestedTimes;

TEST(ReplayOptions, ReadsEveryOptionInBothForms)
{
    const auto parsed = parseArguments({"--setup", "s.xml", "--data", "a.csv", "--data=b.nmea", "--at", "1.5",
                                        "--at=0.25", "--from", "0", "--to=2", "--step", "0.5", "--kml",
                                        "k.kml", "--geojson", "g.json", "--out", "o.csv"});
    ASSERT_EQ(parsed.error, "");
    const auto& options = parsed.options;
    EXPECT_EQ(options.setup_path, "s.xml");
    EXPECT_EQ(options.data_paths, (std::vector<std::string>{"a.csv", "b.nmea"}));
    EXPECT_EQ(options.at_times, (std::vector<double>{1.5, 0.25}));
    EXPECT_EQ(options.kml_path, "k.kml");
    EXPECT_EQ(options.geojson_path, "g.json");
    EXPECT_EQ(options.out_path, "o.csv");
    std::string error;
    EXPECT_EQ(requestedTimes(options, 100.0, error), (std::vector<double>{0.0, 0.25, 0.5, 1.0, 1.5, 2.0}));
    EXPECT_EQ(error, "");
}

TEST(ReplayOptions, RefusesWhatMakesNoSense)
{
    EXPECT_EQ(parseArguments({"--data"}).error, "--data needs a value");
    EXPECT_EQ(parseArguments({"--data", "a", "--from", "1e999"}).error,
              "--from needs a number of seconds, not \"1e999\"");
    EXPECT_EQ(parseArguments({"--data", "a", "--at", "2s"}).error,
              "--at needs a number of seconds, not \"2s\"");
    EXPECT_EQ(parseArguments({"a.csv"}).error, "unknown argument \"a.csv\" (see --help)");
    EXPECT_EQ(parseArguments({}).error, "no recording given (--data FILE)");
    EXPECT_TRUE(parseArguments({"--help"}).options.help);
}

TEST(ReplayOptions, TimesCountStepsWithoutDriftAndStayWithinBounds)
{
    overmap_replay::ReplayOptions options;
    std::string error;
    options.from = 0.0;
    options.to = 1.0;
    options.step = 0.1;
    const auto times = requestedTimes(options, 0.0, error);
    ASSERT_EQ(times.size(), 11u) << "the end is kept although ten steps of 0.1 sum past 1.0";
    EXPECT_DOUBLE_EQ(times.back(), 1.0);

    options.step = 0.0;
    EXPECT_TRUE(requestedTimes(options, 0.0, error).empty());
    EXPECT_EQ(error, "--step must be above 0");
    options.step = 1.0;
    options.to = -1.0;
    EXPECT_TRUE(requestedTimes(options, 0.0, error).empty());
    EXPECT_EQ(error, "--to lies before --from");
    options.to = 1e9;
    EXPECT_TRUE(requestedTimes(options, 0.0, error, 1000).empty());
    EXPECT_EQ(error, "too many replay times (at most 1000)");

    error.clear();
    overmap_replay::ReplayOptions none;
    EXPECT_EQ(requestedTimes(none, 2.5, error), (std::vector<double>{0.0, 1.0, 2.0}))
        << "without times the whole replay in seconds";
}

TEST(ReplayOptions, PictureOptionsAndTheirSize)
{
    const auto parsed =
        parseArguments({"--data", "a.csv", "--png", "v.png", "--png-at=12.5", "--png-size", "1200x750"});
    ASSERT_EQ(parsed.error, "");
    EXPECT_EQ(parsed.options.png_path, "v.png");
    EXPECT_EQ(parsed.options.png_at, 12.5);
    EXPECT_EQ(parsed.options.png_width, 1200);
    EXPECT_EQ(parsed.options.png_height, 750);

    const auto defaults = parseArguments({"--data", "a.csv", "--png", "v.png"}).options;
    EXPECT_EQ(defaults.png_width, 1600);
    EXPECT_EQ(defaults.png_height, 1000);
    EXPECT_FALSE(defaults.png_at);

    EXPECT_EQ(parseArguments({"--data", "a", "--png", "v.png", "--png-size", "big"}).error,
              "--png-size needs WIDTHxHEIGHT in pixels, each 16 to 8192, not \"big\"");
    EXPECT_EQ(parseArguments({"--data", "a", "--png", "v.png", "--png-at", "soon"}).error,
              "--png-at needs a number of seconds, not \"soon\"");
    EXPECT_EQ(parseArguments({"--data", "a", "--png-size", "100x100"}).error,
              "--png-at and --png-size go with --png FILE");
}

TEST(ReplayOptions, PictureSizeText)
{
    int width = 1;
    int height = 2;
    EXPECT_TRUE(overmap_replay::parsePictureSize("16X8192", width, height));
    EXPECT_EQ(width, 16);
    EXPECT_EQ(height, 8192);
    for (const char* bad : {"", "x", "100", "100x", "x100", "15x100", "100x8193", "-50x100", "+50x100",
                            "100x100x3", "1e3x100", " 100x100", "100 x100", "99999999999x100"}) {
        EXPECT_FALSE(overmap_replay::parsePictureSize(bad, width, height)) << '"' << bad << '"';
        EXPECT_EQ(width, 16) << "untouched by a refused text";
        EXPECT_EQ(height, 8192);
    }
}

} // namespace
