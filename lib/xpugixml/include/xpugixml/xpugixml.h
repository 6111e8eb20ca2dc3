#pragma once

#include <pugixml.hpp>

#include <exception>
#include <string>

/// String-based helpers over pugixml, with the load/save rules of this system.
namespace xpugi {

/// Raised by readers that require a node and do not find it.
class xml_element_exception : public std::exception
{
public:
    explicit xml_element_exception(std::string message) : m_message(std::move(message)) {}
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};

bool hasAttribute(const pugi::xml_node& node, const std::string& name);
/// The attribute's value; empty when missing (only hasAttribute tells missing from empty).
std::string getAttribute(const pugi::xml_node& node, const std::string& name);
/// Appends a new attribute, even if one of that name exists.
void addAttribute(pugi::xml_node& node, const std::string& name, const std::string& value);
/// Sets the attribute of that name, appending it when missing.
void setAttribute(pugi::xml_node& node, const std::string& name, const std::string& value);

/// The node's text (of an element, its first PCDATA or CDATA child) without surrounding white space.
std::string getTrimmedText(const pugi::xml_node& node);
/// A CDATA child's value untrimmed, else the trimmed value of the first PCDATA child, else empty.
std::string getText(const pugi::xml_node& node);
/// Appends the PCDATA and CDATA text of the subtree, in document order.
void collectText(const pugi::xml_node& node, std::string& out);
/// Replaces an element's children by one PCDATA node, or sets a value-carrying node's
/// value. Empty text changes nothing.
void setText(pugi::xml_node& node, const std::string& text);
void removeChildren(pugi::xml_node& node);

/// The node or document as text: tab-indented with @p formatted, one raw line without.
std::string toString(const pugi::xml_node& node, bool formatted);
std::string toString(const pugi::xml_document& document, bool formatted);

/// Saves to @p path, given in the local 8-bit encoding. False when the file could not be
/// written completely.
bool saveFile(const pugi::xml_document& document, const std::string& path, bool formatted);

/// @p path from the local 8-bit encoding to UTF-8, as loading and saving use it.
std::string pathToUtf8(const std::string& path);

} // namespace xpugi
