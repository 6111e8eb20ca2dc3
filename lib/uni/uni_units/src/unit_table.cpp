#include <uni_units/unit_table.h>

#include <uni_base/uni_assert.h>

#include <cmath>
#include <map>
#include <stdexcept>

namespace units::simple {

namespace {

const std::map<std::int32_t, std::vector<std::string>>& prefixes()
{
    static const std::map<std::int32_t, std::vector<std::string>> s_prefixes = {
        {24, {"yotta", "Y"}},  {21, {"zetta", "Z"}},
        {18, {"exa", "E"}},    {15, {"peta", "P"}},
        {12, {"tera", "T"}},   {9, {"giga", "G"}},
        {6, {"mega", "M"}},    {3, {"kilo", "k"}},
        {2, {"hecto", "h"}},   {1, {"deca", "da"}},
        {-1, {"deci", "d"}},   {-2, {"centi", "c"}},
        {-3, {"milli", "m"}},  {-6, {"micro", "\u03bc", "\u00b5", "u"}},
        {-9, {"nano", "n"}},   {-12, {"pico", "p"}},
        {-15, {"femto", "f"}}, {-18, {"atto", "a"}},
        {-21, {"zepto", "z"}}, {-24, {"yocto", "y"}},
    };
    return s_prefixes;
}

FullUnitInfo baseUnit(std::vector<std::string> names, std::int32_t id)
{
    return FullUnitInfo{std::move(names), id, KIND_BASE, 0, 1.0, 0.0};
}

} // namespace

std::vector<std::int32_t> UnitTable::prefixExponents()
{
    std::vector<std::int32_t> exponents;
    for (auto it = prefixes().rbegin(); it != prefixes().rend(); ++it)
        exponents.push_back(it->first);
    return exponents;
}

const std::vector<std::string>& UnitTable::prefixSpellings(std::int32_t exponent)
{
    const auto& table = prefixes();
    const auto it = table.find(exponent);
    if (it == table.end())
        throw std::out_of_range("invalid map<K, T> key");
    return it->second;
}

void UnitTable::addStandardUnits()
{
    // Identifiers are stable across versions; 4 was retired.
    const std::vector<FullUnitInfo> units = {
        baseUnit({"m"}, 0),           baseUnit({"g"}, 1),
        baseUnit({"s"}, 2),           baseUnit({"A"}, 3),
        baseUnit({"Hz"}, 5),          baseUnit({"W"}, 6),
        baseUnit({"V"}, 7),           baseUnit({"\u03a9", "Ohm", "R", "\u2126"}, 8),
        baseUnit({"va"}, 9),          baseUnit({"VA"}, 10),
        baseUnit({"Ws", "J"}, 11),    baseUnit({"Ah"}, 12),
        baseUnit({"Bd", "Baud"}, 13), FullUnitInfo{{"Wh"}, 11, KIND_SCALED, 0, 0.0002777777777777778, 0.0},
    };
    const std::vector<std::int32_t> all = prefixExponents();
    for (const FullUnitInfo& unit : units) {
        addUnit(unit);
        addPrefixedForms(unit, all);
    }
    // Second passes over the multiples in daily use for lengths and times, so that
    // they stand even should the general pass above be narrowed.
    // Copies: adding may move the entries.
    const FullUnitInfo metre = *find("m");
    const FullUnitInfo second = *find("s");
    addPrefixedForms(metre, {-2, -1, -3, -6, -9, 3});
    addPrefixedForms(second, {-3, -6, -9, -12, -15});
}

void UnitTable::addUnit(const FullUnitInfo& info)
{
    if (!UNI_ASSERT(!info.names.empty()))
        return;
    for (const std::string& name : info.names)
        addSpelling(name, info);
}

void UnitTable::addPrefixedForms(const FullUnitInfo& base, const std::vector<std::int32_t>& exponents)
{
    for (const std::int32_t exponent : exponents) {
        FullUnitInfo prefixed = base;
        switch (base.kind) {
        case KIND_BASE:
            prefixed.kind = KIND_DECIMAL;
            prefixed.exponent = exponent;
            break;
        case KIND_SCALED: {
            // base = value / scale; a prefix 10^e multiplies the value, so it divides the scale.
            const double factor = std::pow(10.0, exponent < 0 ? -exponent : exponent);
            if (exponent < 0) {
                prefixed.scale *= factor;
                prefixed.offset *= factor;
            } else {
                prefixed.scale /= factor;
                prefixed.offset /= factor;
            }
            break;
        }
        case KIND_SCALED_OFFSET:
            throw std::logic_error("not implemented");
        default:
            throw std::logic_error("Unknown base unit");
        }
        for (const std::string& prefix : prefixSpellings(exponent))
            for (const std::string& name : base.names)
                addSpelling(prefix + name, prefixed);
    }
}

const FullUnitInfo* UnitTable::find(std::string_view text) const
{
    const std::uint32_t* index = m_tree.find(text);
    return index ? &m_entries[*index] : nullptr;
}

void UnitTable::addSpelling(const std::string& spelling, const FullUnitInfo& info)
{
    if (m_tree.insert(spelling, static_cast<std::uint32_t>(m_entries.size())))
        m_entries.push_back(info);
}

} // namespace units::simple
