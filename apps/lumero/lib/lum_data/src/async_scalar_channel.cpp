#include <lum_data/async_scalar_channel.h>

#include "reduced_setup.h"
#include "scalar_calculation.h"

#include <ferrin_core/channel_roi_controller.h>
#include <ferrin_core/tick_arithmetic.h>

#include <daq/async_sample_iterator.h>

#include <uni_base/uni_log.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace lum::data {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint32_t TIMESTAMP_SIZE = 8;

double readValue(const std::uint8_t* value)
{
    double result;
    std::memcpy(&result, value, sizeof(result));
    return result;
}

/// A daq::AsyncSampleIterator as a channel's iterator, its value decoded to a double.
class AsyncIterator : public ferrin::IfSampleIterator
{
public:
    explicit AsyncIterator(daq::AsyncSampleIterator iterator) : m_iterator(std::move(iterator)) { decode(); }

    std::uint64_t getTimestamp() const override { return m_iterator.getTimestamp(); }
    bool isValid() const override { return m_iterator.isValid(); }
    const void* getValue() const override { return isValid() ? &m_value : nullptr; }
    std::uint32_t getValueSize() const override { return isValid() ? sizeof(double) : 0; }
    bool next() override
    {
        if (!m_iterator.isValid())
            return false;
        const bool moved = m_iterator.next();
        decode();
        return moved;
    }

private:
    void decode() { m_value = m_iterator.isValid() ? readValue(m_iterator.GetValue()) : NaN; }

    daq::AsyncSampleIterator m_iterator;
    double m_value = NaN;
};

} // namespace

std::shared_ptr<AsyncScalarChannel>
AsyncScalarChannel::create(ferrin::ChannelSetup setup, std::shared_ptr<ferrin::DataRegionsManager> regions,
                           std::uint64_t stream_id, const MemoryChannelOptions& options)
{
    auto source = std::make_shared<MemoryDataSource>(stream_id, regions, detail::makeSampleLoader(options));
    // Blocks of one sample are read from the sample itself rather than stored: at a few
    // samples per second nearly every block of ticks holds one sample or none.
    ReductionBuilder reduction =
        detail::makeReducedStreams(*source, {ferrin::REDUCED_KIND_TICKS}, options, 2);
    auto stream = std::make_shared<daq::AsyncSampleStream>(
        daq::AsyncSampleLayout::fixedSize(TIMESTAMP_SIZE, sizeof(double)));
    for (std::uint32_t level = 1; level <= reduction.streams().size(); ++level) {
        const std::uint64_t factor = reduction.factor(level);
        reduction.streams()[level - 1]->setFallback([stream, factor](std::uint64_t index) {
            ReducedAccumulator single;
            const daq::AsyncSampleIterator it =
                daq::createIterator(stream, (index + 1) * factor - 1, daq::SEEK_AT_OR_BEFORE);
            if (it.isValid() && it.getTimestamp() >= index * factor)
                single.add(readValue(it.GetValue()));
            return single.value();
        });
    }
    setup.regions_manager = regions;
    setup.sample_occurrence = ferrin::OCCURRENCE_ASYNC;
    setup.sample_dimension = 1;
    return std::make_shared<AsyncScalarChannel>(std::move(setup), std::move(source), std::move(stream),
                                                std::move(reduction));
}

std::shared_ptr<AsyncScalarChannel>
AsyncScalarChannel::create(ferrin::ChannelSetup setup, const std::vector<TimedValue>& samples,
                           std::shared_ptr<ferrin::DataRegionsManager> regions, std::uint64_t stream_id,
                           const MemoryChannelOptions& options)
{
    auto channel = create(std::move(setup), std::move(regions), stream_id, options);
    for (const auto& [tick, value] : samples)
        channel->append(tick, value);
    channel->finish();
    return channel;
}

AsyncScalarChannel::AsyncScalarChannel(ferrin::ChannelSetup setup, std::shared_ptr<MemoryDataSource> source,
                                       std::shared_ptr<daq::AsyncSampleStream> stream,
                                       ReductionBuilder reduction)
    : ScalarChannel(std::move(setup)), m_source(std::move(source)), m_stream(std::move(stream)),
      m_loader(m_source->sampleLoader().get()), m_stride(m_stream->layout().m_sample_header_size),
      m_writer(m_stream), m_reduction(std::move(reduction)), m_pending_min(NaN), m_pending_max(NaN),
      m_min(NaN), m_max(NaN)
{}

AsyncScalarChannel::~AsyncScalarChannel() = default;

bool AsyncScalarChannel::append(ferrin::Tick tick, double value)
{
    if (!m_writer.append(tick, value))
        return false;
    if (!m_recording_open) {
        m_recording_open = true;
        m_recording_first = tick;
        if (const auto& regions = m_source->regions())
            regions->beginOpenRecording(m_source->streamId(), tick);
    }
    m_last_tick = tick;
    // A block that fills up is published by closing it, so the sample exists from now on.
    m_loader->setExtent(tick + 1);
    if (!m_has_samples)
        m_first_tick = tick;
    m_has_samples = true;
    if (!std::isnan(value)) {
        m_pending_min = std::isnan(m_pending_min) ? value : std::min(m_pending_min, value);
        m_pending_max = std::isnan(m_pending_max) ? value : std::max(m_pending_max, value);
    }
    m_reduction.add(tick, value);
    return true;
}

void AsyncScalarChannel::publish()
{
    m_writer.publish();
    if (!m_has_samples)
        return;
    indexClosedBlocks();
    {
        std::lock_guard lock(m_range_mutex);
        if (!std::isnan(m_pending_min)) {
            m_min = std::isnan(m_min) ? m_pending_min : std::min(m_min, m_pending_min);
            m_max = std::isnan(m_max) ? m_pending_max : std::max(m_max, m_pending_max);
        }
    }
    const auto& regions = m_source->regions();
    if (regions) {
        regions->updateOpenRecording(m_source->streamId(), m_last_tick);
        if (m_reduction.coveredEnd() > 0)
            regions->addRegion(m_source->streamId(), ferrin::REGION_KIND_REDUCED, 0,
                               m_reduction.coveredEnd() - 1);
    }
}

void AsyncScalarChannel::finish()
{
    m_writer.finish();
    publish();
    if (!m_recording_open)
        return;
    m_recording_open = false;
    const auto& regions = m_source->regions();
    if (!regions)
        return;
    regions->endOpenRecording(m_source->streamId());
    regions->addRegion(m_source->streamId(), ferrin::REGION_KIND_SAMPLES, m_recording_first, m_last_tick);
}

void AsyncScalarChannel::indexClosedBlocks()
{
    if (m_stream->closedBlockCount() == m_known_closed)
        return;
    std::vector<daq::SampleDataBlockPtr> found;
    std::uint32_t count = 0;
    daq::SampleDataBlockPtr block = m_closed_blocks.empty()
                                        ? m_stream->findBlockBefore(m_first_tick, count)
                                        : m_stream->findNextBlock(m_closed.back().first, count);
    // A count of 0 marks a closed block; the live block comes with its published count.
    while (block && count == 0) {
        found.push_back(block);
        block = m_stream->findNextBlock(block->m_first_timestamp, count);
    }
    for (daq::SampleDataBlockPtr& closed : found) {
        if (!m_closed_blocks.empty() && closed->m_first_timestamp <= m_closed.back().first)
            continue;
        m_closed.push_back(ClosedBlock{closed->m_first_timestamp, closed.get()});
        m_closed_blocks.push_back(std::move(closed));
    }
    m_known_closed = m_closed_blocks.size();
}

std::optional<AsyncScalarChannel::TimedValue>
AsyncScalarChannel::searchBlock(const daq::SampleDataBlock& block, std::uint32_t count,
                                ferrin::Tick tick) const
{
    // Fixed-size samples: the block is an array, searched directly.
    const std::uint8_t* data = block.m_data;
    const auto stamp = [&](std::uint32_t i) {
        return m_stream->getTimestamp(data + std::size_t{i} * m_stride);
    };
    // Times read in order mostly find the sample of the last answer or the one after it.
    const auto last = [&](std::uint32_t i) {
        return i < count && stamp(i) <= tick && (i + 1 == count || tick < stamp(i + 1));
    };
    const std::uint32_t hint = m_last_sample.load(std::memory_order_relaxed);
    std::uint32_t low = 0;
    if (last(hint)) {
        low = hint + 1;
    } else if (last(hint + 1)) {
        low = hint + 2;
    } else {
        std::uint32_t high = count;
        while (low < high) {
            const std::uint32_t middle = low + (high - low) / 2;
            if (stamp(middle) <= tick)
                low = middle + 1;
            else
                high = middle;
        }
    }
    if (low == 0)
        return std::nullopt;
    m_last_sample.store(low - 1, std::memory_order_relaxed);
    const std::uint8_t* sample = data + std::size_t{low - 1} * m_stride;
    return TimedValue{m_stream->getTimestamp(sample), readValue(m_stream->getValue(sample))};
}

std::optional<AsyncScalarChannel::TimedValue> AsyncScalarChannel::findAtOrBefore(ferrin::Tick tick) const
{
    if (m_stride == 0)
        return std::nullopt;
    {
        // The first closed block starting after the tick: times read in order mostly stay
        // in the block of the last answer or go on to the next, else by halving.
        const std::size_t closed = m_closed.size();
        const auto holds = [&](std::size_t i) {
            return i < closed && m_closed[i].first <= tick &&
                   (i + 1 == closed || tick < m_closed[i + 1].first);
        };
        const std::size_t hint = m_last_block.load(std::memory_order_relaxed);
        std::size_t low = 0;
        if (holds(hint)) {
            low = hint + 1;
        } else if (holds(hint + 1)) {
            low = hint + 2;
        } else {
            std::size_t high = closed;
            while (low < high) {
                const std::size_t middle = low + (high - low) / 2;
                if (m_closed[middle].first <= tick)
                    low = middle + 1;
                else
                    high = middle;
            }
        }
        if (low > 0)
            m_last_block.store(low - 1, std::memory_order_relaxed);
        if (low > 0) {
            const std::size_t index = low - 1;
            const daq::SampleDataBlock& block = *m_closed[index].block;
            // Past the newest closed block the live block may hold the answer.
            if (index + 1 < closed || tick <= block.lastTimestamp()) {
                const std::uint32_t count =
                    std::min<std::uint32_t>(block.m_sample_count, block.m_data_length / m_stride);
                return searchBlock(block, count, tick);
            }
        }
    }

    std::uint32_t count = 0;
    const daq::SampleDataBlockPtr block = m_stream->findBlockBefore(tick, count);
    if (!block)
        return std::nullopt;
    if (count == 0) {
        if (!block->isCountFinal()) {
            // A closed block whose count was never fixed: let the iterator walk it.
            const daq::AsyncSampleIterator it = daq::createIterator(m_stream, tick, daq::SEEK_AT_OR_BEFORE);
            if (!it.isValid())
                return std::nullopt;
            return TimedValue{it.getTimestamp(), readValue(it.GetValue())};
        }
        // A closed block: its count and its data length are final.
        count = std::min<std::uint32_t>(block->m_sample_count, block->m_data_length / m_stride);
    } else {
        // The live block: the published count says how far to go; its length is not kept up.
        count = std::min<std::uint32_t>(count, block->m_payload_capacity / m_stride);
    }
    return searchBlock(*block, count, tick);
}

double AsyncScalarChannel::valueAt(double time, ferrin::Tick* tick_out, bool ensure_loaded) const
{
    if (tick_out)
        *tick_out = ferrin::NO_TICK;
    const ferrin::TimeBase* time_base = getTimeBase().get();
    if (!time_base)
        return NaN;
    const ferrin::Tick tick = ferrin::timeToTickFloor(time, *time_base);
    if (tick == ferrin::NO_TICK)
        return NaN;
    const std::optional<TimedValue> found = findAtOrBefore(tick);
    if (!found)
        return NaN;
    if (!m_loader->isResident(found->first)) {
        if (!ensure_loaded || !isDataAvailable(found->first, ferrin::REGION_KIND_SAMPLES, 0))
            return NaN;
        ferrin::ChannelRoiController guard(*this, found->first);
        if (!m_loader->isResident(found->first))
            return NaN;
    }
    if (tick_out)
        *tick_out = found->first;
    return found->second;
}

double AsyncScalarChannel::getValueAtTime(double time, ferrin::Tick* tick_out) const
{
    return valueAt(time, tick_out, false);
}

double AsyncScalarChannel::getValueAtTimeEnsureLoaded(double time, ferrin::Tick* tick_out) const
{
    return valueAt(time, tick_out, true);
}

daq::SamplePtr AsyncScalarChannel::getSampleAtTime(double time) const
{
    return detail::sampleAtTime(*this, time);
}

double AsyncScalarChannel::calculateValue(double start, double end, std::int32_t calculation_type) const
{
    const auto span = detail::calculationTicks(start, end, calculation_type, getTimeBase().get());
    if (!span)
        return NaN;
    const auto [first, last] = *span;
    ferrin::ChannelRoiController guard(m_source, m_source->sampleLoader(), first, last);
    detail::ScalarCalculation calculation;
    for (daq::AsyncSampleIterator it = daq::createIterator(m_stream, first, daq::SEEK_AT_OR_AFTER);
         it.isValid() && it.getTimestamp() <= last; it.next())
        calculation.add(readValue(it.GetValue()));
    return calculation.result(calculation_type);
}

double AsyncScalarChannel::minValue() const
{
    std::lock_guard lock(m_range_mutex);
    return m_min;
}

double AsyncScalarChannel::maxValue() const
{
    std::lock_guard lock(m_range_mutex);
    return m_max;
}

std::unique_ptr<ferrin::IfSampleIterator> AsyncScalarChannel::getSampleIterator(ferrin::Tick tick,
                                                                                daq::SeekMode mode) const
{
    return std::make_unique<AsyncIterator>(daq::createIterator(m_stream, tick, mode));
}

} // namespace lum::data
