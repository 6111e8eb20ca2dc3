#pragma once

#include <ferrin_core/data_source.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <shared_mutex>
#include <string>
#include <unordered_map>

namespace lum::data {

/// Decides which positions of a stream are in memory. The data itself lives in the
/// host's store; a position can be read only while its page is resident. Loading makes
/// pages resident; when more pages are resident than the budget allows, the pages
/// loaded longest ago are dropped again, except those that a client holds reserved.
///
/// Thread-safe: readers ask isResident() under a shared lock; reserve, release and
/// load take it exclusively.
class MemoryLoader : public ferrin::IfLoadableStream
{
public:
    /// @param page_size      positions per page (at least 1)
    /// @param resident_pages most pages resident at a time; 0 for no limit
    MemoryLoader(std::uint64_t page_size, std::uint64_t resident_pages);

    /// Positions [0, extent) exist; loading beyond them fails. Only grows; called by
    /// one writer at a time.
    void setExtent(std::uint64_t extent)
    {
        // One writer grows the extent, once per sample: inline and without a lock.
        if (extent > m_extent.load(std::memory_order_relaxed))
            m_extent.store(extent, std::memory_order_release);
    }
    std::uint64_t extent() const { return m_extent.load(std::memory_order_acquire); }

    bool isResident(std::uint64_t position) const;
    /// Makes every page resident, now and as the extent grows, and lifts the budget:
    /// data that never leaves memory.
    void loadAll();

    bool reserve(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last,
                 const std::string& owner, std::uint32_t flags) override;
    /// False when @p owner holds no such reservation.
    bool release(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last,
                 const std::string& owner, std::uint32_t flags) override;
    /// Makes [first, last] resident (cut to the extent); false when nothing of it exists.
    bool load(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last) override;

    /// Reservations now held, per owner text.
    std::size_t reservationCount(const std::string& owner) const;
    std::size_t residentPageCount() const;
    /// Number of pages made resident by load() since construction.
    std::uint64_t pagesLoaded() const;

private:
    struct Reservation
    {
        ferrin::Tick first;
        ferrin::Tick last;
    };

    bool isReservedLocked(std::uint64_t page) const;
    std::uint64_t pagesOf(std::uint64_t extent) const;
    void enforceBudgetLocked(std::uint64_t keep_first_page, std::uint64_t keep_last_page);

    const std::uint64_t m_page_size;
    const std::uint64_t m_budget;
    /// Set by loadAll(); with it, residency is the extent alone and needs no lock.
    std::atomic<bool> m_keep_all{false};
    std::atomic<std::uint64_t> m_extent{0};
    /// Pages of the extent when loadAll() was called.
    std::uint64_t m_keep_all_from = 0;
    mutable std::shared_mutex m_lock;
    /// Resident pages only, each with the load sequence number when it came in: the
    /// extent of a stream of ticks may be vast and mostly empty. Unused with m_keep_all.
    std::unordered_map<std::uint64_t, std::uint64_t> m_loaded_at;
    std::uint64_t m_sequence = 0;
    std::uint64_t m_pages_loaded = 0;
    std::multimap<std::string, Reservation> m_reservations;
};

} // namespace lum::data
