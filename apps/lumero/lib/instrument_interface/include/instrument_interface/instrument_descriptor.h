#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <string>

namespace im {
class InstrumentModel;
}

/// What the host reads of one instrument type that a plug-in offers. Like
/// IfInstrumentPlugin, it stands outside any namespace, as the host names it.
struct InstrumentDescriptor
{
    std::string type_identifier;
    std::string group;
    QString display_name;
    QString icon_url;
    QString instrument_view_url;
    QString properties_page_url;
    /// Makes a new instrument model of this type with the given parent (may be null).
    std::function<im::InstrumentModel*(QObject*)> createInstrument;
};
