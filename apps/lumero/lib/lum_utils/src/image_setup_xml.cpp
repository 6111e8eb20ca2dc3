#include <lum_utils/image_setup_xml.h>
#include <lum_utils/image_store.h>

#include <uni_base/uni_log.h>

#include <QDomDocument>
#include <QDomElement>

namespace lum_utils {

namespace {

constexpr const char* LOG_CHANNEL = "lum_utils";
constexpr int SEV_SETUP_FORMAT = 6;

bool parse(const QString& setup_xml, QDomDocument& document)
{
    QString error;
    int line = 0;
    int column = 0;
    if (document.setContent(setup_xml, &error, &line, &column))
        return true;
    UNI_LOG(LOG_CHANNEL, SEV_SETUP_FORMAT) << "image store: setup text is not XML: " << error.toStdString()
                                           << " at line " << line << ", column " << column;
    return false;
}

} // namespace

QString addImageToSetupXml(const QString& setup_xml, const ImageStore& store, const QString& id)
{
    if (!store.hasImageData(id))
        return setup_xml;
    QDomDocument document;
    if (!parse(setup_xml, document))
        return setup_xml;
    QDomElement root = document.documentElement();
    if (root.tagName() != QLatin1String("Overmap")) {
        UNI_LOG(LOG_CHANNEL, SEV_SETUP_FORMAT)
            << "image store: setup root is \"" << root.tagName().toStdString() << "\", not \"Overmap\"";
        return setup_xml;
    }
    QDomElement images = root.firstChildElement(QStringLiteral("Images"));
    if (images.isNull())
        images = root.appendChild(document.createElement(QStringLiteral("Images"))).toElement();
    // One image per file name: a second save must not pile up copies.
    for (QDomElement old = images.firstChildElement(QStringLiteral("Image")); !old.isNull();) {
        const QDomElement next = old.nextSiblingElement(QStringLiteral("Image"));
        if (old.attribute(QStringLiteral("fileName")) == id)
            images.removeChild(old);
        old = next;
    }
    QDomElement image = document.createElement(QStringLiteral("Image"));
    image.setAttribute(QStringLiteral("fileName"), id);
    image.setAttribute(QStringLiteral("mimeType"), store.mimeType(id));
    image.appendChild(document.createTextNode(QString::fromLatin1(store.imageData(id).toBase64())));
    images.appendChild(image);
    return document.toString(-1);
}

int readImagesFromSetupXml(const QString& setup_xml, ImageStore& store)
{
    QDomDocument document;
    if (!parse(setup_xml, document))
        return 0;
    int stored = 0;
    const QDomElement root = document.documentElement();
    for (QDomElement images = root.firstChildElement(QStringLiteral("Images")); !images.isNull();
         images = images.nextSiblingElement(QStringLiteral("Images"))) {
        for (QDomElement image = images.firstChildElement(QStringLiteral("Image")); !image.isNull();
             image = image.nextSiblingElement(QStringLiteral("Image"))) {
            const QString file_name = image.attribute(QStringLiteral("fileName"));
            if (file_name.isEmpty()) {
                UNI_LOG(LOG_CHANNEL, SEV_SETUP_FORMAT)
                    << "image store: \"Image\" without \"fileName\" skipped";
                continue;
            }
            const auto decoded = QByteArray::fromBase64Encoding(image.text().trimmed().toLatin1(),
                                                                QByteArray::AbortOnBase64DecodingErrors);
            if (!decoded) {
                UNI_LOG(LOG_CHANNEL, SEV_SETUP_FORMAT)
                    << "image store: \"Image\" \"" << file_name.toStdString()
                    << "\" has broken Base64 data, skipped";
                continue;
            }
            store.setImageData(file_name, image.attribute(QStringLiteral("mimeType")), decoded.decoded);
            ++stored;
        }
    }
    return stored;
}

} // namespace lum_utils
