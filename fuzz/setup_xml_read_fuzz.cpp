// Any bytes as a setup text: reading never crashes, and whatever it keeps can be
// written out again.
#include "setup_xml_fuzz_support.h"

#include <om_model/object_manager.h>
#include <om_model/overmap_xml_read_writer.h>

#include <uni_base/uni_log.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = (uni::initConsoleLogging(SEV_FATAL), true);
    (void)quiet;
    setup_fuzz::NoChannels fetcher;
    overmap::ObjectManager manager;
    overmap::XmlReadWriter reader(&manager, &fetcher);
    reader.read(std::string(reinterpret_cast<const char*>(data), size));
    std::string text;
    reader.write(text);
    if (text.empty())
        std::abort();
    return 0;
}
