#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>

#include <string>
#include <vector>

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

/// A cell to write: a text, a number or, without either, an empty cell.
struct Cell
{
    Cell() = default;
    Cell(const char* value) : text(value), kind(TEXT) {}
    Cell(double value) : number(value), kind(NUMBER) {}
    std::string text;
    double number = 0.0;
    enum Kind
    {
        EMPTY,
        TEXT,
        NUMBER
    } kind = EMPTY;
};

/// Writes one row of @p cells in a table sized for it and returns the builder's text.
inline std::string oneRow(lum_utils::IfSimpleSpreadsheetBuilder& builder, const std::vector<Cell>& cells)
{
    builder.startTable("t", static_cast<std::uint32_t>(cells.size()), cells.empty() ? 0 : 1);
    if (cells.empty()) {
        builder.endTable();
        return builder.toString();
    }
    builder.beginRow();
    for (const Cell& cell : cells) {
        if (cell.kind == Cell::TEXT)
            builder.addCell(cell.text);
        else if (cell.kind == Cell::NUMBER)
            builder.addCell(cell.number);
        else
            builder.addEmptyCell();
    }
    builder.endRow();
    builder.endTable();
    return builder.toString();
}

} // namespace lum_utils_test
