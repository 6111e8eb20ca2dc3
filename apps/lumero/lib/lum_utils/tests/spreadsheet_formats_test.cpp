#include "spreadsheet_test_tables.h"

#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/txt_builder.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using lum_utils::CSVBuilder;
using lum_utils::DIFBuilder;
using lum_utils::TXTBuilder;
using lum_utils_test::oneRowOfNumbers;
using lum_utils_test::writeSmallTable;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();

const std::string DIF_HEADER_3x2 = "TABLE\r\n0,1\r\n\"EXCEL\"\r\n"
                                   "VECTORS\r\n0,3\r\n\"\"\r\n"
                                   "TUPLES\r\n0,2\r\n\"\"\r\n"
                                   "DATA\r\n0,0\r\n\"\"\r\n";

std::string withNull(std::string text)
{
    text.push_back('\0');
    return text;
}

/// One row of text cells through a builder sized for it.
template <typename Builder>
std::string oneRowOfTexts(Builder& builder, std::initializer_list<std::string> cells)
{
    builder.startTable("t", static_cast<std::uint32_t>(cells.size()), 1);
    builder.beginRow();
    for (const std::string& text : cells)
        builder.addCell(text);
    builder.endRow();
    builder.endTable();
    return builder.toString();
}

} // namespace

// --- CSV --------------------------------------------------------------------------------------------------

TEST(CSVBuilder, SmallTableIsTabSeparatedWithCrLf)
{
    CSVBuilder csv;
    writeSmallTable(csv);
    EXPECT_EQ(csv.toString(), "name\t1.5\t\r\nx\t-2\t1e+20\r\n");
    EXPECT_EQ(csv.size(), csv.toString().size());
    EXPECT_STREQ(csv.data(), "name\t1.5\t\r\nx\t-2\t1e+20\r\n");
}

TEST(CSVBuilder, SeparatorAndLineEndCanBeChanged)
{
    CSVBuilder csv;
    csv.setColumnSeparator(";");
    csv.setLineEnd("\n");
    writeSmallTable(csv);
    EXPECT_EQ(csv.toString(), "name;1.5;\nx;-2;1e+20\n");
}

TEST(CSVBuilder, WidthPadsTextLeftAlignedAndNumbersRightAligned)
{
    CSVBuilder csv;
    csv.setMinimumCellWidth(8);
    EXPECT_EQ(oneRowOfTexts(csv, {"ab"}), "ab      \r\n");

    CSVBuilder numbers;
    numbers.setMinimumCellWidth(8);
    numbers.startTable("t", 3, 1);
    numbers.beginRow();
    numbers.addCell(1.5);
    numbers.addEmptyCell();
    numbers.addCell("longer than eight");
    numbers.endRow();
    EXPECT_EQ(numbers.toString(), "     1.5\t        \tlonger than eight\r\n");
}

TEST(CSVBuilder, WidthCountsUtf8CodePointsNotBytes)
{
    CSVBuilder csv;
    csv.setMinimumCellWidth(6);
    // "Größe" is five code points in seven bytes: one blank of padding.
    EXPECT_EQ(oneRowOfTexts(csv, {"Gr\xC3\xB6\xC3\x9F"
                                  "e",
                                  "\xE2\x82\xAC"}),
              "Gr\xC3\xB6\xC3\x9F"
              "e \t\xE2\x82\xAC     \r\n");
}

TEST(CSVBuilder, PrecisionSelectsSignificantDigits)
{
    CSVBuilder csv;
    csv.setPrecision(3);
    csv.startTable("t", 2, 1);
    csv.beginRow();
    csv.addCell(3.14159);
    csv.addCell(123456.0);
    csv.endRow();
    EXPECT_EQ(csv.toString(), "3.14\t1.23e+05\r\n");

    CSVBuilder wide;
    wide.setPrecision(10);
    wide.setMinimumCellWidth(14);
    wide.startTable("t", 1, 1);
    wide.beginRow();
    wide.addCell(0.1);
    wide.endRow();
    EXPECT_EQ(wide.toString(), "           0.1\r\n");
}

TEST(CSVBuilder, DefaultNumberFormIsPrintfG)
{
    EXPECT_EQ(oneRowOfNumbers<CSVBuilder>({0.1, 1234567.0, 1e-5, 100000.0}),
              "0.1\t1.23457e+06\t1e-05\t100000\r\n");
}

TEST(CSVBuilder, SpecialNumbers)
{
    EXPECT_EQ(oneRowOfNumbers<CSVBuilder>({NaN, INF, -INF, -0.0}), "nan\tinf\t-inf\t-0\r\n");
    EXPECT_EQ(oneRowOfNumbers<CSVBuilder>({1e300, -1e-300, std::numeric_limits<double>::denorm_min()}),
              "1e+300\t-1e-300\t4.94066e-324\r\n");
}

TEST(CSVBuilder, TextIsWrittenUnquoted)
{
    // Separators, quotes, line ends and markup pass through as they are.
    CSVBuilder csv;
    EXPECT_EQ(oneRowOfTexts(csv, {"a<b", "say \"hi\"", "a\tb", "two\r\nlines", "x;y,z"}),
              "a<b\tsay \"hi\"\ta\tb\ttwo\r\nlines\tx;y,z\r\n");
}

TEST(CSVBuilder, EmptyTablesAndRows)
{
    CSVBuilder nothing;
    nothing.startTable("t", 0, 0);
    nothing.endTable();
    EXPECT_EQ(nothing.toString(), "");
    EXPECT_EQ(nothing.size(), 0u);
    EXPECT_STREQ(nothing.data(), "");

    CSVBuilder empty_cells;
    empty_cells.startTable("t", 3, 2);
    empty_cells.beginRow();
    empty_cells.addEmptyCells(3);
    empty_cells.endRow();
    empty_cells.beginRow();
    empty_cells.addCell("");
    empty_cells.addEmptyCells(2);
    empty_cells.endRow();
    EXPECT_EQ(empty_cells.toString(), "\t\t\r\n\t\t\r\n");

    // With dimensions set, a row may end early and may even be empty.
    CSVBuilder short_rows;
    short_rows.setDimensions(3, 2);
    short_rows.beginRow();
    short_rows.endRow();
    short_rows.beginRow();
    short_rows.addCell(1.0);
    short_rows.endRow();
    EXPECT_EQ(short_rows.toString(), "\r\n1\r\n");
}

TEST(CSVBuilder, CellPastTheLastColumnAssertsAndIsStillWritten)
{
    uni_testing::AssertCapture asserts;
    CSVBuilder csv;
    csv.startTable("t", 1, 1);
    csv.beginRow();
    csv.addCell("a");
    EXPECT_EQ(asserts.size(), 0u);
    csv.addCell("b");
    EXPECT_TRUE(asserts.fired("m_current_col < m_cols"));
    csv.endRow();
    EXPECT_EQ(csv.toString(), "a\tb\r\n");
}

TEST(CSVBuilder, ShortRowAssertsOnlyWithoutSetDimensions)
{
    {
        uni_testing::AssertCapture asserts;
        CSVBuilder csv;
        csv.startTable("t", 2, 1);
        csv.beginRow();
        csv.addCell("a");
        csv.endRow();
        EXPECT_TRUE(asserts.fired("m_current_col == m_cols"));
        EXPECT_EQ(csv.toString(), "a\r\n");
    }
    {
        uni_testing::AssertCapture asserts;
        CSVBuilder csv;
        csv.setDimensions(2, 1);
        csv.beginRow();
        csv.addCell("a");
        csv.endRow();
        EXPECT_EQ(asserts.size(), 0u);
    }
}

TEST(CSVBuilder, OnlyBeginRowStartsAtTheFirstColumn)
{
    CSVBuilder csv;
    csv.setDimensions(2, 2);
    csv.addCell("a");
    csv.endRow();
    csv.addCell("b");
    csv.endRow();
    csv.beginRow();
    csv.addCell("c");
    csv.endRow();
    EXPECT_EQ(csv.toString(), "a\r\n\tb\r\nc\r\n");
}

// --- TXT --------------------------------------------------------------------------------------------------

TEST(TXTBuilder, SmallTableEndsInANullThatSizeCounts)
{
    TXTBuilder txt(QLocale::c());
    writeSmallTable(txt);
    const std::string text = "name\t1.5\t\r\nx\t-2\t1e+20\r\n";
    EXPECT_EQ(txt.toString(), withNull(text));
    EXPECT_EQ(txt.size(), text.size() + 1);
    EXPECT_STREQ(txt.data(), text.c_str());
}

TEST(TXTBuilder, NumbersHaveSeventeenSignificantDigits)
{
    EXPECT_EQ(oneRowOfNumbers<TXTBuilder>({0.1, 1.0 / 3.0, 123456789.0}),
              withNull("0.10000000000000001\t0.33333333333333331\t123456789\r\n"));
}

TEST(TXTBuilder, NumbersFollowTheLocaleWithoutGroupSeparators)
{
    TXTBuilder txt(QLocale(QLocale::German, QLocale::Germany));
    txt.startTable("t", 2, 1);
    txt.beginRow();
    txt.addCell(1234567.5);
    txt.addCell(-0.25);
    txt.endRow();
    EXPECT_EQ(txt.toString(), withNull("1234567,5\t-0,25\r\n"));
}

TEST(TXTBuilder, DefaultLocaleIsTheSystemsWithoutGroupSeparators)
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

TEST(TXTBuilder, SpecialNumbers)
{
    TXTBuilder txt(QLocale::c());
    txt.startTable("t", 6, 1);
    txt.beginRow();
    for (const double value : {NaN, INF, -INF, -0.0, 1e300, 5e-324})
        txt.addCell(value);
    txt.endRow();
    // QLocale drops the sign of a negative zero.
    EXPECT_EQ(txt.toString(),
              withNull("nan\tinf\t-inf\t0\t1.0000000000000001e+300\t4.9406564584124654e-324\r\n"));
}

TEST(TXTBuilder, TextAndEmptyCellsPassThrough)
{
    TXTBuilder txt(QLocale::c());
    txt.startTable("t", 4, 2);
    txt.beginRow();
    txt.addCell("Gr\xC3\xB6\xC3\x9F"
                "e");
    txt.addEmptyCell();
    txt.addCell("a<b \"q\"");
    txt.addEmptyCell();
    txt.endRow();
    txt.beginRow();
    txt.addEmptyCells(4);
    txt.endRow();
    txt.endTable();
    EXPECT_EQ(txt.toString(), withNull("Gr\xC3\xB6\xC3\x9F"
                                       "e\t\ta<b \"q\"\t\r\n\t\t\t\r\n"));
}

TEST(TXTBuilder, EmptyTableIsJustTheNull)
{
    TXTBuilder txt(QLocale::c());
    txt.startTable("t", 0, 0);
    txt.endTable();
    EXPECT_EQ(txt.toString(), std::string(1, '\0'));
    EXPECT_EQ(txt.size(), 1u);
}

// --- DIF --------------------------------------------------------------------------------------------------

TEST(DIFBuilder, SmallTable)
{
    DIFBuilder dif;
    writeSmallTable(dif);
    const std::string text = DIF_HEADER_3x2 + "-1,0\r\nBOT\r\n"
                                              "1,0\r\n\"name\"\r\n"
                                              "0,1.500000\r\nV\r\n"
                                              "1,0\r\n\"\"\r\n"
                                              "-1,0\r\nBOT\r\n"
                                              "1,0\r\n\"x\"\r\n"
                                              "0,-2.000000\r\nV\r\n"
                                              "0,100000000000000000000.000000\r\nV\r\n"
                                              "-1,0\r\nEOD\r\n";
    EXPECT_EQ(dif.toString(), withNull(text));
    EXPECT_EQ(dif.size(), text.size() + 1);
    EXPECT_STREQ(dif.data(), text.c_str());
}

TEST(DIFBuilder, ZeroRowsStillHaveTheFourHeaderRecords)
{
    DIFBuilder dif;
    dif.startTable("ignored name", 2, 0);
    dif.endTable();
    EXPECT_EQ(dif.toString(), withNull("TABLE\r\n0,1\r\n\"EXCEL\"\r\n"
                                       "VECTORS\r\n0,2\r\n\"\"\r\n"
                                       "TUPLES\r\n0,0\r\n\"\"\r\n"
                                       "DATA\r\n0,0\r\n\"\"\r\n"
                                       "-1,0\r\nEOD\r\n"));
}

TEST(DIFBuilder, TextIsNotEscaped)
{
    DIFBuilder dif;
    dif.beginRow();
    dif.addCell("say \"hi\"");
    dif.addCell("a<b");
    dif.addCell("x,y\r\nz");
    dif.addCell("\xE2\x82\xAC");
    EXPECT_EQ(dif.toString(), withNull("-1,0\r\nBOT\r\n"
                                       "1,0\r\n\"say \"hi\"\"\r\n"
                                       "1,0\r\n\"a<b\"\r\n"
                                       "1,0\r\n\"x,y\r\nz\"\r\n"
                                       "1,0\r\n\"\xE2\x82\xAC\"\r\n"));
}

TEST(DIFBuilder, NumbersAreFixedPointWithSixDecimals)
{
    DIFBuilder dif;
    for (const double value : {0.1, -0.0, 1e-7, NaN, -INF})
        dif.addCell(value);
    dif.addEmptyCells(2);
    EXPECT_EQ(dif.toString(), withNull("0,0.100000\r\nV\r\n"
                                       "0,-0.000000\r\nV\r\n"
                                       "0,0.000000\r\nV\r\n"
                                       "0,nan\r\nV\r\n"
                                       "0,-inf\r\nV\r\n"
                                       "1,0\r\n\"\"\r\n"
                                       "1,0\r\n\"\"\r\n"));
}

TEST(DIFBuilder, HugeNumberIsWrittenInFull)
{
    // 1e300 in fixed point needs 301 digits, far more than the buffer holds at first.
    DIFBuilder dif;
    dif.addCell(1e300);
    const std::string text = dif.toString();
    ASSERT_EQ(text.size(), 2 + 301 + 7 + 5 + 1u);
    EXPECT_EQ(text.substr(0, 22), "0,10000000000000000525");
    EXPECT_EQ(text.substr(text.size() - 13), withNull(".000000\r\nV\r\n"));
}
