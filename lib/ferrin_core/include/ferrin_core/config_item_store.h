#pragma once

#include <config_items/config_item_variant.h>
#include <config_items/if_config_item_constraint.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ferrin {

using ConfigItem = channel_config::ConfigItemVariant;
/// What a configuration key may hold and how it behaves; built by the host.
using ConstraintPtr = std::shared_ptr<config_items::IfConfigItemConstraint>;
using ConstraintList = std::vector<ConstraintPtr>;

class ConfigItemStore;

/// One stage of a channel's measurement chain (sensor, amplifier, scaling ...), with
/// configuration items of its own.
struct MeasurementChainElement
{
    std::string name;
    std::string uuid;
    std::string type;
    std::shared_ptr<ConfigItemStore> items;
};

/// The configuration of one channel: keys to items in the order they were added, the
/// constraints per key, and the measurement chain. It locks itself, so reads are safe
/// from any thread; it never calls out while locked.
class ConfigItemStore
{
public:
    /// A copy of the item under @p key, none when there is no such key.
    std::optional<ConfigItem> get(const std::string& key) const;
    bool has(const std::string& key) const;
    /// All keys, in the order in which they were first set.
    std::vector<std::string> keys() const;

    /// Sets the item, adding the key at the end when it is new.
    void set(const std::string& key, ConfigItem item);
    /// Sets the item of a key that exists; false for an unknown key.
    bool replace(const std::string& key, ConfigItem item);
    bool remove(const std::string& key);

    ConstraintList getConstraints(const std::string& key) const;
    void setConstraints(const std::string& key, ConstraintList constraints);

    std::vector<MeasurementChainElement> getMeasurementChain() const;
    void setMeasurementChain(std::vector<MeasurementChainElement> chain);

private:
    struct Entry
    {
        std::string key;
        ConfigItem item;
        ConstraintList constraints;
    };

    const Entry* find(const std::string& key) const;
    Entry* find(const std::string& key);

    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::size_t> m_index;
    std::vector<MeasurementChainElement> m_measurement_chain;
};

} // namespace ferrin
