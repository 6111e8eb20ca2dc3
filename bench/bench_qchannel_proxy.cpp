// Sorting and filtering 100,000 channels: the channel proxy, sorting by the name item
// and searching it, against a plain QSortFilterProxyModel that does the same over the
// display role of the same list (the channel's object name holds its name).

#include "bench_ratio.h"

#include <qchannel/channel_list_sort_filter_proxy_model.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>

#include <ferrin_core/channel.h>
#include <ferrin_core/config_item_store.h>

#include <QCoreApplication>
#include <QSortFilterProxyModel>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

namespace {

using lum::qchannel::ChannelListPropertySortProxyModel;
using lum::qchannel::QChannel;
using lum::qchannel::QChannelListModel;

constexpr int CHANNELS = 100000;
const char* const SEARCH = "7";

/// A channel with an id and a name only: the proxies never read samples.
class BareChannel : public ferrin::Channel
{
public:
    using ferrin::Channel::Channel;
    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return nullptr; }
    daq::SamplePtr getSampleAtTime(double) const override { return nullptr; }
};

/// The list, its channels named "Channel 00000" and up in a shuffled order.
QChannelListModel& channelList()
{
    static QChannelListModel* list = [] {
        auto* model = new QChannelListModel(QChannelListModel::DELIVERY_IMMEDIATE, true);
        std::vector<int> numbers(CHANNELS);
        std::iota(numbers.begin(), numbers.end(), 0);
        std::shuffle(numbers.begin(), numbers.end(), std::mt19937(42));
        QList<QObject*> channels;
        channels.reserve(CHANNELS);
        std::uint32_t local = 0;
        for (int number : numbers) {
            char name[32];
            std::snprintf(name, sizeof name, "Channel %05d", number);
            ferrin::ChannelSetup setup;
            setup.id = channel_config::ChannelID(1, ++local);
            setup.items = std::make_shared<ferrin::ConfigItemStore>();
            setup.items->set("Ferrin/Name", config_items::StringConfigItem(name));
            auto* channel = new QChannel(std::make_shared<BareChannel>(std::move(setup)));
            channel->setObjectName(QString::fromUtf8(name));
            channels.append(channel);
        }
        model->appendChannels(channels);
        return model;
    }();
    return *list;
}

void BM_ChannelProxySortFilter(benchmark::State& state)
{
    QChannelListModel& list = channelList();
    int shown = 0;
    for (auto _ : state) {
        ChannelListPropertySortProxyModel proxy;
        proxy.setSourceModel(&list);
        proxy.setSearchedKeys({"Ferrin/Name"});
        proxy.setSearchString(SEARCH);
        proxy.setSortProperty("Ferrin/Name");
        shown = proxy.rowCount();
        benchmark::DoNotOptimize(proxy.index(0, 0));
    }
    state.counters["rows"] = shown;
}
BENCHMARK(BM_ChannelProxySortFilter)->Unit(benchmark::kMillisecond);

void BM_PlainProxySortFilter(benchmark::State& state)
{
    QChannelListModel& list = channelList();
    int shown = 0;
    for (auto _ : state) {
        QSortFilterProxyModel proxy;
        proxy.setSourceModel(&list);
        proxy.setFilterRole(Qt::DisplayRole);
        proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
        proxy.setFilterFixedString(QString::fromUtf8(SEARCH));
        proxy.setSortRole(Qt::DisplayRole);
        proxy.setSortCaseSensitivity(Qt::CaseInsensitive);
        proxy.sort(0, Qt::AscendingOrder);
        shown = proxy.rowCount();
        benchmark::DoNotOptimize(proxy.index(0, 0));
    }
    state.counters["rows"] = shown;
}
BENCHMARK(BM_PlainProxySortFilter)->Unit(benchmark::kMillisecond);

void BM_ChannelProxySortOnly(benchmark::State& state)
{
    QChannelListModel& list = channelList();
    for (auto _ : state) {
        ChannelListPropertySortProxyModel proxy;
        proxy.setSourceModel(&list);
        proxy.setSortProperty("Ferrin/Name");
        benchmark::DoNotOptimize(proxy.index(0, 0));
    }
}
BENCHMARK(BM_ChannelProxySortOnly)->Unit(benchmark::kMillisecond);

void BM_PlainProxySortOnly(benchmark::State& state)
{
    QChannelListModel& list = channelList();
    for (auto _ : state) {
        QSortFilterProxyModel proxy;
        proxy.setSourceModel(&list);
        proxy.setSortCaseSensitivity(Qt::CaseInsensitive);
        proxy.sort(0, Qt::AscendingOrder);
        benchmark::DoNotOptimize(proxy.index(0, 0));
    }
}
BENCHMARK(BM_PlainProxySortOnly)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    return bench::runWithRatios(argc, argv,
                                {{"BM_ChannelProxySortFilter", "BM_PlainProxySortFilter", 1.5},
                                 {"BM_ChannelProxySortOnly", "BM_PlainProxySortOnly", 0.0}});
}
