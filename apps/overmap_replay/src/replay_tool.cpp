#include <overmap_replay/replay_tool.h>

#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>
#include <overmap_replay/replay_options.h>
#include <overmap_replay/replay_scene.h>
#include <overmap_replay/scene_picture.h>

#include <fstream>
#include <ostream>

namespace overmap_replay {

namespace {

int fail(std::ostream& err, int code, const std::string& message)
{
    err << "overmap-replay: " << message << '\n';
    return code;
}

} // namespace

int runReplay(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    const ParsedArguments parsed = parseArguments(args);
    if (parsed.options.help) {
        out << usageText();
        return EXIT_OK;
    }
    if (!parsed.error.empty())
        return fail(err, EXIT_USAGE, parsed.error);
    const ReplayOptions& options = parsed.options;

    const LoadedRecordings recordings = loadRecordings(options.data_paths);
    if (!recordings)
        return fail(err, EXIT_FAILED, recordings.error);

    std::string error;
    const std::vector<double> times = requestedTimes(options, recordings.end_time, error);
    if (!error.empty())
        return fail(err, EXIT_USAGE, error);

    ChannelListFetcher fetcher(*recordings.manager);
    SetupResult scene = options.setup_path.empty() ? defaultScene(recordings, fetcher)
                                                   : loadSetup(options.setup_path, fetcher);
    if (!scene)
        return fail(err, EXIT_FAILED, scene.error);
    const auto unresolved = fetcher.unresolved();
    if (!unresolved.empty()) {
        const std::string where =
            options.setup_path.empty() ? std::string("the recordings") : options.setup_path;
        return fail(
            err, EXIT_FAILED,
            where + ": unknown channel " + unresolved.front().describe() +
                (unresolved.size() > 1 ? " and " + std::to_string(unresolved.size() - 1) + " more" : ""));
    }

    const ReplayResult result = replayScene(*scene.manager, times);

    // The path files first: a failed run then leaves no rows behind that look complete.
    if (!options.kml_path.empty() && !writeKml(options.kml_path, result.paths, error))
        return fail(err, EXIT_FAILED, error);
    if (!options.geojson_path.empty() && !writeGeoJson(options.geojson_path, result.paths, error))
        return fail(err, EXIT_FAILED, error);
    if (!options.png_path.empty()) {
        PictureRequest picture;
        picture.path = options.png_path;
        picture.width = options.png_width;
        picture.height = options.png_height;
        picture.time = options.png_at ? *options.png_at : (times.empty() ? 0.0 : times.back());
        picture.paths = drivenPaths(result);
        picture.hidden = placeScene(*scene.manager, picture.time);
        if (!writeScenePicture(*scene.manager, picture, error))
            return fail(err, EXIT_FAILED, error);
    }

    if (!options.out_path.empty()) {
        std::ofstream file(options.out_path, std::ios::binary);
        writeCsv(file, result.rows);
        file.flush();
        if (!file)
            return fail(err, EXIT_FAILED, options.out_path + ": cannot write the CSV file");
    } else {
        writeCsv(out, result.rows);
    }
    return EXIT_OK;
}

} // namespace overmap_replay
