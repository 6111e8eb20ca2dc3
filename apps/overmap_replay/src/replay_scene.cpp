#include <overmap_replay/replay_scene.h>

#include <om_model/position_object.h>

#include <ferrin_core/data_regions_manager.h>
#include <ferrin_core/scalar_channel.h>
#include <ferrin_core/tick_arithmetic.h>

#include <fmt/format.h>
#include <pugixml.hpp>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <ostream>

namespace overmap_replay {

namespace {

__extension__ typedef unsigned __int128 Wide;

/// @p value with @p precision decimals, exactly as std::to_chars fixed writes it (ties to
/// even on the exact binary value), from the bits in integer arithmetic: three times as
/// fast. Null when out of its range (9 decimals at most, below 1e9).
char* fixedDecimal(double value, int precision, char* out)
{
    const double magnitude = std::fabs(value);
    if (!(magnitude < 1e9) || precision < 0 || precision > 9)
        return nullptr;
    std::uint64_t scale = 1;
    for (int i = 0; i < precision; ++i)
        scale *= 10;
    std::uint64_t bits;
    std::memcpy(&bits, &magnitude, sizeof bits);
    // magnitude = mantissa * 2^-shift, with shift above 0 below 1e9; zero and numbers too
    // small to show (subnormal ones among them) have a shift beyond the product's width.
    const std::uint64_t mantissa = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
    const int shift = 1075 - static_cast<int>(bits >> 52);
    std::uint64_t scaled = 0;
    if (shift < 120) {
        const Wide product = Wide{mantissa} * scale;
        scaled = static_cast<std::uint64_t>(product >> shift);
        const Wide rest = product & ((Wide{1} << shift) - 1);
        const Wide half = Wide{1} << (shift - 1);
        if (rest > half || (rest == half && (scaled & 1) != 0))
            ++scaled;
    }
    if (std::signbit(value))
        *out++ = '-';
    std::uint64_t fraction = scaled % scale;
    out = std::to_chars(out, out + 24, scaled / scale).ptr;
    if (precision > 0) {
        *out++ = '.';
        for (int i = precision - 1; i >= 0; --i) {
            out[i] = static_cast<char>('0' + fraction % 10);
            fraction /= 10;
        }
        out += precision;
    }
    return out;
}

/// Whether @p channel recorded anything around @p time: reading past the last sample
/// would hold it for ever. Channels without a regions manager cannot tell and count as recorded.
bool recordedAt(const ferrin::ScalarChannel& channel, double time)
{
    const auto& time_base = channel.getTimeBase();
    const std::shared_ptr<ferrin::DataRegionsManager> regions = channel.getRegionsManager();
    if (!time_base || !regions)
        return true;
    // What isDataAvailable() asks at level 0, with the manager already in hand: this runs
    // for every object, channel and time.
    const std::shared_ptr<ferrin::DataSource> source = channel.getDataSource();
    const ferrin::Tick tick = ferrin::timeToTickFloor(time, *time_base);
    return source && tick != ferrin::NO_TICK &&
           regions->isAvailable(source->streamId(), ferrin::REGION_KIND_SAMPLES, tick);
}

/// Whether the object's channels give it a place at @p time; objects without channels
/// always have one. Reading ahead keeps update() from logging every gap as an error.
bool positionKnownAt(const overmap::PositionObject& object, double time, int depth = 0)
{
    if (const auto& parent = object.getReferenceObject())
        return depth < 64 && positionKnownAt(*parent, time, depth + 1);
    if (object.isXYPosition() || !object.hasPositionChannels())
        return true;
    const auto& latitude = object.getLatitudeChannel();
    const auto& longitude = object.getLongitudeChannel();
    if ((latitude && !recordedAt(*latitude, time)) || (longitude && !recordedAt(*longitude, time)))
        return false;
    math_geo::GeoPosition position = object.getGeoPosition();
    if (latitude)
        position.latitude = latitude->getValueAtTime(time, nullptr);
    if (longitude)
        position.longitude = longitude->getValueAtTime(time, nullptr);
    return position.valid();
}

bool moves(const overmap::PositionObject& object, int depth = 0)
{
    if (const auto& parent = object.getReferenceObject())
        return depth < 64 && moves(*parent, depth + 1);
    return !object.isXYPosition() && (object.hasPositionChannels() || object.getHeadingChannel());
}

std::string csvText(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

std::string jsonText(const std::string& text)
{
    std::string out = "\"";
    for (char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20)
                out += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
            else
                out += c;
        }
    }
    return out + "\"";
}

} // namespace

ReplayResult replayScene(overmap::ObjectManager& manager, const std::vector<double>& times)
{
    ReplayResult result;
    std::vector<std::shared_ptr<overmap::PositionObject>> objects;
    std::vector<std::size_t> path_index;
    for (const auto& object : manager.getObjects()) {
        auto position_object = std::dynamic_pointer_cast<overmap::PositionObject>(object);
        if (!position_object)
            continue;
        objects.push_back(position_object);
        if (moves(*position_object)) {
            path_index.push_back(result.paths.size());
            result.paths.push_back({position_object->getId(), position_object->getName(), {}});
        } else {
            path_index.push_back(SIZE_MAX);
        }
    }
    result.rows.reserve(times.size() * objects.size());
    for (ObjectPath& path : result.paths)
        path.positions.reserve(times.size());
    for (double time : times) {
        for (std::size_t i = 0; i < objects.size(); ++i) {
            overmap::PositionObject& object = *objects[i];
            const bool valid = positionKnownAt(object, time);
            if (valid)
                object.update(time);
            const math_geo::GeoPosition position = object.getGeoPosition();
            const math_geo::Point2D& xy = object.getXYPosition();
            result.rows.push_back({time, object.getId(), object.getName(), position.latitude,
                                   position.longitude, object.getHeading(), xy.x, xy.y, valid});
            if (valid && path_index[i] != SIZE_MAX)
                result.paths[path_index[i]].positions.push_back(position);
        }
    }
    return result;
}

std::set<std::int32_t> placeScene(overmap::ObjectManager& manager, double time)
{
    std::set<std::int32_t> unplaced;
    for (const auto& object : manager.getObjects()) {
        auto* position_object = dynamic_cast<overmap::PositionObject*>(object.get());
        if (position_object == nullptr)
            continue;
        if (positionKnownAt(*position_object, time))
            position_object->update(time);
        else
            unplaced.insert(position_object->getId());
    }
    return unplaced;
}

void writeCsv(std::ostream& out, const std::vector<ReplayRow>& rows,
              const std::vector<CalculationColumn>& calculations)
{
    out << "time,object_id,name,latitude,longitude,heading,x,y,valid";
    for (const CalculationColumn& column : calculations)
        out << ',' << csvText(column.channel ? column.channel->getName() : std::string());
    out << '\n';
    // The objects of one time share its calculation values.
    std::vector<double> values(calculations.size());
    double values_time = NAN;
    // Rows are most of the tool's work: fixed decimals from the bits (fixedDecimal), else
    // std::to_chars, both several times faster than the stream or fmt. Each field goes
    // straight into a buffer of many rows that the stream gets in large pieces.
    constexpr std::size_t FIELD = 64; // the most one number takes, separator aside
    constexpr std::size_t FLUSH_AT = 1 << 16;
    std::string buffer;
    buffer.reserve(FLUSH_AT + 1024);
    const auto put = [](char* p, double value, int precision) {
        if (char* end = precision < 0 ? nullptr : fixedDecimal(value, precision, p)) {
            *end = ',';
            return end + 1;
        }
        const auto result = precision < 0
                                ? std::to_chars(p, p + FIELD, value)
                                : std::to_chars(p, p + FIELD, value, std::chars_format::fixed, precision);
        p = result.ec == std::errc() ? result.ptr : p;
        *p = ',';
        return p + 1;
    };
    // Rows of one object follow one another: its name is quoted once per run of rows.
    std::string name;
    std::string quoted_name;
    // Time and id; then the five numbers and the valid flag.
    char head[2 * FIELD + 2];
    char tail[5 * FIELD + 8];
    for (const ReplayRow& row : rows) {
        char* p = head;
        // Whole seconds below 1e5 print as their digits, which is what to_chars would
        // choose; from 1e5 on it may prefer the exponent.
        if (row.time >= 0.0 && row.time < 1e5 && !std::signbit(row.time) &&
            row.time == std::floor(row.time)) {
            p = std::to_chars(p, p + FIELD, static_cast<std::int32_t>(row.time)).ptr;
            *p++ = ',';
        } else {
            p = put(p, row.time, -1);
        }
        p = std::to_chars(p, p + FIELD, row.object_id).ptr;
        *p++ = ',';
        buffer.append(head, static_cast<std::size_t>(p - head));
        if (quoted_name.empty() || row.name != name) {
            name = row.name;
            quoted_name = csvText(row.name);
        }
        buffer += quoted_name;
        p = tail;
        *p++ = ',';
        p = put(p, row.latitude, 9);
        p = put(p, row.longitude, 9);
        p = put(p, row.heading, 3);
        p = put(p, row.x, 3);
        p = put(p, row.y, 3);
        *p++ = row.valid ? '1' : '0';
        buffer.append(tail, static_cast<std::size_t>(p - tail));
        if (!calculations.empty() && !(row.time == values_time)) {
            values_time = row.time;
            for (std::size_t i = 0; i < calculations.size(); ++i)
                values[i] = calculations[i].channel
                                ? calculations[i].channel->getValueAtTime(row.time, nullptr)
                                : NAN;
        }
        for (const double value : values) {
            p = tail;
            *p++ = ',';
            if (std::isfinite(value))
                p = put(p, value, 3) - 1; // put() ends each field with its separator
            buffer.append(tail, static_cast<std::size_t>(p - tail));
        }
        buffer += '\n';
        if (buffer.size() >= FLUSH_AT) {
            out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
            buffer.clear();
        }
    }
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
}

bool writeKml(const std::string& path, const std::vector<ObjectPath>& paths, std::string& error)
{
    pugi::xml_document document;
    pugi::xml_node kml = document.append_child("kml");
    kml.append_attribute("xmlns") = "http://www.opengis.net/kml/2.2";
    pugi::xml_node folder = kml.append_child("Document");
    folder.append_child("name").text() = "overmap-replay";
    for (const ObjectPath& object_path : paths) {
        if (object_path.positions.empty())
            continue;
        pugi::xml_node placemark = folder.append_child("Placemark");
        placemark.append_child("name").text() = object_path.name.c_str();
        pugi::xml_node line = placemark.append_child("LineString");
        line.append_child("tessellate").text() = "1";
        // lon,lat,alt tuples, one blank apart and none after the last: a trailing blank
        // would read back as one more point.
        std::string coordinates;
        for (const math_geo::GeoPosition& position : object_path.positions) {
            if (!coordinates.empty())
                coordinates += ' ';
            coordinates += fmt::format("{:.9f},{:.9f},0", position.longitude, position.latitude);
        }
        line.append_child("coordinates").text() = coordinates.c_str();
    }
    if (!document.save_file(path.c_str(), "  ", pugi::format_default, pugi::encoding_utf8)) {
        error = path + ": cannot write the KML file";
        return false;
    }
    return true;
}

bool writeGeoJson(const std::string& path, const std::vector<ObjectPath>& paths, std::string& error)
{
    std::ofstream out(path, std::ios::binary);
    out << "{\"type\":\"FeatureCollection\",\"features\":[";
    bool first_feature = true;
    for (const ObjectPath& object_path : paths) {
        if (object_path.positions.empty())
            continue;
        out << (first_feature ? "\n" : ",\n")
            << "{\"type\":\"Feature\",\"properties\":{\"id\":" << object_path.object_id
            << ",\"name\":" << jsonText(object_path.name)
            << "},\"geometry\":{\"type\":\"LineString\",\"coordinates\":[";
        first_feature = false;
        bool first_point = true;
        for (const math_geo::GeoPosition& position : object_path.positions) {
            out << (first_point ? "" : ",")
                << fmt::format("[{:.9f},{:.9f}]", position.longitude, position.latitude);
            first_point = false;
        }
        out << "]}}";
    }
    out << "\n]}\n";
    out.flush();
    if (!out) {
        error = path + ": cannot write the GeoJSON file";
        return false;
    }
    return true;
}

} // namespace overmap_replay
