#pragma once

#include <QObject>

#include <map>
#include <set>

namespace qt_utils {

/// Keeps one value per key (say, per curve) and shows the minimum and maximum of
/// all of them, so that a view can share one scale. NaN values are kept under their
/// key but take no part; with no number at all, min and max are NaN.
class QDoubleValuesReducer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double min READ min NOTIFY minChanged)
    Q_PROPERTY(double max READ max NOTIFY maxChanged)

public:
    explicit QDoubleValuesReducer(QObject* parent = nullptr);

    double min() const { return m_min; }
    double max() const { return m_max; }

    Q_INVOKABLE void setValue(int key, double value);
    Q_INVOKABLE void removeValue(int key);
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void minChanged();
    void maxChanged();

private:
    void update();

    std::map<int, double> m_values;
    std::multiset<double> m_sorted;
    double m_min;
    double m_max;
};

} // namespace qt_utils
