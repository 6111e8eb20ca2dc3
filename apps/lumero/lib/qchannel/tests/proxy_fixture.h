#pragma once

// A list of channels with varied items, for the tests of the channel proxies.

#include "list_fixture.h"

#include <qchannel/channel_list_sort_filter_proxy_model.h>

#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/sync_scalar_channel.h>

#include <QStringList>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace proxy_test {

using lum::qchannel::QChannel;
using lum::qchannel::QChannelListModel;

/// One channel of the list: its name and the items it has beside "Ferrin/Name" and "Used".
struct Recipe
{
    std::string name;
    std::vector<std::pair<std::string, ferrin::ConfigItem>> items = {};
    std::int32_t occurrence = ferrin::OCCURRENCE_SYNC;
    std::int32_t resolution = 11;
    std::uint32_t dimension = 1;
    bool scalar = false;
};

inline ferrin::ConfigItem text(const char* value)
{
    return config_items::StringConfigItem(value);
}

inline ferrin::ConfigItem number(int value)
{
    return config_items::SingleValueConfigItem<int>(value);
}

inline ferrin::ConfigItem flag(bool value)
{
    return config_items::SingleValueConfigItem<bool>(value);
}

inline ferrin::ConfigItem channelType(channel_config::DAQChannelType type)
{
    return config_items::SingleValueConfigItem<channel_config::DAQChannelType>(type);
}

/// Makes channels with node 7 and local ids from 1, in a list that owns their QChannels.
class ChannelList
{
public:
    ChannelList() { uni_testing::attachModelTester(&list); }

    QChannel* add(const Recipe& recipe)
    {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(7, ++m_next_local);
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
        setup.sample_occurrence = recipe.occurrence;
        setup.sample_resolution = recipe.resolution;
        setup.sample_dimension = recipe.dimension;
        setup.config_manager = &manager;
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", text(recipe.name.c_str()));
        setup.items->set("Used", flag(true));
        for (const auto& [key, item] : recipe.items)
            setup.items->set(key, item);
        std::shared_ptr<ferrin::Channel> channel;
        if (recipe.scalar)
            channel = lum::data::SyncScalarChannel::create(std::move(setup), {1.0}, regions, m_next_local);
        else
            channel = std::make_shared<qchannel_test::PreparedChannel<ferrin::Channel>>(
                std::move(setup), std::map<ferrin::Tick, daq::SampleData>{}, m_next_local);
        manager.addChannel(channel);
        auto* qchannel = new QChannel(channel);
        qchannel->setObjectName(QString::fromStdString(recipe.name));
        list.appendChannel(qchannel);
        return qchannel;
    }

    QChannel* byName(const char* name) const { return list.getChannelByName(QString::fromUtf8(name)); }

    lum::data::MemoryChannelConfigManager manager;
    std::shared_ptr<ferrin::DataRegionsManager> regions = std::make_shared<ferrin::DataRegionsManager>();
    QChannelListModel list{QChannelListModel::DELIVERY_IMMEDIATE, true};

private:
    std::uint32_t m_next_local = 0;
};

/// The names of the channels a proxy shows, in its order, joined by blanks.
inline std::string shown(const lum::qchannel::ChannelListSortFilterProxyModel& proxy)
{
    std::string text;
    for (int row = 0; row < proxy.rowCount(); ++row) {
        const auto* channel = qobject_cast<const QChannel*>(proxy.at(row));
        text += (text.empty() ? "" : " ") + (channel ? channel->name().toStdString() : std::string("?"));
    }
    return text;
}

} // namespace proxy_test
