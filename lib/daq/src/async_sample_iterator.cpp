#include <daq/async_sample_iterator.h>

#include <uni_base/uni_assert.h>

#include <algorithm>
#include <stdexcept>

namespace daq {

AsyncSampleIterator createIterator(std::shared_ptr<AsyncSampleStream> stream, std::uint64_t t, SeekMode mode)
{
    AsyncSampleIterator iterator(std::move(stream));
    if (!iterator.seek(t, mode)) {
        iterator.end();
        iterator.m_range_start = t;
        iterator.m_range_end = t;
    }
    return iterator;
}

const std::uint8_t* AsyncSampleIterator::GetValue() const
{
    if (!m_current_sample)
        throw std::out_of_range("daq.AsyncSampleIterator.GetValue - no valid block available");
    return m_stream->getValue(m_current_sample);
}

std::uint32_t AsyncSampleIterator::GetValueSize() const
{
    if (!m_current_sample)
        throw std::out_of_range("daq.AsyncSampleIterator.GetValueSize - no valid block available");
    return m_stream->getSampleSize(m_current_sample);
}

void AsyncSampleIterator::dropBlock()
{
    m_current_block.reset();
    m_sample_index.clear();
    m_current_sample = nullptr;
    m_current_index = NO_INDEX;
}

void AsyncSampleIterator::end()
{
    dropBlock();
    m_stream.reset();
    m_range_start = NO_TICK;
    m_range_end = NO_TICK;
}

void AsyncSampleIterator::indexCurrentBlock(std::uint32_t count)
{
    m_stream->extendIndex(*m_current_block, m_sample_index, count);
    // The range wants the last sample and a search starts in the middle and the quarters:
    // ask for those cache lines at once rather than one after the other.
    const std::size_t size = m_sample_index.size();
    if (size > 0) {
        __builtin_prefetch(m_sample_index[size - 1]);
        __builtin_prefetch(m_sample_index[size / 2]);
        __builtin_prefetch(m_sample_index[size / 4]);
        __builtin_prefetch(m_sample_index[size * 3 / 4]);
    }
    setRange(count);
}

void AsyncSampleIterator::setRange(std::uint32_t count)
{
    const SampleDataBlock& block = *m_current_block;
    m_range_start = block.m_first_timestamp;
    // A live block is never asked for its header count or span: the writer still owns them.
    const std::uint32_t visible = count != 0 ? count : block.m_sample_count;
    if (visible != 0 && m_sample_index.size() >= visible)
        m_range_end = m_stream->getTimestamp(m_sample_index.back());
    else
        m_range_end = block.lastTimestamp();
}

std::size_t AsyncSampleIterator::lowerBound(std::uint64_t t) const
{
    const AsyncSampleStream& stream = *m_stream;
    const auto it = std::lower_bound(m_sample_index.begin(), m_sample_index.end(), t,
                                     [&stream](const std::uint8_t* sample, std::uint64_t target) {
                                         return stream.getTimestamp(sample) < target;
                                     });
    return std::size_t(it - m_sample_index.begin());
}

bool AsyncSampleIterator::positionAt(std::size_t index)
{
    if (index >= m_sample_index.size()) {
        m_current_index = NO_INDEX;
        m_current_sample = nullptr;
        return false;
    }
    m_current_index = static_cast<std::uint32_t>(index);
    m_current_sample = m_sample_index[index];
    return true;
}

bool AsyncSampleIterator::seek(std::uint64_t t, SeekMode mode)
{
    if (!m_stream)
        return false;
    dropBlock();
    m_range_start = t;
    m_range_end = t;

    std::uint32_t count = 0;
    SampleDataBlockPtr block;
    switch (mode) {
    case SEEK_EXACT:
        block = m_stream->findBlockForSeek(t, count);
        break;
    case SEEK_BEFORE:
        if (t == 0)
            return false;
        block = m_stream->findBlockBefore(t - 1, count);
        break;
    case SEEK_AFTER:
        if (t == NO_TICK)
            return false;
        return seekForward(t + 1);
    case SEEK_AT_OR_BEFORE:
        block = m_stream->findBlockBefore(t, count);
        break;
    case SEEK_AT_OR_AFTER:
        return seekForward(t);
    default:
        UNI_ASSERT(false);
        return false;
    }
    if (!block)
        return false;

    m_current_block = std::move(block);
    indexCurrentBlock(count);
    const std::size_t size = m_sample_index.size();
    const std::size_t lower = lowerBound(t);
    const bool at_t = lower < size && m_stream->getTimestamp(m_sample_index[lower]) == t;
    std::size_t found = size; // none
    if (mode == SEEK_EXACT)
        found = at_t ? lower : size;
    else if (mode == SEEK_AT_OR_BEFORE && at_t)
        found = lower;
    else
        found = lower == 0 ? size : lower - 1; // the last entry when lower is the end
    return positionAt(found);
}

bool AsyncSampleIterator::seekForward(std::uint64_t t)
{
    std::pair<std::uint32_t, std::uint32_t> counts;
    auto [containing, following] = m_stream->findBlockPairAtOrAfter(t, counts);
    std::uint32_t count = counts.second;
    if (containing) {
        m_current_block = std::move(containing);
        indexCurrentBlock(counts.first);
        if (m_range_end >= t)
            count = counts.first;
        else
            m_current_block.reset();
    }
    if (!m_current_block) {
        m_sample_index.clear();
        m_current_block = std::move(following);
    }
    if (!m_current_block) {
        m_range_start = t;
        m_range_end = t;
        return false;
    }
    if (m_sample_index.empty())
        indexCurrentBlock(count);
    return positionAt(lowerBound(t));
}

bool AsyncSampleIterator::currentBlockGrew() const
{
    const std::uint32_t visible = m_stream->visibleSampleCount(*m_current_block);
    if (visible != 0)
        return visible > m_sample_index.size();
    // No longer live, so closed: its count is final and was written under the stream's lock.
    const SampleDataBlock& block = *m_current_block;
    return block.isCountFinal() && block.m_sample_count > m_sample_index.size();
}

bool AsyncSampleIterator::nextBlock()
{
    if (!m_stream)
        return false;
    if (!m_current_sample || !m_current_block || m_sample_index.empty()) {
        // Nothing to step from (a seek found no sample): there is no "next".
        end();
        return false;
    }
    // The block's last timestamp must not lie before the last sample indexed in it.
    const std::uint64_t last_sample_timestamp = m_range_end;
    const std::uint64_t old_last_sample_timestamp = m_stream->getTimestamp(m_sample_index.back());
    UNI_ASSERT(last_sample_timestamp >= old_last_sample_timestamp);
    const std::uint64_t old_last = m_range_end;

    // The writer may have published more samples of this block, or closed it, since
    // it was indexed: those samples come before any later block.
    const std::uint32_t visible = m_stream->visibleSampleCount(*m_current_block);
    if (visible == 0 || visible > m_sample_index.size()) {
        const std::uint32_t count = visible;
        if (m_stream->extendIndex(*m_current_block, m_sample_index, count) > 0) {
            setRange(count);
            return positionAt(std::size_t{m_current_index} + 1);
        }
    }

    std::uint32_t count = 0;
    SampleDataBlockPtr block =
        old_last == NO_TICK ? SampleDataBlockPtr() : m_stream->findNextBlock(old_last, count);
    // Between the two looks the writer may have published more of this block and closed it,
    // and started the next: the rest of this block comes first, or it would be skipped.
    if (block && currentBlockGrew())
        return nextBlock();
    m_sample_index.clear();
    if (block) {
        m_current_block = std::move(block);
        indexCurrentBlock(count);
        if (positionAt(lowerBound(old_last + 1)))
            return true;
    }
    end();
    return false;
}

} // namespace daq
