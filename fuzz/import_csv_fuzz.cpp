// Any bytes: the reader answers a recording or an error, never a crash.
#include <lum_import/importers.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto result =
        lum::import::importCsvText(std::string_view(reinterpret_cast<const char*>(data), size));
    if (result.ok != result.error.empty())
        std::abort(); // success carries no error; a failure always says why
    if (!result.ok)
        return 0;
    for (const auto& channel : result.recording.channels) {
        if (channel.times.size() != channel.values.size())
            std::abort();
        for (std::size_t i = 1; i < channel.times.size(); ++i)
            if (!(channel.times[i] > channel.times[i - 1]))
                std::abort(); // times stay strictly increasing
    }
    return 0;
}
