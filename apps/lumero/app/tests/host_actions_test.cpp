// What views find in the host's context: the file look-up and the properties action.

#include <lumero_app/host_actions.h>

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

TEST(QmlFilesystem, KnowsResourcesLocalFilesAndPaths)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath("present.qml");
    {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    }
    const lum::QmlFilesystem fs;
    EXPECT_TRUE(fs.fileExists(QUrl("qrc:///lumero/main.qml")));
    EXPECT_TRUE(fs.fileExists(QUrl("qrc:/qml/Lumero/Themes/qmldir")));
    EXPECT_FALSE(fs.fileExists(QUrl("qrc:///overmap/Map/NoSuchMap.qml")));
    EXPECT_TRUE(fs.fileExists(QUrl::fromLocalFile(file)));
    EXPECT_TRUE(fs.fileExists(QUrl(file)));
    EXPECT_FALSE(fs.fileExists(QUrl::fromLocalFile(dir.filePath("absent.qml"))));
    EXPECT_FALSE(fs.fileExists(QUrl::fromLocalFile(dir.path()))) << "a folder is no file";
    EXPECT_FALSE(fs.fileExists(QUrl("https://example.org/present.qml")));
    EXPECT_FALSE(fs.fileExists(QUrl()));
}

TEST(HostActions, ToggleShowsAndHidesTheProperties)
{
    lum::HostActions actions;
    QSignalSpy changes(&actions, &lum::HostActions::propertiesVisibleChanged);
    ASSERT_TRUE(changes.isValid());
    EXPECT_TRUE(actions.propertiesVisible());
    actions.toggleInstrumentProperties();
    EXPECT_FALSE(actions.propertiesVisible());
    actions.setPropertiesVisible(false);
    actions.toggleInstrumentProperties();
    EXPECT_TRUE(actions.propertiesVisible());
    ASSERT_EQ(changes.count(), 2);
    EXPECT_EQ(changes.at(0).at(0).toBool(), false);
}

} // namespace
