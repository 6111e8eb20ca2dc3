// Any bytes as the command line of overmap-replay, one argument a line: the parser answers
// options or one error line, never a crash, and a picture size it takes is in range.
#include <overmap_replay/replay_options.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

bool sizeInRange(int width, int height)
{
    return width >= overmap_replay::MIN_PICTURE_SIDE && width <= overmap_replay::MAX_PICTURE_SIDE &&
           height >= overmap_replay::MIN_PICTURE_SIDE && height <= overmap_replay::MAX_PICTURE_SIDE;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> args;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        args.push_back(text.substr(start, end - start));
        start = end + 1;
    }

    const auto parsed = overmap_replay::parseArguments(args);
    if (parsed.error.find('\n') != std::string::npos)
        std::abort(); // errors are one line
    if (parsed.error.empty() && !sizeInRange(parsed.options.png_width, parsed.options.png_height))
        std::abort();

    int width = 100;
    int height = 200;
    if (overmap_replay::parsePictureSize(text, width, height) ? !sizeInRange(width, height)
                                                              : (width != 100 || height != 200))
        std::abort(); // a refused size leaves the numbers alone
    return 0;
}
