#include "import_common.h"

#include <lum_import/importers.h>

#include <GeographicLib/Geodesic.hpp>
#include <pugixml.hpp>

#include <cstdint>
#include <cstring>
#include <limits>

namespace lum::import {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double MS_TO_KMH = 3.6;
// Below this step the bearing between two fixes is noise, not a course.
constexpr double MIN_HEADING_STEP_M = 0.5;

const char* localName(const pugi::xml_node& node)
{
    const char* name = node.name();
    const char* colon = std::strrchr(name, ':');
    return colon != nullptr ? colon + 1 : name;
}

bool named(const pugi::xml_node& node, const char* name)
{
    return node.type() == pugi::node_element && std::strcmp(localName(node), name) == 0;
}

struct Point
{
    std::int64_t whole_seconds;
    double fraction;
    double time; // seconds since the first point, formed once all are read
    double lat;
    double lon;
    double ele;
    double speed_ms; // from the file (GPX 1.0 <speed>), NaN when absent
    std::size_t index;
};

ImportResult importGpxDocument(const pugi::xml_document& doc, const pugi::xml_parse_result& parsed,
                               const std::string& source)
{
    Recording rec;
    rec.source = source;
    rec.format = "GPX";
    rec.start_time = NaN;
    ImportResult failed;

    if (!parsed) {
        failed.error = source + ": not readable as XML: " + parsed.description() + " at byte " +
                       std::to_string(parsed.offset);
        return failed;
    }
    const pugi::xml_node gpx = doc.document_element();
    if (!named(gpx, "gpx")) {
        failed.error = source + ": not a GPX document (root element is not gpx)";
        return failed;
    }

    std::vector<Point> points;
    std::size_t untimed = 0;
    std::size_t index = 0;
    bool utc_all = true;
    for (pugi::xml_node trk : gpx.children()) {
        if (!named(trk, "trk"))
            continue;
        for (pugi::xml_node seg : trk.children()) {
            if (!named(seg, "trkseg"))
                continue;
            for (pugi::xml_node pt : seg.children()) {
                if (!named(pt, "trkpt"))
                    continue;
                ++index;
                ++rec.lines;
                const auto lat = detail::toDouble(pt.attribute("lat").value());
                const auto lon = detail::toDouble(pt.attribute("lon").value());
                std::int64_t whole_seconds = 0;
                double fraction = 0.0;
                bool utc = false;
                // One walk over the point's children finds the first of each.
                pugi::xml_node time_node, ele_node, speed_node;
                for (pugi::xml_node c : pt.children()) {
                    if (c.type() != pugi::node_element)
                        continue;
                    const char* name = localName(c);
                    if (!time_node && std::strcmp(name, "time") == 0)
                        time_node = c;
                    else if (!ele_node && std::strcmp(name, "ele") == 0)
                        ele_node = c;
                    else if (!speed_node && std::strcmp(name, "speed") == 0)
                        speed_node = c;
                }
                if (!time_node) {
                    ++untimed;
                    detail::countBad(rec, index);
                    continue;
                }
                if (!lat || !lon || std::fabs(*lat) > 90.0 || std::fabs(*lon) > 180.0 ||
                    !parseIsoTime(time_node.text().get(), whole_seconds, fraction, utc)) {
                    detail::countBad(rec, index);
                    continue;
                }
                utc_all = utc_all && utc;
                const auto ele = detail::toDouble(ele_node.text().get());
                const auto speed = detail::toDouble(speed_node.text().get());
                points.push_back({whole_seconds, fraction, NaN, *lat, *lon, ele.value_or(NaN),
                                  speed.value_or(NaN), index});
            }
        }
    }
    if (points.empty()) {
        if (untimed > 0)
            failed.error = source + ": the track has no times (" + std::to_string(untimed) +
                           " points): it cannot be replayed";
        else if (rec.bad_lines > 0)
            failed.error = source + ": no usable track point (" + std::to_string(rec.bad_lines) +
                           " malformed, first is point " + std::to_string(rec.first_bad_line) + ")";
        else
            failed.error = source + ": no track points (trk/trkseg/trkpt) in the file";
        return failed;
    }

    rec.channels = {{"latitude", "\u00b0", {}, {}},
                    {"longitude", "\u00b0", {}, {}},
                    {"altitude", "m", {}, {}},
                    {"heading", "\u00b0", {}, {}},
                    {"speed", "km/h", {}, {}}};
    ImportedChannel& lat_ch = rec.channels[0];
    ImportedChannel& lon_ch = rec.channels[1];
    ImportedChannel& alt_ch = rec.channels[2];
    ImportedChannel& heading_ch = rec.channels[3];
    ImportedChannel& speed_ch = rec.channels[4];

    // At most one sample per point (and one more heading): no channel grows by copying.
    for (ImportedChannel* ch : {&lat_ch, &lon_ch, &speed_ch, &heading_ch}) {
        ch->times.reserve(points.size() + (ch == &heading_ch ? 1 : 0));
        ch->values.reserve(ch->times.capacity());
    }
    if (!std::isnan(points.front().ele)) {
        alt_ch.times.reserve(points.size());
        alt_ch.values.reserve(points.size());
    }

    const GeographicLib::Geodesic& geodesic = GeographicLib::Geodesic::WGS84();
    // Whole seconds and fractions meet only in the time since the first point: evenly spaced
    // fixes stay evenly spaced to the last bit a small number has.
    const Point& first = points.front();
    const double origin = static_cast<double>(first.whole_seconds) + first.fraction;
    for (Point& p : points)
        p.time = static_cast<double>(p.whole_seconds - first.whole_seconds) + (p.fraction - first.fraction);
    const Point* prev = nullptr;
    for (const Point& p : points) {
        const double t = p.time;
        if (!detail::appendSample(lat_ch, t, p.lat)) {
            detail::countBad(rec, p.index); // time repeated or going back
            continue;
        }
        detail::appendSample(lon_ch, t, p.lon);
        if (!std::isnan(p.ele))
            detail::appendSample(alt_ch, t, p.ele);
        double speed_kmh = std::isnan(p.speed_ms) ? NaN : p.speed_ms * MS_TO_KMH;
        if (prev != nullptr) {
            double distance = 0.0, azi1 = 0.0, azi2 = 0.0;
            geodesic.Inverse(prev->lat, prev->lon, p.lat, p.lon, distance, azi1, azi2);
            if (distance >= MIN_HEADING_STEP_M) {
                const double heading = azi1 < 0.0 ? azi1 + 360.0 : azi1;
                // The first fix has no predecessor: it takes the first leg's bearing.
                if (heading_ch.times.empty() && prev == &points.front())
                    detail::appendSample(heading_ch, 0.0, heading);
                detail::appendSample(heading_ch, t, heading >= 360.0 ? 0.0 : heading);
            }
            if (std::isnan(speed_kmh))
                speed_kmh = distance / (p.time - prev->time) * MS_TO_KMH;
        }
        if (!std::isnan(speed_kmh))
            detail::appendSample(speed_ch, t, speed_kmh);
        prev = &p;
    }
    rec.start_time_utc = utc_all;
    return detail::finish(std::move(rec), origin);
}

} // namespace

ImportResult importGpxText(std::string_view text, const std::string& source)
{
    pugi::xml_document doc;
    const pugi::xml_parse_result parsed = doc.load_buffer(text.data(), text.size());
    return importGpxDocument(doc, parsed, source);
}

ImportResult importGpx(const std::string& path)
{
    std::string text;
    ImportResult failed;
    if (!detail::readFile(path, text, failed.error))
        return failed;
    // The file's own bytes are parsed where they lie rather than copied first.
    pugi::xml_document doc;
    const pugi::xml_parse_result parsed = doc.load_buffer_inplace(text.data(), text.size());
    return importGpxDocument(doc, parsed, path);
}

} // namespace lum::import
