// The plug-in as a host meets it: the built file, loaded at run time, with nothing of the
// instrument linked into this test.

#include <instrument_interface/if_instrument_plugin.h>
#include <instrument_interface/instrument_model.h>
#include <lum_host/host_application.h>
#include <overmap_replay/replay_inputs.h>
#include <qchannel/qchannel.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonObject>
#include <QPluginLoader>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QSettings>
#include <QTemporaryDir>

namespace {

const char* const EXTENSION_ID = "EB69CED9-93DA-4E49-A377-2161F674DC1D";

class PluginLoad : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static QTemporaryDir settings_dir;
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_dir.path());
        QSettings().setValue("overmap/onlineProbeUrl", "http://127.0.0.1:9/");
    }

    QPluginLoader m_loader{QStringLiteral(OVERMAP_PLUGIN_FILE)};
};

TEST_F(PluginLoad, MetadataNamesTheInterfaceAndTheVendor)
{
    const QJsonObject meta = m_loader.metaData();
    EXPECT_EQ(meta.value("IID").toString(), "com.trelvane.lumero.IfInstrumentPlugin.1");
    EXPECT_EQ(meta.value("className").toString(), "OvermapInstrumentPlugin");
    const QJsonObject custom = meta.value("MetaData").toObject();
    EXPECT_EQ(custom.value("name").toString(), "OvermapPlugin");
    EXPECT_EQ(custom.value("vendor").toString(), "TRELVANE");
    EXPECT_EQ(custom.value("version").toObject().value("major").toInt(), 1);
    EXPECT_EQ(custom.value("version").toObject().value("minor").toInt(), 0);
}

TEST_F(PluginLoad, InstanceCreatesAWorkingInstrumentOnTheHost)
{
    QObject* instance = m_loader.instance();
    ASSERT_NE(instance, nullptr) << m_loader.errorString().toStdString();
    EXPECT_EQ(m_loader.instance(), instance) << "one plug-in object per process";
    EXPECT_EQ(instance->qt_metacast(nullptr), nullptr);
    for (const char* name : {"IfInstrumentPlugin", "com.trelvane.lumero.IfInstrumentPlugin.1"})
        EXPECT_EQ(instance->qt_metacast(name),
                  static_cast<void*>(qobject_cast<IfInstrumentPlugin*>(instance)));
    EXPECT_EQ(instance->qt_metacast("im::OvermapInstrumentPlugin"), static_cast<void*>(instance));

    auto* plugin = qobject_cast<IfInstrumentPlugin*>(instance);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->getPluginName(), "Overmap");
    ASSERT_EQ(plugin->getInstrumentDescriptors().size(), 1u);
    const InstrumentDescriptor& descriptor = plugin->getInstrumentDescriptors().front();
    EXPECT_EQ(descriptor.type_identifier, "lum::overmap");
    EXPECT_EQ(descriptor.group, "Automotive");
    EXPECT_EQ(descriptor.display_name, "Overmap");
    for (const QString& url :
         {descriptor.icon_url, descriptor.instrument_view_url, descriptor.properties_page_url,
          QString("qrc:///overmap/instrument/icon_overmap_dark.svg"),
          QString("qrc:///overmap/instrument/icon_overmap_dark_selected.svg")})
        EXPECT_TRUE(QFile::exists(":" + QUrl(url).path())) << url.toStdString();
    plugin->registerTypes();

    // The host's side: recordings, the example setup in the extension, the application.
    auto recordings =
        overmap_replay::loadRecordings({LUMERO_EXAMPLES_DIR "/recordings/car1_drive_100hz.csv",
                                        LUMERO_EXAMPLES_DIR "/recordings/car2_drive_100hz.csv"});
    ASSERT_TRUE(recordings) << recordings.error;
    lum::HostApplication host;
    for (const auto& channel : recordings.manager->channels())
        host.getChannels()->appendChannel(new lum::qchannel::QChannel(channel));
    auto* extension = new QExtensionModule(EXTENSION_ID, 0x7f);
    ASSERT_TRUE(extension->loadFromFile(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml"));
    ASSERT_TRUE(host.addExtensionModule(extension));

    std::unique_ptr<im::InstrumentModel> instrument(descriptor.createInstrument(nullptr));
    ASSERT_NE(instrument, nullptr);
    EXPECT_EQ(instrument->parent(), nullptr);
    EXPECT_EQ(instrument->getType(), "lum::overmap");
    instrument->setApplication(&host);
    instrument->connectToApplication();
    auto* model = instrument->property("geoModel").value<QObject*>();
    ASSERT_NE(model, nullptr);
    auto* objects =
        model->property("objectsManager").value<QObject*>()->property("allObjects").value<QObject*>();
    EXPECT_EQ(objects->property("count").toInt(), 19);
    // The channels of the host's list are bound across the plug-in's boundary.
    EXPECT_EQ(instrument->getDataWindows().size(), 8u);

    // The view type is known to QML under its registered name.
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import Ferrin 1.0\nimport QtQuick 2.15\nItem { property IMOvermapInstrument model }",
                      QUrl());
    EXPECT_FALSE(component.isError()) << component.errorString().toStdString();
}

} // namespace
