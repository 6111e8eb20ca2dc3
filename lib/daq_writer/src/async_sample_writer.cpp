#include <daq_writer/async_sample_writer.h>

#include <uni_base/uni_assert.h>

#include <cstring>
#include <mutex>

namespace daq {

AsyncSampleWriter::AsyncSampleWriter(std::shared_ptr<AsyncSampleStream> stream, std::uint32_t block_capacity)
    : m_stream(std::move(stream)), m_block_capacity(block_capacity)
{
    if (!UNI_ASSERT(m_stream))
        return;
    m_layout = m_stream->layout();
    const std::uint32_t stamp_at = m_layout.m_timestamp_field.m_offset;
    m_plain_sample =
        m_layout.hasFixedSize() && m_layout.m_timestamp_field.m_size == 8 &&
        m_layout.m_fixed_sample_size == 8 && m_layout.m_sample_header_size == 16 &&
        ((stamp_at == 0 && m_layout.m_value_offset == 8) || (stamp_at == 8 && m_layout.m_value_offset == 0));
    // Go on after whatever the stream already holds.
    std::unique_lock<std::shared_mutex> lock(m_stream->m_lock);
    UNI_ASSERT_MSG(!m_stream->m_live_block, "the stream already has a writer");
    if (!m_stream->m_blocks.empty()) {
        const SampleDataBlock& last = *m_stream->m_blocks.rbegin()->second;
        m_last_timestamp = last.lastTimestamp();
        m_has_last = true;
    }
}

AsyncSampleWriter::~AsyncSampleWriter()
{
    finish();
}

bool AsyncSampleWriter::appendValue(std::uint64_t timestamp, const void* value, std::uint32_t value_size)
{
    if (!UNI_ASSERT(m_stream && m_stream->isUsable()))
        return false;
    if (!UNI_ASSERT_MSG(timestamp <= m_stream->timestampMask(),
                        "timestamp %llu does not fit the timestamp field",
                        static_cast<unsigned long long>(timestamp)))
        return false;
    if (!UNI_ASSERT_MSG(!m_has_last || timestamp >= m_last_timestamp, "timestamp %llu goes back before %llu",
                        static_cast<unsigned long long>(timestamp),
                        static_cast<unsigned long long>(m_last_timestamp)))
        return false;
    if (!UNI_ASSERT(value || value_size == 0))
        return false;

    std::uint64_t sample_size = m_layout.m_sample_header_size;
    if (m_layout.hasFixedSize()) {
        if (!UNI_ASSERT_MSG(value_size == m_layout.m_fixed_sample_size,
                            "value of %u bytes, the stream's are %u", value_size,
                            m_layout.m_fixed_sample_size))
            return false;
    } else {
        const std::uint32_t field_size = m_layout.m_sample_size_field.m_size;
        const std::uint64_t largest =
            field_size >= 4 ? 0xFFFFFFFFu : (std::uint64_t{1} << (8 * field_size)) - 1;
        if (!UNI_ASSERT_MSG(value_size <= largest, "value of %u bytes does not fit the size field",
                            value_size))
            return false;
        sample_size += value_size;
    }
    if (!UNI_ASSERT_MSG(sample_size <= 0xFFFFF000u - SampleDataBlock::HEADER_SIZE, "sample of %llu bytes",
                        static_cast<unsigned long long>(sample_size)))
        return false;

    const bool fits = m_block && m_block_length + sample_size <= m_block->m_payload_capacity;
    if (!fits) {
        // A new block must start after everything before it.
        if (!UNI_ASSERT_MSG(!m_has_last || timestamp != m_last_timestamp,
                            "samples with timestamp %llu do not fit into one block",
                            static_cast<unsigned long long>(timestamp)))
            return false;
        closeBlock();
        startBlock(static_cast<std::uint32_t>(sample_size), timestamp);
    }

    writeSample(m_block->m_data + m_block_length, timestamp, value, value_size);
    m_block_length += static_cast<std::uint32_t>(sample_size);
    ++m_block_count;
    m_last_timestamp = timestamp;
    m_has_last = true;
    ++m_appended;
    return true;
}

void AsyncSampleWriter::writeSample(std::uint8_t* sample, std::uint64_t timestamp, const void* value,
                                    std::uint32_t value_size)
{
    if (m_plain_sample) {
        // Nothing to pad: two fixed-size copies instead of three library calls.
        std::memcpy(sample + m_layout.m_timestamp_field.m_offset, &timestamp, 8);
        std::memcpy(sample + m_layout.m_value_offset, value, 8);
        return;
    }
    std::memset(sample, 0, m_layout.m_sample_header_size);
    std::memcpy(sample + m_layout.m_timestamp_field.m_offset, &timestamp, m_layout.m_timestamp_field.m_size);
    if (!m_layout.hasFixedSize()) {
        const std::uint32_t field_size = m_layout.m_sample_size_field.m_size;
        std::memcpy(sample + m_layout.m_sample_size_field.m_offset, &value_size,
                    field_size < 4 ? field_size : 4);
    }
    if (value_size != 0)
        std::memcpy(sample + m_layout.m_value_offset, value, value_size);
}

void AsyncSampleWriter::startBlock(std::uint32_t min_capacity, std::uint64_t first_timestamp)
{
    const std::uint32_t capacity =
        min_capacity <= m_block_capacity ? m_block_capacity : DataBlockPool::pageClassCapacity(min_capacity);
    m_block = DataBlockPool::instance()->acquire(capacity);
    // Set before any reader can see the block; constant while it is live.
    m_block->m_first_timestamp = first_timestamp;
    m_block->m_sample_count = SampleDataBlock::OPEN_COUNT;
    m_block_count = 0;
    m_block_length = 0;
    m_published_count = 0;
}

void AsyncSampleWriter::publish()
{
    if (!m_block || m_block_count == m_published_count)
        return;
    std::unique_lock<std::shared_mutex> lock(m_stream->m_lock);
    m_stream->m_live_block = m_block;
    m_stream->m_live_sample_count = m_block_count;
    m_stream->m_live_last_timestamp = m_last_timestamp;
    m_published_count = m_block_count;
}

void AsyncSampleWriter::closeBlock()
{
    if (!m_block)
        return;
    {
        std::unique_lock<std::shared_mutex> lock(m_stream->m_lock);
        m_block->m_sample_count = m_block_count;
        m_block->m_time_span = m_last_timestamp - m_block->m_first_timestamp + 1;
        m_block->m_data_length = m_block_length;
        const bool inserted = m_stream->m_blocks.emplace(m_block->m_first_timestamp, m_block).second;
        UNI_ASSERT_MSG(inserted, "two blocks start at %llu",
                       static_cast<unsigned long long>(m_block->m_first_timestamp));
        if (m_stream->m_live_block == m_block) {
            m_stream->m_live_block.reset();
            m_stream->m_live_sample_count = 0;
            m_stream->m_live_last_timestamp = 0;
        }
    }
    m_closed_samples += m_block_count;
    m_block.reset();
    m_block_count = 0;
    m_block_length = 0;
    m_published_count = 0;
}

void AsyncSampleWriter::finish()
{
    if (m_stream)
        closeBlock();
}

} // namespace daq
