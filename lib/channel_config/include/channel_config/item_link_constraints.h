#pragma once

#include <channel_config/channel_id.h>
#include <config_items/if_config_item_constraint.h>

#include <map>
#include <string>
#include <vector>

namespace channel_config {

/// Per channel, the configuration keys of that channel an item is tied to.
using ChannelItemKeys = std::map<ChannelID, std::vector<std::string>>;

/// The keys, per channel, that an item is tied to; the subclass says how.
template <class Own>
class ItemLinksConstraint : public config_items::ConstraintBase<Own>
{
public:
    explicit ItemLinksConstraint(ChannelItemKeys items = {}) : m_items(std::move(items)) {}
    const ChannelItemKeys& getItems() const { return m_items; }
    const ChannelItemKeys& fields() const { return m_items; }

private:
    ChannelItemKeys m_items;
};

/// Items whose allowed values change when this item changes.
class DependentCfgItemConstraint : public ItemLinksConstraint<DependentCfgItemConstraint>
{
public:
    using ItemLinksConstraint::ItemLinksConstraint;
};

/// Items that always take the same value as this item.
class CoupledValueItemConstraint : public ItemLinksConstraint<CoupledValueItemConstraint>
{
public:
    using ItemLinksConstraint::ItemLinksConstraint;
};

} // namespace channel_config
