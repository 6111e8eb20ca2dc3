#pragma once

#include <config_items/if_config_item.h>

#include <string>

namespace config_items {

/// Stands for a value that could not be had, with the reason.
class InvalidConfigItem : public IfConfigItem
{
public:
    InvalidConfigItem() = default;
    explicit InvalidConfigItem(std::string message) : m_message(std::move(message)) {}

    const std::string& getMessage() const { return m_message; }

    /// The message, or "InvalidConfigItem" when there is none.
    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

private:
    std::string m_message;
};

} // namespace config_items
