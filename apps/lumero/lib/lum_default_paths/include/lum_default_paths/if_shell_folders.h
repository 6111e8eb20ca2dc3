#pragma once

#include <memory>
#include <string>

namespace lum_default_paths {

/// Shell folder numbers the placeholders are built from.
enum ShellFolder : int
{
    SHELL_USER_DOCUMENTS = 0x0005,
    SHELL_ROAMING_APP_DATA = 0x001a,
    SHELL_COMMON_DOCUMENTS = 0x002e
};

/// The operating system's well-known folders. Each query answers false when the
/// system cannot give the folder.
class IfShellFolders
{
public:
    virtual ~IfShellFolders() = default;
    virtual bool folderPath(int shell_folder, std::string& path) const = 0;
    virtual bool tempPath(std::string& path) const = 0;
};

/// The running system's folders. Where there are no shell folders (Linux), the
/// user's documents, configuration and data folders of the desktop stand in for
/// user documents, roaming application data and common documents.
std::shared_ptr<const IfShellFolders> systemShellFolders();

} // namespace lum_default_paths
