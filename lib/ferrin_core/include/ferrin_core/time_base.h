#pragma once

#include <cstdint>
#include <limits>

namespace ferrin {

/// A tick: a sample count on a channel's time base.
using Tick = std::uint64_t;

/// All ones: no tick (before the first sample, or no answer).
constexpr Tick NO_TICK = std::numeric_limits<Tick>::max();

/// The clock of a channel, given by the host.
class TimeBase
{
public:
    /// Ticks per second.
    virtual double getFrequency() const = 0;
    // The destructor sits between the two reads, where the host's interface has it.
    virtual ~TimeBase() = default;
    /// Time of tick 0, in seconds on the host's time axis.
    virtual double getStartTime() const = 0;
};

} // namespace ferrin
