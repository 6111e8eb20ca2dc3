#include <lum_utils/high_precision_date_time.h>
#include <lum_utils/local_time_converter.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QLocale>
#include <QSignalSpy>

#include <cmath>

using lum_utils::HighPrecisionDateTime;
using lum_utils::LocalTimeConverter;

namespace {

const QDateTime TEN_O_CLOCK(QDate(2026, 7, 1), QTime(10, 0), Qt::UTC);

} // namespace

TEST(HighPrecisionDateTime, AddingSecondsCarriesAndBorrowsAcrossMilliseconds)
{
    const HighPrecisionDateTime start(TEN_O_CLOCK);

    const HighPrecisionDateTime back = start.addSeconds(-0.25);
    EXPECT_EQ(back.dateTime(), TEN_O_CLOCK.addMSecs(-250));
    EXPECT_EQ(back.nanoseconds(), 0u);

    // 2^-20 s is exact in binary: 953.67... ns.
    const HighPrecisionDateTime tiny = start.addSeconds(std::ldexp(1.0, -20));
    EXPECT_EQ(tiny.dateTime(), TEN_O_CLOCK);
    EXPECT_EQ(tiny.nanoseconds(), 953u);

    const HighPrecisionDateTime carried = HighPrecisionDateTime(TEN_O_CLOCK, 999999).addSeconds(2e-6);
    EXPECT_EQ(carried.dateTime(), TEN_O_CLOCK.addMSecs(1));
    EXPECT_NEAR(carried.nanoseconds(), 1999.0, 1.0);

    for (double seconds : {0.001, 0.003, -0.001, 1.999, -2.001}) {
        const HighPrecisionDateTime sum = start.addSeconds(seconds);
        EXPECT_LT(sum.nanoseconds(), 1000000u) << seconds;
        const double back_in_seconds = TEN_O_CLOCK.msecsTo(sum.dateTime()) / 1e3 + sum.nanoseconds() / 1e9;
        EXPECT_NEAR(back_in_seconds, seconds, 2e-9) << seconds;
    }
    EXPECT_FALSE(start.addSeconds(std::nan("")).isValid());
    EXPECT_FALSE(start.addSeconds(1e300).isValid());
}

TEST(HighPrecisionDateTime, FractionIsTruncatedOrRoundedIntoTheNextSecond)
{
    const HighPrecisionDateTime t(TEN_O_CLOCK.addMSecs(999), 600000); // 10:00:00.9996
    EXPECT_EQ(t.toString(3, ".", false), "10:00:00.999");
    EXPECT_EQ(t.toString(3, ".", true), "10:00:01.000");
    EXPECT_EQ(t.toString(0, ".", true), "10:00:00");
    EXPECT_EQ(t.toString(12, ",", false), "10:00:00,999600000");
    EXPECT_EQ(t.toString(10, ".", false), "10:00:00.999600000");
    EXPECT_EQ(HighPrecisionDateTime(TEN_O_CLOCK, 7).toString(9, ".", false), "10:00:00.000000007");
}

TEST(LocalTimeConverter, GivesWallClockTextOfTheRecording)
{
    LocalTimeConverter converter;
    converter.setAcquisitionStartTime(TEN_O_CLOCK);
    EXPECT_EQ(converter.getAbsoluteTime(0.5, 3), "10:00:00.500");
    EXPECT_EQ(converter.getAbsoluteTime(0.5, 0), "10:00:00");
    EXPECT_EQ(converter.getAbsoluteTime(0.5, 12), converter.getAbsoluteTime(0.5, 9));
    EXPECT_EQ(converter.getAbsoluteTimeFormatted(59.999, LocalTimeConverter::HH_MM_SS, 2, true),
              "10:01:00.00");
    EXPECT_EQ(converter.getAbsoluteTimeFormatted(59.999, LocalTimeConverter::HH_MM_SS, 2, false),
              "10:00:59.99");
    EXPECT_EQ(converter.getAbsoluteTimeFormatted(1.0, LocalTimeConverter::DDD_HH_MM_SS), "182_10:00:01");
    EXPECT_EQ(converter.getAbsoluteTimeFormatted(50399.9999, LocalTimeConverter::DDD_HH_MM_SS, 1, true),
              "183_00:00:00.0")
        << "rounding past midnight moves the day too";

    uni_testing::AssertCapture asserts;
    EXPECT_EQ(converter.getAbsoluteTimeFormatted(0.5, static_cast<LocalTimeConverter::TIME_FORMAT>(7), 1),
              "10:00:00.5");
    EXPECT_TRUE(asserts.fired("", "No such option for format"));

    converter.setRecordingOffset(3600.25);
    EXPECT_EQ(converter.getAbsoluteTime(0.5, 2), "11:00:00.75");

    converter.setTimeZoneID("Europe/Berlin");
    EXPECT_EQ(converter.getAbsoluteTime(0.0, 1), "13:00:00.2");
    EXPECT_EQ(converter.getUTCOffset(), 7200);
    EXPECT_EQ(converter.getDaylightTimeOffset(), 3600);
    EXPECT_EQ(converter.getUTCOffset(QDateTime(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC)), 3600);
    EXPECT_EQ(converter.getAbsoluteDateLocaleLongFormat(40000.0),
              QLocale().toString(QDate(2026, 7, 2), QLocale::ShortFormat));
}

TEST(LocalTimeConverter, SettersSignalOnlyRealChanges)
{
    LocalTimeConverter converter;
    QSignalSpy start_changed(&converter, &LocalTimeConverter::acquisitionStartTimeChanged);
    QSignalSpy offset_changed(&converter, &LocalTimeConverter::recordingOffsetChanged);
    QSignalSpy zone_changed(&converter, &LocalTimeConverter::timeZoneIDChanged);
    ASSERT_TRUE(start_changed.isValid());
    ASSERT_TRUE(offset_changed.isValid());
    ASSERT_TRUE(zone_changed.isValid());

    converter.setAcquisitionStartTime(TEN_O_CLOCK);
    converter.setAcquisitionStartTime(TEN_O_CLOCK.toOffsetFromUtc(3600)); // the same instant
    EXPECT_EQ(start_changed.count(), 1);
    EXPECT_EQ(converter.acquisitionStartTime().timeSpec(), Qt::UTC);

    converter.setRecordingOffset(1e-13);
    EXPECT_EQ(offset_changed.count(), 0);
    converter.setRecordingOffset(2.0);
    converter.setRecordingOffset(2.0);
    EXPECT_EQ(offset_changed.count(), 1);
    EXPECT_EQ(converter.getAbsoluteTime(0.0, 0), "10:00:02");

    converter.setTimeZoneID("UTC");
    EXPECT_EQ(zone_changed.count(), 0) << "the zone starts as UTC";
    converter.setTimeZoneID("America/New_York");
    converter.setTimeZoneID("America/New_York");
    EXPECT_EQ(zone_changed.count(), 1);
    EXPECT_EQ(converter.property("timeZoneID").toString(), "America/New_York");
}
