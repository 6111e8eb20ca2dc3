// Configuration access, display strings, change signals, channel replacement and
// channel actions.

#include "qchannel_fakes.h"

#include <qchannel/qchannel.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPointer>
#include <QSignalSpy>

#include <QMetaMethod>
#include <QPointF>

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>

using channel_config::ChannelID;
using lum::qchannel::QChannel;
using qchannel_test::ChannelFactory;

namespace {

void flushDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class QChannelConfig : public ::testing::Test
{
protected:
    void set(const std::string& key, ferrin::ConfigItem item)
    {
        channel->getItemStore()->set(key, std::move(item));
    }

    ChannelFactory factory{10.0};
    std::shared_ptr<lum::data::SyncScalarChannel> channel = factory.sync("speed", {1.0, 2.0, 3.0});
    QChannel qchannel{channel};
};

// --- reading items ---------------------------------------------------------------------

TEST_F(QChannelConfig, ItemsAsVariantTypeAndText)
{
    set("Gain", config_items::ScalarConfigItem(2.5, "mV"));
    set("Count", config_items::SingleValueConfigItem<int>(-3));
    set("Tags", config_items::ValueListConfigItem<std::string>({"a", "b"}));
    set("Range", config_items::RangeConfigItem<double>(-1.0, 1.0, "V", "V"));

    EXPECT_EQ(qchannel.getConfigItem("Unit"), QVariant(QString("V")));
    EXPECT_EQ(qchannel.getConfigItem("Gain"), QVariant(2.5));
    EXPECT_EQ(qchannel.getConfigItem("Count"), QVariant(-3));
    EXPECT_EQ(qchannel.getConfigItem("Used"), QVariant(true));
    EXPECT_EQ(qchannel.getConfigItem("Tags").toStringList(), (QStringList{"a", "b"}));
    EXPECT_EQ(qchannel.getConfigItem("Range").toString(), "-1 V .. 1 V");
    EXPECT_FALSE(qchannel.getConfigItem("Missing").isValid());
    EXPECT_FALSE(qchannel.getConfigItem("").isValid());

    EXPECT_EQ(qchannel.getConfigItemType("Gain"), "Scalar");
    EXPECT_EQ(qchannel.getConfigItemType("Count"), "SInt32");
    EXPECT_EQ(qchannel.getConfigItemAsString("Gain"), "2.5 mV");
    EXPECT_EQ(qchannel.getConfigItemAsString("Used"), "true");

    EXPECT_TRUE(qchannel.hasConfigItem("Gain"));
    EXPECT_FALSE(qchannel.hasConfigItem("Missing"));
    EXPECT_FALSE(qchannel.hasConfigItem(""));
    // An empty long name answers with the name.
    EXPECT_EQ(qchannel.getConfigItem("Ferrin/LongName"), QVariant(QString("speed")));
}

TEST_F(QChannelConfig, KeysBySort)
{
    set("ID:ChannelType", config_items::StringConfigItem("AI"));
    set("ACTION:Zero", config_items::SingleValueConfigItem<bool>(true));
    set("ID:ChannelIndex", config_items::SingleValueConfigItem<int>(3));
    set("ACTION:Calibrate", config_items::SingleValueConfigItem<bool>(false));
    set("Alpha", config_items::StringConfigItem("x"));

    const QStringList plain = qchannel.getAvailableConfigKeys(false);
    EXPECT_EQ(plain,
              (QStringList{"Ferrin/Name", "Ferrin/LongName", "Used", "Ferrin/Color", "Unit", "Alpha"}));
    QStringList sorted = plain;
    sorted.sort();
    EXPECT_EQ(qchannel.getAvailableConfigKeys(true), sorted);
    EXPECT_EQ(qchannel.getAvailableActionKeys(), (QStringList{"ACTION:Calibrate", "ACTION:Zero"}));
    EXPECT_EQ(qchannel.getAvailableIdKeys(), (QStringList{"ID:ChannelType", "ID:ChannelIndex"}));

    EXPECT_TRUE(qchannel.isConnector("AI3"));
    EXPECT_FALSE(qchannel.isConnector("3AI"));
    EXPECT_TRUE(qchannel.isChannelActionAvailable("ACTION:Zero"));
    EXPECT_FALSE(qchannel.isChannelActionAvailable("ACTION:Calibrate"));
    set("Used", config_items::SingleValueConfigItem<bool>(false));
    EXPECT_FALSE(qchannel.isChannelActionAvailable("ACTION:Zero"));
}

TEST_F(QChannelConfig, IdentityTexts)
{
    EXPECT_EQ(qchannel.getChannelId(), QString::number((quint64(3) << 32) | 1));
    EXPECT_EQ(qchannel.getChannelIDAsString(), qchannel.getChannelId());
    EXPECT_EQ(qchannel.getLocalChannelId(), "1");
    EXPECT_EQ(qchannel.getUniqueIdentifier(), QString::number(reinterpret_cast<quintptr>(&qchannel), 16));
    EXPECT_FALSE(qchannel.isPowerGroupChannel());
    set("ChannelType", config_items::SingleValueConfigItem<channel_config::DAQChannelType>(
                           static_cast<channel_config::DAQChannelType>(9)));
    EXPECT_TRUE(qchannel.isPowerGroupChannel());
    EXPECT_TRUE(qchannel.isNameUnique());
    set("Ferrin/NameUnique", config_items::SingleValueConfigItem<bool>(false));
    EXPECT_FALSE(qchannel.isNameUnique());
    EXPECT_TRUE(qchannel.isNamePotentiallyUnique());
}

// --- display strings -------------------------------------------------------------------

TEST_F(QChannelConfig, NameComposesGroupAndDomain)
{
    EXPECT_EQ(qchannel.name(), "speed");
    set("Ferrin/DomainUrl", config_items::StringConfigItem("car1"));
    EXPECT_EQ(qchannel.name(), "speed@car1");
    set("Ferrin/AnalysisGroupId", config_items::StringConfigItem("7"));
    EXPECT_EQ(qchannel.name(), "speed@car1.7");
    EXPECT_EQ(qchannel.shortDisplayName(), "speed.7");
    set("Ferrin/DomainUrl", config_items::StringConfigItem(""));
    EXPECT_EQ(qchannel.name(), "speed.7");
    EXPECT_EQ(qchannel.displayName(), "speed.7");
    // Channels without recorded data are braced.
    set("Ferrin/AnalysisGroupId", config_items::StringConfigItem(""));
    set("Ferrin/DomainUrl", config_items::StringConfigItem("car1"));
    set("Ferrin/Stored", config_items::GenericEnumConfigItem("ChannelStored", "No"));
    EXPECT_FALSE(qchannel.isStored());
    EXPECT_EQ(qchannel.displayName(), "{speed@car1}");
    EXPECT_EQ(qchannel.shortDisplayName(), "{speed}");
    set("Ferrin/Stored", config_items::GenericEnumConfigItem("ChannelStored", "Auto"));
    EXPECT_EQ(qchannel.displayName(), "speed@car1");
}

// --- setting items ---------------------------------------------------------------------

TEST_F(QChannelConfig, SettingAnItemSignalsInOrder)
{
    QStringList order;
    QSignalSpy config(&qchannel, &QChannel::configItemChanged);
    QSignalSpy unit(&qchannel, &QChannel::unitChanged);
    QSignalSpy max(&qchannel, &QChannel::maxValChanged);
    QSignalSpy min(&qchannel, &QChannel::minValChanged);
    QObject::connect(&qchannel, &QChannel::configItemChanged, [&] { order << "config"; });
    QObject::connect(&qchannel, &QChannel::unitChanged, [&] { order << "unit"; });
    QObject::connect(&qchannel, &QChannel::maxValChanged, [&] { order << "max"; });
    QObject::connect(&qchannel, &QChannel::minValChanged, [&] { order << "min"; });

    EXPECT_TRUE(qchannel.setConfigItem("Unit", QString("km/h")));
    EXPECT_EQ(qchannel.unit(), "km/h");
    ASSERT_EQ(config.count(), 1);
    EXPECT_EQ(config.at(0).at(0).value<ChannelID>(), channel->getChannelId());
    EXPECT_EQ(config.at(0).at(1).toString(), "Unit");
    EXPECT_EQ(unit.count(), 1);
    EXPECT_EQ(max.count(), 1);
    EXPECT_EQ(min.count(), 1);
    EXPECT_EQ(order, (QStringList{"config", "unit", "max", "min"}));

    QVariantMap values;
    values.insert("Unit", QString("A"));
    values.insert("Ferrin/Name", QString("current"));
    EXPECT_TRUE(qchannel.setConfigItems(values));
    EXPECT_EQ(qchannel.unit(), "A");
    EXPECT_EQ(qchannel.name(), "current");
    EXPECT_EQ(config.count(), 3);
}

TEST_F(QChannelConfig, TextIsReadByTheParserOfTheItemHeld)
{
    set("Gain", config_items::ScalarConfigItem(1.0, "mV"));
    EXPECT_TRUE(qchannel.setConfigItem("Gain", QString("1,5 mV")));
    EXPECT_EQ(qchannel.getConfigItemAsString("Gain"), "1.5 mV");
    EXPECT_TRUE(qchannel.setConfigItem("Used", false));
    EXPECT_FALSE(qchannel.isUsed());
    // A type the channel does not hold is refused by the configuration end.
    uni_testing::LogCapture log;
    EXPECT_FALSE(qchannel.setConfigItem("Gain", QStringList{"x"}));
}

TEST_F(QChannelConfig, InvalidValuesAreReportedAndNothingIsSent)
{
    const std::size_t applied = factory.manager.appliedRequestCount();
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(qchannel.setConfigItem("Unit", QVariant()));
    EXPECT_TRUE(asserts.fired("value.isValid()", "setConfigItem: called with value 'invalid' for key Unit"));

    QVariantMap values;
    values.insert("Unit", QString("A"));
    values.insert("Used", QVariant());
    EXPECT_FALSE(qchannel.setConfigItems(values));
    EXPECT_TRUE(asserts.fired("value.isValid()", "setConfigItems: called with value 'invalid' for key Used"));
    EXPECT_EQ(factory.manager.appliedRequestCount(), applied);
    EXPECT_EQ(qchannel.unit(), "V");

    EXPECT_FALSE(qchannel.setConfigItem("Unit", QVariant::fromValue(QPointF(1, 2))));
    EXPECT_TRUE(asserts.fired("", "Unknown object type in QVariant."));
    EXPECT_EQ(factory.manager.appliedRequestCount(), applied);
}

// --- change signals --------------------------------------------------------------------

struct KeySignals
{
    const char* key;
    std::vector<const char*> signal_names;
};

class ChangeSignals : public QChannelConfig, public ::testing::WithParamInterface<KeySignals>
{};

TEST_P(ChangeSignals, EachKeyHasItsSignals)
{
    const KeySignals& expected = GetParam();
    std::vector<std::unique_ptr<QSignalSpy>> spies;
    const QMetaObject& meta = QChannel::staticMetaObject;
    std::map<std::string, QSignalSpy*> by_name;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() != QMetaMethod::Signal || method.name() == "destroying")
            continue;
        spies.push_back(std::make_unique<QSignalSpy>(&qchannel, method));
        by_name[method.name().toStdString()] = spies.back().get();
    }
    ASSERT_EQ(by_name.size(), 19u);

    channel->notifyConfigItemChanged(expected.key);

    std::set<std::string> fired;
    for (const auto& [name, spy] : by_name)
        if (spy->count() > 0)
            fired.insert(name);
    std::set<std::string> wanted{"configItemChanged", "maxValChanged", "minValChanged"};
    for (const char* name : expected.signal_names)
        wanted.insert(name);
    EXPECT_EQ(fired, wanted);
    EXPECT_EQ(by_name["configItemChanged"]->at(0).at(1).toString(), QString(expected.key));
    for (const auto& name : fired)
        EXPECT_EQ(by_name[name]->count(), 1) << name;
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ChangeSignals,
    ::testing::Values(
        KeySignals{"Used", {"usedChanged"}}, KeySignals{"Ferrin/Name", {"nameChanged", "displayNameChanged"}},
        KeySignals{"Ferrin/DomainUrl", {"domainChanged", "displayNameChanged"}},
        KeySignals{"Unit", {"unitChanged"}}, KeySignals{"Ferrin/PhysicalUnit", {"unitChanged"}},
        KeySignals{"Ferrin/Stored", {"storedChanged"}}, KeySignals{"Visibility", {"hiddenChanged"}},
        KeySignals{"SampleUpdateType", {"sampleOccurenceChanged", "channelTypeDescriptionChanged"}},
        KeySignals{"SampleDimension", {"sampleDimensionChanged", "channelTypeDescriptionChanged"}},
        KeySignals{"Gain", {}}));

TEST_F(QChannelConfig, SignalArgumentsCarryTheNewTexts)
{
    QSignalSpy name(&qchannel, &QChannel::nameChanged);
    QSignalSpy domain(&qchannel, &QChannel::domainChanged);
    QSignalSpy color(&qchannel, &QChannel::colorChanged);
    set("Ferrin/DomainUrl", config_items::StringConfigItem(""));
    qchannel.setConfigItem("Ferrin/Name", QString("rpm"));
    qchannel.setConfigItem("Ferrin/DomainUrl", QString("bench"));
    ASSERT_EQ(name.count(), 1);
    EXPECT_EQ(name.at(0).at(0).toString(), "rpm");
    ASSERT_EQ(domain.count(), 1);
    EXPECT_EQ(domain.at(0).at(0).toString(), "bench");
    qchannel.setConfigItem("Ferrin/Color", QString("#00ff00"));
    ASSERT_EQ(color.count(), 1);
    EXPECT_EQ(color.at(0).at(0).value<QColor>(), QColor(Qt::green));
}

TEST_F(QChannelConfig, AColourChangeLeavesRangesAndConstraintsAlone)
{
    QPointer<QObject> color_constraints = qchannel.getPropertyConstraints("Ferrin/Color");
    QPointer<QObject> name_constraints = qchannel.getPropertyConstraints("Ferrin/Name");
    QSignalSpy min(&qchannel, &QChannel::minValChanged);
    QSignalSpy max(&qchannel, &QChannel::maxValChanged);
    QSignalSpy config(&qchannel, &QChannel::configItemChanged);

    channel->notifyConfigItemChanged("Ferrin/Color");
    flushDeferredDeletes();
    EXPECT_EQ(config.count(), 1);
    EXPECT_EQ(min.count(), 0);
    EXPECT_EQ(max.count(), 0);
    EXPECT_EQ(qchannel.cachedPropertyConstraints("Ferrin/Color"), nullptr);
    EXPECT_FALSE(color_constraints.isNull());
    // Left out of the cache and not given deleteLater: whoever still holds it deletes it.
    delete color_constraints.data();

    channel->notifyConfigItemChanged("Ferrin/Name");
    flushDeferredDeletes();
    EXPECT_EQ(min.count(), 1);
    EXPECT_EQ(qchannel.cachedPropertyConstraints("Ferrin/Name"), nullptr);
    EXPECT_TRUE(name_constraints.isNull());
}

// --- replacement and lifetime ----------------------------------------------------------

TEST_F(QChannelConfig, ReplacementRunsInItsOrder)
{
    QPointer<QObject> constraints = qchannel.getPropertyConstraints("Unit");

    auto replacement = factory.async("speed", {{5, 1.0}});
    replacement->getItemStore()->set("Unit", config_items::StringConfigItem("m/s"));

    QStringList order;
    QObject::connect(&qchannel, &QChannel::configItemChanged,
                     [&](ChannelID, const QString& key) { order << "config " + key; });
    QObject::connect(&qchannel, &QChannel::sampleValueTypeChanged, [&] { order << "valueType"; });
    QObject::connect(&qchannel, &QChannel::sampleOccurenceChanged, [&] { order << "occurrence"; });
    QObject::connect(&qchannel, &QChannel::sampleDimensionChanged, [&] { order << "dimension"; });
    QSignalSpy description(&qchannel, &QChannel::channelTypeDescriptionChanged);
    QSignalSpy replaced(&qchannel, &QChannel::ferrinChannelChanged);
    QObject::connect(&qchannel, &QChannel::ferrinChannelChanged, [&] { order << "ferrin"; });

    qchannel.updateFerrinChannel(replacement);
    flushDeferredDeletes();

    EXPECT_TRUE(constraints.isNull());
    EXPECT_EQ(qchannel.cachedPropertyConstraints("Unit"), nullptr);
    EXPECT_EQ(order,
              (QStringList{"config Ferrin/Name", "config Ferrin/LongName", "config Used",
                           "config Ferrin/Color", "config Unit", "valueType", "occurrence", "ferrin"}));
    // Each of the three re-announces the type description.
    EXPECT_EQ(description.count(), 3);
    ASSERT_EQ(replaced.count(), 1);
    EXPECT_EQ(replaced.at(0).at(0).value<ChannelID>(), replacement->getChannelId());
    EXPECT_EQ(qchannel.unit(), "m/s");
    EXPECT_EQ(qchannel.sampleOccurence(), QChannel::SOT_ASYNC);

    // The observer moved with the channel.
    QSignalSpy config(&qchannel, &QChannel::configItemChanged);
    channel->notifyConfigItemChanged("Unit");
    EXPECT_EQ(config.count(), 0);
    replacement->notifyConfigItemChanged("Unit");
    EXPECT_EQ(config.count(), 1);

    order.clear();
    qchannel.updateFerrinChannel(replacement);
    EXPECT_TRUE(order.isEmpty());
}

TEST_F(QChannelConfig, WithoutAChannelEveryReadIsNeutral)
{
    QSignalSpy replaced(&qchannel, &QChannel::ferrinChannelChanged);
    qchannel.updateFerrinChannel(nullptr);
    EXPECT_EQ(replaced.count(), 0);
    EXPECT_FALSE(qchannel.isValid());
    EXPECT_FALSE(qchannel.isScalarChannel());
    EXPECT_TRUE(std::isnan(qchannel.valueAtTime(0.0).toDouble()));
    EXPECT_TRUE(std::isnan(qchannel.valueNearTime(0.0).toDouble()));
    EXPECT_TRUE(std::isnan(qchannel.sampletimeNearTime(0.0)));
    EXPECT_TRUE(qchannel.anyValueAtTimeEnsureLoaded(0.0).toMap().isEmpty());
    EXPECT_EQ(qchannel.getFirstRegionStart(), 0.0);
    EXPECT_EQ(qchannel.channelTypeDescription(), "-");
    EXPECT_EQ(qchannel.sampleValueType(), QChannel::SAMPLE_VALUE_INVALID);
    EXPECT_TRUE(qchannel.isNameUnique());
    EXPECT_FALSE(qchannel.hasConfigItem("Unit"));
    EXPECT_FALSE(qchannel.setConfigItem("Unit", QString("A")));
    EXPECT_FALSE(qchannel.isChannelActionAvailable("ACTION:Zero"));
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(qchannel.getConfigItem("Unit").isValid());
    EXPECT_TRUE(asserts.fired("", "getConfigItem on invalid ferrin channel"));

    // The old channel no longer reaches this object.
    QSignalSpy config(&qchannel, &QChannel::configItemChanged);
    channel->notifyConfigItemChanged("Unit");
    EXPECT_EQ(config.count(), 0);
}

TEST(QChannelLifetime, DestructionAnnouncesAndLetsGoOfTheChannel)
{
    ChannelFactory factory;
    auto channel = factory.sync("a", {1.0});
    const long before = QChannel::count();
    auto* qchannel = new QChannel(channel);
    EXPECT_EQ(QChannel::count(), before + 1);
    QSignalSpy destroying(qchannel, &QChannel::destroying);
    // The argument is read while the object still lives; a spy's copy would be
    // cast after the object is gone.
    const void* announced = nullptr;
    bool channel_held = false;
    QObject::connect(qchannel, &QChannel::destroying, [&](QChannel* dying) {
        announced = dying;
        channel_held = dying->ferrinChannel() != nullptr;
    });
    const long uses = channel.use_count();
    delete qchannel;
    EXPECT_EQ(destroying.count(), 1);
    EXPECT_EQ(announced, static_cast<const void*>(qchannel));
    EXPECT_TRUE(channel_held);
    // The channel and its scalar view were two references.
    EXPECT_EQ(channel.use_count(), uses - 2);
    EXPECT_EQ(QChannel::count(), before);
    channel->notifyConfigItemChanged("Unit"); // must not reach the deleted object
}

TEST(QChannelLifetime, ANullChannelIsAsserted)
{
    uni_testing::AssertCapture asserts;
    QChannel qchannel(nullptr);
    EXPECT_TRUE(asserts.fired("m_ferrin_channel"));
    EXPECT_FALSE(qchannel.isValid());
}

// --- channel actions -------------------------------------------------------------------

/// An action handler that holds the action until released.
struct Gate
{
    void release()
    {
        std::lock_guard lock(mutex);
        open = true;
        wake.notify_all();
    }
    bool pass()
    {
        std::unique_lock lock(mutex);
        ++calls;
        wake.wait(lock, [this] { return open; });
        return true;
    }
    std::mutex mutex;
    std::condition_variable wake;
    bool open = false;
    int calls = 0;
};

TEST_F(QChannelConfig, OneActionAtATime)
{
    set("ACTION:Zero", config_items::SingleValueConfigItem<bool>(true));
    Gate gate;
    double action_time = 0.0;
    factory.manager.setActionHandler("ACTION:Zero", [&](const std::vector<ChannelID>& ids, double time) {
        EXPECT_EQ(ids, std::vector<ChannelID>{channel->getChannelId()});
        action_time = time;
        return gate.pass();
    });
    QSignalSpy progress(&qchannel, &QChannel::channelActionInProgressChanged);
    uni_testing::LogCapture log;

    qchannel.applyChannelAction("ACTION:Zero", 12.5);
    EXPECT_TRUE(qchannel.channelActionInProgress());
    EXPECT_EQ(progress.count(), 1);
    EXPECT_TRUE(log.contains("QCHANNEL", 3, "applyChannelAction ACTION:Zero"));

    qchannel.applyChannelAction("ACTION:Zero", 13.0);
    EXPECT_EQ(progress.count(), 1);
    EXPECT_TRUE(log.contains(
        "QCHANNEL", 5,
        "Skipping ChannelAction ACTION:Zero because there is already another action in progress!"));
    EXPECT_EQ(log.count("QCHANNEL", 3, "applyChannelAction ACTION:Zero"), 2u);

    gate.release();
    ASSERT_TRUE(progress.wait(5000));
    EXPECT_EQ(progress.count(), 2);
    EXPECT_FALSE(qchannel.channelActionInProgress());
    EXPECT_EQ(gate.calls, 1);
    EXPECT_EQ(action_time, 12.5);

    // Once finished, the next action runs.
    qchannel.applyChannelAction("ACTION:Zero", 14.0);
    ASSERT_TRUE(progress.count() == 4 || progress.wait(5000));
    EXPECT_EQ(gate.calls, 2);
    EXPECT_EQ(action_time, 14.0);
}

} // namespace
