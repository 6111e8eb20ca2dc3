#include <ferrin_core/tick_arithmetic.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using ferrin::NO_TICK;
using ferrin::Tick;

class FixedTimeBase : public ferrin::TimeBase
{
public:
    FixedTimeBase(double frequency, double start) : m_frequency(frequency), m_start(start) {}
    double getFrequency() const override { return m_frequency; }
    double getStartTime() const override { return m_start; }

private:
    double m_frequency;
    double m_start;
};

TEST(TicksToSeconds, SplitsLargeCountsSoThatTheLowBitsSurvive)
{
    const Tick two_pow_53 = Tick{1} << 53;
    // A plain conversion rounds 2^53 + 1 to 2^53 before dividing; the two halves do not.
    EXPECT_GT(ferrin::ticksToSeconds(two_pow_53 + 1, 1000.0), ferrin::ticksToSeconds(two_pow_53, 1000.0));
    EXPECT_EQ(ferrin::ticksToSeconds(two_pow_53 + 1, 1000.0), 9007199254740.994);
    EXPECT_EQ(ferrin::ticksToSeconds(two_pow_53, 1000.0), 9007199254740.992);
    EXPECT_EQ(ferrin::ticksToSeconds(1500, 1000.0), 1.5);
}

TEST(TicksToSeconds, NeedsAPositiveFrequency)
{
    EXPECT_TRUE(std::isnan(ferrin::ticksToSeconds(10, 0.0)));
    EXPECT_TRUE(std::isnan(ferrin::ticksToSeconds(10, -5.0)));
    EXPECT_TRUE(std::isnan(ferrin::ticksToSeconds(10, std::numeric_limits<double>::quiet_NaN())));
}

TEST(TickToTime, AddsTheStartTime)
{
    const FixedTimeBase base(100.0, 20.0);
    EXPECT_DOUBLE_EQ(ferrin::tickToTime(250, base), 22.5);
    EXPECT_EQ(ferrin::tickToTime(0, base), 20.0);
}

TEST(TimeToTick, AtTheStartBothGiveTickZero)
{
    const FixedTimeBase base(1000.0, 5.0);
    EXPECT_EQ(ferrin::timeToTickCeil(5.0, base), 0u);
    EXPECT_EQ(ferrin::timeToTickFloor(5.0, base), 0u);
    EXPECT_EQ(ferrin::timeToTickFloor(5.0 - 0.001, base), NO_TICK);
    EXPECT_EQ(ferrin::timeToTickCeil(5.0 - 0.001, base), 0u);
}

TEST(TimeToTick, ExactMultiplesStayOnTheirTick)
{
    // 10 * 0.3 is 3 only after rounding; neither conversion may step off tick 3.
    EXPECT_EQ(ferrin::timeToTickCeil(0.3, 10.0, 0.0), 3u);
    EXPECT_EQ(ferrin::timeToTickFloor(0.3, 10.0, 0.0), 3u);
    const FixedTimeBase base(10.0, 0.0);
    EXPECT_EQ(ferrin::timeToTickCeil(0.3, base), 3u);
    EXPECT_EQ(ferrin::timeToTickFloor(0.3, base), 3u);
}

TEST(TimeToTick, AProductOneStepBelowAnIntegerLandsOnIt)
{
    const double just_below_three = std::nextafter(3.0, 0.0);
    EXPECT_EQ(ferrin::timeToTickFloor(just_below_three, 1.0, 0.0), 3u);
    EXPECT_EQ(ferrin::timeToTickCeil(just_below_three, 1.0, 0.0), 3u);
    // Clearly between two ticks: floor and ceil part.
    EXPECT_EQ(ferrin::timeToTickFloor(0.35, 10.0, 0.0), 3u);
    EXPECT_EQ(ferrin::timeToTickCeil(0.35, 10.0, 0.0), 4u);
}

TEST(TimeToTick, LargeTimesConvertAboveTwoPow63)
{
    const double two_pow_63 = 9223372036854775808.0;
    const Tick exact = (Tick{1} << 63) + (Tick{1} << 62);
    // The step to the neighbouring double is 2048 ticks wide up here.
    EXPECT_EQ(ferrin::timeToTickFloor(two_pow_63 * 1.5, 1.0, 0.0), exact + 2048);
    EXPECT_EQ(ferrin::timeToTickCeil(two_pow_63 * 1.5, 1.0, 0.0), exact - 2048 + 1);
    // Beyond the tick range: the largest real tick, never the "none" value.
    EXPECT_EQ(ferrin::timeToTickFloor(1e30, 1.0, 0.0), NO_TICK - 1);
    EXPECT_EQ(ferrin::timeToTickCeil(1e30, 1.0, 0.0), NO_TICK - 1);
}

TEST(TimeToTick, FloorAtTheEdgesOfTheDoubles)
{
    const double inf = std::numeric_limits<double>::infinity();
    // Zero of either sign and the smallest products stay on tick 0.
    EXPECT_EQ(ferrin::timeToTickFloor(-0.0, 1.0, 0.0), 0u);
    EXPECT_EQ(ferrin::timeToTickFloor(0.0, 1.0, 0.0), 0u);
    EXPECT_EQ(ferrin::timeToTickFloor(std::numeric_limits<double>::denorm_min(), 1.0, 0.0), 0u);
    // One step up from just below a power of two crosses into the next binade onto it.
    EXPECT_EQ(ferrin::timeToTickFloor(std::nextafter(1024.0, 0.0), 1.0, 0.0), 1024u);
    // 2^53 + 2 is the double after 2^53.
    EXPECT_EQ(ferrin::timeToTickFloor(9007199254740992.0, 1.0, 0.0), 9007199254740994u);
    // The largest double and infinity saturate.
    EXPECT_EQ(ferrin::timeToTickFloor(std::numeric_limits<double>::max(), 1.0, 0.0), NO_TICK - 1);
    EXPECT_EQ(ferrin::timeToTickFloor(inf, 1.0, 0.0), NO_TICK - 1);
}

TEST(TimeToTick, UnusableInputGivesNoTick)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(ferrin::timeToTickFloor(nan, 10.0, 0.0), NO_TICK);
    EXPECT_EQ(ferrin::timeToTickCeil(nan, 10.0, 0.0), NO_TICK);
    EXPECT_EQ(ferrin::timeToTickFloor(1.0, 0.0, 0.0), NO_TICK);
    EXPECT_EQ(ferrin::timeToTickCeil(1.0, -1.0, 0.0), NO_TICK);
}

TEST(TimeToTick, FloorRoundTripsEveryTickOfAnAwkwardRate)
{
    // A period of 1/3 ms is never exact in binary; each tick's own time must floor back to it.
    const FixedTimeBase base(3000.0, 0.0);
    for (Tick tick = 0; tick < 100000; tick += 7) {
        const double time = ferrin::tickToTime(tick, base);
        ASSERT_EQ(ferrin::timeToTickFloor(time, base), tick) << "tick " << tick;
    }
}

} // namespace
