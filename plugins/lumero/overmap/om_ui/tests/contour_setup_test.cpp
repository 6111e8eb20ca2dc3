#include "om_ui_test_support.h"

#include <om_ui/contour_setup.h>

#include <uni_testing/log_capture.h>
#include <uni_testing/model_tester.h>

#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace {

using overmap_ui::ContourSetup;

class ContourSetupTest : public ::testing::Test
{
protected:
    ContourSetupTest() { uni_testing::attachModelTester(setup.poiList()); }

    QUrl file(const char* name, const std::string& text)
    {
        const QString path = dir.filePath(name);
        std::ofstream(path.toStdString()) << text;
        return QUrl::fromLocalFile(path);
    }

    QTemporaryDir dir;
    ContourSetup setup;
};

TEST_F(ContourSetupTest, ScalesComeFromTheAxes)
{
    EXPECT_DOUBLE_EQ(setup.physicalXScale(), 3.0 / 300.0);
    EXPECT_DOUBLE_EQ(setup.physicalYScale(), 1.5 / 120.0);
    QSignalSpy scale(&setup, &ContourSetup::physicalScaleChanged);
    ASSERT_TRUE(scale.isValid());
    setup.setMainAxisPt2(setup.mainAxisPt1());
    EXPECT_DOUBLE_EQ(setup.physicalXScale(), 3.0 / 0.001) << "a zero-length axis does not divide by zero";
    const int count = scale.count();
    EXPECT_GE(count, 1);
    setup.setCarWidth(1.5);
    EXPECT_EQ(scale.count(), count);
}

TEST_F(ContourSetupTest, TheMinorAxisStaysAtRightAnglesThroughTheMiddle)
{
    setup.setMainAxisPt1(QPointF(100.0, 320.0 - 600.0));
    EXPECT_NEAR(setup.minorAxisPt1().x(), 40.0, 1e-9);
    EXPECT_NEAR(setup.minorAxisPt1().y(), 20.0, 1e-9);
    EXPECT_NEAR(setup.minorAxisPt2().x(), 160.0, 1e-9) << "the minor axis keeps its 120 px";
    setup.setMainAxisPt1(QPointF(400.0, 320.0));
    // Main axis now horizontal, from (100, 320) to (400, 320): the minor axis is vertical.
    EXPECT_NEAR(setup.minorAxisPt1().x(), 250.0, 1e-9);
    EXPECT_NEAR(std::fabs(setup.minorAxisPt1().y() - setup.minorAxisPt2().y()), 120.0, 1e-9);
    setup.setMinorAxisPt1(QPointF(300.0, 420.0));
    EXPECT_NEAR(std::fabs(setup.minorAxisPt1().y() - setup.minorAxisPt2().y()), 200.0, 1e-9)
        << "the dragged distance from the main axis is half the width";
    EXPECT_NEAR(setup.minorAxisPt1().x(), 250.0, 1e-9);
}

TEST_F(ContourSetupTest, MirrorEditsKeepTheContourSymmetric)
{
    ASSERT_EQ(setup.contourPointCount(), 8);
    EXPECT_EQ(setup.mirrorPartner(1), 7);
    EXPECT_EQ(setup.mirrorPartner(0), -1);
    om_ui_test::SignalRecorder recorder(&setup);
    setup.setMirrorContourPoints(2, QPointF(0.2, 0.8));
    EXPECT_EQ(setup.getContourPoint(6), QPointF(0.2, -0.8));
    EXPECT_EQ(recorder.names(),
              (QStringList{"contourPointChanged", "contourLengthChanged", "contourWidthChanged",
                           "contourPointChanged", "contourLengthChanged", "contourWidthChanged"}));
    EXPECT_DOUBLE_EQ(setup.contourWidth(), 1.6);
    EXPECT_DOUBLE_EQ(setup.contourLength(), 3.0);
    EXPECT_EQ(setup.getContourPoint(8), QPointF(0.0, 0.0));

    setup.insertMirrorContourPoints(7, QPointF(1.3, -0.4));
    ASSERT_EQ(setup.contourPointCount(), 10);
    EXPECT_EQ(setup.getContourPoint(2), QPointF(1.3, 0.4)) << "positive y goes to the front half";
    EXPECT_EQ(setup.getContourPoint(8), QPointF(1.3, -0.4)) << "inserted at 7, then moved on by one";
    EXPECT_EQ(setup.mirrorPartner(2), 8);
    setup.deleteContourMirrorPoints(8);
    EXPECT_EQ(setup.contourPointCount(), 8);
    setup.insertMirrorContourPoints(0, QPointF(1.0, 1.0));
    setup.insertMirrorContourPoints(8, QPointF(1.0, 1.0));
    EXPECT_EQ(setup.contourPointCount(), 8);

    EXPECT_EQ(setup.insertMirrorContourPoints(QPointF(1.4, 0.3)), 1) << "nearest to the segment 0-1";
    EXPECT_EQ(setup.getContourPoint(1), QPointF(1.4, 0.3));
    EXPECT_EQ(setup.getContourPoint(9), QPointF(1.4, -0.3));
    setup.appendMirrorContourPoints();
    EXPECT_EQ(setup.contourPointCount(), 12);
}

TEST_F(ContourSetupTest, EditsAtTheEndsOfTheContour)
{
    setup.setContourPoint(0, QPointF(1.5, 0.3));
    EXPECT_EQ(setup.getContourPoint(0), QPointF(1.5, 0.3));
    setup.setContourPoint(4, QPointF(1.5, -0.3));
    ASSERT_EQ(setup.mirrorPartner(4), 0);
    setup.setMirrorContourPoints(4, QPointF(1.4, -0.2));
    EXPECT_EQ(setup.getContourPoint(0), QPointF(1.4, 0.2)) << "a partner at index 0 moves too";
    setup.setMirrorContourPoints(8, QPointF(9.0, 9.0));
    setup.setContourPoint(-1, QPointF(9.0, 9.0));
    setup.setContourPoint(8, QPointF(9.0, 9.0));
    setup.deleteContourMirrorPoints(8);
    setup.deleteContourMirrorPoints(-1);
    EXPECT_EQ(setup.contourPointCount(), 8);
    EXPECT_NEAR(setup.contourLength(), 1.4 + 0.75, 1e-12) << "from the back points at -0.75 to the nose";
}

TEST_F(ContourSetupTest, AClickOnTheBackHalfInsertsAtTheMirroredFrontIndex)
{
    // Nearest to the segment 6-7 of the negative half: its mirror is the segment 1-2.
    EXPECT_EQ(setup.insertMirrorContourPoints(QPointF(0.6, -0.75)), 2);
    ASSERT_EQ(setup.contourPointCount(), 10);
    EXPECT_EQ(setup.getContourPoint(2), QPointF(0.6, 0.75));
    EXPECT_EQ(setup.getContourPoint(8), QPointF(0.6, -0.75));
}

TEST_F(ContourSetupTest, AnObliqueMinorAxisTakesItsWidthFromTheDistanceToTheMainAxis)
{
    setup.setMainAxisPt2(QPointF(0.0, 0.0));
    setup.setMainAxisPt1(QPointF(300.0, 300.0));
    setup.setMinorAxisPt1(QPointF(300.0, 0.0));
    const QPointF minor = setup.minorAxisPt1() - setup.minorAxisPt2();
    EXPECT_NEAR(std::hypot(minor.x(), minor.y()), 300.0 * std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(setup.minorAxisPt1().x() + setup.minorAxisPt2().x(), 300.0, 1e-9) << "through the middle";
}

TEST_F(ContourSetupTest, ClearingKeepsNoseAndTail)
{
    om_ui_test::SignalRecorder recorder(&setup);
    setup.clearContourPoints();
    ASSERT_EQ(setup.contourPointCount(), 2);
    EXPECT_EQ(setup.getContourPoint(0), QPointF(1.5, 0.0));
    EXPECT_EQ(setup.getContourPoint(1), QPointF(-1.5, 0.0));
    EXPECT_EQ(recorder.names(),
              (QStringList{"contourPointCountChanged", "contourLengthChanged", "contourWidthChanged"}));
    setup.clearContourPoints();
    EXPECT_EQ(recorder.names().size(), 3) << "two points: nothing at all";
}

TEST_F(ContourSetupTest, FrontalGridPoisSitOnTheNose)
{
    setup.createNCAPPois();
    ASSERT_EQ(setup.poiList()->size(), 7);
    const auto* center = setup.poiList()->at(3);
    EXPECT_EQ(center->name(), "POI_FC");
    EXPECT_DOUBLE_EQ(center->position().x(), 1.5);
    EXPECT_DOUBLE_EQ(center->position().y(), 0.0);
    EXPECT_EQ(setup.poiList()->at(0)->name(), "POI_FL3");
    EXPECT_NEAR(setup.poiList()->at(0)->position().y(), 0.7, 1e-12);
    EXPECT_LT(setup.poiList()->at(0)->position().x(), 1.5);
    setup.createNCAPPois();
    EXPECT_EQ(setup.poiList()->size(), 14) << "appends without checking";
}

TEST_F(ContourSetupTest, VehicleFilesRoundTripWithAxesAndPicture)
{
    lum_utils::ImageStore store;
    store.setImageData("car.png", "image/png", QByteArray("\x89PNG picture", 12));
    setup.setImageStore(&store);
    setup.setImageFile(QUrl::fromLocalFile("car.png"));
    setup.setCarLength(4.0);
    setup.setMainAxisPt1(QPointF(90.0, 10.0));
    setup.setDescription("Test car");
    setup.poiList()->addPoi()->setPosition(QPointF(1.0, 0.5));
    const QUrl url = QUrl::fromLocalFile(dir.filePath("vehicle.xml"));
    ASSERT_TRUE(setup.saveVehicle(url));

    lum_utils::ImageStore other_store;
    ContourSetup other;
    other.setImageStore(&other_store);
    QSignalSpy vehicle(&other, &ContourSetup::vehicleFileChanged);
    ASSERT_TRUE(vehicle.isValid());
    ASSERT_TRUE(other.loadVehicle(url));
    EXPECT_EQ(vehicle.count(), 1);
    EXPECT_EQ(other.vehicleFile(), dir.filePath("vehicle.xml"));
    EXPECT_DOUBLE_EQ(other.carLength(), 4.0);
    EXPECT_EQ(other.mainAxisPt1(), QPointF(90.0, 10.0));
    EXPECT_EQ(other.minorAxisPt1(), setup.minorAxisPt1());
    EXPECT_EQ(other.description(), "Test car");
    EXPECT_EQ(other.contourPointCount(), 8);
    EXPECT_EQ(other.imageFile(), QUrl::fromLocalFile("car.png"));
    EXPECT_EQ(other_store.imageData("car.png"), QByteArray("\x89PNG picture", 12));
    EXPECT_EQ(other_store.mimeType("car.png"), "image/png");
    // The vehicle document's reader keeps a centre POI of its own in front.
    ASSERT_GE(other.poiList()->size(), 1);
    const auto* last = other.poiList()->at(other.poiList()->size() - 1);
    EXPECT_EQ(last->position(), QPointF(1.0, 0.5));
    EXPECT_EQ(last->name(), "Poi 0");
}

TEST_F(ContourSetupTest, BadVehicleFilesAreLoggedAndChangeNothing)
{
    setup.setDescription("kept");
    uni_testing::LogCapture log;
    EXPECT_FALSE(setup.loadVehicle(file("broken.xml", "<Car><Contour>")));
    EXPECT_TRUE(log.contains("overmap", 1, "Unable to read file "));
    EXPECT_FALSE(setup.loadVehicle(file("empty.xml", "<Car><MetaData description='x'/></Car>")));
    EXPECT_TRUE(log.contains("overmap", 1, "Unable to load file"));
    EXPECT_FALSE(setup.loadVehicle(QUrl::fromLocalFile(dir.filePath("missing.xml"))));
    EXPECT_EQ(setup.description(), "kept");
    EXPECT_EQ(setup.vehicleFile(), QString());
    EXPECT_FALSE(setup.saveVehicle(QUrl::fromLocalFile(dir.filePath("no/such/vehicle.xml"))));
}

TEST_F(ContourSetupTest, ResetBringsTheDefaultsBack)
{
    setup.setCarLength(5.0);
    setup.setMainAxisPt2(QPointF(0.0, 0.0));
    const QPointer<overmap_ui::QPOI> poi = setup.poiList()->addPoi();
    setup.clearContourPoints();
    setup.reset();
    EXPECT_TRUE(poi.isNull()) << "the POIs are deleted";
    EXPECT_DOUBLE_EQ(setup.carLength(), 3.0);
    EXPECT_EQ(setup.mainAxisPt2(), QPointF(100.0, 320.0));
    EXPECT_NEAR(setup.minorAxisPt1().x(), 40.0, 1e-9);
    EXPECT_NEAR(setup.minorAxisPt2().x(), 160.0, 1e-9);
    EXPECT_NEAR(setup.minorAxisPt2().y(), 170.0, 1e-9);
    EXPECT_EQ(setup.poiList()->size(), 0);
    EXPECT_EQ(setup.contourPointCount(), 8);
    EXPECT_EQ(setup.getContourPoint(0), QPointF(2.5, 0.0)) << "the contour is reset before the length";
}

} // namespace
