// Any bytes as a setup text: what one read keeps, a write and a second read keep
// exactly, so the second write gives the text of the first.
#include <om_model/if_channel_fetcher.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>

#include <channel_config/channel_id.h>
#include <uni_base/uni_log.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {
class NoChannels : public overmap::IfChannelFetcher
{
public:
    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID) override { return nullptr; }
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string) override { return nullptr; }
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = (uni::initConsoleLogging(SEV_FATAL), true);
    (void)quiet;
    NoChannels fetcher;
    overmap::ObjectManager first_manager;
    if (!overmap::XmlReadWriter(&first_manager, &fetcher)
             .read(std::string(reinterpret_cast<const char*>(data), size)))
        return 0;
    std::string first;
    overmap::XmlReadWriter(&first_manager, &fetcher).write(first);

    overmap::ObjectManager second_manager;
    overmap::XmlReadWriter(&second_manager, &fetcher).read(first);
    std::string second;
    overmap::XmlReadWriter(&second_manager, &fetcher).write(second);
    if (second != first) {
        std::fprintf(stderr, "first write:\n%s\nsecond write:\n%s\n", first.c_str(), second.c_str());
        std::abort();
    }
    return 0;
}
