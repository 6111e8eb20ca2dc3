#pragma once

#include <lum_host/if_application_state.h>

namespace lum {

/// The standalone host's state: set by its window, read by the instruments.
class ApplicationState : public IfApplicationState
{
    Q_OBJECT

public:
    using IfApplicationState::IfApplicationState;

    Mode mode() const override { return m_mode; }
    QString measurementName() const override { return m_measurement_name; }
    double displayedTime() const override { return m_displayed_time; }
    bool isOffline() const override { return m_offline; }

    void setMode(Mode mode);
    void setMeasurementName(const QString& name);
    void setDisplayedTime(double time);
    void setOffline(bool offline);

private:
    Mode m_mode = IDLE;
    QString m_measurement_name;
    double m_displayed_time = 0.0;
    bool m_offline = false;
};

} // namespace lum
