#pragma once

#include <QString>

namespace lum_utils {

class ImageStore;

/// Images travel inside the setup text as
/// <Overmap>...<Images><Image fileName="..." mimeType="...">Base64</Image></Images></Overmap>.

/// Returns @p setup_xml with the image of @p id from @p store added under the root
/// "Overmap" (replacing an image of the same file name). The text is returned
/// unchanged when the store lacks @p id or the text is no "Overmap" document; the
/// latter is logged on "lum_utils" at severity 6.
QString addImageToSetupXml(const QString& setup_xml, const ImageStore& store, const QString& id);

/// Stores every image found under the root's "Images" children of @p setup_xml into
/// @p store and returns how many were stored. Text that is no XML and images
/// without a file name or with broken Base64 are skipped and logged on "lum_utils"
/// at severity 6.
int readImagesFromSetupXml(const QString& setup_xml, ImageStore& store);

} // namespace lum_utils
