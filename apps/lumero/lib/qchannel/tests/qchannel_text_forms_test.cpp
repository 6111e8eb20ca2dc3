// The configurable-object face of QChannel: cell texts, editor constraints, constraint
// descriptions, the simple XML form and the first try of item setting.

#include "qchannel_fakes.h"

#include <qchannel/qchannel.h>
#include <qchannel/simple_xml_config.h>

#include <channel_config/boolean_constraints.h>
#include <config_items/range_constraint.h>
#include <lum_config_items/qconfig_value_types.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPointer>
#include <QQmlEngine>

#include <memory>
#include <string>

using lum::qchannel::QChannel;
using qchannel_test::ChannelFactory;
namespace ci = config_items;
namespace cc = channel_config;

namespace {

class QChannelTextForms : public ::testing::Test
{
protected:
    void set(const std::string& key, ferrin::ConfigItem item)
    {
        channel->getItemStore()->set(key, std::move(item));
    }
    std::string text(const std::string& key) const { return cc::toString(channel->getConfigItem(key)); }

    ChannelFactory factory{10.0};
    std::shared_ptr<lum::data::SyncScalarChannel> channel = factory.sync("speed", {1.0, 2.0, 3.0});
    QChannel qchannel{channel};
};

// --- cell texts --------------------------------------------------------------------------

struct RepresentationRow
{
    const char* name;
    const char* key;
    ferrin::ConfigItem item;
    const char* text;
};

void PrintTo(const RepresentationRow& row, std::ostream* out)
{
    *out << row.name;
}

class StringRepresentation : public QChannelTextForms, public ::testing::WithParamInterface<RepresentationRow>
{};

TEST_P(StringRepresentation, ShowsTheItemAsACell)
{
    set(GetParam().key, GetParam().item);
    EXPECT_EQ(qchannel.getStringRepresentation(GetParam().key), QString(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Items, StringRepresentation,
    ::testing::Values(
        RepresentationRow{"message_id_in_hex", "CAN/MessageID", ci::SingleValueConfigItem<unsigned int>(255),
                          "0xff"},
        RepresentationRow{"message_id_zero", "CAN/MessageID", ci::SingleValueConfigItem<int>(0), "0x0"},
        RepresentationRow{"message_id_not_a_number", "CAN/MessageID", ci::StringConfigItem("none"), ""},
        RepresentationRow{"other_key_by_value", "Count", ci::SingleValueConfigItem<int>(255), "255"},
        RepresentationRow{"flag", "Used", ci::SingleValueConfigItem<bool>(false), "false"},
        RepresentationRow{"text", "Ferrin/Name", ci::StringConfigItem("rpm"), "rpm"},
        RepresentationRow{"empty_key", "", ci::StringConfigItem("x"), ""}),
    [](const auto& info) { return std::string(info.param.name); });

// --- editor constraints ------------------------------------------------------------------

TEST_F(QChannelTextForms, ConstraintsAreBuiltOnceAndDroppedWithTheirKey)
{
    set("Gain", ci::ScalarConfigItem(1, "mV"));
    channel->getItemStore()->setConstraints(
        "Gain", {std::make_shared<ci::ValueRangeConstraint<ci::ScalarConfigItem>>(
                     ci::ScalarConfigItem(0, "mV"), ci::ScalarConfigItem(500, "mV")),
                 std::make_shared<ci::ValueRangeConstraint<ci::ScalarConfigItem>>(
                     ci::ScalarConfigItem(0, "V"), ci::ScalarConfigItem(2, "V"))});
    QPointer<ferrin_config::QCellEditorConstraints> first = qchannel.getPropertyConstraints("Gain");
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(qchannel.getPropertyConstraints("Gain"), first.data());
    EXPECT_EQ(first->unit(), QString("mV"));
    EXPECT_DOUBLE_EQ(first->maxValue(), 2000);
    EXPECT_EQ(QQmlEngine::objectOwnership(first.data()), QQmlEngine::CppOwnership);

    channel->notifyConfigItemChanged("Gain");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    EXPECT_NE(qchannel.getPropertyConstraints("Gain"), nullptr);
}

TEST_F(QChannelTextForms, DescriptionsOneLinePerConstraint)
{
    set("Count", ci::SingleValueConfigItem<int>(1));
    channel->getItemStore()->setConstraints("Count", {std::make_shared<cc::ReadOnlyConstraint>(true),
                                                      std::make_shared<ci::ValueRangeConstraint<int>>(1, 9)});
    EXPECT_EQ(qchannel.getConstraintDescriptions("Count"),
              QStringList({"ReadOnly: true", "Range: [1, 9] (SInt)"}));
    EXPECT_TRUE(qchannel.getConstraintDescriptions("Unit").isEmpty());
}

// --- first try of item setting -----------------------------------------------------------

TEST_F(QChannelTextForms, AValueTypeOrBareNumberKeepsTheItemsKind)
{
    set("Gain", ci::ScalarConfigItem(1, "mV"));
    EXPECT_TRUE(qchannel.setConfigItem("Gain", 3));
    EXPECT_EQ(text("Gain"), "3 mV");
    EXPECT_TRUE(qchannel.setConfigItem("Gain", QVariant::fromValue(ferrin_config::QScalar(2, "V"))));
    EXPECT_EQ(text("Gain"), "2 V");
    EXPECT_TRUE(qchannel.setConfigItem("Gain", QString("4,5 uV")));
    EXPECT_EQ(text("Gain"), "4.5 uV");
}

// --- simple XML form ---------------------------------------------------------------------

TEST(SimpleXmlForm, WritesKeysAsCommentsAndDerivedValuesOnlyAsComments)
{
    ferrin::ConfigItemStore store;
    store.set("Ferrin/Name", ci::StringConfigItem("a<b"));
    store.set("ACTION:Zero", ci::SingleValueConfigItem<bool>(true));
    store.set("ID:Connector", ci::StringConfigItem("X1"));
    store.set("Ferrin/UserChannelTags", ci::ValueListConfigItem<std::string>({"t"}));
    store.set("Gain", ci::ScalarConfigItem(2.5, "mV"));
    store.set("Rate", ci::SingleValueConfigItem<double>(100));
    store.setConstraints("Rate", {std::make_shared<cc::DerivedValueConstraint>(true)});
    store.set("Empty", ci::StringConfigItem(""));

    EXPECT_EQ(lum::qchannel::writeSimpleXmlConfig(lum::qchannel::simpleXmlEntries(store)),
              "<?xml version=\"1.0\"?>\n"
              "<Channel>\n"
              "\t<!--Ferrin/Name-->\n"
              "\t<Ferrin-Name>a&lt;b</Ferrin-Name>\n"
              "\t<!--Gain-->\n"
              "\t<Gain>2.5 mV</Gain>\n"
              "\t<!--Rate-->\n"
              "\t<!--<Rate>100</Rate>-->\n"
              "\t<!--Empty-->\n"
              "\t<Empty />\n"
              "</Channel>\n");
}

TEST_F(QChannelTextForms, TheFormReadsBackWhatItWrote)
{
    set("Gain", ci::ScalarConfigItem(2.5, "mV"));
    set("Span", ci::RangeConfigItem<double>(-5, 5, "V", "V"));
    set("Points", ci::ValueListConfigItem<ci::TupleValue<double, double>>({{1, 2}, {3, 4.5}}));
    set("Mode", ci::SingleValueConfigItem(cc::UserScalingMode::TWO_POINT));
    set("Note", ci::StringConfigItem("  two\r\nlines "));
    set("Rate", ci::SingleValueConfigItem<double>(100));
    channel->getItemStore()->setConstraints("Rate", {std::make_shared<cc::DerivedValueConstraint>(true)});
    const QString written = qchannel.getSimpleXmlConfigRepresentation();

    set("Gain", ci::ScalarConfigItem(1, "V"));
    set("Span", ci::RangeConfigItem<double>(0, 1, "", ""));
    set("Points", ci::ValueListConfigItem<ci::TupleValue<double, double>>());
    set("Mode", ci::SingleValueConfigItem(cc::UserScalingMode::SCALE));
    set("Note", ci::StringConfigItem(""));
    set("Rate", ci::SingleValueConfigItem<double>(7));
    set("Ferrin/Name", ci::StringConfigItem("other"));

    EXPECT_TRUE(qchannel.setSimpleXmlConfigRepresentation(written));
    EXPECT_EQ(text("Gain"), "2.5 mV");
    EXPECT_EQ(text("Span"), "-5 V .. 5 V");
    EXPECT_EQ(text("Points"), "(1,2), (3,4.5)");
    EXPECT_EQ(text("Mode"), "TwoPoint");
    EXPECT_EQ(text("Note"), "  two\r\nlines ");
    EXPECT_EQ(text("Ferrin/Name"), "speed");
    EXPECT_EQ(text("Rate"), "7") << "a derived value is not read back";
    EXPECT_EQ(qchannel.getSimpleXmlConfigRepresentation().replace("<Rate>7</Rate>", "<Rate>100</Rate>"),
              written);
}

struct BadFormRow
{
    const char* name;
    const char* text;
    /// The text of item "Count" afterwards: "5" as it was, or what a good entry set.
    const char* count;
};

void PrintTo(const BadFormRow& row, std::ostream* out)
{
    *out << row.name;
}

class BadSimpleXml : public QChannelTextForms, public ::testing::WithParamInterface<BadFormRow>
{};

TEST_P(BadSimpleXml, RefusesWithoutLosingAnItem)
{
    set("Count", ci::SingleValueConfigItem<int>(5));
    EXPECT_FALSE(qchannel.setSimpleXmlConfigRepresentation(GetParam().text));
    EXPECT_EQ(text("Count"), GetParam().count);
    EXPECT_EQ(text("Ferrin/Name"), "speed");
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BadSimpleXml,
    ::testing::Values(
        BadFormRow{"empty", "", "5"}, BadFormRow{"not_xml", "Count=6", "5"},
        BadFormRow{"unclosed", "<Channel><!--Count--><Count>6</Count>", "5"},
        BadFormRow{"other_root", "<Device><!--Count--><Count>6</Count></Device>", "5"},
        BadFormRow{"value_refused_by_parser", "<Channel><!--Count--><Count>six</Count></Channel>", "5"},
        BadFormRow{"unknown_key_others_still_set",
                   "<Channel><!--Nope--><Nope>1</Nope><!--Count--><Count>6</Count></Channel>", "6"},
        BadFormRow{"element_without_key_comment", "<Channel><Count>6</Count></Channel>", "5"},
        BadFormRow{"element_of_another_key", "<Channel><!--Count--><Other>6</Other></Channel>", "5"},
        BadFormRow{"nested_element", "<Channel><!--Count--><Count><b>6</b></Count></Channel>", "5"},
        BadFormRow{"skipped_key_not_read", "<Channel><!--ID:Count--><ID:Count>6</ID:Count></Channel>", "5"},
        BadFormRow{"key_without_value", "<Channel><!--Count--></Channel>", "5"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SimpleXmlForm, CdataAndDerivedCommentsAreReadAndStrayTextCounted)
{
    const auto read = lum::qchannel::readSimpleXmlConfig(
        "<Channel> <!--a/b--> <a-b><![CDATA[x<y]]></a-b>\r\n\t<!--c--><!--<c>1</c>--></Channel>");
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->passed_over, 0u);
    ASSERT_EQ(read->entries.size(), 2u);
    EXPECT_EQ(read->entries[0], (lum::qchannel::SimpleXmlEntry{"a/b", "x<y", false}));
    EXPECT_EQ(read->entries[1], (lum::qchannel::SimpleXmlEntry{"c", "1", true}));
    // Blank text between elements passes; other text is passed over and counted.
    EXPECT_EQ(lum::qchannel::readSimpleXmlConfig("<Channel> x <!--c--><c>1</c></Channel>")->passed_over, 1u);
}

} // namespace
