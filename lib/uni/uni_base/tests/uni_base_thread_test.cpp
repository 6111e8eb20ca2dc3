// Counters and log capture used from several threads at once (also run under ThreadSanitizer).
#include <uni_base/countable.h>
#include <uni_base/uni_log.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

class Item : public uni::Countable<Item>
{};

TEST(CountableThreads, CountsAcrossThreads)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 10000; ++i) {
                Item item;
                (void)item;
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(Item::count(), 0);
}

TEST(LogThreads, RecordsFromOtherThreadsAreCaptured)
{
    uni_testing::LogCapture capture;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 50; ++i)
                uni::log("QCHANNEL", 3, "applyChannelAction " + std::to_string(t));
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(capture.count("QCHANNEL", 3, "applyChannelAction"), 200u);
    EXPECT_EQ(capture.count("QCHANNEL", 3, "applyChannelAction 2"), 50u);
}

} // namespace
