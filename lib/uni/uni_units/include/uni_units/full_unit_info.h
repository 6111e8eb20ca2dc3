#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace units::simple {

/// How a value in a unit relates to the value in its base unit.
enum ConversionKind : std::int32_t
{
    KIND_BASE = 0,          ///< the base unit itself
    KIND_DECIMAL = 1,       ///< a decimal multiple: base = value * 10^exponent
    KIND_SCALED = 2,        ///< base = value / scale
    KIND_SCALED_OFFSET = 3, ///< base = (value - offset) / scale
};

/// One spelling that can be looked up, with everything needed to convert from and to it.
struct FullUnitInfo
{
    std::vector<std::string> names; ///< names of the unit the spelling is formed from
    std::int32_t id = 0;            ///< identifier of the base unit
    std::int32_t kind = KIND_BASE;  ///< a ConversionKind
    std::int32_t exponent = 0;      ///< decimal exponent of the prefix (KIND_DECIMAL)
    double scale = 1.0;
    double offset = 0.0;
};

} // namespace units::simple
