#include <om_ui/qpoi.h>

namespace overmap_ui {

QPOI::QPOI(QPointF position, QString name, QObject* parent)
    : QObject(parent), m_position(position), m_name(std::move(name))
{}

void QPOI::setPosition(QPointF position)
{
    if (position == m_position)
        return;
    m_position = position;
    Q_EMIT positionChanged();
}

void QPOI::setName(const QString& name)
{
    if (name == m_name)
        return;
    m_name = name;
    Q_EMIT nameChanged();
}

QPoiList::QPoiList(QObject* parent) : ComboBoxObjectListModel<QPOI*>(parent) {}

QPOI* QPoiList::addPoi()
{
    return appendPoi(QPointF(0.0, 0.0), tr("Poi %n", nullptr, size()));
}

QPOI* QPoiList::appendPoi(QPointF position, const QString& name)
{
    auto* poi = new QPOI(position, name, this);
    append(poi);
    return poi;
}

} // namespace overmap_ui
