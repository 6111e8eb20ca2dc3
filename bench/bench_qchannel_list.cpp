// The channel list: filling it from a foreign thread in batches, and looking channels up
// by id on small and large lists. The fill reports how many resets and row signals a
// view attached to the list saw, per 100,000 channels.

#include "bench_ratio.h"

#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>

#include <ferrin_core/channel.h>

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QObject>

#include <atomic>
#include <functional>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {

using lum::qchannel::QChannel;
using lum::qchannel::QChannelListModel;

constexpr std::uint32_t FILL_CHANNELS = 100000;
constexpr std::uint32_t FILL_BATCH = 1000;

/// A channel with an id and a name only: the list never reads samples.
class BareChannel : public ferrin::Channel
{
public:
    using ferrin::Channel::Channel;
    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return nullptr; }
    daq::SamplePtr getSampleAtTime(double) const override { return nullptr; }
};

std::vector<std::shared_ptr<ferrin::Channel>> makeChannels(std::uint32_t count)
{
    std::vector<std::shared_ptr<ferrin::Channel>> channels;
    channels.reserve(count);
    for (std::uint32_t local = 1; local <= count; ++local) {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(1, local);
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem("channel"));
        channels.push_back(std::make_shared<BareChannel>(std::move(setup)));
    }
    return channels;
}

const std::vector<std::shared_ptr<ferrin::Channel>>& fillChannels()
{
    static const std::vector<std::shared_ptr<ferrin::Channel>> channels = makeChannels(FILL_CHANNELS);
    return channels;
}

/// Counts what a view attached to @p model is told.
struct ViewSignals
{
    explicit ViewSignals(QAbstractItemModel* model)
    {
        QObject::connect(model, &QAbstractItemModel::modelReset, &context, [this] { ++resets; });
        QObject::connect(model, &QAbstractItemModel::rowsInserted, &context, [this] { ++row_signals; });
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, &context, [this] { ++row_signals; });
    }
    QObject context;
    long resets = 0;
    long row_signals = 0;
};

/// Fills a new list with 100,000 channels per iteration by @p produce, on a producer
/// thread, while this thread (the model's) serves the hops and the timer; reports what
/// a view attached to the list was told.
void runFill(benchmark::State& state, const std::function<void(QChannelListModel&)>& produce)
{
    long resets = 0;
    long row_signals = 0;
    for (auto _ : state) {
        auto list = std::make_unique<QChannelListModel>(QChannelListModel::DELIVERY_QUEUED, true);
        ViewSignals view(list.get());
        std::atomic<bool> done{false};
        std::thread producer([&] {
            produce(*list);
            done = true;
        });
        while (!done.load() || list->size() < static_cast<int>(FILL_CHANNELS))
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        producer.join();
        resets += view.resets;
        row_signals += view.row_signals;
        state.PauseTiming();
        list.reset();
        state.ResumeTiming();
    }
    state.counters["resets"] =
        benchmark::Counter(static_cast<double>(resets), benchmark::Counter::kAvgIterations);
    state.counters["row_signals"] =
        benchmark::Counter(static_cast<double>(row_signals), benchmark::Counter::kAvgIterations);
}

// A producer thread makes QChannel objects and appends them in batches of 1000.
void BM_AppendFromForeignThreadInBatches(benchmark::State& state)
{
    const auto& channels = fillChannels();
    runFill(state, [&channels](QChannelListModel& list) {
        for (std::uint32_t first = 0; first < FILL_CHANNELS; first += FILL_BATCH) {
            QList<QObject*> batch;
            batch.reserve(static_cast<int>(FILL_BATCH));
            for (std::uint32_t i = first; i < first + FILL_BATCH; ++i)
                batch.append(new QChannel(channels[i]));
            list.beginBatchOperation();
            list.appendChannels(batch);
            list.endBatchOperation();
        }
    });
}
BENCHMARK(BM_AppendFromForeignThreadInBatches)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// The acquisition core reports 100,000 channels through the observer from its thread;
// the list queues them and its timer applies them.
void BM_NotifyFromForeignThreadQueued(benchmark::State& state)
{
    const auto& channels = fillChannels();
    runFill(state, [&channels](QChannelListModel& list) {
        ferrin::ChannelListModelObserver& observer = list;
        for (const auto& channel : channels)
            observer.notify(ferrin::NOTIFY_CHANNEL_ADDED, channel);
    });
}
BENCHMARK(BM_NotifyFromForeignThreadQueued)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

/// getChannelByID over random ids of a list of @p count channels.
void lookup(benchmark::State& state, std::uint32_t count)
{
    const auto channels = makeChannels(count);
    QChannelListModel list(QChannelListModel::DELIVERY_QUEUED, true);
    QList<QObject*> objects;
    for (const auto& channel : channels)
        objects.append(new QChannel(channel));
    list.appendChannels(objects);

    std::mt19937 random(7);
    std::uniform_int_distribution<std::uint32_t> pick(1, count);
    std::vector<channel_config::ChannelID> ids(4096);
    for (auto& id : ids)
        id = channel_config::ChannelID(1, pick(random));
    std::size_t i = 0;
    for (auto _ : state) {
        QChannel* found = list.getChannelByID(ids[i++ & 4095]);
        benchmark::DoNotOptimize(found);
    }
}

void BM_GetChannelByID_1k(benchmark::State& state)
{
    lookup(state, 1000);
}
BENCHMARK(BM_GetChannelByID_1k);

void BM_GetChannelByID_100k(benchmark::State& state)
{
    lookup(state, 100000);
}
BENCHMARK(BM_GetChannelByID_100k);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    return bench::runWithRatios(argc, argv, {{"BM_GetChannelByID_100k", "BM_GetChannelByID_1k", 3.0}});
}
