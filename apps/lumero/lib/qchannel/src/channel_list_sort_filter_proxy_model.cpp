#include <qchannel/channel_list_sort_filter_proxy_model.h>

#include <qchannel/qchannel.h>

#include <config_items/config_item_variant.h>
#include <ferrin_core/channel.h>
#include <qobject_list_model/object_model_utils.h>

#include <QJSValueList>
#include <QMetaType>

#include <variant>

namespace lum::qchannel {

namespace {

bool isNumber(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return false;
    }
}

} // namespace

// --- ChannelListSortFilterProxyModel ---

QString ChannelListSortFilterProxyModel::itemText(const QChannel& channel, const QString& key)
{
    const std::shared_ptr<ferrin::Channel>& ferrin_channel = channel.ferrinChannel();
    if (!ferrin_channel)
        return QString();
    // One read of the item: filters ask this for every row.
    const ferrin::ConfigItem item = ferrin_channel->getConfigItem(key.toStdString());
    if (std::holds_alternative<config_items::InvalidConfigItem>(item))
        return QString();
    if (key == QLatin1String("CAN/MessageID")) {
        bool ok = false;
        const int id = channel.getConfigItem(key).toInt(&ok);
        return ok ? QStringLiteral("0x") + QString::number(id, 16) : QString();
    }
    if (const auto* text = std::get_if<config_items::StringConfigItem>(&item))
        return QString::fromStdString(text->getValue());
    return QString::fromStdString(channel_config::toString(item));
}

QStringList ChannelListSortFilterProxyModel::uniqueListForProperty(const QString& key, int maxResults) const
{
    QStringList texts;
    const int rows = rowCount();
    for (int row = 0; row < rows; ++row) {
        if (maxResults > 0 && texts.size() >= maxResults)
            break;
        const auto* channel = qobject_cast<const QChannel*>(at(row));
        if (channel == nullptr)
            continue;
        // The same texts as the channel list gives for all its channels.
        QString text = channel->getStringRepresentation(key);
        if (text.isEmpty())
            continue;
        text[0] = text.at(0).toUpper();
        if (!texts.contains(text))
            texts.append(text);
    }
    return texts;
}

QStringList ChannelListSortFilterProxyModel::uniqueListForProperty(const QString& key) const
{
    return uniqueListForProperty(key, 0);
}

QChannel* ChannelListSortFilterProxyModel::channelAt(int source_row, const QModelIndex& source_parent) const
{
    const QAbstractItemModel* source = sourceModel();
    if (source == nullptr)
        return nullptr;
    return qobject_cast<QChannel*>(
        ObjectModelUtils::objectOf(source, source->index(source_row, 0, source_parent)));
}

bool ChannelListSortFilterProxyModel::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const
{
    if (!ObjectListSortFilterProxyModel::filterAcceptsRow(source_row, source_parent))
        return false;
    const QChannel* channel = channelAt(source_row, source_parent);
    return channel != nullptr && acceptsChannel(*channel);
}

bool ChannelListSortFilterProxyModel::acceptsChannel(const QChannel&) const
{
    return true;
}

// --- ChannelListPropertySortProxyModel ---

ChannelListPropertySortProxyModel::ChannelListPropertySortProxyModel(QObject* parent)
    : ChannelListSortFilterProxyModel(parent)
{}

void ChannelListPropertySortProxyModel::setSourceModel(QAbstractItemModel* source_model)
{
    if (sourceModel() != nullptr)
        disconnect(sourceModel(), nullptr, this, nullptr);
    forgetChannels();
    // Connected ahead of the proxy's own handlers, so that a re-sort after a change never
    // meets a stale key.
    if (source_model != nullptr) {
        auto forget = [this] { forgetChannels(); };
        connect(source_model, &QAbstractItemModel::dataChanged, this, forget);
        connect(source_model, &QAbstractItemModel::rowsAboutToBeRemoved, this, forget);
        connect(source_model, &QAbstractItemModel::modelAboutToBeReset, this, forget);
        connect(source_model, &QAbstractItemModel::layoutAboutToBeChanged, this, forget);
    }
    ChannelListSortFilterProxyModel::setSourceModel(source_model);
}

void ChannelListPropertySortProxyModel::forgetChannels()
{
    m_sort_keys.clear();
    m_accepted.clear();
}

void ChannelListPropertySortProxyModel::refilter()
{
    m_accepted.clear();
    invalidateFilter();
}

void ChannelListPropertySortProxyModel::resort()
{
    m_sort_keys.clear();
    invalidate();
    sort(0, m_sort_order);
}

void ChannelListPropertySortProxyModel::setSortProperty(const QString& sort_property)
{
    if (m_sort_property == sort_property)
        return;
    m_sort_property = sort_property;
    resort();
    Q_EMIT sortPropertyChanged();
}

void ChannelListPropertySortProxyModel::setSortOrder(Qt::SortOrder sort_order)
{
    if (m_sort_order == sort_order)
        return;
    m_sort_order = sort_order;
    resort();
    Q_EMIT sortOrderChanged();
}

void ChannelListPropertySortProxyModel::setSearchString(const QString& search_string)
{
    if (m_search_string == search_string)
        return;
    m_search_string = search_string;
    refilter();
    Q_EMIT searchStringChanged();
}

void ChannelListPropertySortProxyModel::setSearchedKeys(const QStringList& searched_keys)
{
    if (m_searched_keys == searched_keys)
        return;
    m_searched_keys = searched_keys;
    refilter();
    Q_EMIT searchedKeysChanged();
}

void ChannelListPropertySortProxyModel::setPropertyFilter(const QString& key, const QString& value)
{
    const auto it = m_property_filters.find(key);
    if (it != m_property_filters.end() && it->second == value)
        return;
    m_property_filters[key] = value;
    refilter();
    Q_EMIT filterChanged();
}

void ChannelListPropertySortProxyModel::clearFilters()
{
    m_property_filters.clear();
    refilter();
    Q_EMIT filterChanged();
}

bool ChannelListPropertySortProxyModel::isPropertyFiltered(const QString& key) const
{
    return m_property_filters.count(key) != 0;
}

QString ChannelListPropertySortProxyModel::filterOfProperty(const QString& key) const
{
    const auto it = m_property_filters.find(key);
    return it == m_property_filters.end() ? QString() : it->second;
}

void ChannelListPropertySortProxyModel::setPropertySearchMode(const QString& key, SearchMode mode)
{
    if (getPropertySearchMode(key) == mode)
        return;
    m_search_modes[key] = mode;
    refilter();
}

void ChannelListPropertySortProxyModel::setPropertyCustomSearchMode(const QString& key, const QJSValue& f)
{
    m_search_modes[key] = CUSTOM;
    m_custom_search_functions.insert(key, f);
    refilter();
}

ChannelListPropertySortProxyModel::SearchMode
ChannelListPropertySortProxyModel::getPropertySearchMode(const QString& key) const
{
    const auto it = m_search_modes.find(key);
    return it == m_search_modes.end() ? DEFAULT : it->second;
}

bool ChannelListPropertySortProxyModel::matchesSearch(const QChannel& channel, const QString& key) const
{
    const SearchMode mode = getPropertySearchMode(key);
    if (mode == DECIMAL || mode == HEXADECIMAL) {
        bool ok = false;
        const qlonglong number = channel.getConfigItem(key).toLongLong(&ok);
        if (!ok)
            return false;
        if (mode == DECIMAL)
            return QString::number(number).contains(m_search_string.trimmed());
        QString wanted = m_search_string.trimmed().toLower();
        if (wanted.startsWith(QLatin1String("0x")))
            wanted.remove(0, 2);
        return QString::number(number, 16).contains(wanted);
    }
    const QString text = itemText(channel, key);
    if (mode == CUSTOM) {
        QJSValue f = m_custom_search_functions.value(key);
        return f.isCallable() && f.call({QJSValue(text), QJSValue(m_search_string)}).toBool();
    }
    return text.contains(m_search_string, Qt::CaseInsensitive);
}

bool ChannelListPropertySortProxyModel::acceptsChannel(const QChannel& channel) const
{
    const auto cached = m_accepted.constFind(&channel);
    if (cached != m_accepted.constEnd())
        return *cached;
    const bool accepted = accepts(channel);
    m_accepted.insert(&channel, accepted);
    return accepted;
}

bool ChannelListPropertySortProxyModel::accepts(const QChannel& channel) const
{
    for (const auto& [key, value] : m_property_filters) {
        if (itemText(channel, key) != value)
            return false;
    }
    if (m_search_string.isEmpty())
        return true;
    if (m_searched_keys.isEmpty())
        return channel.name().contains(m_search_string, Qt::CaseInsensitive);
    for (const QString& key : m_searched_keys) {
        if (matchesSearch(channel, key))
            return true;
    }
    return false;
}

ChannelListPropertySortProxyModel::SortKey
ChannelListPropertySortProxyModel::sortKeyOf(const QModelIndex& source_index) const
{
    const QObject* object = ObjectModelUtils::objectOf(sourceModel(), source_index);
    auto it = m_sort_keys.find(object);
    if (it != m_sort_keys.end())
        return *it;
    SortKey key;
    if (const auto* channel = qobject_cast<const QChannel*>(object)) {
        const QVariant value = channel->getConfigItem(m_sort_property);
        key.numeric = isNumber(value);
        if (key.numeric)
            key.number = value.toDouble();
        else
            key.text = value.toString().toCaseFolded();
    }
    return *m_sort_keys.insert(object, key);
}

bool ChannelListPropertySortProxyModel::lessThan(const QModelIndex& source_left,
                                                 const QModelIndex& source_right) const
{
    if (m_sort_property.isEmpty())
        return source_left.row() < source_right.row();
    const SortKey left = sortKeyOf(source_left);
    const SortKey right = sortKeyOf(source_right);
    if (left.numeric && right.numeric)
        return left.number < right.number;
    // Numbers before texts, so that the order is total.
    if (left.numeric != right.numeric)
        return left.numeric;
    return left.text < right.text;
}

} // namespace lum::qchannel
