// Two unit texts separated by the first newline. A lookup never crashes, finds only
// whole spellings, and a conversion succeeds exactly when both units are known;
// the value converted there and back comes back (up to rounding).
#include <uni_units/converter.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = input.find('\n');
    const std::string from = input.substr(0, split);
    const std::string to = split == std::string::npos ? std::string("V") : input.substr(split + 1);

    const units::simple::Converter converter;
    const bool known = converter.find(from) && converter.find(to);
    if (from.empty() && converter.find(from))
        std::abort();

    double there = -1;
    if (converter.convert(1.5, from, &there, to) != known)
        std::abort();
    if (!known) {
        if (there != -1)
            std::abort(); // a failed conversion wrote its result
        return 0;
    }
    double back = 0;
    if (!converter.convert(there, to, &back, from))
        std::abort();
    if (std::isfinite(there) && there != 0 && std::isfinite(back) && std::fabs(back - 1.5) > 1e-9)
        std::abort();
    return 0;
}
