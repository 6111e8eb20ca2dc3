#include <om_instrument/overmap_instrument_plugin.h>

#include <om_instrument/overmap_instrument.h>

#include <uni_base/uni_assert.h>

#include <QQmlEngine>

// Outside any namespace, as resource initialisers must be called.
static void registerResources()
{
    // The resource tree is also registered by its own static initialiser when the file is
    // loaded, so that a view URL resolves before the plug-in object exists; twice is harmless.
    Q_INIT_RESOURCE(overmap_instrument);
}

namespace {

/// The one plug-in object of the process. The destructor leaves it set on purpose: a
/// second plug-in object is not expected, and would fail the check.
im::OvermapInstrumentPlugin* s_instance = nullptr;

} // namespace

namespace im {

OvermapInstrumentPlugin::OvermapInstrumentPlugin(QObject* parent) : QObject(parent)
{
    if (UNI_ASSERT(s_instance == nullptr))
        s_instance = this;
    registerResources();
    InstrumentDescriptor descriptor;
    descriptor.type_identifier = OVERMAP_TYPE_ID;
    descriptor.group = OVERMAP_GROUP;
    descriptor.display_name = QStringLiteral("Overmap");
    descriptor.icon_url = QStringLiteral("qrc:///overmap/instrument/icon_overmap.svg");
    descriptor.instrument_view_url = QStringLiteral("qrc:///overmap/instrument/OvermapInstrument.qml");
    descriptor.properties_page_url =
        QStringLiteral("qrc:///overmap/instrument/OvermapInstrumentProperties.qml");
    descriptor.createInstrument = [](QObject* parent) -> InstrumentModel* {
        return new OvermapInstrument(parent);
    };
    m_descriptors.push_back(std::move(descriptor));
}

OvermapInstrumentPlugin::~OvermapInstrumentPlugin() = default;

std::string OvermapInstrumentPlugin::getPluginName()
{
    return "Overmap";
}

void OvermapInstrumentPlugin::registerTypes()
{
    qmlRegisterUncreatableType<OvermapInstrument>("Ferrin", 1, 0, "IMOvermapInstrument", QString());
}

} // namespace im
