#include <uni_base/uni_log.h>

#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/constant.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <iostream>
#include <map>
#include <memory>
#include <mutex>

namespace uni {
namespace {
using Logger = boost::log::sources::severity_channel_logger_mt<UniLogSeverityLevel, std::string>;

BOOST_LOG_ATTRIBUTE_KEYWORD(severity_kw, "Severity", UniLogSeverityLevel)
BOOST_LOG_ATTRIBUTE_KEYWORD(channel_kw, "Channel", std::string)

// One logger per channel, made on first use and kept for the process.
Logger& loggerFor(std::string_view channel)
{
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<Logger>, std::less<>> loggers;
    std::lock_guard<std::mutex> lock(mutex);
    auto it = loggers.find(channel);
    if (it == loggers.end()) {
        auto logger = std::make_unique<Logger>(boost::log::keywords::channel = std::string(channel));
        it = loggers.emplace(std::string(channel), std::move(logger)).first;
    }
    return *it->second;
}
} // namespace

void log(std::string_view channel, int severity, std::string_view message)
{
    Logger& logger = loggerFor(channel);
    BOOST_LOG_SEV(logger, static_cast<UniLogSeverityLevel>(severity)) << message;
}

void initConsoleLogging(int max_severity)
{
    namespace sinks = boost::log::sinks;
    namespace expr = boost::log::expressions;
    using Sink = sinks::synchronous_sink<sinks::text_ostream_backend>;
    auto backend = boost::make_shared<sinks::text_ostream_backend>();
    backend->add_stream(boost::shared_ptr<std::ostream>(&std::clog, boost::null_deleter()));
    backend->auto_flush(true);
    auto sink = boost::make_shared<Sink>(backend);
    sink->set_filter(severity_kw <= static_cast<UniLogSeverityLevel>(max_severity));
    sink->set_formatter(expr::stream << "[" << channel_kw << "] " << severity_kw << ": " << expr::smessage);
    boost::log::core::get()->add_sink(sink);
}

} // namespace uni
