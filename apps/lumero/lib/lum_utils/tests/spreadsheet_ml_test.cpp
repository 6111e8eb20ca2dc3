#include "spreadsheet_test_tables.h"

#include <lum_utils/spreadsheet_ml_builder.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

using lum_utils::SpreadsheetMLBuilder;

namespace {

std::string stringCell(const std::string& text)
{
    return "<Cell><Data ss:Type=\"String\">" + text + "</Data></Cell>";
}

/// A cell as read back: its type ("" for an empty cell) and text.
struct ReadCell
{
    std::string type;
    std::string text;
};

/// Parses @p xml and returns the cells of each row, failing the test if it is not well-formed.
std::vector<std::vector<ReadCell>> readBack(const std::string& xml, pugi::xml_document& doc)
{
    const pugi::xml_parse_result parsed =
        doc.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_pi);
    EXPECT_TRUE(parsed) << parsed.description() << " at " << parsed.offset;
    std::vector<std::vector<ReadCell>> rows;
    for (const pugi::xml_node row : doc.child("Workbook").child("Worksheet").child("Table").children("Row")) {
        rows.emplace_back();
        for (const pugi::xml_node cell : row.children("Cell")) {
            const pugi::xml_node data = cell.child("Data");
            rows.back().push_back({data.attribute("ss:Type").value(), data.text().get()});
        }
    }
    return rows;
}

} // namespace

TEST(SpreadsheetMLBuilder, OutputParsesAndCellsReadBackEqual)
{
    const std::vector<std::string> texts = {"plain",
                                            "a<b>&c",
                                            "quote \" and ' apostrophe",
                                            "two\nlines",
                                            "\xC3\xA4\xC3\xB6\xC3\xBC \xE2\x82\xAC \xF0\x9F\x9A\x97",
                                            ""};
    const std::vector<double> numbers = {
        0.0, -0.0, 0.1, -1.0 / 3.0, 1e300, -1e-300, 5e-324, 1.7976931348623157e308, 2.2250738585072014e-308};
    SpreadsheetMLBuilder xml;
    xml.startTable("Name with 'quotes'", static_cast<std::uint32_t>(numbers.size()), 2);
    xml.beginRow();
    for (const std::string& text : texts)
        xml.addCell(text);
    xml.endRow();
    xml.beginRow();
    for (const double value : numbers)
        xml.addCell(value);
    xml.endRow();
    xml.endTable();

    pugi::xml_document doc;
    const auto rows = readBack(xml.toString(), doc);
    const pugi::xml_node workbook = doc.child("Workbook");
    EXPECT_STREQ(workbook.attribute("xmlns").value(), "urn:schemas-microsoft-com:office:spreadsheet");
    EXPECT_STREQ(workbook.attribute("xmlns:html").value(), "http://www.w3.org/TR/REC-html40");
    EXPECT_STREQ(doc.find_child([](pugi::xml_node node) { return node.type() == pugi::node_pi; }).name(),
                 "mso-application");
    EXPECT_STREQ(workbook.child("Worksheet").attribute("ss:Name").value(), "Name with 'quotes'");
    const pugi::xml_node table = workbook.child("Worksheet").child("Table");
    EXPECT_EQ(table.attribute("ss:ExpandedColumnCount").as_uint(), numbers.size());
    EXPECT_EQ(table.attribute("ss:ExpandedRowCount").as_uint(), 2u);

    ASSERT_EQ(rows.size(), 2u);
    ASSERT_EQ(rows[0].size(), numbers.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(rows[0][i].type, "String") << i;
        EXPECT_EQ(rows[0][i].text, texts[i]) << i;
    }
    for (std::size_t i = texts.size(); i < numbers.size(); ++i)
        EXPECT_EQ(rows[0][i].type, "") << "padding cell " << i;
    ASSERT_EQ(rows[1].size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        EXPECT_EQ(rows[1][i].type, "Number") << i;
        const double read = std::strtod(rows[1][i].text.c_str(), nullptr);
        EXPECT_EQ(read, numbers[i]) << rows[1][i].text;
        EXPECT_EQ(std::signbit(read), std::signbit(numbers[i])) << rows[1][i].text;
    }
}

TEST(SpreadsheetMLBuilder, CellPastTheLastColumnOrRowAsserts)
{
    {
        uni_testing::AssertCapture asserts;
        SpreadsheetMLBuilder xml;
        xml.startTable("t", 1, 1);
        xml.beginRow();
        xml.addCell("a");
        EXPECT_EQ(asserts.size(), 0u);
        xml.addCell("b");
        EXPECT_TRUE(asserts.fired("m_current_col != -1 && m_current_col < m_cols"));
        xml.endRow();
        // Nothing is dropped: the extra cell is in the text.
        EXPECT_NE(xml.toString().find(stringCell("b")), std::string::npos);
    }
    {
        uni_testing::AssertCapture asserts;
        SpreadsheetMLBuilder xml;
        xml.startTable("t", 1, 1);
        xml.beginRow();
        xml.addCell(1.0);
        xml.endRow();
        EXPECT_EQ(asserts.size(), 0u);
        xml.beginRow();
        xml.addEmptyCell();
        EXPECT_TRUE(asserts.fired("m_current_row < m_rows"));
        asserts.clear();
        xml.endRow();
        EXPECT_TRUE(asserts.fired("m_current_row < m_rows"));
    }
}

TEST(SpreadsheetMLBuilder, CellOutsideARowAsserts)
{
    uni_testing::AssertCapture asserts;
    SpreadsheetMLBuilder xml;
    xml.startTable("t", 2, 1);
    xml.addCell(1.0);
    EXPECT_TRUE(asserts.fired("m_current_col != -1 && m_current_col < m_cols"));
    ASSERT_EQ(asserts.size(), 1u);
    const std::string file = asserts.records().front().file;
    const std::string expected_source =
        "apps/lumero/lib/lum_utils/src/lum_utils_simple_spreadsheet_builder.cpp";
    ASSERT_GE(file.size(), expected_source.size());
    EXPECT_EQ(file.substr(file.size() - expected_source.size()), expected_source);
}

TEST(SpreadsheetMLBuilder, EndTableInsideARowAssertsAndOnlyCloses)
{
    uni_testing::AssertCapture asserts;
    SpreadsheetMLBuilder xml;
    xml.startTable("t", 2, 1);
    xml.beginRow();
    xml.addCell("open");
    xml.endTable();
    EXPECT_TRUE(asserts.fired("m_current_col == -1"));
    // The row is left open: no "</Row>" before the closing tags.
    const std::string text = xml.toString();
    const std::string tail = "\">\n<Row>" + stringCell("open") + "</Table></Worksheet></Workbook>";
    ASSERT_GE(text.size(), tail.size());
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}
