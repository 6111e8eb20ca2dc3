#include <lumero_app/time_bar.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace lum {

namespace {

constexpr double DEFAULT_STEP = 0.01;
// Steps land on multiples of the step; this much below one still counts as on it, so
// that 0.3 / 0.1 = 2.9999999999999996 is step 3.
constexpr double STEP_TOLERANCE = 1e-6;
// About one frame at 60 Hz; playback moves by the wall time that really passed.
constexpr int TICK_MS = 16;

} // namespace

QTimeBar::QTimeBar(QObject* parent) : QObject(parent)
{
    m_timer.setInterval(TICK_MS);
    connect(&m_timer, &QTimer::timeout, this, &QTimeBar::onTick);
}

QStringList QTimeBar::speedTexts() const
{
    QStringList texts;
    for (double speed : SPEEDS)
        texts << QString::number(speed) + QLatin1Char('x');
    return texts;
}

void QTimeBar::setRange(double start, double end, double step)
{
    if (!std::isfinite(start))
        start = 0.0;
    if (!std::isfinite(end) || end < start)
        end = start;
    if (!std::isfinite(step) || step <= 0.0)
        step = DEFAULT_STEP;
    if (start != m_start || end != m_end || step != m_step) {
        m_start = start;
        m_end = end;
        m_step = step;
        Q_EMIT rangeChanged();
    }
    setTime(m_time);
}

void QTimeBar::setTime(double time)
{
    if (std::isnan(time))
        return;
    time = std::clamp(time, m_start, m_end);
    if (time == m_time)
        return;
    m_time = time;
    Q_EMIT timeChanged(m_time);
}

void QTimeBar::setPlaying(bool playing)
{
    if (playing == m_playing)
        return;
    if (playing && m_time >= m_end) {
        if (m_end <= m_start)
            return; // nothing to play
        setTime(m_start);
    }
    m_playing = playing;
    if (playing) {
        m_clock.start();
        m_timer.start();
    } else {
        m_timer.stop();
    }
    Q_EMIT playingChanged(m_playing);
}

void QTimeBar::setSpeedIndex(int index)
{
    index = std::clamp(index, 0, static_cast<int>(std::size(SPEEDS)) - 1);
    if (index == m_speed_index)
        return;
    m_speed_index = index;
    Q_EMIT speedChanged();
}

void QTimeBar::stepForward()
{
    const double steps = std::floor((m_time - m_start) / m_step + STEP_TOLERANCE);
    setTime(m_start + (steps + 1.0) * m_step);
}

void QTimeBar::stepBackward()
{
    const double steps = std::ceil((m_time - m_start) / m_step - STEP_TOLERANCE);
    setTime(m_start + (steps - 1.0) * m_step);
}

void QTimeBar::advance(double elapsed)
{
    if (!m_playing || !(elapsed > 0.0))
        return;
    setTime(m_time + elapsed * speed());
    if (m_time >= m_end)
        setPlaying(false);
}

void QTimeBar::onTick()
{
    advance(static_cast<double>(m_clock.restart()) / 1000.0);
}

QString QTimeBar::formatTime(double seconds)
{
    if (!std::isfinite(seconds))
        return QStringLiteral("-");
    const QString sign = seconds < 0.0 ? QStringLiteral("-") : QString();
    // Whole hundredths first, so that 59.999 shows as 1:00.00 and not 0:60.00.
    const auto hundredths = static_cast<long long>(std::llround(std::fabs(seconds) * 100.0));
    const long long total_seconds = hundredths / 100;
    const long long hours = total_seconds / 3600;
    const long long minutes = (total_seconds / 60) % 60;
    const QString rest = QStringLiteral("%1.%2")
                             .arg(total_seconds % 60, 2, 10, QLatin1Char('0'))
                             .arg(hundredths % 100, 2, 10, QLatin1Char('0'));
    if (hours > 0)
        return sign + QStringLiteral("%1:%2:").arg(hours).arg(minutes, 2, 10, QLatin1Char('0')) + rest;
    return sign + QStringLiteral("%1:").arg(minutes) + rest;
}

} // namespace lum
