#pragma once

#include <instrument_interface/channel_data_window.h>

#include <QMetaType>

#include <string>
#include <vector>

namespace im {

/// A host object that an instrument consults for its data windows; set by the host.
class IfDataWindowDelegate
{
public:
    virtual ~IfDataWindowDelegate() = default;
    virtual std::string getDelegateValue() const = 0;
};

/// What the host's data threads ask of an instrument: the data windows it wants loaded.
/// getDataWindows may be called from any thread; everything else from the instrument's.
class IfChannelDataWindowProvider
{
public:
    virtual ~IfChannelDataWindowProvider() = default;

    /// A copy of the windows last computed, taken under the instrument's channels lock.
    virtual std::vector<ChannelDataWindow> getDataWindows() const = 0;
    /// Recomputes the windows from the instrument's present inputs.
    virtual void updateDataWindows() = 0;
    /// The answer of the host's delegate, empty while there is none.
    virtual std::string getDelegateValue() const = 0;
    /// The type identifier of the instrument behind the windows.
    virtual std::string getDataWindowProviderType() const = 0;
};

} // namespace im

Q_DECLARE_METATYPE(const im::IfChannelDataWindowProvider*)
