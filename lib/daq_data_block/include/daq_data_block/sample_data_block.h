#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace daq {

/// One contiguous memory block of samples: this 48-byte header, then the payload.
/// The layout is shared with the writing side, so it is plain data with fixed offsets.
/// Blocks are reference counted (boost::intrusive_ptr through the free functions
/// below); the last release hands the block back to DataBlockPool.
struct SampleDataBlock
{
    /// Bytes of the header in front of the payload.
    static constexpr std::uint32_t HEADER_SIZE = 48;
    /// Largest sample count that is final; anything above marks a count still open.
    static constexpr std::uint32_t MAX_FINAL_COUNT = 0xFFFFFFFEu;
    /// The count a writer stores while it does not know the final count yet.
    static constexpr std::uint32_t OPEN_COUNT = 0xFFFFFFFFu;

    std::uint32_t m_payload_capacity; ///< bytes behind the header; the pool's size class
    std::uint32_t m_sample_count;     ///< samples in the block; above MAX_FINAL_COUNT: not final
    std::uint64_t m_first_timestamp;  ///< timestamp of the first sample, in ticks
    std::uint64_t m_time_span;        ///< ticks covered; the last timestamp is first + span - 1
    std::uint8_t* m_data;             ///< first sample
    std::uint32_t m_data_length;      ///< bytes used from m_data
    std::atomic<std::int32_t> m_ref_count;
    std::uint64_t m_reserved; ///< keeps the header at 48 bytes

    std::uint8_t* payload() noexcept { return reinterpret_cast<std::uint8_t*>(this) + HEADER_SIZE; }
    const std::uint8_t* payload() const noexcept
    {
        return reinterpret_cast<const std::uint8_t*>(this) + HEADER_SIZE;
    }
    bool isCountFinal() const noexcept { return m_sample_count <= MAX_FINAL_COUNT; }
    /// first + span - 1, the last tick the block covers (wraps like the writer's arithmetic).
    std::uint64_t lastTimestamp() const noexcept { return m_first_timestamp + m_time_span - 1; }

    void addRef() noexcept { m_ref_count.fetch_add(1, std::memory_order_relaxed); }
    /// Drops one reference; the last one gives the block back to the pool.
    void release() noexcept;
};

static_assert(sizeof(void*) == 8, "the block header layout assumes 64-bit pointers");
static_assert(std::is_standard_layout_v<SampleDataBlock>);
static_assert(std::atomic<std::int32_t>::is_always_lock_free);
static_assert(offsetof(SampleDataBlock, m_payload_capacity) == 0);
static_assert(offsetof(SampleDataBlock, m_sample_count) == 4);
static_assert(offsetof(SampleDataBlock, m_first_timestamp) == 8);
static_assert(offsetof(SampleDataBlock, m_time_span) == 16);
static_assert(offsetof(SampleDataBlock, m_data) == 24);
static_assert(offsetof(SampleDataBlock, m_data_length) == 32);
static_assert(offsetof(SampleDataBlock, m_ref_count) == 36);
static_assert(sizeof(SampleDataBlock) == SampleDataBlock::HEADER_SIZE);

inline void intrusive_ptr_add_ref(SampleDataBlock* block) noexcept
{
    block->addRef();
}
inline void intrusive_ptr_release(SampleDataBlock* block) noexcept
{
    block->release();
}

} // namespace daq
