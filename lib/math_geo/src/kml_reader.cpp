#include <math_geo/kml_reader.h>

#include <uni_base/uni_log.h>

#include <pugixml.hpp>

#include <cstring>
#include <istream>
#include <sstream>
#include <string>

namespace math_geo {

namespace {

constexpr const char* LOG_CHANNEL = "math_geo";

/// Skips white space and reads one number. False only when text was there that is not a number; a
/// stream that has run out leaves @p value as it was, which is how trailing white space repeats the
/// last tuple.
bool readNumber(std::istream& in, double& value, bool& have_value)
{
    in >> std::ws;
    if (!in.good())
        return true; // at the end: nothing read, value kept
    double read = 0.0;
    in >> read;
    if (in.fail())
        return false;
    value = read;
    have_value = true;
    return true;
}

void skipComma(std::istream& in)
{
    if (in.peek() == ',')
        in.ignore();
}

/// Appends the lon,lat,alt tuples of @p text. Tuples are separated by white space only, so a tuple
/// without altitude takes the next longitude as its altitude.
void readCoordinateText(const char* text, std::vector<GeoPosition>& positions)
{
    std::istringstream in(text);
    double longitude = 0.0;
    double latitude = 0.0;
    double altitude = 0.0;
    bool have_longitude = false;
    bool have_latitude = false;
    bool have_altitude = false;
    while (!in.eof()) {
        bool readable = readNumber(in, longitude, have_longitude);
        if (readable) {
            skipComma(in);
            readable = readNumber(in, latitude, have_latitude);
        }
        // Blank text has no tuple to repeat.
        const bool have_position = readable && have_longitude && have_latitude;
        if (readable) {
            skipComma(in);
            readable = readNumber(in, altitude, have_altitude);
        }
        if (have_position)
            positions.emplace_back(latitude, longitude);
        if (!readable) {
            // Going on would meet the same characters for ever.
            in.clear();
            std::string token;
            in >> token;
            UNI_LOG(LOG_CHANNEL, SEV_ERROR) << "Unreadable KML coordinates at \"" << token.substr(0, 32)
                                            << "\", ignoring the rest of the element";
            return;
        }
    }
}

bool readPlacemark(const pugi::xml_node& placemark, std::vector<GeoPosition>& positions)
{
    // "//" starts at the document root: every line string of the file is read, not only this one's.
    const pugi::xpath_node_set line_strings = placemark.select_nodes("//LineString");
    bool result = false;
    for (const pugi::xpath_node& found : line_strings) {
        if (!positions.empty())
            UNI_LOG(LOG_CHANNEL, SEV_NOTE)
                << "Only one LineString in a KML file is supported - attaching the coordinates";
        const pugi::xml_node line_string = found.node();
        if (line_string.type() != pugi::node_element) {
            UNI_LOG(LOG_CHANNEL, SEV_NOTE) << "Invalid LineString, ignoring.";
            continue;
        }
        for (const pugi::xml_node& coordinates : line_string.children("coordinates")) {
            readCoordinateText(coordinates.child_value(), positions);
            result = true;
        }
    }
    return result;
}

} // namespace

bool readKmlFile(const std::string& path, std::vector<GeoPosition>& positions)
{
    pugi::xml_document document;
    const std::wstring wide_path = pugi::as_wide(path.c_str());
    if (!document.load_file(wide_path.c_str()))
        return false;
    positions.clear();

    const pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), "kml") != 0)
        return false;
    for (const pugi::xml_node& kml_document : root.children("Document")) {
        const pugi::xml_node placemark = kml_document.child("Placemark");
        if (placemark)
            return readPlacemark(placemark, positions);
    }
    return false;
}

} // namespace math_geo
