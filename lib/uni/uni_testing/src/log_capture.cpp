#include <uni_testing/log_capture.h>

#include <uni_base/uni_log.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

#include <sstream>

namespace uni_testing {

struct LogCapture::State
{
    mutable std::mutex mutex;
    std::vector<LogRecord> records;
};

namespace {
class CaptureBackend : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding>
{
public:
    explicit CaptureBackend(std::shared_ptr<LogCapture::State> state) : m_state(std::move(state)) {}

    void consume(const boost::log::record_view& rec)
    {
        LogRecord out;
        if (auto channel = boost::log::extract<std::string>("Channel", rec))
            out.channel = *channel;
        if (auto severity = boost::log::extract<UniLogSeverityLevel>("Severity", rec))
            out.severity = static_cast<int>(*severity);
        if (auto message = boost::log::extract<std::string>("Message", rec))
            out.message = *message;
        std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->records.push_back(std::move(out));
    }

private:
    std::shared_ptr<LogCapture::State> m_state;
};

using CaptureSink = boost::log::sinks::synchronous_sink<CaptureBackend>;
} // namespace

LogCapture::LogCapture() : m_state(std::make_shared<State>())
{
    auto sink = boost::make_shared<CaptureSink>(boost::make_shared<CaptureBackend>(m_state));
    boost::log::core::get()->add_sink(sink);
    // Keep the sink alive in a std::shared_ptr that removes it from the core when dropped.
    m_sink = std::shared_ptr<void>(nullptr, [sink](void*) mutable {
        boost::log::core::get()->remove_sink(sink);
        sink.reset();
    });
}

LogCapture::~LogCapture() = default;

std::vector<LogRecord> LogCapture::records() const
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->records;
}

void LogCapture::clear()
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->records.clear();
}

std::size_t LogCapture::count(const std::string& channel, int severity, const std::string& text) const
{
    std::size_t n = 0;
    for (const LogRecord& r : records()) {
        if (r.channel == channel && r.severity == severity && r.message.find(text) != std::string::npos)
            ++n;
    }
    return n;
}

::testing::AssertionResult LogCapture::contains(const std::string& channel, int severity,
                                                const std::string& text) const
{
    if (count(channel, severity, text) > 0)
        return ::testing::AssertionSuccess();
    std::ostringstream out;
    out << "no record [" << channel << "] severity " << severity << " containing \"" << text << "\"; logged:";
    for (const LogRecord& r : records())
        out << "\n  [" << r.channel << "] " << r.severity << ": " << r.message;
    return ::testing::AssertionFailure() << out.str();
}

::testing::AssertionResult LogCapture::none(const std::string& channel) const
{
    std::ostringstream out;
    bool any = false;
    for (const LogRecord& r : records()) {
        if (r.channel == channel) {
            any = true;
            out << "\n  [" << r.channel << "] " << r.severity << ": " << r.message;
        }
    }
    if (!any)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "unexpected records on [" << channel << "]:" << out.str();
}

} // namespace uni_testing
