#pragma once

#include <config_items/if_config_item.h>

#include <cstdint>
#include <string>

namespace config_items {

/// Free text, with a hint of the length an editor should offer.
class StringConfigItem : public IfValueConfigItem
{
public:
    StringConfigItem() = default;
    explicit StringConfigItem(std::string value, std::uint32_t size_hint = 0)
        : m_value(std::move(value)), m_size_hint(size_hint)
    {}

    const std::string& getValue() const { return m_value; }
    std::uint32_t getSizeHint() const { return m_size_hint; }

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;
    virtual bool equals(const StringConfigItem& other) const;

private:
    std::string m_value;
    std::uint32_t m_size_hint = 0;
};

} // namespace config_items
