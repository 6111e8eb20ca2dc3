#include "import_common.h"

#include <lum_import/importers.h>

#include <cstring>
#include <limits>

namespace lum::import {
namespace {

constexpr double NO_START = std::numeric_limits<double>::quiet_NaN();

// "speed [km/h]" -> ("speed", "km/h"); "speed (km/h)" likewise; quotes around are dropped.
void splitHeader(std::string_view cell, std::string& name, std::string& unit)
{
    cell = detail::trim(cell);
    if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"')
        cell = detail::trim(cell.substr(1, cell.size() - 2));
    name.assign(cell);
    unit.clear();
    if (cell.empty())
        return;
    const char close = cell.back();
    const char open = close == ']' ? '[' : close == ')' ? '(' : '\0';
    if (open == '\0')
        return;
    const std::size_t at = cell.rfind(open);
    if (at == std::string_view::npos || at == 0)
        return;
    unit.assign(detail::trim(cell.substr(at + 1, cell.size() - at - 2)));
    name.assign(detail::trim(cell.substr(0, at)));
}

// A cell as a number; with a decimal comma allowed, "1,5" reads as 1.5.
std::optional<double> cellValue(std::string_view cell, bool decimal_comma)
{
    if (decimal_comma && cell.find(',') != std::string_view::npos) {
        char buffer[64];
        if (cell.size() >= sizeof buffer)
            return std::nullopt;
        for (std::size_t i = 0; i < cell.size(); ++i)
            buffer[i] = cell[i] == ',' ? '.' : cell[i];
        return detail::toDouble(std::string_view(buffer, cell.size()));
    }
    return detail::toDouble(cell);
}

std::string_view nextLine(std::string_view text, std::size_t& pos)
{
    const char* begin = text.data() + pos;
    const void* nl = std::memchr(begin, '\n', text.size() - pos);
    std::size_t len =
        nl != nullptr ? static_cast<std::size_t>(static_cast<const char*>(nl) - begin) : text.size() - pos;
    pos += len + (nl != nullptr ? 1 : 0);
    if (len > 0 && begin[len - 1] == '\r')
        --len;
    return {begin, len};
}

} // namespace

ImportResult importCsvText(std::string_view text, const std::string& source)
{
    Recording rec;
    rec.source = source;
    rec.format = "CSV";
    rec.start_time = NO_START;
    ImportResult failed;

    if (text.size() >= 3 && text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        text.remove_prefix(3);

    std::size_t pos = 0;
    std::size_t line_no = 0;
    double start = 0.0;
    bool have_start = false;
    std::string_view header;
    while (pos < text.size()) {
        std::string_view line = nextLine(text, pos);
        ++line_no;
        if (detail::trim(line).empty())
            continue;
        if (line.front() == '#') {
            constexpr std::string_view key = "start_time=";
            const std::string_view body = detail::trim(line.substr(1));
            if (body.substr(0, key.size()) == key &&
                parseIsoTime(body.substr(key.size()), start, rec.start_time_utc))
                have_start = true;
            continue;
        }
        header = line;
        break;
    }
    if (header.empty()) {
        failed.error = source + ": no CSV header row";
        return failed;
    }

    char sep = ',';
    if (header.find(';') != std::string_view::npos)
        sep = ';';
    else if (header.find('\t') != std::string_view::npos)
        sep = '\t';
    const bool decimal_comma = sep != ',';

    std::vector<std::string_view> cells;
    auto split = [&](std::string_view line) {
        // A plain loop over the bytes: cells are short, a library search per cell costs more.
        cells.clear();
        const char* from = line.data();
        const char* const end = from + line.size();
        for (const char* p = from; p != end; ++p) {
            if (*p == sep) {
                cells.emplace_back(from, static_cast<std::size_t>(p - from));
                from = p + 1;
            }
        }
        cells.emplace_back(from, static_cast<std::size_t>(end - from));
    };

    split(header);
    if (cells.size() < 2) {
        failed.error = source + ": the CSV header needs a time column and at least one channel column";
        return failed;
    }
    rec.channels.resize(cells.size() - 1);
    for (std::size_t c = 1; c < cells.size(); ++c) {
        ImportedChannel& ch = rec.channels[c - 1];
        splitHeader(cells[c], ch.name, ch.unit);
        if (ch.name.empty())
            ch.name = "column " + std::to_string(c + 1);
    }
    const std::size_t columns = cells.size();
    std::vector<double> row(columns);
    std::vector<char> present(columns);

    double last_time = -std::numeric_limits<double>::infinity();
    while (pos < text.size()) {
        const std::string_view line = nextLine(text, pos);
        ++line_no;
        if (line.empty() || detail::trim(line).empty())
            continue;
        ++rec.lines;
        split(line);
        const std::optional<double> time =
            cells.size() == columns ? cellValue(cells[0], decimal_comma) : std::nullopt;
        if (!time || !(*time > last_time)) {
            detail::countBad(rec, line_no);
            continue;
        }
        // Read the whole row before taking any of it: a half-read row would leave
        // channels out of step.
        bool good = true;
        for (std::size_t c = 1; c < columns && good; ++c) {
            const std::string_view cell = detail::trim(cells[c]);
            present[c] = !cell.empty();
            if (present[c]) {
                const std::optional<double> value = cellValue(cell, decimal_comma);
                good = value.has_value();
                row[c] = value.value_or(0.0);
            }
        }
        if (!good) {
            detail::countBad(rec, line_no);
            continue;
        }
        last_time = *time;
        for (std::size_t c = 1; c < columns; ++c) {
            if (present[c])
                detail::appendSample(rec.channels[c - 1], *time, row[c]);
        }
    }
    return detail::finish(std::move(rec), have_start ? start : NO_START);
}

ImportResult importCsv(const std::string& path)
{
    std::string text;
    ImportResult failed;
    if (!detail::readFile(path, text, failed.error))
        return failed;
    return importCsvText(text, path);
}

} // namespace lum::import
