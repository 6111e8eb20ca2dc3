#pragma once

// An instrument, channels and an application for the tests of the instrument base.

#include <instrument_interface/channel_props.h>
#include <instrument_interface/if_application.h>
#include <instrument_interface/instrument_model.h>
#include <instrument_interface/property_change_forwarder.h>

#include <lum_data/memory_channel_config_manager.h>
#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>
#include <qchannel/qchannel_list_model.h>

#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>

#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace instrument_test {

/// Synchronous scalar channels in memory, each with its own Qt face.
class Channels
{
public:
    lum::qchannel::QChannel* make(channel_config::ChannelID id, const std::string& name,
                                  std::vector<double> values = {1.0, 2.0})
    {
        ferrin::ChannelSetup setup;
        setup.id = id;
        setup.time_base = m_time_base;
        setup.regions_manager = m_regions;
        setup.config_manager = &m_manager;
        setup.items = std::make_shared<ferrin::ConfigItemStore>();
        setup.items->set("Ferrin/Name", config_items::StringConfigItem(name));
        setup.items->set("Used", config_items::SingleValueConfigItem<bool>(true));
        setup.items->set("Unit", config_items::StringConfigItem("V"));
        auto channel =
            lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), m_regions, ++m_stream);
        m_manager.addChannel(channel);
        m_channels.push_back(std::make_unique<lum::qchannel::QChannel>(channel));
        return m_channels.back().get();
    }

    /// Sets an item as the host's configuration end does, and tells the channel's observers.
    static void setItem(lum::qchannel::QChannel* channel, const std::string& key, ferrin::ConfigItem item)
    {
        channel->ferrinChannel()->getItemStore()->set(key, std::move(item));
        channel->ferrinChannel()->notifyConfigItemChanged(key);
    }

    /// Destroys the Qt face of @p channel now.
    void destroy(lum::qchannel::QChannel* channel)
    {
        for (auto& owned : m_channels)
            if (owned.get() == channel)
                owned.reset();
    }

private:
    std::shared_ptr<lum::data::MemoryTimeBase> m_time_base =
        std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
    std::shared_ptr<ferrin::DataRegionsManager> m_regions = std::make_shared<ferrin::DataRegionsManager>();
    lum::data::MemoryChannelConfigManager m_manager;
    std::uint64_t m_stream = 0;
    // Last, so that the Qt faces go before the manager that their channels point at.
    std::vector<std::unique_ptr<lum::qchannel::QChannel>> m_channels;
};

/// Channel properties with a setting of their own, as instruments' subclasses have them.
class SettingProps : public im::ChannelProps
{
    Q_OBJECT
    Q_PROPERTY(double threshold MEMBER m_threshold NOTIFY thresholdChanged)

public:
    SettingProps(lum::qchannel::QChannel* channel, QObject* parent) : ChannelProps(channel, parent)
    {
        forwarder()->addProperty("threshold", true);
    }

Q_SIGNALS:
    void thresholdChanged();

private:
    double m_threshold = 0.0;
};

/// An instrument that asks for the whole of each channel and records its hooks.
class TestInstrument : public im::InstrumentModel
{
    Q_OBJECT

public:
    explicit TestInstrument(int max_channels = 1, QObject* parent = nullptr, bool time_range = false,
                            bool lock_label_format = false)
        : InstrumentModel(parent, time_range)
    {
        setMaxChannels(max_channels);
        if (lock_label_format)
            setChannelLabelFormat(CHANNEL_LABEL_NOT_AVAILABLE);
    }

    std::string getType() const override { return "test::instrument"; }
    std::string getGroup() const override { return "Tests"; }

    void updateDataWindows() override
    {
        std::lock_guard<std::recursive_mutex> lock(channelsLock());
        dataWindows().clear();
        for (im::ChannelProps* props : getChannels()->typedList())
            if (props->channel() != nullptr)
                dataWindows().push_back({props->channel()->ferrinChannel(), 0, 0, 2, 0});
        ++updates;
    }

    bool acceptsChannel(lum::qchannel::QChannel* channel) const override
    {
        return InstrumentModel::acceptsChannel(channel) && !refused.contains(channel);
    }

    im::ChannelProps* createChannelProps(lum::qchannel::QChannel* channel) override
    {
        return without_props ? nullptr : new SettingProps(channel, this);
    }
    void channelAboutToBeAdded(lum::qchannel::QChannel* channel, im::ChannelProps* props) override
    {
        hooks << "aboutToBeAdded " + nameOf(channel, props);
    }
    void channelAdded(lum::qchannel::QChannel* channel, im::ChannelProps* props) override
    {
        hooks << "added " + nameOf(channel, props);
    }
    void channelRemoved(lum::qchannel::QChannel* channel, im::ChannelProps* props) override
    {
        hooks << "removed " + nameOf(channel, props);
    }

    /// The names of the channels in row order.
    QStringList rows() const
    {
        QStringList names;
        for (im::ChannelProps* props : getChannels()->typedList())
            names << (props->channel() != nullptr ? props->channel()->name() : QString("-"));
        return names;
    }

    using InstrumentModel::forwarder;
    using InstrumentModel::setMaxChannels;
    using InstrumentModel::setType;

    QSet<lum::qchannel::QChannel*> refused;
    bool without_props = false; // a subclass that breaks its contract
    QStringList hooks;
    int updates = 0;

private:
    static QString nameOf(lum::qchannel::QChannel* channel, im::ChannelProps* props)
    {
        // The properties given to a hook belong to that channel.
        const bool matches = props != nullptr && props->channel() == channel;
        return (channel != nullptr ? channel->name() : QString("-")) + (matches ? "" : " (other props)");
    }
};

/// The application as instruments see it: a channel list and nothing else.
class ChannelsOnlyApplication : public im::IfApplication
{
public:
    lum::qchannel::QChannelListModel* getChannels() const override { return list.get(); }
    lum_utils::ImageStore* getImageStore() const override { return nullptr; }
    QExtensionModule* getExtensionModule(const QString& /*id*/) const override { return nullptr; }
    lum::IfApplicationState* getState() const override { return nullptr; }

    std::unique_ptr<lum::qchannel::QChannelListModel> list =
        std::make_unique<lum::qchannel::QChannelListModel>(
            lum::qchannel::QChannelListModel::DELIVERY_IMMEDIATE);
};

} // namespace instrument_test
