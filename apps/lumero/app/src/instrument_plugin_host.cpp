#include <lumero_app/instrument_plugin_host.h>

#include <instrument_interface/if_instrument_plugin.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QSet>

namespace lum {

QString InstrumentPluginHost::defaultPluginFolder()
{
#ifdef LUMERO_PLUGIN_DIR
    if (QFileInfo(QStringLiteral(LUMERO_PLUGIN_DIR)).isDir())
        return QStringLiteral(LUMERO_PLUGIN_DIR);
#endif
    // An installed host: plugins/instruments beside the executable's folder.
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral("../plugins/instruments"));
}

bool InstrumentPluginHost::load(const QString& folder, const std::string& type_identifier)
{
    m_error.clear();
    const QDir dir(folder);
    if (!dir.exists()) {
        m_error = QStringLiteral("No plug-in folder %1").arg(folder);
        return false;
    }
    // registerTypes once per plug-in object: a second load finds the same instance.
    static QSet<QObject*> registered;
    QStringList passed_over;
    for (const QFileInfo& file : dir.entryInfoList(QDir::Files, QDir::Name)) {
        const QString path = file.absoluteFilePath();
        if (!QLibrary::isLibrary(path))
            continue;
        QPluginLoader loader(path);
        const QString iid = loader.metaData().value(QStringLiteral("IID")).toString();
        if (iid != QStringLiteral(IM_INSTRUMENT_PLUGIN_IID)) {
            passed_over << QStringLiteral("%1 (%2)").arg(file.fileName(),
                                                         iid.isEmpty() ? QStringLiteral("not a plug-in")
                                                                       : QStringLiteral("interface ") + iid);
            continue;
        }
        // errorString() is no guide: it says "Unknown error" on success too.
        QObject* instance = loader.instance();
        auto* plugin = qobject_cast<IfInstrumentPlugin*>(instance);
        if (plugin == nullptr) {
            passed_over << QStringLiteral("%1 (%2)").arg(file.fileName(), loader.errorString());
            continue;
        }
        for (const InstrumentDescriptor& descriptor : plugin->getInstrumentDescriptors()) {
            if (descriptor.type_identifier != type_identifier || !descriptor.createInstrument)
                continue;
            if (!registered.contains(instance)) {
                plugin->registerTypes();
                registered.insert(instance);
            }
            m_descriptor = descriptor;
            m_plugin_file = path;
            return true;
        }
        passed_over << QStringLiteral("%1 (no instrument %2)")
                           .arg(file.fileName(), QString::fromStdString(type_identifier));
    }
    m_error = QStringLiteral("No instrument plug-in for %1 in %2")
                  .arg(QString::fromStdString(type_identifier), QDir::toNativeSeparators(folder));
    if (!passed_over.isEmpty())
        m_error += QStringLiteral(": ") + passed_over.join(QStringLiteral(", "));
    return false;
}

} // namespace lum
