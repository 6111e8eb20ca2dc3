#pragma once

#include <ferrin_core/sample.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace ferrin {

/// Bytes before the payload of a CAN frame in a stream's value area: the id,
/// little-endian in four bytes, then the flag byte.
constexpr std::uint32_t CAN_FRAME_HEADER_SIZE = 5;

/// Reads a frame from its wire form. A value shorter than the header is a fault of the
/// writer; it is reported and gives no frame.
std::optional<daq::CanFrame> decodeCanFrame(const std::uint8_t* value, std::uint32_t value_size);

/// The wire form of @p frame, as a writer puts it into a stream.
daq::ByteVector encodeCanFrame(const daq::CanFrame& frame);

/// The fields of an extended CAN id as J1939 reads them.
struct J1939Id
{
    std::uint8_t priority = 0;           ///< bits 26..28
    std::uint8_t extended_data_page = 0; ///< bit 25
    std::uint8_t data_page = 0;          ///< bit 24
    std::uint8_t pdu_format = 0;         ///< bits 16..23
    std::uint8_t pdu_specific = 0;       ///< bits 8..15
    std::uint8_t source_address = 0;     ///< bits 0..7

    /// PDU1 (format below 240) addresses one node: its PDU specific field is the
    /// destination and no part of the parameter group number.
    bool isPdu1() const { return pdu_format < 240; }
    std::optional<std::uint8_t> destinationAddress() const
    {
        return isPdu1() ? std::optional<std::uint8_t>(pdu_specific) : std::nullopt;
    }
    /// Parameter group number, 18 bits.
    std::uint32_t pgn() const;
};

/// The J1939 view of an extended id; none for a standard id.
std::optional<J1939Id> j1939View(std::uint32_t can_id, bool extended);
inline std::optional<J1939Id> j1939View(const daq::CanFrame& frame)
{
    return j1939View(frame.id, frame.isExtended());
}

} // namespace ferrin
