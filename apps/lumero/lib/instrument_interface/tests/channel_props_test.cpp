// Channel properties over real channels of the host, and their list model.

#include <instrument_interface/channel_properties_list_model.h>
#include <instrument_interface/channel_props.h>
#include <instrument_interface/property_change_forwarder.h>

#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QSignalSpy>
#include <QStringList>
#include <QThread>

#include <cctype>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

using channel_config::ChannelID;
using im::ChannelPropertiesListModel;
using im::ChannelProps;
using lum::qchannel::QChannel;
using uni_testing::AssertCapture;

namespace channel_props_test {

/// Synchronous scalar channels in memory, with a configuration end so that items can be set.
class Channels
{
public:
    std::shared_ptr<lum::data::SyncScalarChannel> make(ChannelID id, const std::string& name,
                                                       std::vector<double> values)
    {
        ferrin::ChannelSetup setup;
        setup.id = id;
        setup.time_base = m_time_base;
        setup.regions_manager = m_regions;
        setup.config_manager = &m_manager;
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem(name));
        setup.items->set("Ferrin/LongName", config_items::StringConfigItem(""));
        setup.items->set("Used", config_items::SingleValueConfigItem<bool>(true));
        setup.items->set("Ferrin/Color", config_items::StringConfigItem("#ff0000"));
        setup.items->set("Unit", config_items::StringConfigItem("V"));
        setup.items->set("Gain", config_items::ScalarConfigItem(1.0, "mV"));
        auto channel = lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), m_regions,
                                                            ++m_next_stream);
        m_manager.addChannel(channel);
        return channel;
    }

private:
    std::shared_ptr<lum::data::MemoryTimeBase> m_time_base =
        std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager m_manager;
    std::uint64_t m_next_stream = 0;
};

/// Properties with a setting of their own, as the instruments' subclasses have them,
/// and a record of the item changes that reached the virtual slot.
class ThresholdProps : public ChannelProps
{
    Q_OBJECT
    Q_PROPERTY(double threshold MEMBER m_threshold NOTIFY thresholdChanged)

public:
    explicit ThresholdProps(QChannel* channel, QObject* parent = nullptr) : ChannelProps(channel, parent)
    {
        forwarder()->addProperty("threshold", true);
    }

    void channelConfigChanged(ChannelID id, QString key) override
    {
        seen_keys << key;
        seen_ids.push_back(id);
        ChannelProps::channelConfigChanged(id, key);
    }

    QStringList seen_keys;
    std::vector<ChannelID> seen_ids;

Q_SIGNALS:
    void thresholdChanged();

private:
    double m_threshold = 0.0;
};

class ChannelPropsTest : public ::testing::Test
{
protected:
    Channels channels;
    std::shared_ptr<lum::data::SyncScalarChannel> speed =
        channels.make(ChannelID(3, 1), "speed", {1.0, -2.0, 5.0});
    QChannel qspeed{speed};
};

// --- values -----------------------------------------------------------------------------

TEST(ChannelPropsUnified, WithoutAChannelTheNeutralValuesAreAnswered)
{
    ChannelProps unified(nullptr);
    EXPECT_EQ(unified.channel(), nullptr);
    EXPECT_EQ(unified.minValue(), 0.0);
    EXPECT_EQ(unified.maxValue(), 1.0);
    EXPECT_EQ(unified.unit(), QString());
    // The views read them as properties.
    EXPECT_EQ(unified.property("minValue"), QVariant(0.0));
    EXPECT_EQ(unified.property("maxValue"), QVariant(1.0));
    EXPECT_EQ(unified.property("unit"), QVariant(QString()));
}

TEST(ChannelPropsUnified, AnItemChangeWithoutAChannelTellsANullChannel)
{
    ChannelProps unified(nullptr);
    QSignalSpy changed(&unified, &ChannelProps::channelChanged);
    ASSERT_TRUE(changed.isValid());
    unified.channelConfigChanged(ChannelID(1, 1), "Unit");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<QChannel*>(), nullptr);
}

TEST_F(ChannelPropsTest, TheChannelsRangeAndUnitAreAnswered)
{
    ChannelProps props(&qspeed);
    EXPECT_EQ(props.channel(), &qspeed);
    EXPECT_EQ(props.minValue(), -2.0);
    EXPECT_EQ(props.maxValue(), 5.0);
    EXPECT_EQ(props.unit(), "V");
    EXPECT_EQ(props.property("channel").value<QChannel*>(), &qspeed);
}

TEST_F(ChannelPropsTest, InstancesAreCounted)
{
    const long before = ChannelProps::count();
    {
        ChannelProps a(&qspeed);
        ThresholdProps b(nullptr);
        EXPECT_EQ(ChannelProps::count(), before + 2);
    }
    EXPECT_EQ(ChannelProps::count(), before);
}

// --- signals of the channel -------------------------------------------------------------

TEST_F(ChannelPropsTest, AUnitChangeComesThroughAsTheChannelTellsIt)
{
    ChannelProps props(&qspeed);
    QSignalSpy unit(&props, &ChannelProps::unitChanged);
    QSignalSpy min(&props, &ChannelProps::minValueChanged);
    QSignalSpy max(&props, &ChannelProps::maxValueChanged);
    QSignalSpy changed(&props, &ChannelProps::channelChanged);
    ASSERT_TRUE(unit.isValid());
    ASSERT_TRUE(min.isValid());
    ASSERT_TRUE(max.isValid());
    ASSERT_TRUE(changed.isValid());

    ASSERT_TRUE(qspeed.setConfigItem("Unit", QString("km/h")));

    EXPECT_EQ(props.unit(), "km/h");
    EXPECT_EQ(unit.count(), 1);
    EXPECT_EQ(min.count(), 1);
    EXPECT_EQ(max.count(), 1);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<QChannel*>(), &qspeed);
}

TEST_F(ChannelPropsTest, RangeSignalsComeThroughOnTheirOwn)
{
    ChannelProps props(&qspeed);
    QSignalSpy unit(&props, &ChannelProps::unitChanged);
    QSignalSpy min(&props, &ChannelProps::minValueChanged);
    QSignalSpy max(&props, &ChannelProps::maxValueChanged);
    ASSERT_TRUE(unit.isValid());
    ASSERT_TRUE(min.isValid());
    ASSERT_TRUE(max.isValid());

    Q_EMIT qspeed.minValChanged();
    Q_EMIT qspeed.minValChanged();
    Q_EMIT qspeed.maxValChanged();

    EXPECT_EQ(min.count(), 2);
    EXPECT_EQ(max.count(), 1);
    EXPECT_EQ(unit.count(), 0);
}

class AnyItemChange : public ChannelPropsTest, public ::testing::WithParamInterface<const char*>
{};

TEST_P(AnyItemChange, TellsChannelChangedThroughTheVirtualSlot)
{
    ThresholdProps props(&qspeed);
    QSignalSpy changed(&props, &ChannelProps::channelChanged);
    ASSERT_TRUE(changed.isValid());

    speed->notifyConfigItemChanged(GetParam());

    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<QChannel*>(), &qspeed);
    EXPECT_EQ(props.seen_keys, QStringList{GetParam()});
    ASSERT_EQ(props.seen_ids.size(), 1u);
    EXPECT_EQ(props.seen_ids[0], ChannelID(3, 1));
}

INSTANTIATE_TEST_SUITE_P(Keys, AnyItemChange,
                         ::testing::Values("Unit", "Ferrin/Name", "Ferrin/Color", "Used", "Gain",
                                           "Unheard/Of"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             std::string name;
                             for (const char* c = info.param; *c != '\0'; ++c)
                                 name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
                             return name;
                         });

TEST_F(ChannelPropsTest, AChangeMadeOnAnotherThreadArrivesInTheObjectsThread)
{
    ThresholdProps props(&qspeed);
    std::vector<QThread*> threads;
    QObject::connect(&props, &ChannelProps::channelChanged,
                     [&threads] { threads.push_back(QThread::currentThread()); });

    std::thread writer([this] { speed->notifyConfigItemChanged("Unit"); });
    writer.join();
    EXPECT_TRUE(threads.empty());
    EXPECT_TRUE(props.seen_keys.isEmpty());

    QCoreApplication::processEvents();
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_EQ(threads[0], QThread::currentThread());
    EXPECT_EQ(props.seen_keys, QStringList{"Unit"});
}

TEST_F(ChannelPropsTest, ADestroyedChannelIsToldAndForgotten)
{
    auto* doomed = new QChannel(channels.make(ChannelID(3, 7), "doomed", {4.0, 6.0}));
    ChannelProps props(doomed);
    QSignalSpy destroyed(&props, &ChannelProps::channelDestroyed);
    ASSERT_TRUE(destroyed.isValid());
    // Heard after the properties: the loss is told and the channel is still kept.
    QChannel* kept = nullptr;
    QObject::connect(doomed, &QChannel::destroying, [&] { kept = props.channel(); });

    delete doomed;

    EXPECT_EQ(kept, doomed);
    ASSERT_EQ(destroyed.count(), 1);
    // The channel is dead: compare the pointer without casting it.
    EXPECT_EQ(*static_cast<QChannel* const*>(destroyed.at(0).at(0).constData()), doomed);
    // Reads after the loss must not touch the dead channel.
    EXPECT_EQ(props.channel(), nullptr);
    EXPECT_EQ(props.minValue(), 0.0);
    EXPECT_EQ(props.maxValue(), 1.0);
    EXPECT_EQ(props.unit(), QString());
}

// --- settings ---------------------------------------------------------------------------

TEST_F(ChannelPropsTest, ASettingIsToldAndCountsAsAConfigChange)
{
    ThresholdProps props(&qspeed);
    QSignalSpy setting(&props, &ChannelProps::settingChanged);
    QSignalSpy config(&props, &ChannelProps::configChanged);
    ASSERT_TRUE(setting.isValid());
    ASSERT_TRUE(config.isValid());

    props.setProperty("threshold", 2.5);

    ASSERT_EQ(setting.count(), 1);
    EXPECT_EQ(setting.at(0).at(0).value<QObject*>(), &props);
    EXPECT_EQ(setting.at(0).at(1).toString(), "threshold");
    EXPECT_EQ(config.count(), 1);
}

TEST_F(ChannelPropsTest, ASettingOfTheUnifiedPropertiesReachesTheInstrument)
{
    ChannelProps outer(nullptr);
    ThresholdProps unified(nullptr, &outer);
    auto* forwarder = outer.findChild<im::PropertyChangeForwarder*>();
    ASSERT_NE(forwarder, nullptr);
    forwarder->addSource(&unified, "unifiedProperties");
    QSignalSpy setting(&outer, &ChannelProps::settingChanged);
    QSignalSpy config(&outer, &ChannelProps::configChanged);
    ASSERT_TRUE(setting.isValid());
    ASSERT_TRUE(config.isValid());

    unified.setProperty("threshold", 1.0);

    ASSERT_EQ(setting.count(), 1);
    EXPECT_EQ(setting.at(0).at(0).value<QObject*>(), &outer);
    EXPECT_EQ(setting.at(0).at(1).toString(), "unifiedProperties.threshold");
    EXPECT_EQ(config.count(), 1);
}

// --- the list ---------------------------------------------------------------------------

class ChannelPropertiesList : public ChannelPropsTest
{
protected:
    void SetUp() override
    {
        uni_testing::attachModelTester(&model);
        model.append(QList<QObject*>{&speed_props, &rpm_props, &other_node_props});
    }

    std::shared_ptr<lum::data::SyncScalarChannel> rpm = channels.make(ChannelID(3, 2), "rpm", {800.0});
    // Same local part as speed, on another node.
    std::shared_ptr<lum::data::SyncScalarChannel> remote = channels.make(ChannelID(4, 1), "remote", {0.0});
    QChannel qrpm{rpm};
    QChannel qremote{remote};
    ChannelProps speed_props{&qspeed};
    ChannelProps rpm_props{&qrpm};
    ChannelProps other_node_props{&qremote};
    ChannelPropertiesListModel model;
};

TEST_F(ChannelPropertiesList, LookUpByChannel)
{
    EXPECT_EQ(model.indexOf(&qspeed), 0);
    EXPECT_EQ(model.indexOf(&qrpm), 1);
    EXPECT_EQ(model.indexOfChannel(&qremote), 2);
    EXPECT_TRUE(model.contains(&qrpm));

    QChannel stranger(channels.make(ChannelID(3, 9), "stranger", {1.0}));
    EXPECT_EQ(model.indexOf(&stranger), -1);
    EXPECT_EQ(model.indexOfChannel(&stranger), -1);
    EXPECT_FALSE(model.contains(&stranger));
}

TEST_F(ChannelPropertiesList, LookUpByIdComparesBothHalves)
{
    EXPECT_EQ(model.indexOf(ChannelID(3, 1)), 0);
    EXPECT_EQ(model.indexOf(ChannelID(3, 2)), 1);
    EXPECT_EQ(model.indexOf(ChannelID(4, 1)), 2);
    EXPECT_EQ(model.indexOf(ChannelID(4, 2)), -1);
    EXPECT_EQ(model.indexOf(ChannelID(0, 0)), -1);
}

TEST_F(ChannelPropertiesList, TheFirstMatchingRowWins)
{
    ChannelProps again(&qrpm);
    model.append(&again);
    EXPECT_EQ(model.indexOf(&qrpm), 1);
    EXPECT_EQ(model.indexOf(ChannelID(3, 2)), 1);
    model.move(3, 0);
    EXPECT_EQ(model.indexOf(&qrpm), 0);
    model.removeItem(&again);
}

TEST_F(ChannelPropertiesList, RowsWithoutAChannelAreSkippedByTheIdLookUp)
{
    ChannelProps unified(nullptr);
    model.insert(0, &unified);
    EXPECT_EQ(model.indexOf(ChannelID(3, 1)), 1);
    EXPECT_EQ(model.indexOf(static_cast<QChannel*>(nullptr)), 0);
    model.removeItem(&unified);
}

TEST_F(ChannelPropertiesList, TheObjectLookUpsOfTheBaseRemain)
{
    EXPECT_TRUE(model.contains(static_cast<QObject*>(&rpm_props)));
    EXPECT_EQ(model.indexOf(static_cast<QObject*>(&other_node_props)), 2);
    EXPECT_EQ(model.at(1), &rpm_props);
}

TEST_F(ChannelPropertiesList, TheLookUpsAreInvokable)
{
    int row = -2;
    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "indexOf", Q_RETURN_ARG(int, row),
                                          Q_ARG(lum::qchannel::QChannel*, &qrpm)));
    EXPECT_EQ(row, 1);
    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "indexOf", Q_RETURN_ARG(int, row),
                                          Q_ARG(channel_config::ChannelID, ChannelID(4, 1))));
    EXPECT_EQ(row, 2);
    bool found = false;
    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "contains", Q_RETURN_ARG(bool, found),
                                          Q_ARG(lum::qchannel::QChannel*, &qspeed)));
    EXPECT_TRUE(found);
}

TEST_F(ChannelPropertiesList, OnlyChannelPropertiesAreTaken)
{
    QObject stranger;
    AssertCapture capture;
    model.append(&stranger);
    EXPECT_TRUE(capture.fired("isObjectCompatible(object)"));
    EXPECT_EQ(model.size(), 3);
    EXPECT_FALSE(model.contains(&stranger));
}

TEST_F(ChannelPropertiesList, ADestroyedChannelIsStillFoundWhileItsLossIsTold)
{
    auto* doomed = new QChannel(channels.make(ChannelID(3, 8), "doomed", {1.0}));
    ChannelProps doomed_props(doomed);
    model.append(&doomed_props);
    // As the instrument does it: the row goes when its channel does.
    QObject::connect(&doomed_props, &ChannelProps::channelDestroyed, &model,
                     [this](QChannel* channel) { model.listRemove(model.indexOf(channel)); });

    delete doomed;

    EXPECT_EQ(model.size(), 3);
    EXPECT_FALSE(model.contains(&doomed_props));
}

} // namespace channel_props_test

#include "channel_props_test.moc"
