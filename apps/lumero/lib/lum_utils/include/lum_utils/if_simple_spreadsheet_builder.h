#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace lum_utils {

/// Writes one table, cell by cell, into a text format that a spreadsheet reads.
/// Call order: startTable (or setDimensions), then for each row beginRow, its
/// cells and endRow, then endTable; the text is ready afterwards.
class IfSimpleSpreadsheetBuilder
{
public:
    virtual void startTable(const std::string& name, std::uint32_t columns, std::uint32_t rows) = 0;
    virtual void setDimensions(std::uint32_t columns, std::uint32_t rows) = 0;
    virtual void beginRow() = 0;
    virtual void endRow() = 0;
    virtual void addCell(const std::string& text) = 0;
    virtual void addCell(double value) = 0;
    virtual void addEmptyCell() = 0;
    /// Adds @p count empty cells through addEmptyCell.
    virtual void addEmptyCells(std::size_t count);
    virtual void endTable() = 0;

    /// The text written so far, null-terminated; null when the builder holds none.
    virtual const char* data() const = 0;
    /// Bytes of data() that belong to the output.
    virtual std::size_t size() const = 0;
    /// The first size() bytes of data().
    virtual std::string toString() const = 0;

    virtual ~IfSimpleSpreadsheetBuilder();
};

} // namespace lum_utils
