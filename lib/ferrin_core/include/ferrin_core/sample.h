#pragma once

#include <complex>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace daq {

using ByteVector = std::vector<std::uint8_t>;

/// One CAN frame as a sample value.
struct CanFrame
{
    static constexpr std::uint8_t FLAG_EXTENDED_ID = 0x01;
    static constexpr std::uint8_t FLAG_REMOTE_FRAME = 0x02;

    ByteVector payload;
    std::uint32_t id = 0;
    std::uint8_t flags = 0;

    bool isExtended() const { return (flags & FLAG_EXTENDED_ID) != 0; }
    bool isRemote() const { return (flags & FLAG_REMOTE_FRAME) != 0; }
    bool operator==(const CanFrame& other) const
    {
        return payload == other.payload && id == other.id && flags == other.flags;
    }
};

/// One FlexRay frame as a sample value.
struct FlexRayFrame
{
    ByteVector payload;
    std::uint8_t cycle = 0;
    std::uint16_t slot = 0;

    bool operator==(const FlexRayFrame& other) const
    {
        return payload == other.payload && cycle == other.cycle && slot == other.slot;
    }
};

/// The encoded bytes of one video frame; a type of its own so that it stays apart from
/// a generic byte vector in SampleData.
struct VideoFrame
{
    ByteVector bytes;
    bool operator==(const VideoFrame& other) const { return bytes == other.bytes; }
};

/// Type codes of a sample; each equals the index of its alternative in SampleData.
enum SampleType : std::uint32_t
{
    SAMPLE_TYPE_NONE = 0,
    SAMPLE_TYPE_DOUBLE = 1,
    SAMPLE_TYPE_VECTOR = 2,
    SAMPLE_TYPE_COMPLEX_VECTOR = 3,
    SAMPLE_TYPE_CAN = 4,
    SAMPLE_TYPE_VIDEO = 5,
    SAMPLE_TYPE_STRING = 6,
    SAMPLE_TYPE_FLEXRAY = 7,
    SAMPLE_TYPE_BYTE_VECTOR = 8
};

/// The value of a sample. Reading another alternative than the one held throws
/// std::bad_variant_access, as std::get does.
using SampleData = std::variant<std::monostate,                    // 0 none
                                double,                            // 1
                                std::vector<double>,               // 2
                                std::vector<std::complex<double>>, // 3
                                CanFrame,                          // 4
                                VideoFrame,                        // 5
                                std::string,                       // 6 UTF-8
                                FlexRayFrame,                      // 7
                                ByteVector>;                       // 8

/// One sample, owned by whoever asked for it.
struct Sample
{
    Sample() = default;
    Sample(std::uint64_t timestamp_, SampleData value_)
        : type(static_cast<std::uint32_t>(value_.index())), timestamp(timestamp_), value(std::move(value_))
    {}

    /// SampleType of the value; kept equal to value.index() by the constructors.
    std::uint32_t type = SAMPLE_TYPE_NONE;
    /// Tick on the channel's time base.
    std::uint64_t timestamp = 0;
    SampleData value;
};

using SamplePtr = std::unique_ptr<Sample>;

inline SamplePtr makeSample(std::uint64_t timestamp, SampleData value)
{
    return std::make_unique<Sample>(timestamp, std::move(value));
}

} // namespace daq
