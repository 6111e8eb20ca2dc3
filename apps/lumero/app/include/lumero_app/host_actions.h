#pragma once

#include <QObject>
#include <QUrl>

namespace lum {

/// The host's actions that instrument views trigger, the views' "actions" object.
class HostActions : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool propertiesVisible READ propertiesVisible WRITE setPropertiesVisible NOTIFY
                   propertiesVisibleChanged)

public:
    using QObject::QObject;

    bool propertiesVisible() const { return m_properties_visible; }
    void setPropertiesVisible(bool visible);

    /// Shows or hides the instrument's properties page beside its view.
    Q_INVOKABLE void toggleInstrumentProperties() { setPropertiesVisible(!m_properties_visible); }

Q_SIGNALS:
    void propertiesVisibleChanged(bool visible);

private:
    bool m_properties_visible = true;
};

/// File look-ups for views, the views' "QmlFilesystem" object.
class QmlFilesystem : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether @p url names an existing file: "qrc:" resources, "file:" URLs and plain paths.
    Q_INVOKABLE bool fileExists(const QUrl& url) const;
};

} // namespace lum
