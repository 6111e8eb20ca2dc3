#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>
#include <lum_utils/spreadsheet_text_buffer.h>

namespace lum_utils {

/// Character-separated text: a tab between cells and CR LF after each row by
/// default. Cells are written as they are, without quoting; an optional minimum
/// width pads cells with blanks (numbers right-aligned, text left-aligned).
class CSVBuilder : public IfSimpleSpreadsheetBuilder
{
public:
    CSVBuilder() = default;

    void startTable(const std::string& name, std::uint32_t columns, std::uint32_t rows) override;
    void setDimensions(std::uint32_t columns, std::uint32_t rows) override;
    void beginRow() override;
    void endRow() override;
    void addCell(const std::string& text) override;
    void addCell(double value) override;
    void addEmptyCell() override;
    void endTable() override;

    const char* data() const override { return m_text.data(); }
    std::size_t size() const override { return m_text.size(); }
    std::string toString() const override;

    void setColumnSeparator(const std::string& separator) { m_separator = separator; }
    void setLineEnd(const std::string& line_end) { m_line_end = line_end; }
    /// Minimum width of a cell, in UTF-8 code points.
    void setMinimumCellWidth(std::uint32_t width) { m_min_width = width; }
    /// Significant digits of numbers; 0 keeps printf's default of six.
    void setPrecision(std::uint32_t precision) { m_precision = precision; }

    const std::string& columnSeparator() const { return m_separator; }
    const std::string& lineEnd() const { return m_line_end; }
    std::uint32_t minimumCellWidth() const { return m_min_width; }
    std::uint32_t precision() const { return m_precision; }

private:
    /// Checks the column and writes the separator unless the cell is the row's first.
    void beginCell();

    SpreadsheetTextBuffer m_text;
    std::uint32_t m_cols = 0;
    std::uint32_t m_current_col = 0;
    bool m_dimensions_set = false;
    std::string m_separator = "\t";
    std::string m_line_end = "\r\n";
    std::uint32_t m_min_width = 0;
    std::uint32_t m_precision = 0;
};

} // namespace lum_utils
