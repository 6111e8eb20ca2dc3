#pragma once

#include <qobject_list_model/object_list_sort_filter_proxy_model.h>

#include <QHash>
#include <QJSValue>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <map>

namespace lum::qchannel {

class QChannel;

/// The base of every proxy over a list of channels: rows that hold no channel never
/// pass, and a subclass decides about the channels with acceptsChannel.
class ChannelListSortFilterProxyModel : public ObjectListSortFilterProxyModel
{
    Q_OBJECT

public:
    using ObjectListSortFilterProxyModel::ObjectListSortFilterProxyModel;

    /// The texts of item @p key of the channels that pass, in this proxy's order: empty
    /// texts left out, the first letter in upper case, each text once; at most
    /// @p maxResults of them when it is positive.
    Q_INVOKABLE QStringList uniqueListForProperty(const QString& key, int maxResults) const;
    Q_INVOKABLE QStringList uniqueListForProperty(const QString& key) const;

    /// The text of item @p key of @p channel as filters and sorting compare it: a CAN
    /// message id in hexadecimal ("0xff"), any other item in its text form.
    static QString itemText(const QChannel& channel, const QString& key);

protected:
    /// The channel of a source row; null when the row holds none.
    QChannel* channelAt(int source_row, const QModelIndex& source_parent) const;
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;
    /// Whether a channel passes; the base lets all through.
    virtual bool acceptsChannel(const QChannel& channel) const;
};

/// Sorts by one configuration key and filters by required item values and by a search
/// text looked for in some items.
///
/// Sorting compares numbers as numbers and anything else as text without regard to
/// case; with no sort key the source's order stays. A row passes when each property
/// filter's key holds exactly the required text, and, with a search text, when one of
/// the searched keys (the name when none is given) matches it in that key's search mode.
class ChannelListPropertySortProxyModel : public ChannelListSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(QString sortProperty READ sortProperty WRITE setSortProperty NOTIFY sortPropertyChanged)
    Q_PROPERTY(Qt::SortOrder sortOrder READ sortOrder WRITE setSortOrder NOTIFY sortOrderChanged)
    Q_PROPERTY(QString searchString READ searchString WRITE setSearchString NOTIFY searchStringChanged)
    Q_PROPERTY(QStringList searchedKeys READ searchedKeys WRITE setSearchedKeys NOTIFY searchedKeysChanged)

public:
    enum SearchMode
    {
        /// The item's text contains the search text, in any case.
        DEFAULT = 0,
        /// The item as a whole number, in decimal, contains the search text.
        DECIMAL = 1,
        /// The item as a whole number, in hexadecimal, contains the search text ("0x" and
        /// case aside).
        HEXADECIMAL = 2,
        /// A function given the item's text and the search text answers.
        CUSTOM = 3
    };
    Q_ENUM(SearchMode)

    explicit ChannelListPropertySortProxyModel(QObject* parent = nullptr);

    QString sortProperty() const { return m_sort_property; }
    void setSortProperty(const QString& sort_property);
    Qt::SortOrder sortOrder() const { return m_sort_order; }
    void setSortOrder(Qt::SortOrder sort_order);
    QString searchString() const { return m_search_string; }
    void setSearchString(const QString& search_string);
    QStringList searchedKeys() const { return m_searched_keys; }
    void setSearchedKeys(const QStringList& searched_keys);

    /// Only channels whose item @p key reads @p value pass.
    Q_INVOKABLE void setPropertyFilter(const QString& key, const QString& value);
    Q_INVOKABLE void clearFilters();
    Q_INVOKABLE bool isPropertyFiltered(const QString& key) const;
    /// The required value of @p key; empty when it is not filtered.
    Q_INVOKABLE QString filterOfProperty(const QString& key) const;
    Q_INVOKABLE void setPropertySearchMode(const QString& key,
                                           lum::qchannel::ChannelListPropertySortProxyModel::SearchMode mode);
    /// Searches @p key with the function @p f(text, searchString), which answers whether it matches.
    Q_INVOKABLE void setPropertyCustomSearchMode(const QString& key, const QJSValue& f);
    /// DEFAULT for a key never set.
    Q_INVOKABLE lum::qchannel::ChannelListPropertySortProxyModel::SearchMode
    getPropertySearchMode(const QString& key) const;

    void setSourceModel(QAbstractItemModel* source_model) override;

Q_SIGNALS:
    void sortPropertyChanged();
    void sortOrderChanged();
    void filterChanged();
    void searchStringChanged();
    void searchedKeysChanged();

protected:
    bool acceptsChannel(const QChannel& channel) const override;
    bool lessThan(const QModelIndex& source_left, const QModelIndex& source_right) const override;

private:
    /// What a channel is sorted by, read once for each channel until it may have changed.
    struct SortKey
    {
        bool numeric = false;
        double number = 0.0;
        QString text; ///< case-folded
    };

    SortKey sortKeyOf(const QModelIndex& source_index) const;
    /// The filter's answer, worked out anew.
    bool accepts(const QChannel& channel) const;
    /// Drops what is known of the channels, as after any change of the source.
    void forgetChannels();
    /// Re-filters after a change of the filter's settings.
    void refilter();
    bool matchesSearch(const QChannel& channel, const QString& key) const;
    void resort();

    QString m_sort_property;
    Qt::SortOrder m_sort_order = Qt::AscendingOrder;
    QString m_search_string;
    QStringList m_searched_keys;
    std::map<QString, QString> m_property_filters;
    std::map<QString, SearchMode> m_search_modes;
    QHash<QString, QJSValue> m_custom_search_functions;

    /// Sort keys and filter answers by channel, so that a re-sort or a second pass reads
    /// no item again; emptied before any change of the source reaches the proxy, and
    /// the answers with any change of the filter.
    mutable QHash<const QObject*, SortKey> m_sort_keys;
    mutable QHash<const QObject*, bool> m_accepted;
};

} // namespace lum::qchannel
