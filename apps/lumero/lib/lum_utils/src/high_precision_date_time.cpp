#include <lum_utils/high_precision_date_time.h>

#include <uni_base/uni_assert.h>

#include <cmath>
#include <cstdint>
#include <string>

namespace lum_utils {

namespace {

constexpr std::int64_t NS_PER_MS = HighPrecisionDateTime::NANOSECONDS_PER_MILLISECOND;
// Beyond this many seconds the milliseconds leave QDateTime's range anyway.
constexpr double MAX_SECONDS = 1e14;

} // namespace

HighPrecisionDateTime::HighPrecisionDateTime(const QDateTime& date_time, std::uint32_t nanoseconds)
    : m_date_time(date_time), m_nanoseconds(nanoseconds)
{
    if (!UNI_ASSERT(m_nanoseconds < NANOSECONDS_PER_MILLISECOND)) {
        m_date_time = m_date_time.addMSecs(m_nanoseconds / NANOSECONDS_PER_MILLISECOND);
        m_nanoseconds %= NANOSECONDS_PER_MILLISECOND;
    }
}

HighPrecisionDateTime HighPrecisionDateTime::addSeconds(double seconds) const
{
    const double x = m_nanoseconds / 1e9 + seconds;
    if (!std::isfinite(x) || std::fabs(x) > MAX_SECONDS)
        return HighPrecisionDateTime();
    double whole = 0.0;
    double fraction = std::modf(x, &whole);
    if (fraction < 0.0) {
        fraction += 1.0;
        whole -= 1.0;
    }
    const auto whole_seconds = static_cast<std::int64_t>(whole);
    const auto milliseconds = static_cast<std::int64_t>(std::trunc(fraction * 1000.0));
    const auto nanoseconds = static_cast<std::int64_t>(std::trunc(fraction * 1e9));
    if (nanoseconds == 1000000000)
        return HighPrecisionDateTime(m_date_time.addMSecs((whole_seconds + 1) * 1000), 0);
    std::int64_t rest = nanoseconds - milliseconds * NS_PER_MS;
    std::int64_t total_ms = whole_seconds * 1000 + milliseconds;
    // The two products round apart by a nanosecond at millisecond borders: either way.
    while (rest >= NS_PER_MS) {
        ++total_ms;
        rest -= NS_PER_MS;
    }
    while (rest < 0) {
        --total_ms;
        rest += NS_PER_MS;
    }
    return HighPrecisionDateTime(m_date_time.addMSecs(total_ms), static_cast<std::uint32_t>(rest));
}

HighPrecisionDateTime HighPrecisionDateTime::toTimeZone(const QTimeZone& zone) const
{
    return HighPrecisionDateTime(m_date_time.toTimeZone(zone), m_nanoseconds);
}

QString HighPrecisionDateTime::toString(int precision, const QString& separator, bool round,
                                        QDateTime* rounded_time) const
{
    QDateTime shown = m_date_time;
    QString text = shown.toString(QStringLiteral("hh:mm:ss"));
    if (precision >= 1) {
        if (precision > 9)
            precision = 9;
        const std::uint64_t n =
            m_nanoseconds + static_cast<std::uint64_t>(m_date_time.time().msec()) * NS_PER_MS;
        if (!round) {
            std::uint64_t divisor = 1;
            for (int i = precision; i < 9; ++i)
                divisor *= 10;
            text += QStringLiteral("%1%2").arg(separator).arg(n / divisor, precision, 10, QLatin1Char('0'));
        } else {
            QString sub_second_string = QString::number(static_cast<double>(n) / 1e9, 'f', precision);
            UNI_ASSERT(sub_second_string.toStdString().at(0) == '0' ||
                       sub_second_string.toStdString().at(0) == '1');
            // 0.9996 rounds to "1.000": the carry belongs to the seconds.
            shown = shown.addSecs(sub_second_string.at(0).digitValue() == 1 ? 1 : 0);
            text = shown.toString(QStringLiteral("hh:mm:ss")) + separator + sub_second_string.mid(2);
        }
    }
    if (rounded_time)
        *rounded_time = shown;
    return text;
}

} // namespace lum_utils
