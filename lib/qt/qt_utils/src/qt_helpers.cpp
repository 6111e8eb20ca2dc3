#include <qt_utils/qdata_container.h>
#include <qt_utils/qdouble_values_reducer.h>
#include <qt_utils/qqml_future.h>

#include <cmath>
#include <limits>

namespace qt_utils {

QQMLFuture::QQMLFuture(QObject* parent) : QObject(parent) {}

void QQMLFuture::setValue(QVariant value)
{
    m_value = std::move(value);
    Q_EMIT valueChanged();
}

QVariant QQMLFuture::getValue() const
{
    return m_value;
}

void QQMLFuture::cancel()
{
    Q_EMIT canceled();
}

QDataContainerBase::QDataContainerBase(QObject* parent) : QObject(parent) {}

void QDataContainerBase::storeData(QVector<double> data)
{
    if (data == m_data)
        return;
    const int old_count = m_data.size();
    m_data = std::move(data);
    Q_EMIT dataChanged();
    if (m_data.size() != old_count)
        Q_EMIT countChanged(m_data.size());
}

QDataContainer::QDataContainer(QObject* parent) : QDataContainerBase(parent) {}

namespace {
constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

bool same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}
} // namespace

QDoubleValuesReducer::QDoubleValuesReducer(QObject* parent)
    : QObject(parent), m_min(NO_VALUE), m_max(NO_VALUE)
{}

void QDoubleValuesReducer::setValue(int key, double value)
{
    const auto it = m_values.find(key);
    if (it != m_values.end()) {
        if (same(it->second, value))
            return;
        if (!std::isnan(it->second))
            m_sorted.erase(m_sorted.find(it->second));
        it->second = value;
    } else {
        m_values.emplace(key, value);
    }
    if (!std::isnan(value))
        m_sorted.insert(value);
    update();
}

void QDoubleValuesReducer::removeValue(int key)
{
    const auto it = m_values.find(key);
    if (it == m_values.end())
        return;
    if (!std::isnan(it->second))
        m_sorted.erase(m_sorted.find(it->second));
    m_values.erase(it);
    update();
}

void QDoubleValuesReducer::clear()
{
    m_values.clear();
    m_sorted.clear();
    update();
}

void QDoubleValuesReducer::update()
{
    const double min = m_sorted.empty() ? NO_VALUE : *m_sorted.begin();
    const double max = m_sorted.empty() ? NO_VALUE : *m_sorted.rbegin();
    if (!same(min, m_min)) {
        m_min = min;
        Q_EMIT minChanged();
    }
    if (!same(max, m_max)) {
        m_max = max;
        Q_EMIT maxChanged();
    }
}

} // namespace qt_utils
