#pragma once

#include <optional>
#include <string>
#include <vector>

namespace overmap_replay {

/// What the command line asks for.
struct ReplayOptions
{
    std::string setup_path;              ///< --setup; empty: one car per recording
    std::vector<std::string> data_paths; ///< --data, in the order given
    std::vector<double> at_times;        ///< --at
    std::optional<double> from;          ///< --from
    std::optional<double> to;            ///< --to
    std::optional<double> step;          ///< --step
    std::string kml_path;                ///< --kml
    std::string geojson_path;            ///< --geojson
    std::string out_path;                ///< --out; empty: standard output
    std::string png_path;                ///< --png; empty: no picture
    std::optional<double> png_at;        ///< --png-at; unset: the last replay time
    int png_width = 1600;                ///< --png-size WxH, pixels
    int png_height = 1000;
    bool help = false;
};

struct ParsedArguments
{
    ReplayOptions options;
    std::string error; ///< one line; empty when the arguments are usable
};

/// Reads the arguments after the program name; "--name value" and "--name=value" alike.
ParsedArguments parseArguments(const std::vector<std::string>& args);

std::string usageText();

/// Smallest and largest side of a picture, pixels.
constexpr int MIN_PICTURE_SIDE = 16;
constexpr int MAX_PICTURE_SIDE = 8192;

/// Reads "WIDTHxHEIGHT" ("1600x1000"); false, with the numbers untouched, for anything
/// else or a side outside MIN_PICTURE_SIDE..MAX_PICTURE_SIDE.
bool parsePictureSize(const std::string& text, int& width, int& height);

/// The replay times, ascending and without repeats: every --at time and the range
/// from..to (both included) in steps of step. Without any of them, the whole of
/// [0, @p end_time] in steps of one second. An error (and nothing) when the range is
/// incomplete or unusable, or would give more than @p max_times times.
std::vector<double> requestedTimes(const ReplayOptions& options, double end_time, std::string& error,
                                   std::size_t max_times = 10'000'000);

} // namespace overmap_replay
