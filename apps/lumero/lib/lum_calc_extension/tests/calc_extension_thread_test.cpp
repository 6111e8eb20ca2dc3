// Result channels are read from the host's data threads while the display thread
// rebuilds the extension from a changed setup.
#include <lum_calc_extension/qcalculation_extension.h>
#include <lum_calc_extension/result_channel.h>

#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>

#include <lum_host/qextension_module.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

namespace {

TEST(CalculationExtensionThreads, ReadersSeeValuesWhileTheSetupChanges)
{
    const std::string examples = LUMERO_EXAMPLES_DIR;
    const auto recordings = overmap_replay::loadRecordings(
        {examples + "/recordings/car1_drive_100hz.csv", examples + "/recordings/car2_drive_100hz.csv"});
    ASSERT_TRUE(recordings) << recordings.error;
    overmap_replay::ChannelListFetcher fetcher(*recordings.manager);
    QExtensionModule module("overmap", 3);
    ASSERT_TRUE(module.loadFromFile(QString::fromStdString(examples + "/setups/proving_ground.xml")));
    const QString text = module.getExtensionConfiguration();
    lum::calc::QCalculationExtension extension(module, *recordings.manager, fetcher);
    std::vector<std::shared_ptr<lum::calc::ResultChannel>> channels;
    for (const auto& entry : extension.resultChannels())
        channels.push_back(entry.second);
    ASSERT_EQ(channels.size(), 6u);

    std::atomic<bool> stop{false};
    std::atomic<int> values{0};
    std::vector<std::thread> readers;
    for (int r = 0; r < 2; ++r) {
        readers.emplace_back([&, r] {
            double time = 10.0 + r;
            while (!stop.load()) {
                for (const auto& channel : channels) {
                    if (std::isfinite(channel->getValueAtTime(time, nullptr)))
                        values.fetch_add(1);
                    (void)channel->getName();
                }
                time = time > 100.0 ? 10.0 : time + 0.37;
            }
        });
    }
    // Renames go through the channels' items, a rebuild swaps the scene under the readers.
    for (int round = 0; round < 20; ++round) {
        QString changed = text;
        changed.replace(QStringLiteral("Gap car 1 front to car 2 front"),
                        QStringLiteral("Gap %1").arg(round));
        module.setExtensionConfiguration(changed);
    }
    stop.store(true);
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_GT(values.load(), 0);
    EXPECT_EQ(extension.resultChannel(1)->getName(), "Gap 19");
    EXPECT_EQ(extension.resultChannel(1), channels.front()) << "the channel stayed through the renames";
}

} // namespace
