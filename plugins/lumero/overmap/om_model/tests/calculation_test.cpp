#include "test_support.h"

#include <om_model/calculation.h>
#include <om_model/car.h>
#include <om_model/cone.h>
#include <om_model/locator.h>
#include <om_model/track_line.h>
#include <om_model/track_path.h>

#include <gtest/gtest.h>

using overmap::Calculation;
using overmap::DistanceType;

namespace {

class CalculationTest : public ::testing::Test
{
protected:
    math_geo::ProjectionPlane m_plane = om_test::sitePlane();
    std::shared_ptr<overmap::Car> m_car = std::make_shared<overmap::Car>(&m_plane);
    std::shared_ptr<overmap::Cone> m_cone = std::make_shared<overmap::Cone>(&m_plane);
};

TEST_F(CalculationTest, DefaultsDescribeAPlainDistance)
{
    Calculation calculation;
    EXPECT_EQ(calculation.getDistanceType(), DistanceType::EUCLIDEAN);
    EXPECT_EQ(calculation.getTrackTarget(), overmap::TrackTarget::CENTER);
    EXPECT_EQ(calculation.getResultTransformation(), overmap::ResultTransformation::AS_IS);
    EXPECT_EQ(calculation.getFromPoiIdx(), 0u);
    EXPECT_TRUE(calculation.getName().empty());
}

TEST_F(CalculationTest, WithoutObjectsThePoisAreAlwaysUsed)
{
    Calculation calculation;
    calculation.setUseFromPoi(false);
    calculation.setUseToPoi(false);
    EXPECT_TRUE(calculation.useFromPoi());
    EXPECT_TRUE(calculation.useToPoi());
    EXPECT_FALSE(calculation.getStoredUseFromPoi());
}

TEST_F(CalculationTest, TracksHaveNoPoi)
{
    Calculation calculation;
    calculation.setFrom(std::make_shared<overmap::TrackLine>(&m_plane));
    calculation.setTo(std::make_shared<overmap::TrackPath>(&m_plane));
    EXPECT_FALSE(calculation.useFromPoi());
    EXPECT_FALSE(calculation.useToPoi());
    EXPECT_TRUE(calculation.getStoredUseFromPoi());
    calculation.setDistanceType(DistanceType::X);
    EXPECT_EQ(calculation.getDistanceType(), DistanceType::X) << "only cars restrict the component";
}

TEST_F(CalculationTest, ConesAndLocatorsAreAlwaysMeasuredAtTheirPoi)
{
    Calculation calculation;
    calculation.setFrom(m_cone);
    calculation.setTo(std::make_shared<overmap::Locator>(&m_plane));
    calculation.setUseFromPoi(false);
    calculation.setUseToPoi(false);
    EXPECT_TRUE(calculation.useFromPoi());
    EXPECT_TRUE(calculation.useToPoi());
}

TEST_F(CalculationTest, CarWithoutPoiFallsBackToEuclidean)
{
    Calculation calculation;
    calculation.setFrom(m_cone);
    calculation.setTo(m_car);
    calculation.setDistanceType(DistanceType::X);
    ASSERT_EQ(calculation.getDistanceType(), DistanceType::X);
    calculation.setUseToPoi(false);
    EXPECT_FALSE(calculation.useToPoi());
    EXPECT_EQ(calculation.getDistanceType(), DistanceType::EUCLIDEAN);
    calculation.setDistanceType(DistanceType::Y);
    EXPECT_EQ(calculation.getDistanceType(), DistanceType::EUCLIDEAN) << "a disallowed type is ignored";
    EXPECT_FALSE(calculation.isDistanceTypeAllowed(DistanceType::X));
    EXPECT_TRUE(calculation.isDistanceTypeAllowed(DistanceType::EUCLIDEAN));
}

TEST_F(CalculationTest, ChangingTheObjectsRechecksTheDistanceType)
{
    Calculation calculation;
    calculation.setUseFromPoi(false); // no effect without an object
    calculation.setDistanceType(DistanceType::Y);
    ASSERT_EQ(calculation.getDistanceType(), DistanceType::Y);
    calculation.setFrom(m_car); // the stored flag now switches the car's POI off
    EXPECT_EQ(calculation.getDistanceType(), DistanceType::EUCLIDEAN);
    calculation.setFrom(m_cone);
    calculation.setDistanceType(DistanceType::Y);
    calculation.setTo(m_car);
    EXPECT_EQ(calculation.getDistanceType(), DistanceType::Y) << "the car to-object uses its POI";
}

} // namespace
