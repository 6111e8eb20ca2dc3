#pragma once

#include <om_model/if_channel_fetcher.h>

#include <channel_config/channel_id.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ferrin {
class Channel;
class ScalarChannel;
} // namespace ferrin

namespace lum::qchannel {
class QChannel;
class QChannelListModel;
} // namespace lum::qchannel

namespace overmap_ui {

/// Lets the model layer find channels in the host's channel list, and the display layer
/// find the QChannel of a core channel. The list is not owned.
class QChannelFetcher : public overmap::IfChannelFetcher
{
public:
    QChannelFetcher() = default;
    ~QChannelFetcher() override;

    std::shared_ptr<ferrin::ScalarChannel> findById(channel_config::ChannelID id) override;
    std::shared_ptr<ferrin::ScalarChannel> findByName(std::string name) override;

    void setChannelList(lum::qchannel::QChannelListModel* list) { m_channel_list = list; }
    lum::qchannel::QChannelListModel* channelList() const { return m_channel_list; }
    /// The node of the extension; local ids are made into channel ids with it.
    void setNodeId(std::uint32_t node_id) { m_node_id = node_id; }
    std::uint32_t nodeId() const { return m_node_id; }

    lum::qchannel::QChannel* getChannelByLocalId(std::uint32_t local_id) const;
    /// The QChannel of @p channel, by its id; null without list or channel.
    lum::qchannel::QChannel* qchannelOf(const ferrin::Channel* channel) const;
    /// The channel in which the host's extension delivers the result of calculation
    /// @p calc_id; null without list, or before the extension made it.
    lum::qchannel::QChannel* resultChannelOf(int calc_id) const;

private:
    lum::qchannel::QChannelListModel* m_channel_list = nullptr;
    std::uint32_t m_node_id = 0;
};

} // namespace overmap_ui
