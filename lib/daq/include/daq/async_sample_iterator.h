#pragma once

#include <daq/async_sample_stream.h>
#include <daq/seek_mode.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace daq {

/// A cursor over the samples of one AsyncSampleStream, in time order.
///
/// The iterator holds a reference on its current block, so the sample pointers it
/// hands out stay valid until it moves to another block. It indexes a block lazily,
/// and only as far as the stream says is visible, so it never touches a sample the
/// writer has not published. Stepping within a block takes no lock and allocates
/// nothing. An iterator is positioned, or ended (no stream, no block); ended is final.
class AsyncSampleIterator
{
public:
    static constexpr std::uint32_t NO_INDEX = 0xFFFFFFFFu;

    /// An ended iterator.
    AsyncSampleIterator() = default;
    /// Not yet positioned on @p stream; use seek().
    explicit AsyncSampleIterator(std::shared_ptr<AsyncSampleStream> stream) : m_stream(std::move(stream)) {}

    /// Positions on the sample that @p mode names for target @p t; false when there
    /// is none (an unknown mode is reported and finds nothing).
    bool seek(std::uint64_t t, SeekMode mode);

    /// Steps to the next sample, loading the next block when the current one is
    /// exhausted; ends the iterator when there is none.
    bool next()
    {
        // NO_INDEX + 1 computed in size_t is never inside the index.
        const std::size_t following = std::size_t{m_current_index} + 1;
        if (following < m_sample_index.size()) {
            m_current_index = static_cast<std::uint32_t>(following);
            m_current_sample = m_sample_index[following];
            return true;
        }
        return nextBlock();
    }

    /// A current sample exists.
    bool isValid() const noexcept { return m_current_sample != nullptr; }
    /// Ended: no stream, no block; seek() and next() find nothing any more.
    bool isEnded() const noexcept { return !m_stream; }

    /// Timestamp of the current sample; NO_TICK without one.
    std::uint64_t getTimestamp() const noexcept
    {
        return m_current_sample ? m_stream->getTimestamp(m_current_sample) : NO_TICK;
    }
    /// Address of the current sample's value; throws std::out_of_range without one.
    const std::uint8_t* GetValue() const;
    /// Length of the current sample's value; throws std::out_of_range without one.
    std::uint32_t GetValueSize() const;

    /// Start of the current sample, null when not positioned.
    const std::uint8_t* currentSample() const noexcept { return m_current_sample; }
    /// First timestamp of the current block (all ones when ended).
    std::uint64_t rangeStart() const noexcept { return m_range_start; }
    /// Last visible timestamp of the current block (all ones when ended).
    std::uint64_t rangeEnd() const noexcept { return m_range_end; }

private:
    friend AsyncSampleIterator createIterator(std::shared_ptr<AsyncSampleStream> stream, std::uint64_t t,
                                              SeekMode mode);

    bool nextBlock();

    /// Whether the current block holds more samples than are indexed (published or closed since).

    bool currentBlockGrew() const;
    bool seekForward(std::uint64_t t);
    void indexCurrentBlock(std::uint32_t count);
    void setRange(std::uint32_t count);
    /// First index entry whose timestamp is at or above @p t.
    std::size_t lowerBound(std::uint64_t t) const;
    bool positionAt(std::size_t index);
    void dropBlock();
    void end();

    std::uint64_t m_range_start = NO_TICK;
    std::uint64_t m_range_end = NO_TICK;
    const std::uint8_t* m_current_sample = nullptr;
    std::uint32_t m_current_index = NO_INDEX;
    AsyncSampleStream::SampleIndex m_sample_index;
    SampleDataBlockPtr m_current_block;
    std::shared_ptr<AsyncSampleStream> m_stream;
};

/// An iterator positioned by seek(@p t, @p mode), or an ended one whose range start
/// and end are @p t when nothing is found.
AsyncSampleIterator createIterator(std::shared_ptr<AsyncSampleStream> stream, std::uint64_t t, SeekMode mode);

} // namespace daq
