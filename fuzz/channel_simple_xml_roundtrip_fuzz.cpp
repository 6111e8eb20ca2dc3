// Any bytes as the simple XML form of a channel. Two fixed points: the entries that one
// read keeps are written and read back exactly; and once read into typed items, the
// channel's form read into those items again changes none of them, so it writes the
// same text. An item whose own text does not read back as itself is left out of the
// second check: that is a loss of the item texts, not of this form. Fuzzing found three:
// a generic enumeration whose value holds a ":", a decorated number whose decorations
// hold control characters or border on its digits ("0" before "9"), and a range that
// prints an exponent its pattern cannot read.
#include <qchannel/simple_xml_config.h>

#include <channel_config/boolean_constraints.h>
#include <config_items/config_item_variant.h>
#include <config_items/parse_string_visitor.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

namespace ci = config_items;
namespace cc = channel_config;
using lum::qchannel::SimpleXmlEntry;

/// A channel with an item of each kind the form commonly carries.
std::unique_ptr<ferrin::ConfigItemStore> makeStore()
{
    auto store = std::make_unique<ferrin::ConfigItemStore>();
    store->set("Ferrin/Name", ci::StringConfigItem("speed"));
    store->set("Used", ci::SingleValueConfigItem<bool>(true));
    store->set("Gain", ci::ScalarConfigItem(2.5, "mV"));
    store->set("Offset", ci::SingleValueConfigItem<double>(0.1));
    store->set("Count", ci::SingleValueConfigItem<int>(-3));
    store->set("Size", ci::SingleValueConfigItem<unsigned int>(8));
    store->set("Span", ci::RangeConfigItem<double>(-5, 5, "V", "V"));
    store->set("Tags", ci::ValueListConfigItem<std::string>({"a", "b"}));
    store->set("Points", ci::ValueListConfigItem<ci::TupleValue<double, double>>({{1, 2}}));
    store->set("Label", ci::DecoratedNumberConfigItem(12, "#", "pcs"));
    store->set("Mode", ci::SingleValueConfigItem(cc::UserScalingMode::SCALE));
    store->set("ChannelType", ci::SingleValueConfigItem(cc::DAQChannelType::ANALOG));
    store->set("Stored", ci::GenericEnumConfigItem("ChannelStored", "Auto"));
    store->set("Source", ci::SingleValueConfigItem(cc::ChannelID(1, 2)));
    store->set("Ratio", ci::RationalScalarConfigItem(1, 3, "m"));
    store->set("Rate", ci::SingleValueConfigItem<double>(100));
    store->setConstraints("Rate", {std::make_shared<cc::DerivedValueConstraint>(true)});
    store->set("ID:Connector", ci::StringConfigItem("X1"));
    return store;
}

void apply(const std::vector<SimpleXmlEntry>& entries, ferrin::ConfigItemStore& store)
{
    for (auto& [key, item] : lum::qchannel::parseSimpleXmlEntries(entries, store).items)
        store.set(key, std::move(item));
}

/// Whether the text of @p item reads back as another value.
bool printsAmbiguously(const ferrin::ConfigItem& item)
{
    ferrin::ConfigItem again = item;
    try {
        if (!cc::ParseStringVisitor().parse(cc::toString(item), again))
            return false; // refused: the item stays as it is
    } catch (const std::exception&) {
        return false;
    }
    return !cc::asConfigItem(again).equals(cc::asConfigItem(item));
}

void requireSame(const std::string& expected, const std::string& actual)
{
    if (actual == expected)
        return;
    std::fprintf(stderr, "expected:\n%s\nactual:\n%s\n", expected.c_str(), actual.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto first =
        lum::qchannel::readSimpleXmlConfig(std::string(reinterpret_cast<const char*>(data), size));
    if (!first)
        return 0;

    // The entries as read: written, they read back as the same entries.
    const std::string written = lum::qchannel::writeSimpleXmlConfig(first->entries);
    const auto again = lum::qchannel::readSimpleXmlConfig(written);
    if (!again || again->passed_over != 0 || !(again->entries == first->entries)) {
        std::fprintf(stderr, "entries differ after reading:\n%s\n", written.c_str());
        std::abort();
    }
    requireSame(written, lum::qchannel::writeSimpleXmlConfig(again->entries));

    // Into typed items: what the channel then writes, read into it again, changes nothing.
    const auto store = makeStore();
    apply(first->entries, *store);
    for (const std::string& key : store->keys())
        if (printsAmbiguously(*store->get(key)))
            store->remove(key);
    const std::string channel_form =
        lum::qchannel::writeSimpleXmlConfig(lum::qchannel::simpleXmlEntries(*store));
    const auto channel_read = lum::qchannel::readSimpleXmlConfig(channel_form);
    if (!channel_read || channel_read->passed_over != 0)
        std::abort();
    apply(channel_read->entries, *store);
    requireSame(channel_form, lum::qchannel::writeSimpleXmlConfig(lum::qchannel::simpleXmlEntries(*store)));
    return 0;
}
