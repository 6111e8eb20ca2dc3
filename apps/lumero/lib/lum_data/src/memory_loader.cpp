#include <lum_data/memory_loader.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace lum::data {

MemoryLoader::MemoryLoader(std::uint64_t page_size, std::uint64_t resident_pages)
    : m_page_size(std::max<std::uint64_t>(page_size, 1)), m_budget(resident_pages)
{}

std::uint64_t MemoryLoader::pagesOf(std::uint64_t extent) const
{
    return extent / m_page_size + (extent % m_page_size != 0 ? 1 : 0);
}

bool MemoryLoader::isResident(std::uint64_t position) const
{
    if (position >= extent())
        return false;
    if (m_keep_all.load(std::memory_order_acquire))
        return true;
    std::shared_lock lock(m_lock);
    return m_loaded_at.count(position / m_page_size) != 0;
}

void MemoryLoader::loadAll()
{
    std::unique_lock lock(m_lock);
    if (m_keep_all.load(std::memory_order_relaxed))
        return;
    m_keep_all_from = pagesOf(extent());
    m_pages_loaded += m_keep_all_from - m_loaded_at.size();
    m_loaded_at.clear();
    m_keep_all.store(true, std::memory_order_release);
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
    const std::uint64_t end = extent();
    if (last < first || first >= end)
        return false;
    if (m_keep_all.load(std::memory_order_acquire))
        return true;
    std::unique_lock lock(m_lock);
    last = std::min<ferrin::Tick>(last, end - 1);
    const std::uint64_t first_page = first / m_page_size;
    const std::uint64_t last_page = last / m_page_size;
    for (std::uint64_t page = first_page; page <= last_page; ++page) {
        const auto [it, added] = m_loaded_at.try_emplace(page, 0);
        if (added)
            ++m_pages_loaded;
        it->second = ++m_sequence;
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
    if (m_budget == 0 || m_loaded_at.size() <= m_budget)
        return;
    // Candidates: resident, not just loaded, not reserved; the oldest go first.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> candidates; // (loaded at, page)
    for (const auto& [page, loaded_at] : m_loaded_at) {
        if (page >= keep_first_page && page <= keep_last_page)
            continue;
        if (!isReservedLocked(page))
            candidates.emplace_back(loaded_at, page);
    }
    std::sort(candidates.begin(), candidates.end());
    for (const auto& [loaded_at, page] : candidates) {
        if (m_loaded_at.size() <= m_budget)
            break;
        m_loaded_at.erase(page);
    }
}

std::size_t MemoryLoader::reservationCount(const std::string& owner) const
{
    std::shared_lock lock(m_lock);
    return m_reservations.count(owner);
}

std::size_t MemoryLoader::residentPageCount() const
{
    if (m_keep_all.load(std::memory_order_acquire))
        return static_cast<std::size_t>(pagesOf(extent()));
    std::shared_lock lock(m_lock);
    return m_loaded_at.size();
}

std::uint64_t MemoryLoader::pagesLoaded() const
{
    std::shared_lock lock(m_lock);
    // With everything kept, pages come in as the extent grows.
    if (m_keep_all.load(std::memory_order_acquire))
        return m_pages_loaded + pagesOf(extent()) - m_keep_all_from;
    return m_pages_loaded;
}

} // namespace lum::data
