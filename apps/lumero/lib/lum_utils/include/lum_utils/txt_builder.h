#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>
#include <lum_utils/spreadsheet_text_buffer.h>

#include <QLocale>

namespace lum_utils {

/// Plain text for the clipboard: cells separated by tabs, rows ended by CR LF,
/// numbers in the user's locale without group separators and with 17 significant
/// digits. Its data ends in a null byte that size() counts.
class TXTBuilder : public IfSimpleSpreadsheetBuilder
{
public:
    /// Numbers in the system locale.
    TXTBuilder();
    /// Numbers in @p locale (group separators are left out all the same).
    explicit TXTBuilder(const QLocale& locale);

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

    const QLocale& locale() const { return m_locale; }

private:
    void beginCell();

    SpreadsheetTextBuffer m_text;
    QLocale m_locale;
    bool m_row_has_cell = false;
};

} // namespace lum_utils
