// The time bar: its span, steps by sample, playback and the time as text.

#include <lumero_app/time_bar.h>

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <limits>

namespace {

struct FormatRow
{
    const char* name;
    double seconds;
    const char* text;
};

class TimeText : public ::testing::TestWithParam<FormatRow>
{};

TEST_P(TimeText, ShowsMinutesSecondsAndHundredths)
{
    EXPECT_EQ(lum::QTimeBar::formatTime(GetParam().seconds).toStdString(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    QTimeBar, TimeText,
    ::testing::Values(FormatRow{"zero", 0.0, "0:00.00"}, FormatRow{"example_time", 65.0, "1:05.00"},
                      FormatRow{"hundredths_round", 1.234, "0:01.23"},
                      FormatRow{"rounding_carries_into_the_minute", 59.999, "1:00.00"},
                      FormatRow{"hours", 4325.5, "1:12:05.50"}, FormatRow{"negative", -2.5, "-0:02.50"},
                      FormatRow{"not_a_number", std::numeric_limits<double>::quiet_NaN(), "-"}),
    [](const ::testing::TestParamInfo<FormatRow>& info) { return std::string(info.param.name); });

struct StepRow
{
    const char* name;
    double start;
    double time;
    bool forward;
    double expected;
};

class Steps : public ::testing::TestWithParam<StepRow>
{};

TEST_P(Steps, LandOnMultiplesOfTheSampleInterval)
{
    lum::QTimeBar bar;
    bar.setRange(GetParam().start, GetParam().start + 10.0, 0.1);
    bar.setTime(GetParam().time);
    if (GetParam().forward)
        bar.stepForward();
    else
        bar.stepBackward();
    EXPECT_NEAR(bar.time(), GetParam().expected, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(QTimeBar, Steps,
                         ::testing::Values(StepRow{"forward_from_a_sample", 0.0, 0.3, true, 0.4},
                                           StepRow{"forward_from_between", 0.0, 0.35, true, 0.4},
                                           StepRow{"backward_from_a_sample", 0.0, 0.3, false, 0.2},
                                           StepRow{"backward_from_between", 0.0, 0.35, false, 0.3},
                                           StepRow{"forward_stops_at_the_end", 0.0, 10.0, true, 10.0},
                                           StepRow{"backward_stops_at_the_start", 0.0, 0.0, false, 0.0},
                                           StepRow{"steps_count_from_the_start", 0.05, 0.35, true, 0.45}),
                         [](const ::testing::TestParamInfo<StepRow>& info) {
                             return std::string(info.param.name);
                         });

TEST(QTimeBar, TimeStaysInsideTheSpan)
{
    lum::QTimeBar bar;
    QSignalSpy times(&bar, &lum::QTimeBar::timeChanged);
    QSignalSpy ranges(&bar, &lum::QTimeBar::rangeChanged);
    ASSERT_TRUE(times.isValid());
    ASSERT_TRUE(ranges.isValid());
    bar.setRange(1.0, 5.0, 0.01);
    EXPECT_EQ(bar.time(), 1.0) << "the time moves into a new span";
    bar.setRange(1.0, 5.0, 0.01);
    EXPECT_EQ(ranges.count(), 1) << "an unchanged span is not announced";
    bar.setTime(9.0);
    EXPECT_EQ(bar.time(), 5.0);
    bar.setTime(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(bar.time(), 5.0);
    bar.setTime(5.0);
    EXPECT_EQ(times.count(), 2) << "an unchanged time is not announced";
    bar.setRange(0.0, 2.0, 0.01);
    EXPECT_EQ(bar.time(), 2.0) << "a shorter span pulls the time in";
}

TEST(QTimeBar, UnusableRangesFallBack)
{
    lum::QTimeBar bar;
    bar.setRange(3.0, 1.0, -1.0);
    EXPECT_EQ(bar.start(), 3.0);
    EXPECT_EQ(bar.end(), 3.0);
    EXPECT_EQ(bar.step(), 0.01);
    bar.setRange(3.0, 1.0, 0.5);
    bar.setRange(0.0, 1.0, 0.0);
    EXPECT_EQ(bar.step(), 0.01) << "a step of 0 falls back too";
    bar.setRange(3.0, 1.0, -1.0);
    bar.setPlaying(true);
    EXPECT_FALSE(bar.isPlaying()) << "an empty span has nothing to play";
}

TEST(QTimeBar, PlaybackMovesBySpeedAndStopsAtTheEnd)
{
    lum::QTimeBar bar;
    QSignalSpy playing(&bar, &lum::QTimeBar::playingChanged);
    ASSERT_TRUE(playing.isValid());
    bar.setRange(0.0, 10.0, 0.01);
    bar.advance(1.0);
    EXPECT_EQ(bar.time(), 0.0) << "a paused bar does not move";
    bar.setSpeedIndex(4);
    EXPECT_EQ(bar.speed(), 4.0);
    bar.setPlaying(true);
    bar.advance(0.5);
    EXPECT_DOUBLE_EQ(bar.time(), 2.0);
    bar.advance(5.0);
    EXPECT_EQ(bar.time(), 10.0);
    EXPECT_FALSE(bar.isPlaying());
    bar.togglePlaying();
    EXPECT_TRUE(bar.isPlaying());
    EXPECT_EQ(bar.time(), 0.0) << "playing at the end starts over";
    EXPECT_EQ(playing.count(), 3);
}

TEST(QTimeBar, TheTimerPlaysInWallTime)
{
    lum::QTimeBar bar;
    bar.setRange(0.0, 100.0, 0.01);
    bar.setSpeedIndex(6);
    QElapsedTimer clock;
    clock.start();
    bar.setPlaying(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar.time() > 0.5; }, 5000));
    // 16 times the wall time, give or take a tick.
    EXPECT_LE(bar.time(), 16.0 * (static_cast<double>(clock.elapsed()) / 1000.0) + 0.5);
    bar.setPlaying(false);
    const double stopped = bar.time();
    QTest::qWait(50);
    EXPECT_EQ(bar.time(), stopped);
}

TEST(QTimeBar, SpeedsRunFromAQuarterToSixteen)
{
    lum::QTimeBar bar;
    EXPECT_EQ(bar.speed(), 1.0);
    EXPECT_EQ(bar.speedTexts(), (QStringList{"0.25x", "0.5x", "1x", "2x", "4x", "8x", "16x"}));
    bar.setSpeedIndex(-3);
    EXPECT_EQ(bar.speed(), 0.25);
    bar.setSpeedIndex(99);
    EXPECT_EQ(bar.speed(), 16.0);
}

} // namespace
