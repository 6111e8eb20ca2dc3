#pragma once

#include <lum_default_paths/if_shell_folders.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lum_default_paths {

/// Numbers of the well-known locations.
enum DefaultPath : int
{
    LOCK = 0,
    LOG = 1,
    CRASH_DUMP = 2,
    FONTS = 3,
    IMAGES = 4,
    QML = 5,
    QML_MAIN = 6,
    SETTINGS = 7,
    PLUGINS = 8,
    INSTRUMENT_PLUGINS = 9,
    REMOTE_CONTROL_PLUGINS = 10,
    COMMON_FOLDER = 11,
    APPLICATION_DATA = 14,
    TRANSLATION = 15,
    USER_THEMES = 16,
    COMMON_THEMES = 17,
    PUBLIC_FOLDER = 18,
    TEDS = 19,
    SENSOR_DATABASE = 20,
    TEMPLATES = 22
};

/// The template of a well-known location, such as "%APP_DATA%/fonts"; empty for a
/// number without one (the plug-in lists 8 to 10 among them).
std::string pathTemplate(int number);

/// Well-known locations of one installation: the executable's folder and the
/// shell folders it runs with. Every call looks at the file system afresh.
class DefaultPaths
{
public:
    DefaultPaths(std::string application_dir, std::shared_ptr<const IfShellFolders> shell_folders);

    /// Placeholder ("%USER_HOME%") to its value.
    std::map<std::string, std::string> placeholders() const;
    /// The folder holding "licenses/license_qt_lgpl.xml": the executable's folder, its
    /// parent or the parent's "share/lumero" (a /usr install); empty when none does.
    std::string applicationDataDir() const;
    /// @p text with every known placeholder replaced; unknown "%WORD%"s stay.
    std::string expand(const std::string& text) const;
    /// The expanded template of @p number; empty when it has none.
    std::string path(int number) const;
    /// The existing plug-in folders of lists 8 to 10, list 8 followed by the common and the
    /// user documents' plug-in folders unless already listed; for another number its path,
    /// empty for a number without a template.
    std::vector<std::string> pluginSearchList(int number) const;

private:
    std::string m_application_dir;
    std::shared_ptr<const IfShellFolders> m_shell_folders;
};

/// The folder of the running executable.
std::string applicationDir();
/// The paths of the running executable with the system's shell folders.
const DefaultPaths& defaultPaths();

inline std::string path(int number)
{
    return defaultPaths().path(number);
}
inline std::string expandPath(const std::string& text)
{
    return defaultPaths().expand(text);
}
inline std::vector<std::string> pluginSearchList(int number)
{
    return defaultPaths().pluginSearchList(number);
}

} // namespace lum_default_paths
