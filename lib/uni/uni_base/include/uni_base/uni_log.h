#pragma once

#include <sstream>
#include <string>
#include <string_view>

/// Severities by number; lower is more severe. Callers name the numbers the design
/// gives (1 bad values, 3 and 5 notes, 6 setup format complaints).
enum UniLogSeverityLevel : int
{
    SEV_FATAL = 0,
    SEV_ERROR = 1,
    SEV_WARNING = 2,
    SEV_NOTICE = 3,
    SEV_INFO = 4,
    SEV_NOTE = 5,
    SEV_DETAIL = 6,
    SEV_DEBUG = 7
};

namespace uni {

/// Writes one record to the named logger channel ("overmap", "math_geo", "QCHANNEL", ...).
void log(std::string_view channel, int severity, std::string_view message);

/// Sends records up to @p max_severity (inclusive) to standard error, one line each.
/// Without it, records go to Boost.Log's default sink.
void initConsoleLogging(int max_severity = SEV_DETAIL);

namespace detail {
/// Collects a streamed message and logs it when the statement ends.
class LogLine
{
public:
    LogLine(std::string_view channel, int severity) : m_channel(channel), m_severity(severity) {}
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;
    ~LogLine() { log(m_channel, m_severity, m_stream.str()); }
    std::ostream& stream() { return m_stream; }

private:
    std::string_view m_channel;
    int m_severity;
    std::ostringstream m_stream;
};
} // namespace detail

} // namespace uni

/// Streams one record: UNI_LOG("overmap", 1) << "bad latitude " << value;
#define UNI_LOG(channel, severity) ::uni::detail::LogLine((channel), (severity)).stream()
