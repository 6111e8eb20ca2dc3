#pragma once

#include <ferrin_core/config_item_store.h>

#include <channel_config/channel_id.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ferrin_config {

/// One change of one configuration key of one channel.
struct ConfigRequest
{
    channel_config::ChannelID channel_id;
    std::string key;
    ferrin::ConfigItem item;
};

using ConfigRequests = std::vector<ConfigRequest>;

/// The acquisition core's end that applies configuration changes and channel actions,
/// given by the host. Channels send through it and never write their items themselves.
class IfChannelConfigManager
{
public:
    virtual ~IfChannelConfigManager() = default;

    /// Applies @p requests as one change: all of them or none.
    /// @param timeout_ms      how long the caller waits for a busy core; 0 waits as long as it takes
    /// @param notify          tell the channels' observers about every changed key
    /// @param validate_only   only check that the requests could be applied
    /// @param force           take keys the channel does not have yet, and items of
    ///                        another type than the key holds
    /// Channels call it with (requests, 0, true, false, false).
    virtual bool applyConfigRequests(const ConfigRequests& requests, std::uint32_t timeout_ms, bool notify,
                                     bool validate_only, bool force) = 0;

    /// Runs the action behind the "ACTION:" key @p key on @p channels at @p time
    /// (seconds on the host's time axis).
    virtual bool applyChannelAction(const std::string& key,
                                    const std::vector<channel_config::ChannelID>& channels, double time) = 0;
};

} // namespace ferrin_config
