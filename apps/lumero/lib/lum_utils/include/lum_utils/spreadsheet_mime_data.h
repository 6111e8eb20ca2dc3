#pragma once

class QMimeData;

namespace lum_utils {

class CSVBuilder;
class DIFBuilder;
class SpreadsheetMLBuilder;
class TXTBuilder;

/// Puts a finished table into @p mime under the names spreadsheets look for on the
/// clipboard: the text output as plain text, DIF as "Data Interchange Format",
/// SpreadsheetML as "XML Spreadsheet", CSV as "application/x-qt-windows-mime;value=\"Csv\""
/// and as "Csv". Data already held under one of those names is kept and the new
/// output appended to it.
void fillSpreadsheetMimeData(QMimeData& mime, const TXTBuilder& txt, const DIFBuilder& dif,
                             const SpreadsheetMLBuilder& xml, const CSVBuilder& csv);

} // namespace lum_utils
