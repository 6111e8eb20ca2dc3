#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/if_simple_spreadsheet_builder.h>
#include <lum_utils/simple_spreadsheet_builder_dispatcher.h>
#include <lum_utils/spreadsheet_ml_builder.h>
#include <lum_utils/txt_builder.h>

#include <uni_base/uni_assert.h>

#include <QByteArray>
#include <QString>

#include <climits>
#include <cmath>

namespace lum_utils {

namespace {

int formatWidth(std::uint32_t value)
{
    return value > static_cast<std::uint32_t>(INT_MAX) ? INT_MAX : static_cast<int>(value);
}

std::size_t utf8CodePoints(const std::string& text)
{
    std::size_t count = 0;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xC0u) != 0x80u)
            ++count;
    }
    return count;
}

} // namespace

// ---------------------------------------------------------------------------------------------------------
// IfSimpleSpreadsheetBuilder

IfSimpleSpreadsheetBuilder::~IfSimpleSpreadsheetBuilder() = default;

void IfSimpleSpreadsheetBuilder::addEmptyCells(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        addEmptyCell();
}

// ---------------------------------------------------------------------------------------------------------
// CSVBuilder

void CSVBuilder::startTable(const std::string& /*name*/, std::uint32_t columns, std::uint32_t /*rows*/)
{
    m_cols = columns;
    m_current_col = 0;
}

void CSVBuilder::setDimensions(std::uint32_t columns, std::uint32_t /*rows*/)
{
    m_cols = columns;
    m_dimensions_set = true;
    m_current_col = 0;
}

void CSVBuilder::beginRow()
{
    m_current_col = 0;
}

void CSVBuilder::endRow()
{
    if (!m_dimensions_set)
        UNI_ASSERT(m_current_col == m_cols);
    m_text.append(m_line_end);
}

void CSVBuilder::beginCell()
{
    // An extra cell is still written: the table is wrong, but no text is lost.
    UNI_ASSERT(m_current_col < m_cols);
    if (m_current_col != 0)
        m_text.append(m_separator);
    ++m_current_col;
}

void CSVBuilder::addCell(const std::string& text)
{
    beginCell();
    m_text.append(text);
    const std::size_t length = utf8CodePoints(text);
    if (length < m_min_width)
        m_text.appendSpaces(m_min_width - length);
}

void CSVBuilder::addCell(double value)
{
    beginCell();
    if (m_precision == 0)
        m_text.appendFormat("%*g", formatWidth(m_min_width), value);
    else
        m_text.appendFormat("%*.*g", formatWidth(m_min_width), formatWidth(m_precision), value);
}

void CSVBuilder::addEmptyCell()
{
    beginCell();
    m_text.appendSpaces(m_min_width);
}

void CSVBuilder::endTable() {}

std::string CSVBuilder::toString() const
{
    return std::string(m_text.data(), m_text.size());
}

// ---------------------------------------------------------------------------------------------------------
// TXTBuilder

TXTBuilder::TXTBuilder() : TXTBuilder(QLocale::system()) {}

TXTBuilder::TXTBuilder(const QLocale& locale) : m_locale(locale)
{
    m_locale.setNumberOptions(m_locale.numberOptions() | QLocale::OmitGroupSeparator);
}

void TXTBuilder::startTable(const std::string& /*name*/, std::uint32_t /*columns*/, std::uint32_t /*rows*/) {}

void TXTBuilder::setDimensions(std::uint32_t /*columns*/, std::uint32_t /*rows*/) {}

void TXTBuilder::beginRow()
{
    m_row_has_cell = false;
}

void TXTBuilder::endRow()
{
    m_text.appendLiteral("\r\n");
    m_row_has_cell = false;
}

void TXTBuilder::beginCell()
{
    if (m_row_has_cell)
        m_text.appendLiteral("\t");
    m_row_has_cell = true;
}

void TXTBuilder::addCell(const std::string& text)
{
    beginCell();
    m_text.append(text);
}

void TXTBuilder::addCell(double value)
{
    beginCell();
    const QByteArray number = m_locale.toString(value, 'g', 17).toUtf8();
    m_text.append(number.constData(), static_cast<std::size_t>(number.size()));
}

void TXTBuilder::addEmptyCell()
{
    beginCell();
}

void TXTBuilder::endTable() {}

std::string TXTBuilder::toString() const
{
    // The terminating null is part of the clipboard text.
    return std::string(m_text.data(), m_text.size() + 1);
}

// ---------------------------------------------------------------------------------------------------------
// DIFBuilder

void DIFBuilder::startTable(const std::string& /*name*/, std::uint32_t columns, std::uint32_t rows)
{
    m_text.appendLiteral("TABLE\r\n0,1\r\n\"EXCEL\"\r\n");
    m_text.appendFormat("VECTORS\r\n0,%u\r\n\"\"\r\n", static_cast<unsigned>(columns));
    m_text.appendFormat("TUPLES\r\n0,%u\r\n\"\"\r\n", static_cast<unsigned>(rows));
    m_text.appendLiteral("DATA\r\n0,0\r\n\"\"\r\n");
}

void DIFBuilder::setDimensions(std::uint32_t /*columns*/, std::uint32_t /*rows*/) {}

void DIFBuilder::beginRow()
{
    m_text.appendLiteral("-1,0\r\nBOT\r\n");
}

void DIFBuilder::endRow() {}

void DIFBuilder::addCell(const std::string& text)
{
    // Written as it stands: the format has no escape for quotes.
    m_text.appendLiteral("1,0\r\n\"");
    m_text.append(text);
    m_text.appendLiteral("\"\r\n");
}

void DIFBuilder::addCell(double value)
{
    m_text.appendFormat("0,%f\r\nV\r\n", value);
}

void DIFBuilder::addEmptyCell()
{
    m_text.appendLiteral("1,0\r\n\"\"\r\n");
}

void DIFBuilder::endTable()
{
    m_text.appendLiteral("-1,0\r\nEOD\r\n");
}

std::string DIFBuilder::toString() const
{
    // The terminating null is part of the clipboard data.
    return std::string(m_text.data(), m_text.size() + 1);
}

// ---------------------------------------------------------------------------------------------------------
// SpreadsheetMLBuilder

namespace {

constexpr char SPREADSHEET_ML_HEADER[] =
    "<?xml version=\"1.0\"?><?mso-application progid=\"Excel.Sheet\"?><Workbook "
    "xmlns=\"urn:schemas-microsoft-com:office:spreadsheet\" "
    "xmlns:o=\"urn:schemas-microsoft-com:office:office\" "
    "xmlns:x=\"urn:schemas-microsoft-com:office:excel\" "
    "xmlns:ss=\"urn:schemas-microsoft-com:office:spreadsheet\" "
    "xmlns:html=\"http://www.w3.org/TR/REC-html40\">";

} // namespace

void SpreadsheetMLBuilder::appendEscaped(const std::string& text)
{
    std::size_t plain_start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* replacement = nullptr;
        switch (text[i]) {
        case '"':
            replacement = "&quot;";
            break;
        case '\'':
            replacement = "&apos;";
            break;
        case '<':
            replacement = "&lt;";
            break;
        case '>':
            replacement = "&gt;";
            break;
        case '&':
            replacement = "&amp;";
            break;
        case '\n':
            replacement = "&#xA;";
            break;
        default:
            continue;
        }
        m_text.append(text.data() + plain_start, i - plain_start);
        m_text.append(replacement, std::char_traits<char>::length(replacement));
        plain_start = i + 1;
    }
    m_text.append(text.data() + plain_start, text.size() - plain_start);
}

void SpreadsheetMLBuilder::startTable(const std::string& name, std::uint32_t columns, std::uint32_t rows)
{
    m_cols = columns;
    m_rows = rows;
    m_current_col = -1;
    m_current_row = -1;
    m_text.appendLiteral(SPREADSHEET_ML_HEADER);
    // The name is written as it is given: the callers name their tables.
    m_text.appendLiteral("<Worksheet ss:Name=\"");
    m_text.append(name);
    m_text.appendFormat("\">  <Table ss:ExpandedColumnCount=\"%u\" ss:ExpandedRowCount=\"%u\">\n",
                        static_cast<unsigned>(columns), static_cast<unsigned>(rows));
}

void SpreadsheetMLBuilder::setDimensions(std::uint32_t columns, std::uint32_t rows)
{
    m_cols = columns;
    m_rows = rows;
}

void SpreadsheetMLBuilder::beginRow()
{
    if (m_current_row == -1)
        m_current_row = 0;
    m_current_col = 0;
    m_text.appendLiteral("<Row>");
}

void SpreadsheetMLBuilder::checkCell() const
{
    UNI_ASSERT(m_current_row < m_rows);
    UNI_ASSERT(m_current_col != -1 && m_current_col < m_cols);
}

void SpreadsheetMLBuilder::nextColumn()
{
    if (m_current_col != -1)
        ++m_current_col;
}

void SpreadsheetMLBuilder::addCell(const std::string& text)
{
    checkCell();
    m_text.appendLiteral("<Cell><Data ss:Type=\"String\">");
    appendEscaped(text);
    m_text.appendLiteral("</Data></Cell>");
    nextColumn();
}

void SpreadsheetMLBuilder::addCell(double value)
{
    if (std::isnan(value)) {
        addEmptyCell();
        return;
    }
    checkCell();
    m_text.appendFormat("<Cell><Data ss:Type=\"Number\">%.20g</Data></Cell>", value);
    nextColumn();
}

void SpreadsheetMLBuilder::addEmptyCell()
{
    checkCell();
    m_text.appendLiteral("<Cell></Cell>");
    nextColumn();
}

void SpreadsheetMLBuilder::endRow()
{
    UNI_ASSERT(m_current_row < m_rows);
    for (std::int64_t col = m_current_col < 0 ? 0 : m_current_col; col < m_cols; ++col)
        m_text.appendLiteral("<Cell></Cell>");
    m_text.appendLiteral("</Row>\n");
    ++m_current_row;
    m_current_col = -1;
}

void SpreadsheetMLBuilder::endTable()
{
    UNI_ASSERT(m_current_col == -1);
    m_text.appendLiteral("</Table></Worksheet></Workbook>");
}

std::string SpreadsheetMLBuilder::toString() const
{
    return std::string(m_text.data(), m_text.size());
}

// ---------------------------------------------------------------------------------------------------------
// SimpleSpreadsheetBuilderDispatcher

void SimpleSpreadsheetBuilderDispatcher::addBuilder(IfSimpleSpreadsheetBuilder* builder)
{
    if (!UNI_ASSERT(builder != nullptr && builder != this))
        return;
    m_builders.push_back(builder);
}

void SimpleSpreadsheetBuilderDispatcher::startTable(const std::string& name, std::uint32_t columns,
                                                    std::uint32_t rows)
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->startTable(name, columns, rows);
}

void SimpleSpreadsheetBuilderDispatcher::setDimensions(std::uint32_t columns, std::uint32_t rows)
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->setDimensions(columns, rows);
}

void SimpleSpreadsheetBuilderDispatcher::beginRow()
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->beginRow();
}

void SimpleSpreadsheetBuilderDispatcher::endRow()
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->endRow();
}

void SimpleSpreadsheetBuilderDispatcher::addCell(const std::string& text)
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->addCell(text);
}

void SimpleSpreadsheetBuilderDispatcher::addCell(double value)
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->addCell(value);
}

void SimpleSpreadsheetBuilderDispatcher::addEmptyCell()
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->addEmptyCell();
}

void SimpleSpreadsheetBuilderDispatcher::endTable()
{
    for (IfSimpleSpreadsheetBuilder* builder : m_builders)
        builder->endTable();
}

} // namespace lum_utils
