#include <qt_utils/qcondition_monitor.h>
#include <qt_utils/qt_checked_connect.h>

#include <algorithm>

namespace qt_utils {

QConditionMonitor::QConditionMonitor(QObject* parent) : QObject(parent) {}

QConditionMonitor::~QConditionMonitor()
{
    // Leave the group so that it re-evaluates without us; members hear of our end
    // through destroyed.
    if (m_group != nullptr) {
        disconnect(m_group, nullptr, this, nullptr);
        m_group->detachMember(this);
    }
    for (QConditionMonitor* member : m_members)
        disconnect(member, nullptr, this, nullptr);
}

void QConditionMonitor::setPrecondition(bool precondition)
{
    if (m_precondition == precondition)
        return;
    m_precondition = precondition;
    Q_EMIT preconditionChanged(m_precondition);
    evaluate();
}

void QConditionMonitor::setCondition(bool condition)
{
    if (m_condition == condition)
        return;
    m_condition = condition;
    Q_EMIT conditionChanged(m_condition);
    evaluate();
}

void QConditionMonitor::setMessage(const QString& message)
{
    if (m_message == message)
        return;
    m_message = message;
    Q_EMIT messageChanged(m_message);
    evaluate();
}

void QConditionMonitor::setGroup(QConditionMonitor* group)
{
    if (m_group == group || group == this)
        return;
    QConditionMonitor* old = m_group;
    m_group = group;
    if (old != nullptr) {
        CHECKED_DISCONNECT(old, &QObject::destroyed, this, &QConditionMonitor::groupDestroyed);
        old->removeMember(this);
    }
    if (group != nullptr) {
        CHECKED_CONNECT(group, &QObject::destroyed, this, &QConditionMonitor::groupDestroyed);
        group->addMember(this);
    }
    Q_EMIT groupChanged();
}

void QConditionMonitor::addMember(QConditionMonitor* member)
{
    if (member == nullptr || member == this ||
        std::find(m_members.begin(), m_members.end(), member) != m_members.end())
        return;
    m_members.push_back(member);
    CHECKED_CONNECT(member, &QConditionMonitor::outcomeChanged, this, &QConditionMonitor::evaluate);
    member->setGroup(this);
    evaluate();
}

void QConditionMonitor::removeMember(QConditionMonitor* member)
{
    const auto it = std::find(m_members.begin(), m_members.end(), member);
    if (it == m_members.end())
        return;
    m_members.erase(it);
    CHECKED_DISCONNECT(member, &QConditionMonitor::outcomeChanged, this, &QConditionMonitor::evaluate);
    if (member->m_group == this)
        member->setGroup(nullptr);
    evaluate();
}

QQmlListProperty<QConditionMonitor> QConditionMonitor::membersProperty()
{
    return QQmlListProperty<QConditionMonitor>(this, nullptr, &QConditionMonitor::appendMember,
                                               &QConditionMonitor::memberCount, &QConditionMonitor::memberAt,
                                               &QConditionMonitor::clearMembers);
}

void QConditionMonitor::groupDestroyed(QObject* obj)
{
    if (!UNI_ASSERT(obj == m_group))
        return;
    m_group = nullptr;
    Q_EMIT groupChanged();
}

void QConditionMonitor::evaluate()
{
    bool good = true;
    QStringList messages;
    if (m_precondition) {
        good = m_condition;
        if (!m_condition)
            messages.append(m_message);
        for (const QConditionMonitor* member : m_members) {
            if (!member->m_good) {
                good = false;
                messages.append(member->m_messages);
            }
        }
    }
    if (good == m_good && messages == m_messages)
        return;
    m_good = good;
    m_messages = messages;
    Q_EMIT outcomeChanged();
}

void QConditionMonitor::detachMember(QConditionMonitor* member)
{
    const auto it = std::find(m_members.begin(), m_members.end(), member);
    if (it == m_members.end())
        return;
    m_members.erase(it);
    evaluate();
}

void QConditionMonitor::appendMember(QQmlListProperty<QConditionMonitor>* list, QConditionMonitor* member)
{
    static_cast<QConditionMonitor*>(list->object)->addMember(member);
}

int QConditionMonitor::memberCount(QQmlListProperty<QConditionMonitor>* list)
{
    return static_cast<int>(static_cast<QConditionMonitor*>(list->object)->m_members.size());
}

QConditionMonitor* QConditionMonitor::memberAt(QQmlListProperty<QConditionMonitor>* list, int i)
{
    const auto& members = static_cast<QConditionMonitor*>(list->object)->m_members;
    return i >= 0 && i < static_cast<int>(members.size()) ? members[static_cast<std::size_t>(i)] : nullptr;
}

void QConditionMonitor::clearMembers(QQmlListProperty<QConditionMonitor>* list)
{
    auto* self = static_cast<QConditionMonitor*>(list->object);
    const std::vector<QConditionMonitor*> members = self->m_members;
    for (QConditionMonitor* member : members)
        self->removeMember(member);
}

} // namespace qt_utils
