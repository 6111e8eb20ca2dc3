#include <uni_units/converter.h>

#include <uni_units/unit_table.h>

#include <cmath>

namespace units::simple {

struct Converter::State : UnitTable
{
    State() { addStandardUnits(); }
};

namespace {

bool isDecimal(const FullUnitInfo& unit)
{
    return unit.kind == KIND_BASE || unit.kind == KIND_DECIMAL;
}

std::int32_t decimalExponent(const FullUnitInfo& unit)
{
    return unit.kind == KIND_BASE ? 0 : unit.exponent;
}

double powerOfTen(std::int32_t exponent)
{
    return std::pow(10.0, exponent);
}

} // namespace

Converter::Converter() : m_table(&state()) {}

const FullUnitInfo* Converter::find(std::string_view unit) const
{
    return m_table->find(unit);
}

bool Converter::convert(double value, const std::string& fromUnit, double* result,
                        const std::string& toUnit) const
{
    const FullUnitInfo* from = m_table->find(fromUnit);
    const FullUnitInfo* to = m_table->find(toUnit);
    if (!from || !to || !result)
        return false;

    if (isDecimal(*from) && isDecimal(*to)) {
        const std::int32_t e1 = decimalExponent(*from);
        const std::int32_t e2 = decimalExponent(*to);
        if (e1 == e2)
            *result = value;
        else if (e2 > e1)
            *result = value / powerOfTen(e2 - e1);
        else
            *result = value * powerOfTen(e1 - e2);
        return true;
    }

    double base = 0.0;
    switch (from->kind) {
    case KIND_BASE:
        base = value;
        break;
    case KIND_DECIMAL:
        base = value * powerOfTen(from->exponent);
        break;
    case KIND_SCALED:
        base = value / from->scale;
        break;
    case KIND_SCALED_OFFSET:
        base = (value - from->offset) / from->scale;
        break;
    default:
        return false;
    }
    switch (to->kind) {
    case KIND_BASE:
        *result = base;
        return true;
    case KIND_DECIMAL:
        *result = base / powerOfTen(to->exponent);
        return true;
    case KIND_SCALED:
        *result = base * to->scale;
        return true;
    case KIND_SCALED_OFFSET:
        *result = base * to->scale + to->offset;
        return true;
    default:
        return false;
    }
}

} // namespace units::simple
