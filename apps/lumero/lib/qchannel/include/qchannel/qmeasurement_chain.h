#pragma once

#include <qchannel/if_configurable_object.h>

#include <channel_config/channel_id.h>
#include <ferrin_core/config_item_store.h>
#include <lum_config_items/qcell_editor_constraints.h>
#include <qobject_list_model/qobjectlist_model_t.h>

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace lum {

/// One stage of a channel's measurement chain (sensor, amplifier, scaling ...), with
/// the configuration operations of a channel over the stage's own items.
class QMeasurementChainElement : public QObject, public IfConfigurableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString uuid READ uuid CONSTANT)
    Q_PROPERTY(QString type READ type CONSTANT)

public:
    explicit QMeasurementChainElement(ferrin::MeasurementChainElement element, QObject* parent = nullptr);

    QString name() const { return QString::fromStdString(m_element.name); }
    QString uuid() const { return QString::fromStdString(m_element.uuid); }
    QString type() const { return QString::fromStdString(m_element.type); }

    Q_INVOKABLE QVariant getConfigItem(const QString& key) const override;
    Q_INVOKABLE QString getConfigItemAsString(const QString& key) const;
    Q_INVOKABLE QString getConfigItemType(const QString& key) const;
    /// One line per constraint of @p key.
    Q_INVOKABLE QStringList getConstraints(const QString& key) const;
    /// Built on first request; the element owns it.
    Q_INVOKABLE ferrin_config::QCellEditorConstraints* getPropertyConstraints(const QString& key) override;
    Q_INVOKABLE bool setConfigItem(const QString& key, const QVariant& value) override;
    Q_INVOKABLE bool hasConfigItem(const QString& key) const override;
    Q_INVOKABLE QString getStringRepresentation(const QString& key) const override;
    Q_INVOKABLE QString getStringRep(const QVariant& value) const;
    Q_INVOKABLE QStringList getAvailableConfigKeys() const;
    Q_INVOKABLE QStringList getAvailableActionKeys() const;
    Q_INVOKABLE QStringList getAvailableIdKeys() const;

Q_SIGNALS:
    void configItemChanged(channel_config::ChannelID channel_id, QString key);

private:
    QStringList keysWhere(bool (*keep)(const std::string& key)) const;

    ferrin::MeasurementChainElement m_element;
    QMap<QString, ferrin_config::QCellEditorConstraints*> m_constraints;
};

/// The stages of one channel's measurement chain, in order. Owns its elements.
class QMeasurementChain : public QObjectListModelT<QMeasurementChainElement>
{
    Q_OBJECT

public:
    using QObjectListModelT::QObjectListModelT;
};

} // namespace lum
