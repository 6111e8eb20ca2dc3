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
#include <QMetaProperty>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

namespace {

using overmap_ui::QCalculation;
using overmap_ui::QGeoObject;
using overmap_ui::QObjectManager;
using overmap_ui::QPositionObject;

/// The names of a class's own signals, or properties, in meta-object order.
QStringList ownSignals(const QMetaObject& meta)
{
    QStringList result;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            result << QString::fromLatin1(meta.method(i).name());
    }
    return result;
}

QStringList ownProperties(const QMetaObject& meta)
{
    QStringList result;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        result << QString::fromLatin1(meta.property(i).name());
    return result;
}

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

TEST_F(QCalculationTest, TheViewsSeeTheNamesTheyBindTo)
{
    const QMetaObject& meta = QCalculation::staticMetaObject;
    EXPECT_EQ(ownSignals(meta),
              (QStringList{"nameChanged", "fromObjectChanged", "toObjectChanged", "fromPoiIdxChanged",
                           "toPoiIdxChanged", "dataChanged", "useFromPoiChanged", "useToPoiChanged",
                           "distanceTypeChanged", "trackTargetChanged", "resultTransformationChanged",
                           "euclideanOnlyChanged"}));
    EXPECT_EQ(ownProperties(meta), (QStringList{"calcId", "name", "fromObject", "toObject", "fromPoiIdx",
                                                "toPoiIdx", "useFromPoi", "useToPoi", "distanceType",
                                                "trackTarget", "resultTransformation", "euclideanOnly"}));
    const QMetaEnum distance = meta.enumerator(meta.indexOfEnumerator("DistanceType"));
    EXPECT_EQ(distance.keyToValue("Y"), 2);
    const QMetaEnum transformation = meta.enumerator(meta.indexOfEnumerator("ResultTransformation"));
    EXPECT_EQ(transformation.keyToValue("INVERT"), 2);
    const QMetaEnum target = meta.enumerator(meta.indexOfEnumerator("TrackTarget"));
    EXPECT_EQ(target.keyToValue("EDGE"), 1);
    EXPECT_FALSE(meta.property(meta.indexOfProperty("euclideanOnly")).isWritable());
    EXPECT_TRUE(meta.property(meta.indexOfProperty("calcId")).isConstant());
}

struct SetterRow
{
    const char* what;
    std::function<void(QCalculation&)> set;
    QStringList signals_out;
    /// Brings the calculation into the case before the signals are recorded.
    std::function<void(QCalculation&)> prepare = [](QCalculation&) {};
};

void PrintTo(const SetterRow& row, std::ostream* os)
{
    *os << row.what;
}

class QCalculationSetter : public QCalculationTest, public ::testing::WithParamInterface<SetterRow>
{};

TEST_P(QCalculationSetter, EmitsItsNotifyThenDataChangedOnlyOnAChange)
{
    GetParam().prepare(*calculation);
    om_ui_test::SignalRecorder recorder(calculation);
    GetParam().set(*calculation);
    EXPECT_EQ(recorder.names(), GetParam().signals_out);
}

const QStringList NONE;

INSTANTIATE_TEST_SUITE_P(
    Values, QCalculationSetter,
    ::testing::Values(
        SetterRow{"name", [](QCalculation& c) { c.setName("Gap"); }, {"nameChanged", "dataChanged"}},
        SetterRow{"same_name", [](QCalculation& c) { c.setName(c.name()); }, NONE},
        SetterRow{
            "from_poi", [](QCalculation& c) { c.setFromPoiIdx(3); }, {"fromPoiIdxChanged", "dataChanged"}},
        SetterRow{"same_from_poi", [](QCalculation& c) { c.setFromPoiIdx(0); }, NONE},
        SetterRow{"from_poi_back_to_0",
                  [](QCalculation& c) { c.setFromPoiIdx(0); },
                  {"fromPoiIdxChanged", "dataChanged"},
                  [](QCalculation& c) { c.setFromPoiIdx(4); }},
        SetterRow{"negative_from_poi", [](QCalculation& c) { c.setFromPoiIdx(-1); }, NONE},
        SetterRow{"to_poi", [](QCalculation& c) { c.setToPoiIdx(2); }, {"toPoiIdxChanged", "dataChanged"}},
        SetterRow{"same_to_poi", [](QCalculation& c) { c.setToPoiIdx(0); }, NONE},
        SetterRow{"distance_type",
                  [](QCalculation& c) { c.setDistanceType(QCalculation::X); },
                  {"distanceTypeChanged", "dataChanged"}},
        SetterRow{"same_distance_type", [](QCalculation& c) { c.setDistanceType(QCalculation::EUCLIDEAN); },
                  NONE},
        SetterRow{"distance_type_back_to_euclidean",
                  [](QCalculation& c) { c.setDistanceType(QCalculation::EUCLIDEAN); },
                  {"distanceTypeChanged", "dataChanged"},
                  [](QCalculation& c) { c.setDistanceType(QCalculation::Y); }},
        SetterRow{"distance_type_below_range",
                  [](QCalculation& c) { c.setDistanceType(static_cast<QCalculation::DistanceType>(-1)); },
                  NONE, [](QCalculation& c) { c.setDistanceType(QCalculation::X); }},
        SetterRow{"distance_type_out_of_range",
                  [](QCalculation& c) { c.setDistanceType(static_cast<QCalculation::DistanceType>(7)); },
                  NONE},
        SetterRow{"track_target",
                  [](QCalculation& c) { c.setTrackTarget(QCalculation::EDGE); },
                  {"trackTargetChanged", "dataChanged"}},
        SetterRow{"same_track_target", [](QCalculation& c) { c.setTrackTarget(QCalculation::CENTER); }, NONE},
        SetterRow{"track_target_back_to_center",
                  [](QCalculation& c) { c.setTrackTarget(QCalculation::CENTER); },
                  {"trackTargetChanged", "dataChanged"},
                  [](QCalculation& c) { c.setTrackTarget(QCalculation::EDGE); }},
        SetterRow{"track_target_out_of_range",
                  [](QCalculation& c) { c.setTrackTarget(static_cast<QCalculation::TrackTarget>(2)); }, NONE},
        SetterRow{"result_transformation",
                  [](QCalculation& c) { c.setResultTransformation(QCalculation::ABSOLUTE); },
                  {"resultTransformationChanged", "dataChanged"}},
        SetterRow{"same_result_transformation",
                  [](QCalculation& c) { c.setResultTransformation(QCalculation::AS_IS); }, NONE},
        SetterRow{"result_transformation_back_to_as_is",
                  [](QCalculation& c) { c.setResultTransformation(QCalculation::AS_IS); },
                  {"resultTransformationChanged", "dataChanged"},
                  [](QCalculation& c) { c.setResultTransformation(QCalculation::INVERT); }},
        SetterRow{"result_transformation_out_of_range",
                  [](QCalculation& c) {
                      c.setResultTransformation(static_cast<QCalculation::ResultTransformation>(3));
                  },
                  NONE},
        SetterRow{"use_from_poi_off",
                  [](QCalculation& c) { c.setUseFromPoi(false); },
                  {"useFromPoiChanged", "dataChanged"}},
        SetterRow{"same_use_to_poi", [](QCalculation& c) { c.setUseToPoi(true); }, NONE}),
    [](const ::testing::TestParamInfo<SetterRow>& info) { return std::string(info.param.what); });

TEST_F(QCalculationTest, SettersReachTheModel)
{
    calculation->setFromPoiIdx(3);
    calculation->setToPoiIdx(2);
    calculation->setDistanceType(QCalculation::Y);
    calculation->setTrackTarget(QCalculation::EDGE);
    calculation->setResultTransformation(QCalculation::INVERT);
    const overmap::Calculation& model = *calculation->calculationModel();
    EXPECT_EQ(model.getFromPoiIdx(), 3u);
    EXPECT_EQ(model.getToPoiIdx(), 2u);
    EXPECT_EQ(model.getDistanceType(), overmap::DistanceType::Y);
    EXPECT_EQ(model.getTrackTarget(), overmap::TrackTarget::EDGE);
    EXPECT_EQ(model.getResultTransformation(), overmap::ResultTransformation::INVERT);
    EXPECT_EQ(calculation->property("distanceType").toInt(), 2);
    EXPECT_EQ(calculation->calcId(), model.getId());
}

struct ObjectRow
{
    const char* what;
    bool to_side;
    /// Brings the calculation and the object into the case; returns the object to set.
    std::function<QGeoObject*(QCalculationTest&)> prepare;
    QStringList signals_out;
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
}

const QStringList FROM_SIGNALS{"fromObjectChanged", "useFromPoiChanged", "euclideanOnlyChanged",
                               "distanceTypeChanged", "dataChanged"};
const QStringList TO_SIGNALS{"toObjectChanged", "useToPoiChanged", "euclideanOnlyChanged",
                             "distanceTypeChanged", "dataChanged"};

INSTANTIATE_TEST_SUITE_P(
    Objects, QCalculationObject,
    ::testing::Values(ObjectRow{"a_cone", false, [](QCalculationTest& t) { return t.cone; }, FROM_SIGNALS},
                      ObjectRow{"a_track", false, [](QCalculationTest& t) { return t.line; }, FROM_SIGNALS},
                      ObjectRow{"the_same_object", false,
                                [](QCalculationTest& t) {
                                    t.calculation->setFromObject(t.car);
                                    return t.car;
                                },
                                NONE},
                      ObjectRow{"none_after_a_car", true,
                                [](QCalculationTest& t) -> QGeoObject* {
                                    t.calculation->setToObject(t.car);
                                    return nullptr;
                                },
                                TO_SIGNALS},
                      ObjectRow{"a_poi_index_within_the_car", false,
                                [](QCalculationTest& t) {
                                    t.calculation->setFromPoiIdx(6);
                                    return t.car;
                                },
                                FROM_SIGNALS},
                      ObjectRow{"a_poi_index_beyond_the_cone", true,
                                [](QCalculationTest& t) {
                                    t.calculation->setToPoiIdx(1);
                                    return t.cone;
                                },
                                QStringList{"toPoiIdxChanged", "dataChanged"} + TO_SIGNALS},
                      ObjectRow{"an_object_without_pois", false,
                                [](QCalculationTest& t) {
                                    t.cone->poiList()->clearList(true);
                                    t.calculation->setFromPoiIdx(2);
                                    return t.cone;
                                },
                                QStringList{"useFromPoiChanged", "dataChanged", "fromPoiIdxChanged",
                                            "dataChanged"} +
                                    FROM_SIGNALS}),
    [](const ::testing::TestParamInfo<ObjectRow>& info) { return std::string(info.param.what); });

TEST_F(QCalculationTest, APoiSettingThatNoLongerFitsIsReset)
{
    calculation->setToPoiIdx(1);
    calculation->setToObject(cone);
    EXPECT_EQ(calculation->toPoiIdx(), 0) << "a cone has one POI";
    calculation->setFromPoiIdx(6);
    calculation->setFromObject(car);
    EXPECT_EQ(calculation->fromPoiIdx(), 6) << "a car has seven";

    cone->poiList()->clearList(true);
    calculation->setFromObject(cone);
    EXPECT_FALSE(calculation->calculationModel()->getStoredUseFromPoi());
    EXPECT_EQ(calculation->fromPoiIdx(), 0);
    EXPECT_EQ(calculation->calculationModel()->getFrom(), cone->geoModel());
}

TEST_F(QCalculationTest, TheRulesOfTheModelShowInTheProperties)
{
    EXPECT_FALSE(calculation->euclideanOnly());
    calculation->setToObject(car);
    calculation->setDistanceType(QCalculation::X);
    ASSERT_EQ(calculation->distanceType(), QCalculation::X);

    QSignalSpy type(calculation, &QCalculation::distanceTypeChanged);
    QSignalSpy only(calculation, &QCalculation::euclideanOnlyChanged);
    ASSERT_TRUE(type.isValid() && only.isValid());
    calculation->setUseToPoi(false);
    EXPECT_FALSE(calculation->useToPoi());
    EXPECT_TRUE(calculation->euclideanOnly());
    EXPECT_EQ(calculation->distanceType(), QCalculation::EUCLIDEAN) << "X needs the car's POI";
    EXPECT_EQ(type.count(), 1);
    EXPECT_EQ(only.count(), 1);

    calculation->setDistanceType(QCalculation::Y);
    EXPECT_EQ(calculation->distanceType(), QCalculation::EUCLIDEAN) << "refused by the model";

    calculation->setFromObject(line);
    EXPECT_FALSE(calculation->useFromPoi()) << "a track has no POI";
    calculation->setFromObject(cone);
    calculation->setUseFromPoi(false);
    EXPECT_TRUE(calculation->useFromPoi()) << "a cone is always measured at its POI";
}

/// A scene object that claims to be a car without being a position object.
class FalseCar : public QGeoObject
{
public:
    FalseCar(std::shared_ptr<overmap::GeoObject> model, QObject* parent)
        : QGeoObject(std::move(model), parent)
    {}
    Type getType() const override { return CAR; }
    double width() const override { return 0.0; }
    double length() const override { return 0.0; }
    math_geo::GeoBounds enclosingRectangle() const override
    {
        return math_geo::GeoBounds(om_ui_test::SITE, om_ui_test::SITE);
    }
};

TEST_F(QCalculationTest, AnObjectOfTheWrongClassIsAnAssertion)
{
    FalseCar impostor(std::make_shared<overmap::GeoObject>(&plane), nullptr);
    uni_testing::AssertCapture asserts;
    calculation->setFromObject(&impostor);
    EXPECT_TRUE(asserts.fired("(position != nullptr) == position_type", "wrong class"));
    EXPECT_EQ(calculation->calculationModel()->getFrom(), impostor.geoModel()) << "and the code goes on";

    asserts.clear();
    calculation->setToObject(line);
    calculation->setToObject(car);
    EXPECT_EQ(asserts.size(), 0u);
}

TEST_F(QCalculationTest, NamesAreUniqueAmongTheCalculationsOfTheManager)
{
    QCalculation* other = manager.addCalculation();
    other->setName("Gap");
    EXPECT_FALSE(calculation->isNameUnique("Gap"));
    EXPECT_TRUE(other->isNameUnique("Gap")) << "its own name";
    EXPECT_TRUE(calculation->isNameUnique("Car 1")) << "objects have names of their own";
    QCalculation loose(std::make_shared<overmap::Calculation>(), nullptr, nullptr);
    EXPECT_TRUE(loose.isNameUnique("Gap"));
    EXPECT_EQ(loose.fromObject(), nullptr);
}

/// A channel list with the result channel of one calculation, as the host's extension makes it.
class ResultChannelTest : public ::testing::Test
{
protected:
    static constexpr std::uint32_t NODE = 7;

    ResultChannelTest() : plane(om_ui_test::sitePlane()), manager(&plane)
    {
        fetcher.setChannelList(&channels.model());
        fetcher.setNodeId(NODE);
        manager.setChannelFetcher(&fetcher);
    }

    lum::qchannel::QChannel* addResultChannel(std::uint32_t node, int calc_id)
    {
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
    }

    std::shared_ptr<ferrin::DataRegionsManager> regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager config;
    om_ui_test::ChannelList channels;
    overmap_ui::QChannelFetcher fetcher;
    math_geo::ProjectionPlane plane;
    QObjectManager manager;
};

TEST_F(ResultChannelTest, TheResultChannelTakesTheCalculationsName)
{
    const int id = overmap::Calculation::peekNextId();
    lum::qchannel::QChannel* result = addResultChannel(NODE, id);
    lum::qchannel::QChannel* foreign = addResultChannel(NODE + 1, id + 1);
    ASSERT_EQ(fetcher.resultChannelOf(id), result);

    QCalculation* calculation = manager.addCalculation();
    ASSERT_EQ(calculation->calcId(), id);
    EXPECT_EQ(result->name(), QString("Calculation %1").arg(id));

    QSignalSpy renamed(result, &lum::qchannel::QChannel::nameChanged);
    ASSERT_TRUE(renamed.isValid());
    calculation->setName("Braking gap");
    EXPECT_EQ(result->name(), "Braking gap");
    EXPECT_EQ(renamed.count(), 1);

    QCalculation* second = manager.addCalculation();
    second->setName("No channel of its own node");
    EXPECT_EQ(foreign->name(), "result");
    EXPECT_EQ(result->name(), "Braking gap");
}

TEST_F(ResultChannelTest, TheFetcherFindsOnlyResultChannelsOfItsNode)
{
    const int id = overmap::Calculation::peekNextId() + 50;
    lum::qchannel::QChannel* result = addResultChannel(NODE, id);
    addResultChannel(NODE + 1, id + 1);
    EXPECT_EQ(fetcher.resultChannelOf(id), result);
    EXPECT_EQ(fetcher.resultChannelOf(id + 1), nullptr) << "another node";
    EXPECT_EQ(fetcher.resultChannelOf(id + 2), nullptr);
    EXPECT_EQ(fetcher.resultChannelOf(-1), nullptr);
    EXPECT_EQ(fetcher.getChannelByLocalId(overmap::CALCULATION_RESULT_LOCAL_ID_BASE + id), result);
    overmap_ui::QChannelFetcher without_list;
    EXPECT_EQ(without_list.resultChannelOf(id), nullptr);
}

} // namespace
