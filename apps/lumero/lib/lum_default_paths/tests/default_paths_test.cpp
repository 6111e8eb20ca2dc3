#include <lum_default_paths/default_paths.h>

#include <uni_testing/assert_capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

using lum_default_paths::DefaultPaths;
using lum_default_paths::pathTemplate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

/// Shell folders from a table; a missing entry is a failed query.
class FakeShellFolders : public lum_default_paths::IfShellFolders
{
public:
    std::map<int, std::string> folders;
    std::string temp;

    bool folderPath(int shell_folder, std::string& path) const override
    {
        const auto it = folders.find(shell_folder);
        if (it == folders.end())
            return false;
        path = it->second;
        return true;
    }
    bool tempPath(std::string& path) const override
    {
        path = temp;
        return !temp.empty();
    }
};

/// An installation in a fresh folder: <root>/bin holds the executable.
class DefaultPathsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_root = fs::temp_directory_path() /
                 ("lum_default_paths_" +
                  std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(m_root);
        fs::create_directories(m_root / "bin");
        m_shell->folders = {{0x002e, "/common"}, {0x001a, "/roaming"}, {0x0005, "/docs"}};
        m_shell->temp = "/tmp-folder";
    }
    void TearDown() override { fs::remove_all(m_root); }

    std::string root() const { return m_root.generic_string(); }
    std::string bin() const { return (m_root / "bin").generic_string(); }
    DefaultPaths paths() const { return DefaultPaths(bin(), m_shell); }
    void touch(const fs::path& file)
    {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "x";
    }

    fs::path m_root;
    std::shared_ptr<FakeShellFolders> m_shell = std::make_shared<FakeShellFolders>();
};

} // namespace

TEST(DefaultPathTemplates, NumbersWithoutTemplateGiveEmptyText)
{
    EXPECT_EQ(pathTemplate(0), "%COMMON_DOCUMENTS%/Trelvane/Lumero/Lock");
    EXPECT_EQ(pathTemplate(6), "qrc:///qml/main.qml");
    EXPECT_EQ(pathTemplate(7), "%ROAMING_APP_DATA%/Trelvane/Lumero/Settings");
    EXPECT_EQ(pathTemplate(11), "%COMMON_DOCUMENTS%/Trelvane/Lumero");
    EXPECT_EQ(pathTemplate(18), pathTemplate(11));
    EXPECT_EQ(pathTemplate(20), "%COMMON_DOCUMENTS%/Trelvane/Lumero/sensor_db.xml");
    EXPECT_EQ(pathTemplate(22), "%COMMON_DOCUMENTS%/Trelvane/Lumero/Templates");
    for (int number : {-1, 8, 9, 10, 12, 13, 21, 23, 1000})
        EXPECT_EQ(pathTemplate(number), "") << number;
}

TEST_F(DefaultPathsTest, ExpandsEveryKnownPlaceholderAndKeepsUnknownOnes)
{
    const DefaultPaths defaults = paths();
    EXPECT_EQ(defaults.expand("%USER_HOME%/x"), defaults.expand("%USER_DOCUMENTS%/x"));
    EXPECT_EQ(defaults.expand("%USER_HOME%/x"), "/docs/x");
    EXPECT_EQ(defaults.expand("%APP_BIN%|%ROAMING_APP_DATA%|%COMMON_DOCUMENTS%|%COMMON_DOCUMENTS%|%OTHER%"),
              bin() + "|/roaming|/common|/common|%OTHER%");
    EXPECT_EQ(defaults.path(1), "/common/Trelvane/Lumero/Log");
    EXPECT_EQ(defaults.path(5), "qrc:///qml");
    EXPECT_EQ(defaults.path(12), "");
}

TEST_F(DefaultPathsTest, ApplicationDataIsTheFolderHoldingTheMarker)
{
    const DefaultPaths defaults = paths();
    EXPECT_EQ(defaults.path(3), "/fonts") << "unknown data folder";

    touch(m_root / "licenses/license_qt_lgpl.xml");
    EXPECT_EQ(defaults.applicationDataDir(), root());
    EXPECT_EQ(defaults.path(4), root() + "/images");

    touch(m_root / "bin/licenses/license_qt_lgpl.xml");
    EXPECT_EQ(defaults.expand("%APP_DATA%"), bin()) << "the executable's own folder comes first";
}

TEST_F(DefaultPathsTest, ApplicationDataOfAUsrInstallIsItsShareFolder)
{
    touch(m_root / "share/lumero/licenses/license_qt_lgpl.xml");
    EXPECT_EQ(paths().path(3), root() + "/share/lumero/fonts");
}

TEST_F(DefaultPathsTest, FailedShellQueriesFallBackToTheTemporaryFolder)
{
    m_shell->folders.erase(0x001a);
    EXPECT_EQ(paths().path(16), "/tmp-folder/Trelvane/Lumero/Themes");

    m_shell->folders.clear();
    m_shell->temp.clear();
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(paths().path(17), "/Trelvane/Lumero/Themes");
    EXPECT_TRUE(asserts.fired("GetWindowsFolderPath(0x002e, s)"));
    EXPECT_TRUE(asserts.fired("GetWindowsFolderPath(0x001a, s)"));
    EXPECT_TRUE(asserts.fired("GetWindowsFolderPath(0x0005, s)"));
}

TEST_F(DefaultPathsTest, PluginListsHoldExistingFoldersAndTheDocumentsFolders)
{
    const DefaultPaths defaults = paths();
    EXPECT_THAT(defaults.pluginSearchList(9), IsEmpty());

    fs::create_directories(m_root / "bin/plugins/instruments");
    fs::create_directories(m_root / "plugins/instruments");
    touch(m_root / "plugins/remote_control");
    EXPECT_THAT(defaults.pluginSearchList(9),
                ElementsAre(bin() + "/plugins/instruments", root() + "/plugins/instruments"));
    EXPECT_THAT(defaults.pluginSearchList(10), ElementsAre(root() + "/plugins/remote_control"))
        << "existence is tested, not the kind of entry";

    // The documents folders are listed, existing or not; an equal text is listed once,
    // a path that differs only in its spelling twice.
    m_shell->folders[0x002e] = root() + "/shared";
    m_shell->folders[0x0005] = root() + "/shared";
    EXPECT_THAT(defaults.pluginSearchList(8), ElementsAre(bin() + "/plugins", root() + "/plugins",
                                                          root() + "/shared/Trelvane/Lumero/Plugins"));
    m_shell->folders[0x0005] = root() + "/shared/.";
    EXPECT_THAT(defaults.pluginSearchList(8), ElementsAre(bin() + "/plugins", root() + "/plugins",
                                                          root() + "/shared/Trelvane/Lumero/Plugins",
                                                          root() + "/shared/./Trelvane/Lumero/Plugins"));

    EXPECT_THAT(defaults.pluginSearchList(0), ElementsAre(root() + "/shared/Trelvane/Lumero/Lock"));
    EXPECT_THAT(defaults.pluginSearchList(21), ElementsAre(""));
}

TEST(SystemDefaultPaths, EveryPlaceholderOfTheRunningProcessIsFilled)
{
    EXPECT_EQ(lum_default_paths::expandPath("%USER_HOME%/x"),
              lum_default_paths::expandPath("%USER_DOCUMENTS%/x"));
    EXPECT_EQ(lum_default_paths::expandPath("%APP_BIN%"), lum_default_paths::applicationDir());
    EXPECT_TRUE(fs::exists(lum_default_paths::applicationDir() + "/lum_default_paths_tests"));
    for (int number : {0, 7, 11})
        EXPECT_THAT(lum_default_paths::path(number), ::testing::Not(::testing::HasSubstr("%"))) << number;
}
