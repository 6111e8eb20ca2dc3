#include <daq/async_sample_layout.h>

namespace daq {

AsyncSampleLayout AsyncSampleLayout::fixedSize(std::uint32_t timestamp_size, std::uint32_t value_size)
{
    AsyncSampleLayout layout;
    layout.m_timestamp_field = {0, timestamp_size};
    layout.m_fixed_sample_size = value_size;
    layout.m_value_offset = timestamp_size;
    layout.m_sample_header_size = timestamp_size + value_size;
    return layout;
}

AsyncSampleLayout AsyncSampleLayout::variableSize(std::uint32_t timestamp_size, std::uint32_t size_field_size)
{
    AsyncSampleLayout layout;
    layout.m_timestamp_field = {0, timestamp_size};
    layout.m_sample_size_field = {timestamp_size, size_field_size};
    layout.m_value_offset = timestamp_size + size_field_size;
    layout.m_sample_header_size = timestamp_size + size_field_size;
    return layout;
}

std::uint64_t AsyncSampleLayout::timestampMask() const
{
    if (m_timestamp_field.m_size >= 8)
        return ~std::uint64_t{0};
    return (std::uint64_t{1} << (8 * m_timestamp_field.m_size)) - 1;
}

bool AsyncSampleLayout::isValid() const
{
    const auto inside = [this](const FieldLocation& field) {
        return std::uint64_t{field.m_offset} + field.m_size <= m_sample_header_size;
    };
    if (m_timestamp_field.m_size < 1 || m_timestamp_field.m_size > 8 || !inside(m_timestamp_field))
        return false;
    // Size fields above 4 bytes are accepted here and reported on every read.
    if (m_sample_size_field.m_size > 8 || (m_sample_size_field.m_size != 0 && !inside(m_sample_size_field)))
        return false;
    if (m_sample_header_size == 0)
        return false;
    if (m_sample_size_field.m_size == 0)
        return std::uint64_t{m_value_offset} + m_fixed_sample_size <= m_sample_header_size;
    return m_value_offset <= m_sample_header_size;
}

} // namespace daq
