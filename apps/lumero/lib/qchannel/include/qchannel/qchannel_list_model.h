#pragma once

#include <qchannel/qchannel.h>

#include <channel_config/channel_id.h>
#include <ferrin_core/channel_config_manager.h>
#include <ferrin_core/channel_list_model_observer.h>
#include <qobject_list_model/qobjectlist_model_t.h>

#include <QFuture>
#include <QFutureWatcher>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariant>
#include <QVariantList>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

class QEvent;
class QThread;

namespace lum::qchannel {

/// The list of the application's QChannel objects, or a sub-list of them.
///
/// The list lives on one thread, the model's (normally the display thread); every
/// change of the list happens there. Changes asked for on another thread hop into it
/// with a blocking queued call, so no lock of this class may be held by the caller of
/// such a change. The acquisition core reports its channel list through notify() from
/// any thread; those messages are applied at once (delivery 1) or queued and applied
/// by a 100 ms timer (delivery 2), in batches, so that a view sees one reset for many
/// changes. Look-ups may be called from any thread.
///
/// Lock order: m_list_lock before m_id_lock; m_action_lock is taken alone. Change the
/// list through this class's operations, not through those of the base: only these
/// keep the readers on other threads safe.
class QChannelListModel : public QObjectListModelT<QChannel>, public ferrin::ChannelListModelObserver
{
    Q_OBJECT
    Q_PROPERTY(bool deleteChannelsOnDestruction READ deleteChannelsOnDestruction WRITE
                   setDeleteChannelsOnDestruction)
    Q_PROPERTY(
        bool channelActionInProgress READ channelActionInProgress NOTIFY channelActionInProgressChanged)

public:
    /// How messages of the acquisition core reach the list.
    enum NotificationDelivery : std::uint32_t
    {
        /// Not a mode: a message to such a list is reported and dropped.
        DELIVERY_NONE = 0,
        /// Applied at once, on the model's thread; notify() returns after the change.
        DELIVERY_IMMEDIATE = 1,
        /// Queued and applied by the notification timer.
        DELIVERY_QUEUED = 2
    };

    explicit QChannelListModel(NotificationDelivery delivery = DELIVERY_QUEUED,
                               bool delete_channels_on_destruction = false, QObject* parent = nullptr);
    ~QChannelListModel() override;

    bool deleteChannelsOnDestruction() const { return m_delete_channels; }
    void setDeleteChannelsOnDestruction(bool delete_channels) { m_delete_channels = delete_channels; }
    NotificationDelivery notificationDelivery() const { return m_notification_delivery; }

    /// The core's end for the whole-list operations; not owned.
    void setChannelConfigManager(ferrin_config::IfChannelConfigManager* manager);
    ferrin_config::IfChannelConfigManager* channelConfigManager() const { return m_channel_config_manager; }

    // --- look-ups, from any thread ---
    Q_INVOKABLE lum::qchannel::QChannel* getChannelByID(channel_config::ChannelID id) const;
    /// @p id is the decimal text of the 64-bit id; anything else gives null.
    Q_INVOKABLE lum::qchannel::QChannel* getChannelByIDString(const QString& id) const;
    Q_INVOKABLE lum::qchannel::QChannel* getChannelByIndex(int i) const;
    /// The first channel in list order with that name.
    Q_INVOKABLE lum::qchannel::QChannel* getChannelByName(const QString& name) const;
    /// The first channel in list order whose item @p key equals @p value.
    Q_INVOKABLE lum::qchannel::QChannel* getChannelByConfigItem(const QString& key,
                                                                const QVariant& value) const;
    Q_INVOKABLE QStringList getAllIDsStr() const;
    /// The distinct texts of item @p key over the channels, in list order, each with its
    /// first letter in upper case; empty texts are passed over. At most @p maxResults
    /// when that is positive.
    Q_INVOKABLE QStringList uniqueListForProperty(const QString& key, int maxResults) const;
    Q_INVOKABLE QStringList uniqueListForProperty(const QString& key) const;
    /// A new list (the caller owns it) of the channels whose dependent set holds the
    /// id of @p channel, in list order; null for a null channel.
    Q_INVOKABLE lum::qchannel::QChannelListModel* getNeededChannels(lum::qchannel::QChannel* channel) const;
    /// A new list (the caller owns it) of this list's channels whose ids stand in the
    /// dependent set of @p channel; null for a null channel.
    Q_INVOKABLE lum::qchannel::QChannelListModel*
    getDependentChannels(lum::qchannel::QChannel* channel) const;

    // --- whole-list configuration ---
    /// One request per channel, sent in one call of the config manager.
    Q_INVOKABLE bool setConfigItem(const QString& key, const QVariant& value);
    /// Key i takes values[i % values.count()]; a null value skips its key.
    Q_INVOKABLE bool setConfigItems(const QStringList& keys, const QVariantList& values);
    Q_INVOKABLE bool isChannelActionAvailable(const QString& key) const;
    /// Runs the action for all channels in one call of the config manager, on the
    /// global thread pool; skipped (and logged) while the previous one runs.
    Q_INVOKABLE void applyChannelAction(const QString& key, double time);
    Q_INVOKABLE void waitForChannelActionFinished();
    bool channelActionInProgress() const;

    // --- batches ---
    /// Opens a batch: until the last one closes, the list's signals are blocked, and a
    /// view is told with one reset if the channels changed meanwhile.
    Q_INVOKABLE void beginBatchOperation();
    Q_INVOKABLE void endBatchOperation();

    // --- messages of the acquisition core ---
    void notify(ferrin::NotificationType type, std::shared_ptr<ferrin::Channel> channel) override;
    Q_INVOKABLE bool hasPendingChannelNotifications() const;

    /// Clears the list; the channels are deleted when @p deleteObjects is set.
    void clearList(bool deleteObjects) override;
    void listAppend(QList<QObject*> objects) override;
    void listAppend(QObject* obj) override;

public Q_SLOTS:
    /// Puts @p new_channel before @p successor, or at the end when @p successor is not
    /// in the list. From another thread @p successor must not be null.
    void insertChannel(lum::qchannel::QChannel* new_channel, lum::qchannel::QChannel* successor);
    void appendChannel(lum::qchannel::QChannel* channel);
    void appendChannels(QList<QObject*> channels);
    void removeChannel(lum::qchannel::QChannel* channel);
    /// Empties the list; the channels are deleted if the list owns them
    /// (deleteChannelsOnDestruction).
    void clearAll();
    /// Replaces the list; entries that are not channels are reported and left out.
    void setChannels(const QVariantList& channels);

    /// Applies the queued messages, at most 9 rounds of them, on the model's thread.
    void applyPendingChannelNotifications();
    /// The row of @p ch_id gets a data change.
    void setConfigItemDirty(channel_config::ChannelID ch_id);

Q_SIGNALS:
    void configItemInListChanged(channel_config::ChannelID channel_id, QString key);
    void ferrinChannelChanged(channel_config::ChannelID channel_id);
    void channelActionInProgressChanged();

protected:
    bool event(QEvent* event) override;
    void onObjectsInserted(int first, int last) override;
    void onObjectsAboutToBeRemoved(int first, int last) override;

private Q_SLOTS:
    void beginBatchOperationWithCache(QThread* thread);
    void endBatchOperationAndUpdateWithCache(QThread* thread);
    void handleConfigItemInListChanged(channel_config::ChannelID channel_id, QString key);
    void onFerrinChannelChanged(channel_config::ChannelID channel_id);
    void onChannelDestroying(lum::qchannel::QChannel* channel);
    void startNotificationTimer();

private:
    struct PendingNotification
    {
        ferrin::NotificationType type;
        std::shared_ptr<ferrin::Channel> channel;
    };
    using IdMap = std::map<channel_config::ChannelID, QChannel*>;

    bool onModelThread() const;
    /// Orders a blocking call into the model's thread for the race checker, which does
    /// not see Qt's own hand-over: called by the caller around the call, and by the
    /// model's thread around running it.
    void syncHop() const;
    /// Runs @p invoke, a blocking call into the model's thread, between two syncHop();
    /// a refused call is reported with @p call as its condition.
    template <typename Invoke>
    void hop(Invoke invoke, const char* call, int line) const;
    /// Whether @p channel itself is in the list (its id leads to it).
    bool isListed(const QChannel* channel) const;
    /// The channel of @p id without taking the list lock; the id lock is taken.
    QChannel* channelOf(channel_config::ChannelID id) const;
    /// The row of the channel under @p id, -1 when none.
    int rowOf(channel_config::ChannelID id) const;
    /// The objects of rows @p first to @p last (clipped to the list).
    QList<QObject*> rows(int first, int last) const;
    // The id map and its hashed twin change together; the caller holds the id lock
    // exclusively.
    void putIdEntry(channel_config::ChannelID id, QChannel* channel);
    void dropIdEntry(channel_config::ChannelID id);
    void clearIdEntries();
    /// Drops the id entry that points at @p channel, found by the pointer alone; the
    /// caller holds the id lock exclusively.
    void eraseIdEntryOf(const QObject* channel);
    void connectChannel(QChannel* channel);
    void disconnectChannel(QChannel* channel);
    /// Moves @p object into the model's thread if the calling thread may push it.
    void pullIntoModelThread(QObject* object) const;
    /// The shared pointers of all channels, in list order.
    std::vector<std::shared_ptr<ferrin::Channel>> ferrinChannels() const;
    /// A sub-list holding @p channels, of this list's config manager.
    QChannelListModel* makeSubList(const QList<QObject*>& channels) const;
    /// Sends @p requests in one call of the config manager.
    bool sendRequests(const ferrin_config::ConfigRequests& requests);
    void applyNotification(const PendingNotification& notification);

    bool m_delete_channels;
    NotificationDelivery m_notification_delivery;
    ferrin_config::IfChannelConfigManager* m_channel_config_manager = nullptr;
    QFutureWatcher<bool> m_action_watcher;
    QFuture<bool> m_action_future;
    mutable std::recursive_mutex m_action_lock;
    std::int32_t m_num_of_batch_operations = 0;
    std::map<QThread*, IdMap> m_batch_snapshots;
    bool m_list_changed = false;
    mutable std::recursive_mutex m_list_lock;
    mutable std::shared_mutex m_id_lock;
    IdMap m_channels_by_id;
    /// The same entries for the look-up by id, which runs on every position update:
    /// constant time however long the list.
    std::unordered_map<channel_config::ChannelID, QChannel*> m_channels_by_hash;
    std::vector<PendingNotification> m_pending_notifications;
    bool m_pending_flag = false;
    QTimer m_notification_timer;

    mutable std::atomic<std::uint64_t> m_hop_clock{0};
    /// A start of the timer is already on its way to the model's thread.
    std::atomic<bool> m_timer_requested{false};
    /// Messages are being applied: a clear then keeps what arrived meanwhile.
    bool m_applying = false;
    /// The channel whose destroying signal is being handled; never dereferenced.
    QChannel* m_dying_channel = nullptr;
};

} // namespace lum::qchannel
