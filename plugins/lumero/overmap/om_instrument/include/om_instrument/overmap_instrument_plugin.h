#pragma once

#include <instrument_interface/if_instrument_plugin.h>

#include <QObject>

#include <vector>

namespace im {

/// The plug-in's face to the host: the one instrument type it offers, and the
/// registration of that instrument's QML type. Made once per process.
class OvermapInstrumentPlugin : public QObject, public IfInstrumentPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID IM_INSTRUMENT_PLUGIN_IID FILE "overmap_instrument_plugin.json")
    Q_INTERFACES(IfInstrumentPlugin)

public:
    explicit OvermapInstrumentPlugin(QObject* parent = nullptr);
    ~OvermapInstrumentPlugin() override;

    std::string getPluginName() override;
    std::vector<InstrumentDescriptor>& getInstrumentDescriptors() override { return m_descriptors; }
    void registerTypes() override;

private:
    std::vector<InstrumentDescriptor> m_descriptors;
};

} // namespace im
