#include <lum_utils/image_store.h>

#include <QStringList>

namespace lum_utils {

ImageStore::ImageStore(QObject* parent) : QObject(parent) {}

bool ImageStore::hasImageData(const QString& id) const
{
    return m_images.count(id) != 0;
}

QByteArray ImageStore::imageData(const QString& id) const
{
    const auto it = m_images.find(id);
    return it == m_images.end() ? QByteArray() : it->second.data;
}

QString ImageStore::mimeType(const QString& id) const
{
    const auto it = m_images.find(id);
    return it == m_images.end() ? QString() : it->second.mime_type;
}

QStringList ImageStore::imageIds() const
{
    QStringList ids;
    for (const auto& entry : m_images)
        ids.append(entry.first);
    return ids;
}

void ImageStore::setImageData(const QString& id, const QString& mime_type, const QByteArray& data)
{
    m_images[id] = Entry{mime_type, data};
    // Only a display that asked is told; it asks again when it needs the next change.
    if (m_awaited.erase(id) != 0)
        Q_EMIT refreshImageData(id);
}

void ImageStore::awaitImageData(const QString& id)
{
    m_awaited.insert(id);
}

void ImageStore::removeImageData(const QString& id)
{
    m_images.erase(id);
}

} // namespace lum_utils
