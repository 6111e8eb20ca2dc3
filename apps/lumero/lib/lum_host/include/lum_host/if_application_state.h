#pragma once

#include <QObject>
#include <QString>

namespace lum {

/// What the host tells its instruments about itself: whether it records, replays or
/// idles, which measurement is open, and the time it displays.
class IfApplicationState : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Mode mode READ mode NOTIFY modeChanged)
    Q_PROPERTY(QString measurementName READ measurementName NOTIFY measurementNameChanged)
    Q_PROPERTY(double displayedTime READ displayedTime NOTIFY displayedTimeChanged)
    Q_PROPERTY(bool offline READ isOffline NOTIFY offlineChanged)

public:
    enum Mode
    {
        IDLE = 0,
        RECORDING = 1,
        REPLAY = 2
    };
    Q_ENUM(Mode)

    using QObject::QObject;

    virtual Mode mode() const = 0;
    virtual QString measurementName() const = 0;
    /// Seconds on the measurement's time axis.
    virtual double displayedTime() const = 0;
    /// True when the user has told the host to stay off the network.
    virtual bool isOffline() const = 0;

Q_SIGNALS:
    void modeChanged();
    void measurementNameChanged();
    void displayedTimeChanged();
    void offlineChanged();
};

} // namespace lum
