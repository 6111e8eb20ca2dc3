#include <lum_default_paths/if_shell_folders.h>

#include <QDir>
#include <QStandardPaths>

namespace lum_default_paths {

namespace {

class SystemShellFolders : public IfShellFolders
{
public:
    bool folderPath(int shell_folder, std::string& path) const override
    {
        QString folder;
        switch (shell_folder) {
        case SHELL_USER_DOCUMENTS:
            folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
            break;
        case SHELL_ROAMING_APP_DATA:
            folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
            break;
        case SHELL_COMMON_DOCUMENTS:
            folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
            break;
        default:
            break;
        }
        if (folder.isEmpty())
            return false;
        path = folder.toStdString();
        return true;
    }

    bool tempPath(std::string& path) const override
    {
        const QString folder = QDir::tempPath();
        if (folder.isEmpty())
            return false;
        path = folder.toStdString();
        return true;
    }
};

} // namespace

std::shared_ptr<const IfShellFolders> systemShellFolders()
{
    static const auto folders = std::make_shared<const SystemShellFolders>();
    return folders;
}

} // namespace lum_default_paths
