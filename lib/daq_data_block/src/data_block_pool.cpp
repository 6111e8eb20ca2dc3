#include <daq_data_block/data_block_pool.h>

#include <uni_base/uni_assert.h>

#include <new>

namespace daq {

// Set up during static initialisation and never destroyed: blocks may be released
// by other static objects' destructors at exit.
DataBlockPool* DataBlockPool::m_instance = new DataBlockPool;
std::atomic<long> DataBlockPool::s_live_blocks{0};

void SampleDataBlock::release() noexcept
{
    const std::int32_t before = m_ref_count.fetch_sub(1, std::memory_order_acq_rel);
    if (!UNI_ASSERT(before > 0)) {
        // Released more often than referenced: leave the block alone rather than free it twice.
        m_ref_count.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    if (before != 1)
        return;
    if (DataBlockPool* pool = DataBlockPool::instance())
        pool->giveBack(this);
    else
        DataBlockPool::freeMemory(this);
}

DataBlockPool* DataBlockPool::instance() noexcept
{
    UNI_ASSERT(m_instance);
    return m_instance;
}

std::uint32_t DataBlockPool::pageClassCapacity(std::uint32_t min_payload) noexcept
{
    const std::uint64_t whole = std::uint64_t{min_payload} + SampleDataBlock::HEADER_SIZE;
    const std::uint64_t pages = (whole + PAGE_SIZE - 1) / PAGE_SIZE;
    const std::uint64_t capacity = pages * PAGE_SIZE - SampleDataBlock::HEADER_SIZE;
    // The largest page class that a 32-bit capacity can name.
    constexpr std::uint64_t largest = 0xFFFFF000u - SampleDataBlock::HEADER_SIZE;
    return static_cast<std::uint32_t>(capacity <= largest ? capacity : largest);
}

SampleDataBlockPtr DataBlockPool::acquire(std::uint32_t payload_capacity)
{
    SampleDataBlock* block = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto it = m_free_blocks.find(payload_capacity);
        if (it != m_free_blocks.end() && !it->second.empty()) {
            block = it->second.back();
            it->second.pop_back();
            m_free_capacity_sum -= payload_capacity;
        }
    }
    if (!block) {
        void* memory = ::operator new (std::size_t{SampleDataBlock::HEADER_SIZE} + payload_capacity);
        block = new (memory) SampleDataBlock;
        block->m_ref_count.store(0, std::memory_order_relaxed);
        block->m_payload_capacity = payload_capacity;
        s_live_blocks.fetch_add(1, std::memory_order_relaxed);
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_block_count;
        m_capacity_sum += payload_capacity;
    }
    block->m_sample_count = 0;
    block->m_first_timestamp = 0;
    block->m_time_span = 0;
    block->m_data = block->payload();
    block->m_data_length = 0;
    block->m_reserved = 0;
    return SampleDataBlockPtr(block); // takes the first reference
}

void DataBlockPool::giveBack(SampleDataBlock* block) noexcept
{
    const std::uint32_t capacity = block->m_payload_capacity;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const bool page_multiple = (std::uint64_t{capacity} + SampleDataBlock::HEADER_SIZE) % PAGE_SIZE == 0;
        if (page_multiple) {
            std::vector<SampleDataBlock*>& free_list = m_free_blocks[capacity];
            if (free_list.size() < MAX_FREE_PER_CLASS) {
                free_list.push_back(block);
                m_free_capacity_sum += capacity;
                return;
            }
        }
        --m_block_count;
        m_capacity_sum -= capacity;
    }
    freeMemory(block);
}

void DataBlockPool::freeMemory(SampleDataBlock* block) noexcept
{
    s_live_blocks.fetch_sub(1, std::memory_order_relaxed);
    ::operator delete(static_cast<void*>(block));
}

std::size_t DataBlockPool::blockCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_block_count;
}

std::uint64_t DataBlockPool::capacitySum() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_capacity_sum;
}

std::uint64_t DataBlockPool::freeCapacitySum() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_free_capacity_sum;
}

std::size_t DataBlockPool::freeBlockCount(std::uint32_t payload_capacity) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_free_blocks.find(payload_capacity);
    return it == m_free_blocks.end() ? 0 : it->second.size();
}

void DataBlockPool::trim()
{
    std::map<std::uint32_t, std::vector<SampleDataBlock*>> free_blocks;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        free_blocks.swap(m_free_blocks);
        for (const auto& [capacity, blocks] : free_blocks) {
            m_block_count -= blocks.size();
            m_capacity_sum -= std::uint64_t{capacity} * blocks.size();
        }
        m_free_capacity_sum = 0;
    }
    for (const auto& entry : free_blocks)
        for (SampleDataBlock* block : entry.second)
            freeMemory(block);
}

} // namespace daq
