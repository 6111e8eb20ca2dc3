#include <overmap_replay/scene_picture.h>

#include <overmap_replay/replay_options.h>
#include <overmap_replay/replay_scene.h>

#include <uni_base/uni_log.h>

#include <QGuiApplication>
#include <QImage>

#include <map>

namespace overmap_replay {

namespace {

/// A car shorter than this many pixels of the picture's shorter side is enlarged.
constexpr double MINIMUM_CAR_SHARE = 0.045;

} // namespace

std::vector<DrivenPath> drivenPaths(const ReplayResult& result)
{
    std::vector<DrivenPath> paths;
    std::map<std::int32_t, std::size_t> index;
    for (const ObjectPath& path : result.paths) {
        index.emplace(path.object_id, paths.size());
        paths.push_back({path.object_id, {}, {}});
    }
    for (const ReplayRow& row : result.rows) {
        const auto found = index.find(row.object_id);
        if (!row.valid || found == index.end())
            continue;
        DrivenPath& path = paths[found->second];
        path.times.push_back(row.time);
        path.positions.emplace_back(row.latitude, row.longitude);
    }
    return paths;
}

bool writeScenePicture(const overmap::ObjectManager& manager, const PictureRequest& request,
                       std::string& error)
{
    if (request.width < MIN_PICTURE_SIDE || request.height < MIN_PICTURE_SIDE ||
        request.width > MAX_PICTURE_SIDE || request.height > MAX_PICTURE_SIDE) {
        error = request.path + ": a picture of " + std::to_string(request.width) + "x" +
                std::to_string(request.height) + " pixels cannot be drawn";
        return false;
    }
    // Text needs a GUI application; a headless run gets the offscreen platform. It stays to
    // the end of the process: Qt's platform screens do not survive a second application.
    if (QCoreApplication::instance() == nullptr) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "overmap-replay";
        static char* argv[] = {name, nullptr};
        // The platform's start-up notes (no runtime folder, ...) are no concern of the user's.
        const QtMessageHandler previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
                uni::log("overmap_replay", SEV_DEBUG, message.toStdString());
            });
        static QGuiApplication* const application = new QGuiApplication(argc, argv);
        Q_UNUSED(application);
        qInstallMessageHandler(previous);
    } else if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
        error = request.path + ": the picture needs a GUI application, and this process runs without one";
        return false;
    }

    ScenePainter painter(manager);
    painter.setTime(request.time);
    painter.setPaths(request.paths);
    painter.setHiddenObjects(request.hidden);
    painter.setCalculationValues(request.calculation_values);
    painter.setMinimumCarLength(MINIMUM_CAR_SHARE * std::min(request.width, request.height));
    const QImage image = painter.render(QSize(request.width, request.height));
    // Opaque RGB keeps the file at three bytes a pixel before compression.
    if (image.isNull() ||
        !image.convertToFormat(QImage::Format_RGB888).save(QString::fromStdString(request.path), "PNG")) {
        error = request.path + ": cannot write the PNG file";
        return false;
    }
    return true;
}

} // namespace overmap_replay
