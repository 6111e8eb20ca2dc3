// Any bytes as a setup text: reading never crashes, and whatever it keeps can be
// written out again.
#include <om_model/if_channel_fetcher.h>
#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>

#include <channel_config/channel_id.h>
#include <uni_base/uni_log.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {
/// A host without channels: every look-up misses, so the fall-back paths run.
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
    overmap::ObjectManager manager;
    overmap::XmlReadWriter reader(&manager, &fetcher);
    reader.read(std::string(reinterpret_cast<const char*>(data), size));
    std::string text;
    reader.write(text);
    if (text.empty())
        std::abort();
    return 0;
}
