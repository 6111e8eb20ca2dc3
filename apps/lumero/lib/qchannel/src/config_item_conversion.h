#pragma once

#include <config_items/config_item_variant.h>

#include <QVariant>

#include <optional>

namespace lum::qchannel::detail {

/// An item as a QVariant that views can use: numbers as numbers, lists as lists, and
/// the kinds without a plain Qt counterpart (ranges, enumerations, ids) as their text.
/// An invalid item gives an invalid QVariant.
QVariant configItemToVariant(const channel_config::ConfigItemVariant& item);

/// The plain conversion of a QVariant by its meta type: bool, the integer types,
/// double, QString, QStringList. Anything else is asserted ("Unknown object type in
/// QVariant.") and gives nothing.
std::optional<channel_config::ConfigItemVariant> variantToConfigItem(const QVariant& value);

} // namespace lum::qchannel::detail
