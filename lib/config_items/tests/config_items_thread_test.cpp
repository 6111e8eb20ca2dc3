// Items are parsed and dropped on every thread that touches configuration: the
// compiled patterns and text tables are shared, the live-item count is atomic.
#include <config_items/parse_string_visitor.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

// Boost.Regex's matcher reads the shared compiled pattern in a way ThreadSanitizer
// misreads as a race; Qt-free, so no other suppression is needed.
extern "C" const char* __tsan_default_suppressions()
{
    return "race:boost::re_detail_*::perl_matcher\n";
}

namespace {

using namespace config_items;
using namespace channel_config;

TEST(ConfigItemThreads, ParallelParsingGivesTheSameItemsAndLeavesNoneBehind)
{
    const long before = IfConfigItem::count();
    constexpr int THREADS = 4;
    constexpr int ROUNDS = 300;
    std::atomic<int> wrong{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([&, t] {
            while (!go.load())
                std::this_thread::yield();
            const ParseStringVisitor parser;
            for (int i = 0; i < ROUNDS; ++i) {
                const std::string number = std::to_string(t * ROUNDS + i);
                ConfigItemVariant scalar = ScalarConfigItem();
                ConfigItemVariant range = RangeConfigItem<double>();
                ConfigItemVariant decorated = DecoratedNumberConfigItem();
                ConfigItemVariant kind = SingleValueConfigItem<DAQChannelType>();
                const bool ok = parser.parse(number + ",5 mV", scalar) &&
                                parser.parse("-" + number + " .. " + number + " V", range) &&
                                parser.parse("#" + number + "rpm", decorated) &&
                                parser.parse("CAN_Signal", kind);
                const double expected = t * ROUNDS + i;
                if (!ok || std::get<ScalarConfigItem>(scalar).getValue() != expected + 0.5 ||
                    std::get<RangeConfigItem<double>>(range).getMax() != expected ||
                    std::get<DecoratedNumberConfigItem>(decorated).getValue() != expected ||
                    channel_config::toString(kind) != "CAN_Signal")
                    ++wrong;
            }
        });
    }
    go = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(IfConfigItem::count(), before);
}

} // namespace
