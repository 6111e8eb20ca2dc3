#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <cstdint>

namespace lum_utils {

/// A QDateTime (millisecond resolution) with the nanoseconds beyond its millisecond,
/// for the acquisition clock, which resolves far below a millisecond.
class HighPrecisionDateTime
{
public:
    static constexpr std::uint32_t NANOSECONDS_PER_MILLISECOND = 1000000;

    HighPrecisionDateTime() = default;
    /// @param nanoseconds beyond the millisecond of @p date_time; a whole millisecond
    /// or more is a caller's fault and is carried into the date time.
    explicit HighPrecisionDateTime(const QDateTime& date_time, std::uint32_t nanoseconds = 0);

    const QDateTime& dateTime() const { return m_date_time; }
    std::uint32_t nanoseconds() const { return m_nanoseconds; }
    bool isValid() const { return m_date_time.isValid(); }

    /// This time plus @p seconds (negative goes back); invalid for a non-finite or
    /// astronomically large @p seconds.
    HighPrecisionDateTime addSeconds(double seconds) const;
    /// The same instant in @p zone, nanoseconds kept.
    HighPrecisionDateTime toTimeZone(const QTimeZone& zone) const;

    /// "hh:mm:ss", then @p separator and @p precision digits of the second (at most
    /// nine; none below one), truncated or, with @p round, rounded into the next
    /// second where need be. @p rounded_time receives the time the text shows.
    QString toString(int precision, const QString& separator, bool round,
                     QDateTime* rounded_time = nullptr) const;

    bool operator==(const HighPrecisionDateTime& other) const
    {
        return m_date_time == other.m_date_time && m_nanoseconds == other.m_nanoseconds;
    }
    bool operator!=(const HighPrecisionDateTime& other) const { return !(*this == other); }

private:
    QDateTime m_date_time;
    std::uint32_t m_nanoseconds = 0;
};

} // namespace lum_utils
