#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>
#include <lum_utils/spreadsheet_text_buffer.h>

namespace lum_utils {

/// XML Spreadsheet 2003 (SpreadsheetML): one workbook with one worksheet. Rows
/// shorter than the column count are padded with empty cells; a NaN becomes an
/// empty cell.
class SpreadsheetMLBuilder : public IfSimpleSpreadsheetBuilder
{
public:
    SpreadsheetMLBuilder() = default;

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

private:
    /// Checks row and column before a cell is written.
    void checkCell() const;
    /// Moves to the next column after a cell is written.
    void nextColumn();
    void appendEscaped(const std::string& text);

    SpreadsheetTextBuffer m_text;
    std::uint32_t m_cols = 0;
    std::uint32_t m_rows = 0;
    // Signed so that -1 can mark "outside a row" / "before the first row".
    std::int64_t m_current_col = -1;
    std::int64_t m_current_row = -1;
};

} // namespace lum_utils
