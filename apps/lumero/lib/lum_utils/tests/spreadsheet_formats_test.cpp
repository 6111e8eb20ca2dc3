// The exact text of each spreadsheet format, one table row per case.

#include "spreadsheet_test_tables.h"

#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/spreadsheet_ml_builder.h>
#include <lum_utils/txt_builder.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

using lum_utils::CSVBuilder;
using lum_utils::DIFBuilder;
using lum_utils::SpreadsheetMLBuilder;
using lum_utils::TXTBuilder;
using lum_utils_test::Cell;
using lum_utils_test::oneRow;
using lum_utils_test::writeSmallTable;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();
const Cell EMPTY;
const char* const GROSSE = "Gr\xC3\xB6\xC3\x9F"
                           "e"; // five code points in seven bytes

std::string withNull(std::string text)
{
    text.push_back('\0');
    return text;
}

std::string difHeader(unsigned columns, unsigned rows)
{
    return "TABLE\r\n0,1\r\n\"EXCEL\"\r\nVECTORS\r\n0," + std::to_string(columns) +
           "\r\n\"\"\r\nTUPLES\r\n0," + std::to_string(rows) + "\r\n\"\"\r\nDATA\r\n0,0\r\n\"\"\r\n";
}

const std::string XML_FOOTER = "</Table></Worksheet></Workbook>";

std::string xmlStart(const std::string& name, unsigned columns, unsigned rows)
{
    return "<?xml version=\"1.0\"?><?mso-application progid=\"Excel.Sheet\"?>"
           "<Workbook xmlns=\"urn:schemas-microsoft-com:office:spreadsheet\""
           " xmlns:o=\"urn:schemas-microsoft-com:office:office\" "
           "xmlns:x=\"urn:schemas-microsoft-com:office:excel\""
           " xmlns:ss=\"urn:schemas-microsoft-com:office:spreadsheet\" "
           "xmlns:html=\"http://www.w3.org/TR/REC-html40\"><Worksheet ss:Name=\"" +
           name + "\">  <Table ss:ExpandedColumnCount=\"" + std::to_string(columns) +
           "\" ss:ExpandedRowCount=\"" + std::to_string(rows) + "\">\n";
}

std::string text(const std::string& value)
{
    return "<Cell><Data ss:Type=\"String\">" + value + "</Data></Cell>";
}

std::string number(const std::string& value)
{
    return "<Cell><Data ss:Type=\"Number\">" + value + "</Data></Cell>";
}

const std::string NO_CELL = "<Cell></Cell>";

struct FormatRow
{
    const char* name;
    std::function<std::string()> write;
    std::string expected;
};

void PrintTo(const FormatRow& row, std::ostream* out)
{
    *out << row.name;
}

class Formats : public ::testing::TestWithParam<FormatRow>
{};

TEST_P(Formats, WriteTheExpectedText)
{
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(GetParam().write(), GetParam().expected);
    EXPECT_EQ(asserts.size(), 0u);
}

template <typename Builder>
std::function<std::string()> small(std::function<void(Builder&)> setup = [](Builder&) {})
{
    return [setup] {
        Builder builder;
        setup(builder);
        writeSmallTable(builder);
        // The raw text holds the same bytes as the string, up to a trailing null.
        EXPECT_EQ(std::string(builder.data(), builder.size()), builder.toString());
        return builder.toString();
    };
}

template <typename Builder>
std::function<std::string()> row(
    std::vector<Cell> cells, std::function<void(Builder&)> setup = [](Builder&) {})
{
    return [cells, setup] {
        Builder builder;
        setup(builder);
        return oneRow(builder, cells);
    };
}

std::function<std::string()> txt(std::vector<Cell> cells, QLocale locale = QLocale::c())
{
    return [cells, locale] {
        TXTBuilder builder(locale);
        return oneRow(builder, cells);
    };
}

std::function<void(CSVBuilder&)> width(int cells)
{
    return [cells](CSVBuilder& csv) { csv.setMinimumCellWidth(cells); };
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, Formats, ::testing::Values(
    FormatRow{"csv_small_table", small<CSVBuilder>(), "name\t1.5\t\r\nx\t-2\t1e+20\r\n"},
    FormatRow{"csv_separator_and_line_end", small<CSVBuilder>([](CSVBuilder& csv) {
                  csv.setColumnSeparator(";");
                  csv.setLineEnd("\n");
              }), "name;1.5;\nx;-2;1e+20\n"},
    FormatRow{"csv_width_pads_text_left_numbers_right", row<CSVBuilder>({"ab", 1.5, EMPTY, "longer than eight"}, width(8)),
              "ab      \t     1.5\t        \tlonger than eight\r\n"},
    FormatRow{"csv_width_counts_code_points", row<CSVBuilder>({GROSSE, "\xE2\x82\xAC"}, width(6)),
              std::string(GROSSE) + " \t\xE2\x82\xAC     \r\n"},
    FormatRow{"csv_precision", row<CSVBuilder>({3.14159, 123456.0}, [](CSVBuilder& csv) { csv.setPrecision(3); }),
              "3.14\t1.23e+05\r\n"},
    FormatRow{"csv_precision_and_width", row<CSVBuilder>({0.1}, [](CSVBuilder& csv) {
                  csv.setPrecision(10);
                  csv.setMinimumCellWidth(14);
              }), "           0.1\r\n"},
    FormatRow{"csv_printf_g", row<CSVBuilder>({0.1, 1234567.0, 1e-5, 100000.0}), "0.1\t1.23457e+06\t1e-05\t100000\r\n"},
    FormatRow{"csv_special_numbers", row<CSVBuilder>({NaN, INF, -INF, -0.0, 1e300, std::numeric_limits<double>::denorm_min()}),
              "nan\tinf\t-inf\t-0\t1e+300\t4.94066e-324\r\n"},
    FormatRow{"csv_text_unquoted", row<CSVBuilder>({"a<b", "say \"hi\"", "a\tb", "two\r\nlines", "x;y,z", ""}),
              "a<b\tsay \"hi\"\ta\tb\ttwo\r\nlines\tx;y,z\t\r\n"},
    FormatRow{"csv_empty_table", row<CSVBuilder>({}), ""},
    FormatRow{"csv_short_rows_with_dimensions", [] {
                  CSVBuilder csv;
                  csv.setDimensions(3, 2);
                  csv.beginRow();
                  csv.endRow();
                  csv.beginRow();
                  csv.addCell(1.0);
                  csv.endRow();
                  csv.addCell("no beginRow: not the first column");
                  csv.endRow();
                  return csv.toString();
              }, "\r\n1\r\n\tno beginRow: not the first column\r\n"},
    FormatRow{"txt_small_table_ends_in_a_null", small<TXTBuilder>([](TXTBuilder&) {}),
              withNull("name\t1.5\t\r\nx\t-2\t1e+20\r\n")},
    FormatRow{"txt_seventeen_digits", txt({0.1, 1.0 / 3.0, 123456789.0}),
              withNull("0.10000000000000001\t0.33333333333333331\t123456789\r\n")},
    FormatRow{"txt_locale_without_group_separators", txt({1234567.5, -0.25}, QLocale(QLocale::German, QLocale::Germany)),
              withNull("1234567,5\t-0,25\r\n")},
    FormatRow{"txt_special_numbers_negative_zero_unsigned", txt({NaN, INF, -INF, -0.0, 1e300, 5e-324}),
              withNull("nan\tinf\t-inf\t0\t1.0000000000000001e+300\t4.9406564584124654e-324\r\n")},
    FormatRow{"txt_text_and_empty_cells", txt({GROSSE, EMPTY, "a<b \"q\"", EMPTY}),
              withNull(std::string(GROSSE) + "\t\ta<b \"q\"\t\r\n")},
    FormatRow{"txt_empty_table", txt({}), std::string(1, '\0')},
    FormatRow{"dif_small_table", small<DIFBuilder>(),
              withNull(difHeader(3, 2) + "-1,0\r\nBOT\r\n1,0\r\n\"name\"\r\n0,1.500000\r\nV\r\n1,0\r\n\"\"\r\n"
                       "-1,0\r\nBOT\r\n1,0\r\n\"x\"\r\n0,-2.000000\r\nV\r\n0,100000000000000000000.000000\r\nV\r\n"
                       "-1,0\r\nEOD\r\n")},
    FormatRow{"dif_zero_rows_keep_the_header", [] {
                  DIFBuilder dif;
                  dif.startTable("ignored name", 2, 0);
                  dif.endTable();
                  return dif.toString();
              }, withNull(difHeader(2, 0) + "-1,0\r\nEOD\r\n")},
    FormatRow{"dif_text_not_escaped_numbers_fixed", [] {
                  DIFBuilder dif;
                  dif.beginRow();
                  for (const char* value : {"say \"hi\"", "x,y\r\nz", "\xE2\x82\xAC"})
                      dif.addCell(value);
                  for (const double value : {0.1, -0.0, 1e-7, NaN, -INF})
                      dif.addCell(value);
                  dif.addEmptyCells(2);
                  return dif.toString();
              }, withNull("-1,0\r\nBOT\r\n1,0\r\n\"say \"hi\"\"\r\n1,0\r\n\"x,y\r\nz\"\r\n1,0\r\n\"\xE2\x82\xAC\"\r\n"
                          "0,0.100000\r\nV\r\n0,-0.000000\r\nV\r\n0,0.000000\r\nV\r\n0,nan\r\nV\r\n0,-inf\r\nV\r\n"
                          "1,0\r\n\"\"\r\n1,0\r\n\"\"\r\n")},
    FormatRow{"dif_huge_number_in_full", [] {
                  DIFBuilder dif;
                  dif.addCell(1e300); // 301 digits, far more than the buffer holds at first;
                  // the expected digits are Python's "%f" % 1e300
                  return dif.toString();
              }, withNull("0,1000000000000000052504760255204420248704468581108159154915854115511802457988908195786371375080447864"
                          "0437044438328838781769425232353604305756447921847867069828483872009265758037378302337947880900593689"
                          "5323497079994508111903896764088007465274278014249457925878882005684283811566947219638686545940054016"
                          "0"
                          ".000000\r\nV\r\n")},
    FormatRow{"xml_small_table", small<SpreadsheetMLBuilder>(),
              xmlStart("Sheet", 3, 2) + "<Row>" + text("name") + number("1.5") + NO_CELL + "</Row>\n<Row>" + text("x") +
                  number("-2") + number("1e+20") + "</Row>\n" + XML_FOOTER},
    FormatRow{"xml_short_rows_padded", [] {
                  SpreadsheetMLBuilder xml;
                  xml.startTable("t", 3, 2);
                  xml.beginRow();
                  xml.addCell("a");
                  xml.endRow();
                  xml.beginRow();
                  xml.endRow();
                  xml.endTable();
                  return xml.toString();
              }, xmlStart("t", 3, 2) + "<Row>" + text("a") + NO_CELL + NO_CELL + "</Row>\n<Row>" + NO_CELL + NO_CELL +
                     NO_CELL + "</Row>\n" + XML_FOOTER},
    FormatRow{"xml_nan_is_an_empty_cell_counted_as_one", row<SpreadsheetMLBuilder>({NaN, 1.0, -NaN}),
              xmlStart("t", 3, 1) + "<Row>" + NO_CELL + number("1") + NO_CELL + "</Row>\n" + XML_FOOTER},
    FormatRow{"xml_twenty_digits", row<SpreadsheetMLBuilder>({0.1, -0.0, INF, -INF, 1e300, 5e-324, 123456789.0}),
              xmlStart("t", 7, 1) + "<Row>" + number("0.10000000000000000555") + number("-0") + number("inf") +
                  number("-inf") + number("1.0000000000000000525e+300") + number("4.9406564584124654418e-324") +
                  number("123456789") + "</Row>\n" + XML_FOOTER},
    FormatRow{"xml_text_escaped_but_tab_and_cr", row<SpreadsheetMLBuilder>({"a<b", "\"'<>&\n\t\r", GROSSE}),
              xmlStart("t", 3, 1) + "<Row>" + text("a&lt;b") + text("&quot;&apos;&lt;&gt;&amp;&#xA;\t\r") +
                  text(GROSSE) + "</Row>\n" + XML_FOOTER},
    FormatRow{"xml_empty_table_name_as_given", [] {
                  SpreadsheetMLBuilder xml;
                  xml.startTable("a<b & \"c\"", 0, 0);
                  xml.endTable();
                  return xml.toString();
              }, xmlStart("a<b & \"c\"", 0, 0) + XML_FOOTER},
    FormatRow{"xml_set_dimensions_replaces_both_counts", [] {
                  SpreadsheetMLBuilder xml;
                  xml.startTable("t", 1, 1);
                  xml.setDimensions(2, 2);
                  for (int line = 0; line < 2; ++line) {
                      xml.beginRow();
                      xml.addCell(1.0);
                      xml.addCell(2.0);
                      xml.endRow();
                  }
                  xml.endTable();
                  return xml.toString();
              }, xmlStart("t", 1, 1) + "<Row>" + number("1") + number("2") + "</Row>\n<Row>" + number("1") + number("2") +
                     "</Row>\n" + XML_FOOTER}),
    [](const ::testing::TestParamInfo<FormatRow>& info) { return std::string(info.param.name); });
// clang-format on

TEST(CSVBuilder, ACellPastTheLastColumnOrAShortRowAssertsAndNothingIsDropped)
{
    uni_testing::AssertCapture asserts;
    CSVBuilder csv;
    csv.startTable("t", 2, 2);
    csv.beginRow();
    csv.addCell("a");
    csv.addCell("b");
    EXPECT_EQ(asserts.size(), 0u);
    csv.addCell("c");
    EXPECT_TRUE(asserts.fired("m_current_col < m_cols"));
    csv.endRow();
    asserts.clear();
    csv.beginRow();
    csv.addCell("d");
    csv.endRow();
    EXPECT_TRUE(asserts.fired("m_current_col == m_cols"));
    EXPECT_EQ(csv.toString(), "a\tb\tc\r\nd\r\n");
}

TEST(TXTBuilder, DefaultLocaleIsTheSystemsAndGroupSeparatorsAreLeftOut)
{
    TXTBuilder txt;
    EXPECT_EQ(txt.locale().name(), QLocale::system().name());
    EXPECT_TRUE(txt.locale().numberOptions().testFlag(QLocale::OmitGroupSeparator));
    // The option is added to what the locale had, not put in its place.
    QLocale padded = QLocale::c();
    padded.setNumberOptions(QLocale::IncludeTrailingZeroesAfterDot);
    TXTBuilder kept(padded);
    EXPECT_TRUE(kept.locale().numberOptions().testFlag(QLocale::IncludeTrailingZeroesAfterDot));
    EXPECT_TRUE(kept.locale().numberOptions().testFlag(QLocale::OmitGroupSeparator));
}

} // namespace
