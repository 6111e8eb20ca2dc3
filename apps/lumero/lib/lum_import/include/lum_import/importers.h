#pragma once

#include <lum_import/recording.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace lum::import {

/// CSV as a measurement export writes it: a header row, then one row per time. The
/// first column is the time in seconds; every further column is a channel named by its
/// header ("speed [km/h]" or "speed (km/h)" gives the unit). Separator ',', ';' or tab,
/// found from the header; with ';' a decimal comma is accepted. An empty cell is no
/// sample. An optional first line "# start_time=2024-05-01T10:00:00Z" gives the absolute
/// start of time 0 of the file.
ImportResult importCsv(const std::string& path);
ImportResult importCsvText(std::string_view text, const std::string& source = "csv");

/// NMEA 0183 as receivers log it: RMC, GGA and VTG of any talker, checksums checked,
/// other sentences skipped. Channels latitude, longitude, altitude, heading (course over
/// ground), speed, fix_quality, satellites, hdop. Time from RMC date and time, counting on
/// past midnight UTC.
ImportResult importNmea(const std::string& path);
ImportResult importNmeaText(std::string_view text, const std::string& source = "nmea");

/// GPX 1.0 and 1.1 tracks: every track point with a time, in document order. Channels
/// latitude, longitude, altitude, heading (bearing from the previous point), speed.
ImportResult importGpx(const std::string& path);
ImportResult importGpxText(std::string_view text, const std::string& source = "gpx");

/// Picks the reader by the file's extension (.csv .txt, .nmea .nma .log, .gpx), or by
/// its first bytes when the extension says nothing.
ImportResult importRecording(const std::string& path);

/// "2009-03-02T14:05:52Z", "2013-01-01T12:00:00.250+01:00": seconds since 1970-01-01
/// (UTC when a zone is given, @p utc set accordingly). False for any other text.
bool parseIsoTime(std::string_view text, double& seconds, bool& utc);
/// The same as whole seconds since 1970-01-01 and the fraction of a second, [0, 1): the
/// difference of two close times keeps every digit of their fractions, which a sum near
/// 1.7e9 seconds rounds to about 2e-7 s.
bool parseIsoTime(std::string_view text, std::int64_t& whole_seconds, double& fraction, bool& utc);

} // namespace lum::import
