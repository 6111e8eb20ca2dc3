#include <lum_host/application_state.h>
#include <lum_host/qextension_module.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(QExtensionModule, OnlyAChangedTextIsSignalled)
{
    QExtensionModule module("id", 7);
    QSignalSpy changed(&module, &QExtensionModule::extensionConfigurationChanged);
    ASSERT_TRUE(changed.isValid());
    module.setExtensionConfiguration("<Overmap/>");
    module.setExtensionConfiguration("<Overmap/>");
    EXPECT_EQ(changed.count(), 1);
    EXPECT_TRUE(module.isModified());
    EXPECT_EQ(module.property("configuration").toString(), "<Overmap/>");
    EXPECT_EQ(module.nodeId(), 7u);
}

TEST(QExtensionModule, FileRoundTripKeepsTheTextAndClearsModified)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("setup.xml");
    const QString text = QString::fromUtf8("<Overmap description=\"Prüffeld Süd — 2°\"/>");

    QExtensionModule writer("id", 1);
    writer.setExtensionConfiguration(text);
    ASSERT_TRUE(writer.saveToFile(path));
    EXPECT_FALSE(writer.isModified());
    EXPECT_EQ(writer.fileName(), path);
    EXPECT_EQ(readAll(path), text.toUtf8());

    QExtensionModule reader("id", 1);
    QSignalSpy changed(&reader, &QExtensionModule::extensionConfigurationChanged);
    ASSERT_TRUE(changed.isValid());
    ASSERT_TRUE(reader.loadFromFile(path));
    EXPECT_EQ(reader.getExtensionConfiguration(), text);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(reader.isModified());
}

TEST(QExtensionModule, FailedFileOperationsKeepTextAndFile)
{
    QTemporaryDir dir;
    const QString existing = dir.filePath("kept.xml");
    QExtensionModule module("id", 1);
    module.setExtensionConfiguration("<Overmap a=\"1\"/>");
    ASSERT_TRUE(module.saveToFile(existing));
    module.setExtensionConfiguration("<Overmap a=\"2\"/>");

    QString error;
    EXPECT_FALSE(module.loadFromFile(dir.filePath("missing.xml"), &error));
    EXPECT_TRUE(error.contains("missing.xml")) << error.toStdString();
    EXPECT_EQ(module.getExtensionConfiguration(), "<Overmap a=\"2\"/>");
    EXPECT_TRUE(module.isModified());

    error.clear();
    EXPECT_FALSE(module.saveToFile(dir.filePath("no/such/folder/x.xml"), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(module.fileName(), existing);
    EXPECT_EQ(readAll(existing), QByteArray("<Overmap a=\"1\"/>"));
}

TEST(ApplicationState, SettersSignalChangesOnly)
{
    lum::ApplicationState state;
    QSignalSpy mode(&state, &lum::IfApplicationState::modeChanged);
    QSignalSpy name(&state, &lum::IfApplicationState::measurementNameChanged);
    QSignalSpy time(&state, &lum::IfApplicationState::displayedTimeChanged);
    QSignalSpy offline(&state, &lum::IfApplicationState::offlineChanged);
    for (const QSignalSpy* spy : {&mode, &name, &time, &offline})
        ASSERT_TRUE(spy->isValid());
    for (int i = 0; i < 2; ++i) {
        state.setMode(lum::IfApplicationState::REPLAY);
        state.setMeasurementName("drive");
        state.setDisplayedTime(65.0);
        state.setOffline(true);
    }
    EXPECT_EQ(mode.count() + name.count() + time.count() + offline.count(), 4);
    EXPECT_EQ(state.property("mode").toInt(), 2);
    EXPECT_EQ(state.property("displayedTime").toDouble(), 65.0);
}

} // namespace
