#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // An assertion that a test did not ask for is a failure, not a silent note.
    uni::setAssertHandler(&uni_testing::failingAssertHandler);
    return RUN_ALL_TESTS();
}
