// Any bytes as a vehicle document: loading never crashes, and what a car saves it
// loads back with the same POIs and outline.
#include <om_model/car.h>

#include <math_geo/projection_plane.h>
#include <uni_base/uni_log.h>

#include <pugixml.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = (uni::initConsoleLogging(SEV_FATAL), true);
    (void)quiet;
    pugi::xml_document document;
    if (!document.load_buffer(data, size))
        return 0;
    const math_geo::ProjectionPlane plane;
    overmap::Car car(&plane);
    car.loadVehicle(document);
    if (car.poiCount() == 0)
        std::abort(); // "Center" is always there

    pugi::xml_document saved;
    car.saveVehicle(saved);
    overmap::Car copy(&plane);
    if (!copy.loadVehicle(saved))
        std::abort();
    if (copy.poiCount() != car.poiCount())
        std::abort();
    bool finite = true;
    for (const math_geo::Point2D& point : car.getContour())
        finite = finite && std::isfinite(point.x) && std::isfinite(point.y);
    if (finite && copy.getContour().size() != car.getContour().size())
        std::abort();
    return 0;
}
