#pragma once

#include <lum_import/recording.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lum::import::detail {

/// Whole file as bytes; false with a reason when it cannot be read.
bool readFile(const std::string& path, std::string& out, std::string& error);

/// Days since 1970-01-01 of a proleptic Gregorian date.
std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day);

/// The blanks of the "C" locale, tested inline: trim() runs on every field of every line,
/// and a file reads the same whatever locale the host process set.
inline bool blank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline std::string_view trim(std::string_view s)
{
    while (!s.empty() && blank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && blank(s.back()))
        s.remove_suffix(1);
    return s;
}

/// The whole of @p text as a double (leading/trailing blanks allowed); nullopt otherwise.
inline std::optional<double> toDouble(std::string_view text)
{
    text = trim(text);
    if (text.empty())
        return std::nullopt;
    if (text.front() == '+')
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

/// Counts a malformed line and remembers the first.
inline void countBad(Recording& rec, std::size_t line)
{
    ++rec.bad_lines;
    if (rec.first_bad_line == 0)
        rec.first_bad_line = line;
}

/// Appends a sample when its time is after the channel's last one; false otherwise.
inline bool appendSample(ImportedChannel& ch, double time, double value)
{
    if (!ch.times.empty() && !(time > ch.times.back()))
        return false;
    ch.times.push_back(time);
    ch.values.push_back(value);
    return true;
}

/// Makes the times relative to the earliest sample of the recording, moves the
/// absolute start accordingly, and fails when nothing was read.
ImportResult finish(Recording&& rec, double first_absolute_time);

} // namespace lum::import::detail
