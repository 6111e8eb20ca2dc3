#include <qchannel/simple_xml_config.h>

#include <channel_config/boolean_constraints.h>
#include <config_items/parse_string_visitor.h>
#include <xpugixml/xpugixml.h>

#include <pugixml.hpp>

#include <algorithm>
#include <cstring>

namespace lum::qchannel {

namespace {

constexpr const char* ROOT = "Channel";

// White space between the nodes is kept, so that a text of blanks reads back as written;
// line ends are kept as they are, so that a carriage return does too.
constexpr unsigned PARSE_OPTIONS = (pugi::parse_default | pugi::parse_ws_pcdata) & ~pugi::parse_eol;

bool isDerived(const ferrin::ConstraintList& constraints)
{
    return std::any_of(constraints.begin(), constraints.end(), [](const ferrin::ConstraintPtr& constraint) {
        const auto* derived = dynamic_cast<const channel_config::DerivedValueConstraint*>(constraint.get());
        return derived && derived->getValue();
    });
}

bool isBlank(const char* text)
{
    return std::all_of(text, text + std::strlen(text),
                       [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

/// The text of an element that holds only text; nothing for one with other children.
std::optional<std::string> elementText(const pugi::xml_node& element)
{
    std::string text;
    for (const pugi::xml_node& child : element.children()) {
        if (child.type() != pugi::node_pcdata && child.type() != pugi::node_cdata)
            return std::nullopt;
        text += child.value();
    }
    return text;
}

/// The element written into a derived value's comment, if it is the one of @p key.
std::optional<std::string> derivedText(const std::string& comment, const std::string& key)
{
    pugi::xml_document fragment;
    if (!fragment.load_buffer(comment.data(), comment.size(), PARSE_OPTIONS))
        return std::nullopt;
    const pugi::xml_node element = fragment.first_child();
    if (element.type() != pugi::node_element || element.next_sibling() ||
        element.name() != simpleXmlElementName(key))
        return std::nullopt;
    return elementText(element);
}

} // namespace

bool isSimpleXmlSkippedKey(const std::string& key)
{
    return key.rfind("ACTION:", 0) == 0 || key.rfind("ID:", 0) == 0 || key == "Ferrin/UserChannelTags";
}

std::string simpleXmlElementName(const std::string& key)
{
    std::string name = key;
    std::replace(name.begin(), name.end(), '/', '-');
    return name;
}

std::vector<SimpleXmlEntry> simpleXmlEntries(const ferrin::ConfigItemStore& store)
{
    std::vector<SimpleXmlEntry> entries;
    for (const std::string& key : store.keys()) {
        if (isSimpleXmlSkippedKey(key))
            continue;
        const std::optional<ferrin::ConfigItem> item = store.get(key);
        if (!item)
            continue; // removed since keys() was taken
        entries.push_back({key, channel_config::toString(*item), isDerived(store.getConstraints(key))});
    }
    return entries;
}

std::string writeSimpleXmlConfig(const std::vector<SimpleXmlEntry>& entries)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(ROOT);
    for (const SimpleXmlEntry& entry : entries) {
        root.append_child(pugi::node_comment).set_value(entry.key.c_str());
        pugi::xml_node element = root.append_child(simpleXmlElementName(entry.key).c_str());
        if (!entry.text.empty())
            element.append_child(pugi::node_pcdata).set_value(entry.text.c_str());
        if (entry.derived) {
            root.append_child(pugi::node_comment).set_value(xpugi::toString(element, false).c_str());
            root.remove_child(element);
        }
    }
    return xpugi::toString(document, true);
}

std::optional<SimpleXmlReadResult> readSimpleXmlConfig(const std::string& text)
{
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size(), PARSE_OPTIONS | pugi::parse_comments))
        return std::nullopt;
    const pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), ROOT) != 0)
        return std::nullopt;

    SimpleXmlReadResult result;
    std::optional<std::string> key; // of the last key comment not yet followed by its value
    for (const pugi::xml_node& node : root.children()) {
        switch (node.type()) {
        case pugi::node_comment:
            if (key) {
                if (auto value = derivedText(node.value(), *key)) {
                    result.entries.push_back({*key, std::move(*value), true});
                    key.reset();
                    continue;
                }
                ++result.passed_over; // a key comment without its value
            }
            key = node.value();
            break;
        case pugi::node_element:
            if (key && node.name() == simpleXmlElementName(*key)) {
                if (auto value = elementText(node)) {
                    result.entries.push_back({*key, std::move(*value), false});
                    key.reset();
                    continue;
                }
            }
            ++result.passed_over;
            key.reset();
            break;
        case pugi::node_pcdata:
        case pugi::node_cdata:
            if (!isBlank(node.value()))
                ++result.passed_over;
            break;
        default:
            break;
        }
    }
    if (key)
        ++result.passed_over;
    return result;
}

SimpleXmlApplyResult parseSimpleXmlEntries(const std::vector<SimpleXmlEntry>& entries,
                                           const ferrin::ConfigItemStore& store)
{
    SimpleXmlApplyResult result;
    for (const SimpleXmlEntry& entry : entries) {
        if (entry.derived)
            continue;
        std::optional<ferrin::ConfigItem> item =
            isSimpleXmlSkippedKey(entry.key) ? std::nullopt : store.get(entry.key);
        bool parsed = false;
        if (item) {
            try {
                parsed = channel_config::ParseStringVisitor().parse(entry.text, *item);
            } catch (const std::exception&) {
                parsed = false;
            }
        }
        if (parsed)
            result.items.emplace_back(entry.key, std::move(*item));
        else
            ++result.refused;
    }
    return result;
}

} // namespace lum::qchannel
