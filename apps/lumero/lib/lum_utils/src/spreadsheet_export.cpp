#include <lum_utils/spreadsheet_export.h>
#include <lum_utils/spreadsheet_mime_data.h>

#include <QByteArray>
#include <QClipboard>
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

SpreadsheetExport::SpreadsheetExport()
{
    registerBuilders();
}

SpreadsheetExport::SpreadsheetExport(const QLocale& text_locale) : m_txt(text_locale)
{
    registerBuilders();
}

void SpreadsheetExport::registerBuilders()
{
    m_dispatcher.addBuilder(&m_xml);
    m_dispatcher.addBuilder(&m_csv);
    m_dispatcher.addBuilder(&m_txt);
    m_dispatcher.addBuilder(&m_dif);
}

void SpreadsheetExport::fillMimeData(QMimeData& mime) const
{
    fillSpreadsheetMimeData(mime, m_txt, m_dif, m_xml, m_csv);
}

void SpreadsheetExport::copyToClipboard(QClipboard& clipboard) const
{
    auto* mime = new QMimeData;
    fillMimeData(*mime);
    clipboard.setMimeData(mime);
}

} // namespace lum_utils
