#include <lum_utils/image_setup_xml.h>
#include <lum_utils/image_store.h>

#include <QDomDocument>
#include <QDomElement>

namespace lum_utils {

namespace {

/// The root element of @p setup_xml when the text is a setup; a null element otherwise.
QDomElement setupRoot(const QString& setup_xml, QDomDocument& document)
{
    if (!document.setContent(setup_xml))
        return {};
    QDomElement root = document.documentElement();
    return root.tagName() == QLatin1String("Overmap") ? root : QDomElement();
}

} // namespace

QString addImageToSetupXml(const QString& setup_xml, const ImageStore& store, const QString& id)
{
    if (!store.hasImageData(id))
        return setup_xml;
    QDomDocument document(QStringLiteral("Overmap"));
    QDomElement root = setupRoot(setup_xml, document);
    // A text that is no setup is handed back as it came: writing the empty document
    // instead would lose it.
    if (root.isNull())
        return setup_xml;
    const QByteArray data = store.imageData(id);
    QDomElement images = document.createElement(QStringLiteral("Images"));
    QDomElement image = document.createElement(QStringLiteral("Image"));
    image.setAttribute(QStringLiteral("fileName"), id);
    // The files in use carry the image bytes here, not a type name, and the reader takes
    // the attribute as it is: written the same way so that old and new files agree.
    image.setAttribute(QStringLiteral("mimeType"), QString::fromUtf8(data));
    image.appendChild(document.createTextNode(QString::fromLatin1(data.toBase64())));
    images.appendChild(image);
    // An "Images" element already there stays; only the first one is ever read.
    root.appendChild(images);
    return document.toString(-1);
}

int readImagesFromSetupXml(const QString& setup_xml, ImageStore& store)
{
    QDomDocument document(QStringLiteral("Overmap"));
    const QDomElement images = setupRoot(setup_xml, document).firstChildElement(QStringLiteral("Images"));
    int stored = 0;
    for (QDomElement image = images.firstChildElement(QStringLiteral("Image")); !image.isNull();
         image = image.nextSiblingElement(QStringLiteral("Image"))) {
        store.setImageData(image.attribute(QStringLiteral("fileName")),
                           image.attribute(QStringLiteral("mimeType")),
                           QByteArray::fromBase64(image.text().toLatin1()));
        ++stored;
    }
    return stored;
}

} // namespace lum_utils
