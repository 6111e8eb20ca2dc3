#include "import_common.h"

#include <lum_import/importers.h>

#include <cctype>
#include <cstring>
#include <limits>

namespace lum::import {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double KNOTS_TO_KMH = 1.852;
constexpr double HALF_DAY = 43200.0;

enum Field : std::size_t
{
    LATITUDE,
    LONGITUDE,
    ALTITUDE,
    HEADING,
    SPEED,
    FIX_QUALITY,
    SATELLITES,
    HDOP,
    FIELD_COUNT
};

const char* const NAMES[FIELD_COUNT] = {"latitude", "longitude",   "altitude",   "heading",
                                        "speed",    "fix_quality", "satellites", "hdop"};
const char* const UNITS[FIELD_COUNT] = {"\u00b0", "\u00b0", "m", "\u00b0", "km/h", "", "", ""};

// Everything one receiver epoch (one time of day) told.
struct Epoch
{
    double time_of_day = NaN;
    std::int64_t day = std::numeric_limits<std::int64_t>::min(); // from RMC, when it came
    std::size_t line = 0;
    double value[FIELD_COUNT] = {NaN, NaN, NaN, NaN, NaN, NaN, NaN, NaN};
    // Position and motion from GGA win over RMC, which wins over VTG.
    int position_rank = 0;
    int motion_rank = 0;
    bool hasDay() const { return day != std::numeric_limits<std::int64_t>::min(); }
};

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

bool parseTimeOfDay(std::string_view s, double& out)
{
    if (s.size() < 6)
        return false;
    for (int i = 0; i < 6; ++i)
        if (!std::isdigit(static_cast<unsigned char>(s[i])))
            return false;
    const int h = (s[0] - '0') * 10 + (s[1] - '0');
    const int m = (s[2] - '0') * 10 + (s[3] - '0');
    const int sec = (s[4] - '0') * 10 + (s[5] - '0');
    double fraction = 0.0;
    if (s.size() > 6) {
        if (s[6] != '.')
            return false;
        // "0" before the fraction, on the stack: this runs for every sentence.
        const std::string_view rest = s.substr(6);
        char text[32];
        std::optional<double> f;
        if (rest.size() < sizeof text) {
            text[0] = '0';
            std::memcpy(text + 1, rest.data(), rest.size());
            f = detail::toDouble(std::string_view(text, rest.size() + 1));
        } else {
            f = detail::toDouble(std::string("0") + std::string(rest));
        }
        if (!f)
            return false;
        fraction = *f;
    }
    if (h > 23 || m > 59 || sec > 60)
        return false;
    out = h * 3600.0 + m * 60.0 + sec + fraction;
    return true;
}

bool parseDate(std::string_view s, std::int64_t& day)
{
    if (s.size() != 6)
        return false;
    for (char c : s)
        if (!std::isdigit(static_cast<unsigned char>(c)))
            return false;
    const unsigned d = static_cast<unsigned>((s[0] - '0') * 10 + (s[1] - '0'));
    const unsigned m = static_cast<unsigned>((s[2] - '0') * 10 + (s[3] - '0'));
    const int yy = (s[4] - '0') * 10 + (s[5] - '0');
    if (d < 1 || d > 31 || m < 1 || m > 12)
        return false;
    day = detail::daysFromCivil(yy < 80 ? 2000 + yy : 1900 + yy, m, d);
    return true;
}

// "3925.9702","N" -> 39.43283...; degrees have 2 (latitude) or 3 (longitude) digits.
bool parseAngle(std::string_view value, std::string_view hemisphere, bool latitude, double& out)
{
    const auto v = detail::toDouble(value);
    if (!v || *v < 0.0)
        return false;
    const double degrees = std::floor(*v / 100.0);
    const double minutes = *v - degrees * 100.0;
    if (minutes >= 60.0)
        return false;
    double angle = degrees + minutes / 60.0;
    if (hemisphere == "S" || hemisphere == "W")
        angle = -angle;
    else if (hemisphere != "N" && hemisphere != "E")
        return false;
    if ((latitude && (hemisphere == "E" || hemisphere == "W")) ||
        (!latitude && (hemisphere == "N" || hemisphere == "S")))
        return false;
    if (std::fabs(angle) > (latitude ? 90.0 : 180.0))
        return false;
    out = angle;
    return true;
}

// An optional numeric field: empty gives NaN and true; garbage gives false.
bool optionalNumber(std::string_view s, double& out)
{
    if (detail::trim(s).empty()) {
        out = NaN;
        return true;
    }
    const auto v = detail::toDouble(s);
    if (!v)
        return false;
    out = *v;
    return true;
}

class NmeaReader
{
public:
    explicit NmeaReader(Recording& rec) : m_rec(rec) {}

    void line(std::string_view text, std::size_t line_no)
    {
        text = detail::trim(text);
        if (text.empty())
            return;
        if (text.front() != '$') {
            // Receivers write banners and comments between sentences; only a line with a
            // sentence start inside it is a damaged sentence.
            if (text.find('$') != std::string_view::npos)
                bad(line_no);
            return;
        }
        ++m_rec.lines;
        if (!checkedSplit(text)) {
            bad(line_no);
            return;
        }
        const std::string_view address = m_fields[0];
        if (address.size() < 3 || address.front() == 'P')
            return; // proprietary
        const std::string_view type = address.substr(address.size() - 3);
        bool ok = true;
        if (type == "RMC")
            ok = rmc(line_no);
        else if (type == "GGA")
            ok = gga(line_no);
        else if (type == "VTG")
            ok = vtg(line_no);
        if (!ok)
            bad(line_no);
    }

    std::vector<Epoch> takeEpochs()
    {
        flush();
        return std::move(m_epochs);
    }

private:
    void bad(std::size_t line_no) { detail::countBad(m_rec, line_no); }

    // Splits the sentence between '$' and '*' into m_fields in the same pass over its
    // bytes that sums them up; false when the sentence is empty or its checksum is
    // missing or wrong. A plain loop: fields are a few characters long, too short for a
    // library search per field to pay.
    bool checkedSplit(std::string_view line)
    {
        const std::size_t star = line.rfind('*');
        if (star == std::string_view::npos || star + 3 != line.size() || star < 2)
            return false;
        const int hi = hexValue(line[star + 1]);
        const int lo = hexValue(line[star + 2]);
        if (hi < 0 || lo < 0)
            return false;
        m_fields.clear();
        unsigned sum = 0;
        const char* from = line.data() + 1;
        const char* const end = line.data() + star;
        for (const char* p = from; p != end; ++p) {
            sum ^= static_cast<unsigned char>(*p);
            if (*p == ',') {
                m_fields.emplace_back(from, static_cast<std::size_t>(p - from));
                from = p + 1;
            }
        }
        m_fields.emplace_back(from, static_cast<std::size_t>(end - from));
        return sum == static_cast<unsigned>(hi * 16 + lo);
    }

    std::string_view field(std::size_t i) const
    {
        return i < m_fields.size() ? m_fields[i] : std::string_view();
    }

    // The epoch for a sentence stamped @p tod: the current one, or a new one.
    Epoch& epochAt(double tod, std::size_t line_no)
    {
        if (!m_have_epoch || m_epoch.time_of_day != tod) {
            flush();
            m_epoch = Epoch();
            m_epoch.time_of_day = tod;
            m_epoch.line = line_no;
            m_have_epoch = true;
        }
        return m_epoch;
    }

    void flush()
    {
        if (m_have_epoch)
            m_epochs.push_back(m_epoch);
        m_have_epoch = false;
    }

    bool rmc(std::size_t line_no)
    {
        double tod = 0.0;
        std::int64_t day = 0;
        if (m_fields.size() < 10 || !parseTimeOfDay(field(1), tod))
            return false;
        const bool has_date = !field(9).empty();
        if (has_date && !parseDate(field(9), day))
            return false;
        double lat = NaN, lon = NaN, knots = NaN, course = NaN;
        const bool valid = field(2) == "A";
        if (valid &&
            (!parseAngle(field(3), field(4), true, lat) || !parseAngle(field(5), field(6), false, lon) ||
             !optionalNumber(field(7), knots) || !optionalNumber(field(8), course)))
            return false;
        Epoch& e = epochAt(tod, line_no);
        if (has_date)
            e.day = day;
        if (!valid)
            return true;
        if (e.position_rank < 1) {
            e.value[LATITUDE] = lat;
            e.value[LONGITUDE] = lon;
            e.position_rank = 1;
        }
        if (e.motion_rank < 2) {
            e.value[SPEED] = knots * KNOTS_TO_KMH;
            e.value[HEADING] = course;
            e.motion_rank = 2;
        }
        return true;
    }

    bool gga(std::size_t line_no)
    {
        double tod = 0.0;
        if (m_fields.size() < 10 || !parseTimeOfDay(field(1), tod))
            return false;
        double quality = NaN, sats = NaN, hdop = NaN, alt = NaN;
        if (!optionalNumber(field(6), quality) || !optionalNumber(field(7), sats) ||
            !optionalNumber(field(8), hdop) || !optionalNumber(field(9), alt))
            return false;
        double lat = NaN, lon = NaN;
        const bool fix = quality > 0.0;
        if (fix &&
            (!parseAngle(field(2), field(3), true, lat) || !parseAngle(field(4), field(5), false, lon)))
            return false;
        Epoch& e = epochAt(tod, line_no);
        e.value[FIX_QUALITY] = quality;
        e.value[SATELLITES] = sats;
        e.value[HDOP] = hdop;
        if (fix) {
            e.value[LATITUDE] = lat;
            e.value[LONGITUDE] = lon;
            e.value[ALTITUDE] = alt;
            e.position_rank = 2;
        }
        return true;
    }

    bool vtg(std::size_t)
    {
        double course = NaN, kmh = NaN, knots = NaN;
        if (field(2) == "T") { // NMEA 2.3 and later: value, unit letter pairs
            if (!optionalNumber(field(1), course) || !optionalNumber(field(5), knots) ||
                !optionalNumber(field(7), kmh))
                return false;
        } else if (!optionalNumber(field(1), course) || !optionalNumber(field(3), knots) ||
                   !optionalNumber(field(4), kmh)) {
            return false;
        }
        if (!m_have_epoch)
            return true; // no time to put it at
        if (m_epoch.motion_rank < 1) {
            m_epoch.value[HEADING] = course;
            m_epoch.value[SPEED] = std::isnan(kmh) ? knots * KNOTS_TO_KMH : kmh;
            m_epoch.motion_rank = 1;
        }
        return true;
    }

    Recording& m_rec;
    std::vector<std::string_view> m_fields;
    std::vector<Epoch> m_epochs;
    Epoch m_epoch;
    bool m_have_epoch = false;
};

// Gives every epoch a day: its own RMC date, else counted from its neighbours, one day
// on whenever the time of day falls back by more than half a day (midnight passed).
bool assignDays(std::vector<Epoch>& epochs)
{
    std::size_t first_dated = epochs.size();
    for (std::size_t i = 0; i < epochs.size(); ++i)
        if (epochs[i].hasDay()) {
            first_dated = i;
            break;
        }
    const bool dated = first_dated < epochs.size();
    if (!dated) {
        first_dated = 0;
        epochs[0].day = 0;
    }
    for (std::size_t i = first_dated; i-- > 0;) {
        const Epoch& next = epochs[i + 1];
        epochs[i].day = next.day - (epochs[i].time_of_day > next.time_of_day + HALF_DAY ? 1 : 0);
    }
    for (std::size_t i = first_dated + 1; i < epochs.size(); ++i) {
        if (epochs[i].hasDay())
            continue;
        const Epoch& prev = epochs[i - 1];
        epochs[i].day = prev.day + (epochs[i].time_of_day < prev.time_of_day - HALF_DAY ? 1 : 0);
    }
    return dated;
}

} // namespace

ImportResult importNmeaText(std::string_view text, const std::string& source)
{
    Recording rec;
    rec.source = source;
    rec.format = "NMEA 0183";
    rec.start_time = NaN;
    for (std::size_t i = 0; i < FIELD_COUNT; ++i)
        rec.channels.push_back({NAMES[i], UNITS[i], {}, {}});

    NmeaReader reader(rec);
    std::size_t pos = 0;
    std::size_t line_no = 0;
    while (pos < text.size()) {
        const std::size_t nl = text.find('\n', pos);
        const std::size_t end = nl == std::string_view::npos ? text.size() : nl;
        reader.line(text.substr(pos, end - pos), ++line_no);
        pos = end + 1;
    }

    std::vector<Epoch> epochs = reader.takeEpochs();
    if (epochs.empty())
        return detail::finish(std::move(rec), NaN);
    const bool dated = assignDays(epochs);

    // Times relative to the first epoch keep full precision; the absolute start is added back.
    const double origin = static_cast<double>(epochs.front().day) * 86400.0 + epochs.front().time_of_day;
    // Each channel at its final size at once: growing by doubling would copy them all
    // and, for a moment, hold them twice.
    std::size_t counts[FIELD_COUNT] = {};
    for (const Epoch& e : epochs)
        for (std::size_t f = 0; f < FIELD_COUNT; ++f)
            counts[f] += std::isnan(e.value[f]) ? 0 : 1;
    for (std::size_t f = 0; f < FIELD_COUNT; ++f) {
        rec.channels[f].times.reserve(counts[f]);
        rec.channels[f].values.reserve(counts[f]);
    }
    for (const Epoch& e : epochs) {
        const double t = static_cast<double>(e.day - epochs.front().day) * 86400.0 +
                         (e.time_of_day - epochs.front().time_of_day);
        bool any = false;
        bool rejected = false;
        for (std::size_t f = 0; f < FIELD_COUNT; ++f) {
            if (std::isnan(e.value[f]))
                continue;
            any = true;
            if (!detail::appendSample(rec.channels[f], t, e.value[f]))
                rejected = true;
        }
        if (any && rejected)
            detail::countBad(rec, e.line); // a repeated or backward time
    }
    rec.start_time_utc = dated;
    ImportResult result = detail::finish(std::move(rec), dated ? origin : NaN);
    return result;
}

ImportResult importNmea(const std::string& path)
{
    std::string text;
    ImportResult failed;
    if (!detail::readFile(path, text, failed.error))
        return failed;
    return importNmeaText(text, path);
}

} // namespace lum::import
