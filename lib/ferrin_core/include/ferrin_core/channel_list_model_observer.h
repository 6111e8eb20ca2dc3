#pragma once

#include <cstdint>
#include <memory>

namespace ferrin {

class Channel;

/// What happened to the host's list of channels.
enum NotificationType : std::uint32_t
{
    NOTIFY_CHANNEL_ADDED = 0,
    NOTIFY_CHANNEL_REMOVED = 1,
    /// A channel was replaced under the same id.
    NOTIFY_CHANNEL_CHANGED = 2,
    /// All channels went away; the channel argument is null.
    NOTIFY_CLEAR = 3
};

/// Told about changes of the host's channel list; called from any thread.
class ChannelListModelObserver
{
public:
    virtual ~ChannelListModelObserver() = default;
    virtual void notify(NotificationType type, std::shared_ptr<Channel> channel) = 0;
};

} // namespace ferrin
