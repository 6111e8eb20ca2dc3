#pragma once

#include <config_items/rational_scalar_config_item.h>
#include <config_items/value_list_config_item.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Readers of the text forms, shared by the parser. The list and rational readers
// throw as their callers expect; everything else answers with an empty optional.
namespace config_items::detail {

std::string_view trimmed(std::string_view text);

/// Surrounding white space allowed; a sign; "nan", "inf", "infinity" in any case.
/// Text ending in "e", "E", "+" or "-" is refused, as is a value out of range.
std::optional<double> readDouble(std::string_view text);
std::optional<int> readInt32(std::string_view text);
std::optional<unsigned int> readUInt32(std::string_view text);

/// The printed form: "\"a\", \"b\\\"c\"". Unquoted elements are taken up to the next
/// comma, trimmed. Empty text is an empty list. Throws ConfigItemException.
std::vector<std::string> readStringList(const std::string& text);
/// The printed form: "(1,2), (3,4)". Throws ConfigItemException.
std::vector<TupleValue<double, double>> readPointList(const std::string& text);

/// A whole number, a fraction "n/d" or a decimal "i.f", then an optional unit of
/// ASCII letters. Throws std::runtime_error when the text has none of these forms,
/// std::domain_error for a whole number or decimal unless @p allow_floating_point,
/// boost::bad_rational for a zero denominator or a value beyond 64 bits.
RationalScalarConfigItem readRationalScalar(const std::string& text, bool allow_floating_point);

/// Whether @p text has the fraction form "n/d" with an optional unit; a cheap test
/// that spares callers the exceptions of readRationalScalar for other texts.
bool hasFractionForm(const std::string& text);

} // namespace config_items::detail
