#pragma once

#include <om_ui/combo_box_object_list_model.h>

#include <QObject>
#include <QPointF>
#include <QString>

namespace overmap_ui {

/// A named point of interest of a position object, in the object's metres.
class QPOI : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QPointF position READ position WRITE setPosition NOTIFY positionChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)

public:
    explicit QPOI(QObject* parent = nullptr) : QObject(parent) {}
    QPOI(QPointF position, QString name, QObject* parent = nullptr);

    QPointF position() const { return m_position; }
    void setPosition(QPointF position);
    QString name() const { return m_name; }
    void setName(const QString& name);

Q_SIGNALS:
    void positionChanged();
    void nameChanged();

private:
    QPointF m_position;
    QString m_name;
};

/// The POIs of an object or of the contour editor. Its POIs are its children, deleted
/// when the list is cleared with deletion.
class QPoiList : public ComboBoxObjectListModel<QPOI*>
{
    Q_OBJECT

public:
    explicit QPoiList(QObject* parent = nullptr);

    /// Appends a POI at (0, 0) named after the present count.
    Q_INVOKABLE overmap_ui::QPOI* addPoi();
    /// Appends a POI owned by this list.
    QPOI* appendPoi(QPointF position, const QString& name);
};

} // namespace overmap_ui
