#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace lum::data {

/// A list that one writer only appends to while readers index it without a lock.
/// Entries live in chunks that never move (the first of 64 entries, each next one twice
/// the size of the one before), and size() publishes them: an entry below a size a
/// reader has seen is complete and never changes.
template <typename T>
class AppendOnlyIndex
{
public:
    static constexpr std::size_t FIRST_CHUNK = 64;

    /// Entries a reader may read now.
    std::size_t size() const { return m_size.load(std::memory_order_acquire); }
    bool empty() const { return size() == 0; }

    /// Entry @p i, below a size() the caller has seen.
    const T& operator[](std::size_t i) const
    {
        const std::size_t chunk = chunkOf(i);
        return m_chunks[chunk][i - chunkStart(chunk)];
    }

    /// The last entry appended; for the writer only, and not on an empty index.
    const T& back() const { return (*this)[m_written - 1]; }

    /// Appends @p value and publishes it; one writer at a time.
    void push_back(const T& value)
    {
        const std::size_t i = m_written;
        const std::size_t chunk = chunkOf(i);
        if (!m_chunks[chunk])
            m_chunks[chunk] = std::make_unique<T[]>(FIRST_CHUNK << chunk);
        m_chunks[chunk][i - chunkStart(chunk)] = value;
        m_written = i + 1;
        m_size.store(m_written, std::memory_order_release);
    }

private:
    /// Chunk k holds entries [FIRST_CHUNK * (2^k - 1), FIRST_CHUNK * (2^(k+1) - 1)).
    static std::size_t chunkOf(std::size_t i)
    {
        const std::uint64_t q = i / FIRST_CHUNK + 1;
        return static_cast<std::size_t>(63 - __builtin_clzll(q));
    }
    static std::size_t chunkStart(std::size_t chunk) { return FIRST_CHUNK * ((std::size_t{1} << chunk) - 1); }

    // 48 chunks hold more entries than any memory does.
    std::array<std::unique_ptr<T[]>, 48> m_chunks;
    std::size_t m_written = 0;
    std::atomic<std::size_t> m_size{0};
};

} // namespace lum::data
