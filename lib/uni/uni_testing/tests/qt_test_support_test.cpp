// The Qt test main: stray Qt warnings and model faults fail the test, captured ones don't.
#include <uni_testing/model_tester.h>
#include <uni_testing/qt_message_capture.h>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QAbstractListModel>
#include <QCoreApplication>
#include <QLoggingCategory>

#include <thread>

namespace {

Q_LOGGING_CATEGORY(testCategory, "uni_testing.test")

TEST(QtTestMain, HasACoreApplication)
{
    EXPECT_NE(QCoreApplication::instance(), nullptr);
}

TEST(QtTestMain, StrayWarningFailsTheTest)
{
    EXPECT_NONFATAL_FAILURE(qWarning("something odd"), "unexpected Qt warning [default]: something odd");
    EXPECT_NONFATAL_FAILURE(qCritical("worse"), "unexpected Qt critical");
}

TEST(QtTestMain, DebugAndInfoPass)
{
    qDebug("a note");
    qInfo("another");
}

TEST(QtMessageCapture, RecordsWarningsWithTheirCategory)
{
    uni_testing::QtMessageCapture capture;
    qWarning("first %d", 1);
    qCWarning(testCategory) << "second";
    qDebug("third");
    ASSERT_EQ(capture.records().size(), 3u);
    EXPECT_EQ(capture.records().at(1).category, "uni_testing.test");
    EXPECT_TRUE(capture.contains(QtWarningMsg, "first 1"));
    EXPECT_EQ(capture.count(QtWarningMsg, ""), 2u);
    EXPECT_EQ(capture.count(QtDebugMsg, "third"), 1u);
    EXPECT_FALSE(capture.contains(QtCriticalMsg, "first"));
    capture.clear();
    EXPECT_TRUE(capture.records().empty());
}

TEST(QtMessageCapture, RecordsFromOtherThreads)
{
    uni_testing::QtMessageCapture capture;
    std::thread worker([] { qWarning("from a worker"); });
    worker.join();
    EXPECT_TRUE(capture.contains(QtWarningMsg, "from a worker"));
}

TEST(QtMessageCapture, InnerCaptureTakesTheMessagesWhileItLives)
{
    uni_testing::QtMessageCapture outer;
    {
        uni_testing::QtMessageCapture inner;
        qWarning("inner");
        EXPECT_EQ(inner.count(QtWarningMsg, "inner"), 1u);
    }
    qWarning("outer");
    EXPECT_EQ(outer.count(QtWarningMsg, "inner"), 0u);
    EXPECT_EQ(outer.count(QtWarningMsg, "outer"), 1u);
}

/// A list that announces one row more than it inserts.
class BrokenModel : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : m_rows; }
    QVariant data(const QModelIndex&, int) const override { return {}; }
    void insertWrongly()
    {
        beginInsertRows({}, m_rows, m_rows + 1);
        ++m_rows;
        endInsertRows();
    }

private:
    int m_rows = 0;
};

BrokenModel* g_broken = nullptr;

TEST(ModelTester, FaultsFailTheTestEvenInsideACapture)
{
    BrokenModel model;
    uni_testing::attachModelTester(&model);
    g_broken = &model;
    uni_testing::QtMessageCapture capture;
    EXPECT_NONFATAL_FAILURE(g_broken->insertWrongly(), "[qt.modeltest]");
    g_broken = nullptr;
}

} // namespace
