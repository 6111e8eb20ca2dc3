#pragma once

#include <QDateTime>

namespace lum_utils {

/// Answers how far a recording's wall clock lies from UTC.
class IfUTCOffsetSource
{
public:
    virtual ~IfUTCOffsetSource() = default;
    /// Offset from UTC in seconds at the start of the recording.
    virtual int getUTCOffset() const = 0;
    /// Offset from UTC in seconds at @p date_time.
    virtual int getUTCOffset(const QDateTime& date_time) const = 0;
    /// Daylight saving part of the offset in seconds at the start of the recording.
    virtual int getDaylightTimeOffset() const = 0;
};

} // namespace lum_utils
