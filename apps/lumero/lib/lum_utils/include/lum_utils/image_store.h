#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <map>
#include <set>

namespace lum_utils {

/// In-memory archive of image files for one setup, keyed by a text identifier
/// (usually the file name the setup refers to). It lets a setup carry its vehicle
/// and map pictures inside its own XML, so that the setup still shows them on
/// another machine. Belongs to the GUI thread; no lock.
class ImageStore : public QObject
{
    Q_OBJECT

public:
    explicit ImageStore(QObject* parent = nullptr);

    bool hasImageData(const QString& id) const;
    /// The bytes stored under @p id; empty when unknown.
    QByteArray imageData(const QString& id) const;
    /// The mime type stored under @p id; empty when unknown.
    QString mimeType(const QString& id) const;
    /// Every identifier held, in identifier order.
    QStringList imageIds() const;

    /// Stores (or replaces) the entry of @p id. If a display waits for @p id, it is
    /// told once through refreshImageData.
    void setImageData(const QString& id, const QString& mime_type, const QByteArray& data);

    /// Marks @p id as awaited by a display: the next setImageData of it emits
    /// refreshImageData.
    Q_INVOKABLE void awaitImageData(const QString& id);
    /// Removes the entry of @p id; an unknown id is ignored.
    Q_INVOKABLE void removeImageData(const QString& id);

Q_SIGNALS:
    void refreshImageData(QString id);

private:
    struct Entry
    {
        QString mime_type;
        QByteArray data;
    };

    std::map<QString, Entry> m_images;
    std::set<QString> m_awaited;
};

} // namespace lum_utils
