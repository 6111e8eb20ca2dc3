#pragma once

// The example proving ground with its two recordings on a host, as the tests of the map
// item and of the view load it.

#include <om_instrument/overmap_instrument.h>
#include <om_ui/overmap_model.h>
#include <om_ui/qcar.h>

#include <lum_host/host_application.h>
#include <overmap_replay/replay_inputs.h>

#include <QString>

namespace om_qml_test {

/// Settings in a temporary folder, with the online probe on a local port that refuses at
/// once (never the internet), and the "Overmap" module registered.
void prepareProcess();

struct ExampleScene
{
    /// Loads recordings and setup and connects the instrument; false with a message.
    bool load(QString& error);
    overmap_ui::OvermapModel* geoModel() { return instrument.geoModel(); }
    overmap_ui::QCar* car(int id) const;

    overmap_replay::LoadedRecordings recordings;
    lum::HostApplication host;
    im::OvermapInstrument instrument;
};

} // namespace om_qml_test
