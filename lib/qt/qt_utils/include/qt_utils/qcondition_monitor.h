#pragma once

#include <QObject>
#include <QQmlListProperty>
#include <QString>
#include <QStringList>

#include <vector>

namespace qt_utils {

/// One condition of a form or a dialog, with the message that tells the user what
/// is wrong, and a group of such conditions. A monitor is good when its precondition
/// is false (it does not apply), or when its condition holds and all its members are
/// good; its messages are its own (when the condition fails) followed by those of
/// its failing members.
class QConditionMonitor : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("DefaultProperty", "members")
    Q_PROPERTY(bool precondition READ precondition WRITE setPrecondition NOTIFY preconditionChanged)
    Q_PROPERTY(bool condition READ condition WRITE setCondition NOTIFY conditionChanged)
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY messageChanged)
    Q_PROPERTY(bool good READ good NOTIFY outcomeChanged)
    Q_PROPERTY(QStringList messages READ messages NOTIFY outcomeChanged)
    Q_PROPERTY(qt_utils::QConditionMonitor* group READ group WRITE setGroup NOTIFY groupChanged)
    Q_PROPERTY(QQmlListProperty<qt_utils::QConditionMonitor> members READ membersProperty)

public:
    explicit QConditionMonitor(QObject* parent = nullptr);
    ~QConditionMonitor() override;

    bool precondition() const { return m_precondition; }
    void setPrecondition(bool precondition);
    bool condition() const { return m_condition; }
    void setCondition(bool condition);
    QString message() const { return m_message; }
    void setMessage(const QString& message);
    bool good() const { return m_good; }
    QStringList messages() const { return m_messages; }

    QConditionMonitor* group() const { return m_group; }
    /// Leaves the old group and joins @p group (null: none).
    void setGroup(QConditionMonitor* group);

    const std::vector<QConditionMonitor*>& members() const { return m_members; }
    /// Adds @p member (ignored when null or already there) and makes this its group.
    Q_INVOKABLE void addMember(qt_utils::QConditionMonitor* member);
    /// Takes @p member out; it is left without a group.
    Q_INVOKABLE void removeMember(qt_utils::QConditionMonitor* member);

    QQmlListProperty<QConditionMonitor> membersProperty();

Q_SIGNALS:
    void preconditionChanged(bool precondition);
    void conditionChanged(bool condition);
    void messageChanged(QString msg);
    void outcomeChanged();
    void groupChanged();

private Q_SLOTS:
    void groupDestroyed(QObject* obj);
    void evaluate();

private:
    void detachMember(QConditionMonitor* member);

    static void appendMember(QQmlListProperty<QConditionMonitor>* list, QConditionMonitor* member);
    static int memberCount(QQmlListProperty<QConditionMonitor>* list);
    static QConditionMonitor* memberAt(QQmlListProperty<QConditionMonitor>* list, int i);
    static void clearMembers(QQmlListProperty<QConditionMonitor>* list);

    bool m_precondition = true;
    bool m_condition = true;
    QString m_message;
    bool m_good = true;
    QStringList m_messages;
    QConditionMonitor* m_group = nullptr;
    std::vector<QConditionMonitor*> m_members;
};

} // namespace qt_utils
