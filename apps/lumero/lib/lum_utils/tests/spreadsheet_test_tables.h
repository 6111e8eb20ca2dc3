#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>

#include <string>

namespace lum_utils_test {

/// Two rows of three columns: text, numbers and an empty cell.
inline void writeSmallTable(lum_utils::IfSimpleSpreadsheetBuilder& builder)
{
    builder.startTable("Sheet", 3, 2);
    builder.beginRow();
    builder.addCell("name");
    builder.addCell(1.5);
    builder.addEmptyCell();
    builder.endRow();
    builder.beginRow();
    builder.addCell("x");
    builder.addCell(-2.0);
    builder.addCell(1e20);
    builder.endRow();
    builder.endTable();
}

/// One row of @p cells numbers after a startTable sized for it.
template <typename Builder>
std::string oneRowOfNumbers(std::initializer_list<double> cells)
{
    Builder builder;
    builder.startTable("t", static_cast<std::uint32_t>(cells.size()), 1);
    builder.beginRow();
    for (const double value : cells)
        builder.addCell(value);
    builder.endRow();
    builder.endTable();
    return builder.toString();
}

} // namespace lum_utils_test
