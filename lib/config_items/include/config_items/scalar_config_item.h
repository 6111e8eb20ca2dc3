#pragma once

#include <config_items/single_value_config_item.h>

#include <string>

namespace config_items {

/// A number with its unit, printed "1.5 mV".
class ScalarConfigItem : public SingleValueConfigItem<double>
{
public:
    ScalarConfigItem() = default;
    ScalarConfigItem(double value, std::string unit) : SingleValueConfigItem(value), m_unit(std::move(unit))
    {}

    const std::string& getUnit() const { return m_unit; }

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;
    virtual bool equals(const ScalarConfigItem& other) const;

private:
    std::string m_unit;
};

} // namespace config_items
