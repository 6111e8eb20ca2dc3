#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>

namespace lum_utils {

/// Growing, always null-terminated text of one export. The first 50 bytes live in
/// the object; beyond that the capacity doubles on the heap. When memory runs out
/// the buffer stays as it was and the text is cut short; nothing is thrown, so an
/// oversized copy degrades instead of failing.
class SpreadsheetTextBuffer
{
public:
    static constexpr std::size_t INLINE_CAPACITY = 50;

    SpreadsheetTextBuffer() noexcept;
    SpreadsheetTextBuffer(const SpreadsheetTextBuffer&) = delete;
    SpreadsheetTextBuffer& operator=(const SpreadsheetTextBuffer&) = delete;

    void append(const char* text, std::size_t length) noexcept;
    void append(const std::string& text) noexcept { append(text.data(), text.size()); }
    /// A string literal, its length known at compile time.
    template <std::size_t N>
    void appendLiteral(const char (&text)[N]) noexcept
    {
        append(text, N - 1);
    }
    void appendSpaces(std::size_t count) noexcept;
    /// printf-style output in the C locale, whatever the process locale is, so that
    /// numbers always carry a decimal point.
    void appendFormat(const char* format, ...) noexcept __attribute__((format(printf, 2, 3)));

    const char* data() const noexcept { return m_data; }
    /// Length of the text, without the terminating null.
    std::size_t size() const noexcept { return m_size; }
    /// Bytes held, the terminating null included.
    std::size_t capacity() const noexcept { return m_capacity; }
    /// True once some text could not be stored.
    bool truncated() const noexcept { return m_truncated; }

    /// Treats any growth beyond @p bytes as a failed allocation (a ceiling for
    /// clipboard exports; tests use it to simulate running out of memory).
    void setCapacityLimit(std::size_t bytes) noexcept { m_capacity_limit = bytes; }

private:
    bool reserve(std::size_t needed) noexcept;

    struct FreeDeleter
    {
        void operator()(char* block) const noexcept;
    };

    char m_inline[INLINE_CAPACITY];
    // malloc'ed, so that growth can realloc: large blocks are remapped, not copied.
    std::unique_ptr<char, FreeDeleter> m_heap;
    char* m_data;
    std::size_t m_capacity = INLINE_CAPACITY;
    std::size_t m_size = 0;
    std::size_t m_capacity_limit = std::numeric_limits<std::size_t>::max();
    bool m_truncated = false;
};

} // namespace lum_utils
