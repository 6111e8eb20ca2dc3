#pragma once

#include <daq/async_sample_stream.h>
#include <daq_data_block/data_block_pool.h>

#include <cstdint>
#include <memory>
#include <type_traits>

namespace daq {

/// The writing side of one AsyncSampleStream, for the host and for tests.
///
/// Samples are appended into a block of the pool; publish() makes everything
/// appended so far visible to readers by updating the stream's live fields under
/// its lock. A full block is closed into the stream's block map (which publishes
/// its samples) and a new one is started. finish() publishes and closes the live
/// block. One writer per stream; the writer is not itself thread-safe.
///
/// Timestamps must not go backwards and must fit the stream's timestamp field.
/// Equal timestamps are kept together in one block, because readers step from one
/// block to the next by timestamp: an equal timestamp that no longer fits into the
/// current block is refused.
class AsyncSampleWriter
{
public:
    static constexpr std::uint32_t DEFAULT_BLOCK_CAPACITY =
        DataBlockPool::PAGE_SIZE - SampleDataBlock::HEADER_SIZE;

    /// @param block_capacity payload bytes of each block; a larger block is taken
    ///        for a sample that does not fit into one of this size.
    explicit AsyncSampleWriter(std::shared_ptr<AsyncSampleStream> stream,
                               std::uint32_t block_capacity = DEFAULT_BLOCK_CAPACITY);
    /// Finishes, so that nothing appended is lost.
    ~AsyncSampleWriter();
    AsyncSampleWriter(const AsyncSampleWriter&) = delete;
    AsyncSampleWriter& operator=(const AsyncSampleWriter&) = delete;

    /// Appends one sample with timestamp @p timestamp (ticks) and the @p value_size
    /// bytes at @p value. For a fixed-size stream @p value_size must be its sample
    /// size. False, with an assertion report, when the sample is refused.
    bool appendValue(std::uint64_t timestamp, const void* value, std::uint32_t value_size);

    /// Appends @p value's bytes as the value of a sample at @p timestamp.
    template <typename T>
    bool append(std::uint64_t timestamp, const T& value)
    {
        static_assert(std::is_trivially_copyable_v<T>, "sample values are copied as bytes");
        return appendValue(timestamp, &value, sizeof(T));
    }

    /// Makes every sample appended so far visible to readers.
    void publish();
    /// Publishes and closes the live block into the stream's map. Appending again
    /// afterwards starts a new block.
    void finish();

    /// Samples appended since construction.
    std::uint64_t appendedCount() const noexcept { return m_appended; }
    /// Samples that readers may see: those in closed blocks and the published ones.
    std::uint64_t visibleCount() const noexcept { return m_closed_samples + m_published_count; }
    /// Timestamp of the last sample appended; NO_TICK before the first.
    std::uint64_t lastTimestamp() const noexcept { return m_has_last ? m_last_timestamp : NO_TICK; }

private:
    void startBlock(std::uint32_t min_capacity, std::uint64_t first_timestamp);
    void closeBlock();
    void writeSample(std::uint8_t* sample, std::uint64_t timestamp, const void* value,
                     std::uint32_t value_size);

    std::shared_ptr<AsyncSampleStream> m_stream;
    AsyncSampleLayout m_layout;
    /// Samples of an 8-byte timestamp and an 8-byte value that fill all 16 bytes.
    bool m_plain_sample = false;
    std::uint32_t m_block_capacity;

    SampleDataBlockPtr m_block;      ///< the block being written; live once published
    std::uint32_t m_block_count = 0; ///< samples written into m_block
    std::uint32_t m_block_length = 0;
    std::uint32_t m_published_count = 0;

    std::uint64_t m_last_timestamp = 0;
    bool m_has_last = false;
    std::uint64_t m_appended = 0;
    std::uint64_t m_closed_samples = 0;
};

} // namespace daq
