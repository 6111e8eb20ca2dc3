#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace lum::import {

/// One measured quantity of a recording: its samples in time order, each with its
/// own time stamp, so that gaps in the source stay gaps.
struct ImportedChannel
{
    std::string name;          ///< "latitude", or a CSV header's name
    std::string unit;          ///< physical unit text, may be empty
    std::vector<double> times; ///< seconds since the recording's first sample, strictly increasing
    std::vector<double> values;
};

/// What a reader made of a file.
struct Recording
{
    std::string source; ///< file path, or a name for in-memory text
    std::string format; ///< "CSV", "NMEA 0183" or "GPX"
    /// Absolute time of the first sample in seconds since 1970-01-01; NaN when the file
    /// does not say. UTC when start_time_utc is set, local time of the recorder otherwise.
    double start_time = std::numeric_limits<double>::quiet_NaN();
    bool start_time_utc = false;
    std::vector<ImportedChannel> channels;

    std::size_t lines = 0;          ///< lines (CSV, NMEA) or track points (GPX) read
    std::size_t bad_lines = 0;      ///< skipped because malformed
    std::size_t first_bad_line = 0; ///< 1-based line (or point) number of the first, 0 when none

    const ImportedChannel* channel(const std::string& name) const;
};

/// Either a recording with at least one sample, or a one-line reason why not.
struct ImportResult
{
    bool ok = false;
    Recording recording;
    std::string error;

    explicit operator bool() const { return ok; }
};

} // namespace lum::import
