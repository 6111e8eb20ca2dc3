#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace lum {

/// The host's time cursor over the recordings' span: set by the slider, moved by playback
/// at a chosen speed or by one sample at a time. Instruments show the scene at `time`.
class QTimeBar : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double start READ start NOTIFY rangeChanged)
    Q_PROPERTY(double end READ end NOTIFY rangeChanged)
    Q_PROPERTY(double step READ step NOTIFY rangeChanged)
    Q_PROPERTY(double time READ time WRITE setTime NOTIFY timeChanged)
    Q_PROPERTY(QString timeText READ timeText NOTIFY timeChanged)
    Q_PROPERTY(bool playing READ isPlaying WRITE setPlaying NOTIFY playingChanged)
    Q_PROPERTY(int speedIndex READ speedIndex WRITE setSpeedIndex NOTIFY speedChanged)
    Q_PROPERTY(double speed READ speed NOTIFY speedChanged)
    Q_PROPERTY(QStringList speedTexts READ speedTexts CONSTANT)

public:
    /// Playback speeds offered, slowest first.
    static constexpr double SPEEDS[] = {0.25, 0.5, 1.0, 2.0, 4.0, 8.0, 16.0};
    static constexpr int NORMAL_SPEED_INDEX = 2;

    explicit QTimeBar(QObject* parent = nullptr);

    double start() const { return m_start; }
    double end() const { return m_end; }
    double step() const { return m_step; }
    double time() const { return m_time; }
    bool isPlaying() const { return m_playing; }
    int speedIndex() const { return m_speed_index; }
    double speed() const { return SPEEDS[m_speed_index]; }
    QStringList speedTexts() const;
    QString timeText() const { return formatTime(m_time); }

    /// The span in seconds and the sample interval; the time is kept inside the span.
    /// A span that ends before it starts is taken as the single time @p start; a step that
    /// is not positive falls back to 0.01 s.
    void setRange(double start, double end, double step);
    /// Clamped to the span.
    void setTime(double time);
    /// Playing at the end starts over from the start.
    void setPlaying(bool playing);
    /// Clamped to the speeds offered.
    void setSpeedIndex(int index);

    Q_INVOKABLE void togglePlaying() { setPlaying(!m_playing); }
    /// To the next (previous) multiple of the step from the start.
    Q_INVOKABLE void stepForward();
    Q_INVOKABLE void stepBackward();

    /// Playback by @p elapsed seconds of wall time; stops at the end. The timer calls it.
    void advance(double elapsed);

    /// "m:ss.cc" below an hour, "h:mm:ss.cc" from then on; a negative time gets a sign.
    static QString formatTime(double seconds);

Q_SIGNALS:
    void rangeChanged();
    void timeChanged(double time);
    void playingChanged(bool playing);
    void speedChanged();

private:
    void onTick();

    double m_start = 0.0;
    double m_end = 0.0;
    double m_step = 0.01;
    double m_time = 0.0;
    bool m_playing = false;
    int m_speed_index = NORMAL_SPEED_INDEX;
    QTimer m_timer;
    QElapsedTimer m_clock;
};

} // namespace lum
