// Channel actions on the thread pool while the display thread keeps reading values,
// and configuration changes that arrive from the action's thread.

#include "qchannel_fakes.h"

#include <qchannel/qchannel.h>

#include <gtest/gtest.h>

#include <QColor>
#include <QCoreApplication>
#include <QSignalSpy>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <cmath>

using channel_config::ChannelID;
using lum::qchannel::QChannel;
using qchannel_test::ChannelFactory;

namespace {

TEST(QChannelThreads, ActionsRunWhileValuesAreRead)
{
    ChannelFactory factory{1000.0};
    std::vector<double> values(5000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>(i);
    auto sync = factory.sync("sync", values);
    std::vector<std::pair<ferrin::Tick, double>> samples;
    for (ferrin::Tick tick = 0; tick < 5000; tick += 7)
        samples.emplace_back(tick, static_cast<double>(tick));
    auto async = factory.async("async", samples);
    for (const auto& channel :
         {std::static_pointer_cast<ferrin::Channel>(sync), std::static_pointer_cast<ferrin::Channel>(async)})
        channel->getItemStore()->set("ACTION:Recolour", config_items::SingleValueConfigItem<bool>(true));

    std::atomic<int> runs{0};
    // The action reads the channels and changes an item, whose notification reaches
    // the QChannel on the pool thread.
    factory.manager.setActionHandler("ACTION:Recolour", [&](const std::vector<ChannelID>& ids, double time) {
        auto target = factory.manager.channel(ids.front());
        auto scalar = std::dynamic_pointer_cast<ferrin::ScalarChannel>(target);
        double sum = 0.0;
        for (int i = 0; i < 200; ++i)
            sum += scalar->getValueAtTimeEnsureLoaded(time + i * 0.001, nullptr);
        ferrin_config::ConfigRequests requests{
            {ids.front(), "Ferrin/Color", config_items::StringConfigItem(sum > 0 ? "#00ff00" : "#0000ff")}};
        factory.manager.applyConfigRequests(requests, 0, true, false, false);
        ++runs;
        return true;
    });

    QChannel sync_channel(sync);
    QChannel async_channel(async);
    QSignalSpy sync_done(&sync_channel, &QChannel::channelActionInProgressChanged);
    QSignalSpy async_done(&async_channel, &QChannel::channelActionInProgressChanged);

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int started = 0;
    double checksum = 0.0;
    int reads = 0;
    while (runs.load() < 20 && std::chrono::steady_clock::now() < deadline) {
        for (QChannel* channel : {&sync_channel, &async_channel})
            if (!channel->channelActionInProgress()) {
                channel->applyChannelAction("ACTION:Recolour", 0.5 + (started % 10) * 0.3);
                ++started;
            }
        for (int i = 0; i < 50; ++i, ++reads) {
            const double time = (reads % 5000) * 0.001;
            checksum += sync_channel.valueAtTime(time).toDouble();
            const double near = async_channel.valueNearTime(time).toDouble();
            if (!std::isnan(near))
                checksum += near;
            checksum += async_channel.sampletimeNearTime(time);
        }
        QCoreApplication::processEvents();
    }
    QThreadPool::globalInstance()->waitForDone();
    // The watchers hear of the last ends through queued events.
    const auto settle = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while ((sync_channel.channelActionInProgress() || async_channel.channelActionInProgress() ||
            sync_done.count() + async_done.count() < started + 2) &&
           std::chrono::steady_clock::now() < settle)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);

    // Actions started only while none ran, so none was skipped.
    EXPECT_EQ(runs.load(), started);
    EXPECT_GE(runs.load(), 20);
    EXPECT_GT(checksum, 0.0);
    EXPECT_FALSE(sync_channel.channelActionInProgress());
    EXPECT_FALSE(async_channel.channelActionInProgress());
    // Every start is announced. An end is announced unless the next action of the
    // channel took the watcher before the end's queued event arrived; the last ends are.
    EXPECT_GE(sync_done.count() + async_done.count(), started + 2);
    EXPECT_LE(sync_done.count() + async_done.count(), 2 * started);
    EXPECT_EQ(sync_channel.color(), QColor(Qt::green));
}

} // namespace
