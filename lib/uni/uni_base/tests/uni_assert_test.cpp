#include <uni_base/uni_assert.h>
#include <uni_testing/assert_capture.h>
#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <string>

namespace {

struct Seen
{
    std::string expression;
    std::string message;
    std::string file;
    int line = 0;
    int calls = 0;
};
Seen g_seen;
int g_answer = 1;

int recordingHandler(const char* expression, const char* message, const char* file, int line)
{
    g_seen = {expression, message, file, line, g_seen.calls + 1};
    return g_answer;
}

// Installs recordingHandler for one test and puts back whatever was there.
class AssertRoutine : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_seen = {};
        g_answer = 1;
        m_previous = uni::setAssertHandler(&recordingHandler);
    }
    void TearDown() override { uni::setAssertHandler(m_previous); }

    uni::AssertHandler m_previous = nullptr;
};

TEST_F(AssertRoutine, HandlerGetsExpressionMessageFileAndLine)
{
    const int index = 7;
    const int line = __LINE__ + 1;
    const bool ok = UNI_ASSERT_MSG(index < 3, "index %d of %s", index, "three");
    EXPECT_FALSE(ok);
    EXPECT_EQ(g_seen.calls, 1);
    EXPECT_EQ(g_seen.expression, "index < 3");
    EXPECT_EQ(g_seen.message, "index 7 of three");
    EXPECT_EQ(g_seen.file, __FILE__);
    EXPECT_EQ(g_seen.line, line);
}

TEST_F(AssertRoutine, TrueConditionCallsNothingAndEvaluatesTrue)
{
    int evaluated = 0;
    EXPECT_TRUE(UNI_ASSERT(++evaluated == 1));
    EXPECT_EQ(evaluated, 1) << "the condition is evaluated exactly once";
    EXPECT_EQ(g_seen.calls, 0);
}

TEST_F(AssertRoutine, PlainAssertHasEmptyMessageAndFailHasEmptyExpression)
{
    EXPECT_FALSE(UNI_ASSERT(1 + 1 == 3));
    EXPECT_EQ(g_seen.expression, "1 + 1 == 3");
    EXPECT_EQ(g_seen.message, "");
    EXPECT_FALSE(UNI_FAIL("CHECKED_CONNECT from %s to %s failed.", "null", "QObject"));
    EXPECT_EQ(g_seen.expression, "");
    EXPECT_EQ(g_seen.message, "CHECKED_CONNECT from null to QObject failed.");
}

TEST_F(AssertRoutine, MessageIsCutAt256Characters)
{
    const std::string longText(1000, 'x');
    UNI_ASSERT_MSG(false, "%s", longText.c_str());
    EXPECT_EQ(g_seen.message.size(), uni::ASSERT_MESSAGE_LIMIT);
    EXPECT_EQ(g_seen.message, longText.substr(0, 256));

    const std::string exact(256, 'y');
    UNI_ASSERT_MSG(false, "%s", exact.c_str());
    EXPECT_EQ(g_seen.message, exact);
}

TEST_F(AssertRoutine, ReturnsTheHandlersAnswer)
{
    g_answer = 42;
    EXPECT_EQ(uni::assertFailed("e", "f.cpp", 3, "%d", 1), 42);
}

TEST_F(AssertRoutine, GuardPatternLetsCallerBailOut)
{
    auto guarded = [](const int* p) {
        if (!UNI_ASSERT(p != nullptr))
            return -1;
        return *p;
    };
    const int v = 5;
    EXPECT_EQ(guarded(&v), 5);
    EXPECT_EQ(guarded(nullptr), -1);
    EXPECT_EQ(g_seen.calls, 1);
}

TEST(AssertRoutineWithoutHandler, ReturnsNonZeroLogsAndGoesOn)
{
    const uni::AssertHandler previous = uni::setAssertHandler(nullptr);
    uni_testing::LogCapture log;
    const int result = uni::assertFailed("a == b", "file.cpp", 12, "values %d and %d", 1, 2);
    bool reached = false;
    if (!UNI_ASSERT(false))
        reached = true;
    uni::setAssertHandler(previous);

    EXPECT_NE(result, 0);
    EXPECT_TRUE(reached) << "execution goes on after a failed assertion without a handler";
    EXPECT_TRUE(log.contains("uni", 1, "a == b (values 1 and 2) at file.cpp:12"));
}

TEST(AssertRoutineDeathTest, ZeroFromHandlerTraps)
{
    EXPECT_DEATH(
        {
            uni::setAssertHandler([](const char*, const char*, const char*, int) { return 0; });
            UNI_ASSERT(false);
        },
        "");
}

TEST(AssertCapture, RecordsAndRestoresPreviousHandler)
{
    const uni::AssertHandler before = uni::assertHandler();
    {
        uni_testing::AssertCapture outer;
        {
            uni_testing::AssertCapture inner;
            UNI_ASSERT_MSG(false, "inner %d", 1);
            EXPECT_TRUE(inner.fired("false", "inner 1"));
            EXPECT_FALSE(inner.fired("true"));
        }
        EXPECT_EQ(outer.size(), 0u) << "an inner capture keeps its records to itself";
        UNI_ASSERT(2 < 1);
        EXPECT_TRUE(outer.fired("2 < 1"));
    }
    EXPECT_EQ(uni::assertHandler(), before);
}

} // namespace
