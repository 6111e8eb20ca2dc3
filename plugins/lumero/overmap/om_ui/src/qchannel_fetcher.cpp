#include <om_ui/qchannel_fetcher.h>

#include "om_ui_log.h"

#include <om_model/calculation.h>

#include <ferrin_core/channel.h>
#include <ferrin_core/scalar_channel.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

namespace overmap_ui {

using lum::qchannel::QChannel;

QChannelFetcher::~QChannelFetcher() = default;

std::shared_ptr<ferrin::ScalarChannel> QChannelFetcher::findById(channel_config::ChannelID id)
{
    if (!UNI_ASSERT(m_channel_list != nullptr))
        return nullptr;
    QChannel* channel = m_channel_list->getChannelByID(id);
    if (channel == nullptr) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_NOTE) << "Unable to fetch in QChannelFetcher channel #";
        return nullptr;
    }
    return channel->ferrinScalarChannel();
}

std::shared_ptr<ferrin::ScalarChannel> QChannelFetcher::findByName(std::string name)
{
    if (!UNI_ASSERT(m_channel_list != nullptr))
        return nullptr;
    const QString wanted = QString::fromStdString(name);
    const QList<QObject*> channels = m_channel_list->list();
    for (QObject* object : channels) {
        auto* channel = qobject_cast<QChannel*>(object);
        if (channel != nullptr && channel->name() == wanted)
            return channel->ferrinScalarChannel();
    }
    UNI_LOG(detail::LOG_CHANNEL, SEV_NOTE) << "Unable to fetch in QChannelFetcher channel " << name;
    return nullptr;
}

QChannel* QChannelFetcher::getChannelByLocalId(std::uint32_t local_id) const
{
    if (!UNI_ASSERT(m_channel_list != nullptr))
        return nullptr;
    return m_channel_list->getChannelByID(channel_config::ChannelID(m_node_id, local_id));
}

QChannel* QChannelFetcher::qchannelOf(const ferrin::Channel* channel) const
{
    if (channel == nullptr || m_channel_list == nullptr)
        return nullptr;
    return m_channel_list->getChannelByID(channel->getChannelId());
}

QChannel* QChannelFetcher::resultChannelOf(int calc_id) const
{
    // A renaming before the channel list arrives has no channel to follow it: no assertion.
    if (m_channel_list == nullptr || calc_id < 0)
        return nullptr;
    const std::uint32_t local_id =
        overmap::CALCULATION_RESULT_LOCAL_ID_BASE + static_cast<std::uint32_t>(calc_id);
    return m_channel_list->getChannelByID(channel_config::ChannelID(m_node_id, local_id));
}

} // namespace overmap_ui
