#pragma once

#include <config_items/config_item_variant.h>

#include <QObject>
#include <QString>
#include <QVariant>

#include <optional>

namespace ferrin_config {

/// An item as a QVariant that views can hold: plain numbers, flags, texts and lists as
/// such, the other kinds as the value types of qconfig_value_types.h. An invalid item
/// gives an invalid QVariant.
QVariant configItemToVariant(const channel_config::ConfigItemVariant& item);

/// The item a QVariant stands for, by its meta type. A value that fits no kind is
/// asserted ("Unknown object type in QVariant.") and gives nothing.
std::optional<channel_config::ConfigItemVariant> variantToConfigItem(const QVariant& value);

/// The item for @p value when it is to replace @p current: a value that matches the
/// kind of @p current (a text read by its parser, a number or a value type of the
/// same kind) keeps that kind and its unit; nothing when it does not match.
std::optional<channel_config::ConfigItemVariant>
matchConfigItem(const QVariant& value, const channel_config::ConfigItemVariant& current);

/// The text of a value for display; "INVALID" for a value that fits no kind.
QString variantToString(const QVariant& value);

/// The conversions for views.
class QConfigItemUtils : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    Q_INVOKABLE QString toString(const QVariant& value) const;
    /// The fields of a CAN bit timing text such as
    /// "CANBitTimingParameters(SamplePoint=87.5, TSeg1=13, TSeg2=2)" as a map of
    /// "SamplePoint" (double), "TSeg1" and "TSeg2" (int); an empty map for text of
    /// another form.
    Q_INVOKABLE QVariantMap parseCANBitTimingParameters(const QVariant& value) const;
    /// @p value as a long text, its format guessed: XML when it starts with "<",
    /// multi-line when it has a line break, plain otherwise.
    Q_INVOKABLE QVariant makeMultilineString(const QString& value) const;
};

} // namespace ferrin_config
