#include "test_support.h"

#include <om_model/cone.h>
#include <om_model/coordinate_defaults.h>
#include <om_model/locator.h>
#include <om_model/object_manager.h>
#include <om_model/track_path.h>

#include <gtest/gtest.h>

#include <stdexcept>

using math_geo::CoordinateSystem;
using math_geo::GeoPosition;
using overmap::ObjectManager;

namespace {

TEST(ObjectManagerTest, FindsObjectsByIdAndKind)
{
    ObjectManager manager;
    auto cone = std::make_shared<overmap::Cone>(manager.getReferencePlane());
    auto track = std::make_shared<overmap::TrackPath>(manager.getReferencePlane());
    manager.addObject(cone);
    manager.addObject(track);
    EXPECT_EQ(manager.objectCount(), 2u);
    EXPECT_EQ(manager.findObjectById(track->getId()), track);
    EXPECT_EQ(manager.findPositionObjectById(cone->getId()), cone);
    EXPECT_EQ(manager.findPositionObjectById(track->getId()), nullptr) << "a track is no position object";
    EXPECT_EQ(manager.findObjectById(-5), nullptr);
    EXPECT_THROW(manager.objectAt(2), std::out_of_range);
    EXPECT_THROW(manager.calculationAt(0), std::out_of_range);
}

TEST(ObjectManagerTest, ClearResetsTheSceneButKeepsPlaneSystemAndMapView)
{
    ObjectManager manager;
    ASSERT_EQ(manager.getReferencePlane()->getXYCoordinateSystem(), overmap::defaultPlaneCoordinateSystem());
    manager.getReferencePlane()->setXYCoordinateSystem(CoordinateSystem::X_RIGHT_Y_FRONT);
    manager.getReferencePlane()->setCenter(om_test::SITE);
    manager.getReferencePlane()->setRotation(12.0);
    auto locator = std::make_shared<overmap::Locator>(manager.getReferencePlane());
    manager.addObject(locator);
    manager.setLocator(locator);
    manager.addCalculation(std::make_shared<overmap::Calculation>());
    manager.setUsePlaneDefinitionPoints(true);
    overmap::AerialImage image;
    image.imagePath = "site.png";
    image.definition.primaryPosition = om_test::SITE;
    manager.setAerialImage(image);
    manager.setDescription("Handling loop");
    manager.setViewDescription("view");
    manager.setObjectsDescription("objects");
    manager.setMapSetupView(overmap::MapSetupView{om_test::SITE, 2.5, 30.0});

    manager.clear();
    EXPECT_EQ(manager.objectCount(), 0u);
    EXPECT_EQ(manager.calculationCount(), 0u);
    EXPECT_EQ(manager.getLocator(), nullptr);
    EXPECT_EQ(manager.getReferencePlane()->getCenter(), GeoPosition(0, 0));
    EXPECT_EQ(manager.getReferencePlane()->getRotation(), 0.0);
    EXPECT_EQ(manager.getReferencePlane()->getXYCoordinateSystem(), CoordinateSystem::X_RIGHT_Y_FRONT);
    EXPECT_FALSE(manager.getUsePlaneDefinitionPoints());
    EXPECT_TRUE(manager.getAerialImage().imagePath.empty());
    EXPECT_EQ(manager.getAerialImage().definition.primaryPosition, GeoPosition(0, 0));
    EXPECT_TRUE(manager.getDescription().empty());
    EXPECT_TRUE(manager.getViewDescription().empty());
    EXPECT_TRUE(manager.getObjectsDescription().empty());
    EXPECT_EQ(manager.getMapSetupView().center, om_test::SITE);
    EXPECT_EQ(manager.getMapSetupView().scale, 2.5);
    EXPECT_EQ(locator.use_count(), 1) << "the manager lets go of its objects";
}

} // namespace
