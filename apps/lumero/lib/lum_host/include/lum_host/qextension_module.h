#pragma once

#include <QObject>
#include <QString>

#include <cstdint>

/// An extension module of the host: it keeps one configuration text of a measurement
/// (for the scene view, its setup XML) that every instrument of the measurement shares.
/// Instruments write it whole and rebuild from it on its change signal.
class QExtensionModule : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString configuration READ getExtensionConfiguration WRITE setExtensionConfiguration NOTIFY
                   extensionConfigurationChanged)
    Q_PROPERTY(QString identifier READ identifier CONSTANT)
    Q_PROPERTY(quint32 nodeId READ nodeId CONSTANT)
    Q_PROPERTY(bool modified READ isModified NOTIFY modifiedChanged)
    Q_PROPERTY(QString fileName READ fileName NOTIFY fileNameChanged)

public:
    /// @p node_id is the node the extension belongs to: local channel ids of its
    /// configuration are made into channel ids with it.
    QExtensionModule(QString identifier, std::uint32_t node_id, QObject* parent = nullptr);

    QString identifier() const { return m_identifier; }
    std::uint32_t nodeId() const { return m_node_id; }

    Q_INVOKABLE QString getExtensionConfiguration() const { return m_configuration; }
    /// Emits extensionConfigurationChanged only when the text differs, so that a write of
    /// an unchanged setup does not make every instrument rebuild.
    Q_INVOKABLE void setExtensionConfiguration(QString xml_config);

    /// True after a change of the text that no load or save has caught up with.
    bool isModified() const { return m_modified; }
    /// The file last loaded or saved; empty before.
    QString fileName() const { return m_file_name; }

    /// Takes the file's text (UTF-8) as the configuration. On failure the text stays as it
    /// was and @p error, if given, says why.
    bool loadFromFile(const QString& path, QString* error = nullptr);
    /// Writes the configuration as UTF-8, atomically: a failed save leaves the old file.
    bool saveToFile(const QString& path, QString* error = nullptr);

Q_SIGNALS:
    void extensionConfigurationChanged();
    void modifiedChanged();
    void fileNameChanged();

private:
    void setModified(bool modified);
    void setFileName(const QString& path);

    QString m_identifier;
    std::uint32_t m_node_id;
    QString m_configuration;
    bool m_modified = false;
    QString m_file_name;
};
