#pragma once

#include <ferrin_core/channel.h>
#include <ferrin_core/channel_config_manager.h>
#include <ferrin_core/channel_list_model_observer.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace lum::data {

/// The host's configuration end over channels held in memory. It keeps the list of
/// channels (and tells list observers about changes), applies configuration requests
/// to the channels' item stores all or nothing, tells each changed channel's observers
/// on the calling thread, and runs channel actions through handlers registered per key.
/// Thread-safe; no lock is held while observers or handlers run.
class MemoryChannelConfigManager : public ferrin_config::IfChannelConfigManager
{
public:
    using ActionHandler =
        std::function<bool(const std::vector<channel_config::ChannelID>& channels, double time)>;

    // --- the channel list ---
    /// Adds a channel, or replaces the one with the same id (NOTIFY_CHANNEL_CHANGED).
    void addChannel(std::shared_ptr<ferrin::Channel> channel);
    bool removeChannel(channel_config::ChannelID id);
    void clear();
    std::shared_ptr<ferrin::Channel> channel(channel_config::ChannelID id) const;
    std::vector<std::shared_ptr<ferrin::Channel>> channels() const;

    /// The observer must stay alive until removed.
    void addListObserver(ferrin::ChannelListModelObserver* observer);
    void removeListObserver(ferrin::ChannelListModelObserver* observer);

    // --- configuration ---
    bool applyConfigRequests(const ferrin_config::ConfigRequests& requests, std::uint32_t timeout_ms,
                             bool notify, bool validate_only, bool force) override;
    bool applyChannelAction(const std::string& key, const std::vector<channel_config::ChannelID>& channels,
                            double time) override;
    void setActionHandler(const std::string& key, ActionHandler handler);

    /// Requests applied since construction, for diagnostics.
    std::size_t appliedRequestCount() const;

private:
    void notifyList(ferrin::NotificationType type, const std::shared_ptr<ferrin::Channel>& channel) const;
    /// Why @p request cannot be applied; empty when it can.
    std::string checkRequest(const ferrin_config::ConfigRequest& request, bool force) const;

    mutable std::mutex m_list_mutex;
    std::map<channel_config::ChannelID, std::shared_ptr<ferrin::Channel>> m_channels;
    std::vector<ferrin::ChannelListModelObserver*> m_list_observers;
    std::map<std::string, ActionHandler> m_action_handlers;
    /// Serialises configuration changes, so that a batch is applied as one.
    mutable std::timed_mutex m_apply_mutex;
    std::size_t m_applied = 0;
};

} // namespace lum::data
