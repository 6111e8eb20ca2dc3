#include <lum_data/memory_loader.h>

#include <algorithm>
#include <mutex>

namespace lum::data {

MemoryLoader::MemoryLoader(std::uint64_t page_size, std::uint64_t resident_pages)
    : m_page_size(std::max<std::uint64_t>(page_size, 1)), m_budget(resident_pages)
{}

void MemoryLoader::setExtent(std::uint64_t extent)
{
    std::unique_lock lock(m_lock);
    if (extent <= m_extent)
        return;
    m_extent = extent;
    m_atomic_extent.store(extent, std::memory_order_release);
    const std::size_t old_pages = m_loaded_at.size();
    m_loaded_at.resize((extent + m_page_size - 1) / m_page_size, 0);
    if (m_keep_all.load(std::memory_order_relaxed)) {
        for (std::size_t page = old_pages; page < m_loaded_at.size(); ++page) {
            m_loaded_at[page] = ++m_sequence;
            ++m_resident;
            ++m_pages_loaded;
        }
    }
}

std::uint64_t MemoryLoader::extent() const
{
    std::shared_lock lock(m_lock);
    return m_extent;
}

bool MemoryLoader::isResident(std::uint64_t position) const
{
    if (m_keep_all.load(std::memory_order_acquire))
        return position < m_atomic_extent.load(std::memory_order_acquire);
    std::shared_lock lock(m_lock);
    const std::uint64_t page = position / m_page_size;
    return position < m_extent && m_loaded_at[page] != 0;
}

void MemoryLoader::loadAll()
{
    std::unique_lock lock(m_lock);
    m_budget = 0;
    m_keep_all.store(true, std::memory_order_release);
    for (std::uint64_t& loaded_at : m_loaded_at) {
        if (loaded_at == 0) {
            loaded_at = ++m_sequence;
            ++m_resident;
            ++m_pages_loaded;
        }
    }
}

bool MemoryLoader::reserve(const ferrin::DataSource&, ferrin::Tick first, ferrin::Tick last,
                           const std::string& owner, std::uint32_t)
{
    if (last < first)
        return false;
    std::unique_lock lock(m_lock);
    m_reservations.emplace(owner, Reservation{first, last});
    return true;
}

bool MemoryLoader::release(const ferrin::DataSource&, ferrin::Tick first, ferrin::Tick last,
                           const std::string& owner, std::uint32_t)
{
    std::unique_lock lock(m_lock);
    const auto range = m_reservations.equal_range(owner);
    for (auto it = range.first; it != range.second; ++it) {
        if (it->second.first == first && it->second.last == last) {
            m_reservations.erase(it);
            return true;
        }
    }
    return false;
}

bool MemoryLoader::load(const ferrin::DataSource&, ferrin::Tick first, ferrin::Tick last)
{
    std::unique_lock lock(m_lock);
    if (last < first || first >= m_extent)
        return false;
    last = std::min<ferrin::Tick>(last, m_extent - 1);
    const std::uint64_t first_page = first / m_page_size;
    const std::uint64_t last_page = last / m_page_size;
    for (std::uint64_t page = first_page; page <= last_page; ++page) {
        if (m_loaded_at[page] == 0) {
            ++m_resident;
            ++m_pages_loaded;
        }
        m_loaded_at[page] = ++m_sequence;
    }
    enforceBudgetLocked(first_page, last_page);
    return true;
}

bool MemoryLoader::isReservedLocked(std::uint64_t page) const
{
    const ferrin::Tick page_first = page * m_page_size;
    const ferrin::Tick page_last = page_first + m_page_size - 1;
    for (const auto& [owner, reservation] : m_reservations) {
        if (reservation.first <= page_last && reservation.last >= page_first)
            return true;
    }
    return false;
}

void MemoryLoader::enforceBudgetLocked(std::uint64_t keep_first_page, std::uint64_t keep_last_page)
{
    if (m_budget == 0 || m_resident <= m_budget)
        return;
    // Candidates: resident, not just loaded, not reserved; the oldest go first.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> candidates; // (loaded at, page)
    for (std::uint64_t page = 0; page < m_loaded_at.size(); ++page) {
        if (m_loaded_at[page] == 0 || (page >= keep_first_page && page <= keep_last_page))
            continue;
        if (!isReservedLocked(page))
            candidates.emplace_back(m_loaded_at[page], page);
    }
    std::sort(candidates.begin(), candidates.end());
    for (const auto& [loaded_at, page] : candidates) {
        if (m_resident <= m_budget)
            break;
        m_loaded_at[page] = 0;
        --m_resident;
    }
}

std::size_t MemoryLoader::reservationCount(const std::string& owner) const
{
    std::shared_lock lock(m_lock);
    return m_reservations.count(owner);
}

std::size_t MemoryLoader::residentPageCount() const
{
    std::shared_lock lock(m_lock);
    return m_resident;
}

std::uint64_t MemoryLoader::pagesLoaded() const
{
    std::shared_lock lock(m_lock);
    return m_pages_loaded;
}

} // namespace lum::data
