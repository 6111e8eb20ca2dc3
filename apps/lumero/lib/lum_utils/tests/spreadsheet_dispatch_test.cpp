#include "spreadsheet_test_tables.h"

#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/simple_spreadsheet_builder_dispatcher.h>
#include <lum_utils/spreadsheet_export.h>
#include <lum_utils/spreadsheet_mime_data.h>
#include <lum_utils/spreadsheet_ml_builder.h>
#include <lum_utils/txt_builder.h>

#include <uni_testing/assert_capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMimeData>

using lum_utils::CSVBuilder;
using lum_utils::DIFBuilder;
using lum_utils::IfSimpleSpreadsheetBuilder;
using lum_utils::SimpleSpreadsheetBuilderDispatcher;
using lum_utils::SpreadsheetExport;
using lum_utils::SpreadsheetMLBuilder;
using lum_utils::TXTBuilder;
using lum_utils_test::writeSmallTable;
using ::testing::IsEmpty;

TEST(SimpleSpreadsheetBuilderDispatcher, PassesEveryCallToEachBuilder)
{
    uni_testing::AssertCapture asserts;
    CSVBuilder csv;
    DIFBuilder dif;
    SimpleSpreadsheetBuilderDispatcher dispatcher;
    dispatcher.addBuilder(&csv);
    dispatcher.addBuilder(&dif);

    dispatcher.startTable("T", 3, 1);
    dispatcher.setDimensions(5, 2); // without it the CSV builder would assert at the fourth cell
    dispatcher.beginRow();
    dispatcher.addCell("x");
    dispatcher.addCell(2.5);
    dispatcher.addEmptyCell();
    dispatcher.addEmptyCells(2);
    dispatcher.endRow();
    dispatcher.endTable();

    EXPECT_EQ(asserts.size(), 0u);
    EXPECT_EQ(csv.toString(), "x\t2.5\t\t\t\r\n");
    EXPECT_EQ(dif.toString(),
              std::string("TABLE\r\n0,1\r\n\"EXCEL\"\r\nVECTORS\r\n0,3\r\n\"\"\r\nTUPLES\r\n0,1\r\n\"\"\r\n"
                          "DATA\r\n0,0\r\n\"\"\r\n-1,0\r\nBOT\r\n1,0\r\n\"x\"\r\n0,2.500000\r\nV\r\n"
                          "1,0\r\n\"\"\r\n1,0\r\n\"\"\r\n1,0\r\n\"\"\r\n-1,0\r\nEOD\r\n") +
                  '\0');
}

TEST(SimpleSpreadsheetBuilderDispatcher, RefusesNullAndItselfAndHasNoTextOfItsOwn)
{
    uni_testing::AssertCapture asserts;
    SimpleSpreadsheetBuilderDispatcher dispatcher;
    dispatcher.addBuilder(nullptr);
    EXPECT_TRUE(asserts.fired("builder != nullptr && builder != this"));
    asserts.clear();
    dispatcher.addBuilder(&dispatcher);
    EXPECT_TRUE(asserts.fired("builder != nullptr && builder != this"));
    EXPECT_THAT(dispatcher.builders(), IsEmpty());
    // Had it kept itself, this would recurse without end.
    writeSmallTable(dispatcher);
    EXPECT_EQ(dispatcher.data(), nullptr) << "no text of its own";
    EXPECT_EQ(dispatcher.size(), 0u);
    EXPECT_EQ(dispatcher.toString(), "");
}

TEST(SpreadsheetExport, FillsAllFormatsAsIfWrittenOneByOne)
{
    SpreadsheetExport all(QLocale::c());
    all.csv().setColumnSeparator(";");
    writeSmallTable(all.builder());

    SpreadsheetMLBuilder xml;
    CSVBuilder csv;
    csv.setColumnSeparator(";");
    TXTBuilder txt(QLocale::c());
    DIFBuilder dif;
    for (IfSimpleSpreadsheetBuilder* builder :
         std::initializer_list<IfSimpleSpreadsheetBuilder*>{&xml, &csv, &txt, &dif})
        writeSmallTable(*builder);

    EXPECT_EQ(all.xml().toString(), xml.toString());
    EXPECT_EQ(all.csv().toString(), csv.toString());
    EXPECT_EQ(all.txt().toString(), txt.toString());
    EXPECT_EQ(all.dif().toString(), dif.toString());
    EXPECT_EQ(all.csv().toString(), "name;1.5;\r\nx;-2;1e+20\r\n");
}

TEST(SpreadsheetExport, PutsEachFormatUnderItsClipboardName)
{
    SpreadsheetExport all(QLocale::c());
    writeSmallTable(all.builder());

    QMimeData mime;
    all.fillMimeData(mime);
    EXPECT_EQ(mime.text(), QStringLiteral("name\t1.5\t\r\nx\t-2\t1e+20\r\n"));
    const QByteArray dif_bytes = mime.data(QStringLiteral("Data Interchange Format"));
    EXPECT_EQ(dif_bytes.toStdString(), all.dif().toString());
    EXPECT_TRUE(dif_bytes.endsWith('\0'));
    EXPECT_EQ(mime.data(QStringLiteral("XML Spreadsheet")).toStdString(), all.xml().toString());
    EXPECT_EQ(mime.data(QStringLiteral("application/x-qt-windows-mime;value=\"Csv\"")).toStdString(),
              all.csv().toString());
    EXPECT_EQ(mime.data(QStringLiteral("Csv")).toStdString(), all.csv().toString());
}

TEST(SpreadsheetExport, AppendsToMimeDataAlreadyThere)
{
    SpreadsheetExport all(QLocale::c());
    all.builder().startTable("t", 1, 1);
    all.builder().beginRow();
    all.builder().addCell("new");
    all.builder().endRow();
    all.builder().endTable();

    QMimeData mime;
    mime.setData(QStringLiteral("Csv"), QByteArray("old\r\n"));
    lum_utils::fillSpreadsheetMimeData(mime, all.txt(), all.dif(), all.xml(), all.csv());
    EXPECT_EQ(mime.data(QStringLiteral("Csv")), QByteArray("old\r\nnew\r\n"));
    EXPECT_EQ(mime.data(QStringLiteral("application/x-qt-windows-mime;value=\"Csv\"")),
              QByteArray("new\r\n"));
}
