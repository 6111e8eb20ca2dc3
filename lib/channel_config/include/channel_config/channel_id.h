#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace channel_config {

/// System-wide identity of a channel: the node that owns it (high half) and the
/// channel's number on that node (low half). Printed and parsed as the combined
/// 64-bit number in decimal, never in hexadecimal.
class ChannelID
{
public:
    constexpr ChannelID() noexcept = default;
    constexpr ChannelID(std::uint32_t node_id, std::uint32_t local_id) noexcept
        : m_node_id(node_id), m_local_id(local_id)
    {}
    /// From the combined number: node id in the upper 32 bits, local id in the lower.
    constexpr explicit ChannelID(std::uint64_t value) noexcept
        : m_node_id(static_cast<std::uint32_t>(value >> 32)), m_local_id(static_cast<std::uint32_t>(value))
    {}

    constexpr std::uint32_t getNodeId() const noexcept { return m_node_id; }
    constexpr std::uint32_t getLocalId() const noexcept { return m_local_id; }
    constexpr std::uint64_t toUInt64() const noexcept
    {
        return (static_cast<std::uint64_t>(m_node_id) << 32) | m_local_id;
    }

    /// The combined number in decimal.
    std::string toString() const;

    /// Reads an optional sign and then decimal digits only, as an unsigned 64-bit
    /// number; a "-" negates it modulo 2^64. Empty text, any other character or a
    /// number above 2^64 - 1 gives nothing.
    static std::optional<ChannelID> fromString(std::string_view text);

    friend constexpr bool operator==(ChannelID a, ChannelID b) noexcept
    {
        return a.m_node_id == b.m_node_id && a.m_local_id == b.m_local_id;
    }
    friend constexpr bool operator!=(ChannelID a, ChannelID b) noexcept { return !(a == b); }
    friend constexpr bool operator<(ChannelID a, ChannelID b) noexcept { return a.toUInt64() < b.toUInt64(); }

private:
    std::uint32_t m_node_id = 0;
    std::uint32_t m_local_id = 0;
};

static_assert(sizeof(ChannelID) == 8);
static_assert(std::is_trivially_copyable_v<ChannelID>);

/// Writes the decimal text whatever base the stream is set to; the stream's flags are kept.
std::ostream& operator<<(std::ostream& out, ChannelID id);

} // namespace channel_config

template <>
struct std::hash<channel_config::ChannelID>
{
    std::size_t operator()(channel_config::ChannelID id) const noexcept
    {
        return std::hash<std::uint64_t>()(id.toUInt64());
    }
};
