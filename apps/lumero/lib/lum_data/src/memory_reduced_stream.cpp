#include <lum_data/memory_reduced_stream.h>

#include <mutex>

namespace lum::data {

MemoryReducedStream::MemoryReducedStream(std::uint64_t page_size, std::uint64_t resident_pages)
    : m_loader(page_size, resident_pages)
{}

void MemoryReducedStream::append(const ferrin::ReducedValue& value)
{
    std::uint64_t count = 0;
    {
        std::unique_lock lock(m_lock);
        m_entries.push_back(value);
        count = m_entries.size();
    }
    m_loader.setExtent(count);
}

std::uint64_t MemoryReducedStream::entryCount() const
{
    std::shared_lock lock(m_lock);
    return m_entries.size();
}

bool MemoryReducedStream::readEntry(std::uint64_t index, std::uint8_t* out) const
{
    if (!out || !m_loader.isResident(index))
        return false;
    std::shared_lock lock(m_lock);
    if (index >= m_entries.size())
        return false;
    ferrin::encodeReducedEntry(m_entries[index], out);
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
