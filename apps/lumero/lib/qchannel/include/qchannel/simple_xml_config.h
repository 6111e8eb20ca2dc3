#pragma once

#include <ferrin_core/config_item_store.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace lum::qchannel {

/// One item of a channel in its simple XML form.
struct SimpleXmlEntry
{
    std::string key;
    /// The item's text form.
    std::string text;
    /// A derived value: shown only as a comment, never read back into the channel.
    bool derived = false;

    bool operator==(const SimpleXmlEntry& other) const
    {
        return key == other.key && text == other.text && derived == other.derived;
    }
};

/// Keys the simple XML form leaves out: actions, hardware ids and the user's tags.
bool isSimpleXmlSkippedKey(const std::string& key);

/// The element name of @p key: every "/" becomes "-".
std::string simpleXmlElementName(const std::string& key);

/// The entries of every key of @p store the form shows, in the store's order.
std::vector<SimpleXmlEntry> simpleXmlEntries(const ferrin::ConfigItemStore& store);

/// The document: root "Channel"; for each entry a comment with the key, then the
/// element named after it with the text, or, for a derived value, that element
/// written into a second comment.
std::string writeSimpleXmlConfig(const std::vector<SimpleXmlEntry>& entries);

/// What reading a simple XML form found.
struct SimpleXmlReadResult
{
    /// The entries that could be read, in document order.
    std::vector<SimpleXmlEntry> entries;
    /// Nodes passed over: an element without its key comment or with other elements
    /// inside, a comment that is neither key nor derived value.
    std::size_t passed_over = 0;
};

/// Reads a text written by writeSimpleXmlConfig. Nothing for text that is no XML or
/// whose root is not "Channel".
std::optional<SimpleXmlReadResult> readSimpleXmlConfig(const std::string& text);

/// What applying a simple XML form to items found.
struct SimpleXmlApplyResult
{
    /// The new items, key and value, in document order.
    std::vector<std::pair<std::string, ferrin::ConfigItem>> items;
    /// Entries whose key the store lacks or leaves out, or whose text its item's parser refuses.
    std::size_t refused = 0;
};

/// Reads every non-derived entry of @p entries into a copy of the item @p store holds
/// under its key, by that item's parser. The store itself is not changed.
SimpleXmlApplyResult parseSimpleXmlEntries(const std::vector<SimpleXmlEntry>& entries,
                                           const ferrin::ConfigItemStore& store);

} // namespace lum::qchannel
