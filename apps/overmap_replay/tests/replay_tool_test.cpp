#include <overmap_replay/replay_inputs.h>
#include <overmap_replay/replay_scene.h>
#include <overmap_replay/replay_tool.h>

#include <math_geo/kml_reader.h>

#include <GeographicLib/Geodesic.hpp>

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

const std::string RECORDINGS = LUMERO_EXAMPLES_DIR "/recordings/";

/// A bundled CSV read without the importer: time, latitude, longitude, heading per row.
struct PlainRow
{
    double time, latitude, longitude, heading;
};

std::vector<PlainRow> readPlainCsv(const std::string& path)
{
    std::ifstream in(path);
    std::vector<PlainRow> rows;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#' || line[0] == 't')
            continue;
        PlainRow row{};
        if (std::sscanf(line.c_str(), "%lf,%lf,%lf,%*f,%lf", &row.time, &row.latitude, &row.longitude,
                        &row.heading) == 4)
            rows.push_back(row);
    }
    return rows;
}

/// The last row at or before @p time; null before the first.
const PlainRow* rowAt(const std::vector<PlainRow>& rows, double time)
{
    const PlainRow* found = nullptr;
    for (const PlainRow& row : rows) {
        if (row.time > time)
            break;
        found = &row;
    }
    return found;
}

struct OutputRow
{
    double time;
    int id;
    std::string name;
    double latitude, longitude, heading, x, y;
    int valid;
    std::vector<std::string> calculations; ///< the fields after valid
};

std::vector<std::string> split(const std::string& line)
{
    std::vector<std::string> fields(1);
    for (char c : line) {
        if (c == ',')
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

/// The rows; @p calculations, if given, receives the names of the calculation columns.
std::vector<OutputRow> parseOutput(const std::string& text, std::vector<std::string>* calculations = nullptr)
{
    const std::string base = "time,object_id,name,latitude,longitude,heading,x,y,valid";
    std::istringstream in(text);
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line.substr(0, base.size()), base);
    const std::vector<std::string> header = split(line);
    if (calculations != nullptr)
        calculations->assign(header.begin() + std::min<std::size_t>(9, header.size()), header.end());
    std::vector<OutputRow> rows;
    while (std::getline(in, line)) {
        OutputRow row{};
        char name[128] = {};
        const int fields =
            std::sscanf(line.c_str(), "%lf,%d,%127[^,],%lf,%lf,%lf,%lf,%lf,%d", &row.time, &row.id, name,
                        &row.latitude, &row.longitude, &row.heading, &row.x, &row.y, &row.valid);
        EXPECT_EQ(fields, 9) << line;
        row.name = name;
        const std::vector<std::string> all = split(line);
        EXPECT_EQ(all.size(), header.size()) << line;
        row.calculations.assign(all.begin() + std::min<std::size_t>(9, all.size()), all.end());
        rows.push_back(row);
    }
    return rows;
}

struct ToolRun
{
    int code;
    std::string out;
    std::string err;
};

ToolRun runTool(const std::vector<std::string>& args)
{
    std::ostringstream out;
    std::ostringstream err;
    const int code = overmap_replay::runReplay(args, out, err);
    return {code, out.str(), err.str()};
}

std::string tempPath(const std::string& name)
{
    return ::testing::TempDir() + "overmap_replay_" + name;
}

TEST(ReplayTool, TwoCarsFollowTheirRecordingsAlignedByStartTime)
{
    const auto car1 = readPlainCsv(RECORDINGS + "car1_drive_100hz.csv");
    const auto car2 = readPlainCsv(RECORDINGS + "car2_drive_100hz.csv");
    ASSERT_GT(car1.size(), 1000u);
    ASSERT_GT(car2.size(), 1000u);
    // Both files count from the same start: car2's file times are replay times too.
    const ToolRun result =
        runTool({"--data", RECORDINGS + "car1_drive_100hz.csv", "--data", RECORDINGS + "car2_drive_100hz.csv",
                 "--at", "5.005", "--at", "12.345", "--from", "20.005", "--to", "170.005", "--step", "7.5"});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const auto rows = parseOutput(result.out);
    ASSERT_EQ(rows.size(), 2u * (2 + 21));

    const math_geo::GeoPosition center(car1.front().latitude, car1.front().longitude);
    for (const OutputRow& row : rows) {
        SCOPED_TRACE(row.name + " at " + std::to_string(row.time));
        ASSERT_TRUE(row.id == 1 || row.id == 2);
        EXPECT_EQ(row.name, row.id == 1 ? "car1_drive_100hz" : "car2_drive_100hz");
        const PlainRow* expected = rowAt(row.id == 1 ? car1 : car2, row.time);
        if (!expected) {
            EXPECT_EQ(row.valid, 0);
            continue;
        }
        EXPECT_EQ(row.valid, 1);
        EXPECT_NEAR(row.latitude, expected->latitude, 1e-9);
        EXPECT_NEAR(row.longitude, expected->longitude, 1e-9);
        EXPECT_NEAR(std::fmod(row.heading - expected->heading + 720.0, 360.0), 0.0, 1e-3);
        // The plane is centred on the first recorded position, x east and y north.
        const math_geo::GeoPosition position(expected->latitude, expected->longitude);
        const double distance = center.distanceTo(position, math_geo::DistanceMethod::GEODESIC);
        EXPECT_NEAR(std::hypot(row.x, row.y), distance, 0.01 * distance + 0.01);
        if (distance > 5.0) {
            const double bearing = std::atan2(row.x, row.y) * 180.0 / M_PI;
            const double difference = std::remainder(bearing - center.bearingTo(position), 360.0);
            EXPECT_NEAR(difference, 0.0, 0.5);
        }
    }
    EXPECT_EQ(rows[1].id, 2);
    EXPECT_EQ(rows[1].valid, 0) << "car2 starts 10 s after car1";
}

/// A point of a car's frame (x forward, y left, metres from its antenna) on the globe.
std::pair<double, double> carPoint(const PlainRow& antenna, double x, double y)
{
    double latitude = 0.0, longitude = 0.0;
    GeographicLib::Geodesic::WGS84().Direct(antenna.latitude, antenna.longitude,
                                            antenna.heading + std::atan2(-y, x) * 180.0 / M_PI,
                                            std::hypot(x, y), latitude, longitude);
    return {latitude, longitude};
}

TEST(ReplayTool, TheExampleSetupsCalculationsAreColumnsNamedByTheirResultChannels)
{
    const auto car1 = readPlainCsv(RECORDINGS + "car1_drive_100hz.csv");
    const auto car2 = readPlainCsv(RECORDINGS + "car2_drive_100hz.csv");
    const ToolRun result =
        runTool({"--setup", LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml", "--data",
                 RECORDINGS + "car1_drive_100hz.csv", "--data", RECORDINGS + "car2_drive_100hz.csv", "--at",
                 "20", "--at", "65", "--at", "200"});
    ASSERT_EQ(result.code, 0) << result.err;
    std::vector<std::string> names;
    const auto rows = parseOutput(result.out, &names);
    EXPECT_EQ(names,
              (std::vector<std::string>{"Gap car 1 front to car 2 front", "Car 1 lateral offset to loop",
                                        "Car 1 front left to loop edge", "Car 2 to hairpin",
                                        "Car 1 to first cone", "Base GPS to start straight"}));
    std::map<double, std::vector<std::string>> by_time;
    for (const OutputRow& row : rows) {
        SCOPED_TRACE(row.name + " at " + std::to_string(row.time));
        ASSERT_EQ(row.calculations.size(), 6u);
        EXPECT_EQ(row.calculations, by_time.emplace(row.time, row.calculations).first->second)
            << "the rows of a time share its values";
        if (row.time == 200.0) {
            // Car 1's recording has ended: no value for what it takes part in; car 2 drives on.
            EXPECT_EQ(row.calculations[0], "");
            EXPECT_EQ(row.calculations[4], "");
            EXPECT_NE(row.calculations[3], "");
            continue;
        }
        // Front (2.35, 0) of each car, whose antennas sit 0.45 m and 0.6 m behind it and
        // car 2's also 0.1 m to the left.
        const auto front1 = carPoint(*rowAt(car1, row.time), 2.35 + 0.45, 0.0);
        const auto front2 = carPoint(*rowAt(car2, row.time), 2.35 + 0.6, -0.1);
        double gap = 0.0;
        GeographicLib::Geodesic::WGS84().Inverse(front1.first, front1.second, front2.first, front2.second,
                                                 gap);
        EXPECT_NEAR(std::stod(row.calculations[0]), gap, 2e-3);
    }
}

TEST(ReplayTool, TheExampleSetupDrivesItsCarsFromBothRecordings)
{
    const auto car1 = readPlainCsv(RECORDINGS + "car1_drive_100hz.csv");
    const auto car2 = readPlainCsv(RECORDINGS + "car2_drive_100hz.csv");
    const ToolRun result =
        runTool({"--setup", LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml", "--data",
                 RECORDINGS + "car1_drive_100hz.csv", "--data", RECORDINGS + "car2_drive_100hz.csv", "--from",
                 "0.005", "--to", "150.005", "--step", "12.5"});
    ASSERT_EQ(result.code, 0) << result.err;
    const auto rows = parseOutput(result.out);
    std::map<int, int> rows_per_object;
    for (const OutputRow& row : rows) {
        ++rows_per_object[row.id];
        SCOPED_TRACE(row.name + " at " + std::to_string(row.time));
        if (row.id == 1 || row.id == 2) {
            EXPECT_EQ(row.name, row.id == 1 ? "Car 1" : "Car 2");
            const PlainRow* expected = rowAt(row.id == 1 ? car1 : car2, row.time);
            EXPECT_EQ(row.valid, expected ? 1 : 0);
            if (!expected)
                continue;
            // The channels place the antenna: the reported position is the recorded one.
            EXPECT_NEAR(row.latitude, expected->latitude, 1e-9);
            EXPECT_NEAR(row.longitude, expected->longitude, 1e-9);
            EXPECT_NEAR(std::fmod(row.heading - expected->heading + 720.0, 360.0), 0.0, 1e-3);
        } else if (row.id == 3) {
            EXPECT_EQ(row.name, "Base GPS");
            const PlainRow* expected = rowAt(car1, row.time);
            ASSERT_NE(expected, nullptr);
            EXPECT_NEAR(row.latitude, expected->latitude, 1e-9) << "the locator reads car1's channels";
        } else {
            EXPECT_EQ(row.valid, 1) << "fixed objects always stand somewhere";
        }
    }
    EXPECT_EQ(rows_per_object.size(), 16u) << "two cars, the locator and 13 cones";
    for (const auto& [id, count] : rows_per_object)
        EXPECT_EQ(count, 13) << id;
}

TEST(ReplayToolErrors, ASetupNamingChannelsTheRecordingsLackIsRefused)
{
    // Only car1 is given: the setup's car 2 channels (node 2) have nowhere to come from.
    const ToolRun result = runTool({"--setup", LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml", "--data",
                                    RECORDINGS + "car1_drive.gpx", "--at", "0"});
    EXPECT_EQ(result.code, overmap_replay::EXIT_FAILED);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(
        result.err.find("overmap-replay: " LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml: unknown channel"),
        std::string::npos)
        << result.err;
}

TEST(ReplayToolErrors, AFileThatIsNoSetupIsRefused)
{
    const ToolRun result = runTool(
        {"--setup", RECORDINGS + "car1_drive.nmea", "--data", RECORDINGS + "car1_drive.gpx", "--at", "0"});
    EXPECT_EQ(result.code, overmap_replay::EXIT_FAILED);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("car1_drive.nmea: not a complete Overmap setup"), std::string::npos)
        << result.err;
}

TEST(ReplayTool, TwoFilesOfTheSameNameDriveTwoCars)
{
    const std::string copy = tempPath("same_name");
    ASSERT_EQ(std::system(("mkdir -p " + copy).c_str()), 0);
    {
        std::ifstream in(RECORDINGS + "car2_drive_100hz.csv", std::ios::binary);
        std::ofstream(copy + "/car1_drive_100hz.csv", std::ios::binary) << in.rdbuf();
    }
    const ToolRun result = runTool({"--data", RECORDINGS + "car1_drive_100hz.csv", "--data",
                                    copy + "/car1_drive_100hz.csv", "--at", "50.005"});
    ASSERT_EQ(result.code, 0) << result.err;
    const auto rows = parseOutput(result.out);
    ASSERT_EQ(rows.size(), 2u);
    const auto car2 = readPlainCsv(RECORDINGS + "car2_drive_100hz.csv");
    const PlainRow* second = rowAt(car2, 50.005);
    ASSERT_NE(second, nullptr);
    EXPECT_NEAR(rows[1].latitude, second->latitude, 1e-9) << "the second car follows the second file";
    EXPECT_NE(rows[0].latitude, rows[1].latitude);
}

TEST(ReplayTool, PastTheLastSampleACarIsNoLongerValid)
{
    const auto car1 = readPlainCsv(RECORDINGS + "car1_drive_100hz.csv");
    const auto car2 = readPlainCsv(RECORDINGS + "car2_drive_100hz.csv");
    ASSERT_LT(car1.back().time, car2.back().time);
    const std::string last = std::to_string(car1.back().time + 0.001);
    const std::string between = std::to_string((car1.back().time + car2.back().time) / 2.0);
    const ToolRun result =
        runTool({"--data", RECORDINGS + "car1_drive_100hz.csv", "--data", RECORDINGS + "car2_drive_100hz.csv",
                 "--at", last, "--at", between, "--at", "1000"});
    ASSERT_EQ(result.code, 0) << result.err;
    const auto rows = parseOutput(result.out);
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(rows[0].valid, 1);
    EXPECT_NEAR(rows[0].latitude, car1.back().latitude, 1e-9);
    EXPECT_EQ(rows[2].valid, 0) << "car1 has ended";
    EXPECT_EQ(rows[2].latitude, rows[0].latitude) << "an ended car stays where it stopped";
    EXPECT_EQ(rows[3].valid, 1) << "car2 still drives";
    EXPECT_EQ(rows[4].valid, 0);
    EXPECT_EQ(rows[5].valid, 0);
}

TEST(ReplayTool, KmlAndGeoJsonHoldEachCarsValidPath)
{
    const std::string kml = tempPath("paths.kml");
    const std::string geojson = tempPath("paths.json");
    const std::string csv = tempPath("rows.csv");
    const ToolRun result = runTool({"--data", RECORDINGS + "car1_drive_100hz.csv", "--data",
                                    RECORDINGS + "car2_drive_100hz.csv", "--from", "0", "--to", "40",
                                    "--step", "0.5", "--kml", kml, "--geojson=" + geojson, "--out", csv});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "") << "rows go to --out";
    std::ifstream csv_file(csv);
    const auto rows = parseOutput(std::string(std::istreambuf_iterator<char>(csv_file), {}));
    ASSERT_EQ(rows.size(), 2u * 81);
    std::map<int, std::vector<math_geo::GeoPosition>> valid;
    for (const OutputRow& row : rows) {
        if (row.valid)
            valid[row.id].emplace_back(row.latitude, row.longitude);
    }
    EXPECT_EQ(valid[1].size(), 81u);
    EXPECT_EQ(valid[2].size(), 61u);

    // Our KML reader joins every LineString of the file.
    std::vector<math_geo::GeoPosition> read_back;
    ASSERT_TRUE(math_geo::readKmlFile(kml, read_back));
    ASSERT_EQ(read_back.size(), valid[1].size() + valid[2].size());
    for (std::size_t i = 0; i < read_back.size(); ++i) {
        const math_geo::GeoPosition& expected =
            i < valid[1].size() ? valid[1][i] : valid[2][i - valid[1].size()];
        EXPECT_NEAR(read_back[i].latitude, expected.latitude, 1e-9) << i;
        EXPECT_NEAR(read_back[i].longitude, expected.longitude, 1e-9) << i;
    }

    boost::property_tree::ptree tree;
    boost::property_tree::read_json(geojson, tree);
    EXPECT_EQ(tree.get<std::string>("type"), "FeatureCollection");
    const auto& features = tree.get_child("features");
    ASSERT_EQ(features.size(), 2u);
    const auto& second = std::next(features.begin())->second;
    EXPECT_EQ(std::stoi(second.get<std::string>("properties.id")), 2);
    EXPECT_EQ(second.get<std::string>("properties.name"), "car2_drive_100hz");
    const auto& coordinates = second.get_child("geometry.coordinates");
    ASSERT_EQ(coordinates.size(), valid[2].size());
    const auto& first_point = coordinates.begin()->second;
    EXPECT_NEAR(std::stod(first_point.begin()->second.get_value<std::string>()), valid[2][0].longitude, 1e-9);
    EXPECT_NEAR(std::stod(std::next(first_point.begin())->second.get_value<std::string>()),
                valid[2][0].latitude, 1e-9);
}

TEST(ReplayTool, NmeaAndGpxOfTheSameDriveReplayAsCars)
{
    for (const char* file : {"car1_drive.nmea", "car1_drive.gpx"}) {
        SCOPED_TRACE(file);
        const ToolRun result =
            runTool({"--data", RECORDINGS + file, "--from", "0", "--to", "30", "--step", "10"});
        ASSERT_EQ(result.code, 0) << result.err;
        const auto rows = parseOutput(result.out);
        ASSERT_EQ(rows.size(), 4u);
        for (const OutputRow& row : rows) {
            EXPECT_EQ(row.valid, 1);
            EXPECT_NEAR(row.latitude, 47.995, 0.05);
            EXPECT_NEAR(row.longitude, 10.245, 0.05);
        }
    }
}

/// Runs the tool and expects a failure told in exactly one line that holds @p text.
void expectOneLineError(const std::vector<std::string>& args, int code, const std::string& text)
{
    const ToolRun result = runTool(args);
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.rfind("overmap-replay: ", 0), 0u) << result.err;
    EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
}

TEST(ReplayToolErrors, BadInputsExitWithOneClearLine)
{
    const std::string car1 = RECORDINGS + "car1_drive_100hz.csv";
    expectOneLineError({"--data", RECORDINGS + "missing.csv", "--at", "0"}, overmap_replay::EXIT_FAILED,
                       "missing.csv");
    expectOneLineError({"--data", car1, "--setup", RECORDINGS + "missing.xml", "--at", "0"},
                       overmap_replay::EXIT_FAILED, "missing.xml: cannot open the setup file");

    const std::string empty = tempPath("empty.csv");
    std::ofstream(empty) << "time [s],latitude [deg],longitude [deg]\n";
    expectOneLineError({"--data", car1, "--data", empty, "--at", "0"}, overmap_replay::EXIT_FAILED,
                       "no samples found");

    const std::string speed_only = tempPath("speed_only.csv");
    std::ofstream(speed_only) << "time [s],speed [km/h]\n0,1\n0.1,2\n";
    expectOneLineError({"--data", speed_only, "--at", "0"}, overmap_replay::EXIT_FAILED,
                       "unknown channel long name \"overmap_replay_speed_only.latitude\" and 1 more");

    expectOneLineError({"--at", "0"}, overmap_replay::EXIT_USAGE, "no recording given");
    expectOneLineError({"--data", car1, "--from", "0", "--to", "5"}, overmap_replay::EXIT_USAGE,
                       "--from, --to and --step go together");
    expectOneLineError({"--data", car1, "--at", "soon"}, overmap_replay::EXIT_USAGE,
                       "--at needs a number of seconds, not \"soon\"");
    expectOneLineError({"--data", car1, "--speed", "2"}, overmap_replay::EXIT_USAGE,
                       "unknown argument \"--speed\"");
    expectOneLineError({"--data", car1, "--at", "0", "--kml", "/no/such/dir/x.kml"},
                       overmap_replay::EXIT_FAILED, "cannot write the KML file");
}

TEST(ReplayToolErrors, HelpPrintsUsageAndSucceeds)
{
    const ToolRun result = runTool({"--help"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out.rfind("usage: overmap-replay", 0), 0u);
}

TEST(ReplayInputs, RecordingsGetNodeIdsAndShareTheEarliestStart)
{
    const auto loaded =
        overmap_replay::loadRecordings({RECORDINGS + "car2_drive_100hz.csv",
                                        RECORDINGS + "car1_drive_100hz.csv", RECORDINGS + "car1_drive.gpx"});
    ASSERT_TRUE(loaded) << loaded.error;
    ASSERT_EQ(loaded.recordings.size(), 3u);
    EXPECT_EQ(loaded.recordings[0].node_id, 1u);
    EXPECT_EQ(loaded.recordings[2].node_id, 3u);
    EXPECT_EQ(loaded.recordings[2].stem, "car1_drive");
    // 2026-06-15T09:30:00Z, car1's start; car2 starts ten seconds later.
    EXPECT_DOUBLE_EQ(loaded.time_origin, 1781515800.0);
    const auto car2_latitude = loaded.manager->channel(channel_config::ChannelID(1, 1));
    ASSERT_NE(car2_latitude, nullptr);
    EXPECT_EQ(car2_latitude->getLongName(), "car2_drive_100hz.latitude");
    EXPECT_DOUBLE_EQ(car2_latitude->getTimeBase()->getStartTime(), 10.0);
    EXPECT_EQ(loaded.manager->channels().size(), loaded.recordings[0].channel_names.size() +
                                                     loaded.recordings[1].channel_names.size() +
                                                     loaded.recordings[2].channel_names.size());
    EXPECT_GT(loaded.end_time, 170.0);
}

TEST(CsvRows, NumbersAreWrittenAsPrintfWritesThem)
{
    // Ties on the exact binary value, negative zero, tiny and large values, then random ones.
    std::vector<double> values = {0.0625,        -0.0625,        2.5, -0.0, 1e-12,  -4e-10, 0.0015,
                                  48.1234567895, 999999999.9999, 1e9, 3e15, -180.0, 0.5e-9};
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> degrees(-400.0, 400.0);
    for (int i = 0; i < 3000; ++i)
        values.push_back(degrees(random));
    std::vector<overmap_replay::ReplayRow> rows;
    std::string expected = "time,object_id,name,latitude,longitude,heading,x,y,valid\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double v = values[i];
        rows.push_back({static_cast<double>(i), 1, "car", v, -v, v, v / 7, -v, true});
        char line[512];
        std::snprintf(line, sizeof line, "%zu,1,car,%.9f,%.9f,%.3f,%.3f,%.3f,1\n", i, v, -v, v, v / 7, -v);
        expected += line;
    }
    std::ostringstream out;
    overmap_replay::writeCsv(out, rows);
    EXPECT_EQ(out.str(), expected);
}

} // namespace

// Rows as the CSV writer prints them: whole seconds as digits until the exponent is
// shorter, names quoted only when they must be, also when rows of two objects alternate.
TEST(ReplayCsv, RowsPrintTimesAndNamesAsWritten)
{
    const std::vector<overmap_replay::ReplayRow> rows = {
        {0.0, 1, "car", 1.5, 2.0, 90.0, 3.0, -4.0, true},
        {0.0, 22, "a, b", 0.0, 0.0, 0.0, 0.0, 0.0, false},
        {7.0, 1, "car", 0.0, 0.0, 0.0, 0.0, 0.0, true},
        {99999.0, 22, "a, b", 0.0, 0.0, 0.0, 0.0, 0.0, true},
        {100000.0, 22, "say \"hi\"", 0.0, 0.0, 0.0, 0.0, 0.0, true},
        {0.25, 1, "car", 0.0, 0.0, 0.0, 0.0, 0.0, true},
        {-0.0, 1, "", 0.0, 0.0, 0.0, 0.0, 0.0, true},
        {-3.0, -5, "car", 0.0, 0.0, 0.0, 0.0, 0.0, true},
    };
    std::ostringstream out;
    overmap_replay::writeCsv(out, rows);
    EXPECT_EQ(out.str(), "time,object_id,name,latitude,longitude,heading,x,y,valid\n"
                         "0,1,car,1.500000000,2.000000000,90.000,3.000,-4.000,1\n"
                         "0,22,\"a, b\",0.000000000,0.000000000,0.000,0.000,0.000,0\n"
                         "7,1,car,0.000000000,0.000000000,0.000,0.000,0.000,1\n"
                         "99999,22,\"a, b\",0.000000000,0.000000000,0.000,0.000,0.000,1\n"
                         "1e+05,22,\"say \"\"hi\"\"\",0.000000000,0.000000000,0.000,0.000,0.000,1\n"
                         "0.25,1,car,0.000000000,0.000000000,0.000,0.000,0.000,1\n"
                         "-0,1,,0.000000000,0.000000000,0.000,0.000,0.000,1\n"
                         "-3,-5,car,0.000000000,0.000000000,0.000,0.000,0.000,1\n");
}
