#include <uni_base/uni_log.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

namespace {

TEST(Log, RecordsCarryChannelSeverityAndMessage)
{
    uni_testing::LogCapture capture;
    uni::log("math_geo", 5, "Multiple LineStrings found; joined");
    UNI_LOG("overmap", SEV_ERROR) << "invalid latitude " << 91.5;

    const auto records = capture.records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].channel, "math_geo");
    EXPECT_EQ(records[0].severity, 5);
    EXPECT_EQ(records[0].message, "Multiple LineStrings found; joined");
    EXPECT_EQ(records[1].channel, "overmap");
    EXPECT_EQ(records[1].severity, 1);
    EXPECT_EQ(records[1].message, "invalid latitude 91.5");

    EXPECT_TRUE(capture.contains("overmap", 1, "latitude"));
    EXPECT_FALSE(capture.contains("overmap", 6, "latitude")) << "severity must match";
    EXPECT_FALSE(capture.contains("QCHANNEL", 1, "latitude")) << "channel must match";
    EXPECT_TRUE(capture.none("QCHANNEL"));
    EXPECT_FALSE(capture.none("overmap"));
}

TEST(Log, CaptureSeesOnlyItsOwnLifetime)
{
    uni::log("overmap", 3, "before");
    std::size_t inner_count = 0;
    {
        uni_testing::LogCapture capture;
        uni::log("overmap", 3, "during");
        inner_count = capture.records().size();
    }
    uni_testing::LogCapture later;
    EXPECT_EQ(inner_count, 1u);
    EXPECT_TRUE(later.records().empty());
}

} // namespace
