#pragma once

#include <overmap_replay/scene_painter.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace overmap {
class ObjectManager;
}

namespace overmap_replay {

struct ReplayResult;

/// The way of every moving object through a replay: its valid rows, in time order.
std::vector<DrivenPath> drivenPaths(const ReplayResult& result);

/// What the picture shows besides the scene as it stands.
struct PictureRequest
{
    std::string path;  ///< PNG file to write
    int width = 1600;  ///< pixels
    int height = 1000; ///< pixels
    double time = 0.0; ///< display time, seconds
    std::vector<DrivenPath> paths;
    std::set<std::int32_t> hidden; ///< object ids left out
    /// Metres by calculation id, from the calculations' result channels at the time.
    std::map<std::int32_t, double> calculation_values;
};

/// Draws @p manager as it stands into a PNG file; cars too small to see are drawn larger.
/// Makes a QGuiApplication (offscreen unless QT_QPA_PLATFORM says otherwise) when the
/// process has no application yet, and keeps it to the end of the process. False, with @p error
/// set to one line, when the size is unusable, the process runs a QCoreApplication only,
/// or the file cannot be written.
bool writeScenePicture(const overmap::ObjectManager& manager, const PictureRequest& request,
                       std::string& error);

} // namespace overmap_replay
