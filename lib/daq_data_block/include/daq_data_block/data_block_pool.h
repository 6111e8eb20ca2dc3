#pragma once

#include <daq_data_block/sample_data_block_ptr.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

namespace daq {

/// Process-wide recycler of sample blocks. Block sizes repeat and page-sized
/// allocations are expensive, so blocks whose whole size (header + payload) is a
/// multiple of PAGE_SIZE are kept for reuse, at most MAX_FREE_PER_CLASS for each
/// exact payload capacity; any other block is freed on its last release.
class DataBlockPool
{
public:
    static constexpr std::uint32_t PAGE_SIZE = 4096;
    static constexpr std::size_t MAX_FREE_PER_CLASS = 12;

    /// The pool; null only before static initialisation has set it up (asserted).
    static DataBlockPool* instance() noexcept;

    /// A block with at least @p payload_capacity bytes behind the header, reused from
    /// the free list of exactly that capacity when one lies there. The block comes
    /// with one reference, an empty payload (m_data at the payload, length 0), count
    /// 0, first timestamp 0 and span 0.
    SampleDataBlockPtr acquire(std::uint32_t payload_capacity);

    /// Takes back a block whose reference count reached zero: kept when its size
    /// class is a page multiple and has room, else freed. Called by SampleDataBlock.
    void giveBack(SampleDataBlock* block) noexcept;

    /// Smallest payload capacity of at least @p min_payload whose block fills whole pages.
    static std::uint32_t pageClassCapacity(std::uint32_t min_payload) noexcept;

    /// Blocks in existence that this pool allocated (in use or lying free).
    std::size_t blockCount() const;
    /// Sum of the payload capacities of those blocks.
    std::uint64_t capacitySum() const;
    /// Sum of the payload capacities of the blocks lying free.
    std::uint64_t freeCapacitySum() const;
    /// Blocks lying free in the size class @p payload_capacity.
    std::size_t freeBlockCount(std::uint32_t payload_capacity) const;
    /// Frees every block lying free (for tests and memory pressure).
    void trim();

    /// Blocks allocated and not yet freed, over the whole process.
    static long liveBlocks() noexcept { return s_live_blocks.load(std::memory_order_relaxed); }

private:
    DataBlockPool() = default;
    static void freeMemory(SampleDataBlock* block) noexcept;
    friend struct SampleDataBlock;

    static DataBlockPool* m_instance;
    static std::atomic<long> s_live_blocks;

    std::map<std::uint32_t, std::vector<SampleDataBlock*>> m_free_blocks;
    std::size_t m_block_count = 0;
    std::uint64_t m_capacity_sum = 0;
    std::uint64_t m_free_capacity_sum = 0;
    mutable std::mutex m_mutex;
};

} // namespace daq
