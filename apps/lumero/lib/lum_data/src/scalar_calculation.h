#pragma once

#include <lum_data/scalar_calculation.h>

#include <ferrin_core/scalar_channel.h>
#include <ferrin_core/tick_arithmetic.h>

#include <uni_base/uni_log.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace lum::data::detail {

using lum::data::ScalarCalculation;

/// The ticks [first, last] that a calculation from @p start to @p end (seconds, both
/// included) covers; none for an unknown type (reported), no time base or an empty span.
inline std::optional<std::pair<ferrin::Tick, ferrin::Tick>>
calculationTicks(double start, double end, std::int32_t calculation_type, const ferrin::TimeBase* time_base)
{
    if (!ScalarCalculation::isKnown(calculation_type)) {
        UNI_LOG("lum_data", SEV_ERROR) << "calculateValue: unknown calculation type " << calculation_type;
        return std::nullopt;
    }
    if (!time_base || !(start <= end))
        return std::nullopt;
    const ferrin::Tick first = ferrin::timeToTickCeil(start, *time_base);
    const ferrin::Tick last = ferrin::timeToTickFloor(end, *time_base);
    if (first == ferrin::NO_TICK || last == ferrin::NO_TICK || last < first)
        return std::nullopt;
    return std::make_pair(first, last);
}

/// The sample at or before @p time among those in memory, as getSampleAtTime gives it.
inline daq::SamplePtr sampleAtTime(const ferrin::ScalarChannel& channel, double time)
{
    ferrin::Tick tick = ferrin::NO_TICK;
    const double value = channel.getValueAtTime(time, &tick);
    if (tick == ferrin::NO_TICK)
        return nullptr;
    return daq::makeSample(tick, value);
}

} // namespace lum::data::detail
