#include <ferrin_core/channel.h>

#include <ferrin_core/channel_config_manager.h>
#include <ferrin_core/channel_roi_controller.h>
#include <ferrin_core/tick_arithmetic.h>

#include <uni_base/uni_assert.h>

#include <cmath>
#include <limits>

namespace ferrin {

namespace {

constexpr std::int32_t CHANNEL_TYPE_NONE = 59;
constexpr const char* CHANNEL_STORED_ENUM = "ChannelStored";

template <typename T>
const T* itemAs(const std::optional<ConfigItem>& item)
{
    return item ? std::get_if<T>(&*item) : nullptr;
}

/// Ceiling of a / b without overflow; all ones stays all ones.
Tick ceilDiv(Tick a, Tick b)
{
    if (a == NO_TICK)
        return NO_TICK;
    return a / b + (a % b != 0 ? 1 : 0);
}

} // namespace

Channel::Channel(ChannelSetup setup)
    : m_time_base(std::move(setup.time_base)), m_sample_resolution(setup.sample_resolution),
      m_sample_occurrence(setup.sample_occurrence), m_sample_dimension(setup.sample_dimension),
      m_regions_manager(std::move(setup.regions_manager)), m_channel_config_manager(setup.config_manager),
      m_items(std::move(setup.items)), m_id(setup.id),
      m_dependent_channels(std::move(setup.dependent_channels)), m_internal(setup.internal)
{}

Channel::~Channel() = default;

std::optional<ReducedValue> Channel::decodeReducedEntry(const std::uint8_t* entry, std::uint32_t size) const
{
    return ferrin::decodeReducedEntry(entry, size);
}

// --- configuration ---

std::optional<ConfigItem> Channel::item(const std::string& key) const
{
    if (!m_items)
        return std::nullopt;
    return m_items->get(key);
}

std::string Channel::text(const std::string& key) const
{
    const std::optional<ConfigItem> found = item(key);
    if (!found)
        return {};
    if (const auto* string_item = std::get_if<config_items::StringConfigItem>(&*found))
        return string_item->getValue();
    return channel_config::toString(*found);
}

std::optional<bool> Channel::flag(const std::string& key) const
{
    const std::optional<ConfigItem> found = item(key);
    if (const auto* bool_item = itemAs<config_items::SingleValueConfigItem<bool>>(found))
        return bool_item->getValue();
    return std::nullopt;
}

std::string Channel::getName() const
{
    return text("Ferrin/Name");
}

std::string Channel::getLongName() const
{
    std::string long_name = text("Ferrin/LongName");
    return long_name.empty() ? getName() : long_name;
}

std::string Channel::getDomain() const
{
    return text("Ferrin/DomainUrl");
}

std::string Channel::getUnit() const
{
    std::string unit = text("Ferrin/PhysicalUnit");
    return unit.empty() ? text("Unit") : unit;
}

std::string Channel::getColor() const
{
    std::string color = text("Ferrin/Color");
    return color.empty() ? std::string("black") : color;
}

std::int32_t Channel::getChannelType() const
{
    const std::optional<ConfigItem> found = item("ChannelType");
    if (const auto* type = itemAs<config_items::SingleValueConfigItem<channel_config::DAQChannelType>>(found))
        return static_cast<std::int32_t>(type->getValue());
    return CHANNEL_TYPE_NONE;
}

bool Channel::isHidden() const
{
    const std::optional<ConfigItem> found = item("Visibility");
    if (!found)
        return false;
    if (const auto* visible = std::get_if<config_items::SingleValueConfigItem<bool>>(&*found))
        return !visible->getValue();
    if (const auto* level = std::get_if<config_items::GenericEnumConfigItem>(&*found))
        return level->getValue() == "NONE";
    if (const auto* level = std::get_if<config_items::StringConfigItem>(&*found))
        return level->getValue() == "NONE";
    return false;
}

bool Channel::isUsed() const
{
    return flag("Used").value_or(false);
}

bool Channel::isStored() const
{
    if (!isUsed())
        return false;
    const std::optional<ConfigItem> found = item("Ferrin/Stored");
    const auto* stored = itemAs<config_items::GenericEnumConfigItem>(found);
    if (!stored)
        return true;
    if (stored->getEnumType() != CHANNEL_STORED_ENUM)
        throw std::runtime_error("enum type not matching");
    return stored->getValue() != "No";
}

bool Channel::isNameUnique() const
{
    return flag("Ferrin/NameUnique").value_or(true);
}

bool Channel::isNamePotentiallyUnique() const
{
    return flag("Ferrin/NamePotentiallyUnique").value_or(true);
}

std::optional<channel_config::ChannelID> Channel::getMetadataChannelOf() const
{
    const std::optional<ConfigItem> found = item("MetadataChannelOf");
    if (const auto* source = itemAs<config_items::SingleValueConfigItem<channel_config::ChannelID>>(found))
        return source->getValue();
    return std::nullopt;
}

std::pair<double, double> Channel::readRange() const
{
    const std::optional<ConfigItem> found = item("Range");
    const auto* range = itemAs<config_items::RangeConfigItem<double>>(found);
    if (!range)
        throw InvalidRangeException(found ? "Range is not a range of doubles" : "Range is not set");
    return {range->getMin(), range->getMax()};
}

double Channel::getRangeMinimum() const
{
    try {
        return readRange().first;
    } catch (...) {
        return std::numeric_limits<double>::quiet_NaN();
    }
}

double Channel::getRangeMaximum() const
{
    try {
        return readRange().second;
    } catch (...) {
        return std::numeric_limits<double>::quiet_NaN();
    }
}

ConfigItem Channel::getConfigItem(const std::string& key) const
{
    if (!m_items)
        return config_items::InvalidConfigItem("channel has no configuration");
    if (std::optional<ConfigItem> found = m_items->get(key))
        return std::move(*found);
    return config_items::InvalidConfigItem("no item " + key);
}

bool Channel::hasConfigItem(const std::string& key) const
{
    return m_items && m_items->has(key);
}

std::vector<std::string> Channel::getConfigKeys() const
{
    return m_items ? m_items->keys() : std::vector<std::string>{};
}

ConstraintList Channel::getConstraints(const std::string& key) const
{
    return m_items ? m_items->getConstraints(key) : ConstraintList{};
}

std::vector<MeasurementChainElement> Channel::getMeasurementChain() const
{
    return m_items ? m_items->getMeasurementChain() : std::vector<MeasurementChainElement>{};
}

bool Channel::sendRequests(const std::vector<ferrin_config::ConfigRequest>& requests) const
{
    if (!UNI_ASSERT_MSG(m_channel_config_manager != nullptr, "ChannelConfigManager is not set!"))
        return false;
    return m_channel_config_manager->applyConfigRequests(requests, 0, true, false, false);
}

bool Channel::setConfigItem(const std::string& key, const ConfigItem& item)
{
    if (!hasConfigItem(key))
        return false;
    return sendRequests({ferrin_config::ConfigRequest{m_id, key, item}});
}

bool Channel::setConfigItems(const std::vector<ferrin_config::ConfigRequest>& requests)
{
    if (requests.empty())
        return true;
    for (const ferrin_config::ConfigRequest& request : requests) {
        if (!UNI_ASSERT_MSG(request.channel_id == m_id, "SetConfigItems request contains invalid channel id"))
            return false;
    }
    return sendRequests(requests);
}

bool Channel::isChannelActionAvailable(const std::string& key) const
{
    return flag(key).value_or(false) && isUsed();
}

bool Channel::applyChannelAction(const std::string& key, double time)
{
    if (!isChannelActionAvailable(key))
        return false;
    if (!UNI_ASSERT_MSG(m_channel_config_manager != nullptr, "ChannelConfigManager is not set!"))
        return false;
    return m_channel_config_manager->applyChannelAction(key, {m_id}, time);
}

void Channel::registerObserver(const void* owner, ConfigObserver observer)
{
    std::lock_guard lock(m_observer_mutex);
    if (observer)
        m_observers[owner] = std::move(observer);
    else
        m_observers.erase(owner);
}

void Channel::notifyConfigItemChanged(const std::string& key) const
{
    // Observers may register or unregister from inside the call: walk a copy.
    std::map<const void*, ConfigObserver> observers;
    {
        std::lock_guard lock(m_observer_mutex);
        observers = m_observers;
    }
    for (const auto& [owner, observer] : observers)
        observer(m_id, key);
}

// --- samples ---

bool Channel::isDataAvailable(Tick tick, std::uint32_t kind, std::uint32_t level) const
{
    const std::shared_ptr<DataSource> source = getDataSource();
    const std::shared_ptr<DataRegionsManager> regions = getRegionsManager();
    if (!source || !regions)
        return false;
    const std::uint64_t stream_id = source->streamId();
    if (level == 0)
        return regions->isAvailable(stream_id, kind, tick);

    const std::uint64_t factor = source->reductionFactorByKind(kind, level);
    if (factor == 0)
        return false;
    // Entry `tick` covers ticks [tick * factor, (tick + 1) * factor - 1].
    if (tick >= NO_TICK / factor)
        return false;
    return regions->isRangeAvailable(stream_id, REGION_KIND_REDUCED, tick * factor, (tick + 1) * factor - 1);
}

DataRegions Channel::getDataRegions(Tick first, Tick last, std::uint32_t kind, std::uint32_t level, bool clip,
                                    bool include_open) const
{
    const std::shared_ptr<DataSource> source = getDataSource();
    const std::shared_ptr<DataRegionsManager> regions = getRegionsManager();
    if (!source || !regions)
        return {};
    const std::uint64_t stream_id = source->streamId();
    if (level == 0)
        return regions->getRegions(RegionQuery{stream_id, first, last, kind, clip, include_open});

    const std::uint64_t factor = source->reductionFactorByKind(kind, level);
    if (factor == 0 || last < first)
        return {};
    const Tick query_first = first - first % factor;
    Tick query_last = last;
    if (last / factor < NO_TICK / factor)
        query_last = last / factor * factor + (factor - 1);
    const DataRegions found =
        regions->getRegions(RegionQuery{stream_id, query_first, query_last, kind, false, true});

    const Tick clip_first = ceilDiv(first, factor);
    const Tick clip_end = ceilDiv(last, factor) == NO_TICK ? NO_TICK : ceilDiv(last, factor) + 1;
    DataRegions result;
    for (const auto& [region_first, region_last] : found) {
        // Whole entries only: [entry_first, entry_end) in reduced indices.
        Tick entry_first = ceilDiv(region_first, factor);
        Tick entry_end = region_last == NO_TICK ? NO_TICK : (region_last + 1) / factor;
        if (clip) {
            entry_first = std::max(entry_first, clip_first);
            entry_end = std::min(entry_end, clip_end);
        }
        if (entry_end <= entry_first)
            continue;
        // An open end stays open.
        result.emplace_back(entry_first, entry_end == NO_TICK ? NO_TICK : entry_end - 1);
    }
    return result;
}

daq::SamplePtr Channel::getSampleAtTimeEnsureLoaded(double time) const
{
    if (!getDataSource() || !m_time_base)
        return nullptr;
    const Tick tick = timeToTickFloor(time, *m_time_base);
    if (tick == NO_TICK || !isDataAvailable(tick, REGION_KIND_SAMPLES, 0))
        return nullptr;
    if (m_sample_occurrence == OCCURRENCE_SYNC) {
        if (daq::SamplePtr sample = getSampleAtTime(time))
            return sample;
    }
    ChannelRoiController guard(*this, tick);
    return getSampleAtTime(time);
}

std::optional<ReducedValue> Channel::getReducedValueAtTime(double time, std::uint32_t level,
                                                           std::uint32_t kind, bool ensure_loaded) const
{
    if (!UNI_ASSERT(level > 0))
        return std::nullopt;
    const std::shared_ptr<DataSource> source = getDataSource();
    if (!source || !m_time_base)
        return std::nullopt;
    const std::uint64_t factor = source->reductionFactorByKind(kind, level);
    if (factor == 0)
        return std::nullopt;
    const Tick tick = timeToTickFloor(time, *m_time_base);
    if (tick == NO_TICK)
        return std::nullopt;
    Tick index = tick / factor;
    if (index == 0)
        return std::nullopt;
    // The entry holding the tick is not complete yet: read the one before.
    --index;
    if (!isDataAvailable(index, kind, level))
        return std::nullopt;

    const std::shared_ptr<ReducedStream> stream = source->getReducedStream(kind, level);
    if (!stream)
        return std::nullopt;
    std::optional<ChannelRoiController> guard;
    if (ensure_loaded)
        guard.emplace(source, stream, index, index);
    const std::uint32_t size = stream->entrySize();
    if (size == 0 || size > MAX_REDUCED_ENTRY_SIZE)
        return std::nullopt;
    std::uint8_t entry[MAX_REDUCED_ENTRY_SIZE];
    if (!stream->readEntry(index, entry))
        return std::nullopt;
    return decodeReducedEntry(entry, size);
}

} // namespace ferrin
