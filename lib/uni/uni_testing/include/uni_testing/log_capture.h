#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace uni_testing {

/// One log record as a test sees it.
struct LogRecord
{
    std::string channel;
    int severity = -1;
    std::string message;
};

/// Records every log record made while it lives (from any thread), so that a test
/// can assert that a named message went out on a named channel at a named severity.
/// While a capture lives, records do not reach the default console output.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogRecord> records() const;
    void clear();

    /// Records whose channel and severity match and whose message contains @p text.
    std::size_t count(const std::string& channel, int severity, const std::string& text) const;

    /// Success when such a record was made; the failure lists what was logged.
    ::testing::AssertionResult contains(const std::string& channel, int severity,
                                        const std::string& text) const;
    /// Success when no record on @p channel was made at all.
    ::testing::AssertionResult none(const std::string& channel) const;

    struct State;

private:
    std::shared_ptr<State> m_state;
    std::shared_ptr<void> m_sink;
};

} // namespace uni_testing
