#include "calc_log.h"
#include <lum_calc_extension/result_channel.h>

#include <lum_calc_extension/calculation_scene.h>

#include <lum_data/memory_time_base.h>
#include <lum_data/scalar_calculation.h>

#include <ferrin_core/tick_arithmetic.h>

#include <config_items/config_enums.h>

#include <uni_base/uni_log.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lum::calc {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// Reduced data of a result: entry i summarises the values at the clock's samples of the
/// i-th block of the clock's own reduction, worked out when it is read.
class ResultReducedStream : public ferrin::ReducedStream
{
public:
    ResultReducedStream(std::weak_ptr<const ResultChannel> channel, std::uint64_t factor,
                        std::shared_ptr<ferrin::ReducedStream> clock_stream)
        : m_channel(std::move(channel)), m_factor(factor), m_clock_stream(std::move(clock_stream))
    {}

    std::uint32_t entrySize() const override { return ferrin::REDUCED_ENTRY_SIZE; }
    std::uint64_t entryCount() const override { return m_clock_stream->entryCount(); }
    bool readEntry(std::uint64_t index, std::uint8_t* out) const override;
    // Entries are computed from the inputs' samples, which their own sources keep.
    bool reserve(const ferrin::DataSource&, ferrin::Tick, ferrin::Tick, const std::string&,
                 std::uint32_t) override
    {
        return true;
    }
    bool release(const ferrin::DataSource&, ferrin::Tick, ferrin::Tick, const std::string&,
                 std::uint32_t) override
    {
        return true;
    }
    bool load(const ferrin::DataSource&, ferrin::Tick, ferrin::Tick) override { return true; }

private:
    std::weak_ptr<const ResultChannel> m_channel;
    std::uint64_t m_factor;
    std::shared_ptr<ferrin::ReducedStream> m_clock_stream;
};

} // namespace

/// The source behind a result channel: the clock's stream for the data regions and the
/// factors of its reduced data, whose entries are computed from the results.
class ResultSource : public ferrin::DataSource
{
public:
    explicit ResultSource(std::shared_ptr<ferrin::DataSource> clock_source, bool synchronous)
        : m_clock_source(std::move(clock_source)), m_synchronous(synchronous)
    {}

    void setChannel(std::weak_ptr<const ResultChannel> channel) { m_channel = std::move(channel); }

    std::uint64_t reductionFactor(std::uint32_t level, std::uint64_t stream_id) const override
    {
        // Blocks of samples are blocks of ticks only for a clock of evenly spaced samples.
        return m_clock_source && m_synchronous ? m_clock_source->reductionFactor(level, stream_id) : 0;
    }
    std::uint64_t tickReductionFactor(std::uint32_t level, std::uint64_t stream_id) const override
    {
        return m_clock_source ? m_clock_source->tickReductionFactor(level, stream_id) : 0;
    }
    std::shared_ptr<ferrin::ReducedStream> getReducedStream(std::uint32_t kind,
                                                            std::uint32_t level) const override
    {
        const std::uint64_t factor = reductionFactorByKind(kind, level);
        if (factor == 0 || kind > ferrin::REDUCED_KIND_TICKS)
            return nullptr;
        auto clock_stream = m_clock_source->getReducedStream(kind, level);
        if (!clock_stream)
            return nullptr;
        return std::make_shared<ResultReducedStream>(m_channel, factor, std::move(clock_stream));
    }
    std::uint64_t streamId() const override { return m_clock_source ? m_clock_source->streamId() : 0; }
    std::shared_ptr<ferrin::IfLoadableStream> getSampleStream() const override { return nullptr; }

private:
    std::shared_ptr<ferrin::DataSource> m_clock_source;
    bool m_synchronous;
    std::weak_ptr<const ResultChannel> m_channel;
};

namespace {

/// The clock's samples, each with the distance at its time.
class ClockIterator : public ferrin::IfSampleIterator
{
public:
    ClockIterator(const ResultChannel& channel, std::unique_ptr<ferrin::IfSampleIterator> clock)
        : m_channel(channel), m_clock(std::move(clock))
    {}

    std::uint64_t getTimestamp() const override { return m_clock->getTimestamp(); }
    bool isValid() const override { return m_clock->isValid(); }
    const void* getValue() const override
    {
        if (!isValid())
            return nullptr;
        m_value = m_channel.valueAt(ferrin::tickToTime(getTimestamp(), *m_channel.getTimeBase()));
        return &m_value;
    }
    std::uint32_t getValueSize() const override { return isValid() ? sizeof(double) : 0; }
    bool next() override { return m_clock->next(); }

private:
    const ResultChannel& m_channel;
    std::unique_ptr<ferrin::IfSampleIterator> m_clock;
    mutable double m_value = NaN;
};

/// The one sample at tick 0 of a result that stands still.
class StillIterator : public ferrin::IfSampleIterator
{
public:
    StillIterator(const ResultChannel& channel, bool valid) : m_channel(channel), m_valid(valid) {}

    std::uint64_t getTimestamp() const override { return m_valid ? 0 : ferrin::NO_TICK; }
    bool isValid() const override { return m_valid; }
    const void* getValue() const override
    {
        if (!m_valid)
            return nullptr;
        m_value = m_channel.valueAt(0.0);
        return &m_value;
    }
    std::uint32_t getValueSize() const override { return m_valid ? sizeof(double) : 0; }
    bool next() override { return m_valid = false; }

private:
    const ResultChannel& m_channel;
    bool m_valid;
    mutable double m_value = NaN;
};

std::shared_ptr<ferrin::ConfigItemStore> resultItems(const std::string& name)
{
    auto items = std::make_shared<ferrin::ConfigItemStore>();
    items->set("Ferrin/Name", config_items::StringConfigItem(name));
    items->set("Ferrin/LongName", config_items::StringConfigItem(""));
    items->set("Ferrin/PhysicalUnit", config_items::StringConfigItem("m"));
    items->set("Unit", config_items::StringConfigItem("m"));
    items->set("Ferrin/Color", config_items::StringConfigItem("black"));
    items->set("Used", config_items::SingleValueConfigItem<bool>(true));
    // Values exist wherever the inputs were recorded, so it shows as a recorded channel.
    items->set("Ferrin/Stored", config_items::GenericEnumConfigItem("ChannelStored", "Auto"));
    items->set("ChannelType", config_items::SingleValueConfigItem<channel_config::DAQChannelType>(
                                  channel_config::DAQChannelType::CALCULATION));
    items->set("Visibility", config_items::GenericEnumConfigItem("", "PUBLIC"));
    return items;
}

bool ResultReducedStream::readEntry(std::uint64_t index, std::uint8_t* out) const
{
    const auto channel = m_channel.lock();
    if (!channel || !channel->clock() || index >= entryCount())
        return false;
    const ferrin::TimeBase& time_base = *channel->getTimeBase();
    const ferrin::Tick first = index * m_factor;
    const ferrin::Tick last = first + m_factor - 1;
    lum::data::ScalarCalculation statistics;
    for (auto it = channel->clock()->getSampleIterator(first, daq::SEEK_AT_OR_AFTER);
         it->isValid() && it->getTimestamp() <= last; it->next())
        statistics.add(channel->valueAt(ferrin::tickToTime(it->getTimestamp(), time_base)));
    // A block without a value has an entry of not-a-number, as blocks without samples do.
    ferrin::encodeReducedEntry({statistics.result(ferrin::CALC_MIN), statistics.result(ferrin::CALC_MAX),
                                statistics.result(ferrin::CALC_AVERAGE), statistics.result(ferrin::CALC_RMS)},
                               out);
    return true;
}

} // namespace

std::shared_ptr<ferrin::ScalarChannel> ResultChannel::clockFor(const overmap::Calculation& calculation)
{
    for (auto& channel : CalculationScene::inputChannels(calculation)) {
        if (channel->getTimeBase())
            return channel;
    }
    return nullptr;
}

std::shared_ptr<ResultChannel> ResultChannel::create(channel_config::ChannelID id, const std::string& name,
                                                     Binding binding,
                                                     ferrin_config::IfChannelConfigManager* config_manager)
{
    std::shared_ptr<ferrin::ScalarChannel> clock =
        binding.calculation ? clockFor(*binding.calculation) : nullptr;
    ferrin::ChannelSetup setup;
    setup.id = id;
    setup.items = resultItems(name);
    setup.config_manager = config_manager;
    setup.sample_resolution = static_cast<std::int32_t>(channel_config::DAQSampleResolution::DOUBLE);
    if (clock) {
        setup.time_base = clock->getTimeBase();
        setup.sample_occurrence = clock->getSampleOccurrence();
        setup.regions_manager = clock->getRegionsManager();
    } else {
        setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(1.0, 0.0);
        setup.sample_occurrence = ferrin::OCCURRENCE_SINGLE_VALUE;
    }
    auto channel = std::make_shared<ResultChannel>(std::move(setup), std::move(binding), std::move(clock));
    channel->m_source->setChannel(channel);
    return channel;
}

ResultChannel::ResultChannel(ferrin::ChannelSetup setup, Binding binding,
                             std::shared_ptr<ferrin::ScalarChannel> clock)
    : ferrin::ScalarChannel(std::move(setup)), m_clock(std::move(clock))
{
    m_source =
        std::make_shared<ResultSource>(m_clock ? m_clock->getDataSource() : nullptr,
                                       m_clock && m_clock->getSampleOccurrence() == ferrin::OCCURRENCE_SYNC);
    rebind(std::move(binding));
}

void ResultChannel::rebind(Binding binding)
{
    auto state = std::make_shared<State>();
    if (binding.calculation)
        state->inputs = CalculationScene::inputChannels(*binding.calculation);
    state->binding = std::move(binding);
    const std::lock_guard<std::mutex> lock(m_state_mutex);
    m_state = std::move(state);
}

std::shared_ptr<const ResultChannel::State> ResultChannel::state() const
{
    const std::lock_guard<std::mutex> lock(m_state_mutex);
    return m_state;
}

ResultChannel::Binding ResultChannel::binding() const
{
    return state()->binding;
}

std::shared_ptr<ferrin::DataSource> ResultChannel::getDataSource() const
{
    return m_source;
}

double ResultChannel::valueAt(double time) const
{
    const auto current = state();
    if (!current->binding.scene || !current->binding.calculation)
        return NaN;
    return current->binding.scene->valueAt(*current->binding.calculation, time);
}

ferrin::Tick ResultChannel::tickAt(double time, bool ensure_loaded) const
{
    if (!m_clock)
        return std::isfinite(time) ? 0 : ferrin::NO_TICK;
    ferrin::Tick tick = ferrin::NO_TICK;
    if (ensure_loaded)
        m_clock->getValueAtTimeEnsureLoaded(time, &tick);
    else
        m_clock->getValueAtTime(time, &tick);
    return tick;
}

double ResultChannel::getValueAtTime(double time, ferrin::Tick* tick_out) const
{
    const double value = valueAt(time);
    if (tick_out != nullptr)
        *tick_out = std::isnan(value) ? ferrin::NO_TICK : tickAt(time, false);
    return value;
}

double ResultChannel::getValueAtTimeEnsureLoaded(double time, ferrin::Tick* tick_out) const
{
    for (const auto& input : state()->inputs)
        input->getValueAtTimeEnsureLoaded(time, nullptr);
    const double value = valueAt(time);
    if (tick_out != nullptr)
        *tick_out = std::isnan(value) ? ferrin::NO_TICK : tickAt(time, true);
    return value;
}

daq::SamplePtr ResultChannel::getSampleAtTime(double time) const
{
    ferrin::Tick tick = ferrin::NO_TICK;
    const double value = getValueAtTime(time, &tick);
    if (tick == ferrin::NO_TICK)
        return nullptr;
    return daq::makeSample(tick, value);
}

double ResultChannel::calculateValue(double start, double end, std::int32_t calculation_type) const
{
    if (!lum::data::ScalarCalculation::isKnown(calculation_type)) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
            << "calculateValue: unknown calculation type " << calculation_type;
        return NaN;
    }
    if (!(start <= end))
        return NaN;
    lum::data::ScalarCalculation statistics;
    if (!m_clock) {
        statistics.add(valueAt(start));
        return statistics.result(calculation_type);
    }
    const ferrin::TimeBase& time_base = *getTimeBase();
    const ferrin::Tick first = ferrin::timeToTickCeil(start, time_base);
    if (first == ferrin::NO_TICK)
        return NaN;
    for (auto it = m_clock->getSampleIterator(first, daq::SEEK_AT_OR_AFTER); it->isValid(); it->next()) {
        const double time = ferrin::tickToTime(it->getTimestamp(), time_base);
        if (time > end)
            break;
        statistics.add(valueAt(time));
    }
    return statistics.result(calculation_type);
}

double ResultChannel::minValue() const
{
    return NaN;
}

double ResultChannel::maxValue() const
{
    return NaN;
}

std::unique_ptr<ferrin::IfSampleIterator> ResultChannel::getSampleIterator(ferrin::Tick tick,
                                                                           daq::SeekMode mode) const
{
    if (m_clock)
        return std::make_unique<ClockIterator>(*this, m_clock->getSampleIterator(tick, mode));
    bool valid = false;
    switch (mode) {
    case daq::SEEK_EXACT:
    case daq::SEEK_AT_OR_AFTER:
        valid = tick == 0;
        break;
    case daq::SEEK_BEFORE:
        valid = tick > 0;
        break;
    case daq::SEEK_AT_OR_BEFORE:
        valid = true;
        break;
    default:
        break;
    }
    return std::make_unique<StillIterator>(*this, valid);
}

} // namespace lum::calc
