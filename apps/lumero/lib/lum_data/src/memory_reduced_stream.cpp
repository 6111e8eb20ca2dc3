#include <lum_data/memory_reduced_stream.h>

#include <algorithm>
#include <limits>
#include <mutex>

namespace lum::data {

MemoryReducedStream::MemoryReducedStream(std::uint64_t page_size, std::uint64_t resident_pages)
    : m_loader(page_size, resident_pages)
{}

void MemoryReducedStream::append(const ferrin::ReducedValue& value)
{
    append(entryCount(), value);
}

void MemoryReducedStream::append(std::uint64_t index, const ferrin::ReducedValue& value)
{
    {
        std::unique_lock lock(m_lock);
        if (!m_indices.empty() && index <= m_indices.back())
            return;
        m_indices.push_back(index);
        m_entries.push_back(value);
    }
    setEntryCount(index + 1);
}

std::size_t MemoryReducedStream::storedCount() const
{
    std::shared_lock lock(m_lock);
    return m_entries.size();
}

std::uint64_t MemoryReducedStream::entryCount() const
{
    return m_count.load(std::memory_order_acquire);
}

bool MemoryReducedStream::readEntry(std::uint64_t index, std::uint8_t* out) const
{
    if (!out || !m_loader.isResident(index))
        return false;
    if (index >= entryCount())
        return false;
    {
        std::shared_lock lock(m_lock);
        const auto it = std::lower_bound(m_indices.begin(), m_indices.end(), index);
        if (it != m_indices.end() && *it == index) {
            ferrin::encodeReducedEntry(m_entries[static_cast<std::size_t>(it - m_indices.begin())], out);
            return true;
        }
    }
    if (m_fallback) {
        ferrin::encodeReducedEntry(m_fallback(index), out);
    } else {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        ferrin::encodeReducedEntry(ferrin::ReducedValue{nan, nan, nan, nan}, out);
    }
    return true;
}

bool MemoryReducedStream::reserve(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last,
                                  const std::string& owner, std::uint32_t flags)
{
    return m_loader.reserve(source, first, last, owner, flags);
}

bool MemoryReducedStream::release(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last,
                                  const std::string& owner, std::uint32_t flags)
{
    return m_loader.release(source, first, last, owner, flags);
}

bool MemoryReducedStream::load(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last)
{
    return m_loader.load(source, first, last);
}

} // namespace lum::data
