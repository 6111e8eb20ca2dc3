#include <lum_host/qextension_module.h>

#include <QFile>
#include <QSaveFile>

#include <utility>

QExtensionModule::QExtensionModule(QString identifier, std::uint32_t node_id, QObject* parent)
    : QObject(parent), m_identifier(std::move(identifier)), m_node_id(node_id)
{}

void QExtensionModule::setExtensionConfiguration(QString xml_config)
{
    if (m_configuration == xml_config)
        return;
    m_configuration = std::move(xml_config);
    setModified(true);
    Q_EMIT extensionConfigurationChanged();
}

bool QExtensionModule::loadFromFile(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error != nullptr)
            *error = tr("Cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        if (error != nullptr)
            *error = tr("Cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    setExtensionConfiguration(QString::fromUtf8(bytes));
    setModified(false);
    setFileName(path);
    return true;
}

bool QExtensionModule::saveToFile(const QString& path, QString* error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(m_configuration.toUtf8()) < 0 || !file.commit()) {
        if (error != nullptr)
            *error = tr("Cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    setModified(false);
    setFileName(path);
    return true;
}

void QExtensionModule::setModified(bool modified)
{
    if (m_modified == modified)
        return;
    m_modified = modified;
    Q_EMIT modifiedChanged();
}

void QExtensionModule::setFileName(const QString& path)
{
    if (m_file_name == path)
        return;
    m_file_name = path;
    Q_EMIT fileNameChanged();
}
