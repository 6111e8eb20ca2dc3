#pragma once

#include <string>

namespace overmap {

class IfChannelFetcher;
class ObjectManager;

/// Turns a whole scene (objects, tracks, calculations, view) into the setup text and
/// back. Reading replaces the manager's content and goes on past bad parts, so that as
/// much of a damaged setup as possible survives; the result tells whether all was read.
class XmlReadWriter
{
public:
    /// Neither pointer is owned. Writing needs only the manager; reading needs both.
    XmlReadWriter(ObjectManager* manager, IfChannelFetcher* fetcher);

    /// Replaces the manager's content by the setup in @p text. False when the text is no
    /// XML (the manager is then untouched) or when any part could not be read completely.
    bool read(const std::string& text);
    /// The manager's content as one raw line of XML with its declaration.
    void write(std::string& out) const;

private:
    ObjectManager* m_manager;
    IfChannelFetcher* m_channel_fetcher;
};

} // namespace overmap
