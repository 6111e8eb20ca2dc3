#include "qchannel_log.h"
#include <qchannel/qmeasurement_chain.h>

#include "config_constraints_to_string_visitor.h"
#include "config_item_conversion.h"

#include <lum_config_items/ferrin_config_item_utils.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <stdexcept>

namespace lum {

namespace {

bool isActionKey(const std::string& key)
{
    return key.rfind("ACTION:", 0) == 0;
}

bool isIdKey(const std::string& key)
{
    return key.rfind("ID:", 0) == 0;
}

bool isPlainKey(const std::string& key)
{
    return !isActionKey(key) && !isIdKey(key);
}

} // namespace

QMeasurementChainElement::QMeasurementChainElement(ferrin::MeasurementChainElement element, QObject* parent)
    : QObject(parent), m_element(std::move(element))
{
    if (!m_element.items)
        m_element.items = std::make_shared<ferrin::ConfigItemStore>();
}

QVariant QMeasurementChainElement::getConfigItem(const QString& key) const
{
    if (key.isEmpty())
        return QVariant();
    const std::optional<ferrin::ConfigItem> item = m_element.items->get(key.toStdString());
    return item ? qchannel::detail::configItemToVariant(*item) : QVariant();
}

QString QMeasurementChainElement::getConfigItemAsString(const QString& key) const
{
    const std::optional<ferrin::ConfigItem> item = m_element.items->get(key.toStdString());
    return item ? QString::fromStdString(channel_config::toString(*item)) : QString();
}

QString QMeasurementChainElement::getConfigItemType(const QString& key) const
{
    const std::optional<ferrin::ConfigItem> item = m_element.items->get(key.toStdString());
    return item ? QString::fromStdString(channel_config::configItemTypeName(*item)) : QString();
}

QStringList QMeasurementChainElement::getConstraints(const QString& key) const
{
    try {
        return detail::ConfigConstraintsToStringVisitor::describe(
            m_element.items->getConstraints(key.toStdString()));
    } catch (const std::invalid_argument& error) {
        UNI_LOG(qchannel::detail::LOG_CHANNEL, SEV_ERROR)
            << "Constraints of " << key.toStdString() << ": " << error.what();
        return {};
    }
}

ferrin_config::QCellEditorConstraints* QMeasurementChainElement::getPropertyConstraints(const QString& key)
{
    ferrin_config::QCellEditorConstraints*& constraints = m_constraints[key];
    if (!constraints)
        constraints = new ferrin_config::QCellEditorConstraints(
            m_element.items->getConstraints(key.toStdString()), this);
    return constraints;
}

bool QMeasurementChainElement::setConfigItem(const QString& key, const QVariant& value)
{
    if (!UNI_ASSERT_MSG(value.isValid(), "setConfigItem: called with value 'invalid' for key %s",
                        qPrintable(key)))
        return false;
    const std::string std_key = key.toStdString();
    std::optional<ferrin::ConfigItem> item;
    if (const std::optional<ferrin::ConfigItem> current = m_element.items->get(std_key))
        item = ferrin_config::matchConfigItem(value, *current);
    if (!item)
        item = qchannel::detail::variantToConfigItem(value);
    if (!item)
        return false;
    m_element.items->set(std_key, std::move(*item));
    // The editor constraints of the key may have followed the value.
    if (ferrin_config::QCellEditorConstraints* constraints = m_constraints.take(key))
        constraints->deleteLater();
    Q_EMIT configItemChanged(channel_config::ChannelID(), key);
    return true;
}

bool QMeasurementChainElement::hasConfigItem(const QString& key) const
{
    return !key.isEmpty() && m_element.items->has(key.toStdString());
}

QString QMeasurementChainElement::getStringRepresentation(const QString& key) const
{
    const QVariant value = getConfigItem(key);
    return value.isValid() ? getStringRep(value) : QString();
}

QString QMeasurementChainElement::getStringRep(const QVariant& value) const
{
    return ferrin_config::variantToString(value);
}

QStringList QMeasurementChainElement::keysWhere(bool (*keep)(const std::string& key)) const
{
    QStringList keys;
    for (const std::string& key : m_element.items->keys())
        if (keep(key))
            keys << QString::fromStdString(key);
    return keys;
}

QStringList QMeasurementChainElement::getAvailableConfigKeys() const
{
    return keysWhere(&isPlainKey);
}

QStringList QMeasurementChainElement::getAvailableActionKeys() const
{
    QStringList keys = keysWhere(&isActionKey);
    keys.sort();
    return keys;
}

QStringList QMeasurementChainElement::getAvailableIdKeys() const
{
    return keysWhere(&isIdKey);
}

} // namespace lum
