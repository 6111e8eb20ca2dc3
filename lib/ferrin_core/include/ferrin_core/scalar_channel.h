#pragma once

#include <ferrin_core/channel.h>
#include <ferrin_core/sample_iterator.h>

#include <daq/seek_mode.h>

#include <cstdint>
#include <memory>

namespace ferrin {

/// Values a channel can compute over a time span. The numbers match the display
/// layer's calculation types.
enum CalculationType : std::int32_t
{
    CALC_AVERAGE = 0,
    CALC_RMS = 1,
    /// RMS of the values minus their average.
    CALC_ACRMS = 2,
    CALC_MIN = 3,
    CALC_MAX = 4,
    CALC_PEAK2PEAK = 5,
    CALC_AVERAGE_NO_USER_SCALING = 6,
    CALC_RMS_NO_USER_SCALING = 7,
    CALC_ACRMS_NO_USER_SCALING = 8
};

/// A channel of one double per sample. Every value operation answers NaN for none;
/// @p tick_out may be null and receives the tick of the sample read, NO_TICK for none.
class ScalarChannel : public Channel
{
public:
    using Channel::Channel;

    /// The value at or before @p time among the samples in memory; loads nothing.
    virtual double getValueAtTime(double time, Tick* tick_out) const = 0;
    /// As getValueAtTime, loading the sample when it is recorded but not in memory.
    virtual double getValueAtTimeEnsureLoaded(double time, Tick* tick_out) const = 0;
    /// A CalculationType over the samples from @p start to @p end (seconds, both included).
    virtual double calculateValue(double start, double end, std::int32_t calculation_type) const = 0;
    virtual double minValue() const = 0;
    virtual double maxValue() const = 0;
    /// The reduced stream of a kind and level; by default the data source's.
    virtual std::shared_ptr<ReducedStream> getReducedStream(std::uint32_t kind, std::uint32_t level) const;
    /// A cursor on the samples in memory, positioned by @p mode relative to @p tick;
    /// never null, but not valid when nothing was found.
    virtual std::unique_ptr<IfSampleIterator> getSampleIterator(Tick tick, daq::SeekMode mode) const = 0;
};

} // namespace ferrin
