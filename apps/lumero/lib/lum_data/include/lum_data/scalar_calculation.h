#pragma once

#include <ferrin_core/scalar_channel.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace lum::data {

/// Collects the values of a span for ScalarChannel::calculateValue: minimum, maximum, mean and
/// the sums for RMS and AC RMS. Every channel that answers calculateValue works with it.
class ScalarCalculation
{
public:
    void add(double value)
    {
        if (std::isnan(value))
            return;
        if (m_count == 0) {
            m_min = m_max = value;
        } else {
            m_min = std::min(m_min, value);
            m_max = std::max(m_max, value);
        }
        // Welford's update keeps the AC part exact enough for long spans.
        ++m_count;
        const double delta = value - m_mean;
        m_mean += delta / static_cast<double>(m_count);
        m_m2 += delta * (value - m_mean);
        m_sum_of_squares += value * value;
    }

    /// The calculation type's result; NaN for no values or an unknown type.
    double result(std::int32_t type) const
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        if (m_count == 0)
            return nan;
        const double n = static_cast<double>(m_count);
        switch (type) {
        case ferrin::CALC_AVERAGE:
        case ferrin::CALC_AVERAGE_NO_USER_SCALING:
            return m_mean;
        case ferrin::CALC_RMS:
        case ferrin::CALC_RMS_NO_USER_SCALING:
            return std::sqrt(m_sum_of_squares / n);
        case ferrin::CALC_ACRMS:
        case ferrin::CALC_ACRMS_NO_USER_SCALING:
            return std::sqrt(m_m2 / n);
        case ferrin::CALC_MIN:
            return m_min;
        case ferrin::CALC_MAX:
            return m_max;
        case ferrin::CALC_PEAK2PEAK:
            return m_max - m_min;
        default:
            return nan;
        }
    }

    static bool isKnown(std::int32_t type)
    {
        return type >= ferrin::CALC_AVERAGE && type <= ferrin::CALC_ACRMS_NO_USER_SCALING;
    }

private:
    std::uint64_t m_count = 0;
    double m_min = 0.0;
    double m_max = 0.0;
    double m_mean = 0.0;
    double m_m2 = 0.0;
    double m_sum_of_squares = 0.0;
};

} // namespace lum::data
