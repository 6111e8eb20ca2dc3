#pragma once

#include <channel_config/channel_id.h>

#include <QObject>

#include <cstdint>
#include <map>
#include <memory>

class QExtensionModule;

namespace lum::data {
class MemoryChannelConfigManager;
}
namespace overmap {
class IfChannelFetcher;
}

namespace lum::calc {

class CalculationScene;
class ResultChannel;

/// The host's calculation extension: follows the setup text of an extension module and
/// offers, for each of its calculations, a result channel in the host's channel list,
/// with id (the module's node, CALCULATION_RESULT_LOCAL_ID_BASE + calculation id) and the
/// calculation's name as "Ferrin/Name".
///
/// Each change of the text rebuilds the scene, as a display model does: a calculation
/// that went away (or lost an end) takes its channel out of the list, a new one adds
/// one, a renamed one renames its channel, and the others go on with the same channel
/// object, computing from the new scene. A text that cannot be read keeps the old scene
/// and channels, and is logged.
class QCalculationExtension : public QObject
{
    Q_OBJECT

public:
    /// All three must outlive the extension. Reads the module's present text at once.
    QCalculationExtension(QExtensionModule& extension, lum::data::MemoryChannelConfigManager& channels,
                          overmap::IfChannelFetcher& fetcher, QObject* parent = nullptr);
    /// Takes its channels out of the list.
    ~QCalculationExtension() override;

    /// The id of the result channel of calculation @p calculation_id on @p node_id.
    static channel_config::ChannelID resultChannelId(std::uint32_t node_id, std::int32_t calculation_id);

    /// The result channel of a calculation, null when it has none.
    std::shared_ptr<ResultChannel> resultChannel(std::int32_t calculation_id) const;
    /// Every result channel, by calculation id.
    const std::map<std::int32_t, std::shared_ptr<ResultChannel>>& resultChannels() const
    {
        return m_channels;
    }
    /// The scene of the text last read, null before a text could be read.
    const std::shared_ptr<CalculationScene>& scene() const { return m_scene; }

    /// Reads the module's text again; false (old scene and channels kept) when it cannot.
    bool rebuild();

Q_SIGNALS:
    /// After a rebuild that changed the scene, once the channel list has caught up.
    void resultChannelsChanged();

private:
    QExtensionModule& m_extension;
    lum::data::MemoryChannelConfigManager& m_channel_list;
    overmap::IfChannelFetcher& m_fetcher;
    std::shared_ptr<CalculationScene> m_scene;
    std::map<std::int32_t, std::shared_ptr<ResultChannel>> m_channels;
};

} // namespace lum::calc
