#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>
#include <lum_utils/spreadsheet_text_buffer.h>

namespace lum_utils {

/// Data Interchange Format: a header of four records, then one BOT record per row
/// and one record per cell, closed by EOD. Its data ends in a null byte that
/// size() counts.
class DIFBuilder : public IfSimpleSpreadsheetBuilder
{
public:
    DIFBuilder() = default;

    void startTable(const std::string& name, std::uint32_t columns, std::uint32_t rows) override;
    void setDimensions(std::uint32_t columns, std::uint32_t rows) override;
    void beginRow() override;
    void endRow() override;
    void addCell(const std::string& text) override;
    void addCell(double value) override;
    void addEmptyCell() override;
    void endTable() override;

    const char* data() const override { return m_text.data(); }
    std::size_t size() const override { return m_text.size() + 1; }
    std::string toString() const override;

private:
    SpreadsheetTextBuffer m_text;
};

} // namespace lum_utils
