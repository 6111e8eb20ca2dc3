// Calls from other threads: refused and asserted; deaths in other threads arrive queued.
#include "list_model_fixture.h"

#include <uni_testing/assert_capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>

#include <thread>

using list_model_test::Item;
using list_model_test::RecordingModel;
using ::testing::IsEmpty;

namespace {

using ListModelThreads = list_model_test::ListModelFixture;

TEST_F(ListModelThreads, ChangesFromAForeignThreadAreAssertedAndRefused)
{
    fill();
    uni_testing::AssertCapture asserts;
    bool in_thread = true;
    std::thread worker([&] {
        in_thread = model.runningInObjectThread();
        model.append(&d);
        model.listInsert(0, &e);
        model.listRemove(0, 1);
        model.removeItem(&a);
        model.clearList();
        model.move(0, 1);
        model.setList({&d});
        EXPECT_EQ(model.takeAt(0), nullptr);
    });
    worker.join();
    EXPECT_FALSE(in_thread);
    EXPECT_TRUE(model.runningInObjectThread());
    EXPECT_EQ(asserts.size(), 8u);
    EXPECT_TRUE(asserts.fired("runningInObjectThread()"));
    for (const auto& record : asserts.records()) {
        EXPECT_EQ(record.expression, "runningInObjectThread()");
        EXPECT_NE(record.file.find("lib/qt/qobject_list_model/src/qobjectlist_model"), std::string::npos)
            << record.file;
    }
    EXPECT_EQ(model.typedList(), (QList<Item*>{&a, &b, &c}));
    EXPECT_THAT(model.takeLog(), IsEmpty());
}

TEST_F(ListModelThreads, ReadsFromAForeignThreadAreAsserted)
{
    fill();
    uni_testing::AssertCapture asserts;
    std::thread worker([&] {
        model.contains(&a);
        model.indexOf(&a);
        model.indexOfName("a");
    });
    worker.join();
    EXPECT_EQ(asserts.size(), 3u);
    EXPECT_TRUE(asserts.fired("runningInObjectThread()"));
}

TEST_F(ListModelThreads, TrackedObjectDyingInAForeignThreadLeavesInTheModelThread)
{
    model.setTracking(true);
    auto* x = new Item("x");
    model.append(QList<QObject*>{&a, x});
    model.takeLog();
    std::thread worker([x] { delete x; });
    worker.join();
    // The destroyed signal crossed threads: nothing happened yet.
    EXPECT_EQ(model.size(), 2);
    QCoreApplication::processEvents();
    EXPECT_EQ(model.size(), 1);
    EXPECT_EQ(model.get(0), &a);
    const auto log = model.takeLog();
    EXPECT_THAT(log, ::testing::Contains("count 1"));
}

} // namespace
