#pragma once

#include <cstddef>

namespace uni {

/// Called for every failed assertion with the expression text (empty for a plain
/// failure report), the formatted message (empty when none was given), the source
/// file and the line. A zero result makes the caller stop with a trap; any other
/// result lets it go on.
using AssertHandler = int (*)(const char* expression, const char* message, const char* file, int line);

/// Longest message text handed to the handler; longer texts are cut.
constexpr std::size_t ASSERT_MESSAGE_LIMIT = 256;

/// Installs @p handler (nullptr removes it) and returns the one installed before.
AssertHandler setAssertHandler(AssertHandler handler) noexcept;
AssertHandler assertHandler() noexcept;

/// Reports a failed assertion. Returns the handler's answer, or non-zero when no
/// handler is installed (the failure is then logged on channel "uni" and the
/// program goes on).
int assertFailed(const char* expression, const char* file, int line, const char* format = nullptr,
                 ...) noexcept __attribute__((format(printf, 4, 5)));

namespace detail {
/// Stops with a trap in the caller's frame when the handler said so; always false.
inline bool assertOutcome(int handler_result) noexcept
{
    if (handler_result == 0)
        __builtin_trap();
    return false;
}
} // namespace detail

} // namespace uni

/// Checks @p cond, reports it when false and evaluates to the condition, so that
/// `if (!UNI_ASSERT(p)) return;` both reports and guards. The check is always compiled in.
#define UNI_ASSERT(cond)                                                                                     \
    (static_cast<bool>(cond) ||                                                                              \
     ::uni::detail::assertOutcome(::uni::assertFailed(#cond, __FILE__, __LINE__, nullptr)))

/// As UNI_ASSERT, with a printf-style message: UNI_ASSERT_MSG(i < n, "index %d of %d", i, n).
#define UNI_ASSERT_MSG(cond, ...)                                                                            \
    (static_cast<bool>(cond) ||                                                                              \
     ::uni::detail::assertOutcome(::uni::assertFailed(#cond, __FILE__, __LINE__, __VA_ARGS__)))

/// Reports a failure without an expression text; evaluates to false.
#define UNI_FAIL(...) ::uni::detail::assertOutcome(::uni::assertFailed("", __FILE__, __LINE__, __VA_ARGS__))
