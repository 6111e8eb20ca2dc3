#include <ferrin_core/data_regions_manager.h>

#include <uni_base/uni_assert.h>

#include <algorithm>
#include <mutex>

namespace ferrin {

Tick DataRegionsManager::firstTick(const Interval& interval)
{
    return boost::icl::is_left_closed(interval.bounds()) ? interval.lower() : interval.lower() + 1;
}

Tick DataRegionsManager::lastTick(const Interval& interval)
{
    return boost::icl::is_right_closed(interval.bounds()) ? interval.upper() : interval.upper() - 1;
}

void DataRegionsManager::addRegion(std::uint64_t stream_id, std::uint32_t kind, Tick first, Tick last)
{
    if (last < first)
        return;
    addInterval(stream_id, kind, Interval::closed(first, last));
}

void DataRegionsManager::addInterval(std::uint64_t stream_id, std::uint32_t kind, const Interval& interval)
{
    if (boost::icl::is_empty(interval))
        return;
    std::unique_lock lock(m_lock);
    m_intervals[Key{stream_id, kind}].add(interval);
}

void DataRegionsManager::removeRegion(std::uint64_t stream_id, std::uint32_t kind, Tick first, Tick last)
{
    if (last < first)
        return;
    std::unique_lock lock(m_lock);
    const auto it = m_intervals.find(Key{stream_id, kind});
    if (it != m_intervals.end())
        it->second.subtract(Interval::closed(first, last));
}

void DataRegionsManager::clearStream(std::uint64_t stream_id)
{
    std::unique_lock lock(m_lock);
    for (auto it = m_intervals.begin(); it != m_intervals.end();) {
        if (it->first.stream_id == stream_id)
            it = m_intervals.erase(it);
        else
            ++it;
    }
    m_open_recordings.erase(stream_id);
}

void DataRegionsManager::beginOpenRecording(std::uint64_t stream_id, Tick start_tick)
{
    std::unique_lock lock(m_lock);
    m_open_recordings[stream_id] = OpenRecording{start_tick, NO_TICK};
}

void DataRegionsManager::updateOpenRecording(std::uint64_t stream_id, Tick last_tick)
{
    std::unique_lock lock(m_lock);
    const auto it = m_open_recordings.find(stream_id);
    if (it != m_open_recordings.end())
        it->second.last_tick = last_tick;
}

std::optional<OpenRecording> DataRegionsManager::endOpenRecording(std::uint64_t stream_id)
{
    std::unique_lock lock(m_lock);
    const auto it = m_open_recordings.find(stream_id);
    if (it == m_open_recordings.end())
        return std::nullopt;
    const OpenRecording record = it->second;
    m_open_recordings.erase(it);
    return record;
}

std::optional<OpenRecording> DataRegionsManager::openRecording(std::uint64_t stream_id) const
{
    std::shared_lock lock(m_lock);
    if (const OpenRecording* open = findOpen(stream_id))
        return *open;
    return std::nullopt;
}

const DataRegionsManager::IntervalSet* DataRegionsManager::findSet(std::uint64_t stream_id,
                                                                   std::uint32_t kind) const
{
    const auto it = m_intervals.find(Key{stream_id, kind});
    return it == m_intervals.end() ? nullptr : &it->second;
}

const OpenRecording* DataRegionsManager::findOpen(std::uint64_t stream_id) const
{
    const auto it = m_open_recordings.find(stream_id);
    return it == m_open_recordings.end() ? nullptr : &it->second;
}

bool DataRegionsManager::isAvailable(std::uint64_t stream_id, std::uint32_t kind, Tick tick) const
{
    std::shared_lock lock(m_lock);
    if (const OpenRecording* open = findOpen(stream_id); open && open->start_tick <= tick)
        return true;
    const IntervalSet* set = findSet(stream_id, kind);
    return set && boost::icl::contains(*set, tick);
}

bool DataRegionsManager::isRangeAvailable(std::uint64_t stream_id, std::uint32_t kind, Tick first,
                                          Tick last) const
{
    if (last < first) {
        UNI_ASSERT(false);
        return false;
    }
    std::shared_lock lock(m_lock);
    if (const OpenRecording* open = findOpen(stream_id); open && open->start_tick <= first)
        return true;
    const IntervalSet* set = findSet(stream_id, kind);
    if (!set)
        return false;
    // The set is joined, so one interval holding first holds last too or none does.
    const auto it = set->find(first);
    return it != set->end() && lastTick(*it) >= last;
}

DataRegions DataRegionsManager::getRegions(const RegionQuery& query) const
{
    DataRegions result;
    if (query.last < query.first)
        return result;

    std::shared_lock lock(m_lock);
    const OpenRecording* open = query.include_open ? findOpen(query.stream_id) : nullptr;
    if (open && open->start_tick <= query.first && query.clip) {
        result.emplace_back(std::max(query.first, open->start_tick), query.last);
        return result;
    }

    bool merged = false;
    if (const IntervalSet* set = findSet(query.stream_id, query.kind)) {
        const auto range = set->equal_range(Interval::closed(query.first, query.last));
        for (auto it = range.first; it != range.second; ++it) {
            Tick first = firstTick(*it);
            Tick last = lastTick(*it);
            if (open && open->start_tick <= last) {
                // The recording goes on from inside this interval: one region without end.
                first = std::min(first, open->start_tick);
                last = NO_TICK;
                merged = true;
            }
            if (query.clip) {
                first = std::max(first, query.first);
                last = std::min(last, query.last);
            }
            result.emplace_back(first, last);
            if (merged)
                break;
        }
    }

    if (!merged && open && open->start_tick <= query.last) {
        if (query.clip)
            result.emplace_back(std::max(open->start_tick, query.first), query.last);
        else
            result.emplace_back(open->start_tick, NO_TICK);
    }
    return result;
}

DataRegions DataRegionsManager::regions(std::uint64_t stream_id, std::uint32_t kind) const
{
    DataRegions result;
    std::shared_lock lock(m_lock);
    if (const IntervalSet* set = findSet(stream_id, kind)) {
        result.reserve(set->iterative_size());
        for (const Interval& interval : *set)
            result.emplace_back(firstTick(interval), lastTick(interval));
    }
    return result;
}

} // namespace ferrin
