#pragma once

#include <uni_units/full_unit_info.h>
#include <uni_units/ternary_search_tree.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace units::simple {

/// Every spelling of the known units as a ready-made entry, so that a lookup needs
/// no parsing of prefixes at run time.
class UnitTable
{
public:
    /// An empty table; addStandardUnits() fills in the units the converter knows.
    UnitTable() = default;

    /// The electrical and base units with all their SI-prefixed spellings.
    void addStandardUnits();

    /// Adds the spellings of @p info.names, unprefixed. Asserts that there are names.
    void addUnit(const FullUnitInfo& info);

    /// Adds every combination of a prefix spelling for each of @p exponents with each
    /// name of @p base. Spellings already present keep their first entry.
    /// @throws std::out_of_range "invalid map<K, T> key" for an exponent with no prefix
    /// @throws std::logic_error "not implemented" for a unit with an offset, and
    ///         "Unknown base unit" for a unit that is itself prefixed or of no known kind
    void addPrefixedForms(const FullUnitInfo& base, const std::vector<std::int32_t>& exponents);

    /// The entry spelled exactly @p text (case-sensitive), or null.
    const FullUnitInfo* find(std::string_view text) const;

    std::size_t size() const { return m_entries.size(); }

    /// Every decimal exponent that has a prefix, from the largest down.
    static std::vector<std::int32_t> prefixExponents();

    /// The spellings of the prefix for @p exponent, long form first.
    /// @throws std::out_of_range "invalid map<K, T> key" when there is none
    static const std::vector<std::string>& prefixSpellings(std::int32_t exponent);

private:
    void addSpelling(const std::string& spelling, const FullUnitInfo& info);

    std::vector<FullUnitInfo> m_entries;
    TernarySearchTree<std::uint32_t> m_tree;
};

} // namespace units::simple
