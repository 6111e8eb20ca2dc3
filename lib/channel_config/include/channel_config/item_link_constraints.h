#pragma once

#include <channel_config/channel_id.h>
#include <config_items/if_config_item_constraint.h>

#include <map>
#include <string>
#include <vector>

namespace channel_config {

/// Per channel, the configuration keys of that channel an item is tied to.
using ChannelItemKeys = std::map<ChannelID, std::vector<std::string>>;

/// Items whose allowed values change when this item changes.
class DependentCfgItemConstraint : public config_items::IfConfigItemConstraint
{
public:
    explicit DependentCfgItemConstraint(ChannelItemKeys items = {}) : m_items(std::move(items)) {}
    const ChannelItemKeys& getItems() const { return m_items; }
    const ChannelItemKeys& fields() const { return m_items; }

    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;

private:
    ChannelItemKeys m_items;
};

/// Items that always take the same value as this item.
class CoupledValueItemConstraint : public config_items::IfConfigItemConstraint
{
public:
    explicit CoupledValueItemConstraint(ChannelItemKeys items = {}) : m_items(std::move(items)) {}
    const ChannelItemKeys& getItems() const { return m_items; }
    const ChannelItemKeys& fields() const { return m_items; }

    bool equals(const config_items::IfConfigItemConstraint& other) const override;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;

private:
    ChannelItemKeys m_items;
};

} // namespace channel_config
