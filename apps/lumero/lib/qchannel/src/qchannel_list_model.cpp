#include "qchannel_log.h"
#include <qchannel/qchannel_list_model.h>

#include "config_item_conversion.h"
#include "pool_task.h"

#include <config_items/config_item_variant.h>
#include <config_items/parse_string_visitor.h>
#include <ferrin_core/channel.h>
#include <qt_utils/qt_checked_connect.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <QEvent>
#include <QMetaObject>
#include <QThread>

#include <exception>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <string>
#include <unordered_set>
#include <utility>

namespace lum::qchannel {

namespace {

constexpr int NOTIFICATION_INTERVAL_MS = 100;
/// A flood of messages that never ends must not hold the model's thread.
constexpr int MAX_APPLY_PASSES = 9;

// The hops into the model's thread, as they are reported when Qt refuses one.
constexpr const char* APPEND_CALL =
    "QMetaObject::invokeMethod(this, \"appendChannel\", Qt::BlockingQueuedConnection, "
    "QArgument<lum::qchannel::QChannel* >(\"lum::qchannel::QChannel*\", channel))";
constexpr const char* INSERT_CALL =
    "QMetaObject::invokeMethod(this, \"insertChannel\", Qt::BlockingQueuedConnection, "
    "QArgument<lum::qchannel::QChannel* >(\"lum::qchannel::QChannel*\", new_channel), "
    "QArgument<lum::qchannel::QChannel* >(\"lum::qchannel::QChannel*\", successor))";
constexpr const char* APPEND_MANY_CALL =
    "QMetaObject::invokeMethod(this, \"appendChannels\", Qt::BlockingQueuedConnection, "
    "QArgument<QList<QObject*> >(\"QList<QObject*>\", channels))";
constexpr const char* REMOVE_CALL =
    "QMetaObject::invokeMethod(this, \"removeChannel\", Qt::BlockingQueuedConnection, "
    "QArgument<lum::qchannel::QChannel* >(\"lum::qchannel::QChannel*\", channel))";
constexpr const char* CLEAR_CALL =
    "QMetaObject::invokeMethod(this, \"clearAll\", Qt::BlockingQueuedConnection)";
constexpr const char* SET_CALL =
    "QMetaObject::invokeMethod(this, \"setChannels\", Qt::BlockingQueuedConnection, "
    "QArgument<QVariantList >(\"QVariantList\", channels))";
constexpr const char* APPLY_CALL =
    "QMetaObject::invokeMethod(this, \"applyPendingChannelNotifications\", Qt::BlockingQueuedConnection)";
constexpr const char* BEGIN_BATCH_CALL =
    "QMetaObject::invokeMethod(this, \"beginBatchOperationWithCache\", Qt::BlockingQueuedConnection, "
    "QArgument<QThread* >(\"QThread*\", QThread::currentThread()))";
constexpr const char* END_BATCH_CALL =
    "QMetaObject::invokeMethod(this, \"endBatchOperationAndUpdateWithCache\", Qt::BlockingQueuedConnection, "
    "QArgument<QThread* >(\"QThread*\", QThread::currentThread()))";

/// Reports a hop that Qt refused, with the call as the failed condition.
void checkHop(bool invoked, const char* call, int line)
{
    if (!invoked)
        uni::detail::assertOutcome(uni::assertFailed(call, __FILE__, line));
}

/// Whether @p value names the item @p held of @p channel under @p key. Text is read by
/// the held item's parser; a value of another type that the plain conversion turns into
/// another class of item is compared by its text as well, so that 5 finds "5" of a
/// scalar item. Doubles compare as items do (NaN equals NaN).
bool itemMatches(const ferrin::Channel& channel, const std::string& key, const ferrin::ConfigItem& held,
                 const QVariant& value)
{
    using IdItem = config_items::SingleValueConfigItem<channel_config::ChannelID>;
    if (const auto* id_item = std::get_if<IdItem>(&held)) {
        if (value.type() == QVariant::String &&
            value.toString().toStdString() == id_item->getValue().toString())
            return true;
    }
    const std::optional<ferrin::ConfigItem> wanted = detail::itemForValue(channel, key, value);
    if (wanted && channel_config::asConfigItem(*wanted).equals(channel_config::asConfigItem(held)))
        return true;
    if (value.type() == QVariant::String || !value.canConvert<QString>() ||
        std::holds_alternative<config_items::InvalidConfigItem>(held) ||
        (wanted && wanted->index() == held.index()))
        return false;
    ferrin::ConfigItem parsed = held;
    try {
        return channel_config::ParseStringVisitor().parse(value.toString().toStdString(), parsed) &&
               channel_config::asConfigItem(parsed).equals(channel_config::asConfigItem(held));
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

QChannelListModel::QChannelListModel(NotificationDelivery delivery, bool delete_channels_on_destruction,
                                     QObject* parent)
    : QObjectListModelT<QChannel>(parent), m_delete_channels(delete_channels_on_destruction),
      m_notification_delivery(delivery), m_action_watcher(this), m_notification_timer(this)
{
    qRegisterMetaType<channel_config::ChannelID>("ChannelID");
    qRegisterMetaType<channel_config::ChannelID>();
    qRegisterMetaType<lum::qchannel::QChannel*>();
    qRegisterMetaType<QList<QObject*>>();
    qRegisterMetaType<QThread*>();

    m_notification_timer.setInterval(NOTIFICATION_INTERVAL_MS);
    m_notification_timer.setSingleShot(true);
    CHECKED_CONNECT(&m_notification_timer, &QTimer::timeout, this,
                    &QChannelListModel::applyPendingChannelNotifications);
    CHECKED_CONNECT(&m_action_watcher, &QFutureWatcher<bool>::finished, this,
                    &QChannelListModel::channelActionInProgressChanged);
}

QChannelListModel::~QChannelListModel()
{
    m_notification_timer.stop();
    {
        // The running action reports into the watcher: let it end first.
        const std::lock_guard<std::recursive_mutex> lock(m_action_lock);
        m_action_watcher.disconnect(this);
        m_action_future.waitForFinished();
    }
    // Quietly: whoever still watches this list learns of its end from destroyed().
    blockSignals(true);
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    {
        const std::unique_lock<std::shared_mutex> ids(m_id_lock);
        clearIdEntries();
    }
    QObjectListModel::clearList(m_delete_channels);
}

void QChannelListModel::setChannelConfigManager(ferrin_config::IfChannelConfigManager* manager)
{
    m_channel_config_manager = manager;
}

void QChannelListModel::syncHop() const
{
    m_hop_clock.fetch_add(1, std::memory_order_acq_rel);
}

template <typename Invoke>
void QChannelListModel::hop(Invoke invoke, const char* call, int line) const
{
    syncHop();
    checkHop(invoke(), call, line);
    syncHop();
}

bool QChannelListModel::isListed(const QChannel* channel) const
{
    return channel->ferrinChannel() && channelOf(channel->ferrinChannel()->getChannelId()) == channel;
}

bool QChannelListModel::event(QEvent* event)
{
    if (event->type() != QEvent::MetaCall)
        return QObjectListModelT<QChannel>::event(event);
    // A call from another thread: take over what its caller wrote before the hop, and
    // hand back what the call wrote.
    syncHop();
    const bool handled = QObjectListModelT<QChannel>::event(event);
    syncHop();
    return handled;
}

bool QChannelListModel::onModelThread() const
{
    return QThread::currentThread() == thread();
}

QChannel* QChannelListModel::channelOf(channel_config::ChannelID id) const
{
    const std::shared_lock<std::shared_mutex> ids(m_id_lock);
    const auto found = m_channels_by_hash.find(id);
    return found == m_channels_by_hash.end() ? nullptr : found->second;
}

int QChannelListModel::rowOf(channel_config::ChannelID id) const
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    QChannel* channel = channelOf(id);
    return channel ? indexOf(channel) : -1;
}

void QChannelListModel::pullIntoModelThread(QObject* object) const
{
    // Only the object's own thread may push it away, and only without a parent.
    if (object && object->thread() != thread() && object->thread() == QThread::currentThread() &&
        object->parent() == nullptr)
        object->moveToThread(thread());
}

// ---------------------------------------------------------------------------------------
// Look-ups

QChannel* QChannelListModel::getChannelByID(channel_config::ChannelID id) const
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    return channelOf(id);
}

QChannel* QChannelListModel::getChannelByIDString(const QString& id) const
{
    if (id.isEmpty())
        return nullptr;
    bool ok = false;
    const qulonglong value = id.toULongLong(&ok, 10);
    if (!ok)
        return nullptr;
    return getChannelByID(channel_config::ChannelID(static_cast<std::uint64_t>(value)));
}

QChannel* QChannelListModel::getChannelByIndex(int i) const
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    return at(i);
}

QChannel* QChannelListModel::getChannelByName(const QString& name) const
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    for (QChannel* channel : typedList()) {
        if (channel->name() == name)
            return channel;
    }
    return nullptr;
}

QChannel* QChannelListModel::getChannelByConfigItem(const QString& key, const QVariant& value) const
{
    const std::string std_key = key.toStdString();
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    for (QChannel* channel : typedList()) {
        const std::shared_ptr<ferrin::Channel>& ferrin_channel = channel->ferrinChannel();
        if (!ferrin_channel || !ferrin_channel->hasConfigItem(std_key))
            continue;
        if (itemMatches(*ferrin_channel, std_key, ferrin_channel->getConfigItem(std_key), value))
            return channel;
    }
    return nullptr;
}

QStringList QChannelListModel::getAllIDsStr() const
{
    QStringList ids;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    for (QChannel* channel : typedList())
        ids << channel->getChannelId();
    return ids;
}

QStringList QChannelListModel::uniqueListForProperty(const QString& key, int maxResults) const
{
    QStringList texts;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    for (QChannel* channel : typedList()) {
        if (maxResults > 0 && texts.size() >= maxResults)
            break;
        QString text = channel->getStringRepresentation(key);
        if (text.isEmpty())
            continue;
        text[0] = text[0].toUpper();
        if (!texts.contains(text))
            texts << text;
    }
    return texts;
}

QStringList QChannelListModel::uniqueListForProperty(const QString& key) const
{
    return uniqueListForProperty(key, 0);
}

QChannelListModel* QChannelListModel::makeSubList(const QList<QObject*>& channels) const
{
    auto* sub_list = new QChannelListModel(DELIVERY_IMMEDIATE, false);
    sub_list->setChannelConfigManager(m_channel_config_manager);
    sub_list->appendChannels(channels);
    return sub_list;
}

QChannelListModel* QChannelListModel::getNeededChannels(QChannel* channel) const
{
    if (!channel || !channel->ferrinChannel())
        return nullptr;
    const std::uint64_t id = channel->ferrinChannel()->getChannelId().toUInt64();
    QList<QObject*> needed;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    for (QChannel* candidate : typedList()) {
        const std::shared_ptr<ferrin::Channel>& ferrin_channel = candidate->ferrinChannel();
        if (ferrin_channel && ferrin_channel->getDependentChannels().count(id) > 0)
            needed.append(candidate);
    }
    return makeSubList(needed);
}

QChannelListModel* QChannelListModel::getDependentChannels(QChannel* channel) const
{
    if (!channel || !channel->ferrinChannel())
        return nullptr;
    QList<QObject*> dependent;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    for (const std::uint64_t id : channel->ferrinChannel()->getDependentChannels()) {
        if (QChannel* found = channelOf(channel_config::ChannelID(id)))
            dependent.append(found);
    }
    return makeSubList(dependent);
}

// ---------------------------------------------------------------------------------------
// List changes

void QChannelListModel::insertChannel(QChannel* new_channel, QChannel* successor)
{
    if (!new_channel)
        return;
    if (!onModelThread()) {
        // The successor is moved and the new channel stays where it is: callers on
        // other threads hand in channels that already live in the model's thread.
        if (!UNI_ASSERT(successor))
            return;
        pullIntoModelThread(successor);
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "insertChannel", Qt::BlockingQueuedConnection,
                                                 Q_ARG(lum::qchannel::QChannel*, new_channel),
                                                 Q_ARG(lum::qchannel::QChannel*, successor));
            },
            INSERT_CALL, __LINE__);
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    if (isListed(new_channel))
        return;
    const int row = successor ? indexOf(successor) : -1;
    insert(row < 0 ? size() : row, new_channel);
}

void QChannelListModel::appendChannel(QChannel* channel)
{
    if (!channel)
        return;
    if (!onModelThread()) {
        pullIntoModelThread(channel);
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "appendChannel", Qt::BlockingQueuedConnection,
                                                 Q_ARG(lum::qchannel::QChannel*, channel));
            },
            APPEND_CALL, __LINE__);
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    // A channel object is in the list once: a second row could not be told apart by id.
    if (isListed(channel))
        return;
    append(channel);
}

void QChannelListModel::appendChannels(QList<QObject*> channels)
{
    if (channels.isEmpty())
        return;
    if (!onModelThread()) {
        for (QObject* channel : qAsConst(channels))
            pullIntoModelThread(channel);
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "appendChannels", Qt::BlockingQueuedConnection,
                                                 Q_ARG(QList<QObject*>, channels));
            },
            APPEND_MANY_CALL, __LINE__);
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    QList<QObject*> accepted;
    accepted.reserve(channels.size());
    std::set<QObject*> seen;
    for (QObject* object : qAsConst(channels)) {
        if (!object || !seen.insert(object).second)
            continue;
        // Objects of another class go on, for the base to refuse with its report.
        const auto* channel = qobject_cast<QChannel*>(object);
        if (channel && isListed(channel))
            continue;
        accepted.append(object);
    }
    append(accepted);
}

void QChannelListModel::removeChannel(QChannel* channel)
{
    if (!channel)
        return;
    if (!onModelThread()) {
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "removeChannel", Qt::BlockingQueuedConnection,
                                                 Q_ARG(lum::qchannel::QChannel*, channel));
            },
            REMOVE_CALL, __LINE__);
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    removeItem(channel);
}

void QChannelListModel::clearAll()
{
    if (!onModelThread()) {
        hop([&] { return QMetaObject::invokeMethod(this, "clearAll", Qt::BlockingQueuedConnection); },
            CLEAR_CALL, __LINE__);
        return;
    }
    clearList(m_delete_channels);
}

void QChannelListModel::setChannels(const QVariantList& channels)
{
    if (!onModelThread()) {
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "setChannels", Qt::BlockingQueuedConnection,
                                                 Q_ARG(QVariantList, channels));
            },
            SET_CALL, __LINE__);
        return;
    }
    QList<QObject*> objects;
    objects.reserve(channels.size());
    std::set<QObject*> seen;
    for (const QVariant& entry : channels) {
        QChannel* channel = qobject_cast<QChannel*>(entry.value<QObject*>());
        if (!UNI_ASSERT(channel))
            continue;
        if (seen.insert(channel).second)
            objects.append(channel);
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    setList(objects);
}

void QChannelListModel::listAppend(QList<QObject*> objects)
{
    if (!onModelThread()) {
        appendChannels(objects);
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    QObjectListModel::listAppend(objects);
}

void QChannelListModel::listAppend(QObject* obj)
{
    if (!onModelThread()) {
        appendChannels({obj});
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    QObjectListModel::listAppend(obj);
}

void QChannelListModel::clearList(bool deleteObjects)
{
    if (!UNI_ASSERT(runningInObjectThread()))
        return;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    {
        const std::unique_lock<std::shared_mutex> ids(m_id_lock);
        clearIdEntries();
    }
    // While messages are applied, what is still queued came after the clear.
    if (!m_applying) {
        m_pending_notifications.clear();
        m_pending_flag = false;
    }
    // The removal hook disconnects each channel.
    QObjectListModel::clearList(deleteObjects);
}

// ---------------------------------------------------------------------------------------
// Hooks of the base: the id map and the connections follow the rows.

void QChannelListModel::connectChannel(QChannel* channel)
{
    CHECKED_CONNECT(channel, &QChannel::configItemChanged, this,
                    &QChannelListModel::handleConfigItemInListChanged, Qt::UniqueConnection);
    CHECKED_CONNECT(channel, &QChannel::ferrinChannelChanged, this,
                    &QChannelListModel::onFerrinChannelChanged, Qt::UniqueConnection);
    // By signature: the slot has to take the pointer of a dying object without a cast.
    CHECKED_CONNECT(channel, "2destroying(lum::qchannel::QChannel*)", this,
                    "1onChannelDestroying(lum::qchannel::QChannel*)", Qt::UniqueConnection);
}

void QChannelListModel::disconnectChannel(QChannel* channel)
{
    QObject::disconnect(channel, &QChannel::configItemChanged, this,
                        &QChannelListModel::handleConfigItemInListChanged);
    QObject::disconnect(channel, &QChannel::ferrinChannelChanged, this,
                        &QChannelListModel::onFerrinChannelChanged);
    QObject::disconnect(channel, "2destroying(lum::qchannel::QChannel*)", this,
                        "1onChannelDestroying(lum::qchannel::QChannel*)");
}

void QChannelListModel::putIdEntry(channel_config::ChannelID id, QChannel* channel)
{
    m_channels_by_id[id] = channel;
    m_channels_by_hash[id] = channel;
}

void QChannelListModel::dropIdEntry(channel_config::ChannelID id)
{
    m_channels_by_id.erase(id);
    m_channels_by_hash.erase(id);
}

void QChannelListModel::clearIdEntries()
{
    m_channels_by_id.clear();
    m_channels_by_hash.clear();
}

void QChannelListModel::eraseIdEntryOf(const QObject* channel)
{
    for (const auto& [id, listed] : m_channels_by_id) {
        if (listed == channel) {
            dropIdEntry(id);
            return;
        }
    }
}

QList<QObject*> QChannelListModel::rows(int first, int last) const
{
    const QList<QObject*> objects = list();
    if (last < first || first < 0 || first >= objects.size())
        return {};
    return objects.mid(first, last - first + 1);
}

void QChannelListModel::onObjectsInserted(int first, int last)
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    QList<QChannel*> inserted;
    {
        const std::unique_lock<std::shared_mutex> ids(m_id_lock);
        for (QObject* object : rows(first, last)) {
            auto* channel = qobject_cast<QChannel*>(object);
            if (!channel)
                continue;
            if (channel->ferrinChannel())
                putIdEntry(channel->ferrinChannel()->getChannelId(), channel);
            inserted.append(channel);
        }
    }
    for (QChannel* channel : qAsConst(inserted))
        connectChannel(channel);
}

void QChannelListModel::onObjectsAboutToBeRemoved(int first, int last)
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    QList<QChannel*> removed;
    {
        const std::unique_lock<std::shared_mutex> ids(m_id_lock);
        for (QObject* object : rows(first, last)) {
            if (object == nullptr)
                continue;
            // A dying channel is found by its pointer alone, and its connections die with it.
            if (object != m_dying_channel) {
                auto* channel = qobject_cast<QChannel*>(object);
                if (!channel)
                    continue;
                removed.append(channel);
                if (channel->ferrinChannel()) {
                    const channel_config::ChannelID id = channel->ferrinChannel()->getChannelId();
                    const auto found = m_channels_by_hash.find(id);
                    if (found != m_channels_by_hash.end() && found->second == channel) {
                        dropIdEntry(id);
                        continue;
                    }
                }
            }
            eraseIdEntryOf(object);
        }
    }
    for (QChannel* channel : qAsConst(removed))
        disconnectChannel(channel);
}

// ---------------------------------------------------------------------------------------
// Signals of the channels

void QChannelListModel::handleConfigItemInListChanged(channel_config::ChannelID channel_id, QString key)
{
    if (key != QLatin1String("Used")) {
        const int row = rowOf(channel_id);
        if (row >= 0)
            Q_EMIT dataChanged(index(row), index(row), {});
    }
    Q_EMIT configItemInListChanged(channel_id, key);
}

void QChannelListModel::setConfigItemDirty(channel_config::ChannelID ch_id)
{
    if (!onModelThread()) {
        QMetaObject::invokeMethod(
            this, [this, ch_id] { setConfigItemDirty(ch_id); }, Qt::QueuedConnection);
        return;
    }
    const int row = rowOf(ch_id);
    if (row >= 0)
        Q_EMIT dataChanged(index(row), index(row), {});
}

void QChannelListModel::onFerrinChannelChanged(channel_config::ChannelID channel_id)
{
    if (signalsBlocked())
        m_list_changed = true;
    {
        // A channel given a replacement under another id keeps being found: the map
        // follows it. The sender is only used once it is known to be in the list.
        const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
        QObject* sender_object = sender();
        if (channelOf(channel_id) == nullptr && sender_object && indexOf(sender_object) >= 0) {
            auto* channel = qobject_cast<QChannel*>(sender_object);
            const std::unique_lock<std::shared_mutex> ids(m_id_lock);
            eraseIdEntryOf(channel);
            putIdEntry(channel_id, channel);
        }
    }
    Q_EMIT ferrinChannelChanged(channel_id);
}

void QChannelListModel::onChannelDestroying(QChannel* channel)
{
    if (!channel || !runningInObjectThread())
        return;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    const int row = indexOf(channel);
    if (row < 0)
        return;
    // The object is going away: the base must not try to disconnect from it.
    const bool was_tracking = tracking();
    if (was_tracking)
        setTracking(false);
    m_dying_channel = channel;
    takeAt(row);
    m_dying_channel = nullptr;
    if (was_tracking)
        setTracking(true);
}

// ---------------------------------------------------------------------------------------
// Batches

void QChannelListModel::beginBatchOperation()
{
    if (!onModelThread()) {
        QThread* const caller = QThread::currentThread();
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "beginBatchOperationWithCache",
                                                 Qt::BlockingQueuedConnection, Q_ARG(QThread*, caller));
            },
            BEGIN_BATCH_CALL, __LINE__);
        return;
    }
    beginBatchOperationWithCache(QThread::currentThread());
}

void QChannelListModel::endBatchOperation()
{
    if (!onModelThread()) {
        QThread* const caller = QThread::currentThread();
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "endBatchOperationAndUpdateWithCache",
                                                 Qt::BlockingQueuedConnection, Q_ARG(QThread*, caller));
            },
            END_BATCH_CALL, __LINE__);
        return;
    }
    endBatchOperationAndUpdateWithCache(QThread::currentThread());
}

void QChannelListModel::beginBatchOperationWithCache(QThread* thread)
{
    {
        const std::shared_lock<std::shared_mutex> ids(m_id_lock);
        const auto stored = m_batch_snapshots.find(thread);
        if (stored == m_batch_snapshots.end()) {
            m_batch_snapshots.emplace(thread, m_channels_by_id);
        } else if (stored->second != m_channels_by_id) {
            m_list_changed = true;
            stored->second = m_channels_by_id;
        }
    }
    if (++m_num_of_batch_operations == 1)
        blockSignals(true);
}

void QChannelListModel::endBatchOperationAndUpdateWithCache(QThread* thread)
{
    if (!UNI_ASSERT(m_num_of_batch_operations > 0))
        return;
    {
        const std::shared_lock<std::shared_mutex> ids(m_id_lock);
        const auto stored = m_batch_snapshots.find(thread);
        // A thread that closes a batch it did not open cannot tell: a reset is always right.
        if (stored == m_batch_snapshots.end() || stored->second != m_channels_by_id)
            m_list_changed = true;
    }
    if (--m_num_of_batch_operations > 0)
        return;
    m_batch_snapshots.clear();
    blockSignals(false);
    if (m_list_changed) {
        m_list_changed = false;
        notifyReset();
    }
}

// ---------------------------------------------------------------------------------------
// Messages of the acquisition core

void QChannelListModel::notify(ferrin::NotificationType type, std::shared_ptr<ferrin::Channel> channel)
{
    if (m_notification_delivery != DELIVERY_IMMEDIATE && m_notification_delivery != DELIVERY_QUEUED) {
        UNI_FAIL("Should never happen!");
        return;
    }
    if (type > ferrin::NOTIFY_CLEAR)
        return;
    {
        const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
        m_pending_notifications.push_back(PendingNotification{type, std::move(channel)});
        m_pending_flag = true;
    }
    if (m_notification_delivery == DELIVERY_IMMEDIATE) {
        if (onModelThread()) {
            applyPendingChannelNotifications();
            return;
        }
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "applyPendingChannelNotifications",
                                                 Qt::BlockingQueuedConnection);
            },
            APPLY_CALL, __LINE__);
        return;
    }
    // One start request on its way is enough; restarting a running timer on every
    // message would let a steady stream of them postpone it for ever.
    if (!m_timer_requested.exchange(true))
        QMetaObject::invokeMethod(this, "startNotificationTimer", Qt::QueuedConnection);
}

void QChannelListModel::startNotificationTimer()
{
    m_timer_requested.store(false);
    if (!m_notification_timer.isActive())
        m_notification_timer.start();
}

bool QChannelListModel::hasPendingChannelNotifications() const
{
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    return m_pending_flag;
}

void QChannelListModel::applyPendingChannelNotifications()
{
    if (!onModelThread()) {
        hop(
            [&] {
                return QMetaObject::invokeMethod(this, "applyPendingChannelNotifications",
                                                 Qt::BlockingQueuedConnection);
            },
            APPLY_CALL, __LINE__);
        return;
    }
    // A message sent from a slot while messages are applied waits for the next pass.
    if (m_applying)
        return;
    QThread* const thread = QThread::currentThread();
    m_applying = true;
    for (int pass = 0; pass < MAX_APPLY_PASSES && hasPendingChannelNotifications(); ++pass) {
        // Held for the whole pass, so that readers on other threads never meet a channel
        // half replaced; released between passes, so that producers can queue more.
        const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
        beginBatchOperationWithCache(thread);
        std::vector<PendingNotification> pending;
        pending.swap(m_pending_notifications);
        m_pending_flag = false;
        for (const PendingNotification& notification : pending)
            applyNotification(notification);
        m_pending_flag = !m_pending_notifications.empty();
        endBatchOperationAndUpdateWithCache(thread);
    }
    m_applying = false;
    // What a flood left over waits for the timer.
    if (hasPendingChannelNotifications())
        m_notification_timer.start();
}

void QChannelListModel::applyNotification(const PendingNotification& notification)
{
    const std::shared_ptr<ferrin::Channel>& channel = notification.channel;
    switch (notification.type) {
    case ferrin::NOTIFY_CHANNEL_ADDED: {
        if (!channel || channel->isInternal())
            return;
        // An id the list knows already is a replacement: one row for each id.
        if (QChannel* known = channelOf(channel->getChannelId())) {
            known->updateFerrinChannel(channel);
            return;
        }
        appendChannel(new QChannel(channel));
        return;
    }
    case ferrin::NOTIFY_CHANNEL_REMOVED: {
        if (!channel)
            return;
        if (QChannel* known = channelOf(channel->getChannelId())) {
            removeChannel(known);
            known->deleteLater();
        }
        return;
    }
    case ferrin::NOTIFY_CHANNEL_CHANGED: {
        if (!channel)
            return;
        if (QChannel* known = channelOf(channel->getChannelId()))
            known->updateFerrinChannel(channel);
        return;
    }
    case ferrin::NOTIFY_CLEAR:
        clearList(true);
        return;
    }
}

// ---------------------------------------------------------------------------------------
// Whole-list configuration and actions

std::vector<std::shared_ptr<ferrin::Channel>> QChannelListModel::ferrinChannels() const
{
    std::vector<std::shared_ptr<ferrin::Channel>> channels;
    const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
    const QList<QChannel*> listed = typedList();
    channels.reserve(static_cast<std::size_t>(listed.size()));
    for (QChannel* channel : listed) {
        if (channel->ferrinChannel())
            channels.push_back(channel->ferrinChannel());
    }
    return channels;
}

bool QChannelListModel::sendRequests(const ferrin_config::ConfigRequests& requests)
{
    if (requests.empty())
        return true;
    return m_channel_config_manager->applyConfigRequests(requests, 0, true, false, false);
}

bool QChannelListModel::setConfigItem(const QString& key, const QVariant& value)
{
    if (!UNI_ASSERT_MSG(m_channel_config_manager != nullptr, "ChannelConfigManager is not set!"))
        return false;
    if (!UNI_ASSERT_MSG(value.isValid(), "setConfigItem: called with value 'invalid' for key %s",
                        qPrintable(key)))
        return false;
    const std::string std_key = key.toStdString();
    ferrin_config::ConfigRequests requests;
    for (const std::shared_ptr<ferrin::Channel>& channel : ferrinChannels()) {
        std::optional<ferrin::ConfigItem> item = detail::itemForValue(*channel, std_key, value);
        if (!item)
            return false;
        requests.push_back(ferrin_config::ConfigRequest{channel->getChannelId(), std_key, std::move(*item)});
    }
    return sendRequests(requests);
}

bool QChannelListModel::setConfigItems(const QStringList& keys, const QVariantList& values)
{
    UNI_ASSERT(keys.count() <= values.count());
    if (values.isEmpty())
        return keys.isEmpty();
    if (!UNI_ASSERT_MSG(m_channel_config_manager != nullptr, "ChannelConfigManager is not set!"))
        return false;
    ferrin_config::ConfigRequests requests;
    for (const std::shared_ptr<ferrin::Channel>& channel : ferrinChannels()) {
        for (int i = 0; i < keys.count(); ++i) {
            const QVariant& value = values.at(i % values.count());
            if (value.userType() == QMetaType::Nullptr)
                continue;
            const std::string key = keys.at(i).toStdString();
            std::optional<ferrin::ConfigItem> item = detail::itemForValue(*channel, key, value);
            if (!item)
                return false;
            requests.push_back(ferrin_config::ConfigRequest{channel->getChannelId(), key, std::move(*item)});
        }
    }
    return sendRequests(requests);
}

bool QChannelListModel::isChannelActionAvailable(const QString& key) const
{
    // Queued messages would make the answer one about a list that no longer is.
    UNI_ASSERT(!hasPendingChannelNotifications());
    const std::vector<std::shared_ptr<ferrin::Channel>> channels = ferrinChannels();
    if (channels.empty())
        return false;
    std::unordered_set<std::uint64_t> ids;
    for (const std::shared_ptr<ferrin::Channel>& channel : channels)
        ids.insert(channel->getChannelId().toUInt64());
    const std::string std_key = key.toStdString();
    for (const std::shared_ptr<ferrin::Channel>& channel : channels) {
        if (channel->isChannelActionAvailable(std_key))
            continue;
        // A metadata channel follows the action of its source when that is listed too.
        const std::optional<channel_config::ChannelID> source = channel->getMetadataChannelOf();
        if (source && ids.count(source->toUInt64()) > 0 &&
            channel->isChannelActionAvailable("ACTION:NotBlockingMetadataSourceActions"))
            continue;
        return false;
    }
    return true;
}

void QChannelListModel::applyChannelAction(const QString& key, double time)
{
    const std::string std_key = key.toStdString();
    if (!isChannelActionAvailable(key)) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_NOTE) << "ChannelAction " << std_key << " not available!";
        return;
    }
    std::vector<channel_config::ChannelID> ids;
    {
        const std::lock_guard<std::recursive_mutex> lock(m_list_lock);
        for (QChannel* channel : typedList()) {
            if (channel->ferrinChannel())
                ids.push_back(channel->ferrinChannel()->getChannelId());
        }
    }
    {
        const std::lock_guard<std::recursive_mutex> lock(m_action_lock);
        if (m_action_watcher.isRunning()) {
            UNI_LOG(detail::LOG_CHANNEL, SEV_NOTE) << "Skipping ChannelAction " << std_key
                                                   << " because there is already another action in progress!";
            return;
        }
        if (!UNI_ASSERT_MSG(m_channel_config_manager != nullptr, "ChannelConfigManager is not set!"))
            return;
        ferrin_config::IfChannelConfigManager* manager = m_channel_config_manager;
        m_action_future = detail::runOnGlobalPool<bool>([manager, std_key, ids = std::move(ids), time] {
            return manager->applyChannelAction(std_key, ids, time);
        });
        m_action_watcher.setFuture(m_action_future);
    }
    Q_EMIT channelActionInProgressChanged();
}

void QChannelListModel::waitForChannelActionFinished()
{
    const std::lock_guard<std::recursive_mutex> lock(m_action_lock);
    m_action_future.waitForFinished();
}

bool QChannelListModel::channelActionInProgress() const
{
    return m_action_watcher.isRunning();
}

} // namespace lum::qchannel
