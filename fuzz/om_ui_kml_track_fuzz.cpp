// Any bytes as a KML file imported into a track path: the import never crashes, a failed
// import leaves the track as it was, and the segments of an imported track have finite
// corners.
#include <om_ui/qtrack.h>

#include <om_model/track_path.h>

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
    const QString path = dir.filePath("track.kml");
    std::ofstream(path.toStdString(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

    const math_geo::ProjectionPlane plane(math_geo::GeoPosition(48.2, 11.6), 0.0,
                                          math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
    auto model = std::make_shared<overmap::TrackPath>(&plane);
    model->setPositions({math_geo::GeoPosition(48.2, 11.6), math_geo::GeoPosition(48.21, 11.6)});
    overmap_ui::QTrackPath track(model, nullptr);
    if (!track.loadKmlFile(QUrl::fromLocalFile(path))) {
        if (track.trackPointCount() != 2)
            std::abort();
        return 0;
    }
    const overmap_ui::QTrackSegmentList* segments = track.segments();
    for (int i = 0; i < segments->size(); ++i) {
        const overmap_ui::QTrackSegment* segment = segments->at(i);
        for (const QGeoCoordinate& corner :
             {segment->posA(), segment->posB(), segment->posC(), segment->posD()})
            if (!std::isfinite(corner.latitude()) || !std::isfinite(corner.longitude()))
                std::abort();
    }
    return 0;
}
