#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace uni {
namespace {
std::atomic<AssertHandler> g_handler{nullptr};
} // namespace

AssertHandler setAssertHandler(AssertHandler handler) noexcept
{
    return g_handler.exchange(handler);
}

AssertHandler assertHandler() noexcept
{
    return g_handler.load();
}

int assertFailed(const char* expression, const char* file, int line, const char* format, ...) noexcept
{
    char message[ASSERT_MESSAGE_LIMIT + 1] = {};
    if (format != nullptr) {
        va_list args;
        va_start(args, format);
        std::vsnprintf(message, sizeof message, format, args);
        va_end(args);
    }
    const char* expr = expression != nullptr ? expression : "";
    const char* where = file != nullptr ? file : "";

    if (AssertHandler handler = g_handler.load())
        return handler(expr, message, where, line);

    // Nobody decides: keep a trace of the broken contract and let the caller go on.
    try {
        std::string text = std::string("assertion failed: ") + expr;
        if (message[0] != '\0')
            text += std::string(" (") + message + ")";
        text += std::string(" at ") + where + ":" + std::to_string(line);
        log("uni", SEV_ERROR, text);
    } catch (...) {
    }
    return 1;
}

} // namespace uni
