#pragma once

#include <om_model/if_channel_fetcher.h>

#include <channel_config/channel_id.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lum::data {
class MemoryChannelConfigManager;
}

namespace overmap_replay {

/// A channel that a setup asked for and that the loaded recordings do not have.
struct UnresolvedChannel
{
    std::optional<channel_config::ChannelID> id;
    std::string name;

    /// "1/7 (long name "car1.latitude")", "long name "x"".
    std::string describe() const;
};

/// Finds the channels of the loaded recordings for the scene: by id, and by name, where a
/// long name counts before a short one (two recordings share their short names). Lookups
/// that come back empty are remembered, so that the caller can refuse a setup that names
/// channels the recordings lack: a missed id followed by a hit by name counts as found.
class ChannelListFetcher : public overmap::IfChannelFetcher
{
public:
    /// @p manager must outlive the fetcher.
    explicit ChannelListFetcher(const lum::data::MemoryChannelConfigManager& manager);

    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID id) override;
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string name) override;

    /// Every lookup that found nothing, in the order asked.
    std::vector<UnresolvedChannel> unresolved() const;
    void clearUnresolved();

private:
    /// An id that missed and has not been followed by a lookup by name yet.
    void settlePending();

    const lum::data::MemoryChannelConfigManager& m_manager;
    std::optional<channel_config::ChannelID> m_pending_id;
    std::vector<UnresolvedChannel> m_unresolved;
};

} // namespace overmap_replay
