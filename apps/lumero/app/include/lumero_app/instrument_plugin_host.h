#pragma once

#include <instrument_interface/instrument_descriptor.h>

#include <QObject>
#include <QString>

class IfInstrumentPlugin;

namespace lum {

/// Finds an instrument plug-in as a file in a folder and hands out its descriptor: the
/// host links nothing of any instrument. Plug-ins stay loaded for the life of the process.
class InstrumentPluginHost
{
public:
    /// The folder the build puts the plug-ins in, or the one beside the executable.
    static QString defaultPluginFolder();

    /// Loads the first file of @p folder, in name order, that is a plug-in with the
    /// instrument interface and offers @p type_identifier; calls its registerTypes once.
    /// False, with error() saying why, when there is none; files that are no such
    /// plug-in are passed over and named in the error.
    bool load(const QString& folder, const std::string& type_identifier);

    /// Valid after a successful load.
    const InstrumentDescriptor& descriptor() const { return m_descriptor; }
    QString pluginFile() const { return m_plugin_file; }
    QString error() const { return m_error; }

private:
    InstrumentDescriptor m_descriptor;
    QString m_plugin_file;
    QString m_error;
};

} // namespace lum
