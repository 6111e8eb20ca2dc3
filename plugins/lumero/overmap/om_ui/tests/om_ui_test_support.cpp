#include "om_ui_test_support.h"

#include <lum_data/memory_time_base.h>
#include <lum_data/sync_scalar_channel.h>

#include <config_items/string_config_item.h>
#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>

#include <QMetaMethod>

namespace om_ui_test {

math_geo::ProjectionPlane sitePlane()
{
    return math_geo::ProjectionPlane(SITE, 0.0, math_geo::CoordinateSystem::X_FRONT_Y_LEFT);
}

namespace {
const std::shared_ptr<ferrin::DataRegionsManager>& regions()
{
    static const auto manager = std::make_shared<ferrin::DataRegionsManager>();
    return manager;
}

ferrin::ChannelSetup nextSetup(double rate, const std::string& name)
{
    static std::uint32_t next_local_id = 1;
    ferrin::ChannelSetup setup;
    setup.id = channel_config::ChannelID(1, next_local_id++);
    setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(rate, 0.0);
    setup.items = std::make_shared<ferrin::ConfigItemStore>();
    setup.items->set("Ferrin/Name", config_items::StringConfigItem(name));
    return setup;
}

class NonScalarChannel : public ferrin::Channel
{
public:
    using ferrin::Channel::Channel;
    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return nullptr; }
    daq::SamplePtr getSampleAtTime(double) const override { return nullptr; }
};
} // namespace

std::shared_ptr<ferrin::Channel> makeScalar(double rate, std::vector<double> values, const std::string& name)
{
    ferrin::ChannelSetup setup = nextSetup(rate, name);
    const std::uint64_t stream = setup.id.toUInt64();
    return lum::data::SyncScalarChannel::create(std::move(setup), std::move(values), regions(), stream);
}

std::shared_ptr<ferrin::Channel> makeNonScalar(const std::string& name)
{
    return std::make_shared<NonScalarChannel>(nextSetup(10.0, name));
}

ChannelList::ChannelList()
    : m_model(std::make_unique<lum::qchannel::QChannelListModel>(
          lum::qchannel::QChannelListModel::DELIVERY_IMMEDIATE, true))
{}

ChannelList::~ChannelList() = default;

lum::qchannel::QChannel* ChannelList::add(std::shared_ptr<ferrin::Channel> channel)
{
    auto* qchannel = new lum::qchannel::QChannel(std::move(channel));
    m_model->appendChannel(qchannel);
    return qchannel;
}

SignalRecorder::SignalRecorder(QObject* sender)
{
    const QMetaObject* meta = sender->metaObject();
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() != QMetaMethod::Signal || method.name() == "destroyed" ||
            method.name() == "objectNameChanged")
            continue;
        const int slot = QObject::staticMetaObject.methodCount() + m_signal_names.size();
        m_signal_names.append(method.name());
        QMetaObject::connect(sender, i, this, slot, Qt::DirectConnection);
    }
}

int SignalRecorder::qt_metacall(QMetaObject::Call call, int id, void** arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod)
        return id;
    if (id < m_signal_names.size())
        m_log.append(QString::fromLatin1(m_signal_names.at(id)));
    return -1;
}

} // namespace om_ui_test
