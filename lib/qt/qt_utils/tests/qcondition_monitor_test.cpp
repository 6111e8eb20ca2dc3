#include <qt_utils/qcondition_monitor.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <memory>

using qt_utils::QConditionMonitor;

namespace {

QStringList list(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* t : texts)
        result.append(QString::fromUtf8(t));
    return result;
}

TEST(QConditionMonitor, FreshMonitorIsGood)
{
    QConditionMonitor m;
    EXPECT_TRUE(m.precondition());
    EXPECT_TRUE(m.condition());
    EXPECT_TRUE(m.good());
    EXPECT_TRUE(m.messages().isEmpty());
    EXPECT_EQ(m.group(), nullptr);
}

TEST(QConditionMonitor, FailingConditionGivesItsMessage)
{
    QConditionMonitor m;
    QSignalSpy outcome(&m, &QConditionMonitor::outcomeChanged);
    QSignalSpy condition(&m, &QConditionMonitor::conditionChanged);
    QSignalSpy message(&m, &QConditionMonitor::messageChanged);
    ASSERT_TRUE(outcome.isValid() && condition.isValid() && message.isValid());

    m.setMessage("name is empty");
    ASSERT_EQ(message.count(), 1);
    EXPECT_EQ(message.at(0).at(0).toString(), "name is empty");
    EXPECT_EQ(outcome.count(), 0) << "the message alone does not change a good outcome";

    m.setCondition(false);
    ASSERT_EQ(condition.count(), 1);
    EXPECT_FALSE(condition.at(0).at(0).toBool());
    EXPECT_EQ(outcome.count(), 1);
    EXPECT_FALSE(m.good());
    EXPECT_EQ(m.messages(), list({"name is empty"}));

    m.setMessage("name is missing");
    EXPECT_EQ(outcome.count(), 2) << "a changed message list is a changed outcome";
    EXPECT_EQ(m.messages(), list({"name is missing"}));

    m.setCondition(false);
    EXPECT_EQ(condition.count(), 1) << "unchanged values are not emitted";
    m.setCondition(true);
    EXPECT_TRUE(m.good());
    EXPECT_TRUE(m.messages().isEmpty());
    EXPECT_EQ(outcome.count(), 3);
}

TEST(QConditionMonitor, GroupCollectsMessagesOfFailingMembersInOrder)
{
    QConditionMonitor group;
    QConditionMonitor a;
    QConditionMonitor b;
    a.setMessage("a fails");
    b.setMessage("b fails");
    group.setMessage("group fails");
    group.addMember(&a);
    b.setGroup(&group);
    ASSERT_EQ(group.members().size(), 2u);
    EXPECT_EQ(a.group(), &group);
    EXPECT_EQ(b.group(), &group);

    QSignalSpy outcome(&group, &QConditionMonitor::outcomeChanged);
    ASSERT_TRUE(outcome.isValid());
    b.setCondition(false);
    EXPECT_EQ(outcome.count(), 1);
    EXPECT_FALSE(group.good());
    EXPECT_EQ(group.messages(), list({"b fails"}));

    a.setCondition(false);
    group.setCondition(false);
    EXPECT_EQ(group.messages(), list({"group fails", "a fails", "b fails"}));
}

TEST(QConditionMonitor, NestedGroupsPassMessagesUp)
{
    QConditionMonitor top;
    QConditionMonitor middle;
    QConditionMonitor leaf;
    leaf.setMessage("leaf");
    middle.setGroup(&top);
    leaf.setGroup(&middle);
    leaf.setCondition(false);
    EXPECT_FALSE(top.good());
    EXPECT_EQ(top.messages(), list({"leaf"}));
}

TEST(QConditionMonitor, FalsePreconditionStaysGoodEvenWhenAllMembersFail)
{
    QConditionMonitor group;
    QConditionMonitor a;
    a.setMessage("a");
    a.setCondition(false);
    group.addMember(&a);
    group.setCondition(false);
    EXPECT_FALSE(group.good());

    QSignalSpy precondition(&group, &QConditionMonitor::preconditionChanged);
    ASSERT_TRUE(precondition.isValid());
    group.setPrecondition(false);
    ASSERT_EQ(precondition.count(), 1);
    EXPECT_FALSE(precondition.at(0).at(0).toBool());
    EXPECT_TRUE(group.good());
    EXPECT_TRUE(group.messages().isEmpty());
}

TEST(QConditionMonitor, AddingTwiceIsIgnored)
{
    QConditionMonitor group;
    QConditionMonitor a;
    group.addMember(&a);
    group.addMember(&a);
    a.setGroup(&group);
    EXPECT_EQ(group.members().size(), 1u);
    QSignalSpy outcome(&group, &QConditionMonitor::outcomeChanged);
    ASSERT_TRUE(outcome.isValid());
    a.setCondition(false);
    EXPECT_EQ(outcome.count(), 1) << "one connection per member";
}

TEST(QConditionMonitor, ChangingGroupLeavesTheOld)
{
    QConditionMonitor first;
    QConditionMonitor second;
    QConditionMonitor a;
    a.setCondition(false);
    QSignalSpy group_changed(&a, &QConditionMonitor::groupChanged);
    ASSERT_TRUE(group_changed.isValid());
    a.setGroup(&first);
    EXPECT_FALSE(first.good());
    a.setGroup(&second);
    EXPECT_EQ(group_changed.count(), 2);
    EXPECT_TRUE(first.good()) << "the old group re-evaluates without the member";
    EXPECT_TRUE(first.members().empty());
    EXPECT_FALSE(second.good());
    a.setGroup(nullptr);
    EXPECT_TRUE(second.good());
    EXPECT_EQ(group_changed.count(), 3);
}

TEST(QConditionMonitor, DestroyedGroupIsForgotten)
{
    QConditionMonitor a;
    auto group = std::make_unique<QConditionMonitor>();
    a.setGroup(group.get());
    QSignalSpy group_changed(&a, &QConditionMonitor::groupChanged);
    ASSERT_TRUE(group_changed.isValid());
    group.reset();
    EXPECT_EQ(a.group(), nullptr);
    EXPECT_EQ(group_changed.count(), 1);
}

TEST(QConditionMonitor, DestroyedMemberLeavesTheGroup)
{
    QConditionMonitor group;
    auto a = std::make_unique<QConditionMonitor>();
    a->setMessage("a");
    a->setCondition(false);
    a->setGroup(&group);
    EXPECT_FALSE(group.good());
    a.reset();
    EXPECT_TRUE(group.members().empty());
    EXPECT_TRUE(group.good());
}

TEST(QConditionMonitor, MembersAsQmlListProperty)
{
    QConditionMonitor group;
    QConditionMonitor a;
    QConditionMonitor b;
    QQmlListProperty<QConditionMonitor> members = group.membersProperty();
    members.append(&members, &a);
    members.append(&members, &b);
    EXPECT_EQ(members.count(&members), 2);
    EXPECT_EQ(members.at(&members, 1), &b);
    EXPECT_EQ(members.at(&members, 2), nullptr);
    EXPECT_EQ(a.group(), &group);
    members.clear(&members);
    EXPECT_EQ(members.count(&members), 0);
    EXPECT_EQ(a.group(), nullptr);
}

} // namespace
