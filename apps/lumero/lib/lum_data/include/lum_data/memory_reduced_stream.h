#pragma once

#include <lum_data/memory_loader.h>

#include <ferrin_core/data_source.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <shared_mutex>
#include <vector>

namespace lum::data {

/// Reduced data of one level, held in memory: entry i summarises block i. Only the
/// entries given to append() are stored, with their index, so that a stretch of empty
/// blocks costs nothing; any other entry below entryCount() is answered by the fallback
/// (NaN throughout unless set). Entries can be read only while their page is resident
/// (see MemoryLoader). One writer appends; readers may read at the same time.
class MemoryReducedStream : public ferrin::ReducedStream
{
public:
    /// The value of an entry that was not stored.
    using Fallback = std::function<ferrin::ReducedValue(std::uint64_t index)>;

    /// @param page_size      entries per page of the loader
    /// @param resident_pages most pages resident at a time; 0 for no limit
    explicit MemoryReducedStream(std::uint64_t page_size = 1024, std::uint64_t resident_pages = 0);

    /// Sets the fallback; before the stream is shared.
    void setFallback(Fallback fallback) { m_fallback = std::move(fallback); }

    /// Appends the next entry: entries count up to it.
    void append(const ferrin::ReducedValue& value);
    /// Stores entry @p index (above every stored one) and lets entries count up to it.
    void append(std::uint64_t index, const ferrin::ReducedValue& value);
    /// Entries [0, @p count) exist from now on. Only grows.
    void setEntryCount(std::uint64_t count)
    {
        // One writer; entries it counts are stored before (or answered by the fallback).
        if (count <= m_count.load(std::memory_order_relaxed))
            return;
        m_count.store(count, std::memory_order_release);
        m_loader.setExtent(count);
    }
    /// Entries held in memory.
    std::size_t storedCount() const;

    std::uint32_t entrySize() const override { return ferrin::REDUCED_ENTRY_SIZE; }
    std::uint64_t entryCount() const override;
    bool readEntry(std::uint64_t index, std::uint8_t* out) const override;

    bool reserve(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last,
                 const std::string& owner, std::uint32_t flags) override;
    bool release(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last,
                 const std::string& owner, std::uint32_t flags) override;
    bool load(const ferrin::DataSource& source, ferrin::Tick first, ferrin::Tick last) override;

    MemoryLoader& loader() { return m_loader; }
    const MemoryLoader& loader() const { return m_loader; }

private:
    mutable std::shared_mutex m_lock;
    std::vector<std::uint64_t> m_indices;
    std::vector<ferrin::ReducedValue> m_entries;
    std::atomic<std::uint64_t> m_count{0};
    Fallback m_fallback;
    MemoryLoader m_loader;
};

} // namespace lum::data
