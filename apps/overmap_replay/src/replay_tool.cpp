#include <overmap_replay/replay_tool.h>

#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>
#include <overmap_replay/replay_options.h>
#include <overmap_replay/replay_scene.h>
#include <overmap_replay/scene_picture.h>

#include <lum_calc_extension/qcalculation_extension.h>
#include <lum_calc_extension/result_channel.h>

#include <lum_host/qextension_module.h>

#include <om_model/calculation.h>
#include <om_model/object_manager.h>

#include <fstream>
#include <memory>
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

    // The setup's calculations are worked out by the host's extension from the setup text,
    // as in the host; their result channels give the CSV columns and the picture's values.
    QExtensionModule extension(QStringLiteral("overmap"),
                               static_cast<std::uint32_t>(recordings.recordings.size() + 1));
    std::vector<CalculationColumn> calculations;
    std::unique_ptr<lum::calc::QCalculationExtension> calculation_extension;
    if (!options.setup_path.empty()) {
        QString load_error;
        if (!extension.loadFromFile(QString::fromStdString(options.setup_path), &load_error))
            return fail(err, EXIT_FAILED, load_error.toStdString());
        calculation_extension =
            std::make_unique<lum::calc::QCalculationExtension>(extension, *recordings.manager, fetcher);
        for (const auto& calculation : scene.manager->getCalculations()) {
            if (const auto channel = calculation_extension->resultChannel(calculation->getId()))
                calculations.push_back({calculation->getId(), channel});
        }
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
        for (const CalculationColumn& column : calculations)
            picture.calculation_values.emplace(column.calculation_id,
                                               column.channel->getValueAtTime(picture.time, nullptr));
        if (!writeScenePicture(*scene.manager, picture, error))
            return fail(err, EXIT_FAILED, error);
    }

    if (!options.out_path.empty()) {
        std::ofstream file(options.out_path, std::ios::binary);
        writeCsv(file, result.rows, calculations);
        file.flush();
        if (!file)
            return fail(err, EXIT_FAILED, options.out_path + ": cannot write the CSV file");
    } else {
        writeCsv(out, result.rows, calculations);
    }
    return EXIT_OK;
}

} // namespace overmap_replay
