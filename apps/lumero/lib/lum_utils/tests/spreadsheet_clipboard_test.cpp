// The last step of a table copy: the formats reach the system clipboard.
#include <lum_utils/spreadsheet_export.h>

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

TEST(SpreadsheetExport, CopyPutsEveryFormatOnTheClipboard)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Kept to the end of the process: the offscreen platform does not free its screen.
    static int argc = 1;
    static char name[] = "lum_utils_clipboard_tests";
    static char* argv[] = {name, nullptr};
    static QGuiApplication* const application = new QGuiApplication(argc, argv);
    ASSERT_NE(application, nullptr);

    lum_utils::SpreadsheetExport all(QLocale::c());
    all.builder().startTable("t", 2, 1);
    all.builder().beginRow();
    all.builder().addCell("a");
    all.builder().addCell(1.5);
    all.builder().endRow();
    all.builder().endTable();
    all.copyToClipboard(*QGuiApplication::clipboard());

    const QMimeData* mime = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(mime, nullptr);
    EXPECT_EQ(mime->text(), "a\t1.5\r\n");
    EXPECT_EQ(mime->data("Csv"), QByteArray("a\t1.5\r\n"));
    EXPECT_EQ(mime->data("Data Interchange Format").toStdString(), all.dif().toString());
    EXPECT_EQ(mime->data("XML Spreadsheet").toStdString(), all.xml().toString());
}
