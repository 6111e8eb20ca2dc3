// The host's data threads read an instrument's data windows and rows while the main
// thread reconfigures its channels.

#include "instrument_fixture.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <atomic>
#include <mutex>
#include <thread>

using channel_config::ChannelID;
using instrument_test::Channels;
using instrument_test::TestInstrument;
using lum::qchannel::QChannel;

TEST(InstrumentModelThreads, DataWindowsAreReadWhileTheChannelsChange)
{
    Channels channels;
    QChannel* a = channels.make(ChannelID(1, 1), "a");
    QChannel* b = channels.make(ChannelID(1, 2), "b");
    QChannel* c = channels.make(ChannelID(1, 3), "c");
    QChannel* d = channels.make(ChannelID(1, 4), "d");
    TestInstrument model(3);

    std::atomic<bool> stop{false};
    std::atomic<long> reads{0};
    std::atomic<long> bad_windows{0};
    std::thread reader([&] {
        while (!stop.load()) {
            for (const im::ChannelDataWindow& window : model.getDataWindows())
                if (window.channel == nullptr || window.channel->getChannelId().getNodeId() != 1)
                    ++bad_windows;
            {
                std::lock_guard<std::recursive_mutex> lock(model.channelsLock());
                if (model.getChannels()->size() > 3)
                    ++bad_windows;
            }
            ++reads;
        }
    });

    for (int round = 0; round < 300; ++round) {
        model.addChannels({a, b, c});
        model.replaceChannel(1, d);
        model.toggleChannel(b);
        model.removeChannel(a);
        model.removeAllChannels();
        QCoreApplication::processEvents(); // lets the removed rows' properties go
    }
    // Keep changing until the reader has surely overlapped with some changes.
    while (reads.load() < 100) {
        model.addChannel(a);
        model.removeAllChannels();
    }
    stop.store(true);
    reader.join();

    EXPECT_EQ(bad_windows.load(), 0);
    EXPECT_TRUE(model.getDataWindows().empty());
}
