#include "calc_log.h"
#include <lum_calc_extension/qcalculation_extension.h>

#include <lum_calc_extension/calculation_scene.h>
#include <lum_calc_extension/result_channel.h>

#include <lum_host/qextension_module.h>

#include <lum_data/memory_channel_config_manager.h>

#include <om_model/calculation.h>

#include <uni_base/uni_log.h>

#include <set>

namespace lum::calc {

namespace {

/// The channel's name: the calculation's, or a stand-in for a calculation without one,
/// since a channel list shows channels by name.
std::string channelName(const overmap::Calculation& calculation)
{
    return calculation.getName().empty() ? "Calculation " + std::to_string(calculation.getId())
                                         : calculation.getName();
}

} // namespace

QCalculationExtension::QCalculationExtension(QExtensionModule& extension,
                                             lum::data::MemoryChannelConfigManager& channels,
                                             overmap::IfChannelFetcher& fetcher, QObject* parent)
    : QObject(parent), m_extension(extension), m_channel_list(channels), m_fetcher(fetcher)
{
    connect(&m_extension, &QExtensionModule::extensionConfigurationChanged, this,
            &QCalculationExtension::rebuild);
    if (!m_extension.getExtensionConfiguration().isEmpty())
        rebuild();
}

QCalculationExtension::~QCalculationExtension()
{
    for (const auto& entry : m_channels)
        m_channel_list.removeChannel(entry.second->getChannelId());
}

channel_config::ChannelID QCalculationExtension::resultChannelId(std::uint32_t node_id,
                                                                 std::int32_t calculation_id)
{
    return channel_config::ChannelID(node_id, overmap::CALCULATION_RESULT_LOCAL_ID_BASE +
                                                  static_cast<std::uint32_t>(calculation_id));
}

std::shared_ptr<ResultChannel> QCalculationExtension::resultChannel(std::int32_t calculation_id) const
{
    const auto found = m_channels.find(calculation_id);
    return found == m_channels.end() ? nullptr : found->second;
}

bool QCalculationExtension::rebuild()
{
    std::shared_ptr<CalculationScene> scene =
        CalculationScene::read(m_extension.getExtensionConfiguration().toStdString(), m_fetcher);
    if (!scene) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR) << "Unable to load overmap setup for the calculations";
        return false;
    }
    m_scene = scene;

    std::map<std::int32_t, std::shared_ptr<ResultChannel>> channels;
    for (const auto& calculation : scene->measurableCalculations()) {
        const std::int32_t id = calculation->getId();
        if (calculation->getId() < 0 || channels.count(id) != 0)
            continue; // no channel id for it, or a second calculation with the same id
        const std::string name = channelName(*calculation);
        ResultChannel::Binding binding{scene, calculation};
        const auto old = m_channels.find(id);
        if (old != m_channels.end() && old->second->clock() == ResultChannel::clockFor(*calculation)) {
            // The same channel goes on: list entries, display names and observers stay.
            old->second->rebind(std::move(binding));
            if (old->second->getName() != name)
                old->second->setConfigItem("Ferrin/Name", config_items::StringConfigItem(name));
            channels.emplace(id, old->second);
            continue;
        }
        // New, or moved by other channels now: a channel of its own (a replacement under the
        // same id reaches the list as a changed channel).
        auto channel = ResultChannel::create(resultChannelId(m_extension.nodeId(), id), name,
                                             std::move(binding), &m_channel_list);
        m_channel_list.addChannel(channel);
        channels.emplace(id, std::move(channel));
    }
    for (const auto& entry : m_channels) {
        if (channels.count(entry.first) == 0)
            m_channel_list.removeChannel(entry.second->getChannelId());
    }
    m_channels = std::move(channels);
    Q_EMIT resultChannelsChanged();
    return true;
}

} // namespace lum::calc
