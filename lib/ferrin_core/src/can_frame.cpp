#include <ferrin_core/can_frame.h>

#include <uni_base/uni_assert.h>

namespace ferrin {

std::optional<daq::CanFrame> decodeCanFrame(const std::uint8_t* value, std::uint32_t value_size)
{
    if (!UNI_ASSERT_MSG(value_size >= CAN_FRAME_HEADER_SIZE, "%u >= %u", value_size, CAN_FRAME_HEADER_SIZE))
        return std::nullopt;
    if (!UNI_ASSERT(value != nullptr))
        return std::nullopt;
    daq::CanFrame frame;
    frame.id = static_cast<std::uint32_t>(value[0]) | static_cast<std::uint32_t>(value[1]) << 8 |
               static_cast<std::uint32_t>(value[2]) << 16 | static_cast<std::uint32_t>(value[3]) << 24;
    frame.flags = value[4];
    frame.payload.assign(value + CAN_FRAME_HEADER_SIZE, value + value_size);
    return frame;
}

daq::ByteVector encodeCanFrame(const daq::CanFrame& frame)
{
    daq::ByteVector bytes;
    bytes.reserve(CAN_FRAME_HEADER_SIZE + frame.payload.size());
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(frame.id >> shift));
    bytes.push_back(frame.flags);
    bytes.insert(bytes.end(), frame.payload.begin(), frame.payload.end());
    return bytes;
}

std::uint32_t J1939Id::pgn() const
{
    std::uint32_t pgn = static_cast<std::uint32_t>(extended_data_page) << 17 |
                        static_cast<std::uint32_t>(data_page) << 16 |
                        static_cast<std::uint32_t>(pdu_format) << 8;
    if (!isPdu1())
        pgn |= pdu_specific;
    return pgn;
}

std::optional<J1939Id> j1939View(std::uint32_t can_id, bool extended)
{
    if (!extended)
        return std::nullopt;
    J1939Id id;
    id.priority = static_cast<std::uint8_t>((can_id >> 26) & 0x7);
    id.extended_data_page = static_cast<std::uint8_t>((can_id >> 25) & 0x1);
    id.data_page = static_cast<std::uint8_t>((can_id >> 24) & 0x1);
    id.pdu_format = static_cast<std::uint8_t>(can_id >> 16);
    id.pdu_specific = static_cast<std::uint8_t>(can_id >> 8);
    id.source_address = static_cast<std::uint8_t>(can_id);
    return id;
}

} // namespace ferrin
