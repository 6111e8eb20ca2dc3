#pragma once

#include <uni_units/full_unit_info.h>

#include <uni_base/singleton.h>

#include <string>
#include <string_view>

namespace units::simple {

class UnitTable;

/// Compares and converts values given in units of different scale ("5 mV", "2 V").
/// The unit table is built once, on first use, and shared; a Converter is only a
/// handle on it, cheap enough to make on the stack around each use, and usable
/// from any thread.
///
/// No dimensions are compared: "mV" to "kHz" is answered by the prefixes alone.
/// Callers convert only between units they know to be of one quantity.
class Converter : public uni::Singleton<Converter>
{
public:
    Converter();

    /// Converts @p value from @p fromUnit to @p toUnit into @p result.
    /// @return false, leaving @p result alone, when either unit is unknown (an empty
    ///         text included) or @p result is null; callers then keep the value as it is
    bool convert(double value, const std::string& fromUnit, double* result, const std::string& toUnit) const;

    /// The entry spelled exactly @p unit, or null. Valid for the program's lifetime.
    const FullUnitInfo* find(std::string_view unit) const;

private:
    friend class uni::Singleton<Converter>;
    struct State;

    const UnitTable* m_table;
};

} // namespace units::simple
