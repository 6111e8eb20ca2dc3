// Any bytes as a vehicle file of the contour editor and of a car: loading never
// crashes, a failed load leaves the editor as it was, and what the editor saves it
// loads back with the same contour and axes.
#include <om_ui/contour_setup.h>
#include <om_ui/qcar.h>

#include <om_model/car.h>

#include <math_geo/projection_plane.h>
#include <uni_base/uni_log.h>

#include <QTemporaryDir>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = (uni::initConsoleLogging(SEV_FATAL), true);
    (void)quiet;
    static QTemporaryDir dir;
    const QString path = dir.filePath("vehicle.xml");
    std::ofstream(path.toStdString(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const QUrl url = QUrl::fromLocalFile(path);

    lum_utils::ImageStore store;
    overmap_ui::ContourSetup setup;
    setup.setImageStore(&store);
    setup.setDescription("before");
    if (!setup.loadVehicle(url)) {
        if (setup.description() != "before" || setup.contourPointCount() != 8 ||
            !setup.vehicleFile().isEmpty())
            std::abort();
    } else {
        bool finite = std::isfinite(setup.mainAxisPt1().x()) && std::isfinite(setup.minorAxisPt2().y());
        for (int i = 0; i < setup.contourPointCount(); ++i)
            finite = finite && std::isfinite(setup.getContourPoint(i).x()) &&
                     std::isfinite(setup.getContourPoint(i).y());
        const QString saved_path = dir.filePath("saved.xml");
        if (finite && setup.saveVehicle(QUrl::fromLocalFile(saved_path))) {
            overmap_ui::ContourSetup copy;
            if (!copy.loadVehicle(QUrl::fromLocalFile(saved_path)))
                std::abort();
            if (copy.contourPointCount() != setup.contourPointCount() && setup.contourPointCount() >= 2)
                std::abort();
        }
    }

    const math_geo::ProjectionPlane plane;
    overmap_ui::QCar car(std::make_shared<overmap::Car>(&plane), nullptr);
    car.loadFromXML(url);
    car.loadContour(url);
    for (int i = 0; i < car.getContourPointCount(); ++i)
        car.getContourPoint(i);
    return 0;
}
