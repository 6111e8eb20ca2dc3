#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <uni_base/uni_assert.h>

namespace uni_testing {

/// One failed assertion as the handler saw it.
struct AssertRecord
{
    std::string expression;
    std::string message;
    std::string file;
    int line = 0;
};

/// Installs an assertion handler for its lifetime that records every failed
/// assertion and lets the code go on. Outside any capture, the test main's
/// handler turns an assertion into a test failure.
class AssertCapture
{
public:
    AssertCapture();
    ~AssertCapture();
    AssertCapture(const AssertCapture&) = delete;
    AssertCapture& operator=(const AssertCapture&) = delete;

    std::vector<AssertRecord> records() const;
    std::size_t size() const;
    void clear();

    /// Success when an assertion with exactly this expression text fired (and, if
    /// @p message_part is given, its message contains it).
    ::testing::AssertionResult fired(const std::string& expression,
                                     const std::string& message_part = {}) const;

private:
    static int handle(const char* expression, const char* message, const char* file, int line);

    uni::AssertHandler m_previous;
    AssertCapture* m_outer;
    std::vector<AssertRecord> m_records;
};

/// The handler the test main installs: every assertion outside a capture fails the test.
int failingAssertHandler(const char* expression, const char* message, const char* file, int line);

} // namespace uni_testing
