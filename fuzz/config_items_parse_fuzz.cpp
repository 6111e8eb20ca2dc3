// First byte: which alternative the target holds; the rest: the text to read into it.
// A parse never throws or crashes, a failure leaves the target alone, and for the
// alternatives whose text form is exact, what was read prints and reads back the same.
#include <config_items/parse_string_visitor.h>

#include <uni_base/uni_assert.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// Unimplemented readers and zero denominators assert by design; fuzzing wants them quiet.
int quietAssertHandler(const char*, const char*, const char*, int)
{
    return 1;
}

bool printsExactly(std::size_t index)
{
    using namespace config_items;
    using namespace channel_config;
    switch (index) {
    case configItemIndex<StringConfigItem>:
    case configItemIndex<SingleValueConfigItem<double>>:
    case configItemIndex<SingleValueConfigItem<int>>:
    case configItemIndex<SingleValueConfigItem<unsigned int>>:
    case configItemIndex<SingleValueConfigItem<bool>>:
    case configItemIndex<ValueListConfigItem<std::string>>:
    case configItemIndex<ValueListConfigItem<TupleValue<double, double>>>:
    case configItemIndex<SingleValueConfigItem<UserScalingMode>>:
    case configItemIndex<SingleValueConfigItem<DAQChannelType>>:
    case configItemIndex<SingleValueConfigItem<DAQSampleResolution>>:
    case configItemIndex<SingleValueConfigItem<PhysicalQuantity>>:
    case configItemIndex<SingleValueConfigItem<ChannelID>>:
    case configItemIndex<RationalScalarConfigItem>:
        return true;
    default:
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    uni::setAssertHandler(&quietAssertHandler);
    const std::size_t index = data[0] % channel_config::CONFIG_ITEM_COUNT;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);

    const auto start = channel_config::makeConfigItem(index);
    if (!start)
        std::abort();
    channel_config::ConfigItemVariant item = *start;
    const channel_config::ParseStringVisitor parser;
    if (!parser.parse(text, item)) {
        if (!(item == *start))
            std::abort(); // a failed parse wrote into the item
        return 0;
    }
    if (item.index() != index)
        std::abort();
    const std::string printed = channel_config::toString(item);
    (void)channel_config::configItemTypeName(item);
    if (printsExactly(index)) {
        channel_config::ConfigItemVariant again = *start;
        if (!parser.parse(printed, again) || !(again == item))
            std::abort();
    }
    return 0;
}
