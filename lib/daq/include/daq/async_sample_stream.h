#pragma once

#include <daq/async_sample_layout.h>
#include <daq/block_provider.h>
#include <daq/seek_mode.h>
#include <daq_data_block/sample_data_block_ptr.h>

#include <boost/container/flat_map.hpp>

#include <cstdint>
#include <cstring>
#include <memory>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace daq {

class AsyncSampleWriter;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "sample fields are read as little-endian");

/// The blocks of one asynchronous channel and how a sample looks inside them.
///
/// Closed blocks lie in an ordered map by first timestamp (or come from a
/// BlockProvider); the newest block may still be growing: it is the live block,
/// of which only the first m_live_sample_count samples are published. Block lookup
/// and the live fields are guarded by the stream's lock; walking the samples of a
/// block needs none, because only published samples are touched.
///
/// The find functions return a referenced block and, in @p count_out, how many of
/// its samples may be read: the published count for the live block, 0 ("all
/// samples of the block") for a closed one.
class AsyncSampleStream
{
public:
    using SampleIndex = std::vector<const std::uint8_t*>;

    /// An invalid layout is reported; such a stream finds no blocks.
    explicit AsyncSampleStream(const AsyncSampleLayout& layout, std::shared_ptr<BlockProvider> provider = {});
    AsyncSampleStream(const AsyncSampleStream&) = delete;
    AsyncSampleStream& operator=(const AsyncSampleStream&) = delete;

    AsyncSampleLayout layout() const;
    std::uint64_t timestampMask() const noexcept { return m_timestamp_mask; }
    bool hasFixedSize() const noexcept { return m_sample_size_field.m_size == 0; }
    /// False when the layout given at construction was invalid.
    bool isUsable() const noexcept { return m_usable; }

    /// The timestamp of the sample starting at @p sample.
    std::uint64_t getTimestamp(const std::uint8_t* sample) const noexcept
    {
        const std::uint8_t* field = sample + m_timestamp_field.m_offset;
        std::uint64_t value = 0;
        if (m_timestamp_field.m_size == sizeof(value))
            std::memcpy(&value, field, sizeof(value));
        else
            std::memcpy(&value, field,
                        m_timestamp_field.m_size < sizeof(value) ? m_timestamp_field.m_size : 0);
        return value;
    }
    /// The value length of the sample starting at @p sample.
    std::uint32_t getSampleSize(const std::uint8_t* sample) const noexcept;
    const std::uint8_t* getValue(const std::uint8_t* sample) const noexcept
    {
        return sample + m_value_offset;
    }

    /// The sample after @p previous in @p block (the first one when @p previous is
    /// null), or null when an open-ended walk ends. @p value_out, if given, receives
    /// the found sample's value address. Outside open-ended mode the caller's count
    /// says how far to go.
    const std::uint8_t* nextSample(const SampleDataBlock& block, const std::uint8_t* previous,
                                   const std::uint8_t** value_out, bool open_ended) const noexcept;

    /// Appends to @p index the samples of @p block that follow its last entry, up to
    /// @p max_samples entries in all (0: every sample of the block, walked open-ended
    /// when its count is not final). Returns the number of entries added.
    std::uint32_t extendIndex(const SampleDataBlock& block, SampleIndex& index,
                              std::uint32_t max_samples) const;

    /// The block holding @p t: the live block when @p t lies within its published
    /// samples, else the last closed block starting at or before @p t whose span covers @p t.
    SampleDataBlockPtr findBlockForSeek(std::uint64_t t, std::uint32_t& count_out) const;
    /// The live block when it starts at or before @p t, else the last closed block
    /// starting at or before @p t, whatever its span.
    SampleDataBlockPtr findBlockBefore(std::uint64_t t, std::uint32_t& count_out) const;
    /// The first closed block starting after @p t, else the live block when it does.
    SampleDataBlockPtr findNextBlock(std::uint64_t t, std::uint32_t& count_out) const;
    /// The block holding @p t (as findBlockForSeek) and the one after it (none when the
    /// first is the live block), with their counts, found under one lock.
    std::pair<SampleDataBlockPtr, SampleDataBlockPtr>
    findBlockPairAtOrAfter(std::uint64_t t, std::pair<std::uint32_t, std::uint32_t>& count_out) const;

    /// How many samples of @p block may be read now: the published count when it is
    /// the live block, else 0 (all of them). Lets an iterator pick up a block that
    /// grew, or was closed, since it indexed it.
    std::uint32_t visibleSampleCount(const SampleDataBlock& block) const;

    /// Closed blocks in the stream's own map.
    std::size_t closedBlockCount() const;

private:
    friend class AsyncSampleWriter; // publishes by updating the live fields under m_lock

    bool hasLiveSamples() const noexcept { return m_live_block && m_live_sample_count > 0; }
    SampleDataBlockPtr findContainingLocked(std::uint64_t t, std::uint32_t& count_out) const;
    SampleDataBlockPtr findNextLocked(std::uint64_t t, std::uint32_t& count_out) const;
    /// The entry of the last closed block starting at or before @p t in the own map, or null.
    const SampleDataBlockPtr* lastClosedAtOrBefore(std::uint64_t t) const;

    FieldLocation m_timestamp_field;
    FieldLocation m_sample_size_field;
    std::uint32_t m_fixed_sample_size = 0;
    std::uint32_t m_value_offset = 0;
    std::uint32_t m_sample_header_size = 0;
    std::uint64_t m_timestamp_mask = 0;
    bool m_usable = false;

    /// Closed blocks by first timestamp. A sorted vector: blocks arrive in time order, and a
    /// lookup then touches a few contiguous cache lines instead of a node on every block's page.
    boost::container::flat_map<std::uint64_t, SampleDataBlockPtr> m_blocks;
    std::shared_ptr<BlockProvider> m_block_provider; ///< replaces m_blocks when set
    SampleDataBlockPtr m_live_block;
    std::uint32_t m_live_sample_count = 0;
    std::uint64_t m_live_last_timestamp = 0;
    mutable std::shared_mutex m_lock;
};

} // namespace daq
