#pragma once

#include <cstdint>
#include <memory>

namespace ferrin {
class Channel;
}

namespace im {

/// One stretch of a channel's data that an instrument wants the host to keep loaded.
/// The host's data threads read these; the instrument only fills them in.
struct ChannelDataWindow
{
    std::shared_ptr<ferrin::Channel> channel;
    /// The two 64-bit parameters of the window; this system always leaves them 0.
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    /// How the host reads the window; the map instrument asks with mode 2.
    std::int32_t mode = 0;
    std::int32_t spare = 0;
};

} // namespace im
