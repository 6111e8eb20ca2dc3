#pragma once

#include <lum_host/application_state.h>
#include <lum_host/qextension_module.h>

#include <instrument_interface/if_application.h>
#include <lum_utils/image_store.h>
#include <qchannel/qchannel_list_model.h>

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

namespace lum {

/// The host's application as instruments and their views see it: one channel list, one
/// image store, the extension modules by identifier and the application state, all
/// owned here, as are the channels in the list. It serves as the views' "app" object too.
class HostApplication : public QObject, public im::IfApplication
{
    Q_OBJECT
    Q_PROPERTY(lum::qchannel::QChannelListModel* channels READ getChannels CONSTANT)
    Q_PROPERTY(lum::IfApplicationState* state READ getState CONSTANT)

public:
    /// The channel list takes the acquisition core's messages through its timer, and owns
    /// its channels.
    explicit HostApplication(QObject* parent = nullptr);
    ~HostApplication() override;

    lum::qchannel::QChannelListModel* getChannels() const override { return m_channels; }
    Q_INVOKABLE lum_utils::ImageStore* getImageStore() const override { return m_image_store; }
    /// Null for an identifier no module was added under.
    Q_INVOKABLE QExtensionModule* getExtensionModule(const QString& id) const override;
    lum::IfApplicationState* getState() const override { return m_state; }

    /// The state, for the host to set.
    ApplicationState* applicationState() const { return m_state; }

    /// Takes @p module under its identifier and owns it from then on. False, with the
    /// module left to the caller, for a null module or an identifier already taken:
    /// instruments may hold the module that is there.
    bool addExtensionModule(QExtensionModule* module);
    /// In the order of their identifiers.
    QList<QExtensionModule*> extensionModules() const { return m_extension_modules.values(); }

private:
    lum::qchannel::QChannelListModel* m_channels;
    lum_utils::ImageStore* m_image_store;
    ApplicationState* m_state;
    QMap<QString, QExtensionModule*> m_extension_modules;
};

} // namespace lum
