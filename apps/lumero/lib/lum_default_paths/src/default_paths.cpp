#include <lum_default_paths/default_paths.h>

#include <uni_base/uni_assert.h>

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lum_default_paths {

namespace fs = std::filesystem;

namespace {

constexpr const char* MARKER_FILE = "/licenses/license_qt_lgpl.xml";

std::string parentOf(const std::string& dir)
{
    return fs::path(dir).parent_path().generic_string();
}

bool exists(const std::string& path)
{
    std::error_code error;
    return fs::exists(path, error);
}

/// A shell folder, else the temporary folder; a failure of both is a broken system.
std::string shellFolder(const IfShellFolders& shell, int shell_folder)
{
    std::string path;
    if (shell.folderPath(shell_folder, path) || shell.tempPath(path))
        return path;
    std::array<char, 48> expression{};
    std::snprintf(expression.data(), expression.size(), "GetWindowsFolderPath(0x%04x, s)",
                  static_cast<unsigned>(shell_folder));
    uni::detail::assertOutcome(uni::assertFailed(expression.data(), __FILE__, __LINE__));
    return std::string();
}

} // namespace

std::string pathTemplate(int number)
{
    switch (number) {
    case LOCK:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero/Lock";
    case LOG:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero/Log";
    case CRASH_DUMP:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero/CrashDump";
    case FONTS:
        return "%APP_DATA%/fonts";
    case IMAGES:
        return "%APP_DATA%/images";
    case QML:
        return "qrc:///qml";
    case QML_MAIN:
        return "qrc:///qml/main.qml";
    case SETTINGS:
        return "%ROAMING_APP_DATA%/Trelvane/Lumero/Settings";
    case COMMON_FOLDER:
    case PUBLIC_FOLDER:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero";
    case APPLICATION_DATA:
        return "%APP_DATA%";
    case TRANSLATION:
        return "%APP_DATA%/translation";
    case USER_THEMES:
        return "%ROAMING_APP_DATA%/Trelvane/Lumero/Themes";
    case COMMON_THEMES:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero/Themes";
    case TEDS:
        return "%APP_DATA%/teds";
    case SENSOR_DATABASE:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero/sensor_db.xml";
    case TEMPLATES:
        return "%COMMON_DOCUMENTS%/Trelvane/Lumero/Templates";
    default:
        return std::string();
    }
}

DefaultPaths::DefaultPaths(std::string application_dir, std::shared_ptr<const IfShellFolders> shell_folders)
    : m_application_dir(std::move(application_dir)), m_shell_folders(std::move(shell_folders))
{
    UNI_ASSERT(m_shell_folders != nullptr);
}

std::string DefaultPaths::applicationDataDir() const
{
    // Installed layouts keep the binaries either in the data folder or one level below it;
    // a /usr install keeps them in bin and the data in share/lumero beside it.
    const std::string parent = parentOf(m_application_dir);
    for (const std::string& candidate : {m_application_dir, parent, parent + "/share/lumero"}) {
        if (exists(candidate + MARKER_FILE))
            return candidate;
    }
    return std::string();
}

std::map<std::string, std::string> DefaultPaths::placeholders() const
{
    std::map<std::string, std::string> table;
    table["%APP_BIN%"] = m_application_dir;
    table["%APP_DATA%"] = applicationDataDir();
    if (!m_shell_folders)
        return table;
    table["%COMMON_DOCUMENTS%"] = shellFolder(*m_shell_folders, SHELL_COMMON_DOCUMENTS);
    table["%ROAMING_APP_DATA%"] = shellFolder(*m_shell_folders, SHELL_ROAMING_APP_DATA);
    // Both from the one query: existing installations keep their files under the documents folder.
    table["%USER_DOCUMENTS%"] = shellFolder(*m_shell_folders, SHELL_USER_DOCUMENTS);
    table["%USER_HOME%"] = table["%USER_DOCUMENTS%"];
    return table;
}

std::string DefaultPaths::expand(const std::string& text) const
{
    std::string expanded = text;
    for (const auto& [placeholder, value] : placeholders())
        boost::algorithm::replace_all(expanded, placeholder, value);
    return expanded;
}

std::string DefaultPaths::path(int number) const
{
    return expand(pathTemplate(number));
}

std::vector<std::string> DefaultPaths::pluginSearchList(int number) const
{
    std::vector<std::string> list;
    const auto addBelowApplication = [&](const std::string& relative) {
        for (const std::string& base : {m_application_dir, parentOf(m_application_dir)}) {
            const std::string candidate = base + "/" + relative;
            if (exists(candidate))
                list.push_back(candidate);
        }
    };
    switch (number) {
    case INSTRUMENT_PLUGINS:
        addBelowApplication("plugins/instruments");
        break;
    case REMOTE_CONTROL_PLUGINS:
        addBelowApplication("plugins/remote_control");
        break;
    case PLUGINS:
        addBelowApplication("plugins");
        for (const char* shared :
             {"%COMMON_DOCUMENTS%/Trelvane/Lumero/Plugins", "%USER_DOCUMENTS%/Trelvane/Lumero/Plugins"}) {
            // Listed whether or not they exist yet: users put their plug-ins there.
            const std::string candidate = expand(shared);
            if (std::find(list.begin(), list.end(), candidate) == list.end())
                list.push_back(candidate);
        }
        break;
    default:
        list.push_back(path(number));
        break;
    }
    return list;
}

std::string applicationDir()
{
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::current_path(error).generic_string() : executable.parent_path().generic_string();
}

const DefaultPaths& defaultPaths()
{
    static const DefaultPaths paths(applicationDir(), systemShellFolders());
    return paths;
}

} // namespace lum_default_paths
