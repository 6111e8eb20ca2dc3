#pragma once

#include <QString>

namespace lum_utils {

class ImageStore;

/// Images travel inside the setup text as
/// <Overmap>...<Images><Image fileName="..." mimeType="...">Base64</Image></Images></Overmap>.

/// Returns @p setup_xml, without indentation, with a new "Images" element appended to the
/// root "Overmap" that holds the image of @p id from @p store; an earlier "Images" element
/// stays. "mimeType" holds the image bytes read as UTF-8, as the files in use do. The text
/// is returned unchanged when the store lacks @p id or the text is no "Overmap" document.
QString addImageToSetupXml(const QString& setup_xml, const ImageStore& store, const QString& id);

/// Stores every "Image" of the root's first "Images" element of @p setup_xml into @p store,
/// under its "fileName" (empty when missing) with its "mimeType", the text decoded as
/// Base64 with anything that is not Base64 skipped, and returns how many were stored.
/// Nothing is reported: text that is no "Overmap" document stores nothing.
int readImagesFromSetupXml(const QString& setup_xml, ImageStore& store);

} // namespace lum_utils
