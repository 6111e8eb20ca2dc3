#include "om_ui_test_support.h"

#include <om_ui/qcar.h>
#include <om_ui/qlocator.h>

#include <om_model/car.h>
#include <om_model/locator.h>

#include <uni_testing/log_capture.h>

#include <QQmlEngine>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace {

using overmap_ui::QCar;
using overmap_ui::QLocator;
using overmap_ui::QPositionQuality;

class QCarTest : public ::testing::Test
{
protected:
    QCarTest() : plane(om_ui_test::sitePlane())
    {
        model = std::make_shared<overmap::Car>(&plane);
        model->setGeoPosition(om_ui_test::SITE);
        car = std::make_unique<QCar>(model, nullptr);
    }

    QUrl file(const char* name, const std::string& text)
    {
        const QString path = dir.filePath(name);
        std::ofstream(path.toStdString()) << text;
        return QUrl::fromLocalFile(path);
    }

    QTemporaryDir dir;
    math_geo::ProjectionPlane plane;
    std::shared_ptr<overmap::Car> model;
    std::unique_ptr<QCar> car;
};

TEST_F(QCarTest, ContourPointsAreScaledAndBadIndicesGiveZero)
{
    EXPECT_EQ(car->getContourPointCount(), 4);
    EXPECT_EQ(car->getContourPoint(0, 2.0), QPointF(5.0, 2.0));
    EXPECT_EQ(car->getContourPoint(3), QPointF(2.5, -1.0));
    EXPECT_EQ(car->getContourPoint(4), QPointF(0.0, 0.0));
    EXPECT_EQ(car->getContourPoint(-1), QPointF(0.0, 0.0));
}

TEST_F(QCarTest, SetSizeStretchesOnlyTheDefaultRectangle)
{
    QSignalSpy contour(car.get(), &QCar::contourChanged);
    QSignalSpy size(car.get(), &QCar::sizeChanged);
    QSignalSpy data(car.get(), &QCar::dataChanged);
    ASSERT_TRUE(contour.isValid() && size.isValid() && data.isValid());
    EXPECT_TRUE(car->setSize(QSizeF(3.0, 6.0)));
    EXPECT_EQ(car->getContourPoint(0), QPointF(3.0, 1.5));
    EXPECT_EQ(car->size(), QSizeF(3.0, 6.0));
    EXPECT_EQ(contour.count(), 1);
    EXPECT_EQ(size.count(), 1);
    EXPECT_EQ(data.count(), 1);

    ASSERT_TRUE(car->loadContour(file("five.txt", "0,0\n4,0\n5,1\n4,2\n0,2\n")));
    EXPECT_EQ(contour.count(), 2);
    EXPECT_FALSE(car->setSize(QSizeF(1.0, 1.0)));
    EXPECT_EQ(car->getContourPointCount(), 5);
    EXPECT_EQ(contour.count(), 2);
    car->resetContour();
    EXPECT_EQ(car->getContourPointCount(), 4);
    EXPECT_EQ(car->getContourPoint(0), QPointF(2.5, 1.0));
    EXPECT_EQ(contour.count(), 3);
}

TEST_F(QCarTest, ABadContourFileChangesNothing)
{
    QSignalSpy contour(car.get(), &QCar::contourChanged);
    ASSERT_TRUE(contour.isValid());
    uni_testing::LogCapture log;
    EXPECT_FALSE(car->loadContour(file("three.txt", "0,0\n1,2,3\n4,2\n")));
    EXPECT_FALSE(car->loadContour(QUrl::fromLocalFile(dir.filePath("missing.txt"))));
    EXPECT_EQ(contour.count(), 0);
    EXPECT_EQ(car->getContourPointCount(), 4);
    EXPECT_TRUE(log.contains("overmap", 1, "Contour input file fas too many cordinates"));
}

TEST_F(QCarTest, VehicleFilesRoundTripAndBadXmlIsLogged)
{
    ASSERT_TRUE(car->loadContour(file("five.txt", "0,0\n4,0\n5,1\n4,2\n0,2\n")));
    const QUrl saved = QUrl::fromLocalFile(dir.filePath("car.xml"));
    ASSERT_TRUE(car->saveToXML(saved));
    QCar other(std::make_shared<overmap::Car>(&plane), nullptr);
    QSignalSpy contour(&other, &QCar::contourChanged);
    ASSERT_TRUE(contour.isValid());
    ASSERT_TRUE(other.loadFromXML(saved));
    EXPECT_EQ(other.getContourPointCount(), 5);
    EXPECT_EQ(contour.count(), 1);

    uni_testing::LogCapture log;
    EXPECT_FALSE(other.loadFromXML(file("broken.xml", "<Car><Contour>")));
    EXPECT_TRUE(log.contains("overmap", 1, "Unable to read file "));
    EXPECT_FALSE(other.saveToXML(QUrl::fromLocalFile(dir.filePath("no/such/dir.xml"))));
    EXPECT_EQ(contour.count(), 1);
}

TEST_F(QCarTest, GpsOffsetMovesTheCentreAndIsTold)
{
    QSignalSpy offset(car.get(), &QCar::gpsOffsetChanged);
    QSignalSpy data(car.get(), &QCar::dataChanged);
    ASSERT_TRUE(offset.isValid() && data.isValid());
    car->setGpsOffset(QPointF(10.0, 0.0));
    car->setGpsOffset(QPointF(10.0, 0.0));
    ASSERT_EQ(offset.count(), 1);
    EXPECT_EQ(offset.at(0).at(0).toPointF(), QPointF(10.0, 0.0));
    EXPECT_EQ(data.count(), 1);
    EXPECT_NEAR(car->centerPosition().distanceTo(car->position()), 10.0, 0.05);
}

class QLocatorTest : public ::testing::Test
{
protected:
    QLocatorTest() : plane(om_ui_test::sitePlane())
    {
        fetcher.setChannelList(&channels.model());
        manager.fetcher = &fetcher;
        model = std::make_shared<overmap::Locator>(&plane);
        locator = new QLocator(model, &manager);
        quality = locator->getPositionQuality(0);
    }

    math_geo::ProjectionPlane plane;
    om_ui_test::ChannelList channels;
    overmap_ui::QChannelFetcher fetcher;
    om_ui_test::FakeManager manager;
    std::shared_ptr<overmap::Locator> model;
    QLocator* locator = nullptr;
    QPositionQuality* quality = nullptr;
};

struct ThresholdRow
{
    const char* name;
    double before;
    double after;
    bool changes;
};

void PrintTo(const ThresholdRow& row, std::ostream* out)
{
    *out << row.name;
}

class Thresholds : public QLocatorTest, public ::testing::WithParamInterface<ThresholdRow>
{};

TEST_P(Thresholds, ChangeOnlyBeyondTheRelativeStep)
{
    const ThresholdRow& row = GetParam();
    quality->setLowerThreshold(row.before);
    quality->setUpperThreshold(row.before);
    om_ui_test::SignalRecorder recorder(quality);
    QSignalSpy locator_data(locator, &QLocator::dataChanged);
    ASSERT_TRUE(locator_data.isValid());
    quality->setLowerThreshold(row.after);
    quality->setUpperThreshold(row.after);
    const QStringList expected = row.changes ? QStringList{"lowerThresholdChanged", "dataChanged",
                                                           "upperThresholdChanged", "dataChanged"}
                                             : QStringList{};
    EXPECT_EQ(recorder.names().join(' ').toStdString(), expected.join(' ').toStdString());
    EXPECT_EQ(locator_data.count(), row.changes ? 2 : 0);
    EXPECT_EQ(model->getQualityPositions().at(0).upperLimit, row.changes ? row.after : row.before);
}

INSTANTIATE_TEST_SUITE_P(QPositionQuality, Thresholds,
                         ::testing::Values(ThresholdRow{"own_value", 2.5, 2.5, false},
                                           ThresholdRow{"below_the_relative_step", 1e6, 1e6 + 1e-7, false},
                                           ThresholdRow{"just_beyond_the_relative_step", 1e6, 1e6 + 1e-5,
                                                        true},
                                           ThresholdRow{"zero_over_zero", 0.0, 0.0, false},
                                           ThresholdRow{"zero_over_a_tiny_value", 1e-300, 0.0, true},
                                           ThresholdRow{"a_tiny_value_over_zero", 0.0, 1e-300, true}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(QLocatorTest, QualityChannelsAreScalarChannelsOfTheList)
{
    auto* scalar = channels.add(om_ui_test::makeScalar(1.0, {3.0}));
    auto* vector = channels.add(om_ui_test::makeNonScalar());
    om_ui_test::SignalRecorder recorder(quality);
    quality->setQualityChannel(scalar);
    quality->setQualityChannel(scalar);
    EXPECT_EQ(quality->qualityChannel(), scalar);
    EXPECT_EQ(model->getQualityPositions().at(0).channel, scalar->ferrinScalarChannel());
    quality->setQualityChannel(vector);
    EXPECT_EQ(quality->qualityChannel(), nullptr);
    EXPECT_FALSE(model->getQualityPositions().at(0).channel);
    EXPECT_EQ(recorder.names(),
              (QStringList{"qualityChannelChanged", "dataChanged", "qualityChannelChanged", "dataChanged"}));
    quality->setQualityChannel(nullptr);
    EXPECT_EQ(recorder.names().size(), 4) << "null over an empty entry is no change";
}

TEST_F(QLocatorTest, WrappersAreMadeOnceAndKeptByNativeCode)
{
    EXPECT_EQ(locator->getType(), overmap_ui::QGeoObject::LOCATOR);
    ASSERT_EQ(locator->getPositionQualitiesCount(), 3);
    EXPECT_EQ(QQmlEngine::objectOwnership(locator->getPositionQuality(2)), QQmlEngine::CppOwnership);
    EXPECT_EQ(locator->getPositionQuality(2)->parent(), locator);
    model->addQualityPosition(overmap::QualityPosition{1.0, 2.0, nullptr});
    EXPECT_EQ(locator->getPositionQualitiesCount(), 4);
    EXPECT_THROW(locator->getPositionQuality(3), std::out_of_range);
    EXPECT_THROW(locator->getPositionQuality(-1), std::out_of_range);
}

} // namespace
