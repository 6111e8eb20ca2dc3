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

TEST(ImageSetupXml, EachSaveAppendsImagesWithTheBytesAsTypeAndTheFirstIsRead)
{
    ImageStore store;
    store.setImageData("car.png", "image/png", "car bytes");
    uni_testing::LogCapture log;

    QString xml = addImageToSetupXml("<Overmap><Objects count=\"2\"/></Overmap>", store, "car.png");
    EXPECT_TRUE(xml.startsWith("<Overmap><Objects count=\"2\"/><Images><Image ")) << xml.toStdString();
    EXPECT_TRUE(xml.endsWith(">Y2FyIGJ5dGVz</Image></Images></Overmap>")) << xml.toStdString();
    EXPECT_TRUE(xml.contains(" fileName=\"car.png\""));
    EXPECT_TRUE(xml.contains(" mimeType=\"car bytes\""));
    EXPECT_FALSE(xml.contains('\n')) << "written without indentation";

    store.setImageData("car.png", "image/png", "changed");
    xml = addImageToSetupXml(xml, store, "car.png");
    EXPECT_EQ(xml.count("<Images>"), 2);
    ImageStore loaded;
    EXPECT_EQ(readImagesFromSetupXml(xml, loaded), 1);
    EXPECT_EQ(loaded.imageData("car.png"), QByteArray("car bytes"));
    EXPECT_EQ(loaded.mimeType("car.png"), "car bytes");

    store.setImageData("car.png", "image/png", PNG_BYTES);
    ImageStore binary;
    readImagesFromSetupXml(addImageToSetupXml("<Overmap/>", store, "car.png"), binary);
    EXPECT_EQ(binary.imageData("car.png"), PNG_BYTES);
    EXPECT_TRUE(log.none("lum_utils"));
}

TEST(ImageSetupXml, TextIsLeftAloneWhenNothingCanBeAdded)
{
    ImageStore store;
    store.setImageData("car.png", "image/png", PNG_BYTES);
    uni_testing::LogCapture log;

    EXPECT_EQ(addImageToSetupXml("<Overmap/>", store, "unknown.png"), "<Overmap/>");
    EXPECT_EQ(addImageToSetupXml("<Setup/>", store, "car.png"), "<Setup/>");
    EXPECT_EQ(addImageToSetupXml("<Overmap>", store, "car.png"), "<Overmap>");
    EXPECT_TRUE(log.none("lum_utils"));
}

TEST(ImageSetupXml, EveryImageOfTheFirstListIsReadAsItStands)
{
    ImageStore store;
    uni_testing::LogCapture log;
    const QString xml = "<Overmap><View/><Images>"
                        "<Image mimeType=\"image/png\">AAAA</Image>"
                        "<Image fileName=\"bad.png\" mimeType=\"x\">aG*Vs\nbG8=</Image>"
                        "<Other fileName=\"other.png\">AAAA</Other>"
                        "<Image fileName=\"wrapped.png\">\n  aGVs\n  bG8=\n</Image>"
                        "</Images><Images><Image fileName=\"second.png\">AAAA</Image></Images></Overmap>";
    EXPECT_EQ(readImagesFromSetupXml(xml, store), 3);
    EXPECT_EQ(store.imageIds(), QStringList({"", "bad.png", "wrapped.png"}));
    EXPECT_EQ(store.imageData(""), QByteArray(3, '\0'));
    EXPECT_EQ(store.mimeType(""), "image/png");
    EXPECT_EQ(store.imageData("bad.png"), QByteArray("hello"));
    EXPECT_EQ(store.imageData("wrapped.png"), QByteArray("hello"));
    EXPECT_EQ(store.mimeType("wrapped.png"), "");

    EXPECT_EQ(readImagesFromSetupXml("not xml", store), 0);
    EXPECT_EQ(readImagesFromSetupXml("<Setup><Images><Image fileName=\"a\"/></Images></Setup>", store), 0);
    EXPECT_EQ(store.imageIds().size(), 3);
    EXPECT_TRUE(log.none("lum_utils"));
}
