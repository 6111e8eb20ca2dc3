#include <lum_utils/local_time_converter.h>

#include <uni_base/uni_assert.h>

#include <QLocale>

#include <cmath>

namespace lum_utils {

LocalTimeConverter::LocalTimeConverter(QObject* parent)
    : QObject(parent), m_recording_start(QDateTime::fromMSecsSinceEpoch(0, Qt::UTC)),
      m_acquisition_start(m_recording_start.dateTime()), m_time_zone(QTimeZone::utc())
{}

void LocalTimeConverter::setAcquisitionStartTime(const QDateTime& start)
{
    const QDateTime utc = start.toTimeSpec(Qt::UTC);
    if (utc == m_acquisition_start.dateTime())
        return;
    m_acquisition_start = HighPrecisionDateTime(utc);
    m_recording_start = m_acquisition_start.addSeconds(m_recording_offset);
    Q_EMIT acquisitionStartTimeChanged(utc);
}

void LocalTimeConverter::setRecordingOffset(double offset)
{
    if (!(std::fabs(offset - m_recording_offset) > 1e-12))
        return;
    m_recording_offset = offset;
    m_recording_start = m_acquisition_start.addSeconds(m_recording_offset);
    Q_EMIT recordingOffsetChanged(m_recording_offset);
}

void LocalTimeConverter::setTimeZoneID(const QString& id)
{
    if (id == timeZoneID())
        return;
    m_time_zone = QTimeZone(id.toUtf8());
    Q_EMIT timeZoneIDChanged(id);
}

int LocalTimeConverter::getUTCOffset() const
{
    return getUTCOffset(m_recording_start.dateTime());
}

int LocalTimeConverter::getUTCOffset(const QDateTime& date_time) const
{
    return m_time_zone.offsetFromUtc(date_time);
}

int LocalTimeConverter::getDaylightTimeOffset() const
{
    return m_time_zone.daylightTimeOffset(m_recording_start.dateTime());
}

HighPrecisionDateTime LocalTimeConverter::absoluteTime(double relative_to_recording_start) const
{
    return m_recording_start.addSeconds(relative_to_recording_start).toTimeZone(m_time_zone);
}

QString LocalTimeConverter::getAbsoluteTime(double relative_to_recording_start,
                                            int sub_second_precision) const
{
    return absoluteTime(relative_to_recording_start)
        .toString(sub_second_precision, QStringLiteral("."), false);
}

QString LocalTimeConverter::getAbsoluteTimeFormatted(double relative_to_recording_start, TIME_FORMAT format,
                                                     int sub_sec_precision, bool round) const
{
    QDateTime shown;
    const QString text = absoluteTime(relative_to_recording_start)
                             .toString(sub_sec_precision, QStringLiteral("."), round, &shown);
    switch (format) {
    case HH_MM_SS:
        return text;
    case DDD_HH_MM_SS:
        // The day of the time shown, so that rounding past midnight moves the day too.
        return QStringLiteral("%1_").arg(shown.date().dayOfYear()) + text;
    }
    UNI_FAIL("No such option for format");
    return text;
}

QString LocalTimeConverter::getAbsoluteTimeLocaleLongFormat(double relative_to_recording_start) const
{
    return QLocale().toString(absoluteTime(relative_to_recording_start).dateTime().time(),
                              QLocale::LongFormat);
}

QString LocalTimeConverter::getAbsoluteDateLocaleLongFormat(double relative_to_recording_start) const
{
    return QLocale().toString(absoluteTime(relative_to_recording_start).dateTime().date(),
                              QLocale::ShortFormat);
}

} // namespace lum_utils
