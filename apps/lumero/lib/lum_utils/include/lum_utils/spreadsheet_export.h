#pragma once

#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/simple_spreadsheet_builder_dispatcher.h>
#include <lum_utils/spreadsheet_ml_builder.h>
#include <lum_utils/txt_builder.h>

class QClipboard;
class QMimeData;

namespace lum_utils {

/// The clipboard formats of one table, filled in a single pass: write the table
/// through builder(), then copyToClipboard.
class SpreadsheetExport
{
public:
    /// Numbers of the text format in the system locale.
    SpreadsheetExport();
    explicit SpreadsheetExport(const QLocale& text_locale);
    // The dispatcher points at the members.
    SpreadsheetExport(const SpreadsheetExport&) = delete;
    SpreadsheetExport& operator=(const SpreadsheetExport&) = delete;

    /// Passes every call on to XML Spreadsheet, CSV, text and DIF, in that order.
    IfSimpleSpreadsheetBuilder& builder() { return m_dispatcher; }

    const SpreadsheetMLBuilder& xml() const { return m_xml; }
    /// Mutable so that separator, width and precision can be set before writing.
    CSVBuilder& csv() { return m_csv; }
    const CSVBuilder& csv() const { return m_csv; }
    const TXTBuilder& txt() const { return m_txt; }
    const DIFBuilder& dif() const { return m_dif; }

    /// See fillSpreadsheetMimeData.
    void fillMimeData(QMimeData& mime) const;
    /// Fills a new QMimeData and hands it to @p clipboard, which takes it over.
    void copyToClipboard(QClipboard& clipboard) const;

private:
    void registerBuilders();

    SpreadsheetMLBuilder m_xml;
    CSVBuilder m_csv;
    TXTBuilder m_txt;
    DIFBuilder m_dif;
    SimpleSpreadsheetBuilderDispatcher m_dispatcher;
};

} // namespace lum_utils
