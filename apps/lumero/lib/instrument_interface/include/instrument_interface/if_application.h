#pragma once

#include <QString>

class QExtensionModule;

namespace lum {
class IfApplicationState;
}
namespace lum::qchannel {
class QChannelListModel;
}
namespace lum_utils {
class ImageStore;
}

namespace im {

/// The host application as its instruments see it. A host implements it on a QObject
/// that also serves as the views' "app" object, so the operations are named as the
/// views use them: the property "channels", the invokables "getImageStore()" and
/// "getExtensionModule(id)", and the property "state". Nothing returned is owned by
/// the caller; a missing part is null.
class IfApplication
{
public:
    virtual ~IfApplication() = default;

    /// All channels of the application.
    virtual lum::qchannel::QChannelListModel* getChannels() const = 0;
    /// The pictures that travel inside setups.
    virtual lum_utils::ImageStore* getImageStore() const = 0;
    /// The extension module with this identifier; null if the host has none.
    virtual QExtensionModule* getExtensionModule(const QString& id) const = 0;
    /// Whether the host records, replays or idles, and the time it displays.
    virtual lum::IfApplicationState* getState() const = 0;
};

} // namespace im
