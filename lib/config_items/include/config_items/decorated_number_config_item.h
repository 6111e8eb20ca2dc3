#pragma once

#include <config_items/single_value_config_item.h>

#include <string>

namespace config_items {

/// A number with text glued before and after it, printed without blanks: "#12rpm".
class DecoratedNumberConfigItem : public SingleValueConfigItem<double>
{
public:
    DecoratedNumberConfigItem() = default;
    DecoratedNumberConfigItem(double value, std::string prefix, std::string postfix)
        : SingleValueConfigItem(value), m_prefix(std::move(prefix)), m_postfix(std::move(postfix))
    {}

    const std::string& getPrefix() const { return m_prefix; }
    const std::string& getPostfix() const { return m_postfix; }

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;
    virtual bool equals(const DecoratedNumberConfigItem& other) const;

private:
    std::string m_prefix;
    std::string m_postfix;
};

} // namespace config_items
