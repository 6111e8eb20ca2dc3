#pragma once

#include <QObject>
#include <QVariant>

namespace qt_utils {

/// A value that QML waits for: the producer sets it (or cancels), the view binds to it.
class QQMLFuture : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant value READ getValue WRITE setValue NOTIFY valueChanged)

public:
    explicit QQMLFuture(QObject* parent = nullptr);

    /// Stores @p value and emits valueChanged, also for an equal value: each set is a delivery.
    Q_INVOKABLE void setValue(QVariant value);
    Q_INVOKABLE QVariant getValue() const;
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void valueChanged();
    void canceled();

private:
    QVariant m_value;
};

} // namespace qt_utils
