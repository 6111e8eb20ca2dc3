#include "proxy_fixture.h"

#include <qchannel/channel_list_sort_filter_proxy_model.h>

#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

#include <QJSEngine>
#include <QSignalSpy>

#include <functional>
#include <memory>
#include <string>

using lum::qchannel::ChannelListPropertySortProxyModel;
using lum::qchannel::ChannelListSortFilterProxyModel;
using lum::qchannel::QChannel;
using proxy_test::number;
using proxy_test::shown;
using proxy_test::text;

namespace {

/// Counts the filter's questions, to tell whether a setter re-filtered.
class CountingSortProxy : public ChannelListPropertySortProxyModel
{
public:
    mutable int asked = 0;

protected:
    bool acceptsChannel(const QChannel& channel) const override
    {
        ++asked;
        return ChannelListPropertySortProxyModel::acceptsChannel(channel);
    }
};

/// Five channels: names, units, a gain and a CAN message id.
class SortProxy : public ::testing::Test
{
protected:
    SortProxy()
    {
        channels.add({"delta", {{"Unit", text("V")}, {"Gain", number(10)}, {"CAN/MessageID", number(255)}}});
        channels.add({"Alpha", {{"Unit", text("bar")}, {"Gain", number(9)}, {"CAN/MessageID", number(16)}}});
        channels.add({"charlie", {{"Unit", text("V")}, {"Gain", number(100)}}});
        channels.add({"bravo", {{"Unit", text("km/h")}, {"Gain", number(-3)}}});
        channels.add({"echo", {{"Unit", text("")}, {"Gain", number(0)}}});
        uni_testing::attachModelTester(&proxy);
        proxy.setSourceModel(&channels.list);
    }

    proxy_test::ChannelList channels;
    CountingSortProxy proxy;
};

struct SortCase
{
    const char* name;
    const char* property;
    Qt::SortOrder order;
    const char* expected;
};

void PrintTo(const SortCase& sort, std::ostream* out)
{
    *out << sort.name;
}

class SortOrders : public SortProxy, public ::testing::WithParamInterface<SortCase>
{};

TEST_P(SortOrders, SortsByTheItemOfTheKey)
{
    proxy.setSortOrder(GetParam().order);
    proxy.setSortProperty(QString::fromUtf8(GetParam().property));
    EXPECT_EQ(shown(proxy), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, SortOrders,
    ::testing::Values(
        SortCase{"text_ignores_case", "Ferrin/Name", Qt::AscendingOrder, "Alpha bravo charlie delta echo"},
        SortCase{"text_descending", "Ferrin/Name", Qt::DescendingOrder, "echo delta charlie bravo Alpha"},
        SortCase{"numbers_as_numbers", "Gain", Qt::AscendingOrder, "bravo echo Alpha delta charlie"},
        SortCase{"numbers_before_missing_items", "CAN/MessageID", Qt::AscendingOrder,
                 "Alpha delta charlie bravo echo"},
        SortCase{"no_key_keeps_the_source_order", "", Qt::DescendingOrder, "echo bravo charlie Alpha delta"}),
    [](const auto& info) { return std::string(info.param.name); });

struct SearchCase
{
    const char* name;
    std::function<void(ChannelListPropertySortProxyModel&)> setup;
    const char* search;
    const char* expected;
};

void PrintTo(const SearchCase& search, std::ostream* out)
{
    *out << search.name;
}

class SearchModes : public SortProxy, public ::testing::WithParamInterface<SearchCase>
{};

TEST_P(SearchModes, FindTheSearchTextInTheSearchedKeys)
{
    GetParam().setup(proxy);
    proxy.setSearchString(QString::fromUtf8(GetParam().search));
    EXPECT_EQ(shown(proxy), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, SearchModes,
    ::testing::Values(
        SearchCase{"name_when_no_key_given", [](auto&) {}, "A", "delta Alpha charlie bravo"},
        SearchCase{"default_in_any_case", [](auto& p) { p.setSearchedKeys({"Unit"}); }, "v", "delta charlie"},
        SearchCase{"any_of_the_keys",
                   [](auto& p) {
                       p.setSearchedKeys({"Unit", "Ferrin/Name"});
                   },
                   "ch", "charlie echo"},
        SearchCase{"decimal",
                   [](auto& p) {
                       p.setSearchedKeys({"Gain"});
                       p.setPropertySearchMode("Gain", ChannelListPropertySortProxyModel::DECIMAL);
                   },
                   "10", "delta charlie"},
        SearchCase{"hexadecimal_with_prefix",
                   [](auto& p) {
                       p.setSearchedKeys({"CAN/MessageID"});
                       p.setPropertySearchMode("CAN/MessageID",
                                               ChannelListPropertySortProxyModel::HEXADECIMAL);
                   },
                   "0xFF", "delta"},
        SearchCase{"hexadecimal_skips_items_without_a_number",
                   [](auto& p) {
                       p.setSearchedKeys({"Unit"});
                       p.setPropertySearchMode("Unit", ChannelListPropertySortProxyModel::HEXADECIMAL);
                   },
                   "a", ""},
        SearchCase{"empty_search_shows_all", [](auto& p) { p.setSearchedKeys({"Unit"}); }, "",
                   "delta Alpha charlie bravo echo"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SortProxy, ACustomSearchAsksTheFunction)
{
    QJSEngine engine;
    const QJSValue f = engine.evaluate(
        QStringLiteral("(function (text, search) { return text.length === search.length; })"));
    ASSERT_TRUE(f.isCallable());
    proxy.setSearchedKeys({"Unit"});
    proxy.setPropertyCustomSearchMode("Unit", f);
    EXPECT_EQ(proxy.getPropertySearchMode("Unit"), ChannelListPropertySortProxyModel::CUSTOM);
    EXPECT_EQ(proxy.getPropertySearchMode("Gain"), ChannelListPropertySortProxyModel::DEFAULT);
    proxy.setSearchString("xyz");
    EXPECT_EQ(shown(proxy), "Alpha");
    proxy.setPropertyCustomSearchMode("Unit", QJSValue(3));
    EXPECT_EQ(shown(proxy), "") << "what is not a function matches nothing";
}

TEST_F(SortProxy, PropertyFiltersRequireEachValue)
{
    QSignalSpy spy(&proxy, &ChannelListPropertySortProxyModel::filterChanged);
    ASSERT_TRUE(spy.isValid());
    proxy.setPropertyFilter("Unit", "V");
    EXPECT_EQ(shown(proxy), "delta charlie");
    proxy.setPropertyFilter("Unit", "bar");
    EXPECT_EQ(spy.count(), 2) << "a new value replaces the old one with one signal";
    EXPECT_EQ(shown(proxy), "Alpha");
    EXPECT_TRUE(proxy.isPropertyFiltered("Unit"));
    EXPECT_EQ(proxy.filterOfProperty("Unit"), "bar");
    EXPECT_FALSE(proxy.isPropertyFiltered("Gain"));
    EXPECT_EQ(proxy.filterOfProperty("Gain"), "");
    proxy.setPropertyFilter("CAN/MessageID", "0x10");
    EXPECT_EQ(shown(proxy), "Alpha") << "a CAN message id reads in hexadecimal";
    proxy.setPropertyFilter("Gain", "10");
    EXPECT_EQ(shown(proxy), "");
    proxy.clearFilters();
    EXPECT_EQ(spy.count(), 5);
    EXPECT_FALSE(proxy.isPropertyFiltered("Unit"));
    EXPECT_EQ(shown(proxy), "delta Alpha charlie bravo echo");
}

struct SetterCase
{
    const char* name;
    std::function<void(ChannelListPropertySortProxyModel&)> set;
    std::function<QSignalSpy*(ChannelListPropertySortProxyModel&)> spy;
};

void PrintTo(const SetterCase& setter, std::ostream* out)
{
    *out << setter.name;
}

class EqualSetters : public SortProxy, public ::testing::WithParamInterface<SetterCase>
{};

TEST_P(EqualSetters, GivenTheStoredValueEmitNothingAndDoNotRefilter)
{
    GetParam().set(proxy);
    std::unique_ptr<QSignalSpy> spy(GetParam().spy(proxy));
    ASSERT_TRUE(spy->isValid());
    int layouts = 0;
    QObject::connect(&proxy, &QAbstractItemModel::layoutChanged, &proxy, [&layouts] { ++layouts; });
    proxy.asked = 0;
    GetParam().set(proxy);
    EXPECT_EQ(spy->count(), 0);
    EXPECT_EQ(layouts, 0);
    EXPECT_EQ(proxy.asked, 0);
}

using Proxy = ChannelListPropertySortProxyModel;
INSTANTIATE_TEST_SUITE_P(
    Setters, EqualSetters,
    ::testing::Values(SetterCase{"sortProperty", [](Proxy& p) { p.setSortProperty("Gain"); },
                                 [](Proxy& p) { return new QSignalSpy(&p, &Proxy::sortPropertyChanged); }},
                      SetterCase{"sortOrder", [](Proxy& p) { p.setSortOrder(Qt::DescendingOrder); },
                                 [](Proxy& p) { return new QSignalSpy(&p, &Proxy::sortOrderChanged); }},
                      SetterCase{"searchString", [](Proxy& p) { p.setSearchString("a"); },
                                 [](Proxy& p) { return new QSignalSpy(&p, &Proxy::searchStringChanged); }},
                      SetterCase{"searchedKeys",
                                 [](Proxy& p) {
                                     p.setSearchedKeys({"Unit", "Gain"});
                                 },
                                 [](Proxy& p) { return new QSignalSpy(&p, &Proxy::searchedKeysChanged); }},
                      SetterCase{"propertyFilter", [](Proxy& p) { p.setPropertyFilter("Unit", "V"); },
                                 [](Proxy& p) { return new QSignalSpy(&p, &Proxy::filterChanged); }},
                      SetterCase{"searchMode",
                                 [](Proxy& p) { p.setPropertySearchMode("Gain", Proxy::DECIMAL); },
                                 [](Proxy& p) { return new QSignalSpy(&p, &Proxy::filterChanged); }}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SortProxy, ChangedSettersRefilterAndTell)
{
    QSignalSpy keys(&proxy, &ChannelListPropertySortProxyModel::searchedKeysChanged);
    ASSERT_TRUE(keys.isValid());
    proxy.setSearchString("V");
    proxy.setSearchedKeys({"Unit"});
    EXPECT_EQ(keys.count(), 1);
    EXPECT_EQ(shown(proxy), "delta charlie");
    proxy.setSearchedKeys({"Unit", "Ferrin/Name"});
    EXPECT_EQ(keys.count(), 2) << "a longer list is a change";
    EXPECT_EQ(shown(proxy), "delta charlie bravo");
}

TEST_F(SortProxy, StaysSortedAndFilteredWhileTheSourceChanges)
{
    proxy.setSortProperty("Gain");
    proxy.setPropertyFilter("Unit", "V");
    EXPECT_EQ(shown(proxy), "delta charlie");
    channels.add({"foxtrot", {{"Unit", text("V")}, {"Gain", number(50)}}});
    EXPECT_EQ(shown(proxy), "delta foxtrot charlie");
    channels.list.move(0, 4);
    EXPECT_EQ(shown(proxy), "delta foxtrot charlie");
    ASSERT_TRUE(channels.byName("charlie")->setConfigItem("Gain", 1));
    EXPECT_EQ(shown(proxy), "charlie delta foxtrot") << "a changed item is sorted anew";
    ASSERT_TRUE(channels.byName("bravo")->setConfigItem("Unit", QString("V")));
    EXPECT_EQ(shown(proxy), "bravo charlie delta foxtrot");
    std::unique_ptr<QChannel> delta(channels.byName("delta"));
    channels.list.removeChannel(delta.get());
    EXPECT_EQ(shown(proxy), "bravo charlie foxtrot");
    // The channels that the new list leaves out are no longer the list's to delete.
    std::unique_ptr<QChannel> alpha(channels.byName("Alpha"));
    std::unique_ptr<QChannel> charlie(channels.byName("charlie"));
    channels.list.setChannels({QVariant::fromValue(channels.byName("foxtrot")),
                               QVariant::fromValue(channels.byName("bravo")),
                               QVariant::fromValue(channels.byName("echo"))});
    EXPECT_EQ(shown(proxy), "bravo foxtrot");
    channels.list.clearAll();
    EXPECT_EQ(proxy.rowCount(), 0);
}

TEST_F(SortProxy, UniqueListsTakeTheRowsThatPass)
{
    EXPECT_EQ(proxy.uniqueListForProperty("Unit"), QStringList({"V", "Bar", "Km/h"}));
    EXPECT_EQ(proxy.uniqueListForProperty("Ferrin/Name", 2), QStringList({"Delta", "Alpha"}));
    EXPECT_EQ(proxy.uniqueListForProperty("Ferrin/Name", 1), QStringList({"Delta"}));
    EXPECT_EQ(proxy.uniqueListForProperty("CAN/MessageID", 0), QStringList({"0xff", "0x10"}));
    proxy.setSortProperty("Ferrin/Name");
    proxy.setSearchString("h");
    EXPECT_EQ(proxy.uniqueListForProperty("Ferrin/Name"), QStringList({"Alpha", "Charlie", "Echo"}));
    EXPECT_TRUE(proxy.uniqueListForProperty("Missing").isEmpty());
}

} // namespace
