#include "lum_data_log.h"
#include <lum_data/sync_scalar_channel.h>

#include "reduced_setup.h"
#include "scalar_calculation.h"

#include <ferrin_core/channel_roi_controller.h>
#include <ferrin_core/tick_arithmetic.h>

#include <uni_base/uni_log.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lum::data {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// Walks the values of a synchronous channel by index.
class SyncIterator : public ferrin::IfSampleIterator
{
public:
    SyncIterator(std::shared_ptr<const std::vector<double>> values, ferrin::Tick index)
        : m_values(std::move(values)), m_index(index)
    {}

    std::uint64_t getTimestamp() const override { return isValid() ? m_index : ferrin::NO_TICK; }
    bool isValid() const override { return m_index < m_values->size(); }
    const void* getValue() const override { return isValid() ? &(*m_values)[m_index] : nullptr; }
    std::uint32_t getValueSize() const override { return isValid() ? sizeof(double) : 0; }
    bool next() override
    {
        if (!isValid())
            return false;
        ++m_index;
        return isValid();
    }

private:
    // Shared, so that an iterator may outlive its channel.
    std::shared_ptr<const std::vector<double>> m_values;
    ferrin::Tick m_index;
};

} // namespace

std::shared_ptr<SyncScalarChannel>
SyncScalarChannel::create(ferrin::ChannelSetup setup, std::vector<double> values,
                          std::shared_ptr<ferrin::DataRegionsManager> regions, std::uint64_t stream_id,
                          const MemoryChannelOptions& options)
{
    auto loader = detail::makeSampleLoader(options);
    loader->setExtent(values.size());
    auto source = std::make_shared<MemoryDataSource>(stream_id, regions, loader);
    ReductionBuilder builder = detail::makeReducedStreams(
        *source, {ferrin::REDUCED_KIND_SAMPLES, ferrin::REDUCED_KIND_TICKS}, options);
    for (std::size_t i = 0; i < values.size(); ++i)
        builder.add(i, values[i]);
    builder.completeUpTo(values.size());

    if (regions && !values.empty()) {
        regions->addRegion(stream_id, ferrin::REGION_KIND_SAMPLES, 0, values.size() - 1);
        if (builder.coveredEnd() > 0)
            regions->addRegion(stream_id, ferrin::REGION_KIND_REDUCED, 0, builder.coveredEnd() - 1);
    }
    setup.regions_manager = regions;
    setup.sample_occurrence = ferrin::OCCURRENCE_SYNC;
    setup.sample_dimension = 1;
    return std::make_shared<SyncScalarChannel>(std::move(setup), std::move(values), std::move(source));
}

SyncScalarChannel::SyncScalarChannel(ferrin::ChannelSetup setup, std::vector<double> values,
                                     std::shared_ptr<MemoryDataSource> source)
    : ScalarChannel(std::move(setup)),
      m_values(std::make_shared<const std::vector<double>>(std::move(values))), m_data(m_values->data()),
      m_count(m_values->size()), m_source(std::move(source)), m_loader(m_source->sampleLoader().get()),
      m_min(NaN), m_max(NaN)
{
    for (double value : *m_values) {
        if (std::isnan(value))
            continue;
        m_min = std::isnan(m_min) ? value : std::min(m_min, value);
        m_max = std::isnan(m_max) ? value : std::max(m_max, value);
    }
}

ferrin::Tick SyncScalarChannel::tickAtOrBefore(double time) const
{
    const ferrin::TimeBase* time_base = getTimeBase().get();
    if (!time_base || m_count == 0)
        return ferrin::NO_TICK;
    const ferrin::Tick tick = ferrin::timeToTickFloor(time, *time_base);
    if (tick == ferrin::NO_TICK)
        return ferrin::NO_TICK;
    return std::min<ferrin::Tick>(tick, m_count - 1);
}

double SyncScalarChannel::getValueAtTime(double time, ferrin::Tick* tick_out) const
{
    const ferrin::Tick tick = tickAtOrBefore(time);
    if (tick == ferrin::NO_TICK || !m_loader->isResident(tick)) {
        if (tick_out)
            *tick_out = ferrin::NO_TICK;
        return NaN;
    }
    if (tick_out)
        *tick_out = tick;
    return m_data[tick];
}

double SyncScalarChannel::getValueAtTimeEnsureLoaded(double time, ferrin::Tick* tick_out) const
{
    const ferrin::Tick tick = tickAtOrBefore(time);
    if (tick != ferrin::NO_TICK && !m_loader->isResident(tick) &&
        isDataAvailable(tick, ferrin::REGION_KIND_SAMPLES, 0)) {
        ferrin::ChannelRoiController guard(*this, tick);
        return getValueAtTime(time, tick_out);
    }
    return getValueAtTime(time, tick_out);
}

daq::SamplePtr SyncScalarChannel::getSampleAtTime(double time) const
{
    return detail::sampleAtTime(*this, time);
}

double SyncScalarChannel::calculateValue(double start, double end, std::int32_t calculation_type) const
{
    const auto span = detail::calculationTicks(start, end, calculation_type, getTimeBase().get());
    if (!span || span->first >= m_count)
        return NaN;
    const ferrin::Tick first = span->first;
    const ferrin::Tick last = std::min<ferrin::Tick>(span->second, m_count - 1);
    // Hold the whole span while reading it.
    ferrin::ChannelRoiController guard(m_source, m_source->sampleLoader(), first, last);
    detail::ScalarCalculation calculation;
    for (ferrin::Tick tick = first; tick <= last; ++tick)
        calculation.add(m_data[tick]);
    return calculation.result(calculation_type);
}

std::unique_ptr<ferrin::IfSampleIterator> SyncScalarChannel::getSampleIterator(ferrin::Tick tick,
                                                                               daq::SeekMode mode) const
{
    const ferrin::Tick count = m_count;
    ferrin::Tick index = ferrin::NO_TICK;
    switch (mode) {
    case daq::SEEK_EXACT:
    case daq::SEEK_AT_OR_AFTER:
        index = tick;
        break;
    case daq::SEEK_BEFORE:
        if (tick != 0 && count != 0)
            index = std::min(tick - 1, count - 1);
        break;
    case daq::SEEK_AFTER:
        if (tick != ferrin::NO_TICK)
            index = tick + 1;
        break;
    case daq::SEEK_AT_OR_BEFORE:
        if (count != 0)
            index = std::min(tick, count - 1);
        break;
    default:
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
            << "getSampleIterator: unknown seek mode " << static_cast<int>(mode);
        break;
    }
    return std::make_unique<SyncIterator>(m_values, index);
}

} // namespace lum::data
