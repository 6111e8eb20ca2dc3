#include <ferrin_core/tick_arithmetic.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace ferrin {

namespace {

constexpr Tick TWO_POW_52 = Tick{1} << 52;
constexpr Tick TWO_POW_53 = Tick{1} << 53;
constexpr Tick TWO_POW_63 = Tick{1} << 63;
constexpr double TWO_POW_63_D = 9223372036854775808.0;
constexpr double TWO_POW_64_D = 18446744073709551616.0;

/// Truncation of a non-negative double to a tick. Doubles at or above 2^63 go through
/// the signed-safe half so that the conversion stays defined; values past the tick
/// range saturate at the largest real tick.
Tick truncateToTick(double value) noexcept
{
    if (!(value > 0.0))
        return 0;
    if (value >= TWO_POW_64_D)
        return NO_TICK - 1;
    if (value >= TWO_POW_63_D)
        return static_cast<Tick>(value - TWO_POW_63_D) + TWO_POW_63;
    return static_cast<Tick>(value);
}

/// std::nextafter(value, DBL_MAX) without the library call for the usual positive
/// finite value (its bits plus one); the rest goes to the library.
double nextUp(double value) noexcept
{
    if (!(value > 0.0) || !(value < DBL_MAX))
        return std::nextafter(value, DBL_MAX);
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    ++bits;
    std::memcpy(&value, &bits, sizeof bits);
    return value;
}

} // namespace

double ticksToSeconds(Tick ticks, double frequency) noexcept
{
    if (!(frequency > 0.0))
        return std::numeric_limits<double>::quiet_NaN();
    if (ticks <= TWO_POW_53)
        return static_cast<double>(ticks) / frequency;
    // A double holds 53 bits: divide the high and the low part separately.
    return std::ldexp(static_cast<double>(ticks >> 52) / frequency, 52) +
           static_cast<double>(ticks & (TWO_POW_52 - 1)) / frequency;
}

double ticksToSeconds(Tick ticks, const TimeBase& time_base) noexcept
{
    return ticksToSeconds(ticks, time_base.getFrequency());
}

double tickToTime(Tick tick, const TimeBase& time_base) noexcept
{
    return ticksToSeconds(tick, time_base.getFrequency()) + time_base.getStartTime();
}

Tick timeToTickCeil(double time, double frequency, double start_time) noexcept
{
    const double t = time - start_time;
    if (std::isnan(t) || !(frequency > 0.0))
        return NO_TICK;
    if (t <= 0.0)
        return 0;
    // One step down first: an exact multiple of the period stays on its tick.
    const double scaled = std::nextafter(frequency * t, -DBL_MAX);
    const Tick tick = truncateToTick(scaled);
    return tick >= NO_TICK - 1 ? NO_TICK - 1 : tick + 1;
}

Tick timeToTickFloor(double time, double frequency, double start_time) noexcept
{
    const double t = time - start_time;
    if (std::isnan(t) || !(frequency > 0.0) || t < 0.0)
        return NO_TICK;
    // One step up first: a product a hair below an integer still lands on it.
    return truncateToTick(nextUp(frequency * t));
}

Tick timeToTickCeil(double time, const TimeBase& time_base) noexcept
{
    return timeToTickCeil(time, time_base.getFrequency(), time_base.getStartTime());
}

Tick timeToTickFloor(double time, const TimeBase& time_base) noexcept
{
    return timeToTickFloor(time, time_base.getFrequency(), time_base.getStartTime());
}

} // namespace ferrin
