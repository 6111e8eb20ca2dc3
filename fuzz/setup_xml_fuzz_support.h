#pragma once

#include <om_model/if_channel_fetcher.h>

#include <channel_config/channel_id.h>

#include <memory>
#include <string>

namespace setup_fuzz {

/// A host without channels: every look-up misses, so the fall-back paths run.
class NoChannels : public overmap::IfChannelFetcher
{
public:
    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID) override { return nullptr; }
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string) override { return nullptr; }
};

} // namespace setup_fuzz
