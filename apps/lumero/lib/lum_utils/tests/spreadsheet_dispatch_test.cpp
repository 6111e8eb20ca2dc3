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

#include <sstream>

using lum_utils::CSVBuilder;
using lum_utils::DIFBuilder;
using lum_utils::IfSimpleSpreadsheetBuilder;
using lum_utils::SimpleSpreadsheetBuilderDispatcher;
using lum_utils::SpreadsheetExport;
using lum_utils::SpreadsheetMLBuilder;
using lum_utils::TXTBuilder;
using lum_utils_test::writeSmallTable;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// Records every call, prefixed with its own tag, into a journal shared by several.
class RecordingBuilder : public IfSimpleSpreadsheetBuilder
{
public:
    RecordingBuilder(std::string tag, std::vector<std::string>& journal)
        : m_tag(std::move(tag)), m_journal(journal)
    {}

    void startTable(const std::string& name, std::uint32_t columns, std::uint32_t rows) override
    {
        record("startTable " + name + " " + std::to_string(columns) + "x" + std::to_string(rows));
    }
    void setDimensions(std::uint32_t columns, std::uint32_t rows) override
    {
        record("setDimensions " + std::to_string(columns) + "x" + std::to_string(rows));
    }
    void beginRow() override { record("beginRow"); }
    void endRow() override { record("endRow"); }
    void addCell(const std::string& text) override { record("text " + text); }
    void addCell(double value) override
    {
        std::ostringstream out;
        out << "number " << value;
        record(out.str());
    }
    void addEmptyCell() override { record("empty"); }
    void endTable() override { record("endTable"); }
    const char* data() const override { return m_tag.c_str(); }
    std::size_t size() const override { return m_tag.size(); }
    std::string toString() const override { return m_tag; }

private:
    void record(const std::string& call) { m_journal.push_back(m_tag + ": " + call); }

    std::string m_tag;
    std::vector<std::string>& m_journal;
};

} // namespace

TEST(SimpleSpreadsheetBuilderDispatcher, PassesEveryCallToEachBuilderInOrder)
{
    std::vector<std::string> journal;
    RecordingBuilder first("A", journal);
    RecordingBuilder second("B", journal);
    SimpleSpreadsheetBuilderDispatcher dispatcher;
    dispatcher.addBuilder(&first);
    dispatcher.addBuilder(&second);

    dispatcher.startTable("T", 3, 1);
    dispatcher.setDimensions(4, 2);
    dispatcher.beginRow();
    dispatcher.addCell("x");
    dispatcher.addCell(2.5);
    dispatcher.addEmptyCell();
    dispatcher.addEmptyCells(2);
    dispatcher.endRow();
    dispatcher.endTable();

    EXPECT_THAT(journal,
                ElementsAre("A: startTable T 3x1", "B: startTable T 3x1", "A: setDimensions 4x2",
                            "B: setDimensions 4x2", "A: beginRow", "B: beginRow", "A: text x", "B: text x",
                            "A: number 2.5", "B: number 2.5", "A: empty", "B: empty", "A: empty", "B: empty",
                            "A: empty", "B: empty", "A: endRow", "B: endRow", "A: endTable", "B: endTable"));
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
