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
    virtual ~TimeBase() = default;

    /// Ticks per second.
    virtual double getFrequency() const = 0;
    /// Rate the clock was asked for; a time base whose hardware rounds may differ from
    /// getFrequency(). Only getFrequency() enters the tick arithmetic.
    virtual double getNominalFrequency() const { return getFrequency(); }
    /// Time of tick 0, in seconds on the host's time axis.
    virtual double getStartTime() const = 0;
};

} // namespace ferrin
