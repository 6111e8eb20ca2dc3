// Any setup text: reading its images never crashes, and every image read is
// written back into a fresh setup and read again with the same bytes.
#include <lum_utils/image_setup_xml.h>
#include <lum_utils/image_store.h>

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    lum_utils::ImageStore store;
    const int read = lum_utils::readImagesFromSetupXml(text, store);
    if (read < store.imageIds().size())
        std::abort();

    for (const QString& id : store.imageIds()) {
        // Only the first "Images" element is read: each image goes into a setup of its own.
        lum_utils::ImageStore again;
        lum_utils::readImagesFromSetupXml(
            lum_utils::addImageToSetupXml(QStringLiteral("<Overmap/>"), store, id), again);
        // A name the XML writer cannot carry (a control character) may not come back;
        // what comes back must be the same image.
        if (again.hasImageData(id) && again.imageData(id) != store.imageData(id))
            std::abort();
    }
    return 0;
}
