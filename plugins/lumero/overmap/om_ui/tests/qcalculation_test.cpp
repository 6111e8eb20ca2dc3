#include "om_ui_test_support.h"

#include <om_ui/qcalculation.h>
#include <om_ui/qobject_manager.h>
#include <om_ui/qposition_object.h>

#include <om_model/calculation.h>
#include <om_model/geo_object.h>

#include <config_items/string_config_item.h>
#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>
#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>
#include <uni_testing/assert_capture.h>

#include <QMetaMethod>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

namespace {

using overmap_ui::QCalculation;
using overmap_ui::QGeoObject;
using overmap_ui::QObjectManager;
using overmap_ui::QPositionObject;

const QStringList NONE;

class QCalculationTest : public ::testing::Test
{
public:
    // Public: the table rows prepare their cases on the fixture.
    QCalculationTest() : plane(om_ui_test::sitePlane()), manager(&plane)
    {
        car = qobject_cast<QPositionObject*>(manager.addObject(QGeoObject::CAR));
        cone = qobject_cast<QPositionObject*>(manager.addObject(QGeoObject::CONE));
        line = manager.addObject(QGeoObject::TRACK_LINE);
        calculation = manager.addCalculation();
    }

    math_geo::ProjectionPlane plane;
    QObjectManager manager;
    QPositionObject* car = nullptr;
    QPositionObject* cone = nullptr;
    QGeoObject* line = nullptr;
    QCalculation* calculation = nullptr;
};

TEST_F(QCalculationTest, SignalsStandInTheOrderTheViewsKnow)
{
    const QMetaObject& meta = QCalculation::staticMetaObject;
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            names << QString::fromLatin1(meta.method(i).name());
    }
    EXPECT_EQ(names, (QStringList{"nameChanged", "fromObjectChanged", "toObjectChanged", "fromPoiIdxChanged",
                                  "toPoiIdxChanged", "dataChanged", "useFromPoiChanged", "useToPoiChanged",
                                  "distanceTypeChanged", "trackTargetChanged", "resultTransformationChanged",
                                  "euclideanOnlyChanged"}));
}

/// A property written through the meta-object, as a view writes it.
struct SetterRow
{
    const char* what;
    const char* property;
    QVariant before;
    QVariant value;
    QStringList signals_out;
    QVariant read_back;
};

void PrintTo(const SetterRow& row, std::ostream* os)
{
    *os << row.what;
}

class QCalculationSetter : public QCalculationTest, public ::testing::WithParamInterface<SetterRow>
{};

TEST_P(QCalculationSetter, EmitsItsNotifyThenDataChangedOnlyOnAChange)
{
    const SetterRow& row = GetParam();
    ASSERT_TRUE(calculation->setProperty(row.property, row.before));
    om_ui_test::SignalRecorder recorder(calculation);
    calculation->setProperty(row.property, row.value);
    EXPECT_EQ(recorder.names(), row.signals_out);
    EXPECT_EQ(calculation->property(row.property).toString(), row.read_back.toString());
}

const QStringList NAME{"nameChanged", "dataChanged"};
const QStringList FROM_POI{"fromPoiIdxChanged", "dataChanged"};
const QStringList DISTANCE{"distanceTypeChanged", "dataChanged"};
const QStringList TARGET{"trackTargetChanged", "dataChanged"};
const QStringList TRANSFORMATION{"resultTransformationChanged", "dataChanged"};

INSTANTIATE_TEST_SUITE_P(
    Values, QCalculationSetter,
    ::testing::Values(
        SetterRow{"name", "name", "", "Gap", NAME, "Gap"},
        SetterRow{"same_name", "name", "Gap", "Gap", NONE, "Gap"},
        SetterRow{"from_poi", "fromPoiIdx", 0, 3, FROM_POI, 3},
        SetterRow{"from_poi_back_to_0", "fromPoiIdx", 4, 0, FROM_POI, 0},
        SetterRow{"negative_from_poi", "fromPoiIdx", 0, -1, NONE, 0},
        SetterRow{"to_poi", "toPoiIdx", 0, 2, {"toPoiIdxChanged", "dataChanged"}, 2},
        SetterRow{"same_to_poi", "toPoiIdx", 2, 2, NONE, 2},
        SetterRow{"distance_type", "distanceType", 0, 1, DISTANCE, 1},
        SetterRow{"distance_type_back_to_euclidean", "distanceType", 2, 0, DISTANCE, 0},
        SetterRow{"distance_type_above_range", "distanceType", 1, 3, NONE, 1},
        SetterRow{"distance_type_below_range", "distanceType", 1, -1, NONE, 1},
        SetterRow{"track_target", "trackTarget", 0, 1, TARGET, 1},
        SetterRow{"track_target_back_to_center", "trackTarget", 1, 0, TARGET, 0},
        SetterRow{"track_target_above_range", "trackTarget", 0, 2, NONE, 0},
        SetterRow{"result_transformation", "resultTransformation", 0, 2, TRANSFORMATION, 2},
        SetterRow{"result_transformation_back", "resultTransformation", 2, 0, TRANSFORMATION, 0},
        SetterRow{"result_transformation_above_range", "resultTransformation", 0, 3, NONE, 0},
        // Without an object the POI is used whatever the stored flag says.
        SetterRow{"use_from_poi_off", "useFromPoi", true, false, {"useFromPoiChanged", "dataChanged"}, true},
        SetterRow{"same_use_to_poi", "useToPoi", true, true, NONE, true}),
    [](const ::testing::TestParamInfo<SetterRow>& info) { return std::string(info.param.what); });

struct ObjectRow
{
    const char* what;
    bool to_side;
    /// Brings the calculation and the object into the case; returns the object to set.
    std::function<QGeoObject*(QCalculationTest&)> prepare;
    QStringList signals_out;
    int poi_idx_after;
};

void PrintTo(const ObjectRow& row, std::ostream* os)
{
    *os << row.what;
}

class QCalculationObject : public QCalculationTest, public ::testing::WithParamInterface<ObjectRow>
{};

TEST_P(QCalculationObject, EmitsWhatTheRulesMayHaveChanged)
{
    const ObjectRow& row = GetParam();
    QGeoObject* object = row.prepare(*this);
    om_ui_test::SignalRecorder recorder(calculation);
    if (row.to_side)
        calculation->setToObject(object);
    else
        calculation->setFromObject(object);
    EXPECT_EQ(recorder.names(), row.signals_out);
    EXPECT_EQ(row.to_side ? calculation->toObject() : calculation->fromObject(), object);
    EXPECT_EQ(row.to_side ? calculation->toPoiIdx() : calculation->fromPoiIdx(), row.poi_idx_after);
}

const QStringList FROM{"fromObjectChanged", "useFromPoiChanged", "euclideanOnlyChanged",
                       "distanceTypeChanged", "dataChanged"};
const QStringList TO{"toObjectChanged", "useToPoiChanged", "euclideanOnlyChanged", "distanceTypeChanged",
                     "dataChanged"};

INSTANTIATE_TEST_SUITE_P(
    Objects, QCalculationObject,
    ::testing::Values(
        ObjectRow{"a_track", false, [](QCalculationTest& t) { return t.line; }, FROM, 0},
        ObjectRow{"the_same_object", false,
                  [](QCalculationTest& t) {
                      t.calculation->setFromObject(t.car);
                      return t.car;
                  },
                  NONE, 0},
        ObjectRow{"none_after_a_car", true,
                  [](QCalculationTest& t) -> QGeoObject* {
                      t.calculation->setToObject(t.car);
                      return nullptr;
                  },
                  TO, 0},
        ObjectRow{"a_poi_index_within_the_car", false,
                  [](QCalculationTest& t) {
                      t.calculation->setFromPoiIdx(6);
                      return t.car;
                  },
                  FROM, 6},
        ObjectRow{"a_poi_index_beyond_the_cone", true,
                  [](QCalculationTest& t) {
                      t.calculation->setToPoiIdx(1);
                      return t.cone;
                  },
                  QStringList{"toPoiIdxChanged", "dataChanged"} + TO, 0},
        ObjectRow{"an_object_without_pois", false,
                  [](QCalculationTest& t) {
                      t.cone->poiList()->clearList(true);
                      t.calculation->setFromPoiIdx(2);
                      return t.cone;
                  },
                  QStringList{"useFromPoiChanged", "dataChanged", "fromPoiIdxChanged", "dataChanged"} + FROM,
                  0}),
    [](const ::testing::TestParamInfo<ObjectRow>& info) { return std::string(info.param.what); });

TEST_F(QCalculationTest, TheRulesOfTheModelShowInTheProperties)
{
    cone->poiList()->clearList(true);
    calculation->setFromObject(cone);
    EXPECT_FALSE(calculation->calculationModel()->getStoredUseFromPoi()) << "switched off for want of POIs";
    calculation->setToObject(car);
    calculation->setDistanceType(QCalculation::X);
    ASSERT_FALSE(calculation->euclideanOnly());
    QSignalSpy type(calculation, &QCalculation::distanceTypeChanged);
    QSignalSpy only(calculation, &QCalculation::euclideanOnlyChanged);
    ASSERT_TRUE(type.isValid() && only.isValid());

    calculation->setUseToPoi(false);
    EXPECT_TRUE(calculation->euclideanOnly());
    EXPECT_EQ(calculation->distanceType(), QCalculation::EUCLIDEAN) << "X needs the car's POI";
    EXPECT_EQ(type.count(), 1);
    EXPECT_EQ(only.count(), 1);
    calculation->setDistanceType(QCalculation::Y);
    EXPECT_EQ(calculation->calculationModel()->getDistanceType(), overmap::DistanceType::EUCLIDEAN);

    calculation->setFromObject(line);
    EXPECT_FALSE(calculation->useFromPoi()) << "a track has no POI";
}

/// A scene object that claims to be a car without being a position object.
class FalseCar : public QGeoObject
{
public:
    using QGeoObject::QGeoObject;
    Type getType() const override { return CAR; }
    double width() const override { return 0.0; }
    double length() const override { return 0.0; }
    math_geo::GeoBounds enclosingRectangle() const override { return {om_ui_test::SITE, om_ui_test::SITE}; }
};

TEST_F(QCalculationTest, AnObjectOfTheWrongClassIsAnAssertion)
{
    FalseCar impostor(std::make_shared<overmap::GeoObject>(&plane), nullptr);
    uni_testing::AssertCapture asserts;
    calculation->setFromObject(&impostor);
    EXPECT_TRUE(asserts.fired("(position != nullptr) == position_type", "wrong class"));
    EXPECT_EQ(calculation->calculationModel()->getFrom(), impostor.geoModel()) << "and the code goes on";
    calculation->setToObject(line);
    calculation->setToObject(car);
    EXPECT_EQ(asserts.size(), 1u);
}

TEST_F(QCalculationTest, NamesAreUniqueAmongTheCalculationsOfTheManager)
{
    manager.addCalculation()->setName("Gap");
    EXPECT_FALSE(calculation->isNameUnique("Gap"));
    EXPECT_TRUE(manager.calculations()->at(1)->isNameUnique("Gap")) << "its own name";
    EXPECT_TRUE(calculation->isNameUnique("Car 1")) << "objects have names of their own";
    QCalculation loose(std::make_shared<overmap::Calculation>(), nullptr, nullptr);
    EXPECT_TRUE(loose.isNameUnique("Gap"));
}

TEST(QCalculationResultChannel, TakesTheCalculationsNameOnItsOwnNode)
{
    constexpr std::uint32_t NODE = 7;
    const auto regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager config;
    om_ui_test::ChannelList channels;
    // The result channel of calculation @p calc_id, as the host's extension makes it.
    const auto add_result = [&](std::uint32_t node, int calc_id) {
        ferrin::ChannelSetup setup;
        setup.id = channel_config::ChannelID(node, overmap::CALCULATION_RESULT_LOCAL_ID_BASE +
                                                       static_cast<std::uint32_t>(calc_id));
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem("result"));
        setup.config_manager = &config;
        const std::uint64_t stream = setup.id.toUInt64();
        auto channel = lum::data::SyncScalarChannel::create(std::move(setup), {1.5}, regions, stream);
        config.addChannel(channel);
        return channels.add(channel);
    };
    overmap_ui::QChannelFetcher fetcher;
    EXPECT_EQ(fetcher.resultChannelOf(1), nullptr) << "no list yet";
    fetcher.setChannelList(&channels.model());
    fetcher.setNodeId(NODE);
    math_geo::ProjectionPlane plane = om_ui_test::sitePlane();
    QObjectManager manager(&plane);
    manager.setChannelFetcher(&fetcher);

    const int id = overmap::Calculation::peekNextId();
    lum::qchannel::QChannel* result = add_result(NODE, id);
    lum::qchannel::QChannel* foreign = add_result(NODE + 1, id + 1);
    EXPECT_EQ(fetcher.resultChannelOf(-1), nullptr);
    QCalculation* calculation = manager.addCalculation();
    EXPECT_EQ(result->name(), QString("Calculation %1").arg(id));

    QSignalSpy renamed(result, &lum::qchannel::QChannel::nameChanged);
    ASSERT_TRUE(renamed.isValid());
    calculation->setName("Braking gap");
    EXPECT_EQ(result->name(), "Braking gap");
    EXPECT_EQ(renamed.count(), 1);
    manager.addCalculation()->setName("Its channel is on another node");
    EXPECT_EQ(foreign->name(), "result");
}

} // namespace
