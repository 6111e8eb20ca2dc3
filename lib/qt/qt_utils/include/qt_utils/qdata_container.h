#pragma once

#include <QObject>
#include <QVector>

namespace qt_utils {

/// A vector of doubles for QML (curves, histograms): read side.
class QDataContainerBase : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int count READ getCount NOTIFY countChanged)
    Q_PROPERTY(QVector<double> data READ getData NOTIFY dataChanged)

public:
    explicit QDataContainerBase(QObject* parent = nullptr);

    Q_INVOKABLE QVector<double> getData() const { return m_data; }
    Q_INVOKABLE int getCount() const { return m_data.size(); }

Q_SIGNALS:
    void countChanged(int count);
    void dataChanged();

protected:
    /// Stores @p data; emits dataChanged when it differs, then countChanged when its size does.
    void storeData(QVector<double> data);

private:
    QVector<double> m_data;
};

/// The writable container that producers fill.
class QDataContainer : public QDataContainerBase
{
    Q_OBJECT

public:
    explicit QDataContainer(QObject* parent = nullptr);

    Q_INVOKABLE void setData(QVector<double> data) { storeData(std::move(data)); }
};

} // namespace qt_utils
