#include <lum_utils/spreadsheet_mime_data.h>

#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/spreadsheet_ml_builder.h>
#include <lum_utils/txt_builder.h>

#include <QByteArray>
#include <QMimeData>
#include <QString>

namespace lum_utils {

namespace {

void appendFormat(QMimeData& mime, const QString& name, const IfSimpleSpreadsheetBuilder& builder)
{
    QByteArray bytes = mime.data(name);
    bytes.append(builder.data(), static_cast<int>(builder.size()));
    mime.setData(name, bytes);
}

} // namespace

void fillSpreadsheetMimeData(QMimeData& mime, const TXTBuilder& txt, const DIFBuilder& dif,
                             const SpreadsheetMLBuilder& xml, const CSVBuilder& csv)
{
    // The text ends at its null; QString needs no terminator.
    mime.setText(QString::fromUtf8(txt.data()));
    appendFormat(mime, QStringLiteral("Data Interchange Format"), dif);
    appendFormat(mime, QStringLiteral("XML Spreadsheet"), xml);
    appendFormat(mime, QStringLiteral("application/x-qt-windows-mime;value=\"Csv\""), csv);
    appendFormat(mime, QStringLiteral("Csv"), csv);
}

} // namespace lum_utils
