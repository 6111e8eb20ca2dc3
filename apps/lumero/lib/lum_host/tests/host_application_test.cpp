// The host's application object as instruments (through the interface) and views
// (through the meta-object) look things up in it.

#include <lum_host/host_application.h>

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>

#include <gtest/gtest.h>

#include <QMetaObject>
#include <QPointer>
#include <QQmlEngine>

#include <memory>

namespace {

const char* const OVERMAP_EXTENSION = "EB69CED9-93DA-4E49-A377-2161F674DC1D";

TEST(HostApplication, ExtensionModulesAreFoundByTheirIdentifier)
{
    lum::HostApplication app;
    auto* overmap = new QExtensionModule(OVERMAP_EXTENSION, 1);
    auto* other = new QExtensionModule("other", 2);
    ASSERT_TRUE(app.addExtensionModule(overmap));
    ASSERT_TRUE(app.addExtensionModule(other));
    const im::IfApplication& face = app;

    EXPECT_EQ(face.getExtensionModule(OVERMAP_EXTENSION), overmap);
    EXPECT_EQ(face.getExtensionModule("other"), other);
    EXPECT_EQ(face.getExtensionModule("eb69ced9-93da-4e49-a377-2161f674dc1d"), nullptr);
    EXPECT_EQ(face.getExtensionModule(QString()), nullptr);
    EXPECT_EQ(overmap->parent(), &app);
}

TEST(HostApplication, ATakenIdentifierKeepsItsModule)
{
    lum::HostApplication app;
    auto* first = new QExtensionModule("id", 1);
    QExtensionModule second("id", 2);
    ASSERT_TRUE(app.addExtensionModule(first));
    EXPECT_FALSE(app.addExtensionModule(&second));
    EXPECT_FALSE(app.addExtensionModule(nullptr));
    EXPECT_EQ(app.getExtensionModule("id"), first);
    EXPECT_EQ(second.parent(), nullptr);
    EXPECT_EQ(app.extensionModules().size(), 1);
}

TEST(HostApplication, ADeletedModuleIsNoLongerHandedOut)
{
    lum::HostApplication app;
    auto* module = new QExtensionModule("id", 1);
    ASSERT_TRUE(app.addExtensionModule(module));
    delete module;
    EXPECT_EQ(app.getExtensionModule("id"), nullptr);
    EXPECT_TRUE(app.addExtensionModule(new QExtensionModule("id", 2)));
}

TEST(HostApplication, TheViewsReachTheSameObjectsByName)
{
    lum::HostApplication app;
    auto* module = new QExtensionModule(OVERMAP_EXTENSION, 1);
    ASSERT_TRUE(app.addExtensionModule(module));
    const im::IfApplication& face = app;
    ASSERT_NE(face.getChannels(), nullptr);
    ASSERT_NE(face.getImageStore(), nullptr);
    ASSERT_NE(face.getState(), nullptr);

    EXPECT_EQ(app.property("channels").value<lum::qchannel::QChannelListModel*>(), face.getChannels());
    EXPECT_EQ(app.property("state").value<lum::IfApplicationState*>(), face.getState());
    EXPECT_EQ(face.getState(), app.applicationState());
    lum_utils::ImageStore* store = nullptr;
    ASSERT_TRUE(
        QMetaObject::invokeMethod(&app, "getImageStore", Q_RETURN_ARG(lum_utils::ImageStore*, store)));
    EXPECT_EQ(store, face.getImageStore());
    QExtensionModule* found = nullptr;
    ASSERT_TRUE(QMetaObject::invokeMethod(&app, "getExtensionModule", Q_RETURN_ARG(QExtensionModule*, found),
                                          Q_ARG(QString, OVERMAP_EXTENSION)));
    EXPECT_EQ(found, module);

    // Handed to the views, none of them may be collected by the engine.
    for (QObject* object : {static_cast<QObject*>(face.getChannels()), static_cast<QObject*>(store),
                            static_cast<QObject*>(face.getState()), static_cast<QObject*>(module)})
        EXPECT_EQ(QQmlEngine::objectOwnership(object), QQmlEngine::CppOwnership);
}

TEST(HostApplication, TheChannelsGoWithTheApplication)
{
    auto regions = std::make_shared<ferrin::DataRegionsManager>();
    ferrin::ChannelSetup setup;
    setup.id = channel_config::ChannelID(1, 1);
    setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
    setup.regions_manager = regions;
    setup.items = std::make_shared<ferrin::ConfigItemStore>();
    QPointer<lum::qchannel::QChannel> channel = new lum::qchannel::QChannel(
        lum::data::SyncScalarChannel::create(std::move(setup), {1.0}, regions, 1));
    {
        lum::HostApplication app;
        app.getChannels()->appendChannel(channel);
        ASSERT_EQ(app.getChannels()->size(), 1);
    }
    EXPECT_TRUE(channel.isNull());
}

TEST(HostApplication, TheStateSetByTheHostIsWhatInstrumentsRead)
{
    lum::HostApplication app;
    app.applicationState()->setMode(lum::IfApplicationState::REPLAY);
    app.applicationState()->setDisplayedTime(12.5);
    const im::IfApplication& face = app;
    EXPECT_EQ(face.getState()->mode(), lum::IfApplicationState::REPLAY);
    EXPECT_EQ(face.getState()->displayedTime(), 12.5);
}

} // namespace
