#include <daq/async_sample_stream.h>

#include <uni_base/uni_assert.h>

#include <mutex>

namespace daq {

AsyncSampleStream::AsyncSampleStream(const AsyncSampleLayout& layout, std::shared_ptr<BlockProvider> provider)
    : m_timestamp_field(layout.m_timestamp_field), m_sample_size_field(layout.m_sample_size_field),
      m_fixed_sample_size(layout.m_fixed_sample_size), m_value_offset(layout.m_value_offset),
      m_sample_header_size(layout.m_sample_header_size), m_timestamp_mask(layout.timestampMask()),
      m_usable(UNI_ASSERT(layout.isValid())), m_block_provider(std::move(provider))
{}

AsyncSampleLayout AsyncSampleStream::layout() const
{
    AsyncSampleLayout layout;
    layout.m_timestamp_field = m_timestamp_field;
    layout.m_sample_size_field = m_sample_size_field;
    layout.m_fixed_sample_size = m_fixed_sample_size;
    layout.m_value_offset = m_value_offset;
    layout.m_sample_header_size = m_sample_header_size;
    return layout;
}

std::uint32_t AsyncSampleStream::getSampleSize(const std::uint8_t* sample) const noexcept
{
    if (m_sample_size_field.m_size == 0)
        return m_fixed_sample_size;
    const std::uint8_t* field = sample + m_sample_size_field.m_offset;
    std::uint32_t value = 0;
    if (m_sample_size_field.m_size == sizeof(value)) {
        std::memcpy(&value, field, sizeof(value));
    } else if (m_sample_size_field.m_size < sizeof(value)) {
        std::memcpy(&value, field, m_sample_size_field.m_size);
    } else {
        UNI_ASSERT(m_sample_size_field.m_size < sizeof(std::uint32_t));
        std::memcpy(&value, field, sizeof(value)); // the low four bytes, and go on
    }
    return value;
}

const std::uint8_t* AsyncSampleStream::nextSample(const SampleDataBlock& block, const std::uint8_t* previous,
                                                  const std::uint8_t** value_out,
                                                  bool open_ended) const noexcept
{
    const std::uint8_t* result = nullptr;
    if (!previous) {
        result = block.m_data;
    } else {
        if (open_ended) {
            const std::uint64_t last = (block.m_first_timestamp + block.m_time_span - 1) & m_timestamp_mask;
            if (getTimestamp(previous) >= last)
                return nullptr;
        }
        result = previous + m_sample_header_size;
        if (m_sample_size_field.m_size != 0)
            result += getSampleSize(previous);
    }
    if (open_ended) {
        // An open block ends where its data ends; a sample cut off there is not one.
        const std::uint8_t* data_end = block.m_data + block.m_data_length;
        if (result >= data_end || std::size_t(data_end - result) < m_sample_header_size)
            return nullptr;
        if (m_sample_size_field.m_size != 0 &&
            std::size_t(data_end - result) - m_sample_header_size < getSampleSize(result))
            return nullptr;
    }
    if (value_out)
        *value_out = result + m_value_offset;
    return result;
}

std::uint32_t AsyncSampleStream::extendIndex(const SampleDataBlock& block, SampleIndex& index,
                                             std::uint32_t max_samples) const
{
    const std::size_t nr_entries_before = index.size();
    // clang-format off
    if (max_samples != 0 && !UNI_ASSERT(nr_entries_before<=max_samples))
        return 0;
    // clang-format on

    bool open_ended = false;
    std::size_t wanted = 0;
    std::size_t reserve = 0;
    if (max_samples == 0) {
        if (!block.isCountFinal()) {
            open_ended = true;
            wanted = block.m_sample_count - nr_entries_before;
            // Bounded by what the data can hold, not by the open count.
            reserve = block.m_data_length / m_sample_header_size + 1;
        } else {
            wanted = block.m_sample_count > nr_entries_before ? block.m_sample_count - nr_entries_before : 0;
            reserve = wanted;
        }
    } else {
        wanted = max_samples - nr_entries_before;
        reserve = wanted;
    }
    if (wanted == 0)
        return 0;
    index.reserve(nr_entries_before + reserve);

    if (!open_ended && m_sample_size_field.m_size == 0) {
        // Fixed stride and a count to go by: no field needs to be read.
        const std::uint8_t* sample = nr_entries_before ? index.back() + m_sample_header_size : block.m_data;
        index.resize(nr_entries_before + wanted);
        for (std::size_t i = nr_entries_before; i < index.size(); ++i, sample += m_sample_header_size)
            index[i] = sample;
    } else {
        const std::uint8_t* sample = nr_entries_before ? index.back() : nullptr;
        for (std::size_t added = 0; added < wanted; ++added) {
            sample = nextSample(block, sample, nullptr, open_ended);
            if (!sample)
                break;
            index.push_back(sample);
        }
    }
    UNI_ASSERT(max_samples == 0 || index.size() == max_samples);
    return static_cast<std::uint32_t>(index.size() - nr_entries_before);
}

SampleDataBlockPtr AsyncSampleStream::findContainingLocked(std::uint64_t t, std::uint32_t& count_out) const
{
    count_out = 0;
    if (!m_usable)
        return {};
    if (hasLiveSamples() && m_live_block->m_first_timestamp <= t && t <= m_live_last_timestamp) {
        count_out = m_live_sample_count;
        return m_live_block;
    }
    if (m_block_provider)
        return m_block_provider->findBlockContaining(t);
    const SampleDataBlockPtr* last = lastClosedAtOrBefore(t);
    if (last && t - (*last)->m_first_timestamp < (*last)->m_time_span)
        return *last;
    return {};
}

const SampleDataBlockPtr* AsyncSampleStream::lastClosedAtOrBefore(std::uint64_t t) const
{
    auto it = m_blocks.upper_bound(t);
    return it == m_blocks.begin() ? nullptr : &std::prev(it)->second;
}

SampleDataBlockPtr AsyncSampleStream::findNextLocked(std::uint64_t t, std::uint32_t& count_out) const
{
    count_out = 0;
    if (!m_usable)
        return {};
    SampleDataBlockPtr found;
    if (m_block_provider) {
        found = m_block_provider->findFirstBlockAfter(t);
    } else {
        auto it = m_blocks.upper_bound(t);
        if (it != m_blocks.end())
            found = it->second;
    }
    if (!found && hasLiveSamples() && m_live_block->m_first_timestamp > t) {
        count_out = m_live_sample_count;
        found = m_live_block;
    }
    return found;
}

SampleDataBlockPtr AsyncSampleStream::findBlockForSeek(std::uint64_t t, std::uint32_t& count_out) const
{
    std::unique_lock<std::shared_mutex> lock(m_lock);
    return findContainingLocked(t, count_out);
}

SampleDataBlockPtr AsyncSampleStream::findBlockBefore(std::uint64_t t, std::uint32_t& count_out) const
{
    std::unique_lock<std::shared_mutex> lock(m_lock);
    count_out = 0;
    if (!m_usable)
        return {};
    if (hasLiveSamples() && m_live_block->m_first_timestamp <= t) {
        count_out = m_live_sample_count;
        return m_live_block;
    }
    if (m_block_provider)
        return m_block_provider->findLastBlockAtOrBefore(t);
    const SampleDataBlockPtr* last = lastClosedAtOrBefore(t);
    return last ? *last : SampleDataBlockPtr();
}

SampleDataBlockPtr AsyncSampleStream::findNextBlock(std::uint64_t t, std::uint32_t& count_out) const
{
    std::unique_lock<std::shared_mutex> lock(m_lock);
    return findNextLocked(t, count_out);
}

std::pair<SampleDataBlockPtr, SampleDataBlockPtr>
AsyncSampleStream::findBlockPairAtOrAfter(std::uint64_t t,
                                          std::pair<std::uint32_t, std::uint32_t>& count_out) const
{
    std::unique_lock<std::shared_mutex> lock(m_lock);
    std::pair<SampleDataBlockPtr, SampleDataBlockPtr> found;
    found.first = findContainingLocked(t, count_out.first);
    count_out.second = 0;
    if (!found.first || found.first != m_live_block)
        found.second = findNextLocked(t, count_out.second);
    return found;
}

std::uint32_t AsyncSampleStream::visibleSampleCount(const SampleDataBlock& block) const
{
    std::unique_lock<std::shared_mutex> lock(m_lock);
    return &block == m_live_block.get() ? m_live_sample_count : 0;
}

std::size_t AsyncSampleStream::closedBlockCount() const
{
    std::shared_lock<std::shared_mutex> lock(m_lock);
    return m_blocks.size();
}

} // namespace daq
