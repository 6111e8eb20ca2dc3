#pragma once

#include <config_items/config_item_variant.h>

#include <string>

namespace channel_config {

/// Reads a value's text into an item. The parser never guesses the type: the
/// alternative that the target holds decides how the text is read.
class ParseStringVisitor
{
public:
    /// Parses @p text as the alternative held by @p item and, on success, replaces
    /// the item's content. On failure returns false and leaves @p item as it was.
    /// Never throws.
    ///
    /// Two alternatives have no reader yet and assert "Type not implemented yet!":
    /// SampleOccurrenceType and the channel id list. An InvalidConfigItem never parses.
    bool parse(const std::string& text, ConfigItemVariant& item) const;
};

} // namespace channel_config
