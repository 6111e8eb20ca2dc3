#include "list_fixture.h"

#include <lum_data/recording_channels.h>

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <thread>
#include <vector>

extern "C" const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}

namespace {

using namespace qchannel_list_test;
using channel_config::ChannelID;

constexpr int NOTIFY_THREADS = 3;
constexpr int APPEND_THREADS = 2;
constexpr std::uint32_t CHANNELS_PER_THREAD = 60;

/// What one producer thread leaves in the list, by id, with the channel last given.
using Expected = std::map<ChannelID, ChannelPtr>;

/// Several threads of the acquisition core report channels through the observer while
/// others append and remove QChannel objects of their own, and the model's thread reads
/// and keeps a view's row count. At the end the list holds exactly what the producers
/// left, each channel once, and the view agrees with it.
void runProducers(QChannelListModel::NotificationDelivery delivery)
{
    QChannelListModel list(delivery, true);
    uni_testing::attachModelTester(&list);
    ViewCounter view(&list);
    ferrin::ChannelListModelObserver& observer = list;

    std::vector<Expected> expected(NOTIFY_THREADS + APPEND_THREADS);
    std::atomic<int> running{NOTIFY_THREADS + APPEND_THREADS};
    std::vector<std::thread> threads;
    for (int t = 0; t < NOTIFY_THREADS; ++t) {
        threads.emplace_back([&, t] {
            const auto node = static_cast<std::uint32_t>(10 + t);
            for (std::uint32_t local = 1; local <= CHANNELS_PER_THREAD; ++local) {
                ChannelPtr channel =
                    makeChannel(node, local, "n" + std::to_string(t) + "_" + std::to_string(local));
                observer.notify(ferrin::NOTIFY_CHANNEL_ADDED, channel);
                expected[t][channel->getChannelId()] = channel;
                if (local % 3 == 0) {
                    observer.notify(ferrin::NOTIFY_CHANNEL_REMOVED, channel);
                    expected[t].erase(channel->getChannelId());
                } else if (local % 5 == 0) {
                    ChannelPtr replacement = makeChannel(node, local, "r" + std::to_string(local));
                    observer.notify(ferrin::NOTIFY_CHANNEL_CHANGED, replacement);
                    expected[t][channel->getChannelId()] = replacement;
                }
            }
            --running;
        });
    }
    for (int t = 0; t < APPEND_THREADS; ++t) {
        threads.emplace_back([&, t] {
            const auto node = static_cast<std::uint32_t>(20 + t);
            Expected& mine = expected[NOTIFY_THREADS + t];
            for (std::uint32_t local = 1; local <= CHANNELS_PER_THREAD; ++local) {
                ChannelPtr channel = makeChannel(node, local, "a");
                auto* qchannel = new QChannel(channel);
                list.appendChannel(qchannel);
                mine[channel->getChannelId()] = channel;
                if (local % 4 == 0) {
                    list.removeChannel(qchannel);
                    qchannel->deleteLater();
                    mine.erase(channel->getChannelId());
                }
            }
            --running;
        });
    }

    // The model's thread reads while the producers work.
    const bool finished = spinUntil([&] {
        for (std::uint32_t local = 1; local <= CHANNELS_PER_THREAD; local += 7) {
            if (QChannel* channel = list.getChannelByID(ChannelID(10, local))) {
                EXPECT_EQ(channel->ferrinChannel()->getChannelId(), ChannelID(10, local));
            }
        }
        EXPECT_EQ(view.rows, list.rowCount());
        return running.load() == 0;
    });
    ASSERT_TRUE(finished) << "the producers did not finish: a hop blocked";
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_TRUE(spinUntil([&] { return !list.hasPendingChannelNotifications(); }));
    flushDeletes();

    Expected all;
    for (const Expected& part : expected)
        all.insert(part.begin(), part.end());
    EXPECT_EQ(list.size(), static_cast<int>(all.size()));
    EXPECT_EQ(view.rows, list.size());
    std::set<QChannel*> distinct;
    for (const auto& [id, channel] : all) {
        QChannel* found = list.getChannelByID(id);
        ASSERT_NE(found, nullptr) << "lost: " << id;
        EXPECT_EQ(found->ferrinChannel(), channel) << "stale channel under " << id;
        EXPECT_EQ(found->thread(), list.thread());
        distinct.insert(found);
    }
    EXPECT_EQ(distinct.size(), all.size()) << "a channel is in the list twice";
    EXPECT_GT(view.resets + view.row_signals, 0);
}

TEST(ChannelListThreads, QueuedDeliveryFromManyThreadsLosesAndDoublesNothing)
{
    runProducers(QChannelListModel::DELIVERY_QUEUED);
}

TEST(ChannelListThreads, ImmediateDeliveryFromManyThreadsLosesAndDoublesNothing)
{
    runProducers(QChannelListModel::DELIVERY_IMMEDIATE);
}

/// The host's own channel source, made from a recording on a loader thread, feeds the
/// list through the config manager's list observers.
TEST(ChannelListThreads, HostChannelSourceFeedsTheListFromItsOwnThread)
{
    QChannelListModel list(QChannelListModel::DELIVERY_QUEUED, true);
    uni_testing::attachModelTester(&list);
    ViewCounter view(&list);
    lum::data::MemoryChannelConfigManager manager;
    manager.addListObserver(&list);
    list.setChannelConfigManager(&manager);
    auto regions = std::make_shared<ferrin::DataRegionsManager>();

    lum::import::Recording recording;
    recording.source = "drive.csv";
    recording.format = "CSV";
    for (const char* name : {"latitude", "longitude", "heading"}) {
        lum::import::ImportedChannel channel;
        channel.name = name;
        channel.unit = "deg";
        for (int i = 0; i < 50; ++i) {
            channel.times.push_back(i * 0.1);
            channel.values.push_back(i);
        }
        recording.channels.push_back(channel);
    }

    std::atomic<bool> loaded{false};
    std::atomic<bool> proceed{false};
    std::atomic<bool> done{false};
    std::thread loader([&] {
        lum::data::makeRecordingChannels(recording, manager, regions);
        loaded = true;
        while (!proceed.load())
            std::this_thread::yield();
        manager.removeChannel(ChannelID(1, 2));
        done = true;
    });

    ASSERT_TRUE(spinUntil([&] { return loaded.load() && list.size() == 3; }));
    QChannel* heading = list.getChannelByName("heading");
    ASSERT_NE(heading, nullptr);
    EXPECT_EQ(list.getChannelByID(ChannelID(1, 3)), heading);
    EXPECT_DOUBLE_EQ(heading->valueAtTime(2.0).toDouble(), 20.0);
    EXPECT_EQ(view.rows, 3);

    proceed = true;
    ASSERT_TRUE(spinUntil([&] { return done.load() && list.size() == 2; }));
    loader.join();
    EXPECT_EQ(list.getChannelByName("longitude"), nullptr);
    EXPECT_EQ(view.rows, 2);
    flushDeletes();
    manager.removeListObserver(&list);
}

} // namespace
