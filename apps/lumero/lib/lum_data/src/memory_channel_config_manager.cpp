#include "lum_data_log.h"
#include <lum_data/memory_channel_config_manager.h>

#include <uni_base/uni_log.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace lum::data {

void MemoryChannelConfigManager::addChannel(std::shared_ptr<ferrin::Channel> channel)
{
    if (!channel)
        return;
    bool replaced = false;
    {
        std::lock_guard lock(m_list_mutex);
        auto& slot = m_channels[channel->getChannelId()];
        replaced = slot != nullptr;
        slot = channel;
    }
    notifyList(replaced ? ferrin::NOTIFY_CHANNEL_CHANGED : ferrin::NOTIFY_CHANNEL_ADDED, channel);
}

bool MemoryChannelConfigManager::removeChannel(channel_config::ChannelID id)
{
    std::shared_ptr<ferrin::Channel> removed;
    {
        std::lock_guard lock(m_list_mutex);
        const auto it = m_channels.find(id);
        if (it == m_channels.end())
            return false;
        removed = std::move(it->second);
        m_channels.erase(it);
    }
    notifyList(ferrin::NOTIFY_CHANNEL_REMOVED, removed);
    return true;
}

void MemoryChannelConfigManager::clear()
{
    {
        std::lock_guard lock(m_list_mutex);
        m_channels.clear();
    }
    notifyList(ferrin::NOTIFY_CLEAR, nullptr);
}

std::shared_ptr<ferrin::Channel> MemoryChannelConfigManager::channel(channel_config::ChannelID id) const
{
    std::lock_guard lock(m_list_mutex);
    const auto it = m_channels.find(id);
    return it == m_channels.end() ? nullptr : it->second;
}

std::vector<std::shared_ptr<ferrin::Channel>> MemoryChannelConfigManager::channels() const
{
    std::lock_guard lock(m_list_mutex);
    std::vector<std::shared_ptr<ferrin::Channel>> result;
    result.reserve(m_channels.size());
    for (const auto& [id, channel] : m_channels)
        result.push_back(channel);
    return result;
}

void MemoryChannelConfigManager::addListObserver(ferrin::ChannelListModelObserver* observer)
{
    std::lock_guard lock(m_list_mutex);
    if (observer &&
        std::find(m_list_observers.begin(), m_list_observers.end(), observer) == m_list_observers.end())
        m_list_observers.push_back(observer);
}

void MemoryChannelConfigManager::removeListObserver(ferrin::ChannelListModelObserver* observer)
{
    std::lock_guard lock(m_list_mutex);
    m_list_observers.erase(std::remove(m_list_observers.begin(), m_list_observers.end(), observer),
                           m_list_observers.end());
}

void MemoryChannelConfigManager::notifyList(ferrin::NotificationType type,
                                            const std::shared_ptr<ferrin::Channel>& channel) const
{
    std::vector<ferrin::ChannelListModelObserver*> observers;
    {
        std::lock_guard lock(m_list_mutex);
        observers = m_list_observers;
    }
    for (ferrin::ChannelListModelObserver* observer : observers)
        observer->notify(type, channel);
}

std::string MemoryChannelConfigManager::checkRequest(const ferrin_config::ConfigRequest& request,
                                                     bool force) const
{
    const std::shared_ptr<ferrin::Channel> target = channel(request.channel_id);
    if (!target)
        return "no channel " + request.channel_id.toString();
    const std::shared_ptr<ferrin::ConfigItemStore>& store = target->getItemStore();
    if (!store)
        return "channel " + request.channel_id.toString() + " has no configuration";
    if (std::holds_alternative<config_items::InvalidConfigItem>(request.item))
        return "invalid item for key " + request.key;
    if (force)
        return {};
    const std::optional<ferrin::ConfigItem> current = store->get(request.key);
    if (!current)
        return "channel " + request.channel_id.toString() + " has no key " + request.key;
    if (current->index() != request.item.index())
        return "key " + request.key + " holds " + channel_config::configItemTypeName(*current) + ", not " +
               channel_config::configItemTypeName(request.item);
    return {};
}

bool MemoryChannelConfigManager::applyConfigRequests(const ferrin_config::ConfigRequests& requests,
                                                     std::uint32_t timeout_ms, bool notify,
                                                     bool validate_only, bool force)
{
    std::unique_lock lock(m_apply_mutex, std::defer_lock);
    if (timeout_ms == 0) {
        lock.lock();
    } else if (!lock.try_lock_for(std::chrono::milliseconds(timeout_ms))) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_NOTE)
            << "configuration change timed out after " << timeout_ms << " ms";
        return false;
    }

    // All or nothing: check every request before touching a store.
    std::vector<std::shared_ptr<ferrin::Channel>> targets;
    targets.reserve(requests.size());
    for (const ferrin_config::ConfigRequest& request : requests) {
        const std::string problem = checkRequest(request, force);
        if (!problem.empty()) {
            UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "configuration request refused: " << problem;
            return false;
        }
        targets.push_back(channel(request.channel_id));
    }
    if (validate_only)
        return true;

    for (std::size_t i = 0; i < requests.size(); ++i)
        targets[i]->getItemStore()->set(requests[i].key, requests[i].item);
    m_applied += requests.size();
    lock.unlock();

    if (notify) {
        for (std::size_t i = 0; i < requests.size(); ++i)
            targets[i]->notifyConfigItemChanged(requests[i].key);
    }
    return true;
}

bool MemoryChannelConfigManager::applyChannelAction(const std::string& key,
                                                    const std::vector<channel_config::ChannelID>& channels,
                                                    double time)
{
    ActionHandler handler;
    {
        std::lock_guard lock(m_list_mutex);
        const auto it = m_action_handlers.find(key);
        if (it != m_action_handlers.end())
            handler = it->second;
    }
    if (!handler) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "no handler for channel action " << key;
        return false;
    }
    return handler(channels, time);
}

void MemoryChannelConfigManager::setActionHandler(const std::string& key, ActionHandler handler)
{
    std::lock_guard lock(m_list_mutex);
    if (handler)
        m_action_handlers[key] = std::move(handler);
    else
        m_action_handlers.erase(key);
}

std::size_t MemoryChannelConfigManager::appliedRequestCount() const
{
    std::lock_guard lock(m_apply_mutex);
    return m_applied;
}

} // namespace lum::data
