#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>
#include <overmap_replay/replay_scene.h>
#include <overmap_replay/replay_tool.h>
#include <overmap_replay/scene_picture.h>

#include <om_model/calculation.h>
#include <om_model/object_manager.h>

#include <gtest/gtest.h>

#include <QImage>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

const std::string EXAMPLES = LUMERO_EXAMPLES_DIR;

std::vector<std::string> exampleArguments()
{
    return {"--setup", EXAMPLES + "/setups/proving_ground.xml",
            "--data",  EXAMPLES + "/recordings/car1_drive_100hz.csv",
            "--data",  EXAMPLES + "/recordings/car2_drive_100hz.csv",
            "--from",  "0",
            "--to",    "120",
            "--step",  "5"};
}

struct RunResult
{
    int code;
    std::string out;
    std::string err;
};

RunResult run(std::vector<std::string> args)
{
    std::ostringstream out;
    std::ostringstream err;
    const int code = overmap_replay::runReplay(args, out, err);
    return {code, out.str(), err.str()};
}

std::string tempPath(const std::string& name)
{
    const std::string path = ::testing::TempDir() + "overmap_replay_" + name;
    std::remove(path.c_str());
    return path;
}

TEST(PictureOption, WritesAPngOfTheRequestedSizeAtTheRequestedTime)
{
    const std::string early = tempPath("early.png");
    const std::string late = tempPath("late.png");
    auto args = exampleArguments();
    args.insert(args.end(), {"--png", early, "--png-size", "320x200", "--png-at", "20"});
    const RunResult first = run(args);
    ASSERT_EQ(first.code, overmap_replay::EXIT_OK) << first.err;
    EXPECT_NE(first.out.find("\n120,1,Car 1,"), std::string::npos) << "the rows still go out";

    args = exampleArguments();
    args.insert(args.end(), {"--png=" + late, "--png-size=320x200"});
    ASSERT_EQ(run(args).code, overmap_replay::EXIT_OK);

    const QImage early_image(QString::fromStdString(early));
    const QImage late_image(QString::fromStdString(late));
    ASSERT_FALSE(early_image.isNull());
    EXPECT_EQ(early_image.size(), QSize(320, 200));
    EXPECT_EQ(late_image.size(), QSize(320, 200));
    EXPECT_NE(early_image, late_image) << "the cars have moved between 20 s and the last time, 120 s";
}

TEST(PictureOption, BadSizeAndUnwritableFileAreOneLineErrors)
{
    auto args = exampleArguments();
    args.insert(args.end(), {"--png", tempPath("never.png"), "--png-size", "12x"});
    RunResult result = run(args);
    EXPECT_EQ(result.code, overmap_replay::EXIT_USAGE);
    EXPECT_EQ(result.err,
              "overmap-replay: --png-size needs WIDTHxHEIGHT in pixels, each 16 to 8192, not \"12x\"\n");

    const std::string csv = tempPath("rows.csv");
    args = exampleArguments();
    args.insert(args.end(), {"--png", "/no/such/folder/view.png", "--out", csv});
    result = run(args);
    EXPECT_EQ(result.code, overmap_replay::EXIT_FAILED);
    EXPECT_EQ(result.err, "overmap-replay: /no/such/folder/view.png: cannot write the PNG file\n");
    EXPECT_EQ(std::fopen(csv.c_str(), "r"), nullptr) << "no rows behind a failed run";

    args = exampleArguments();
    args.insert(args.end(), {"--png-at", "3"});
    result = run(args);
    EXPECT_EQ(result.code, overmap_replay::EXIT_USAGE);
    EXPECT_EQ(result.err, "overmap-replay: --png-at and --png-size go with --png FILE\n");
}

TEST(PictureOption, TheBinaryDrawsWithoutADisplayOfItsOwnAccord)
{
    // No platform named: the tool picks the offscreen one by itself.
    const std::string png = tempPath("binary.png");
    std::string command = "env -u QT_QPA_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY '" OVERMAP_REPLAY_BINARY "'";
    for (const std::string& arg : exampleArguments())
        command += " '" + arg + "'";
    command += " --png '" + png + "' --png-size 300x240 --png-at 60 >/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const QImage image(QString::fromStdString(png));
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), QSize(300, 240));
}

TEST(DrivenPaths, HoldTheValidRowsOfMovingObjectsInTimeOrder)
{
    overmap_replay::ReplayResult result;
    result.paths.push_back({7, "car", {}});
    result.rows = {{0.0, 7, "car", 48.0, 11.0, 0.0, 0.0, 0.0, true},
                   {0.0, 9, "cone", 48.1, 11.1, 0.0, 0.0, 0.0, true},
                   {1.0, 7, "car", 48.2, 11.2, 0.0, 0.0, 0.0, false},
                   {2.0, 7, "car", 48.3, 11.3, 0.0, 0.0, 0.0, true}};
    const auto paths = overmap_replay::drivenPaths(result);
    ASSERT_EQ(paths.size(), 1u) << "the cone does not move";
    EXPECT_EQ(paths[0].object_id, 7);
    EXPECT_EQ(paths[0].times, (std::vector<double>{0.0, 2.0})) << "the row without a place is left out";
    ASSERT_EQ(paths[0].positions.size(), 2u);
    EXPECT_DOUBLE_EQ(paths[0].positions[1].latitude, 48.3);
    EXPECT_DOUBLE_EQ(paths[0].positions[1].longitude, 11.3);
}

/// The example drives loaded, with either the example setup or the default scene.
struct LoadedScene
{
    overmap_replay::LoadedRecordings recordings;
    std::unique_ptr<overmap_replay::ChannelListFetcher> fetcher;
    overmap_replay::SetupResult scene;
};

std::unique_ptr<LoadedScene> loadExample(bool with_setup)
{
    auto loaded = std::make_unique<LoadedScene>();
    loaded->recordings = overmap_replay::loadRecordings(
        {EXAMPLES + "/recordings/car1_drive_100hz.csv", EXAMPLES + "/recordings/car2_drive_100hz.csv"});
    loaded->fetcher = std::make_unique<overmap_replay::ChannelListFetcher>(*loaded->recordings.manager);
    loaded->scene = with_setup
                        ? overmap_replay::loadSetup(EXAMPLES + "/setups/proving_ground.xml", *loaded->fetcher)
                        : overmap_replay::defaultScene(loaded->recordings, *loaded->fetcher);
    return loaded;
}

TEST(PlaceScene, BringsObjectsToTheTimeAndNamesThoseWithoutAPlace)
{
    auto loaded = loadExample(true);
    ASSERT_TRUE(loaded->scene) << loaded->scene.error;
    overmap::ObjectManager& manager = *loaded->scene.manager;
    const auto replay = overmap_replay::replayScene(manager, {0.0, 60.0, 120.0});

    // The replay left everything at 120 s; the picture wants 60 s.
    EXPECT_EQ(overmap_replay::placeScene(manager, 60.0), std::set<std::int32_t>{});
    for (const auto& row : replay.rows) {
        if (row.time != 60.0 || row.object_id > 2)
            continue;
        const auto car = manager.findPositionObjectById(row.object_id);
        EXPECT_DOUBLE_EQ(car->getGeoPosition().latitude, row.latitude) << row.name;
        EXPECT_DOUBLE_EQ(car->getGeoPosition().longitude, row.longitude) << row.name;
    }
    // Car 2's recording has no fix at 0 s (its first row is not valid either).
    EXPECT_EQ(overmap_replay::placeScene(manager, 0.0), std::set<std::int32_t>{2});
}

TEST(DefaultScene, CarsFaceWhereTheRecordingHeadsInColoursOfTheirOwn)
{
    auto loaded = loadExample(false);
    ASSERT_TRUE(loaded->scene) << loaded->scene.error;
    overmap::ObjectManager& manager = *loaded->scene.manager;
    overmap_replay::placeScene(manager, 40.0);
    const auto car = manager.findPositionObjectById(1);
    ASSERT_NE(car, nullptr);
    ASSERT_NEAR(car->getHeading(), 138.5, 0.1) << "south-east, round the top of the loop";

    // From the reference point to the middle of the nose, in the picture frame.
    overmap::Calculation nose;
    nose.setFrom(car);
    nose.setFromPoiIdx(0);
    nose.setTo(car);
    nose.setToPoiIdx(2);
    overmap_replay::ScenePainter painter(manager);
    painter.setCalculationValues({{nose.getId(), 2.0}});
    QPointF from, to;
    ASSERT_TRUE(painter.calculationLine(nose, from, to));
    const QPointF ahead = to - from;
    const double bearing = std::atan2(ahead.x(), ahead.y()) * 180.0 / M_PI;
    EXPECT_NEAR(bearing, 138.5, 0.5) << "clockwise from north, as the recording counts";

    EXPECT_NE(manager.findObjectById(1)->getColor(), manager.findObjectById(2)->getColor());
}

} // namespace
