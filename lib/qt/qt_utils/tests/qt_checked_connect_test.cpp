#include <qt_utils/qt_checked_connect.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/qt_message_capture.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

namespace ccheck {

class Emitter : public QObject
{
    Q_OBJECT
public:
    void fire(int v) { Q_EMIT fired(v); }
Q_SIGNALS:
    void fired(int value);
};

class Listener : public QObject
{
    Q_OBJECT
public:
    int last = 0;
    int calls = 0;
public Q_SLOTS:
    void take(int value)
    {
        last = value;
        ++calls;
    }
};

TEST(CheckedConnect, ByStringsConnectsAndReturnsTheConnection)
{
    Emitter emitter;
    Listener listener;
    const QMetaObject::Connection c =
        CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(take(int)));
    EXPECT_TRUE(static_cast<bool>(c));
    emitter.fire(7);
    EXPECT_EQ(listener.last, 7);
}

TEST(CheckedConnect, ByStringsFailureNamesTheArgumentTexts)
{
    uni_testing::QtMessageCapture qt_messages;
    uni_testing::AssertCapture asserts;
    Emitter emitter;
    Listener listener;
    const QMetaObject::Connection c =
        CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(noSuchSlot(int)));
    EXPECT_FALSE(static_cast<bool>(c));
    ASSERT_EQ(asserts.size(), 1u);
    EXPECT_TRUE(asserts.fired("", "CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), &listener, "
                                  "SLOT(noSuchSlot(int))) failed."));
    EXPECT_EQ(asserts.records().front().message,
              "CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(noSuchSlot(int))) failed.");
    EXPECT_NE(asserts.records().front().file.find("qt_checked_connect_test.cpp"), std::string::npos)
        << "the report points at the caller";
    EXPECT_TRUE(qt_messages.contains(QtWarningMsg, "noSuchSlot"));
}

TEST(CheckedConnect, ByStringsWithConnectionTypeKeepsOnlyTheFourEndsInTheMessage)
{
    uni_testing::QtMessageCapture qt_messages;
    uni_testing::AssertCapture asserts;
    Emitter emitter;
    const QObject* nobody = nullptr;
    CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), nobody, SLOT(take(int)), Qt::QueuedConnection);
    EXPECT_TRUE(asserts.fired("", "CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), nobody, SLOT(take(int))) "
                                  "failed."));
}

TEST(CheckedConnect, ByStringsDisconnect)
{
    Emitter emitter;
    Listener listener;
    CHECKED_CONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(take(int)));
    EXPECT_TRUE(CHECKED_DISCONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(take(int))));
    emitter.fire(3);
    EXPECT_EQ(listener.calls, 0);

    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(CHECKED_DISCONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(take(int))));
    EXPECT_TRUE(asserts.fired(
        "", "CHECKED_DISCONNECT(&emitter, SIGNAL(fired(int)), &listener, SLOT(take(int))) failed."));
}

TEST(CheckedConnect, ByMemberPointers)
{
    Emitter emitter;
    Listener listener;
    const auto c = CHECKED_CONNECT(&emitter, &Emitter::fired, &listener, &Listener::take);
    EXPECT_TRUE(static_cast<bool>(c));
    emitter.fire(11);
    EXPECT_EQ(listener.last, 11);
    EXPECT_TRUE(CHECKED_DISCONNECT(&emitter, &Emitter::fired, &listener, &Listener::take));
    emitter.fire(12);
    EXPECT_EQ(listener.last, 11);
}

TEST(CheckedConnect, ByMemberPointersToNullReceiverReportsNull)
{
    uni_testing::QtMessageCapture qt_messages;
    uni_testing::AssertCapture asserts;
    Emitter emitter;
    Listener* listener = nullptr;
    const auto c = CHECKED_CONNECT(&emitter, &Emitter::fired, listener, &Listener::take);
    EXPECT_FALSE(static_cast<bool>(c));
    EXPECT_TRUE(asserts.fired("", "CHECKED_CONNECT from ccheck::Emitter to null failed."))
        << "class names come from the meta objects";
}

TEST(CheckedConnect, ByMemberPointersFromNullSenderReportsNull)
{
    uni_testing::QtMessageCapture qt_messages;
    uni_testing::AssertCapture asserts;
    Emitter* emitter = nullptr;
    Listener listener;
    CHECKED_CONNECT(emitter, &Emitter::fired, &listener, &Listener::take);
    EXPECT_TRUE(asserts.fired("", "CHECKED_CONNECT from null to ccheck::Listener failed."));
}

TEST(CheckedConnect, ByMemberPointersDisconnectOfNothingReports)
{
    uni_testing::AssertCapture asserts;
    Emitter emitter;
    Listener listener;
    EXPECT_FALSE(CHECKED_DISCONNECT(&emitter, &Emitter::fired, &listener, &Listener::take));
    EXPECT_TRUE(asserts.fired("", "CHECKED_DISCONNECT from ccheck::Emitter to ccheck::Listener failed."));
}

TEST(CheckedConnect, UniqueConnectionRefusedTwiceIsReported)
{
    uni_testing::AssertCapture asserts;
    Emitter emitter;
    Listener listener;
    EXPECT_TRUE(static_cast<bool>(
        CHECKED_CONNECT(&emitter, &Emitter::fired, &listener, &Listener::take, Qt::UniqueConnection)));
    EXPECT_EQ(asserts.size(), 0u);
    EXPECT_FALSE(static_cast<bool>(
        CHECKED_CONNECT(&emitter, &Emitter::fired, &listener, &Listener::take, Qt::UniqueConnection)));
    EXPECT_EQ(asserts.size(), 1u);
}

TEST(CheckedConnect, ToFunctorWithAndWithoutContext)
{
    Emitter emitter;
    QObject context;
    int seen = 0;
    EXPECT_TRUE(static_cast<bool>(CHECKED_CONNECT(&emitter, &Emitter::fired, [&seen](int v) { seen += v; })));
    EXPECT_TRUE(static_cast<bool>(
        CHECKED_CONNECT(&emitter, &Emitter::fired, &context, [&seen](int v) { seen += 10 * v; })));
    emitter.fire(2);
    EXPECT_EQ(seen, 22);
}

TEST(CheckedConnect, ToFunctorFailureNamesTheSender)
{
    uni_testing::QtMessageCapture qt_messages;
    uni_testing::AssertCapture asserts;
    Emitter* emitter = nullptr;
    CHECKED_CONNECT(emitter, &Emitter::fired, [](int) {});
    EXPECT_TRUE(asserts.fired("", "CHECKED_CONNECT from null to a non QObject slot failed."));
}

TEST(CheckedConnect, FailureWithoutHandlerGoesOn)
{
    // With no handler installed the report returns and the caller carries on.
    uni_testing::QtMessageCapture qt_messages;
    const uni::AssertHandler previous = uni::setAssertHandler(nullptr);
    Emitter emitter;
    Listener* nobody = nullptr;
    const auto c = CHECKED_CONNECT(&emitter, &Emitter::fired, nobody, &Listener::take);
    uni::setAssertHandler(previous);
    EXPECT_FALSE(static_cast<bool>(c));
}

TEST(CheckedConnect, EndNames)
{
    Emitter emitter;
    EXPECT_STREQ(qt_utils::connectionEndName(nullptr), "null");
    EXPECT_STREQ(qt_utils::connectionEndName(&emitter), "ccheck::Emitter");
}

} // namespace ccheck

#include "qt_checked_connect_test.moc"
