// Any bytes as a contour text file: the car takes a centred outline of at least three
// vertices or stays exactly as it was; never a crash.
#include <om_model/car.h>

#include <math_geo/projection_plane.h>
#include <uni_base/uni_log.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {
const std::string& scratchFile()
{
    static const std::string path = [] {
        uni::initConsoleLogging(SEV_FATAL);
        char name[] = "/tmp/om_contour_fuzz_XXXXXX";
        const int fd = ::mkstemp(name);
        if (fd < 0)
            std::abort();
        ::close(fd);
        return std::string(name);
    }();
    return path;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string& path = scratchFile();
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    const math_geo::ProjectionPlane plane;
    overmap::Car car(&plane);
    const std::vector<math_geo::Point2D> before = car.getContour();
    const bool loaded = car.loadContourFile(path);
    if (!loaded && car.getContour() != before)
        std::abort(); // a rejected file leaves the car as it was
    if (loaded && car.getContour().size() < 3)
        std::abort();
    if (car.poiCount() < 7)
        std::abort(); // the seven standard POIs survive any outline
    return 0;
}
