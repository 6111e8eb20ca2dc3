#pragma once

#include <qchannel/channel_list_sort_filter_proxy_model.h>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

// The filters of channel lists that views put between a list and what they show. Each
// has its rule in acceptsChannel; "inverted" turns a rule's answer round.

namespace lum::qchannel {

/// Channels in use and not hidden.
class ChannelListChannelFilterModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
public:
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

protected:
    bool acceptsChannel(const QChannel& channel) const override;
};

/// Channels whose kind of sample is in a mask. With SAMPLE_TYPE_INSTRUMENT the channels
/// of the selected instrument pass too: those whose id its property "channelIds" holds.
class ChannelListChannelSampleValueTypeFilterProxyModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(int typeFilter READ typeFilter WRITE setTypeFilter NOTIFY typeFilterChanged)
    Q_PROPERTY(QObject* selectedInstrument READ selectedInstrument WRITE setSelectedInstrument NOTIFY
                   selectedInstrumentChanged)

public:
    enum SampleValueFilterType
    {
        ANY = -1,
        SAMPLE_TYPE_SCALAR = 1,
        SAMPLE_TYPE_CAN_MESSAGE = 2,
        SAMPLE_TYPE_SCALAR_VECTOR = 4,
        SAMPLE_TYPE_COMPLEX_VECTOR = 8,
        SAMPLE_TYPE_VIDEO = 16,
        SAMPLE_TYPE_STRING = 32,
        SAMPLE_TYPE_FLEXRAY_MESSAGE = 64,
        SAMPLE_TYPE_INSTRUMENT = 128
    };
    Q_ENUM(SampleValueFilterType)

    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    int typeFilter() const { return m_type_filter; }
    void setTypeFilter(int type_filter);
    QObject* selectedInstrument() const { return m_selected_instrument; }
    void setSelectedInstrument(QObject* instrument);

Q_SIGNALS:
    void typeFilterChanged();
    void selectedInstrumentChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    int m_type_filter = ANY;
    QPointer<QObject> m_selected_instrument;
};

/// Channels that are sources of their own: not the metadata channel of another one.
class ChannelListChannelSourceFilterProxyModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
public:
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

protected:
    bool acceptsChannel(const QChannel& channel) const override;
};

/// The kinds of channel a type filter tells apart.
class ChannelTypeFilter
{
    Q_GADGET
public:
    enum TypeFilter
    {
        ANALOG = 0,
        DIGITAL = 1,
        COUNTER = 2,
        PADSENSOR = 3,
        CAN = 4,
        FLEXRAY = 5,
        VIDEO = 6,
        MATH = 7,
        POWER = 8,
        SNAPSHOT = 9,
        RECEIVER = 10,
        ALL = 11,
        SYNC = 12,
        ASYNC = 13,
        SYNC_SCALAR_SIGNAL = 14,
        SSA = 15,
        ORDERANALYSIS = 16,
        SOUNDLEVEL = 17,
        ARINC_429 = 18,
        MILSTD_1553 = 19,
        CAN_SIGNAL = 20,
        FIR = 21
    };
    Q_ENUM(TypeFilter)

    /// Whether @p channel is of kind @p type: by its channel type, or for SYNC, ASYNC
    /// and SYNC_SCALAR_SIGNAL by how its samples occur.
    static bool matches(const QChannel& channel, int type);
};

/// Channels of one kind, up to a dimension (when it is positive).
class ChannelListChannelTypeFilterProxyModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(lum::qchannel::ChannelTypeFilter::TypeFilter typeFilter READ typeFilter WRITE setTypeFilter
                   NOTIFY typeFilterChanged)
    Q_PROPERTY(int maxDimension READ maxDimension WRITE setMaxDimension NOTIFY maxDimensionChanged)
    Q_PROPERTY(bool inverted READ inverted WRITE setInverted NOTIFY invertedChanged)

public:
    using TypeFilter = ChannelTypeFilter::TypeFilter;
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    TypeFilter typeFilter() const { return m_type_filter; }
    void setTypeFilter(TypeFilter type_filter);
    int maxDimension() const { return m_max_dimension; }
    void setMaxDimension(int max_dimension);
    bool inverted() const { return m_inverted; }
    void setInverted(bool inverted);

Q_SIGNALS:
    void typeFilterChanged();
    void maxDimensionChanged();
    void invertedChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    TypeFilter m_type_filter = ChannelTypeFilter::ALL;
    int m_max_dimension = 0;
    bool m_inverted = false;
};

/// Channels of one kind, and the channels named by id whatever their kind.
class ChannelListChannelTypeOrChannelIdFilterProxyModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(TypeFilter typeFilter READ typeFilter WRITE setTypeFilter NOTIFY typeFilterChanged)
    Q_PROPERTY(bool inverted READ inverted WRITE setInverted NOTIFY invertedChanged)
    Q_PROPERTY(QStringList channelIds READ channelIds WRITE setChannelIds NOTIFY channelIdsChanged)

public:
    /// The kinds of ChannelTypeFilter up to SOUNDLEVEL.
    enum TypeFilter
    {
        ANALOG = ChannelTypeFilter::ANALOG,
        DIGITAL = ChannelTypeFilter::DIGITAL,
        COUNTER = ChannelTypeFilter::COUNTER,
        PADSENSOR = ChannelTypeFilter::PADSENSOR,
        CAN = ChannelTypeFilter::CAN,
        FLEXRAY = ChannelTypeFilter::FLEXRAY,
        VIDEO = ChannelTypeFilter::VIDEO,
        MATH = ChannelTypeFilter::MATH,
        POWER = ChannelTypeFilter::POWER,
        SNAPSHOT = ChannelTypeFilter::SNAPSHOT,
        RECEIVER = ChannelTypeFilter::RECEIVER,
        ALL = ChannelTypeFilter::ALL,
        SYNC = ChannelTypeFilter::SYNC,
        ASYNC = ChannelTypeFilter::ASYNC,
        SYNC_SCALAR_SIGNAL = ChannelTypeFilter::SYNC_SCALAR_SIGNAL,
        SSA = ChannelTypeFilter::SSA,
        ORDERANALYSIS = ChannelTypeFilter::ORDERANALYSIS,
        SOUNDLEVEL = ChannelTypeFilter::SOUNDLEVEL
    };
    Q_ENUM(TypeFilter)

    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    TypeFilter typeFilter() const { return m_type_filter; }
    void setTypeFilter(TypeFilter type_filter);
    bool inverted() const { return m_inverted; }
    void setInverted(bool inverted);
    QStringList channelIds() const { return m_channel_ids; }
    void setChannelIds(const QStringList& channel_ids);

Q_SIGNALS:
    void typeFilterChanged();
    void invertedChanged();
    void channelIdsChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    TypeFilter m_type_filter = ALL;
    bool m_inverted = false;
    QStringList m_channel_ids;
};

/// The channels named by id (the decimal text of the 64-bit id); none while no id is given.
class ChannelListIdFilterModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(QStringList channelIds READ channelIds WRITE setChannelIds NOTIFY channelIdsChanged)

public:
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    QStringList channelIds() const { return m_channel_ids; }
    void setChannelIds(const QStringList& channel_ids);

Q_SIGNALS:
    void channelIdsChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    QStringList m_channel_ids;
};

/// Channels whose item filterKeys[i] reads filterValues[i], for every key that has a value.
class ChannelListMultiValueFilterProxyModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(QStringList filterKeys READ filterKeys WRITE setFilterKeys NOTIFY filterKeysChanged)
    Q_PROPERTY(QStringList filterValues READ filterValues WRITE setFilterValues NOTIFY filterValuesChanged)
    Q_PROPERTY(bool inverted READ inverted WRITE setInverted NOTIFY invertedChanged)

public:
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    QStringList filterKeys() const { return m_filter_keys; }
    void setFilterKeys(const QStringList& filter_keys);
    QStringList filterValues() const { return m_filter_values; }
    void setFilterValues(const QStringList& filter_values);
    bool inverted() const { return m_inverted; }
    void setInverted(bool inverted);

Q_SIGNALS:
    void filterKeysChanged();
    void filterValuesChanged();
    void invertedChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    QStringList m_filter_keys;
    QStringList m_filter_values;
    bool m_inverted = false;
};

/// Channels whose item filterProperty reads filterValue. Without a key all pass; an empty
/// value lets all pass unless checkEmptyValue asks for an empty item.
class ChannelListPropertyFilterModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(
        QString filterProperty READ filterProperty WRITE setFilterProperty NOTIFY filterPropertyChanged)
    Q_PROPERTY(QString filterValue READ filterValue WRITE setFilterValue NOTIFY filterValueChanged)
    Q_PROPERTY(bool acceptIfPropertyMissing READ acceptIfPropertyMissing WRITE setAcceptIfPropertyMissing
                   NOTIFY acceptIfPropertyMissingChanged)
    Q_PROPERTY(
        bool checkEmptyValue READ checkEmptyValue WRITE setCheckEmptyValue NOTIFY checkEmptyValueChanged)

public:
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    QString filterProperty() const { return m_filter_property; }
    void setFilterProperty(const QString& filter_property);
    QString filterValue() const { return m_filter_value; }
    void setFilterValue(const QString& filter_value);
    bool acceptIfPropertyMissing() const { return m_accept_if_property_missing; }
    void setAcceptIfPropertyMissing(bool accept);
    bool checkEmptyValue() const { return m_check_empty_value; }
    void setCheckEmptyValue(bool check);

Q_SIGNALS:
    void filterPropertyChanged();
    void filterValueChanged();
    void acceptIfPropertyMissingChanged();
    void checkEmptyValueChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    QString m_filter_property;
    QString m_filter_value;
    bool m_accept_if_property_missing = false;
    bool m_check_empty_value = false;
};

/// Channels whose item "SourceUUID" is one of sourceUUIds; all while none is given.
class ChannelListSourceFilterModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(QStringList sourceUUIds READ sourceUUIds WRITE setSourceUUIds NOTIFY sourceUUIdsChanged)

public:
    using ChannelListSortFilterProxyModel::ChannelListSortFilterProxyModel;

    QStringList sourceUUIds() const { return m_source_uuids; }
    void setSourceUUIds(const QStringList& source_uuids);

Q_SIGNALS:
    void sourceUUIdsChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;

private:
    QStringList m_source_uuids;
};

/// Registers the channel proxies for the declarative views under @p uri.
void registerChannelListProxyModels(const char* uri, int major, int minor);

} // namespace lum::qchannel
