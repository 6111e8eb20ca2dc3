#include <lum_host/host_application.h>

#include <QQmlEngine>

namespace lum {

namespace {

// The views get these through invokables and properties; the engine must never delete them.
void keepNative(QObject* object)
{
    QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
}

} // namespace

// The application's list owns its channels; instruments and views only point at them.
HostApplication::HostApplication(QObject* parent)
    : QObject(parent), m_channels(new lum::qchannel::QChannelListModel(
                           lum::qchannel::QChannelListModel::DELIVERY_QUEUED, true, this)),
      m_image_store(new lum_utils::ImageStore(this)), m_state(new ApplicationState(this))
{
    keepNative(m_channels);
    keepNative(m_image_store);
    keepNative(m_state);
}

HostApplication::~HostApplication() = default;

QExtensionModule* HostApplication::getExtensionModule(const QString& id) const
{
    return m_extension_modules.value(id, nullptr);
}

bool HostApplication::addExtensionModule(QExtensionModule* module)
{
    if (module == nullptr || m_extension_modules.contains(module->identifier()))
        return false;
    module->setParent(this);
    keepNative(module);
    const QString id = module->identifier();
    m_extension_modules.insert(id, module);
    // A module deleted by its user must not be handed out afterwards.
    connect(module, &QObject::destroyed, this, [this, id] { m_extension_modules.remove(id); });
    return true;
}

} // namespace lum
