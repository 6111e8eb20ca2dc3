#include "example_scene.h"

#include <om_qml/register_qml_module.h>

#include <om_ui/qobject_manager.h>

#include <lum_host/qextension_module.h>
#include <qchannel/qchannel.h>

#include <QSettings>
#include <QTemporaryDir>

namespace om_qml_test {

void prepareProcess()
{
    static QTemporaryDir settings_dir;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_dir.path());
    QSettings().setValue(overmap_ui::OvermapModel::PROBE_URL_KEY, "http://127.0.0.1:9/");
    overmap_qml::registerQmlModule();
}

bool ExampleScene::load(QString& error)
{
    const std::string folder = LUMERO_EXAMPLES_DIR "/recordings/";
    recordings =
        overmap_replay::loadRecordings({folder + "car1_drive_100hz.csv", folder + "car2_drive_100hz.csv"});
    if (!recordings) {
        error = QString::fromStdString(recordings.error);
        return false;
    }
    for (const auto& channel : recordings.manager->channels())
        host.getChannels()->appendChannel(new lum::qchannel::QChannel(channel));
    auto* extension = new QExtensionModule(im::OvermapInstrument::EXTENSION_ID, 0x7f);
    if (!extension->loadFromFile(QStringLiteral(LUMERO_EXAMPLES_DIR "/setups/proving_ground.xml")) ||
        !host.addExtensionModule(extension)) {
        error = QStringLiteral("the example setup does not load");
        return false;
    }
    instrument.setApplication(&host);
    instrument.connectToApplication();
    return true;
}

overmap_ui::QCar* ExampleScene::car(int id) const
{
    return qobject_cast<overmap_ui::QCar*>(instrument.geoModel()->objectsManager()->getObjectById(id));
}

} // namespace om_qml_test
