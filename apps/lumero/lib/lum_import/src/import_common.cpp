#include "import_common.h"

#include <lum_import/importers.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>

namespace lum::import {

const ImportedChannel* Recording::channel(const std::string& name) const
{
    for (const ImportedChannel& ch : channels)
        if (ch.name == name)
            return &ch;
    return nullptr;
}

namespace detail {

bool readFile(const std::string& path, std::string& out, std::string& error)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        error = path + ": cannot open file (" + std::strerror(errno) + ")";
        return false;
    }
    // One read into a string of the file's size: a stream buffer would copy every byte
    // twice more. Files that grow or lie about their size (pipes) are read to the end.
    std::string text;
    if (std::fseek(file, 0, SEEK_END) == 0) {
        const long size = std::ftell(file);
        if (size > 0)
            text.reserve(static_cast<std::size_t>(size));
        std::rewind(file);
    }
    char chunk[1 << 16];
    std::size_t got = 0;
    std::size_t length = 0;
    do {
        if (text.capacity() > length) {
            // Straight into the string where it has room.
            text.resize(text.capacity());
            got = std::fread(text.data() + length, 1, text.size() - length, file);
            length += got;
            text.resize(length);
        } else {
            got = std::fread(chunk, 1, sizeof chunk, file);
            text.append(chunk, got);
            length += got;
        }
    } while (got > 0);
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        error = path + ": read error";
        return false;
    }
    out = std::move(text);
    return true;
}

std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day)
{
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const auto yoe = static_cast<unsigned>(year - era * 400);
    const unsigned doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

ImportResult finish(Recording&& rec, double first_absolute_time)
{
    ImportResult result;
    double first = std::numeric_limits<double>::infinity();
    std::size_t samples = 0;
    for (const ImportedChannel& ch : rec.channels) {
        if (!ch.times.empty())
            first = std::min(first, ch.times.front());
        samples += ch.times.size();
    }
    if (samples == 0) {
        result.error = rec.source + ": no samples found in " + rec.format + " data";
        if (rec.bad_lines > 0)
            result.error += " (" + std::to_string(rec.bad_lines) + " bad lines, first at line " +
                            std::to_string(rec.first_bad_line) + ")";
        return result;
    }
    if (first != 0.0) {
        for (ImportedChannel& ch : rec.channels)
            for (double& t : ch.times)
                t -= first;
    }
    rec.start_time = first_absolute_time + first;
    result.ok = true;
    result.recording = std::move(rec);
    return result;
}

} // namespace detail

bool parseIsoTime(std::string_view text, std::int64_t& whole_seconds, double& fraction, bool& utc)
{
    text = detail::trim(text);
    auto digits = [&](std::size_t pos, std::size_t n, int& out) {
        if (pos + n > text.size())
            return false;
        int v = 0;
        for (std::size_t i = pos; i < pos + n; ++i) {
            if (!std::isdigit(static_cast<unsigned char>(text[i])))
                return false;
            v = v * 10 + (text[i] - '0');
        }
        out = v;
        return true;
    };
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!digits(0, 4, year) || text.size() < 19 || text[4] != '-' || !digits(5, 2, month) || text[7] != '-' ||
        !digits(8, 2, day) || (text[10] != 'T' && text[10] != ' ') || !digits(11, 2, hour) ||
        text[13] != ':' || !digits(14, 2, minute) || text[16] != ':' || !digits(17, 2, second))
        return false;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60)
        return false;
    std::size_t pos = 19;
    // The fraction is one correctly rounded quotient of its digits, so that the same
    // tenths always give the same number; digits past the 15th are below its precision.
    double part = 0.0;
    if (pos < text.size() && (text[pos] == '.' || text[pos] == ',')) {
        constexpr std::size_t MAX_DIGITS = 15;
        std::int64_t numerator = 0;
        double denominator = 1.0;
        ++pos;
        const std::size_t start = pos;
        while (pos < text.size() && std::isdigit(static_cast<unsigned char>(text[pos]))) {
            if (pos - start < MAX_DIGITS) {
                numerator = numerator * 10 + (text[pos] - '0');
                denominator *= 10.0;
            }
            ++pos;
        }
        if (pos == start)
            return false;
        part = static_cast<double>(numerator) / denominator;
    }
    int offset_minutes = 0;
    bool zone = false;
    if (pos < text.size()) {
        if (text[pos] == 'Z' && pos + 1 == text.size()) {
            zone = true;
        } else if ((text[pos] == '+' || text[pos] == '-') && text.size() - pos == 6 && text[pos + 3] == ':') {
            int oh = 0, om = 0;
            if (!digits(pos + 1, 2, oh) || !digits(pos + 4, 2, om) || oh > 23 || om > 59)
                return false;
            offset_minutes = (oh * 60 + om) * (text[pos] == '-' ? -1 : 1);
            zone = true;
        } else {
            return false;
        }
    }
    const std::int64_t days =
        detail::daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day));
    whole_seconds = days * 86400 + hour * 3600 + minute * 60 + second - offset_minutes * 60;
    fraction = part;
    utc = zone;
    return true;
}

bool parseIsoTime(std::string_view text, double& seconds, bool& utc)
{
    std::int64_t whole = 0;
    double fraction = 0.0;
    if (!parseIsoTime(text, whole, fraction, utc))
        return false;
    seconds = static_cast<double>(whole) + fraction;
    return true;
}

ImportResult importRecording(const std::string& path)
{
    std::string lower = path;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    auto endsWith = [&](const char* suffix) {
        const std::size_t n = std::strlen(suffix);
        return lower.size() >= n && lower.compare(lower.size() - n, n, suffix) == 0;
    };
    if (endsWith(".gpx"))
        return importGpx(path);
    if (endsWith(".nmea") || endsWith(".nma") || endsWith(".log"))
        return importNmea(path);
    if (endsWith(".csv") || endsWith(".txt"))
        return importCsv(path);

    std::string text;
    ImportResult failed;
    if (!detail::readFile(path, text, failed.error))
        return failed;
    const std::string_view head = std::string_view(text).substr(0, 4096);
    if (head.find("<gpx") != std::string_view::npos)
        return importGpxText(text, path);
    if (head.find("$GP") != std::string_view::npos || head.find("$GN") != std::string_view::npos)
        return importNmeaText(text, path);
    return importCsvText(text, path);
}

} // namespace lum::import
