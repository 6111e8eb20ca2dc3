// The measurement chain of a channel as views see it: a list of stages, each with the
// configuration operations of a channel over its own items.

#include "qchannel_fakes.h"

#include <qchannel/qchannel.h>
#include <qchannel/qmeasurement_chain.h>

#include <channel_config/boolean_constraints.h>
#include <config_items/range_constraint.h>

#include <uni_testing/assert_capture.h>
#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QPointer>
#include <QSignalSpy>

#include <memory>

using lum::QMeasurementChain;
using lum::QMeasurementChainElement;
using lum::qchannel::QChannel;
namespace ci = config_items;
namespace cc = channel_config;

namespace {

std::shared_ptr<ferrin::ConfigItemStore> sensorItems()
{
    auto items = std::make_shared<ferrin::ConfigItemStore>();
    items->set("Sensitivity", ci::ScalarConfigItem(2, "mV/V"));
    items->set("ACTION:Zero", ci::SingleValueConfigItem<bool>(true));
    items->set("ID:Serial", ci::StringConfigItem("S-1"));
    items->set("ACTION:Calibrate", ci::SingleValueConfigItem<bool>(true));
    items->set("CAN/MessageID", ci::SingleValueConfigItem<unsigned int>(16));
    items->setConstraints("Sensitivity", {std::make_shared<cc::ReadOnlyConstraint>(true)});
    return items;
}

class MeasurementChainTest : public ::testing::Test
{
protected:
    MeasurementChainTest()
    {
        channel->getItemStore()->setMeasurementChain(
            {{"sensor", "u-1", "Sensor", sensorItems()}, {"amplifier", "u-2", "Amplifier", nullptr}});
    }

    qchannel_test::ChannelFactory factory{10.0};
    std::shared_ptr<lum::data::SyncScalarChannel> channel = factory.sync("force", {1.0});
    QChannel qchannel{channel};
};

TEST_F(MeasurementChainTest, OneElementPerStageInOrderOwnedByTheChain)
{
    std::unique_ptr<QMeasurementChain> chain(qchannel.getMeasurementChain());
    uni_testing::attachModelTester(chain.get());
    ASSERT_EQ(chain->size(), 2);
    EXPECT_EQ(chain->at(0)->name(), "sensor");
    EXPECT_EQ(chain->at(0)->uuid(), "u-1");
    EXPECT_EQ(chain->at(0)->type(), "Sensor");
    EXPECT_EQ(chain->at(1)->name(), "amplifier");
    QPointer<QMeasurementChainElement> element = chain->at(1);
    std::unique_ptr<QMeasurementChain> second(qchannel.getMeasurementChain());
    EXPECT_NE(second->at(1), chain->at(1)) << "each call makes a new chain";
    uni_testing::AssertCapture asserts;
    QObject stranger;
    chain->append(&stranger);
    EXPECT_EQ(chain->size(), 2);
    EXPECT_TRUE(asserts.fired("isObjectCompatible(object)"));
    chain.reset();
    EXPECT_TRUE(element.isNull());

    channel->getItemStore()->setMeasurementChain({});
    EXPECT_EQ(std::unique_ptr<QMeasurementChain>(qchannel.getMeasurementChain())->size(), 0);
}

TEST_F(MeasurementChainTest, ElementAnswersFromItsOwnItems)
{
    std::unique_ptr<QMeasurementChain> chain(qchannel.getMeasurementChain());
    QMeasurementChainElement* sensor = chain->at(0);
    EXPECT_EQ(sensor->getConfigItemAsString("Sensitivity"), "2 mV/V");
    EXPECT_EQ(sensor->getConfigItemType("Sensitivity"), "Scalar");
    EXPECT_TRUE(sensor->hasConfigItem("Sensitivity"));
    EXPECT_FALSE(sensor->hasConfigItem("Ferrin/Name")) << "the channel's items are not the stage's";
    EXPECT_FALSE(sensor->hasConfigItem(""));
    EXPECT_EQ(sensor->getAvailableConfigKeys(), QStringList({"Sensitivity", "CAN/MessageID"}));
    EXPECT_EQ(sensor->getAvailableActionKeys(), QStringList({"ACTION:Calibrate", "ACTION:Zero"}));
    EXPECT_EQ(sensor->getAvailableIdKeys(), QStringList({"ID:Serial"}));
    EXPECT_EQ(sensor->getConstraints("Sensitivity"), QStringList({"ReadOnly: true"}));
    ASSERT_NE(sensor->getPropertyConstraints("Sensitivity"), nullptr);
    EXPECT_TRUE(sensor->getPropertyConstraints("Sensitivity")->readOnly());
    EXPECT_EQ(sensor->getStringRepresentation("Missing"), "");
    EXPECT_FALSE(sensor->getConfigItem("Missing").isValid());

    QMeasurementChainElement* amplifier = chain->at(1);
    EXPECT_TRUE(amplifier->getAvailableConfigKeys().isEmpty());
}

TEST_F(MeasurementChainTest, SettingRefusesInvalidValuesKeepsTheKindAndTellsTheChange)
{
    std::unique_ptr<QMeasurementChain> chain(qchannel.getMeasurementChain());
    QMeasurementChainElement* sensor = chain->at(0);
    QSignalSpy changed(sensor, &QMeasurementChainElement::configItemChanged);
    ASSERT_TRUE(changed.isValid());

    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(sensor->setConfigItem("Sensitivity", QVariant()));
    EXPECT_TRUE(
        asserts.fired("value.isValid()", "setConfigItem: called with value 'invalid' for key Sensitivity"));
    EXPECT_EQ(changed.count(), 0);

    EXPECT_TRUE(sensor->setConfigItem("Sensitivity", 3));
    EXPECT_EQ(sensor->getConfigItemAsString("Sensitivity"), "3 mV/V");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(1).toString(), "Sensitivity");
    // The stage's items are the core's: a new chain sees the change.
    std::unique_ptr<QMeasurementChain> again(qchannel.getMeasurementChain());
    EXPECT_EQ(again->at(0)->getConfigItemAsString("Sensitivity"), "3 mV/V");
}

TEST(ConstraintDescriptions, AKindOutsideTheListIsLoggedAndGivesNoLines)
{
    struct Foreign : config_items::ConstraintBase<Foreign>
    {
        int fields() const { return 0; }
    };
    auto items = std::make_shared<ferrin::ConfigItemStore>();
    items->set("Gain", ci::SingleValueConfigItem<double>(1));
    items->setConstraints("Gain",
                          {std::make_shared<cc::ReadOnlyConstraint>(true), std::make_shared<Foreign>()});
    QMeasurementChainElement element({"stage", "u", "T", items});
    EXPECT_TRUE(element.getConstraints("Gain").isEmpty());
}

} // namespace
