#pragma once

#include <config_items/if_config_item_constraint.h>

#include <cstdint>
#include <string>
#include <tuple>

namespace channel_config {

/// How many channels, of which type and dimension, a channel-list item may name.
class ChannelIdsConstraint : public config_items::ConstraintBase<ChannelIdsConstraint>
{
public:
    ChannelIdsConstraint(std::uint32_t max_count, std::uint32_t max_dimension, std::string channel_type)
        : m_max_count(max_count), m_max_dimension(max_dimension), m_channel_type(std::move(channel_type))
    {}

    std::uint32_t getMaxCount() const { return m_max_count; }
    std::uint32_t getMaxDimension() const { return m_max_dimension; }
    const std::string& getChannelType() const { return m_channel_type; }
    std::tuple<std::uint32_t, std::uint32_t, const std::string&> fields() const
    {
        return {m_max_count, m_max_dimension, m_channel_type};
    }

private:
    std::uint32_t m_max_count;
    std::uint32_t m_max_dimension;
    std::string m_channel_type;
};

} // namespace channel_config
