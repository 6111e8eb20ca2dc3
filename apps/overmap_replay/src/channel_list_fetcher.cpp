#include <overmap_replay/channel_list_fetcher.h>

#include <lum_data/memory_channel_config_manager.h>

#include <ferrin_core/scalar_channel.h>

namespace overmap_replay {

std::string UnresolvedChannel::describe() const
{
    std::string text;
    if (id)
        text = std::to_string(id->getNodeId()) + "/" + std::to_string(id->getLocalId());
    if (!name.empty())
        text += (text.empty() ? "" : " ") + std::string(id ? "(long name \"" : "long name \"") + name +
                (id ? "\")" : "\"");
    return text;
}

ChannelListFetcher::ChannelListFetcher(const lum::data::MemoryChannelConfigManager& manager)
    : m_manager(manager)
{}

std::shared_ptr<ferrin::ScalarChannel> ChannelListFetcher::findById(channel_config::ChannelID id)
{
    settlePending();
    auto channel = std::dynamic_pointer_cast<ferrin::ScalarChannel>(m_manager.channel(id));
    if (!channel)
        m_pending_id = id;
    return channel;
}

std::shared_ptr<ferrin::ScalarChannel> ChannelListFetcher::findByName(std::string name)
{
    const auto channels = m_manager.channels();
    std::shared_ptr<ferrin::ScalarChannel> found;
    for (const auto& channel : channels) {
        if (channel->getLongName() == name) {
            found = std::dynamic_pointer_cast<ferrin::ScalarChannel>(channel);
            if (found)
                break;
        }
    }
    for (std::size_t i = 0; !found && i < channels.size(); ++i) {
        if (channels[i]->getName() == name)
            found = std::dynamic_pointer_cast<ferrin::ScalarChannel>(channels[i]);
    }
    if (!found)
        m_unresolved.push_back({m_pending_id, std::move(name)});
    m_pending_id.reset();
    return found;
}

std::vector<UnresolvedChannel> ChannelListFetcher::unresolved() const
{
    std::vector<UnresolvedChannel> result = m_unresolved;
    if (m_pending_id)
        result.push_back({m_pending_id, {}});
    return result;
}

void ChannelListFetcher::clearUnresolved()
{
    m_unresolved.clear();
    m_pending_id.reset();
}

void ChannelListFetcher::settlePending()
{
    if (m_pending_id)
        m_unresolved.push_back({m_pending_id, {}});
    m_pending_id.reset();
}

} // namespace overmap_replay
