#include <xpugixml/xpugixml.h>

#include <uni_base/uni_assert.h>

#include <boost/locale/encoding.hpp>
#include <boost/locale/generator.hpp>
#include <boost/locale/info.hpp>
#include <boost/locale/util.hpp>

#include <cctype>
#include <fstream>
#include <sstream>
#include <vector>

namespace xpugi {
namespace {

std::string trimmed(const char* text)
{
    std::string s(text);
    std::size_t first = 0;
    while (first < s.size() && std::isspace(static_cast<unsigned char>(s[first])))
        ++first;
    std::size_t last = s.size();
    while (last > first && std::isspace(static_cast<unsigned char>(s[last - 1])))
        --last;
    return s.substr(first, last - first);
}

unsigned int outputFlags(bool formatted)
{
    return formatted ? pugi::format_indent : pugi::format_raw;
}

const char* indent(bool formatted)
{
    return formatted ? "\t" : "";
}

} // namespace

bool hasAttribute(const pugi::xml_node& node, const std::string& name)
{
    return static_cast<bool>(node.attribute(name.c_str()));
}

std::string getAttribute(const pugi::xml_node& node, const std::string& name)
{
    return node.attribute(name.c_str()).value();
}

void addAttribute(pugi::xml_node& node, const std::string& name, const std::string& value)
{
    pugi::xml_attribute attribute = node.append_attribute(name.c_str());
    if (!UNI_ASSERT(attribute))
        return;
    const bool success = attribute.set_value(value.c_str());
    UNI_ASSERT(success);
}

void setAttribute(pugi::xml_node& node, const std::string& name, const std::string& value)
{
    pugi::xml_attribute attribute = node.attribute(name.c_str());
    if (!attribute) {
        addAttribute(node, name, value);
        return;
    }
    attribute.set_value(value.c_str());
}

std::string getTrimmedText(const pugi::xml_node& node)
{
    // The text of an element is that of its first PCDATA or CDATA child; a text node is its own.
    return trimmed(node.text().get());
}

std::string getText(const pugi::xml_node& node)
{
    if (pugi::xml_node cdata = node.find_child([](pugi::xml_node n) { return n.type() == pugi::node_cdata; }))
        return cdata.value();
    if (pugi::xml_node pcdata =
            node.find_child([](pugi::xml_node n) { return n.type() == pugi::node_pcdata; }))
        return getTrimmedText(pcdata);
    return {};
}

void collectText(const pugi::xml_node& node, std::string& out)
{
    for (pugi::xml_node child : node.children()) {
        switch (child.type()) {
        case pugi::node_pcdata:
        case pugi::node_cdata:
            out += child.value();
            break;
        case pugi::node_element:
            collectText(child, out);
            break;
        default:
            break;
        }
    }
}

void setText(pugi::xml_node& node, const std::string& text)
{
    if (text.empty())
        return;
    switch (node.type()) {
    case pugi::node_element:
        removeChildren(node);
        node.append_child(pugi::node_pcdata).set_value(text.c_str());
        break;
    case pugi::node_pcdata:
    case pugi::node_cdata:
    case pugi::node_comment:
    case pugi::node_pi:
    case pugi::node_declaration:
        node.set_value(text.c_str());
        break;
    default:
        break;
    }
}

void removeChildren(pugi::xml_node& node)
{
    // Removing while walking the sibling chain would skip nodes: collect first.
    std::vector<pugi::xml_node> children(node.begin(), node.end());
    for (pugi::xml_node& child : children)
        node.remove_child(child);
}

std::string toString(const pugi::xml_node& node, bool formatted)
{
    std::ostringstream out;
    node.print(out, indent(formatted), outputFlags(formatted));
    return out.str();
}

std::string toString(const pugi::xml_document& document, bool formatted)
{
    std::ostringstream out;
    document.save(out, indent(formatted), outputFlags(formatted));
    return out.str();
}

std::string pathToUtf8(const std::string& path)
{
    static const std::string encoding = [] {
        boost::locale::generator generator;
        const std::locale locale = generator(boost::locale::util::get_system_locale());
        return std::use_facet<boost::locale::info>(locale).encoding();
    }();
    try {
        return boost::locale::conv::to_utf<char>(path, encoding);
    } catch (const std::exception&) {
        return path;
    }
}

bool saveFile(const pugi::xml_document& document, const std::string& path, bool formatted)
{
    std::ofstream out(pathToUtf8(path), std::ios::out | std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    document.save(out, indent(formatted), outputFlags(formatted));
    out.close();
    return !out.fail();
}

} // namespace xpugi
