#pragma once

#include <qobject_list_model/qobject_list_model_adapter.h>

/// A list adapter that reports each object coming and going as a signal, for
/// observers that want to connect rather than derive.
class QObjectListModelAdapterSignal : public QObjectListModelAdapter
{
    Q_OBJECT

public:
    using QObjectListModelAdapter::QObjectListModelAdapter;

Q_SIGNALS:
    void insert(int index, QObject* obj);
    void remove(int index, QObject* obj);

protected:
    void insert(int index, QObject* obj, int size) override;
    void remove(int index, QObject* obj, int size) override;
};
