#pragma once

#include <om_model/if_channel_fetcher.h>
#include <om_model/object_manager.h>

#include <lum_data/memory_channel_config_manager.h>

#include <ferrin_core/data_regions_manager.h>
#include <ferrin_core/scalar_channel.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace om_test {

/// Finds channels in a fixed list, the way the display layer's fetcher does over the
/// host's channel list: by id, or by long name.
class ListChannelFetcher : public overmap::IfChannelFetcher
{
public:
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> channels;

    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID id) override;
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string name) override;
};

/// A small two-second GPS recording (latitude, longitude, heading, speed, fix_quality)
/// imported as host channels on node @p node.
class RecordingChannels
{
public:
    explicit RecordingChannels(std::uint32_t node = 1);
    const std::vector<std::shared_ptr<ferrin::ScalarChannel>>& channels() const { return m_channels; }
    /// The channel of that name; fails the test when there is none.
    std::shared_ptr<ferrin::ScalarChannel> byName(const std::string& name) const;

private:
    lum::data::MemoryChannelConfigManager m_config;
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> m_channels;
};

/// Fills @p manager with a scene drawn from @p seed: cars, cones and a locator (some on
/// channels, some hung on others), polylines, straight lines and arcs, calculations
/// between them, and a view. Only values the setup format can carry are used, so the
/// scene must come back from a write and a read unchanged.
void generateSetup(overmap::ObjectManager& manager, std::uint32_t seed,
                   const std::vector<std::shared_ptr<ferrin::ScalarChannel>>& channels);

/// The manager's setup text, as the writer gives it.
std::string writeSetup(overmap::ObjectManager& manager);

} // namespace om_test
