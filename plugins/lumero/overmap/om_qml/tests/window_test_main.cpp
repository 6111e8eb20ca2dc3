// The window tests need a QGuiApplication on a real platform (xcb under xvfb-run).

#include <uni_base/uni_assert.h>
#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication app(argc, argv);
    uni::setAssertHandler(&uni_testing::failingAssertHandler);
    return RUN_ALL_TESTS();
}
