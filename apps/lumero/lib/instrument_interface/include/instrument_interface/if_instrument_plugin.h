#pragma once

#include <instrument_interface/instrument_descriptor.h>

#include <QtPlugin>

#include <string>
#include <vector>

/// The interface identifier under which the host loads instrument plug-ins.
#define IM_INSTRUMENT_PLUGIN_IID "com.trelvane.lumero.IfInstrumentPlugin.1"

/// The face of an instrument plug-in to the host. It stands outside any namespace, as the
/// host names it: a plug-in class with Q_INTERFACES(IfInstrumentPlugin) answers
/// qobject_cast and qt_metacast under both "IfInstrumentPlugin" and the interface identifier.
class IfInstrumentPlugin
{
public:
    virtual ~IfInstrumentPlugin() = default;
    virtual std::string getPluginName() = 0;
    /// The instrument types offered; the plug-in keeps them.
    virtual std::vector<InstrumentDescriptor>& getInstrumentDescriptors() = 0;
    /// Registers the plug-in's QML types.
    virtual void registerTypes() = 0;
};

Q_DECLARE_INTERFACE(IfInstrumentPlugin, IM_INSTRUMENT_PLUGIN_IID)
