#pragma once

#include <memory>
#include <string>

namespace channel_config {
class ChannelID;
}
namespace ferrin {
class ScalarChannel;
}

namespace overmap {

/// The model's only way to reach measured channels. The display layer implements it
/// over the host's channel list.
class IfChannelFetcher
{
public:
    virtual ~IfChannelFetcher() = default;
    /// The scalar channel with that id, or null when there is none.
    virtual std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID id) = 0;
    /// The first scalar channel of that name (case-sensitive), or null.
    virtual std::shared_ptr<ferrin::ScalarChannel> findByName(std::string name) = 0;
};

} // namespace overmap
