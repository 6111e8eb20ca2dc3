#pragma once

#include <ferrin_core/config_item_store.h>
#include <ferrin_core/data_regions_manager.h>
#include <ferrin_core/data_source.h>
#include <ferrin_core/reduced_value.h>
#include <ferrin_core/sample.h>
#include <ferrin_core/time_base.h>

#include <channel_config/channel_id.h>

#include <any>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

namespace ferrin_config {
class IfChannelConfigManager;
struct ConfigRequest;
} // namespace ferrin_config

namespace ferrin {

/// How a channel's samples arrive.
enum SampleOccurrence : std::int32_t
{
    OCCURRENCE_SYNC = 0,
    OCCURRENCE_ASYNC = 1,
    OCCURRENCE_SINGLE_VALUE = 2,
    OCCURRENCE_NEVER = 3
};

/// The `Range` item of a channel is missing or not a range of doubles.
class InvalidRangeException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Called with the channel's id and the key whenever an item of the channel changes.
using ConfigObserver = std::function<void(channel_config::ChannelID, const std::string& key)>;

/// What a host fixes when it makes a channel.
struct ChannelSetup
{
    channel_config::ChannelID id;
    std::shared_ptr<TimeBase> time_base;
    /// DAQSampleResolution: 0 a byte format, 12 CAN, 13 FlexRay, 17 string ...
    std::int32_t sample_resolution = 11;
    /// SampleOccurrence
    std::int32_t sample_occurrence = OCCURRENCE_SYNC;
    std::uint32_t sample_dimension = 1;
    std::weak_ptr<DataRegionsManager> regions_manager;
    ferrin_config::IfChannelConfigManager* config_manager = nullptr;
    std::shared_ptr<ConfigItemStore> items;
    /// Ids (64-bit form) of the channels that depend on this one.
    std::unordered_set<std::uint64_t> dependent_channels;
    /// Internal channels are kept away from the display layer.
    bool internal = false;
};

/// The acquisition core's view of one measurement channel: configuration items, time
/// base and samples. The host makes the concrete channels; the kind of a channel is
/// found by dynamic_cast, never by a stored tag. A channel is valid while it has a
/// data source.
class Channel
{
public:
    explicit Channel(ChannelSetup setup);
    virtual ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    // --- given by the host ---
    virtual std::shared_ptr<DataSource> getDataSource() const = 0;
    /// The sample at or before @p time (seconds), null for none.
    virtual daq::SamplePtr getSampleAtTime(double time) const = 0;
    virtual std::optional<std::map<std::string, std::any>> getMetaData() const { return std::nullopt; }
    virtual bool hasMetaData() const { return false; }
    /// Reads one entry of a reduced stream; by default four native doubles.
    virtual std::optional<ReducedValue> decodeReducedEntry(const std::uint8_t* entry,
                                                           std::uint32_t size) const;

    // --- fixed at construction ---
    bool isValid() const { return getDataSource() != nullptr; }
    const std::shared_ptr<TimeBase>& getTimeBase() const { return m_time_base; }
    std::int32_t getSampleResolution() const { return m_sample_resolution; }
    std::int32_t getSampleOccurrence() const { return m_sample_occurrence; }
    std::uint32_t getSampleDimension() const { return m_sample_dimension; }
    std::shared_ptr<DataRegionsManager> getRegionsManager() const { return m_regions_manager.lock(); }
    ferrin_config::IfChannelConfigManager* getChannelConfigManager() const
    {
        return m_channel_config_manager;
    }
    const std::shared_ptr<ConfigItemStore>& getItemStore() const { return m_items; }
    channel_config::ChannelID getChannelId() const { return m_id; }
    const std::unordered_set<std::uint64_t>& getDependentChannels() const { return m_dependent_channels; }
    bool isInternal() const { return m_internal; }

    // --- configuration, read through the item store ---
    std::string getName() const;
    /// Falls back to getName() when empty.
    std::string getLongName() const;
    std::string getDomain() const;
    /// `Ferrin/PhysicalUnit`, or `Unit` when that is empty.
    std::string getUnit() const;
    /// "black" when not set.
    std::string getColor() const;
    /// DAQChannelType as a number; 59 when the item is missing or of another kind.
    std::int32_t getChannelType() const;
    bool isHidden() const;
    bool isUsed() const;
    /// Throws std::runtime_error("enum type not matching") for an enumeration item of
    /// another type than "ChannelStored".
    bool isStored() const;
    bool isNameUnique() const;
    bool isNamePotentiallyUnique() const;
    /// The source channel of a metadata channel; none for other channels.
    std::optional<channel_config::ChannelID> getMetadataChannelOf() const;
    /// Minimum and maximum from the `Range` item; throws InvalidRangeException.
    std::pair<double, double> readRange() const;
    /// readRange() with every failure turned into NaN.
    double getRangeMinimum() const;
    double getRangeMaximum() const;

    /// A copy of the item; an InvalidConfigItem without store or key.
    ConfigItem getConfigItem(const std::string& key) const;
    bool hasConfigItem(const std::string& key) const;
    /// Every key, in the store's order; empty without store.
    std::vector<std::string> getConfigKeys() const;
    ConstraintList getConstraints(const std::string& key) const;
    std::vector<MeasurementChainElement> getMeasurementChain() const;

    /// Sends one request for this channel through the config manager; false for an
    /// unknown key or when the manager refuses.
    bool setConfigItem(const std::string& key, const ConfigItem& item);
    /// Sends all requests in one call; true for none. Every request must be for this
    /// channel, else nothing is sent.
    bool setConfigItems(const std::vector<ferrin_config::ConfigRequest>& requests);

    /// The key's item is a bool that is true, and the channel is used.
    bool isChannelActionAvailable(const std::string& key) const;
    /// Runs the action through the config manager if it is available.
    bool applyChannelAction(const std::string& key, double time);

    /// Stores @p observer under @p owner; an empty function removes the entry.
    void registerObserver(const void* owner, ConfigObserver observer);
    /// Calls every observer with this channel's id and @p key, on the calling thread.
    /// The host's config manager calls it after changing an item.
    void notifyConfigItemChanged(const std::string& key) const;

    // --- samples ---
    /// Regions of data between two ticks; with @p level above 0 in indices of the
    /// reduced stream of that level and @p kind.
    DataRegions getDataRegions(Tick first, Tick last, std::uint32_t kind, std::uint32_t level, bool clip,
                               bool include_open) const;
    /// Whether @p tick (with @p level above 0: the reduced entry of that index) is there.
    bool isDataAvailable(Tick tick, std::uint32_t kind, std::uint32_t level) const;
    /// The sample at or before @p time, loading it when it is recorded but not in memory.
    daq::SamplePtr getSampleAtTimeEnsureLoaded(double time) const;
    /// The last complete reduced entry before @p time; @p level must be above 0.
    std::optional<ReducedValue> getReducedValueAtTime(double time, std::uint32_t level, std::uint32_t kind,
                                                      bool ensure_loaded) const;

private:
    std::optional<ConfigItem> item(const std::string& key) const;
    std::string text(const std::string& key) const;
    std::optional<bool> flag(const std::string& key) const;
    bool sendRequests(const std::vector<ferrin_config::ConfigRequest>& requests) const;

    std::shared_ptr<TimeBase> m_time_base;
    std::int32_t m_sample_resolution;
    std::int32_t m_sample_occurrence;
    std::uint32_t m_sample_dimension;
    std::weak_ptr<DataRegionsManager> m_regions_manager;
    ferrin_config::IfChannelConfigManager* m_channel_config_manager;
    std::shared_ptr<ConfigItemStore> m_items;
    channel_config::ChannelID m_id;
    std::unordered_set<std::uint64_t> m_dependent_channels;
    bool m_internal;

    mutable std::mutex m_observer_mutex;
    std::map<const void*, ConfigObserver> m_observers;
};

} // namespace ferrin
