#pragma once

#include <ferrin_core/time_base.h>

namespace lum::data {

/// A fixed clock: @p frequency ticks per second from @p start_time on.
class MemoryTimeBase : public ferrin::TimeBase
{
public:
    MemoryTimeBase(double frequency, double start_time) : m_frequency(frequency), m_start_time(start_time) {}

    double getFrequency() const override { return m_frequency; }
    double getStartTime() const override { return m_start_time; }

private:
    double m_frequency;
    double m_start_time;
};

} // namespace lum::data
