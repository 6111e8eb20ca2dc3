#include <lum_host/application_state.h>

namespace lum {

void ApplicationState::setMode(Mode mode)
{
    if (m_mode == mode)
        return;
    m_mode = mode;
    Q_EMIT modeChanged();
}

void ApplicationState::setMeasurementName(const QString& name)
{
    if (m_measurement_name == name)
        return;
    m_measurement_name = name;
    Q_EMIT measurementNameChanged();
}

void ApplicationState::setDisplayedTime(double time)
{
    // Exact comparison: the time bar sets the very values it shows.
    if (m_displayed_time == time)
        return;
    m_displayed_time = time;
    Q_EMIT displayedTimeChanged();
}

void ApplicationState::setOffline(bool offline)
{
    if (m_offline == offline)
        return;
    m_offline = offline;
    Q_EMIT offlineChanged();
}

} // namespace lum
