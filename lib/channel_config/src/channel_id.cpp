#include <channel_config/channel_id.h>

#include <charconv>
#include <ostream>

namespace channel_config {

std::string ChannelID::toString() const
{
    return std::to_string(toUInt64());
}

std::optional<ChannelID> ChannelID::fromString(std::string_view text)
{
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    // from_chars would take a second sign; only digits may follow ours.
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return std::nullopt;
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 10);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return ChannelID(negative ? 0 - value : value);
}

std::ostream& operator<<(std::ostream& out, ChannelID id)
{
    const std::ios_base::fmtflags flags = out.flags();
    out << std::dec << id.toUInt64();
    out.flags(flags);
    return out;
}

} // namespace channel_config
