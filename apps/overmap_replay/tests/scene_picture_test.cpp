#include <overmap_replay/replay_scene.h>
#include <overmap_replay/replay_tool.h>
#include <overmap_replay/scene_picture.h>

#include <gtest/gtest.h>

#include <QImage>

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

} // namespace
