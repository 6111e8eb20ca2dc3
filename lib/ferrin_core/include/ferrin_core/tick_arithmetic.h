#pragma once

#include <ferrin_core/time_base.h>

namespace ferrin {

// Conversions between ticks and seconds. They run on the display path for every
// value read, so they allocate nothing and never throw.

/// Seconds covered by @p ticks at @p frequency ticks per second; NaN unless the
/// frequency is above 0. Counts above 2^53 are split so that their low bits survive.
double ticksToSeconds(Tick ticks, double frequency) noexcept;
double ticksToSeconds(Tick ticks, const TimeBase& time_base) noexcept;

/// Time in seconds of @p tick on @p time_base.
double tickToTime(Tick tick, const TimeBase& time_base) noexcept;

/// First tick at or after @p time; 0 at or before the start. An exact multiple of the
/// tick period stays on its tick. NO_TICK when time or frequency are unusable (NaN,
/// frequency not above 0); saturates below NO_TICK for times beyond the tick range.
Tick timeToTickCeil(double time, const TimeBase& time_base) noexcept;

/// Last tick at or before @p time; NO_TICK before the start (and for a NaN time or a
/// frequency not above 0). Saturates below NO_TICK for times beyond the tick range.
Tick timeToTickFloor(double time, const TimeBase& time_base) noexcept;

/// The same conversions with frequency and start given directly.
Tick timeToTickCeil(double time, double frequency, double start_time) noexcept;
Tick timeToTickFloor(double time, double frequency, double start_time) noexcept;

} // namespace ferrin
