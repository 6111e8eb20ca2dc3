#include <lum_data/append_only_index.h>
#include <lum_data/async_scalar_channel.h>
#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <ferrin_core/tick_arithmetic.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

extern "C" const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}

namespace {

using ferrin::NO_TICK;
using ferrin::Tick;

// One thread records while others read values, regions and reduced data, and while
// configuration changes arrive from yet another thread.
TEST(ChannelsThreads, ReadersSeeAConsistentPrefixWhileAWriterRecords)
{
    auto time_base = std::make_shared<lum::data::MemoryTimeBase>(1000.0, 0.0);
    auto regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager manager;

    ferrin::ChannelSetup setup;
    setup.id = channel_config::ChannelID(2, 1);
    setup.time_base = time_base;
    setup.config_manager = &manager;
    setup.items = std::make_shared<ferrin::ConfigItemStore>();
    setup.items->set("Ferrin/Name", config_items::StringConfigItem("live"));
    lum::data::MemoryChannelOptions options;
    options.reduction_block = 8;
    options.page_size = 64;
    options.all_resident = false;
    options.resident_pages = 4;
    const auto channel = lum::data::AsyncScalarChannel::create(setup, regions, 9, options);
    manager.addChannel(channel);

    std::atomic<int> observed{0};
    int owner = 0;
    channel->registerObserver(&owner, [&](channel_config::ChannelID, const std::string&) { ++observed; });

    constexpr Tick LAST = 200000;
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (Tick tick = 0; tick <= LAST; tick += 2) {
            channel->append(tick, static_cast<double>(tick));
            if (tick % 256 == 0)
                channel->publish();
        }
        channel->finish();
        done = true;
    });

    std::vector<std::thread> readers;
    std::atomic<int> wrong{0};
    for (int r = 0; r < 2; ++r) {
        readers.emplace_back([&, r] {
            Tick probe = static_cast<Tick>(r) * 1000;
            while (!done) {
                probe = (probe + 997) % LAST;
                Tick tick = NO_TICK;
                // Values equal their tick, so any value read must match the tick reported.
                const double value =
                    channel->getValueAtTimeEnsureLoaded(ferrin::tickToTime(probe, *time_base), &tick);
                if (tick != NO_TICK && (value != static_cast<double>(tick) || tick > probe))
                    ++wrong;
                (void)channel->getDataRegions(0, NO_TICK, ferrin::REGION_KIND_SAMPLES, 1, false, true);
                const auto reduced =
                    channel->getReducedValueAtTime(probe / 1000.0, 1, ferrin::REDUCED_KIND_TICKS, true);
                if (reduced && reduced->max > static_cast<double>(probe))
                    ++wrong;
                (void)channel->maxValue();
                (void)channel->getName();
            }
        });
    }
    std::thread configurer([&] {
        for (int i = 0; i < 200; ++i)
            channel->setConfigItem("Ferrin/Name",
                                   config_items::StringConfigItem("live " + std::to_string(i)));
    });

    writer.join();
    configurer.join();
    for (std::thread& reader : readers)
        reader.join();
    channel->registerObserver(&owner, {});

    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(observed.load(), 200);
    EXPECT_EQ(channel->getName(), "live 199");
    EXPECT_EQ(channel->getValueAtTimeEnsureLoaded(ferrin::tickToTime(LAST, *time_base), nullptr),
              static_cast<double>(LAST));
    EXPECT_EQ(channel->getDataRegions(0, NO_TICK, ferrin::REGION_KIND_SAMPLES, 0, false, true),
              (ferrin::DataRegions{{0, LAST}}));
}

// A reader walks every entry it was shown while the writer appends across chunk edges.
TEST(ChannelsThreads, AnAppendOnlyIndexShowsOnlyCompleteEntries)
{
    lum::data::AppendOnlyIndex<std::size_t> index;
    constexpr std::size_t COUNT = 20000;
    std::atomic<bool> done{false};
    std::atomic<int> wrong{0};
    std::thread reader([&] {
        while (!done) {
            const std::size_t size = index.size();
            for (std::size_t i = size > 100 ? size - 100 : 0; i < size; ++i)
                if (index[i] != i + 1)
                    ++wrong;
        }
    });
    for (std::size_t i = 0; i < COUNT; ++i)
        index.push_back(i + 1);
    done = true;
    reader.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(index.size(), COUNT);
}

} // namespace
