// The binary on every real recording in the repository's copy: either it replays, with
// the first car at the fix at or before each requested time (inside gaps too), or it
// refuses at once with one line. The fixes come from this file's own reading of the
// recording, not from the importers.
#include <gtest/gtest.h>

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Fix
{
    double time; ///< seconds from the first fix
    double latitude;
    double longitude;
};

std::string readText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> fields;
    std::stringstream in(text);
    std::string field;
    while (std::getline(in, field, separator))
        fields.push_back(field);
    if (!text.empty() && text.back() == separator)
        fields.emplace_back();
    return fields;
}

/// ddmm.mmmm with its hemisphere letter, in degrees.
double nmeaAngle(const std::string& value, const std::string& hemisphere)
{
    const double raw = std::stod(value);
    const double degrees = std::floor(raw / 100.0) + (raw - std::floor(raw / 100.0) * 100.0) / 60.0;
    return hemisphere == "S" || hemisphere == "W" ? -degrees : degrees;
}

/// Fixes of GGA sentences with a fix, else of valid RMC sentences, one per time of day,
/// in file order; sentences with a wrong checksum are skipped; midnight counts on.
std::vector<Fix> readNmea(const std::string& path)
{
    struct Epoch
    {
        double time_of_day;
        bool gga = false;
        bool rmc = false;
        double gga_position[2] = {0, 0};
        double rmc_position[2] = {0, 0};
    };
    std::vector<Epoch> epochs;
    std::stringstream in(readText(path));
    std::string line;
    while (std::getline(in, line)) {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
            line.pop_back();
        const std::size_t star = line.rfind('*');
        if (line.empty() || line[0] != '$' || star == std::string::npos || star + 3 != line.size())
            continue;
        unsigned sum = 0;
        for (std::size_t i = 1; i < star; ++i)
            sum ^= static_cast<unsigned char>(line[i]);
        if (sum != std::stoul(line.substr(star + 1), nullptr, 16))
            continue;
        const std::vector<std::string> f = split(line.substr(1, star - 1), ',');
        const std::string type = f[0].size() >= 3 ? f[0].substr(f[0].size() - 3) : "";
        if (f[0][0] == 'P' || (type != "GGA" && type != "RMC") || f.size() < 10 || f[1].size() < 6)
            continue;
        const double time_of_day = std::stod(f[1].substr(0, 2)) * 3600 + std::stod(f[1].substr(2, 2)) * 60 +
                                   std::stod(f[1].substr(4));
        if (epochs.empty() || epochs.back().time_of_day != time_of_day)
            epochs.push_back(Epoch{time_of_day});
        Epoch& epoch = epochs.back();
        if (type == "GGA" && !f[6].empty() && std::stod(f[6]) > 0) {
            epoch.gga = true;
            epoch.gga_position[0] = nmeaAngle(f[2], f[3]);
            epoch.gga_position[1] = nmeaAngle(f[4], f[5]);
        } else if (type == "RMC" && f[2] == "A") {
            epoch.rmc = true;
            epoch.rmc_position[0] = nmeaAngle(f[3], f[4]);
            epoch.rmc_position[1] = nmeaAngle(f[5], f[6]);
        }
    }
    std::vector<Fix> fixes;
    double day = 0;
    double previous = -1;
    double origin = 0;
    for (const Epoch& epoch : epochs) {
        if (previous >= 0 && epoch.time_of_day < previous - 43200)
            day += 86400;
        previous = epoch.time_of_day;
        if (!epoch.gga && !epoch.rmc)
            continue;
        const double* position = epoch.gga ? epoch.gga_position : epoch.rmc_position;
        if (fixes.empty())
            origin = day + epoch.time_of_day;
        const double time = day + epoch.time_of_day - origin;
        if (fixes.empty() || time > fixes.back().time)
            fixes.push_back({time, position[0], position[1]});
    }
    return fixes;
}

/// Seconds since 1970 of "2009-03-02T14:05:52.5Z" or "...+01:00"; NaN for other text.
double isoSeconds(const std::string& text)
{
    int year, month, day, hour, minute;
    double second;
    int consumed = 0;
    if (std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%lf%n", &year, &month, &day, &hour, &minute, &second,
                    &consumed) != 6)
        return std::nan("");
    // Days from civil (proleptic Gregorian).
    const int y = year - (month <= 2);
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int year_of_era = y - era * 400;
    const int day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
    const double days = era * 146097.0 + day_of_era - 719468.0;
    double seconds = days * 86400 + hour * 3600 + minute * 60 + second;
    const std::string zone = text.substr(static_cast<std::size_t>(consumed));
    if (zone.size() == 6 && (zone[0] == '+' || zone[0] == '-'))
        seconds -= (zone[0] == '-' ? -1 : 1) *
                   (std::stod(zone.substr(1, 2)) * 3600 + std::stod(zone.substr(4)) * 60);
    return seconds;
}

/// Track points with a time, in document order, of every track.
std::vector<Fix> readGpx(const std::string& path)
{
    pugi::xml_document document;
    EXPECT_TRUE(document.load_file(path.c_str())) << path;
    std::vector<Fix> fixes;
    double origin = 0;
    for (const pugi::xpath_node& node : document.select_nodes("//*[local-name()='trkpt']")) {
        const pugi::xml_node point = node.node();
        const double seconds = isoSeconds(point.select_node("*[local-name()='time']").node().text().get());
        if (std::isnan(seconds))
            continue;
        if (fixes.empty())
            origin = seconds;
        if (fixes.empty() || seconds - origin > fixes.back().time)
            fixes.push_back(
                {seconds - origin, point.attribute("lat").as_double(), point.attribute("lon").as_double()});
    }
    return fixes;
}

/// Times to ask for: the first and last fix, some fixes and halfway to the next, and the
/// middle and end of every gap (an interval of over 10 s and 5 typical ones).
std::vector<double> probeTimes(const std::vector<Fix>& fixes)
{
    std::vector<double> intervals;
    for (std::size_t i = 1; i < fixes.size(); ++i)
        intervals.push_back(fixes[i].time - fixes[i - 1].time);
    std::vector<double> sorted = intervals;
    std::sort(sorted.begin(), sorted.end());
    const double typical = sorted.empty() ? 1.0 : sorted[sorted.size() / 2];
    std::vector<double> times = {0.0, fixes.back().time};
    for (std::size_t i = 0; i + 1 < fixes.size(); i += std::max<std::size_t>(1, fixes.size() / 5)) {
        times.push_back(fixes[i].time);
        times.push_back(fixes[i].time + intervals[i] / 2);
    }
    for (std::size_t i = 0; i < intervals.size(); ++i) {
        if (intervals[i] > std::max(10.0, 5 * typical)) {
            times.push_back(fixes[i].time + intervals[i] / 2);
            times.push_back(fixes[i + 1].time - 0.5);
        }
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

struct RunResult
{
    int code;
    std::string out;
    std::string err;
};

RunResult runBinary(const std::vector<std::string>& args)
{
    const std::string err_path = ::testing::TempDir() + "overmap_replay_real_err.txt";
    std::string command = "'" OVERMAP_REPLAY_BINARY "'";
    for (const std::string& arg : args)
        command += " '" + arg + "'";
    command += " 2>'" + err_path + "'";
    RunResult result{-1, {}, {}};
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return result;
    char buffer[4096];
    std::size_t read = 0;
    while ((read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        result.out.append(buffer, read);
    const int status = pclose(pipe);
    result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = readText(err_path);
    return result;
}

struct RealFile
{
    const char* path;    ///< under the real-data folder
    const char* refusal; ///< what the one line says, or null for a file that replays
};

class RealRecording : public ::testing::TestWithParam<RealFile>
{};

TEST_P(RealRecording, ReplaysTheFixAtOrBeforeEachTimeOrIsRefusedInOneLine)
{
    const std::string path = std::string(LUMERO_REALDATA_DIR "/") + GetParam().path;
    // One set of output files per file under test: ctest runs the rows side by side.
    std::string stem = GetParam().path;
    std::replace(stem.begin(), stem.end(), '/', '_');
    const std::string out = ::testing::TempDir() + "overmap_replay_real_" + stem;
    std::vector<std::string> args = {"--data",         path,    "--kml",      out + ".kml", "--geojson",
                                     out + ".geojson", "--png", out + ".png", "--png-size", "200x150"};
    if (GetParam().refusal) {
        args.insert(args.end(), {"--at", "0"});
        const RunResult run = runBinary(args);
        EXPECT_NE(run.code, 0);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_NE(run.err.find(GetParam().refusal), std::string::npos) << run.err;
        return;
    }

    const bool nmea = path.substr(path.size() - 5) == ".nmea";
    const std::vector<Fix> fixes = nmea ? readNmea(path) : readGpx(path);
    ASSERT_FALSE(fixes.empty());
    const std::vector<double> times = probeTimes(fixes);
    for (double time : times) {
        std::ostringstream text;
        text.precision(17);
        text << time;
        args.insert(args.end(), {"--at", text.str()});
    }
    args.insert(args.end(), {"--at", std::to_string(fixes.back().time + 60)});
    const RunResult run = runBinary(args);
    ASSERT_EQ(run.code, 0) << run.err;

    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : split(run.out, '\n'))
        if (!line.empty() && line.rfind("time,", 0) != 0)
            rows.push_back(split(line, ','));
    ASSERT_EQ(rows.size(), times.size() + 1) << run.out;
    for (std::size_t i = 0; i < times.size(); ++i) {
        const auto fix = std::upper_bound(fixes.begin(), fixes.end(), times[i],
                                          [](double time, const Fix& f) { return time < f.time; }) -
                         1;
        const std::vector<std::string>& row = rows[i];
        ASSERT_EQ(row.size(), 9u) << run.out;
        EXPECT_DOUBLE_EQ(std::stod(row[0]), times[i]);
        EXPECT_EQ(row[1], "1") << "the recording's car";
        EXPECT_NEAR(std::stod(row[3]), fix->latitude, 2e-9) << "latitude at " << times[i];
        EXPECT_NEAR(std::stod(row[4]), fix->longitude, 2e-9) << "longitude at " << times[i];
        EXPECT_EQ(row[8], "1") << "at " << times[i];
    }
    EXPECT_EQ(rows.back()[8], "0") << "past the last fix";
    for (const char* suffix : {".kml", ".geojson", ".png"})
        EXPECT_GT(readText(out + suffix).size(), 100u) << suffix;
}

// The names of the rows are the file names.
INSTANTIATE_TEST_SUITE_P(
    RealData, RealRecording,
    ::testing::Values(
        RealFile{"nmea/garmin_drive_2005.nmea", nullptr}, RealFile{"nmea/trimble_r2_rtk.nmea", nullptr},
        RealFile{"gpx/Mojstrovka.gpx", nullptr}, RealFile{"gpx/around-visnjan-with-car.gpx", nullptr},
        RealFile{"gpx/gpx1.1_with_all_fields.gpx", nullptr}, RealFile{"gpx/korita-zbevnica.gpx", nullptr},
        RealFile{"gpx/track-with-empty-segment.gpx", nullptr}, RealFile{"gpx/track_with_speed.gpx", nullptr},
        RealFile{"gpx/unicode_with_bom.gpx", "no track points (trk/trkseg/trkpt) in the file"}),
    [](const ::testing::TestParamInfo<RealFile>& info) {
        std::string name = info.param.path;
        name = name.substr(name.find('/') + 1);
        std::replace_if(
            name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); },
            '_');
        return name;
    });

} // namespace
