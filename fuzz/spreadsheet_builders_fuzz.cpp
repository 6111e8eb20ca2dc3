// Any cell texts and numbers: every format is written without a crash, and the XML
// Spreadsheet output parses and gives back the cells that went in.
#include <lum_utils/spreadsheet_export.h>

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Input layout: rows split by 0x1E, cells by 0x1F; a cell of 0x01 and eight bytes
// more is the double those bytes hold, anything else is text.
constexpr char ROW_SEPARATOR = '\x1E';
constexpr char CELL_SEPARATOR = '\x1F';

struct Cell
{
    bool is_number = false;
    double number = 0.0;
    std::string text;
};

std::vector<std::vector<Cell>> split(const char* data, std::size_t size)
{
    std::vector<std::vector<Cell>> rows(1);
    rows.back().emplace_back();
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == ROW_SEPARATOR) {
            rows.emplace_back();
            rows.back().emplace_back();
        } else if (data[i] == CELL_SEPARATOR) {
            rows.back().emplace_back();
        } else {
            rows.back().back().text.push_back(data[i]);
        }
    }
    for (auto& row : rows) {
        for (Cell& cell : row) {
            if (cell.text.size() == 9 && cell.text[0] == '\x01') {
                cell.is_number = true;
                std::memcpy(&cell.number, cell.text.data() + 1, sizeof(double));
            }
        }
    }
    return rows;
}

/// What an XML reader gives back for @p text as element content: raw carriage
/// returns normalised to line feeds (line feeds themselves are written escaped).
std::string asRead(std::string text)
{
    std::replace(text.begin(), text.end(), '\r', '\n');
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const auto rows = split(reinterpret_cast<const char*>(bytes), size);
    std::size_t columns = 0;
    // The table name is written as it is given, so it is one that XML can carry.
    const std::string name = "fuzz table";
    bool has_null = false;
    for (const auto& row : rows) {
        columns = std::max(columns, row.size());
        for (const Cell& cell : row)
            has_null = has_null || (!cell.is_number && cell.text.find('\0') != std::string::npos);
    }

    lum_utils::SpreadsheetExport all(QLocale::c());
    lum_utils::IfSimpleSpreadsheetBuilder& dispatcher = all.builder();
    const lum_utils::SpreadsheetMLBuilder& xml = all.xml();
    const lum_utils::CSVBuilder& csv = all.csv();
    const lum_utils::TXTBuilder& txt = all.txt();
    const lum_utils::DIFBuilder& dif = all.dif();

    dispatcher.startTable(name, static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows.size()));
    dispatcher.setDimensions(static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows.size()));
    for (const auto& row : rows) {
        dispatcher.beginRow();
        for (const Cell& cell : row) {
            if (cell.is_number)
                dispatcher.addCell(cell.number);
            else if (cell.text.empty())
                dispatcher.addEmptyCell();
            else
                dispatcher.addCell(cell.text);
        }
        dispatcher.endRow();
    }
    dispatcher.endTable();

    for (const lum_utils::IfSimpleSpreadsheetBuilder* builder :
         std::initializer_list<const lum_utils::IfSimpleSpreadsheetBuilder*>{&xml, &csv, &txt, &dif}) {
        if (builder->toString().size() != builder->size())
            std::abort(); // size() and toString() tell the same length
    }
    if (txt.toString().back() != '\0' || dif.toString().back() != '\0')
        std::abort(); // the clipboard texts carry their null

    if (has_null)
        return 0; // a null byte ends the text for any XML reader
    pugi::xml_document doc;
    const std::string text = xml.toString();
    if (!doc.load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_ws_pcdata))
        std::abort();
    const pugi::xml_node worksheet = doc.child("Workbook").child("Worksheet");
    if (name != worksheet.attribute("ss:Name").value())
        std::abort();
    std::size_t row_index = 0;
    for (const pugi::xml_node row : worksheet.child("Table").children("Row")) {
        if (row_index >= rows.size())
            std::abort();
        std::size_t col_index = 0;
        for (const pugi::xml_node cell : row.children("Cell")) {
            const pugi::xml_node data = cell.child("Data");
            const Cell* in = col_index < rows[row_index].size() ? &rows[row_index][col_index] : nullptr;
            if (in == nullptr || (in->is_number ? std::isnan(in->number) : in->text.empty())) {
                if (data)
                    std::abort(); // padding, NaN and empty cells stay empty
            } else if (in->is_number) {
                const double read = std::strtod(data.text().get(), nullptr);
                if (read != in->number || std::signbit(read) != std::signbit(in->number))
                    std::abort();
            } else if (asRead(in->text) != data.text().get()) {
                std::abort();
            }
            ++col_index;
        }
        if (col_index != columns)
            std::abort();
        ++row_index;
    }
    if (row_index != rows.size())
        std::abort();
    return 0;
}
