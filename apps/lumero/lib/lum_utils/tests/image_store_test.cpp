#include <lum_utils/image_setup_xml.h>
#include <lum_utils/image_store.h>

#include <uni_testing/log_capture.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

using lum_utils::addImageToSetupXml;
using lum_utils::ImageStore;
using lum_utils::readImagesFromSetupXml;

namespace {

// Bytes that break any text handling: zero bytes and high bytes.
const QByteArray PNG_BYTES = QByteArray::fromRawData("\x89PNG\r\n\x1a\n\0\xff", 10);

} // namespace

TEST(ImageStore, StoresReplacesAndRemovesEntries)
{
    ImageStore store;
    EXPECT_FALSE(store.hasImageData("car.png"));
    EXPECT_TRUE(store.imageData("car.png").isEmpty());

    store.setImageData("car.png", "image/png", PNG_BYTES);
    store.setImageData("map.jpg", "image/jpeg", "jpeg");
    store.setImageData("car.png", "image/x-png", "second");
    EXPECT_EQ(store.imageData("car.png"), QByteArray("second"));
    EXPECT_EQ(store.mimeType("car.png"), "image/x-png");
    EXPECT_EQ(store.imageIds(), QStringList({"car.png", "map.jpg"}));

    store.removeImageData("unknown.png");
    EXPECT_EQ(store.imageIds().size(), 2);
    store.removeImageData("car.png");
    EXPECT_FALSE(store.hasImageData("car.png"));
    EXPECT_TRUE(store.hasImageData("map.jpg"));
}

TEST(ImageStore, RefreshIsSignalledOnlyOnceForAnAwaitedId)
{
    ImageStore store;
    QSignalSpy refresh(&store, &ImageStore::refreshImageData);
    ASSERT_TRUE(refresh.isValid());

    store.setImageData("car.png", "image/png", PNG_BYTES);
    EXPECT_EQ(refresh.count(), 0);

    store.awaitImageData("car.png");
    store.removeImageData("unknown.png");
    store.setImageData("other.png", "image/png", PNG_BYTES);
    EXPECT_EQ(refresh.count(), 0);
    store.setImageData("car.png", "image/png", "new");
    ASSERT_EQ(refresh.count(), 1);
    EXPECT_EQ(refresh.at(0).at(0).toString(), "car.png");
    store.setImageData("car.png", "image/png", "newer");
    EXPECT_EQ(refresh.count(), 1);
}

TEST(ImageSetupXml, ImagesSurviveTheSetupTextAndReplaceEarlierCopies)
{
    ImageStore store;
    store.setImageData("car.png", "image/png", PNG_BYTES);
    store.setImageData("map.jpg", "image/jpeg", "jpeg bytes");

    QString xml = "<Overmap><Objects count=\"2\"/></Overmap>";
    xml = addImageToSetupXml(xml, store, "car.png");
    xml = addImageToSetupXml(xml, store, "map.jpg");
    store.setImageData("car.png", "image/png", "changed");
    xml = addImageToSetupXml(xml, store, "car.png");
    EXPECT_EQ(xml.count("<Images"), 1);
    EXPECT_EQ(xml.count("fileName=\"car.png\""), 1);
    EXPECT_TRUE(xml.contains("<Objects count=\"2\"/>"));
    EXPECT_FALSE(xml.contains('\n')) << "written without indentation";

    ImageStore loaded;
    EXPECT_EQ(readImagesFromSetupXml(xml, loaded), 2);
    EXPECT_EQ(loaded.imageData("car.png"), QByteArray("changed"));
    EXPECT_EQ(loaded.imageData("map.jpg"), QByteArray("jpeg bytes"));
    EXPECT_EQ(loaded.mimeType("map.jpg"), "image/jpeg");

    store.setImageData("car.png", "image/png", PNG_BYTES);
    ImageStore binary;
    readImagesFromSetupXml(addImageToSetupXml("<Overmap/>", store, "car.png"), binary);
    EXPECT_EQ(binary.imageData("car.png"), PNG_BYTES);
}

TEST(ImageSetupXml, TextIsLeftAloneWhenNothingCanBeAdded)
{
    ImageStore store;
    store.setImageData("car.png", "image/png", PNG_BYTES);
    uni_testing::LogCapture log;

    EXPECT_EQ(addImageToSetupXml("<Overmap/>", store, "unknown.png"), "<Overmap/>");
    EXPECT_TRUE(log.none("lum_utils"));

    EXPECT_EQ(addImageToSetupXml("<Setup/>", store, "car.png"), "<Setup/>");
    EXPECT_TRUE(log.contains("lum_utils", 6, "image store: setup root is \"Setup\", not \"Overmap\""));
    EXPECT_EQ(addImageToSetupXml("<Overmap>", store, "car.png"), "<Overmap>");
    EXPECT_TRUE(log.contains("lum_utils", 6, "image store: setup text is not XML: "));
}

TEST(ImageSetupXml, BrokenImagesAreSkippedAndTheRestIsRead)
{
    ImageStore store;
    uni_testing::LogCapture log;
    const QString xml = "<Overmap><Images>"
                        "<Image mimeType=\"image/png\">AAAA</Image>"
                        "<Image fileName=\"bad.png\" mimeType=\"image/png\">A*A=</Image>"
                        "<Image fileName=\"good.png\" mimeType=\"image/png\">\n  aGVsbG8=\n</Image>"
                        "</Images></Overmap>";
    EXPECT_EQ(readImagesFromSetupXml(xml, store), 1);
    EXPECT_EQ(store.imageIds(), QStringList({"good.png"}));
    EXPECT_EQ(store.imageData("good.png"), QByteArray("hello"));
    EXPECT_TRUE(log.contains("lum_utils", 6, "image store: \"Image\" without \"fileName\" skipped"));
    EXPECT_TRUE(
        log.contains("lum_utils", 6, "image store: \"Image\" \"bad.png\" has broken Base64 data, skipped"));

    EXPECT_EQ(readImagesFromSetupXml("not xml", store), 0);
    EXPECT_TRUE(log.contains("lum_utils", 6, "image store: setup text is not XML: "));
}
