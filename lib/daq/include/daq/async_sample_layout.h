#pragma once

#include <cstdint>

namespace daq {

/// Where a sample holds one of its fields: byte offset from the sample's start and size in bytes.
struct FieldLocation
{
    std::uint32_t m_offset = 0;
    std::uint32_t m_size = 0;
};

/// How one sample of an asynchronous stream looks inside a block. Fields are
/// little-endian. A fixed-size sample is m_sample_header_size bytes long and holds
/// its value of m_fixed_sample_size bytes at m_value_offset; a variable-size sample
/// is m_sample_header_size bytes followed by a value whose length the size field holds.
struct AsyncSampleLayout
{
    FieldLocation m_timestamp_field;   ///< 1 to 8 bytes
    FieldLocation m_sample_size_field; ///< 0 to 4 bytes; 0 means fixed-size samples
    std::uint32_t m_fixed_sample_size = 0;
    std::uint32_t m_value_offset = 0;
    std::uint32_t m_sample_header_size = 0;

    /// Timestamp of @p timestamp_size bytes at offset 0, then the value of @p value_size bytes.
    static AsyncSampleLayout fixedSize(std::uint32_t timestamp_size, std::uint32_t value_size);
    /// Timestamp of @p timestamp_size bytes at offset 0, then a size field of
    /// @p size_field_size bytes, then the value.
    static AsyncSampleLayout variableSize(std::uint32_t timestamp_size, std::uint32_t size_field_size);

    bool hasFixedSize() const { return m_sample_size_field.m_size == 0; }
    /// The bits that the timestamp field can hold.
    std::uint64_t timestampMask() const;
    /// Fields inside the sample, a timestamp of 1 to 8 bytes and a non-empty stride,
    /// so that walking a block always advances.
    bool isValid() const;
};

} // namespace daq
