#include <overmap_replay/replay_options.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace overmap_replay {

namespace {

bool parseNumber(const std::string& text, double& value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && std::isfinite(value);
}

} // namespace

bool parsePictureSize(const std::string& text, int& width, int& height)
{
    const std::size_t x = text.find_first_of("xX");
    if (x == std::string::npos)
        return false;
    const auto side = [](const std::string& digits, int& value) {
        if (digits.empty() || digits.size() > 5 ||
            digits.find_first_not_of("0123456789") != std::string::npos)
            return false;
        value = std::stoi(digits);
        return value >= MIN_PICTURE_SIDE && value <= MAX_PICTURE_SIDE;
    };
    int w = 0;
    int h = 0;
    if (!side(text.substr(0, x), w) || !side(text.substr(x + 1), h))
        return false;
    width = w;
    height = h;
    return true;
}

std::string usageText()
{
    return "usage: overmap-replay [--setup FILE] --data FILE [--data FILE ...]\n"
           "                      [--at T ...] [--from A --to B --step S]\n"
           "                      [--kml FILE] [--geojson FILE] [--out FILE]\n"
           "                      [--png FILE [--png-at T] [--png-size WxH]]\n"
           "Replays recordings through a setup and writes one CSV row per object and time:\n"
           "time,object_id,name,latitude,longitude,heading,x,y,valid\n"
           "Times are seconds from the earliest recording's start. Recording n (from 1) has\n"
           "channel ids n/1, n/2, ... and long names <file stem>.<channel>. Without --setup,\n"
           "each recording drives one car from its latitude, longitude and heading channels.\n"
           "Without times, the whole replay in steps of one second.\n"
           "--png draws the scene top-down at time T (default: the last replay time),\n"
           "with the paths driven up to then; --png-size defaults to 1600x1000 pixels.\n";
}

ParsedArguments parseArguments(const std::vector<std::string>& args)
{
    ParsedArguments result;
    ReplayOptions& options = result.options;
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string name = args[i];
        std::optional<std::string> value;
        const std::size_t equals = name.find('=');
        if (name.rfind("--", 0) == 0 && equals != std::string::npos) {
            value = name.substr(equals + 1);
            name.erase(equals);
        }
        if (name == "--help" || name == "-h") {
            options.help = true;
            continue;
        }
        static const char* const KNOWN[] = {"--setup", "--data", "--at",     "--from",
                                            "--to",    "--step", "--kml",    "--geojson",
                                            "--out",   "--png",  "--png-at", "--png-size"};
        if (std::find(std::begin(KNOWN), std::end(KNOWN), name) == std::end(KNOWN)) {
            result.error = "unknown argument \"" + args[i] + "\" (see --help)";
            return result;
        }
        if (!value) {
            if (i + 1 >= args.size()) {
                result.error = name + " needs a value";
                return result;
            }
            value = args[++i];
        }
        double number = 0.0;
        const bool is_time =
            name == "--at" || name == "--from" || name == "--to" || name == "--step" || name == "--png-at";
        if (is_time && !parseNumber(*value, number)) {
            result.error = name + " needs a number of seconds, not \"" + *value + "\"";
            return result;
        }
        if (name == "--setup")
            options.setup_path = *value;
        else if (name == "--data")
            options.data_paths.push_back(*value);
        else if (name == "--at")
            options.at_times.push_back(number);
        else if (name == "--from")
            options.from = number;
        else if (name == "--to")
            options.to = number;
        else if (name == "--step")
            options.step = number;
        else if (name == "--kml")
            options.kml_path = *value;
        else if (name == "--geojson")
            options.geojson_path = *value;
        else if (name == "--png")
            options.png_path = *value;
        else if (name == "--png-at")
            options.png_at = number;
        else if (name == "--png-size") {
            if (!parsePictureSize(*value, options.png_width, options.png_height)) {
                result.error = "--png-size needs WIDTHxHEIGHT in pixels, each " +
                               std::to_string(MIN_PICTURE_SIDE) + " to " + std::to_string(MAX_PICTURE_SIDE) +
                               ", not \"" + *value + "\"";
                return result;
            }
        } else
            options.out_path = *value;
    }
    if (!options.help && options.data_paths.empty())
        result.error = "no recording given (--data FILE)";
    else if (options.png_path.empty() && (options.png_at || options.png_width != ReplayOptions().png_width ||
                                          options.png_height != ReplayOptions().png_height))
        result.error = "--png-at and --png-size go with --png FILE";
    return result;
}

std::vector<double> requestedTimes(const ReplayOptions& options, double end_time, std::string& error,
                                   std::size_t max_times)
{
    std::vector<double> times = options.at_times;
    const bool any_range = options.from || options.to || options.step;
    double from = 0.0;
    double to = end_time;
    double step = 1.0;
    if (any_range) {
        if (!options.from || !options.to || !options.step) {
            error = "--from, --to and --step go together";
            return {};
        }
        from = *options.from;
        to = *options.to;
        step = *options.step;
        if (!(step > 0.0)) {
            error = "--step must be above 0";
            return {};
        }
        if (to < from) {
            error = "--to lies before --from";
            return {};
        }
    }
    if (any_range || times.empty()) {
        // Counted, not summed, so that the last time does not drift; a hair of slack
        // keeps "--to" itself when it is a whole number of steps away.
        const double count = std::floor((to - from) / step + 1e-9) + 1.0;
        if (!(count >= 1.0) || count + static_cast<double>(times.size()) > static_cast<double>(max_times)) {
            error = "too many replay times (at most " + std::to_string(max_times) + ")";
            return {};
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            times.push_back(from + static_cast<double>(i) * step);
    }
    if (times.size() > max_times) {
        error = "too many replay times (at most " + std::to_string(max_times) + ")";
        return {};
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

} // namespace overmap_replay
