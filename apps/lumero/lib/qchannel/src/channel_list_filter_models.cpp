#include <qchannel/channel_list_filter_models.h>

#include <qchannel/qchannel.h>

#include <QQmlEngine>

#include <algorithm>

namespace lum::qchannel {

namespace {

/// The first half of every setter: stores @p value and answers whether it was new.
template <typename T>
bool storeChange(T& member, const T& value)
{
    if (member == value)
        return false;
    member = value;
    return true;
}

int sampleTypeBit(QChannel::SampleValueType type)
{
    using Filter = ChannelListChannelSampleValueTypeFilterProxyModel;
    switch (type) {
    case QChannel::SAMPLE_VALUE_SCALAR:
        return Filter::SAMPLE_TYPE_SCALAR;
    case QChannel::SAMPLE_VALUE_CAN_MESSAGE:
        return Filter::SAMPLE_TYPE_CAN_MESSAGE;
    case QChannel::SAMPLE_VALUE_VECTOR:
    case QChannel::SAMPLE_VALUE_BYTE_VECTOR:
        return Filter::SAMPLE_TYPE_SCALAR_VECTOR;
    case QChannel::SAMPLE_VALUE_COMPLEX_VECTOR:
        return Filter::SAMPLE_TYPE_COMPLEX_VECTOR;
    case QChannel::SAMPLE_VALUE_VIDEO:
        return Filter::SAMPLE_TYPE_VIDEO;
    case QChannel::SAMPLE_VALUE_STRING:
        return Filter::SAMPLE_TYPE_STRING;
    case QChannel::SAMPLE_VALUE_FLEXRAY_MESSAGE:
        return Filter::SAMPLE_TYPE_FLEXRAY_MESSAGE;
    default:
        return 0;
    }
}

/// The channel types (numbers of the channel type item) of each kind; -1 for none.
struct KindTypes
{
    int kind;
    int types[2];
};

constexpr KindTypes KIND_TYPES[] = {
    {ChannelTypeFilter::ANALOG, {0, -1}},
    {ChannelTypeFilter::DIGITAL, {1, 2}},
    {ChannelTypeFilter::COUNTER, {3, -1}},
    {ChannelTypeFilter::PADSENSOR, {10, 11}},
    {ChannelTypeFilter::CAN, {4, -1}},
    {ChannelTypeFilter::FLEXRAY, {39, -1}},
    {ChannelTypeFilter::VIDEO, {13, -1}},
    {ChannelTypeFilter::MATH, {7, -1}},
    {ChannelTypeFilter::POWER, {8, 9}},
    {ChannelTypeFilter::SNAPSHOT, {32, -1}},
    {ChannelTypeFilter::RECEIVER, {34, 35}},
    {ChannelTypeFilter::SSA, {37, 38}},
    {ChannelTypeFilter::ORDERANALYSIS, {42, 43}},
    {ChannelTypeFilter::SOUNDLEVEL, {44, 45}},
    {ChannelTypeFilter::ARINC_429, {50, -1}},
    {ChannelTypeFilter::MILSTD_1553, {51, -1}},
    {ChannelTypeFilter::CAN_SIGNAL, {5, -1}},
    {ChannelTypeFilter::FIR, {54, 55}},
};

bool isOfKind(int channel_type, int kind)
{
    for (const KindTypes& entry : KIND_TYPES) {
        if (entry.kind == kind)
            return channel_type == entry.types[0] || channel_type == entry.types[1];
    }
    return false;
}

} // namespace

bool ChannelTypeFilter::matches(const QChannel& channel, int type)
{
    switch (type) {
    case ALL:
        return true;
    case SYNC:
        return channel.sampleOccurence() == QChannel::SOT_SYNC;
    case ASYNC:
        return channel.sampleOccurence() == QChannel::SOT_ASYNC;
    case SYNC_SCALAR_SIGNAL:
        return channel.sampleOccurence() == QChannel::SOT_SYNC && channel.isScalarChannel();
    default: {
        const std::shared_ptr<ferrin::Channel>& ferrin_channel = channel.ferrinChannel();
        if (!ferrin_channel)
            return false;
        return isOfKind(ferrin_channel->getChannelType(), type);
    }
    }
}

// --- the channel filter ---

bool ChannelListChannelFilterModel::acceptsChannel(const QChannel& channel) const
{
    return channel.isUsed() && !channel.isHidden();
}

// --- sample kinds ---

void ChannelListChannelSampleValueTypeFilterProxyModel::setTypeFilter(int type_filter)
{
    if (!storeChange(m_type_filter, type_filter))
        return;
    invalidateFilter();
    Q_EMIT typeFilterChanged();
}

void ChannelListChannelSampleValueTypeFilterProxyModel::setSelectedInstrument(QObject* instrument)
{
    if (m_selected_instrument == instrument)
        return;
    m_selected_instrument = instrument;
    invalidateFilter();
    Q_EMIT selectedInstrumentChanged();
}

bool ChannelListChannelSampleValueTypeFilterProxyModel::acceptsChannel(const QChannel& channel) const
{
    if (m_type_filter == ANY)
        return true;
    if ((m_type_filter & sampleTypeBit(channel.sampleValueType())) != 0)
        return true;
    if ((m_type_filter & SAMPLE_TYPE_INSTRUMENT) != 0 && m_selected_instrument)
        return m_selected_instrument->property("channelIds").toStringList().contains(channel.getChannelId());
    return false;
}

// --- sources ---

bool ChannelListChannelSourceFilterProxyModel::acceptsChannel(const QChannel& channel) const
{
    return !channel.hasConfigItem(QStringLiteral("MetadataChannelOf"));
}

// --- channel types ---

void ChannelListChannelTypeFilterProxyModel::setTypeFilter(TypeFilter type_filter)
{
    if (!storeChange(m_type_filter, type_filter))
        return;
    invalidateFilter();
    Q_EMIT typeFilterChanged();
}

void ChannelListChannelTypeFilterProxyModel::setMaxDimension(int max_dimension)
{
    if (!storeChange(m_max_dimension, max_dimension))
        return;
    invalidateFilter();
    Q_EMIT maxDimensionChanged();
}

void ChannelListChannelTypeFilterProxyModel::setInverted(bool inverted)
{
    if (!storeChange(m_inverted, inverted))
        return;
    invalidateFilter();
    Q_EMIT invertedChanged();
}

bool ChannelListChannelTypeFilterProxyModel::acceptsChannel(const QChannel& channel) const
{
    const bool accepted = ChannelTypeFilter::matches(channel, m_type_filter) &&
                          (m_max_dimension <= 0 || channel.dimension() <= m_max_dimension);
    return accepted != m_inverted;
}

// --- channel types or ids ---

void ChannelListChannelTypeOrChannelIdFilterProxyModel::setTypeFilter(TypeFilter type_filter)
{
    if (!storeChange(m_type_filter, type_filter))
        return;
    invalidateFilter();
    Q_EMIT typeFilterChanged();
}

void ChannelListChannelTypeOrChannelIdFilterProxyModel::setInverted(bool inverted)
{
    if (!storeChange(m_inverted, inverted))
        return;
    invalidateFilter();
    Q_EMIT invertedChanged();
}

void ChannelListChannelTypeOrChannelIdFilterProxyModel::setChannelIds(const QStringList& channel_ids)
{
    if (!storeChange(m_channel_ids, channel_ids))
        return;
    invalidateFilter();
    Q_EMIT channelIdsChanged();
}

bool ChannelListChannelTypeOrChannelIdFilterProxyModel::acceptsChannel(const QChannel& channel) const
{
    const bool accepted =
        ChannelTypeFilter::matches(channel, m_type_filter) || m_channel_ids.contains(channel.getChannelId());
    return accepted != m_inverted;
}

// --- ids ---

void ChannelListIdFilterModel::setChannelIds(const QStringList& channel_ids)
{
    if (!storeChange(m_channel_ids, channel_ids))
        return;
    invalidateFilter();
    Q_EMIT channelIdsChanged();
}

bool ChannelListIdFilterModel::acceptsChannel(const QChannel& channel) const
{
    return m_channel_ids.contains(channel.getChannelId());
}

// --- several values ---

void ChannelListMultiValueFilterProxyModel::setFilterKeys(const QStringList& filter_keys)
{
    if (!storeChange(m_filter_keys, filter_keys))
        return;
    invalidateFilter();
    Q_EMIT filterKeysChanged();
}

void ChannelListMultiValueFilterProxyModel::setFilterValues(const QStringList& filter_values)
{
    if (!storeChange(m_filter_values, filter_values))
        return;
    invalidateFilter();
    Q_EMIT filterValuesChanged();
}

void ChannelListMultiValueFilterProxyModel::setInverted(bool inverted)
{
    if (!storeChange(m_inverted, inverted))
        return;
    invalidateFilter();
    Q_EMIT invertedChanged();
}

bool ChannelListMultiValueFilterProxyModel::acceptsChannel(const QChannel& channel) const
{
    bool accepted = true;
    const int pairs = std::min(m_filter_keys.size(), m_filter_values.size());
    for (int i = 0; i < pairs && accepted; ++i)
        accepted = itemText(channel, m_filter_keys.at(i)) == m_filter_values.at(i);
    return accepted != m_inverted;
}

// --- one value ---

void ChannelListPropertyFilterModel::setFilterProperty(const QString& filter_property)
{
    if (!storeChange(m_filter_property, filter_property))
        return;
    invalidateFilter();
    Q_EMIT filterPropertyChanged();
}

void ChannelListPropertyFilterModel::setFilterValue(const QString& filter_value)
{
    if (!storeChange(m_filter_value, filter_value))
        return;
    invalidateFilter();
    Q_EMIT filterValueChanged();
}

void ChannelListPropertyFilterModel::setAcceptIfPropertyMissing(bool accept)
{
    if (!storeChange(m_accept_if_property_missing, accept))
        return;
    invalidateFilter();
    Q_EMIT acceptIfPropertyMissingChanged();
}

void ChannelListPropertyFilterModel::setCheckEmptyValue(bool check)
{
    if (!storeChange(m_check_empty_value, check))
        return;
    invalidateFilter();
    Q_EMIT checkEmptyValueChanged();
}

bool ChannelListPropertyFilterModel::acceptsChannel(const QChannel& channel) const
{
    if (m_filter_property.isEmpty())
        return true;
    if (!channel.hasConfigItem(m_filter_property))
        return m_accept_if_property_missing;
    if (m_filter_value.isEmpty() && !m_check_empty_value)
        return true;
    return itemText(channel, m_filter_property) == m_filter_value;
}

// --- data sources ---

void ChannelListSourceFilterModel::setSourceUUIds(const QStringList& source_uuids)
{
    if (!storeChange(m_source_uuids, source_uuids))
        return;
    invalidateFilter();
    Q_EMIT sourceUUIdsChanged();
}

bool ChannelListSourceFilterModel::acceptsChannel(const QChannel& channel) const
{
    return m_source_uuids.isEmpty() ||
           m_source_uuids.contains(itemText(channel, QStringLiteral("SourceUUID")));
}

void registerChannelListProxyModels(const char* uri, int major, int minor)
{
    qmlRegisterType<ChannelListSortFilterProxyModel>(uri, major, minor, "ChannelListSortFilterProxyModel");
    qmlRegisterType<ChannelListChannelFilterModel>(uri, major, minor, "ChannelListChannelFilterModel");
    qmlRegisterType<ChannelListChannelSampleValueTypeFilterProxyModel>(
        uri, major, minor, "ChannelListChannelSampleValueTypeFilterProxyModel");
    qmlRegisterType<ChannelListChannelSourceFilterProxyModel>(uri, major, minor,
                                                              "ChannelListChannelSourceFilterProxyModel");
    qmlRegisterUncreatableType<ChannelTypeFilter>(uri, major, minor, "ChannelTypeFilter",
                                                  QStringLiteral("enumeration only"));
    qmlRegisterType<ChannelListChannelTypeFilterProxyModel>(uri, major, minor,
                                                            "ChannelListChannelTypeFilterProxyModel");
    qmlRegisterType<ChannelListChannelTypeOrChannelIdFilterProxyModel>(
        uri, major, minor, "ChannelListChannelTypeOrChannelIdFilterProxyModel");
    qmlRegisterType<ChannelListIdFilterModel>(uri, major, minor, "ChannelListIdFilterModel");
    qmlRegisterType<ChannelListMultiValueFilterProxyModel>(uri, major, minor,
                                                           "ChannelListMultiValueFilterProxyModel");
    qmlRegisterType<ChannelListPropertyFilterModel>(uri, major, minor, "ChannelListPropertyFilterModel");
    qmlRegisterType<ChannelListPropertySortProxyModel>(uri, major, minor,
                                                       "ChannelListPropertySortProxyModel");
    qmlRegisterType<ChannelListSourceFilterModel>(uri, major, minor, "ChannelListSourceFilterModel");
}

} // namespace lum::qchannel
