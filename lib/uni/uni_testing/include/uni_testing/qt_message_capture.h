#pragma once

#include <gtest/gtest.h>

#include <QtGlobal>

#include <string>
#include <vector>

namespace uni_testing {

/// One Qt message (qDebug, qWarning, ...) as a test sees it.
struct QtMessageRecord
{
    QtMsgType type = QtDebugMsg;
    std::string category;
    std::string message;
};

/// Records every Qt message made while it lives (from any thread). Outside any
/// capture, the Qt test main turns warnings and criticals into test failures;
/// inside one they are recorded for the test to assert on. Messages of the model
/// tester fail the test even inside a capture.
class QtMessageCapture
{
public:
    QtMessageCapture();
    ~QtMessageCapture();
    QtMessageCapture(const QtMessageCapture&) = delete;
    QtMessageCapture& operator=(const QtMessageCapture&) = delete;

    std::vector<QtMessageRecord> records() const;
    void clear();

    /// Records of @p type whose message contains @p text.
    std::size_t count(QtMsgType type, const std::string& text) const;

    /// Success when a record of @p type containing @p text was made; the failure lists what was.
    ::testing::AssertionResult contains(QtMsgType type, const std::string& text) const;

private:
    friend struct QtMessageRouter;
    QtMessageCapture* m_outer;
    std::vector<QtMessageRecord> m_records;
};

/// Installs the Qt message handler of the test main: warnings, criticals and fatals
/// outside a capture fail the current test. The Qt test main calls it; a test with a
/// main of its own may too.
void installQtMessageHandler();

} // namespace uni_testing
