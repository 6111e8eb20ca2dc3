#pragma once

#include <qchannel/if_configurable_object.h>

#include <channel_config/channel_id.h>
#include <ferrin_core/channel.h>
#include <lum_config_items/qcell_editor_constraints.h>
#include <uni_base/countable.h>

#include <QColor>
#include <QFuture>
#include <QFutureWatcher>
#include <QMap>
#include <QMetaType>
#include <QObject>
#include <QReadWriteLock>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <memory>
#include <utility>

namespace daq {
struct Sample;
}

namespace ferrin {
class ScalarChannel;
class ScalarVectorChannel;
class ComplexVectorChannel;
} // namespace ferrin

Q_DECLARE_METATYPE(channel_config::ChannelID)

namespace lum {
class QMeasurementChain;
}

namespace lum::qchannel {

/// Holder of the calculation types of QChannel::calculateValue, for views.
class QSampleCalcType
{
    Q_GADGET

public:
    enum QSampleCalculationType
    {
        DERIVED_AVERAGE = 0,
        DERIVED_RMS = 1,
        DERIVED_ACRMS = 2,
        DERIVED_MIN = 3,
        DERIVED_MAX = 4,
        DERIVED_PEAK2PEAK = 5,
        DERIVED_AVERAGE_NO_USER_SCALING = 6,
        DERIVED_RMS_NO_USER_SCALING = 7,
        DERIVED_ACRMS_NO_USER_SCALING = 8,
        NUM_ENUMS = 9
    };
    Q_ENUM(QSampleCalculationType)
};

/// The Qt face of one acquisition channel: value reads in seconds as QVariant (a NaN
/// double for "no sample", an invalid QVariant for a fault or a missing channel),
/// configuration access with QString keys, channel actions on the global thread pool,
/// and signals for every configuration change the channel reports.
///
/// Value reads take no lock of this class and are meant for the display thread. The
/// channel's change notifications may arrive on any thread.
class QChannel : public QObject, public uni::Countable<QChannel>, public lum::IfConfigurableObject
{
    Q_OBJECT
    Q_PROPERTY(bool used READ isUsed NOTIFY usedChanged)
    Q_PROPERTY(bool stored READ isStored NOTIFY storedChanged)
    Q_PROPERTY(bool hidden READ isHidden NOTIFY hiddenChanged)
    Q_PROPERTY(QColor color READ color NOTIFY colorChanged)
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    Q_PROPERTY(QString id READ getChannelId)
    Q_PROPERTY(QString localId READ getLocalChannelId)
    Q_PROPERTY(QString displayName READ displayName NOTIFY displayNameChanged)
    Q_PROPERTY(QString shortDisplayName READ shortDisplayName NOTIFY displayNameChanged)
    Q_PROPERTY(QString unit READ unit NOTIFY unitChanged)
    Q_PROPERTY(SampleValueType sampleValueType READ sampleValueType NOTIFY sampleValueTypeChanged)
    Q_PROPERTY(
        QString channelTypeDescription READ channelTypeDescription NOTIFY channelTypeDescriptionChanged)
    Q_PROPERTY(double minValue READ minValue NOTIFY minValChanged)
    Q_PROPERTY(double maxValue READ maxValue NOTIFY maxValChanged)
    Q_PROPERTY(int dimension READ dimension NOTIFY sampleDimensionChanged)
    Q_PROPERTY(
        bool channelActionInProgress READ channelActionInProgress NOTIFY channelActionInProgressChanged)
    Q_PROPERTY(QSampleOccurenceType sampleOccurence READ sampleOccurence NOTIFY sampleOccurenceChanged)
    Q_PROPERTY(bool nameUnique READ isNameUnique NOTIFY nameUniqueChanged)
    Q_PROPERTY(bool namePotentiallyUnique READ isNamePotentiallyUnique NOTIFY namePotentiallyUniqueChanged)

public:
    enum SampleValueType
    {
        SAMPLE_VALUE_INVALID = 0,
        SAMPLE_VALUE_SCALAR = 1,
        SAMPLE_VALUE_CAN_MESSAGE = 2,
        SAMPLE_VALUE_VECTOR = 3,
        SAMPLE_VALUE_COMPLEX_VECTOR = 4,
        SAMPLE_VALUE_VIDEO = 5,
        SAMPLE_VALUE_STRING = 6,
        SAMPLE_VALUE_FLEXRAY_MESSAGE = 7,
        SAMPLE_VALUE_BYTE_VECTOR = 8
    };
    Q_ENUM(SampleValueType)

    // SOT_INVALID and SOT_NUM_TYPES share 4 on purpose: views compare with either.
    enum QSampleOccurenceType
    {
        SOT_SYNC = 0,
        SOT_ASYNC = 1,
        SOT_SINGLE_VALUE = 2,
        SOT_NEVER = 3,
        SOT_INVALID = 4,
        SOT_NUM_TYPES = 4
    };
    Q_ENUM(QSampleOccurenceType)

    /// @p channel must not be null (asserted).
    explicit QChannel(std::shared_ptr<ferrin::Channel> channel, QObject* parent = nullptr);
    ~QChannel() override;

    // --- values ---
    Q_INVOKABLE QVariant valueAtTime(double time) const;
    Q_INVOKABLE QVariant valueAtTimeEnsureLoaded(double time) const;
    Q_INVOKABLE QVariant valueNearTime(double time) const;
    Q_INVOKABLE double sampletimeNearTime(double time) const;
    Q_INVOKABLE QVariant indexedValueAtTime(int index, double time) const;
    Q_INVOKABLE QVariant indexedValueAtTimeEnsureLoaded(int index, double time) const;
    Q_INVOKABLE QVariant sliceAtTime(int index, int max_elements, double time) const;
    Q_INVOKABLE QVariant calculateValue(double start_time, double end_time, int val_type) const;
    Q_INVOKABLE QVariant anyValueAtTimeEnsureLoaded(double time) const;
    double minValue() const;
    double maxValue() const;
    Q_INVOKABLE double getFirstRegionStart() const;
    Q_INVOKABLE double getLastRegionEnd() const;

    /// The nearer neighbour of @p time as (value, time), if it is plausibly the sample
    /// of that moment; (NaN, @p time) otherwise.
    std::pair<double, double> findNearSample(double time) const;

    /// A sample as a QVariant; message and complex objects in it have no parent.
    static QVariant sampleToVariant(const daq::Sample* sample);

    // --- configuration ---
    Q_INVOKABLE QVariant getConfigItem(const QString& key) const override;
    Q_INVOKABLE QString getConfigItemType(const QString& key) const;
    Q_INVOKABLE QString getConfigItemAsString(const QString& key) const;
    Q_INVOKABLE bool setConfigItem(const QString& key, const QVariant& value) override;
    Q_INVOKABLE bool setConfigItems(const QVariantMap& values);
    Q_INVOKABLE bool hasConfigItem(const QString& key) const override;
    Q_INVOKABLE QStringList getAvailableConfigKeys(bool sort = false) const;
    Q_INVOKABLE QStringList getAvailableActionKeys() const;
    Q_INVOKABLE QStringList getAvailableIdKeys() const;

    // --- constraints and text forms ---
    /// The item's text for a cell: "0x" and lower-case hexadecimal for "CAN/MessageID".
    Q_INVOKABLE QString getStringRepresentation(const QString& key) const override;
    Q_INVOKABLE QString getStringRep(const QVariant& value) const;
    /// Built on first request and kept until the key changes; the cache owns it.
    Q_INVOKABLE ferrin_config::QCellEditorConstraints* getPropertyConstraints(const QString& key) override;
    Q_INVOKABLE QStringList getConstraintDescriptions(const QString& key) const;
    /// Every shown item as an element named by its key, derived values only as comments.
    Q_INVOKABLE QString getSimpleXmlConfigRepresentation() const;
    /// Reads a text of getSimpleXmlConfigRepresentation back into the channel's items,
    /// each by the parser of the item it replaces, in one request. Derived values are
    /// not read. @return false, with nothing changed, for text that is no such form or
    /// when the channel refuses; false too when some entry was refused (the others are set)
    Q_INVOKABLE bool setSimpleXmlConfigRepresentation(const QString& text);
    /// A new chain of this channel's stages; the caller owns it and, through it, the stages.
    Q_INVOKABLE lum::QMeasurementChain* getMeasurementChain() const;

    // --- identity and kind ---
    Q_INVOKABLE QString getChannelId() const;
    Q_INVOKABLE QString getChannelIDAsString() const;
    Q_INVOKABLE QString getLocalChannelId() const;
    Q_INVOKABLE QString getUniqueIdentifier() const;
    Q_INVOKABLE bool isValid() const;
    Q_INVOKABLE bool isScalarChannel() const;
    Q_INVOKABLE bool isVectorChannel() const;
    Q_INVOKABLE bool isComplexVectorChannel() const;
    Q_INVOKABLE bool isVideoChannel() const;
    Q_INVOKABLE bool isPowerGroupChannel() const;
    Q_INVOKABLE bool isNameUnique() const;
    Q_INVOKABLE bool isNamePotentiallyUnique() const;
    Q_INVOKABLE bool isConnector(const QString& connector_id) const;

    // --- properties ---
    bool isUsed() const;
    bool isStored() const;
    bool isHidden() const;
    QColor color() const;
    QString name() const;
    QString displayName() const;
    QString shortDisplayName() const;
    QString unit() const;
    SampleValueType sampleValueType() const;
    QString channelTypeDescription() const;
    int dimension() const;
    bool channelActionInProgress() const;
    QSampleOccurenceType sampleOccurence() const;

    // --- channel actions ---
    Q_INVOKABLE bool isChannelActionAvailable(const QString& key) const;
    /// Runs the action on the global thread pool; skipped (and logged) while another
    /// action of this channel runs.
    Q_INVOKABLE void applyChannelAction(const QString& key, double time);

    // --- metadata ---
    Q_INVOKABLE bool hasMetaData() const;
    Q_INVOKABLE bool hasMetaData(const QString& key) const;
    Q_INVOKABLE QVariant metaData(const QString& key) const;

    // --- the wrapped channel ---
    const std::shared_ptr<ferrin::Channel>& ferrinChannel() const { return m_ferrin_channel; }
    const std::shared_ptr<ferrin::ScalarChannel>& ferrinScalarChannel() const
    {
        return m_ferrin_scalar_channel;
    }
    /// Takes a replacement of the channel under the same id, and refreshes every view.
    void updateFerrinChannel(std::shared_ptr<ferrin::Channel> new_channel);

    /// The cached constraints of @p key, null for none.
    ferrin_config::QCellEditorConstraints* cachedPropertyConstraints(const QString& key) const;

    /// Called for every change of an item of the channel, on the thread that made it.
    void onChannelConfigItemChanged(channel_config::ChannelID channel_id, const QString& key);

Q_SIGNALS:
    // Spelt out in full: lists connect to it by its signature text.
    void destroying(lum::qchannel::QChannel* channel);
    void minValChanged();
    void maxValChanged();
    void configItemChanged(channel_config::ChannelID channel_id, QString key);
    void usedChanged();
    void storedChanged();
    void hiddenChanged();
    void colorChanged(QColor color);
    void nameChanged(QString name);
    void domainChanged(QString domain);
    void displayNameChanged();
    void unitChanged();
    void channelActionInProgressChanged();
    void sampleValueTypeChanged();
    void ferrinChannelChanged(channel_config::ChannelID channel_id);
    void sampleOccurenceChanged();
    void sampleDimensionChanged();
    void nameUniqueChanged();
    void namePotentiallyUniqueChanged();
    void channelTypeDescriptionChanged();

private:
    void registerObserver();
    void unregisterObserver(const std::shared_ptr<ferrin::Channel>& channel);
    void renewTypedViews();
    /// The sample as read by @p ensure_loaded or not, for the non-scalar reads.
    daq::SamplePtr sampleAt(double time, bool ensure_loaded) const;
    QVariant indexedValue(int index, double time, bool ensure_loaded) const;
    /// The item's text, empty without channel or key.
    std::string itemText(const char* key) const;
    /// Drops the cached editor constraints of @p key; the caller gives it deleteLater.
    ferrin_config::QCellEditorConstraints* takeCachedConstraints(const QString& key);
    void clearConstraintsCache();

    std::shared_ptr<ferrin::Channel> m_ferrin_channel;
    std::shared_ptr<ferrin::ScalarChannel> m_ferrin_scalar_channel;
    std::shared_ptr<ferrin::ScalarVectorChannel> m_ferrin_vector_channel;
    std::shared_ptr<ferrin::ComplexVectorChannel> m_ferrin_complex_vector_channel;
    QFutureWatcher<void> m_action_watcher;
    QFuture<void> m_action_future;

    // Editor constraints per key, built on first request; an entry is dropped when its
    // key changes or the channel is replaced.
    QMap<QString, ferrin_config::QCellEditorConstraints*> m_constraints_cache;
    mutable QReadWriteLock m_constraints_lock;
};

} // namespace lum::qchannel

Q_DECLARE_METATYPE(lum::qchannel::QChannel*)
