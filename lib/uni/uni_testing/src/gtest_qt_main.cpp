#include <uni_testing/assert_capture.h>
#include <uni_testing/qt_message_capture.h>

#include <gtest/gtest.h>

#include <QCoreApplication>

#if defined(__SANITIZE_THREAD__)
#define UNI_TESTING_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define UNI_TESTING_TSAN 1
#endif
#endif

#ifdef UNI_TESTING_TSAN
// Qt's own libraries are not instrumented: their inner synchronisation is invisible
// to TSan and would be reported as races in our code. Weak, so a test may replace it.
extern "C" __attribute__((weak)) const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}
#endif

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication app(argc, argv);
    // An assertion or a Qt warning that a test did not ask for is a failure.
    uni::setAssertHandler(&uni_testing::failingAssertHandler);
    uni_testing::installQtMessageHandler();
    return RUN_ALL_TESTS();
}
