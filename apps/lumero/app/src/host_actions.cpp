#include <lumero_app/host_actions.h>

#include <QFileInfo>

namespace lum {

void HostActions::setPropertiesVisible(bool visible)
{
    if (visible == m_properties_visible)
        return;
    m_properties_visible = visible;
    Q_EMIT propertiesVisibleChanged(m_properties_visible);
}

bool QmlFilesystem::fileExists(const QUrl& url) const
{
    QString path;
    if (url.scheme() == QLatin1String("qrc"))
        path = QLatin1Char(':') + url.path();
    else if (url.isLocalFile())
        path = url.toLocalFile();
    else if (url.scheme().isEmpty())
        path = url.path();
    else
        return false; // a remote file is never known to exist
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    return info.exists() && info.isFile();
}

} // namespace lum
