// Forwarding of property changes into one settingChanged signal: the kinds of
// properties, paths through child objects, and the reports of mistaken use.

#include <instrument_interface/detail/property_change_augmenter.h>
#include <instrument_interface/property_change_forwarder.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QObject>
#include <QSignalSpy>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

using im::PropertyChangeForwarder;
using im::detail::PropertyChangeAugmenter;
using uni_testing::AssertCapture;

namespace forwarder_test {

/// An owner with one property of each kind the instruments use.
class Settings : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int count MEMBER m_count NOTIFY countChanged)
    Q_PROPERTY(double scale MEMBER m_scale NOTIFY scaleChanged)
    Q_PROPERTY(QString caption MEMBER m_caption NOTIFY captionChanged)
    Q_PROPERTY(int level READ level WRITE setLevel NOTIFY levelChanged)
    Q_PROPERTY(int fixed MEMBER m_fixed)

public:
    explicit Settings(QObject* parent = nullptr) : QObject(parent) {}

    int level() const { return m_level; }
    void setLevel(int level)
    {
        if (m_level == level)
            return;
        m_level = level;
        Q_EMIT levelChanged(m_level);
    }

    PropertyChangeForwarder* forwarder =
        new PropertyChangeForwarder(this, "settingChanged(QObject*, QString)");

Q_SIGNALS:
    void countChanged();
    void scaleChanged();
    void captionChanged();
    void levelChanged(int level);
    void settingChanged(QObject* instr, QString setting);

private:
    int m_count = 0;
    double m_scale = 1.0;
    QString m_caption;
    int m_level = 0;
    int m_fixed = 0;
};

/// An object that declares no target signal at all.
class Silent : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int count MEMBER m_count NOTIFY countChanged)

Q_SIGNALS:
    void countChanged();

private:
    int m_count = 0;
};

/// An owner whose target signal wants more arguments than a forwarder gives.
class Greedy : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int count MEMBER m_count NOTIFY countChanged)

public:
    PropertyChangeForwarder* forwarder =
        new PropertyChangeForwarder(this, "settingChanged(QObject*,QString,int)");

Q_SIGNALS:
    void countChanged();
    void settingChanged(QObject* instr, QString setting, int extra);

private:
    int m_count = 0;
};

struct Emission
{
    QObject* object;
    QString setting;
};

std::vector<Emission> emissions(const QSignalSpy& spy)
{
    std::vector<Emission> result;
    for (const QList<QVariant>& args : spy)
        result.push_back({args.at(0).value<QObject*>(), args.at(1).toString()});
    return result;
}

int augmenterCount(const QObject& owner)
{
    return owner.findChildren<PropertyChangeAugmenter*>(QString(), Qt::FindDirectChildrenOnly).size();
}

// --- the kinds of properties ------------------------------------------------------------

struct PropertyCase
{
    const char* name;
    QVariant value;
};

void PrintTo(const PropertyCase& c, std::ostream* out)
{
    *out << c.name;
}

class ForwardedProperty : public ::testing::TestWithParam<PropertyCase>
{};

TEST_P(ForwardedProperty, AChangeIsToldWithOwnerAndName)
{
    Settings settings;
    const PropertyCase& c = GetParam();
    settings.forwarder->addProperty(c.name, true);
    QSignalSpy spy(&settings, &Settings::settingChanged);
    ASSERT_TRUE(spy.isValid());

    ASSERT_TRUE(settings.setProperty(c.name, c.value));

    ASSERT_EQ(spy.count(), 1);
    const auto told = emissions(spy);
    EXPECT_EQ(told[0].object, &settings);
    EXPECT_EQ(told[0].setting, QString(c.name));
}

INSTANTIATE_TEST_SUITE_P(Kinds, ForwardedProperty,
                         ::testing::Values(PropertyCase{"count", 3}, PropertyCase{"scale", 2.5},
                                           PropertyCase{"caption", QString("front")},
                                           PropertyCase{"level", 7}),
                         [](const ::testing::TestParamInfo<PropertyCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(PropertyChangeForwarder, EveryEmissionOfAnAddedPropertyIsToldUntilTheForwarderGoes)
{
    Settings settings;
    settings.forwarder->addProperty("count", true);
    settings.forwarder->addProperty("scale", false);
    QSignalSpy spy(&settings, &Settings::settingChanged);
    ASSERT_TRUE(spy.isValid());

    Q_EMIT settings.countChanged(); // the value is not looked at
    Q_EMIT settings.countChanged();
    settings.setProperty("caption", QString("rear"));
    settings.setProperty("scale", 4.0);

    const auto told = emissions(spy);
    ASSERT_EQ(told.size(), 3u);
    EXPECT_EQ(told[1].setting, "count");
    EXPECT_EQ(told[2].object, &settings);
    EXPECT_EQ(told[2].setting, "[NO_PROPAGATE]") << "without propagation the placeholder is told";

    ASSERT_EQ(augmenterCount(settings), 2);
    delete settings.forwarder;
    EXPECT_EQ(augmenterCount(settings), 0);
    settings.setProperty("count", 5);
    EXPECT_EQ(spy.count(), 3);
}

// --- paths through child objects --------------------------------------------------------

TEST(PropertyChangeForwarder, ChangesBelowArriveUnderTheirPath)
{
    Settings owner;
    Settings channels(&owner);
    Settings speed(&channels);
    Settings unified(&owner);
    speed.forwarder->addProperty("level", true);
    unified.forwarder->addProperty("scale", true);
    unified.forwarder->addProperty("count", false);
    channels.forwarder->addSource(&speed, "speed");
    owner.forwarder->addSource(&channels, "channels");
    // Adding a source twice used to connect it twice, so every change came out twice.
    owner.forwarder->addSource(&unified, "old");
    owner.forwarder->addSource(&unified, "unified");
    owner.forwarder->addProperty("count", true);
    {
        Settings gone;
        gone.forwarder->addProperty("count", true);
        owner.forwarder->addSource(&gone, "gone");
    }
    QSignalSpy spy(&owner, &Settings::settingChanged);
    QSignalSpy unified_spy(&unified, &Settings::settingChanged);
    ASSERT_TRUE(spy.isValid() && unified_spy.isValid());

    speed.setLevel(4);
    unified.setProperty("scale", 0.5);
    unified.setProperty("count", 9);
    owner.setProperty("count", 1);

    const auto told = emissions(spy);
    ASSERT_EQ(told.size(), 4u);
    EXPECT_EQ(told[0].object, &owner);
    EXPECT_EQ(told[0].setting, "channels.speed.level");
    EXPECT_EQ(told[1].object, &owner);
    EXPECT_EQ(told[1].setting, "unified.scale");
    EXPECT_EQ(told[2].setting, "unified.[NO_PROPAGATE]");
    EXPECT_EQ(told[3].setting, "count");
    const auto unified_told = emissions(unified_spy);
    ASSERT_EQ(unified_told.size(), 2u);
    EXPECT_EQ(unified_told[0].object, &unified);
    EXPECT_EQ(unified_told[0].setting, "scale");
}

// --- reports of mistaken use ------------------------------------------------------------

TEST(PropertyChangeForwarderReports, AnUnknownPropertyOrOneWithoutNotifyIsReportedAndAddsNothing)
{
    for (const char* name : {"nonexistent", "fixed"}) {
        SCOPED_TRACE(name);
        Settings settings;
        QSignalSpy spy(&settings, &Settings::settingChanged);
        ASSERT_TRUE(spy.isValid());
        AssertCapture capture;

        settings.forwarder->addProperty(name, true);
        settings.setProperty(name, 4);

        ASSERT_EQ(capture.size(), 1u);
        EXPECT_EQ(capture.records()[0].expression, "");
        EXPECT_EQ(capture.records()[0].message, "PropertyChangeForwarder::addProperty: property " +
                                                    std::string(name) +
                                                    " not found in instrument forwarder_test::Settings");
        EXPECT_EQ(augmenterCount(settings), 0);
        EXPECT_EQ(spy.count(), 0);
    }
}

TEST(PropertyChangeForwarderReports, AnUnregisteredSourceIsReportedAndNotTold)
{
    Settings owner;
    Settings stranger;
    QSignalSpy spy(&owner, &Settings::settingChanged);
    ASSERT_TRUE(spy.isValid());
    // A stray connection that bypassed addSource.
    QObject::connect(&stranger, SIGNAL(settingChanged(QObject*, QString)), owner.forwarder,
                     SLOT(sourceChanged(QObject*, QString)));
    AssertCapture capture;

    Q_EMIT stranger.settingChanged(&stranger, "count");

    ASSERT_EQ(capture.size(), 1u);
    EXPECT_TRUE(capture.fired("", "PropertyChangeForwarder::sourceChanged: source object not registered"));
    EXPECT_EQ(spy.count(), 0);
}

TEST(PropertyChangeForwarderReports, AnOwnerWithoutTheTargetSignalOrNoOwner)
{
    Silent owner;
    AssertCapture capture;
    auto* forwarder = new PropertyChangeForwarder(&owner, "settingChanged(QObject*,QString)");
    ASSERT_EQ(capture.size(), 1u);
    EXPECT_TRUE(capture.fired("m_signal_index != -1"));
    EXPECT_EQ(capture.records()[0].message, "");

    capture.clear();
    forwarder->addProperty("count", true);
    ASSERT_EQ(capture.size(), 1u);
    EXPECT_TRUE(
        capture.fired("m_signal_index != -1",
                      "PropertyChangeAugmenter: Target signal settingChanged(QObject*,QString) does not "
                      "exist."));
    EXPECT_EQ(augmenterCount(owner), 0);
    Q_EMIT owner.countChanged(); // nothing to call, nothing reported
    EXPECT_EQ(capture.size(), 1u);

    capture.clear();
    PropertyChangeForwarder orphan(nullptr, "settingChanged(QObject*,QString)");
    orphan.addProperty("count", true);
    EXPECT_EQ(capture.size(), 1u) << "a null owner is reported once";
    EXPECT_TRUE(capture.fired("m_signal_index != -1"));
}

TEST(PropertyChangeForwarderReports, ASourceWithoutTheSignalNullOrTheOwnerItselfIsRefused)
{
    Settings owner;
    owner.forwarder->addProperty("count", true);
    QSignalSpy spy(&owner, &Settings::settingChanged);
    ASSERT_TRUE(spy.isValid());
    AssertCapture capture;

    Silent source;
    owner.forwarder->addSource(&source, "silent");
    owner.forwarder->addSource(nullptr, "none");
    owner.forwarder->addSource(&owner, "self");
    EXPECT_TRUE(
        capture.fired("signal_index != -1",
                      "PropertyChangeForwarder: Source signal settingChanged(QObject*,QString) does not "
                      "exist."));
    EXPECT_TRUE(capture.fired("source != nullptr"));
    EXPECT_TRUE(capture.fired("source != parent()"));
    EXPECT_EQ(capture.size(), 3u);

    owner.setProperty("count", 1); // would recurse without end had the owner been taken
    EXPECT_EQ(spy.count(), 1);
}

TEST(PropertyChangeForwarderReports, AFailedCallOfThePropertysTargetSignal)
{
    Greedy owner;
    owner.forwarder->addProperty("count", true);
    AssertCapture capture;

    Q_EMIT owner.countChanged();

    ASSERT_EQ(capture.size(), 1u);
    EXPECT_TRUE(capture.fired("signal.invoke(m_source, QArgument<QObject* >(\"QObject*\", m_source), "
                              "QArgument<QString >(\"QString\", m_property_name))"));
}

TEST(PropertyChangeForwarderReports, AFailedCallOfTheOwnersTargetSignal)
{
    Greedy owner;
    Greedy child;
    child.forwarder->addProperty("count", true);
    owner.forwarder->addSource(&child, "child");
    AssertCapture capture;

    // The child's own call fails the same way, so the owner is reached directly.
    QMetaObject::invokeMethod(owner.forwarder, "sourceChanged", Q_ARG(QObject*, &child),
                              Q_ARG(QString, "count"));

    ASSERT_EQ(capture.size(), 1u);
    EXPECT_TRUE(capture.fired("signal.invoke(owner, QArgument<QObject* >(\"QObject*\", owner), "
                              "QArgument<QString >(\"QString\", property_path))"));
}

} // namespace forwarder_test

#include "property_change_forwarder_test.moc"
