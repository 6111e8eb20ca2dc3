#pragma once

#include <config_items/config_item_variant.h>
#include <ferrin_core/channel.h>

#include <QVariant>

#include <optional>
#include <string>

namespace lum::qchannel::detail {

/// An item as a QVariant that views can use: numbers as numbers, lists as lists, and
/// the kinds without a plain Qt counterpart (ranges, enumerations, ids) as their text.
/// An invalid item gives an invalid QVariant.
QVariant configItemToVariant(const channel_config::ConfigItemVariant& item);

/// The plain conversion of a QVariant by its meta type: bool, the integer types,
/// double, QString, lists and the value types of lum_config_items. Anything else is
/// asserted ("Unknown object type in QVariant.") and gives nothing.
std::optional<channel_config::ConfigItemVariant> variantToConfigItem(const QVariant& value);

/// The typed item for @p value under @p key of @p channel: first matched against the
/// item the channel holds (a text read by its parser, so that "12.5 mV" stays a scalar;
/// a bare number keeps the unit); what does not match takes the plain conversion.
std::optional<ferrin::ConfigItem> itemForValue(const ferrin::Channel& channel, const std::string& key,
                                               const QVariant& value);

} // namespace lum::qchannel::detail
