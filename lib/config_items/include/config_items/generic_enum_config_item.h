#pragma once

#include <config_items/if_config_item.h>

#include <string>

namespace config_items {

/// A value of an enumeration known only by name, printed "type:value" (or the value
/// alone when there is no type).
class GenericEnumConfigItem : public IfConfigItem
{
public:
    GenericEnumConfigItem() = default;
    GenericEnumConfigItem(std::string enum_type, std::string value)
        : m_enum_type(std::move(enum_type)), m_value(std::move(value))
    {}

    const std::string& getEnumType() const { return m_enum_type; }
    const std::string& getValue() const { return m_value; }

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

private:
    std::string m_enum_type;
    std::string m_value;
};

} // namespace config_items
