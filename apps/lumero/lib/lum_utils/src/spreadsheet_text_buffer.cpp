#include <lum_utils/spreadsheet_text_buffer.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(__unix__) || defined(__APPLE__)
#include <locale.h>
#define LUM_UTILS_HAS_USELOCALE 1
#endif

namespace lum_utils {

namespace {

#ifdef LUM_UTILS_HAS_USELOCALE
/// Switches this thread to the C locale while it lives. A Qt application sets the
/// process locale from the environment, which would put decimal commas into
/// formats that must carry points.
class ScopedCLocale
{
public:
    ScopedCLocale() noexcept
    {
        static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
        if (c_locale != static_cast<locale_t>(nullptr))
            m_previous = uselocale(c_locale);
    }
    ~ScopedCLocale()
    {
        if (m_previous != static_cast<locale_t>(nullptr))
            uselocale(m_previous);
    }
    ScopedCLocale(const ScopedCLocale&) = delete;
    ScopedCLocale& operator=(const ScopedCLocale&) = delete;

private:
    locale_t m_previous = static_cast<locale_t>(nullptr);
};
#else
struct ScopedCLocale
{};
#endif

} // namespace

void SpreadsheetTextBuffer::FreeDeleter::operator()(char* block) const noexcept
{
    std::free(block);
}

SpreadsheetTextBuffer::SpreadsheetTextBuffer() noexcept : m_data(m_inline)
{
    m_inline[0] = '\0';
}

bool SpreadsheetTextBuffer::reserve(std::size_t needed) noexcept
{
    if (needed <= m_capacity)
        return true;
    std::size_t capacity = m_capacity;
    while (capacity < needed) {
        if (capacity > std::numeric_limits<std::size_t>::max() / 2)
            return false;
        capacity *= 2;
    }
    if (capacity > m_capacity_limit)
        return false;
    if (m_heap) {
        // On failure realloc leaves the old block as it was.
        char* grown = static_cast<char*>(std::realloc(m_heap.get(), capacity));
        if (grown == nullptr)
            return false;
        static_cast<void>(m_heap.release());
        m_heap.reset(grown);
    } else {
        char* block = static_cast<char*>(std::malloc(capacity));
        if (block == nullptr)
            return false;
        std::memcpy(block, m_inline, m_size + 1);
        m_heap.reset(block);
    }
    m_data = m_heap.get();
    m_capacity = capacity;
    return true;
}

void SpreadsheetTextBuffer::append(const char* text, std::size_t length) noexcept
{
    if (length == 0)
        return;
    if (length > m_capacity - 1 - m_size && !reserve(m_size + length + 1)) {
        length = m_capacity - 1 - m_size;
        m_truncated = true;
    }
    std::memcpy(m_data + m_size, text, length);
    m_size += length;
    m_data[m_size] = '\0';
}

void SpreadsheetTextBuffer::appendSpaces(std::size_t count) noexcept
{
    if (count == 0)
        return;
    if (count > m_capacity - 1 - m_size && !reserve(m_size + count + 1)) {
        count = m_capacity - 1 - m_size;
        m_truncated = true;
    }
    std::memset(m_data + m_size, ' ', count);
    m_size += count;
    m_data[m_size] = '\0';
}

void SpreadsheetTextBuffer::appendFormat(const char* format, ...) noexcept
{
    ScopedCLocale c_locale;
    std::va_list args;
    va_start(args, format);
    std::va_list retry;
    va_copy(retry, args);
    const std::size_t room = m_capacity - m_size;
    const int written = std::vsnprintf(m_data + m_size, room, format, args);
    va_end(args);
    if (written < 0) {
        // An encoding error: keep the text as it was.
        m_data[m_size] = '\0';
        m_truncated = true;
    } else if (static_cast<std::size_t>(written) < room) {
        m_size += static_cast<std::size_t>(written);
    } else if (reserve(m_size + static_cast<std::size_t>(written) + 1)) {
        std::vsnprintf(m_data + m_size, m_capacity - m_size, format, retry);
        m_size += static_cast<std::size_t>(written);
    } else {
        // vsnprintf has written what fits, null-terminated.
        m_size = m_capacity - 1;
        m_truncated = true;
    }
    va_end(retry);
}

} // namespace lum_utils
