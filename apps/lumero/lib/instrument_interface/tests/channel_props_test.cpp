// Channel properties over real channels of the host, and their list model.

#include "instrument_fixture.h"

#include <instrument_interface/channel_properties_list_model.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <QThread>

#include <thread>

using channel_config::ChannelID;
using im::ChannelPropertiesListModel;
using im::ChannelProps;
using instrument_test::Channels;
using lum::qchannel::QChannel;

namespace channel_props_test {

/// Properties that record the item changes reaching the virtual slot.
class RecordingProps : public instrument_test::SettingProps
{
public:
    using SettingProps::SettingProps;
    void channelConfigChanged(ChannelID id, QString key) override
    {
        seen << QString::number(id.getLocalId()) + " " + key;
        ChannelProps::channelConfigChanged(id, key);
    }
    QStringList seen;
};

class ChannelPropsTest : public ::testing::Test
{
protected:
    Channels channels;
    QChannel* speed = channels.make(ChannelID(3, 1), "speed", {1.0, -2.0, 5.0});
};

TEST_F(ChannelPropsTest, RangeAndUnitOfTheChannelOrNeutralWithoutOne)
{
    ChannelProps props(speed);
    EXPECT_EQ(props.property("channel").value<QChannel*>(), speed);
    EXPECT_EQ(props.property("minValue"), QVariant(-2.0));
    EXPECT_EQ(props.property("maxValue"), QVariant(5.0));
    EXPECT_EQ(props.property("unit"), QVariant(QString("V")));

    ChannelProps unified(nullptr);
    EXPECT_EQ(unified.property("minValue"), QVariant(0.0));
    EXPECT_EQ(unified.property("maxValue"), QVariant(1.0));
    EXPECT_EQ(unified.property("unit"), QVariant(QString()));
    QSignalSpy changed(&unified, &ChannelProps::channelChanged);
    ASSERT_TRUE(changed.isValid());
    unified.channelConfigChanged(ChannelID(1, 1), "Unit");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<QChannel*>(), nullptr);
}

TEST_F(ChannelPropsTest, ChangesOfTheChannelComeThroughAsItTellsThem)
{
    RecordingProps props(speed, nullptr);
    QSignalSpy unit(&props, &ChannelProps::unitChanged);
    QSignalSpy min(&props, &ChannelProps::minValueChanged);
    QSignalSpy max(&props, &ChannelProps::maxValueChanged);
    QSignalSpy changed(&props, &ChannelProps::channelChanged);
    ASSERT_TRUE(unit.isValid() && min.isValid() && max.isValid() && changed.isValid());

    ASSERT_TRUE(speed->setConfigItem("Unit", QString("km/h")));
    EXPECT_EQ(props.unit(), "km/h");
    EXPECT_EQ(unit.count(), 1);
    EXPECT_EQ(min.count(), 1);
    EXPECT_EQ(max.count(), 1);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).value<QChannel*>(), speed);

    // Range signals come on their own; any item reaches the virtual slot.
    Q_EMIT speed->minValChanged();
    Q_EMIT speed->maxValChanged();
    speed->ferrinChannel()->notifyConfigItemChanged("Unheard/Of");
    EXPECT_EQ(min.count(), 3); // any item but the colour may move the range
    EXPECT_EQ(max.count(), 3);
    EXPECT_EQ(unit.count(), 1);
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(props.seen, QStringList({"1 Unit", "1 Unheard/Of"}));

    // From another thread the change arrives in the object's thread.
    std::vector<QThread*> threads;
    QObject::connect(&props, &ChannelProps::channelChanged,
                     [&threads] { threads.push_back(QThread::currentThread()); });
    std::thread writer([this] { speed->ferrinChannel()->notifyConfigItemChanged("Gain"); });
    writer.join();
    EXPECT_TRUE(threads.empty());
    QCoreApplication::processEvents();
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_EQ(threads[0], QThread::currentThread());
    EXPECT_EQ(props.seen.last(), "1 Gain");
}

TEST_F(ChannelPropsTest, ADestroyedChannelIsToldAndForgotten)
{
    QChannel* doomed = channels.make(ChannelID(3, 7), "doomed", {4.0, 6.0});
    ChannelProps props(doomed);
    QSignalSpy destroyed(&props, &ChannelProps::channelDestroyed);
    ASSERT_TRUE(destroyed.isValid());
    // Heard after the properties: the loss is told and the channel is still kept.
    QChannel* kept = nullptr;
    QObject::connect(doomed, &QChannel::destroying, [&] { kept = props.channel(); });

    channels.destroy(doomed);

    EXPECT_EQ(kept, doomed);
    ASSERT_EQ(destroyed.count(), 1);
    // The channel is dead: compare the pointer without casting it.
    EXPECT_EQ(*static_cast<QChannel* const*>(destroyed.at(0).at(0).constData()), doomed);
    EXPECT_EQ(props.channel(), nullptr);
    EXPECT_EQ(props.maxValue(), 1.0);
    EXPECT_EQ(props.unit(), QString());
}

TEST_F(ChannelPropsTest, SettingsAreToldAsConfigChangesAlsoFromTheUnifiedProperties)
{
    instrument_test::SettingProps outer(nullptr, nullptr);
    instrument_test::SettingProps unified(nullptr, &outer);
    outer.findChild<im::PropertyChangeForwarder*>()->addSource(&unified, "unifiedProperties");
    QSignalSpy setting(&outer, &ChannelProps::settingChanged);
    QSignalSpy config(&outer, &ChannelProps::configChanged);
    ASSERT_TRUE(setting.isValid() && config.isValid());

    outer.setProperty("threshold", 2.5);
    unified.setProperty("threshold", 1.0);

    ASSERT_EQ(setting.count(), 2);
    EXPECT_EQ(setting.at(0).at(0).value<QObject*>(), &outer);
    EXPECT_EQ(setting.at(0).at(1).toString(), "threshold");
    EXPECT_EQ(setting.at(1).at(0).value<QObject*>(), &outer);
    EXPECT_EQ(setting.at(1).at(1).toString(), "unifiedProperties.threshold");
    EXPECT_EQ(config.count(), 2);
}

TEST_F(ChannelPropsTest, TheListFindsTheFirstRowByChannelOrByBothHalvesOfTheId)
{
    QChannel* rpm = channels.make(ChannelID(3, 2), "rpm");
    QChannel* remote = channels.make(ChannelID(4, 1), "remote"); // same local part as speed
    QChannel* stranger = channels.make(ChannelID(3, 9), "stranger");
    ChannelProps unified(nullptr);
    ChannelProps speed_props(speed);
    ChannelProps rpm_props(rpm);
    ChannelProps remote_props(remote);
    ChannelProps rpm_again(rpm);
    ChannelPropertiesListModel model;
    uni_testing::attachModelTester(&model);
    model.append(QList<QObject*>{&unified, &speed_props, &rpm_props, &remote_props, &rpm_again});

    EXPECT_EQ(model.indexOf(speed), 1);
    EXPECT_EQ(model.indexOf(rpm), 2);
    EXPECT_EQ(model.indexOfChannel(remote), 3);
    EXPECT_EQ(model.indexOf(stranger), -1);
    EXPECT_TRUE(model.contains(rpm));
    EXPECT_FALSE(model.contains(stranger));
    EXPECT_EQ(model.indexOf(static_cast<QChannel*>(nullptr)), 0);
    EXPECT_EQ(model.indexOf(ChannelID(3, 1)), 1) << "rows without a channel are skipped";
    EXPECT_EQ(model.indexOf(ChannelID(3, 2)), 2);
    EXPECT_EQ(model.indexOf(ChannelID(4, 1)), 3);
    EXPECT_EQ(model.indexOf(ChannelID(4, 2)), -1);
    EXPECT_EQ(model.indexOf(ChannelID(0, 0)), -1);
    EXPECT_EQ(model.indexOf(static_cast<QObject*>(&remote_props)), 3);

    int row = -2;
    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "indexOf", Q_RETURN_ARG(int, row),
                                          Q_ARG(channel_config::ChannelID, ChannelID(4, 1))));
    EXPECT_EQ(row, 3);

    QObject other;
    uni_testing::AssertCapture capture;
    model.append(&other);
    EXPECT_TRUE(capture.fired("isObjectCompatible(object)"));
    EXPECT_EQ(model.size(), 5);
}

} // namespace channel_props_test
