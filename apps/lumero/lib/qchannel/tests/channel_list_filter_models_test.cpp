#include "proxy_fixture.h"

#include <qchannel/channel_list_filter_models.h>

#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QSignalSpy>

#include <functional>
#include <memory>
#include <string>

namespace lq = lum::qchannel;
using channel_config::DAQChannelType;
using proxy_test::channelType;
using proxy_test::flag;
using proxy_test::number;
using proxy_test::shown;
using proxy_test::text;

namespace {

/// Six channels of different kinds:
///   speed    scalar, sync, analog, km/h, source a
///   brake    string samples, async, digital, V, source b
///   frame    CAN messages, async, CAN, id 255, source a
///   spectrum vectors of 8, sync, math, V
///   meta     metadata of speed, hidden, CAN
///   ghost    not used, digi group, no unit item
class FilterModels : public ::testing::Test
{
protected:
    FilterModels()
    {
        channels.add({"speed",
                      {{"ChannelType", channelType(DAQChannelType::ANALOG)},
                       {"Unit", text("km/h")},
                       {"SourceUUID", text("a")}},
                      ferrin::OCCURRENCE_SYNC,
                      11,
                      1,
                      true});
        channels.add({"brake",
                      {{"ChannelType", channelType(DAQChannelType::DIGITAL)},
                       {"Unit", text("V")},
                       {"SourceUUID", text("b")}},
                      ferrin::OCCURRENCE_ASYNC,
                      17});
        channels.add({"frame",
                      {{"ChannelType", channelType(DAQChannelType::CAN)},
                       {"Unit", text("")},
                       {"CAN/MessageID", number(255)},
                       {"SourceUUID", text("a")}},
                      ferrin::OCCURRENCE_ASYNC,
                      12});
        channels.add({"spectrum",
                      {{"ChannelType", channelType(DAQChannelType::MATH)}, {"Unit", text("V")}},
                      ferrin::OCCURRENCE_SYNC,
                      0,
                      8});
        channels.add({"meta",
                      {{"ChannelType", channelType(DAQChannelType::CAN)},
                       {"MetadataChannelOf", config_items::SingleValueConfigItem<channel_config::ChannelID>(
                                                 channel_config::ChannelID(7, 1))},
                       {"Visibility", flag(false)}},
                      ferrin::OCCURRENCE_ASYNC,
                      12});
        channels.add(
            {"ghost", {{"ChannelType", channelType(DAQChannelType::DIGI_GROUP)}, {"Used", flag(false)}}});
    }

public:
    proxy_test::ChannelList channels;
};

struct FilterCase
{
    const char* name;
    std::function<std::unique_ptr<lq::ChannelListSortFilterProxyModel>(FilterModels&)> make;
    const char* expected;
};

void PrintTo(const FilterCase& filter, std::ostream* out)
{
    *out << filter.name;
}

class FilterRules : public FilterModels, public ::testing::WithParamInterface<FilterCase>
{};

TEST_P(FilterRules, LetThroughTheChannelsOfTheirRule)
{
    std::unique_ptr<lq::ChannelListSortFilterProxyModel> proxy = GetParam().make(*this);
    uni_testing::attachModelTester(proxy.get());
    proxy->setSourceModel(&channels.list);
    EXPECT_EQ(shown(*proxy), GetParam().expected);
}

template <typename T>
std::function<std::unique_ptr<lq::ChannelListSortFilterProxyModel>(FilterModels&)>
make(std::function<void(T&, FilterModels&)> configure = [](T&, FilterModels&) {})
{
    return [configure](FilterModels& fixture) {
        auto proxy = std::make_unique<T>();
        configure(*proxy, fixture);
        return std::unique_ptr<lq::ChannelListSortFilterProxyModel>(std::move(proxy));
    };
}

using SampleTypes = lq::ChannelListChannelSampleValueTypeFilterProxyModel;
using Types = lq::ChannelListChannelTypeFilterProxyModel;
using TypesOrIds = lq::ChannelListChannelTypeOrChannelIdFilterProxyModel;
using Ids = lq::ChannelListIdFilterModel;
using MultiValue = lq::ChannelListMultiValueFilterProxyModel;
using Property = lq::ChannelListPropertyFilterModel;
using Sources = lq::ChannelListSourceFilterModel;

INSTANTIATE_TEST_SUITE_P(
    Rules, FilterRules,
    ::testing::Values(
        FilterCase{"base_takes_all", make<lq::ChannelListSortFilterProxyModel>(),
                   "speed brake frame spectrum meta ghost"},
        FilterCase{"used_and_shown", make<lq::ChannelListChannelFilterModel>(), "speed brake frame spectrum"},
        FilterCase{"any_sample_type", make<SampleTypes>(), "speed brake frame spectrum meta ghost"},
        FilterCase{"scalars_and_strings", make<SampleTypes>([](SampleTypes& p, FilterModels&) {
                       p.setTypeFilter(SampleTypes::SAMPLE_TYPE_SCALAR | SampleTypes::SAMPLE_TYPE_STRING);
                   }),
                   "speed brake"},
        FilterCase{"can_messages_and_vectors", make<SampleTypes>([](SampleTypes& p, FilterModels&) {
                       p.setTypeFilter(SampleTypes::SAMPLE_TYPE_CAN_MESSAGE |
                                       SampleTypes::SAMPLE_TYPE_SCALAR_VECTOR);
                   }),
                   "frame spectrum meta"},
        FilterCase{"channels_of_the_instrument", make<SampleTypes>([](SampleTypes& p, FilterModels& f) {
                       auto* instrument = new QObject(&p);
                       instrument->setProperty("channelIds",
                                               QStringList{f.channels.byName("spectrum")->getChannelId()});
                       p.setSelectedInstrument(instrument);
                       p.setTypeFilter(SampleTypes::SAMPLE_TYPE_STRING | SampleTypes::SAMPLE_TYPE_INSTRUMENT);
                   }),
                   "brake spectrum"},
        FilterCase{"instrument_bit_without_instrument", make<SampleTypes>([](SampleTypes& p, FilterModels&) {
                       p.setTypeFilter(SampleTypes::SAMPLE_TYPE_INSTRUMENT);
                   }),
                   ""},
        FilterCase{"sources_not_metadata", make<lq::ChannelListChannelSourceFilterProxyModel>(),
                   "speed brake frame spectrum ghost"},
        FilterCase{"type_all", make<Types>(), "speed brake frame spectrum meta ghost"},
        FilterCase{"type_can",
                   make<Types>([](Types& p, FilterModels&) { p.setTypeFilter(Types::TypeFilter::CAN); }),
                   "frame meta"},
        FilterCase{"type_digital_takes_groups",
                   make<Types>([](Types& p, FilterModels&) { p.setTypeFilter(Types::TypeFilter::DIGITAL); }),
                   "brake ghost"},
        FilterCase{"type_inverted", make<Types>([](Types& p, FilterModels&) {
                       p.setTypeFilter(Types::TypeFilter::CAN);
                       p.setInverted(true);
                   }),
                   "speed brake spectrum ghost"},
        FilterCase{"type_async",
                   make<Types>([](Types& p, FilterModels&) { p.setTypeFilter(Types::TypeFilter::ASYNC); }),
                   "brake frame meta"},
        FilterCase{"type_sync",
                   make<Types>([](Types& p, FilterModels&) { p.setTypeFilter(Types::TypeFilter::SYNC); }),
                   "speed spectrum ghost"},
        FilterCase{"type_sync_scalar", make<Types>([](Types& p, FilterModels&) {
                       p.setTypeFilter(Types::TypeFilter::SYNC_SCALAR_SIGNAL);
                   }),
                   "speed"},
        FilterCase{"dimension_limit", make<Types>([](Types& p, FilterModels&) { p.setMaxDimension(1); }),
                   "speed brake frame meta ghost"},
        FilterCase{"type_or_id", make<TypesOrIds>([](TypesOrIds& p, FilterModels& f) {
                       p.setTypeFilter(TypesOrIds::MATH);
                       p.setChannelIds({f.channels.byName("brake")->getChannelId()});
                   }),
                   "brake spectrum"},
        FilterCase{"type_or_id_inverted", make<TypesOrIds>([](TypesOrIds& p, FilterModels& f) {
                       p.setTypeFilter(TypesOrIds::MATH);
                       p.setChannelIds({f.channels.byName("brake")->getChannelId()});
                       p.setInverted(true);
                   }),
                   "speed frame meta ghost"},
        FilterCase{"ids_none_given", make<Ids>(), ""},
        FilterCase{"ids", make<Ids>([](Ids& p, FilterModels& f) {
                       p.setChannelIds({f.channels.byName("ghost")->getChannelId(), "12345",
                                        f.channels.byName("speed")->getChannelId()});
                   }),
                   "speed ghost"},
        FilterCase{"multi_value", make<MultiValue>([](MultiValue& p, FilterModels&) {
                       p.setFilterKeys({"Unit", "SourceUUID", "Ferrin/Name"});
                       p.setFilterValues({"", "a"});
                   }),
                   "frame"},
        FilterCase{"multi_value_inverted", make<MultiValue>([](MultiValue& p, FilterModels&) {
                       p.setFilterKeys({"Unit"});
                       p.setFilterValues({"V"});
                       p.setInverted(true);
                   }),
                   "speed frame meta ghost"},
        FilterCase{"property_none_given", make<Property>(), "speed brake frame spectrum meta ghost"},
        FilterCase{"property_value", make<Property>([](Property& p, FilterModels&) {
                       p.setFilterProperty("Unit");
                       p.setFilterValue("V");
                   }),
                   "brake spectrum"},
        FilterCase{"property_missing_accepted", make<Property>([](Property& p, FilterModels&) {
                       p.setFilterProperty("Unit");
                       p.setFilterValue("V");
                       p.setAcceptIfPropertyMissing(true);
                   }),
                   "brake spectrum meta ghost"},
        FilterCase{"property_empty_value_takes_all_present",
                   make<Property>([](Property& p, FilterModels&) { p.setFilterProperty("Unit"); }),
                   "speed brake frame spectrum"},
        FilterCase{"property_empty_value_checked", make<Property>([](Property& p, FilterModels&) {
                       p.setFilterProperty("Unit");
                       p.setCheckEmptyValue(true);
                   }),
                   "frame"},
        FilterCase{"sources_all_when_none_given", make<Sources>(), "speed brake frame spectrum meta ghost"},
        FilterCase{"sources", make<Sources>([](Sources& p, FilterModels&) {
                       p.setSourceUUIds({"a", "c"});
                   }),
                   "speed frame"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(FilterModels, AFilterFollowsItsPropertyAndTellsOnlyChanges)
{
    Types proxy;
    uni_testing::attachModelTester(&proxy);
    proxy.setSourceModel(&channels.list);
    QSignalSpy spy(&proxy, &Types::typeFilterChanged);
    ASSERT_TRUE(spy.isValid());
    proxy.setTypeFilter(Types::TypeFilter::CAN);
    proxy.setTypeFilter(Types::TypeFilter::CAN);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(shown(proxy), "frame meta");
    channels.add({"frame2", {{"ChannelType", channelType(DAQChannelType::CAN)}}});
    EXPECT_EQ(shown(proxy), "frame meta frame2");
    proxy.setTypeFilter(Types::TypeFilter::ALL);
    EXPECT_EQ(proxy.count(), 7);
}

TEST(ChannelProxyTypes, AreMadeByTheDeclarativeEngine)
{
    lq::registerChannelListProxyModels("ChannelProxies", 1, 0);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(
        "import ChannelProxies 1.0\n"
        "ChannelListChannelTypeFilterProxyModel { typeFilter: ChannelTypeFilter.CAN; inverted: true }",
        QUrl());
    std::unique_ptr<QObject> object(component.create());
    ASSERT_NE(object, nullptr) << component.errorString().toStdString();
    auto* proxy = qobject_cast<Types*>(object.get());
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->typeFilter(), Types::TypeFilter::CAN);
    EXPECT_TRUE(proxy->inverted());
}

} // namespace
