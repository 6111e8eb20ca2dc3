// The map instrument on a host application with the example setup and recordings: its
// settings and their text forms, the orphan check, and the data windows it asks for.

#include <om_instrument/overmap_instrument.h>

#include <lum_host/host_application.h>
#include <om_ui/object_lists.h>
#include <om_ui/overmap_model.h>
#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/qobject_manager.h>
#include <overmap_replay/replay_inputs.h>
#include <qchannel/qchannel.h>

#include <ferrin_core/channel.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

using im::OvermapInstrument;

const QString EXAMPLE_SETUP = QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml");

class OvermapInstrumentTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // The online probe asks a local port that refuses at once, never the internet.
        static QTemporaryDir settings_dir;
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_dir.path());
        QSettings().setValue(overmap_ui::OvermapModel::PROBE_URL_KEY, "http://127.0.0.1:9/");
    }

    /// The host with the example recordings and setup, and the instrument connected to it.
    void connectExample()
    {
        m_recordings =
            overmap_replay::loadRecordings({LUMERO_EXAMPLES_DIR "/recordings/car1_drive_100hz.csv",
                                            LUMERO_EXAMPLES_DIR "/recordings/car2_drive_100hz.csv"});
        ASSERT_TRUE(m_recordings) << m_recordings.error;
        for (const auto& channel : m_recordings.manager->channels())
            m_host.getChannels()->appendChannel(new lum::qchannel::QChannel(channel));
        auto* extension = new QExtensionModule(OvermapInstrument::EXTENSION_ID, 0x7f);
        ASSERT_TRUE(extension->loadFromFile(EXAMPLE_SETUP));
        ASSERT_TRUE(m_host.addExtensionModule(extension));
        m_instrument.setApplication(&m_host);
        m_instrument.connectToApplication();
    }

    overmap_replay::LoadedRecordings m_recordings;
    lum::HostApplication m_host;
    OvermapInstrument m_instrument;
};

TEST_F(OvermapInstrumentTest, StartsEmptyWithoutChannels)
{
    EXPECT_EQ(m_instrument.filteredObjects(), "");
    EXPECT_EQ(m_instrument.getMaxChannels(), 0);
    EXPECT_EQ(m_instrument.getType(), "lum::overmap");
    EXPECT_EQ(m_instrument.getGroup(), "Automotive");
    EXPECT_EQ(m_instrument.positionObjectToFollow(), -1);
    EXPECT_EQ(m_instrument.center(), QGeoCoordinate(0.0, 0.0));
    EXPECT_TRUE(m_instrument.getDataWindows().empty());
}

/// Text form of the hidden ids: what is written over what, and what reads back.
TEST_F(OvermapInstrumentTest, FilteredObjectsTextForm)
{
    const struct
    {
        const char* name;
        QString before;
        QString written;
        QString read;
        int signal_count;
    } rows[] = {
        {"sorted, duplicates once", "", "5,2,5", "2,5", 1},
        {"empty over a set is the id 0", "2,5", "", "0", 1},
        {"empty over empty changes nothing", "", "", "", 0},
        {"no number is the id 0", "", "x", "0", 1},
        {"the same text changes nothing", "2,5", "2,5", "2,5", 0},
        {"empty parts are ids 0", "", "3,,7", "0,3,7", 1},
    };
    for (const auto& row : rows) {
        OvermapInstrument instrument;
        instrument.setFilteredObjects(row.before);
        QSignalSpy text(&instrument, &OvermapInstrument::filteredObjectsChanged);
        QSignalSpy filter(&instrument, &OvermapInstrument::objectFilterChanged);
        ASSERT_TRUE(text.isValid() && filter.isValid());
        instrument.setFilteredObjects(row.written);
        EXPECT_EQ(instrument.filteredObjects(), row.read) << row.name;
        EXPECT_EQ(text.count(), row.signal_count) << row.name;
        EXPECT_EQ(filter.count(), 0) << row.name;
    }
}

TEST_F(OvermapInstrumentTest, HidingAnObjectSignalsOnceAndLeavesTheTextSignalAlone)
{
    QSignalSpy filter(&m_instrument, &OvermapInstrument::objectFilterChanged);
    QSignalSpy text(&m_instrument, &OvermapInstrument::filteredObjectsChanged);
    ASSERT_TRUE(filter.isValid() && text.isValid());
    m_instrument.setObjectFiltered(3, true);
    m_instrument.setObjectFiltered(3, true);
    EXPECT_EQ(filter.count(), 1);
    EXPECT_EQ(text.count(), 0);
    EXPECT_TRUE(m_instrument.isObjectFiltered(3));
    m_instrument.setObjectFiltered(3, false);
    EXPECT_EQ(filter.count(), 2);
    EXPECT_EQ(m_instrument.filteredObjects(), "");
}

TEST_F(OvermapInstrumentTest, SettersSkipEqualValues)
{
    QSignalSpy zoom(&m_instrument, &OvermapInstrument::zoomFactorChanged);
    QSignalSpy heading(&m_instrument, &OvermapInstrument::mapHeadingChanged);
    QSignalSpy follow(&m_instrument, &OvermapInstrument::positionObjectToFollowChnaged);
    QSignalSpy center(&m_instrument, &OvermapInstrument::centerChanged);
    ASSERT_TRUE(zoom.isValid() && heading.isValid() && follow.isValid() && center.isValid());
    m_instrument.setZoomFactor(1.0 + 1e-14);
    m_instrument.setMapHeading(0.0);
    m_instrument.setPositionObjectToFollow(-1);
    m_instrument.setCenter(QGeoCoordinate(0.0, 0.0));
    EXPECT_EQ(zoom.count() + heading.count() + follow.count() + center.count(), 0);
    m_instrument.setZoomFactor(2.5);
    m_instrument.setMapHeading(1e-9);
    m_instrument.setPositionObjectToFollow(2);
    m_instrument.setMapOpacity(7.0); // no bounds: the view's controls keep it in range
    EXPECT_EQ(zoom.count(), 1);
    EXPECT_EQ(heading.count(), 1);
    EXPECT_EQ(follow.at(0).at(0).toInt(), 2);
    EXPECT_EQ(m_instrument.property("mapOpacity").toDouble(), 7.0);
}

TEST_F(OvermapInstrumentTest, ConnectsToTheHostsExtensionAndAsksForEveryInputChannel)
{
    QSignalSpy windows(&m_instrument, &im::InstrumentModel::dataWindowsChanged);
    ASSERT_TRUE(windows.isValid());
    connectExample();
    auto* manager = m_instrument.geoModel()->objectsManager();
    ASSERT_EQ(manager->allObjects()->size(), 19);
    EXPECT_GE(windows.count(), 1);

    // Heading, latitude, longitude of each position object, in list order; the locator
    // shares car 1's position channels and stands there again.
    std::vector<channel_config::ChannelID> expected;
    for (auto* object : manager->positionObjects()->typedList()) {
        for (auto* channel :
             {object->headingChannel(), object->latitudeChannel(), object->longitudeChannel()})
            if (channel != nullptr)
                expected.push_back(channel->ferrinChannel()->getChannelId());
    }
    std::vector<channel_config::ChannelID> asked;
    for (const im::ChannelDataWindow& window : m_instrument.getDataWindows()) {
        EXPECT_EQ(window.mode, 2);
        EXPECT_EQ(window.first + window.second, 0u);
        asked.push_back(window.channel->getChannelId());
    }
    EXPECT_EQ(asked, expected);
    EXPECT_EQ(asked.size(), 8u);
    EXPECT_EQ(asked.front(), channel_config::ChannelID(1, 4)) << "car 1's heading first";
}

TEST_F(OvermapInstrumentTest, NewConfigurationDropsHiddenIdsOfMissingObjects)
{
    connectExample();
    m_instrument.setFilteredObjects("2,5");
    QSignalSpy text(&m_instrument, &OvermapInstrument::filteredObjectsChanged);
    ASSERT_TRUE(text.isValid());
    QFile file(EXAMPLE_SETUP);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    m_host.getExtensionModule(OvermapInstrument::EXTENSION_ID)
        ->setExtensionConfiguration(QString::fromUtf8(file.readAll()) + "\n");
    EXPECT_EQ(m_instrument.filteredObjects(), "2");
    EXPECT_EQ(text.count(), 0);
    EXPECT_EQ(m_instrument.objectsFilterModel()->rowCount(), 15);
}

} // namespace
