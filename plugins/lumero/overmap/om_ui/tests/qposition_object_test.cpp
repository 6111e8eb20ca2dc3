#include "om_ui_test_support.h"

#include <om_ui/qcone.h>

#include <om_model/cone.h>
#include <om_model/position_object.h>

#include <uni_testing/log_capture.h>
#include <uni_testing/model_tester.h>

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>

namespace {

using om_ui_test::SignalRecorder;
using overmap_ui::QCone;
using overmap_ui::QPositionObject;

class QPositionObjectTest : public ::testing::Test
{
public:
    QPositionObjectTest() : plane(om_ui_test::sitePlane())
    {
        model = std::make_shared<overmap::Cone>(&plane);
        model->setGeoPosition(om_ui_test::SITE);
        cone = new QCone(model, &manager);
        manager.objects.append(cone);
        cone->updatePositionData(0.0);
    }

    lum::qchannel::QChannel* scalar(std::vector<double> values)
    {
        return channels.add(om_ui_test::makeScalar(10.0, std::move(values)));
    }

    math_geo::ProjectionPlane plane;
    om_ui_test::FakeManager manager;
    om_ui_test::ChannelList channels;
    std::shared_ptr<overmap::Cone> model;
    QCone* cone = nullptr;
};

struct SignalRow
{
    const char* name;
    std::function<void(QPositionObjectTest&, QCone&)> change;
    QStringList expected;
};

void PrintTo(const SignalRow& row, std::ostream* out)
{
    *out << row.name;
}

std::string joined(const QStringList& names)
{
    return names.join(' ').toStdString();
}

class SetterSignals : public QPositionObjectTest, public ::testing::WithParamInterface<SignalRow>
{};

TEST_P(SetterSignals, FollowTheChangeInTheirOrder)
{
    SignalRecorder recorder(cone);
    GetParam().change(*this, *cone);
    EXPECT_EQ(joined(recorder.names()), joined(GetParam().expected));
}

const QStringList POSITION_STEP{"latitudeChanged",       "longitudeChanged",  "positionChanged",
                                "centerPositionChanged", "xyPositionChanged", "headingChanged",
                                "inputHeadingChanged"};

INSTANTIATE_TEST_SUITE_P(
    QPositionObject, SetterSignals,
    ::testing::Values(
        SignalRow{"position",
                  [](auto&, QCone& c) { c.setPosition(QGeoCoordinate(48.201, 11.601)); },
                  {"referenceObjectChanged", "latitudeChanged", "longitudeChanged", "positionChanged",
                   "centerPositionChanged", "xyPositionChanged", "useXYCoordinatesChanged", "dataChanged"}},
        SignalRow{"xy_position",
                  [](auto&, QCone& c) { c.setXYPosition(QPointF(10.0, 5.0)); },
                  {"latitudeChanged", "longitudeChanged", "positionChanged", "centerPositionChanged",
                   "xyPositionChanged", "useXYCoordinatesChanged", "dataChanged"}},
        SignalRow{"latitude",
                  [](auto&, QCone& c) { c.setLatitude(48.3); },
                  {"latitudeChanged", "positionChanged", "centerPositionChanged", "xyPositionChanged",
                   "useXYCoordinatesChanged", "dataChanged"}},
        SignalRow{"longitude",
                  [](auto&, QCone& c) { c.setLongitude(11.7); },
                  {"longitudeChanged", "positionChanged", "centerPositionChanged", "xyPositionChanged",
                   "useXYCoordinatesChanged", "dataChanged"}},
        SignalRow{"input_heading",
                  [](auto&, QCone& c) { c.setInputHeading(45.0); },
                  {"inputHeadingChanged", "headingChanged", "centerPositionChanged", "dataChanged"}},
        SignalRow{"input_heading_from_coord",
                  [](auto&, QCone& c) { c.setInputHeadingFromCoord(45.0, QPositionObject::SAE); },
                  {"inputHeadingChanged", "headingChanged", "centerPositionChanged", "dataChanged"}},
        SignalRow{"use_xy",
                  [](auto&, QCone& c) { c.setUseXYCoordinates(true); },
                  {"latitudeChanged", "longitudeChanged", "positionChanged", "centerPositionChanged",
                   "xyPositionChanged", "useXYCoordinatesChanged", "dataChanged"}},
        SignalRow{"coordinate_system",
                  [](auto&, QCone& c) { c.setObjectCoordinateSystem(QPositionObject::SAE); },
                  {"dataChanged", "objectCoordinateSystemChanged", "positionChanged", "centerPositionChanged",
                   "centerPositionChanged", "xyPositionChanged", "latitudeChanged", "longitudeChanged",
                   "headingChanged", "inputHeadingChanged"}},
        SignalRow{"name", [](auto&, QCone& c) { c.setName("Pylon"); }, {"nameChanged", "dataChanged"}},
        SignalRow{"color", [](auto&, QCone& c) { c.setColor(Qt::red); }, {"colorChanged", "dataChanged"}},
        SignalRow{"heading_channel",
                  [](QPositionObjectTest& t, QCone& c) { c.setHeadingChannel(t.scalar({1.0})); },
                  {"headingChannelChanged", "dataChanged"}},
        SignalRow{"latitude_channel",
                  [](QPositionObjectTest& t, QCone& c) { c.setLatitudeChannel(t.scalar({48.2})); },
                  {"isGPSConnectedChanged", "latitudeChannelChanged", "dataChanged", "userMovableChanged",
                   "useXYCoordinatesChanged"}},
        SignalRow{"time_step",
                  [](auto&, QCone& c) { c.updatePositionData(1.0); },
                  {"latitudeChanged", "longitudeChanged", "positionChanged", "centerPositionChanged",
                   "xyPositionChanged", "headingChanged", "inputHeadingChanged"}},
        SignalRow{"second_step_at_the_same_time",
                  [](auto&, QCone& c) {
                      c.updatePositionData(1.0);
                      c.updatePositionData(1.0);
                  },
                  POSITION_STEP + POSITION_STEP}),
    [](const auto& info) { return std::string(info.param.name); });

class UnchangedSetters : public QPositionObjectTest, public ::testing::WithParamInterface<SignalRow>
{};

TEST_P(UnchangedSetters, EmitNothing)
{
    cone->setInputHeading(30.0);
    cone->setHeadingChannel(nullptr);
    SignalRecorder recorder(cone);
    GetParam().change(*this, *cone);
    EXPECT_EQ(joined(recorder.names()), "");
}

INSTANTIATE_TEST_SUITE_P(
    QPositionObject, UnchangedSetters,
    ::testing::Values(
        SignalRow{"position", [](auto&, QCone& c) { c.setPosition(QGeoCoordinate(48.2, 11.6)); }, {}},
        SignalRow{"latitude_within_1e-12", [](auto&, QCone& c) { c.setLatitude(48.2 + 5e-13); }, {}},
        SignalRow{"longitude", [](auto&, QCone& c) { c.setLongitude(11.6); }, {}},
        SignalRow{"input_heading", [](auto&, QCone& c) { c.setInputHeading(30.0); }, {}},
        SignalRow{"use_xy", [](auto&, QCone& c) { c.setUseXYCoordinates(false); }, {}},
        SignalRow{"xy_position", [](auto&, QCone& c) { c.setXYPosition(c.xyPosition()); }, {}},
        SignalRow{"coordinate_system",
                  [](auto&, QCone& c) { c.setObjectCoordinateSystem(QPositionObject::DIN_70000); },
                  {}},
        SignalRow{"name", [](auto&, QCone& c) { c.setName("Cone"); }, {}},
        SignalRow{"color", [](auto&, QCone& c) { c.setColor(QColor("#FFA500")); }, {}},
        SignalRow{"null_channels",
                  [](auto&, QCone& c) {
                      c.setLatitudeChannel(nullptr);
                      c.setLongitudeChannel(nullptr);
                      c.setHeadingChannel(nullptr);
                  },
                  {}},
        SignalRow{"reference_to_itself", [](auto&, QCone& c) { c.setReferenceObject(&c); }, {}},
        SignalRow{"no_reference", [](auto&, QCone& c) { c.setReferenceObject(nullptr); }, {}}),
    [](const auto& info) {
        std::string name = info.param.name;
        for (char& ch : name)
            ch = std::isalnum(static_cast<unsigned char>(ch)) ? ch : '_';
        return name;
    });

TEST_F(QPositionObjectTest, ValidityIsFalseUntilTheFirstStepAndTellsOnlyChanges)
{
    QCone fresh(model, nullptr);
    EXPECT_FALSE(fresh.validPosition());
    QSignalSpy validity(&fresh, &QPositionObject::validPositionChanged);
    ASSERT_TRUE(validity.isValid());
    fresh.updatePositionData(1.0);
    fresh.updatePositionData(2.0);
    EXPECT_TRUE(fresh.validPosition());
    EXPECT_EQ(validity.count(), 1);
}

TEST_F(QPositionObjectTest, OnlyPositionChannelsConnectTheGPS)
{
    QSignalSpy spy(cone, &QPositionObject::isGPSConnectedChanged);
    ASSERT_TRUE(spy.isValid());
    cone->setHeadingChannel(scalar({90.0}));
    EXPECT_FALSE(cone->isGPSConnected());
    EXPECT_EQ(spy.count(), 0);
    EXPECT_TRUE(cone->isUserMovable());
    cone->setLongitudeChannel(scalar({11.61}));
    EXPECT_TRUE(cone->isGPSConnected());
    EXPECT_FALSE(cone->isUserMovable());
    cone->setLongitudeChannel(nullptr);
    EXPECT_FALSE(cone->isGPSConnected());
    EXPECT_EQ(spy.count(), 2);
}

TEST_F(QPositionObjectTest, PositionByHandDropsPositionChannelsButKeepsTheHeadingChannel)
{
    auto* heading = scalar({90.0});
    cone->setLatitudeChannel(scalar({48.21}));
    cone->setLongitudeChannel(scalar({11.61}));
    cone->setHeadingChannel(heading);
    cone->setPosition(QGeoCoordinate(48.22, 11.62));
    EXPECT_EQ(cone->latitudeChannel(), nullptr);
    EXPECT_EQ(cone->longitudeChannel(), nullptr);
    EXPECT_EQ(cone->headingChannel(), heading);
    EXPECT_FALSE(model->getLatitudeChannel());
    EXPECT_TRUE(model->getHeadingChannel());
    EXPECT_DOUBLE_EQ(cone->latitude(), 48.22);
}

TEST_F(QPositionObjectTest, XYPositionDropsChannelsButKeepsTheReference)
{
    auto parent_model = std::make_shared<overmap::Cone>(&plane);
    parent_model->setGeoPosition(om_ui_test::SITE);
    QCone parent(parent_model, &manager);
    manager.objects.append(&parent);
    cone->setLatitudeChannel(scalar({48.21}));
    cone->setReferenceObject(&parent);
    EXPECT_EQ(cone->referenceObject(), &parent);
    cone->setXYPosition(QPointF(3.0, 0.0));
    EXPECT_EQ(cone->referenceObject(), &parent);
    EXPECT_EQ(cone->latitudeChannel(), nullptr);
    EXPECT_NEAR(om_ui_test::SITE.distanceTo(model->getGeoPosition(), math_geo::DistanceMethod::HAVERSINE),
                3.0, 0.01);
    EXPECT_FALSE(cone->isUserMovable());
}

TEST_F(QPositionObjectTest, AChildFollowsItsReferenceWithoutWritingTheSetup)
{
    auto parent_model = std::make_shared<overmap::Cone>(&plane);
    parent_model->setGeoPosition(om_ui_test::SITE);
    QCone parent(parent_model, &manager);
    cone->setReferenceObject(&parent);
    cone->setXYPosition(QPointF(10.0, 0.0));
    QSignalSpy data(cone, &QPositionObject::dataChanged);
    QSignalSpy moved(cone, &QPositionObject::positionChanged);
    ASSERT_TRUE(data.isValid() && moved.isValid());
    parent.setInputHeading(90.0);
    EXPECT_EQ(data.count(), 0);
    EXPECT_EQ(moved.count(), 1);
    // Heading 90 in DIN70000 turns the parent's x axis to the west.
    EXPECT_LT(cone->longitude(), om_ui_test::SITE.longitude);
    cone->setReferenceObject(nullptr);
    parent.setInputHeading(0.0);
    EXPECT_EQ(moved.count(), 2) << "the old reference no longer moves it";
}

TEST_F(QPositionObjectTest, AReferenceReadFromTheSetupIsFoundThroughTheManager)
{
    auto parent_model = std::make_shared<overmap::Cone>(&plane);
    QCone parent(parent_model, &manager);
    manager.objects.append(&parent);
    model->setReferenceObject(parent_model);
    EXPECT_EQ(cone->referenceObject(), &parent);
}

TEST_F(QPositionObjectTest, AReferenceCycleIsRefused)
{
    auto parent_model = std::make_shared<overmap::Cone>(&plane);
    QCone parent(parent_model, &manager);
    parent.setReferenceObject(cone);
    SignalRecorder recorder(cone);
    cone->setReferenceObject(&parent);
    EXPECT_EQ(joined(recorder.names()), "");
    EXPECT_EQ(cone->referenceObject(), nullptr);
}

TEST_F(QPositionObjectTest, ChannelsBoundAndUnboundWhileTheTimeMoves)
{
    cone->setLatitudeChannel(scalar({48.21, 48.22, 48.23}));
    cone->setLongitudeChannel(scalar({11.61, 11.62, 11.63}));
    cone->setHeadingChannel(scalar({10.0, 20.0, 30.0}));
    cone->updatePositionData(0.1);
    EXPECT_DOUBLE_EQ(cone->latitude(), 48.22);
    EXPECT_DOUBLE_EQ(cone->inputHeading(), 20.0);
    cone->setLatitudeChannel(nullptr);
    cone->updatePositionData(0.2);
    EXPECT_DOUBLE_EQ(cone->latitude(), 48.22) << "the unbound latitude stays where it was";
    EXPECT_DOUBLE_EQ(cone->longitude(), 11.63);
    cone->setLatitudeChannel(scalar({48.3, 48.4, 48.5}));
    cone->updatePositionData(0.2);
    EXPECT_DOUBLE_EQ(cone->latitude(), 48.5) << "a new binding makes the same time count again";
    EXPECT_TRUE(cone->validPosition());
}

TEST_F(QPositionObjectTest, AnInvalidSampleKeepsThePositionAndItsValidity)
{
    cone->setLatitudeChannel(scalar({48.21, 91.0}));
    cone->updatePositionData(0.0);
    ASSERT_TRUE(cone->validPosition());
    QSignalSpy validity(cone, &QPositionObject::validPositionChanged);
    ASSERT_TRUE(validity.isValid());
    uni_testing::LogCapture log;
    cone->updatePositionData(0.1);
    EXPECT_DOUBLE_EQ(cone->latitude(), 48.21);
    EXPECT_TRUE(cone->validPosition());
    EXPECT_EQ(validity.count(), 0);
    EXPECT_TRUE(log.contains("overmap", 1, "Invalid latitude and/or longitude ("));
}

TEST_F(QPositionObjectTest, ANonScalarChannelIsBoundAsNone)
{
    auto* vector = channels.add(om_ui_test::makeNonScalar());
    cone->setLatitudeChannel(vector);
    EXPECT_EQ(cone->latitudeChannel(), vector);
    EXPECT_FALSE(model->getLatitudeChannel());
    EXPECT_FALSE(cone->isGPSConnected());
}

TEST_F(QPositionObjectTest, ColourLosesItsAlpha)
{
    cone->setColor(QColor(10, 20, 30, 40));
    EXPECT_EQ(cone->color(), QColor(10, 20, 30));
    EXPECT_EQ(model->getColor(), "#0a141e");
}

TEST_F(QPositionObjectTest, NamesAreUniqueAgainstTheOtherObjectsOnly)
{
    QCone other(std::make_shared<overmap::Cone>(&plane), &manager);
    other.setName("Other");
    manager.objects.append(&other);
    EXPECT_TRUE(cone->isNameUnique(cone->name()));
    EXPECT_FALSE(cone->isNameUnique("Other"));
    EXPECT_TRUE(cone->isNameUnique("other"));
    QCone orphan(std::make_shared<overmap::Cone>(&plane), nullptr);
    EXPECT_TRUE(orphan.isNameUnique("Other"));
}

TEST_F(QPositionObjectTest, UnsupportedCoordinateSystemReadsAsDinAndIsLogged)
{
    model->setCoordinateSystem(math_geo::CoordinateSystem::X_RIGHT_Y_BACK);
    uni_testing::LogCapture log;
    EXPECT_EQ(cone->objectCoordinateSystem(), QPositionObject::DIN_70000);
    EXPECT_TRUE(log.contains("overmap", 6, "Unsupported coordinate system for QPositionObject 2"));
}

TEST_F(QPositionObjectTest, InputHeadingFromCoordTranslatesTheSystem)
{
    cone->setInputHeadingFromCoord(90.0, QPositionObject::DIN_70000);
    EXPECT_DOUBLE_EQ(cone->inputHeading(), 270.0);
    cone->setInputHeadingFromCoord(90.0, QPositionObject::X_FRONT_Y_LEFT);
    EXPECT_DOUBLE_EQ(cone->inputHeading(), 90.0);
    cone->setInputHeadingFromCoord(90.0, static_cast<QPositionObject::CoordinateSystem>(9));
    EXPECT_DOUBLE_EQ(cone->inputHeading(), 270.0) << "an unknown system is the default, DIN70000";
}

TEST_F(QPositionObjectTest, EnclosingRectangleSpansWidthAcrossAndLengthAlong)
{
    model->setLength(200.0);
    model->setWidth(100.0);
    const math_geo::GeoBounds bounds = cone->enclosingRectangle();
    const math_geo::GeoPosition north_east(bounds.top(), bounds.right());
    const math_geo::GeoPosition north_west(bounds.top(), bounds.left());
    const math_geo::GeoPosition south_west(bounds.bottom(), bounds.left());
    EXPECT_NEAR(north_west.distanceTo(north_east, math_geo::DistanceMethod::HAVERSINE), 100.0, 0.5);
    EXPECT_NEAR(north_west.distanceTo(south_west, math_geo::DistanceMethod::HAVERSINE), 200.0, 0.5);
    EXPECT_GT(bounds.top(), om_ui_test::SITE.latitude);
    EXPECT_EQ(cone->size(), QSizeF(100.0, 200.0));
}

TEST_F(QPositionObjectTest, PoisGoBothWaysAndEditsCountAsChanges)
{
    uni_testing::attachModelTester(cone->poiList());
    QSignalSpy data(cone, &QPositionObject::dataChanged);
    QSignalSpy list(cone, &QPositionObject::poiListChanged);
    ASSERT_TRUE(data.isValid() && list.isValid());
    ASSERT_EQ(cone->poiList()->size(), 1);
    overmap_ui::QPOI* added = cone->poiList()->addPoi();
    EXPECT_EQ(added->name(), "Poi 1");
    EXPECT_EQ(list.count(), 1);
    const int after_add = data.count();
    EXPECT_EQ(after_add, 2) << "the added object and the count";
    added->setPosition(QPointF(1.0, 2.0));
    EXPECT_EQ(data.count(), after_add + 1);
    cone->syncModelPois();
    ASSERT_EQ(model->poiCount(), 2u);
    EXPECT_EQ(model->getPoi(0).name, "Center");
    EXPECT_EQ(model->getPoi(1).name, "Poi 1");
    EXPECT_DOUBLE_EQ(model->getPoi(1).position.y, 2.0);
    EXPECT_FALSE(cone->getPoiGeoPosition(-1).isValid());
    EXPECT_FALSE(cone->getPoiGeoPosition(2).isValid());
    EXPECT_NEAR(cone->getPoiGeoPosition(1).distanceTo(cone->position()), std::sqrt(5.0), 0.01);
    model->resetPois();
    cone->refreshPois();
    EXPECT_EQ(cone->poiList()->size(), 1);
}

TEST_F(QPositionObjectTest, AnXYObjectFollowsThePlaneOnlyWithoutReference)
{
    cone->setXYPosition(QPointF(100.0, 0.0));
    plane.setCenter(math_geo::GeoPosition(48.3, 11.6));
    QSignalSpy data(cone, &QPositionObject::dataChanged);
    ASSERT_TRUE(data.isValid());
    cone->updateXYPositions();
    EXPECT_EQ(data.count(), 1);
    EXPECT_NEAR(cone->latitude(), 48.3 + 100.0 / 111200.0, 1e-4);
    cone->setUseXYCoordinates(false);
    data.clear();
    cone->updateXYPositions();
    EXPECT_EQ(data.count(), 0);
}

} // namespace

namespace {

// A time step emits only what something listens to, so each of its signals must reach a
// listener that hears it alone, whether connected in C++ or bound in QML, and must stop
// and start again with the listener.
struct StepListenerRow
{
    const char* property;
    void (QPositionObject::*signal)();
};

/// A value as text, coordinates and points included, which QVariant cannot compare.
QString text(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QGeoCoordinate>()) {
        const auto c = value.value<QGeoCoordinate>();
        return QString::number(c.latitude(), 'g', 17) + ' ' + QString::number(c.longitude(), 'g', 17);
    }
    if (value.userType() == QMetaType::QPointF) {
        const QPointF p = value.toPointF();
        return QString::number(p.x(), 'g', 17) + ' ' + QString::number(p.y(), 'g', 17);
    }
    return value.toString();
}

class StepListener : public QPositionObjectTest, public ::testing::WithParamInterface<StepListenerRow>
{
protected:
    StepListener()
    {
        cone->setLatitudeChannel(scalar({48.2, 48.21, 48.22, 48.23}));
        cone->setLongitudeChannel(scalar({11.6, 11.61, 11.62, 11.63}));
        cone->setHeadingChannel(scalar({10.0, 20.0, 30.0, 40.0}));
    }
};

TEST_P(StepListener, HearsEveryStepWhileConnected)
{
    int heard = 0;
    QMetaObject::Connection connection = QObject::connect(cone, GetParam().signal, [&heard] { ++heard; });
    cone->updatePositionData(0.1);
    cone->updatePositionData(0.2);
    EXPECT_EQ(heard, 2);
    QObject::disconnect(connection);
    cone->updatePositionData(0.3);
    EXPECT_EQ(heard, 2);
    QSignalSpy spy(cone, GetParam().signal);
    ASSERT_TRUE(spy.isValid());
    cone->updatePositionData(0.1);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(heard, 2);
}

TEST_P(StepListener, AQmlBindingFollowsTheSteps)
{
    const char* property = GetParam().property;
    if (std::string(property) == "inputHeading")
        GTEST_SKIP() << "a heading channel does not move the input heading";
    QQmlEngine engine;
    engine.rootContext()->setContextProperty("cone", cone);
    QQmlComponent component(&engine);
    component.setData(QByteArray("import QtQml 2.15\nQtObject { property var value: cone.") + property + "}",
                      QUrl());
    std::unique_ptr<QObject> view(component.create());
    ASSERT_NE(view, nullptr) << component.errorString().toStdString();
    cone->updatePositionData(0.1);
    const QString before = text(view->property("value"));
    cone->updatePositionData(0.3);
    const QString after = text(view->property("value"));
    EXPECT_NE(before, after) << "the step moved it";
    EXPECT_EQ(after, text(cone->property(property)));
}

INSTANTIATE_TEST_SUITE_P(
    Values, StepListener,
    ::testing::Values(StepListenerRow{"latitude", &QPositionObject::latitudeChanged},
                      StepListenerRow{"longitude", &QPositionObject::longitudeChanged},
                      StepListenerRow{"position", &QPositionObject::positionChanged},
                      StepListenerRow{"centerPosition", &QPositionObject::centerPositionChanged},
                      StepListenerRow{"xyPosition", &QPositionObject::xyPositionChanged},
                      StepListenerRow{"heading", &QPositionObject::headingChanged},
                      StepListenerRow{"inputHeading", &QPositionObject::inputHeadingChanged}),
    [](const auto& info) { return std::string(info.param.property); });

} // namespace
