// The instrument base: defaults, the chain of notifications into configChanged, channel
// handling, data windows, the control channel, and the plug-in interfaces.

#include "instrument_fixture.h"

#include <instrument_interface/if_instrument_plugin.h>
#include <instrument_interface/instrument_descriptor.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QSignalSpy>

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>

using channel_config::ChannelID;
using im::InstrumentModel;
using instrument_test::Channels;
using instrument_test::TestInstrument;
using lum::qchannel::QChannel;

namespace im {
/// The host's group of instruments, known to isGrouped by its class name alone.
class InstrumentsGroupModel : public QObject
{
    Q_OBJECT
};

/// The smallest plug-in, to see the interface answer under its names.
class TestPlugin : public QObject, public IfInstrumentPlugin
{
    Q_OBJECT
    Q_INTERFACES(IfInstrumentPlugin)

public:
    std::string getPluginName() override { return "Test"; }
    std::vector<InstrumentDescriptor>& getInstrumentDescriptors() override { return m_descriptors; }
    void registerTypes() override {}

private:
    std::vector<InstrumentDescriptor> m_descriptors;
};
} // namespace im

namespace instrument_test {

/// Records the names of the instrument's own signals in the order they go out.
class SignalRecorder : public QObject
{
    Q_OBJECT

public:
    explicit SignalRecorder(QObject* source)
    {
        const QMetaObject& meta = InstrumentModel::staticMetaObject;
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("record()"));
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            if (meta.method(i).methodType() == QMetaMethod::Signal)
                connect(source, meta.method(i), this, slot);
    }

    QStringList names;

public Q_SLOTS:
    void record()
    {
        names << QString::fromLatin1(sender()->metaObject()->method(senderSignalIndex()).name());
    }
};

// --- defaults and the meta-object ----------------------------------------------------------

TEST(InstrumentModel, DefaultsCountAndGroup)
{
    const long before = InstrumentModel::count();
    TestInstrument model;
    EXPECT_EQ(InstrumentModel::count(), before + 1);
    EXPECT_EQ(model.property("typeString").toString(), "test::instrument");
    EXPECT_EQ(model.getGeometry(), QRectF(0.0, 0.0, 0.2, 0.2));
    EXPECT_EQ(model.property("timeRangeConnectionMode").toInt(), InstrumentModel::TIME_RANGE_CONNECTION_OFF);
    EXPECT_TRUE(model.getChannels()->tracking());
    EXPECT_EQ(model.getChannels()->parent(), &model);
    EXPECT_EQ(model.getDataWindowProviderType(), "test::instrument");
    EXPECT_FALSE(model.isGrouped());
    EXPECT_FALSE(model.property("showsTimeSpan").toBool());
    EXPECT_FALSE(model.property("usesTimeFormat").toBool());
    im::InstrumentsGroupModel group;
    EXPECT_TRUE(TestInstrument(1, &group).isGrouped());
}

// --- the notification chain ------------------------------------------------------------------

struct ChainCase
{
    const char* name;
    std::function<void(TestInstrument&)> act;
    QStringList signal_names;
    QRectF geometry;
    QString setting; // what settingChanged names, if it goes out
};

/// A listener connected after construction hears a signal that another one causes before
/// its cause, since the instrument's own connections come first: a change of the width
/// is heard as configChanged, geometryChanged, widthChanged.
QStringList heard(const char* cause, const char* via)
{
    return {"configChanged", via, cause};
}
QStringList geometry(const char* cause)
{
    return heard(cause, "geometryChanged");
}
QStringList setting(const char* cause)
{
    return heard(cause, "settingChanged");
}

void PrintTo(const ChainCase& chain_case, std::ostream* out)
{
    *out << chain_case.name;
}

const QRectF DEFAULT_GEOMETRY(0.0, 0.0, 0.2, 0.2);

class Chain : public ::testing::TestWithParam<ChainCase>
{};

TEST_P(Chain, SignalsGoOutInOrder)
{
    TestInstrument model;
    SignalRecorder recorder(&model);
    QSignalSpy setting(&model, &InstrumentModel::settingChanged);
    ASSERT_TRUE(setting.isValid());

    GetParam().act(model);

    EXPECT_EQ(recorder.names, GetParam().signal_names);
    EXPECT_EQ(model.getGeometry(), GetParam().geometry);
    EXPECT_EQ(setting.count(), GetParam().signal_names.count("settingChanged"));
    for (const QList<QVariant>& arguments : setting) {
        EXPECT_EQ(arguments.at(0).value<QObject*>(), &model);
        EXPECT_EQ(arguments.at(1).toString(), GetParam().setting);
    }
}

const double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();
using M = TestInstrument;
using L = InstrumentModel;
const QRectF DEF = DEFAULT_GEOMETRY;
const QStringList ALL_THREE =
    geometry("positionChanged") + geometry("widthChanged") + geometry("heightChanged");

// One row per line reads as the table it is.
// clang-format off
INSTANTIATE_TEST_SUITE_P(Setters, Chain, ::testing::Values(
    ChainCase{"key", [](M& m) { m.setKey("left"); }, {"keyChanged"}, DEF, {}},
    ChainCase{"position", [](M& m) { m.setPosition({0.3, 0.4}); }, geometry("positionChanged"),
              {0.3, 0.4, 0.2, 0.2}, {}},
    ChainCase{"positionClampedWithoutTheSize", [](M& m) { m.setPosition({2.0, -1.0}); }, geometry("positionChanged"),
              {1.0, 0.0, 0.2, 0.2}, {}},
    ChainCase{"widthClamped", [](M& m) { m.setWidth(1.5); }, geometry("widthChanged"), {0.0, 0.0, 1.0, 0.2}, {}},
    ChainCase{"heightClamped", [](M& m) { m.setHeight(-3.0); }, geometry("heightChanged"), {0.0, 0.0, 0.2, 0.0}, {}},
    ChainCase{"sameWidth", [](M& m) { m.setWidth(0.2); }, {}, DEF, {}},
    ChainCase{"geometryAllFour", [](M& m) { m.setGeometry(0.1, 0.2, 0.3, 0.4); },
              ALL_THREE, {0.1, 0.2, 0.3, 0.4}, {}},
    ChainCase{"geometryPushedBackInside", [](M& m) { m.setGeometry(0.9, 0.9, 0.5, 0.5); },
              ALL_THREE, {0.5, 0.5, 0.5, 0.5}, {}},
    ChainCase{"geometryFullScreen", [](M& m) { m.setGeometry(QRectF(0.5, 0.5, 1.0, 1.0)); },
              geometry("widthChanged") + geometry("heightChanged"), {0.0, 0.0, 1.0, 1.0}, {}},
    ChainCase{"geometryNotANumberBecomesZero", [](M& m) { m.setGeometry(NAN_VALUE, 0.5, 0.2, NAN_VALUE); },
              geometry("positionChanged") + geometry("heightChanged"), {0.0, 0.5, 0.2, 0.0}, {}},
    ChainCase{"geometryNearlyTheSamePosition", [](M& m) { m.setGeometry(1e-13, 0.0, 0.2, 0.2); }, {}, DEF, {}},
    ChainCase{"backgroundVisible", [](M& m) { m.setBackgroundVisible(true); }, setting("backgroundVisibleChanged"),
              DEF, "backgroundVisible"},
    ChainCase{"timeFormatVisible", [](M& m) { m.setTimeFormatVisible(true); }, setting("timeFormatVisibleChanged"),
              DEF, "timeFormatVisible"},
    ChainCase{"channelLabelFormat", [](M& m) { m.setChannelLabelFormat(L::CHANNEL_LABEL_FORMAT_SHORT); },
              setting("channelLabelFormatChanged"), DEF, "channelLabelFormat"},
    ChainCase{"sameBackgroundVisible", [](M& m) { m.setBackgroundVisible(false); }, {}, DEF, {}},
    ChainCase{"restoredByName", [](M& m) { EXPECT_TRUE(m.setQProperty("width", 0.7)); }, geometry("widthChanged"),
              {0.0, 0.0, 0.7, 0.2}, {}},
    ChainCase{"readOnlyIsRefused", [](M& m) { EXPECT_FALSE(m.setQProperty("typeString", "x")); }, {}, DEF, {}},
    ChainCase{"connectionGroup", [](M& m) { m.setConnectionGroup("g"); }, {"connectionGroupChanged"}, DEF, {}},
    ChainCase{"timeRangeModeWithoutSupport",
              [](M& m) { m.setTimeRangeConnectionMode(L::TIME_RANGE_CONNECTION_SCREEN); },
              {}, DEF, {}},
    ChainCase{"maxChannels", [](M& m) { m.setMaxChannels(4); }, {"maxChannelsChanged"}, DEF, {}},
    ChainCase{"sameMaxChannels", [](M& m) { m.setMaxChannels(1); }, {}, DEF, {}},
    ChainCase{"type", [](M& m) { m.setType(7); }, {"typeChanged"}, DEF, {}},
    ChainCase{"ccChannelsItem", [](M& m) { m.setCcChannelsItem("Channels"); }, {"ccChannelsItemChanged"}, DEF, {}},
    ChainCase{"fullZoom", [](M& m) { m.requestFullZoom(); }, {"fullZoomRequested"}, DEF, {}}),
    [](const ::testing::TestParamInfo<ChainCase>& info) { return std::string(info.param.name); });
// clang-format on

TEST(InstrumentModel, EdgeWidthLockedLabelFormatAndTimeRangeMode)
{
    TestInstrument model(1, nullptr, true, true);
    QSignalSpy width(&model, &InstrumentModel::widthChanged);
    QSignalSpy format(&model, &InstrumentModel::channelLabelFormatChanged);
    QSignalSpy mode(&model, &InstrumentModel::timeRangeConnectionModeChanged);
    ASSERT_TRUE(width.isValid() && format.isValid() && mode.isValid());
    model.setWidth(1.5);
    model.setWidth(1.5);
    EXPECT_EQ(width.count(), 2) << "a width over the edge is told each time";
    EXPECT_EQ(model.getWidth(), 1.0);
    model.setChannelLabelFormat(InstrumentModel::CHANNEL_LABEL_FORMAT_SHORT);
    EXPECT_EQ(model.getChannelLabelFormat(), InstrumentModel::CHANNEL_LABEL_NOT_AVAILABLE);
    EXPECT_EQ(format.count(), 0);
    model.setTimeRangeConnectionMode(InstrumentModel::TIME_RANGE_CONNECTION_GROUP);
    model.setTimeRangeConnectionMode(InstrumentModel::TIME_RANGE_CONNECTION_GROUP);
    EXPECT_EQ(mode.count(), 1);
    EXPECT_EQ(model.property("timeRangeConnectionMode").toInt(), 3);
}

TEST(InstrumentModel, SettingsOfTheUnifiedPropertiesReachTheInstrument)
{
    TestInstrument model;
    model.initUnifiedProperties();
    im::ChannelProps* unified = model.getUnifiedProperties();
    ASSERT_NE(unified, nullptr);
    model.initUnifiedProperties();
    EXPECT_EQ(model.getUnifiedProperties(), unified);
    EXPECT_EQ(unified->channelList(), model.getChannels());
    SignalRecorder recorder(&model);
    QSignalSpy setting(&model, &InstrumentModel::settingChanged);
    ASSERT_TRUE(setting.isValid());

    unified->setProperty("threshold", 2.0);

    EXPECT_EQ(recorder.names, QStringList({"configChanged", "settingChanged"}));
    ASSERT_EQ(setting.count(), 1);
    EXPECT_EQ(setting.at(0).at(0).value<QObject*>(), &model);
    EXPECT_EQ(setting.at(0).at(1).toString(), "unifiedProperties.threshold");
}

// --- channels ----------------------------------------------------------------------------------

class InstrumentChannels : public ::testing::Test
{
protected:
    Channels channels;
    QChannel* a = channels.make(ChannelID(1, 1), "a");
    QChannel* b = channels.make(ChannelID(1, 2), "b");
    QChannel* c = channels.make(ChannelID(1, 3), "c");
    QChannel* d = channels.make(ChannelID(2, 1), "d");
    TestInstrument model{3};
    SignalRecorder recorder{&model};

    void SetUp() override { uni_testing::attachModelTester(model.getChannels()); }

    /// The channels named by the data windows, in order; each window as the instrument asked.
    QStringList windowChannels() const
    {
        QStringList names;
        for (const im::ChannelDataWindow& window : model.getDataWindows()) {
            EXPECT_EQ(window.mode, 2);
            names << QString::fromStdString(window.channel->getName());
        }
        return names;
    }
};

TEST_F(InstrumentChannels, AnAddedChannelGetsARowAndADataWindow)
{
    model.initUnifiedProperties();
    ASSERT_TRUE(model.addChannel(a));
    EXPECT_EQ(model.rows(), QStringList{"a"});
    EXPECT_EQ(model.hooks, QStringList({"aboutToBeAdded a", "added a"}));
    EXPECT_EQ(windowChannels(), QStringList{"a"});
    EXPECT_EQ(model.updates, 1);
    EXPECT_EQ(recorder.names, QStringList({"configChanged", "channelsChanged"}));
    EXPECT_EQ(model.getChannelWithId(ChannelID(1, 1)), a);
    EXPECT_EQ(model.getChannelWithId(ChannelID(1, 9)), nullptr);
    EXPECT_EQ(model.getChannels()->at(0)->parent(), &model);
}

TEST_F(InstrumentChannels, RefusedAdditionsChangeNothing)
{
    ASSERT_TRUE(model.addChannel(a));
    model.refused.insert(d);
    model.setMaxChannels(2);
    ASSERT_TRUE(model.addChannel(b));
    recorder.names.clear();
    model.hooks.clear();
    model.setMaxChannels(3);

    EXPECT_FALSE(model.addChannel(nullptr));
    EXPECT_FALSE(model.addChannel(a));        // present
    EXPECT_FALSE(model.addChannel(d));        // refused
    EXPECT_FALSE(model.replaceChannel(2, c)); // no such row
    EXPECT_FALSE(model.replaceChannel(0, b)); // present
    EXPECT_FALSE(model.replaceChannel(0, d)); // refused
    EXPECT_FALSE(model.toggleChannel(d));
    model.setMaxChannels(2);
    EXPECT_FALSE(model.addChannel(c)); // full

    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));
    EXPECT_TRUE(model.hooks.isEmpty());
    EXPECT_EQ(recorder.names, QStringList({"maxChannelsChanged", "maxChannelsChanged"}));

    model.removeAllChannels();
    model.setMaxChannels(0);
    EXPECT_FALSE(model.addChannel(a));
    EXPECT_FALSE(model.toggleChannel(a));
    EXPECT_TRUE(model.addChannels({a, b}));
    EXPECT_FALSE(model.addChannels({}));
    EXPECT_TRUE(model.rows().isEmpty());
}

TEST_F(InstrumentChannels, SeveralAreAddedWhileTheyFitWithOneUpdate)
{
    model.refused.insert(b);
    ASSERT_TRUE(model.addChannel(d));
    recorder.names.clear();
    model.hooks.clear();
    model.updates = 0;

    EXPECT_TRUE(model.addChannels({d, a, b, a, nullptr, c}));

    EXPECT_EQ(model.rows(), QStringList({"d", "a", "c"}));
    EXPECT_EQ(model.hooks, QStringList({"aboutToBeAdded a", "aboutToBeAdded c", "added a", "added c"}));
    EXPECT_EQ(model.updates, 1);
    EXPECT_EQ(recorder.names, QStringList({"configChanged", "channelsChanged"}));
    EXPECT_EQ(windowChannels(), QStringList({"d", "a", "c"}));
}

TEST_F(InstrumentChannels, RemovalsTellTheHooksAndUpdateOnce)
{
    ASSERT_TRUE(model.addChannels({a, b, c}));
    model.hooks.clear();
    model.updates = 0;
    recorder.names.clear();

    EXPECT_FALSE(model.removeChannels({c, d, a}));
    EXPECT_EQ(model.rows(), QStringList{"b"});
    EXPECT_EQ(model.hooks, QStringList({"removed c", "removed a"}));
    EXPECT_EQ(model.updates, 1);
    EXPECT_EQ(recorder.names, QStringList({"configChanged", "channelsChanged"}));
    EXPECT_EQ(windowChannels(), QStringList{"b"});

    EXPECT_TRUE(model.removeChannels({}));
    EXPECT_FALSE(model.removeChannel(a));
    EXPECT_TRUE(model.removeChannels({b}));
    EXPECT_TRUE(model.getDataWindows().empty());
}

TEST_F(InstrumentChannels, ReplaceToggleAndRemoveAll)
{
    ASSERT_TRUE(model.addChannels({a, b, c}));
    ASSERT_TRUE(model.replaceChannel(1, d));
    EXPECT_EQ(model.rows(), QStringList({"a", "d", "c"}));
    ASSERT_TRUE(model.toggleChannel(b)); // full: the last one goes first
    EXPECT_EQ(model.rows(), QStringList({"a", "d", "b"}));
    ASSERT_TRUE(model.toggleChannel(d));
    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));
    EXPECT_EQ(windowChannels(), QStringList({"a", "b"}));

    model.hooks.clear();
    model.removeAllChannels();
    EXPECT_EQ(model.hooks, QStringList({"removed b", "removed a"}));
    EXPECT_TRUE(model.getDataWindows().empty());

    model.setMaxChannels(1);
    ASSERT_TRUE(model.toggleChannel(a));
    ASSERT_TRUE(model.toggleChannel(b));
    EXPECT_EQ(model.rows(), QStringList{"b"});
    ASSERT_TRUE(model.toggleChannel(b));
    EXPECT_TRUE(model.rows().isEmpty());
}

TEST_F(InstrumentChannels, PropertiesThatAreNotMadeAddNoRow)
{
    model.without_props = true;
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(model.addChannel(a));
    EXPECT_TRUE(model.addChannels({a, b}));
    EXPECT_TRUE(capture.fired("props != nullptr"));
    EXPECT_TRUE(model.rows().isEmpty());
    EXPECT_TRUE(model.hooks.isEmpty());
}

TEST_F(InstrumentChannels, AChangedChannelIsCheckedAgainAndAGoneOneLeaves)
{
    ASSERT_TRUE(model.addChannels({a, b}));
    model.updates = 0;
    Channels::setItem(a, "Unit", config_items::StringConfigItem("m"));
    EXPECT_EQ(model.updates, 1);
    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));

    model.refused.insert(a); // the first row too
    model.removeChannelsNotAcceptable();
    EXPECT_EQ(model.rows(), QStringList{"b"});
    model.refused.insert(b);
    Channels::setItem(b, "Unit", config_items::StringConfigItem("km"));
    EXPECT_TRUE(model.rows().isEmpty());

    // A channel that goes takes its row along.
    ASSERT_TRUE(model.addChannels({c, d}));
    channels.destroy(c);
    EXPECT_EQ(model.rows(), QStringList{"d"});
    EXPECT_EQ(windowChannels(), QStringList{"d"});
}

TEST_F(InstrumentChannels, ChangesOfRowsAndTheirSettingsAreConfigChanges)
{
    ASSERT_TRUE(model.addChannels({a, b}));
    recorder.names.clear();
    model.getChannels()->move(0, 1);
    model.getChannels()->at(0)->setProperty("threshold", 1.0);
    EXPECT_EQ(recorder.names, QStringList({"configChanged", "configChanged"}));
}

TEST_F(InstrumentChannels, ADetectedChangeTellsTheHostWhichProviderChanged)
{
    ASSERT_TRUE(model.addChannel(a));
    QSignalSpy windows(&model, &InstrumentModel::dataWindowsChanged);
    ASSERT_TRUE(windows.isValid());
    model.updates = 0;

    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "onDataWindowChangeDetected"));
    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "updateDataWindows"));

    EXPECT_EQ(model.updates, 2);
    ASSERT_EQ(windows.count(), 1);
    EXPECT_EQ(windows.at(0).at(0).value<const im::IfChannelDataWindowProvider*>(),
              static_cast<const im::IfChannelDataWindowProvider*>(&model));
    const std::vector<im::ChannelDataWindow> copy = model.getDataWindows();
    ASSERT_EQ(copy.size(), 1u);
    EXPECT_EQ(copy[0].channel, a->ferrinChannel());
    EXPECT_EQ(copy[0].first + copy[0].second, 0u);
}

// --- the control channel ---------------------------------------------------------------------

class ControlChannel : public InstrumentChannels
{
protected:
    void SetUp() override
    {
        InstrumentChannels::SetUp();
        for (QChannel* channel : {a, b, c, d})
            application.list->appendChannel(channel);
        model.setApplication(&application);
        model.setCcChannelsItem("Channels");
    }

    static ferrin::ConfigItem idList(std::vector<ChannelID> ids)
    {
        return config_items::ValueListConfigItem<ChannelID>(std::move(ids));
    }

    ChannelsOnlyApplication application;
    QChannel* control = channels.make(ChannelID(9, 9), "control");
};

TEST_F(ControlChannel, AListOfReferencesIsFollowedButNeverShortened)
{
    Channels::setItem(control, "Channels", idList({ChannelID(1, 1), ChannelID(1, 2), ChannelID(1, 3)}));
    model.setControlChannel(control);
    EXPECT_EQ(model.rows(), QStringList({"a", "b", "c"}));

    Channels::setItem(control, "Channels", idList({ChannelID(1, 1)}));
    EXPECT_EQ(model.rows(), QStringList({"a", "b", "c"}));
    Channels::setItem(control, "Channels", idList({}));
    EXPECT_EQ(model.rows(), QStringList({"a", "b", "c"}));

    // Heard only under its own key.
    control->ferrinChannel()->getItemStore()->set("Channels", idList({ChannelID(1, 2), ChannelID(2, 1)}));
    Channels::setItem(control, "Other", idList({}));
    EXPECT_EQ(model.rows(), QStringList({"a", "b", "c"}));
    Channels::setItem(control, "Channels", idList({ChannelID(1, 2), ChannelID(2, 1)}));
    EXPECT_EQ(model.rows(), QStringList({"b", "d"}));
}

TEST_F(ControlChannel, ASingleReferenceReplacesAllRows)
{
    ASSERT_TRUE(model.addChannels({a, b}));
    Channels::setItem(control, "Channels", config_items::SingleValueConfigItem<ChannelID>(ChannelID(1, 3)));
    QSignalSpy changed(&model, &InstrumentModel::controlChannelChanged);
    ASSERT_TRUE(changed.isValid());
    model.setControlChannel(control);
    model.setControlChannel(control);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(model.property("controlChannel").value<QChannel*>(), control);
    EXPECT_EQ(model.rows(), QStringList{"c"});
}

TEST_F(ControlChannel, OtherKindsAMissingApplicationOrAFormerControlChannelChangeNothing)
{
    ASSERT_TRUE(model.addChannels({a, b}));
    Channels::setItem(control, "Channels", config_items::StringConfigItem("1/3"));
    model.setControlChannel(control);
    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));

    model.setApplication(nullptr);
    Channels::setItem(control, "Channels", idList({ChannelID(1, 3)}));
    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));

    model.setApplication(&application);
    model.setControlChannel(nullptr);
    ASSERT_TRUE(QMetaObject::invokeMethod(&model, "onCCConfigItemChanged",
                                          Q_ARG(channel_config::ChannelID, {}), Q_ARG(QString, "Channels")));
    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));
    // A former control channel is no longer heard.
    Channels::setItem(control, "Channels", idList({ChannelID(1, 3)}));
    EXPECT_EQ(model.rows(), QStringList({"a", "b"}));
}

// --- the plug-in interface ---------------------------------------------------------------------

TEST(IfInstrumentPlugin, AnsweredUnderItsNameAndItsIdentifier)
{
    im::TestPlugin plugin;
    IfInstrumentPlugin* face = &plugin;
    EXPECT_EQ(plugin.qt_metacast("IfInstrumentPlugin"), face);
    EXPECT_EQ(plugin.qt_metacast("com.trelvane.lumero.IfInstrumentPlugin.1"), face);
    EXPECT_EQ(qobject_cast<IfInstrumentPlugin*>(&plugin), face);

    InstrumentDescriptor descriptor;
    descriptor.type_identifier = "test::instrument";
    descriptor.createInstrument = [](QObject* parent) { return new TestInstrument(1, parent); };
    plugin.getInstrumentDescriptors().push_back(std::move(descriptor));
    QObject parent;
    InstrumentModel* made = face->getInstrumentDescriptors().at(0).createInstrument(&parent);
    EXPECT_EQ(made->parent(), &parent);
    EXPECT_EQ(made->getType(), face->getInstrumentDescriptors().at(0).type_identifier);
}

} // namespace instrument_test

#include "instrument_model_test.moc"
