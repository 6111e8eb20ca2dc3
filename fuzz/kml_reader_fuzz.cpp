// Any bytes as a KML file: the reader answers true or false, never a crash, hang or leak, and every
// position it hands back was read from the text.
#include <math_geo/kml_reader.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The reader takes a file name, so the input goes through a file of this process's own.
    static const std::string path = "/tmp/kml_reader_fuzz_" + std::to_string(::getpid()) + ".kml";
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        std::abort();
    if (size > 0 && std::fwrite(data, 1, size, file) != size)
        std::abort();
    std::fclose(file);

    std::vector<math_geo::GeoPosition> positions = {math_geo::GeoPosition(1.0, 2.0)};
    const bool ok = math_geo::readKmlFile(path, positions);
    if (!ok && positions.size() > 1)
        std::abort(); // a refused file adds nothing
    std::remove(path.c_str());
    return 0;
}
