#pragma once

#include <lum_utils/high_precision_date_time.h>
#include <lum_utils/if_utc_offset_source.h>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimeZone>

namespace lum_utils {

/// Turns a time relative to the recording's start (seconds) into the wall-clock
/// text the views show, in the recording's time zone (UTC until one is set).
/// Belongs to the GUI thread.
class LocalTimeConverter : public QObject, public IfUTCOffsetSource
{
    Q_OBJECT
    Q_PROPERTY(QDateTime acquisitionStartTime READ acquisitionStartTime WRITE setAcquisitionStartTime NOTIFY
                   acquisitionStartTimeChanged)
    Q_PROPERTY(
        double recordingOffset READ recordingOffset WRITE setRecordingOffset NOTIFY recordingOffsetChanged)
    Q_PROPERTY(QString timeZoneID READ timeZoneID WRITE setTimeZoneID NOTIFY timeZoneIDChanged)

public:
    enum TIME_FORMAT
    {
        HH_MM_SS = 0,
        DDD_HH_MM_SS = 1
    };
    Q_ENUM(TIME_FORMAT)

    explicit LocalTimeConverter(QObject* parent = nullptr);

    QDateTime acquisitionStartTime() const { return m_acquisition_start.dateTime(); }
    void setAcquisitionStartTime(const QDateTime& start);
    /// Seconds from the acquisition start to the recording start.
    double recordingOffset() const { return m_recording_offset; }
    void setRecordingOffset(double offset);
    QString timeZoneID() const { return QString::fromUtf8(m_time_zone.id()); }
    void setTimeZoneID(const QString& id);

    Q_INVOKABLE int getUTCOffset() const override;
    Q_INVOKABLE int getUTCOffset(const QDateTime& date_time) const override;
    Q_INVOKABLE int getDaylightTimeOffset() const override;

    /// "hh:mm:ss" with @p sub_second_precision truncated digits after ".".
    Q_INVOKABLE QString getAbsoluteTime(double relative_to_recording_start, int sub_second_precision) const;
    /// As getAbsoluteTime, optionally rounded; DDD_HH_MM_SS puts the day of the year and "_" first.
    Q_INVOKABLE QString getAbsoluteTimeFormatted(double relative_to_recording_start,
                                                 TIME_FORMAT format = HH_MM_SS, int sub_sec_precision = 0,
                                                 bool round = false) const;
    /// The time of day in the long form of the current locale.
    Q_INVOKABLE QString getAbsoluteTimeLocaleLongFormat(double relative_to_recording_start) const;
    /// The date in the short form of the current locale (the name is kept for the views).
    Q_INVOKABLE QString getAbsoluteDateLocaleLongFormat(double relative_to_recording_start) const;

Q_SIGNALS:
    void acquisitionStartTimeChanged(QDateTime start);
    void recordingOffsetChanged(double offset);
    void timeZoneIDChanged(QString id);

private:
    HighPrecisionDateTime absoluteTime(double relative_to_recording_start) const;

    double m_recording_offset = 0.0;
    HighPrecisionDateTime m_recording_start;
    HighPrecisionDateTime m_acquisition_start;
    QTimeZone m_time_zone;
};

} // namespace lum_utils
