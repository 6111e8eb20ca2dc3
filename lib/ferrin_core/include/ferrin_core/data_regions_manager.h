#pragma once

#include <ferrin_core/time_base.h>

#include <boost/icl/discrete_interval.hpp>
#include <boost/icl/interval_set.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <shared_mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ferrin {

/// Kinds of tick intervals a regions manager keeps per stream.
enum RegionKind : std::uint32_t
{
    /// Ticks whose samples the source holds.
    REGION_KIND_SAMPLES = 0,
    /// Ticks covered by the source's reduced data; ranges of reduced entries are
    /// always checked here.
    REGION_KIND_REDUCED = 1
};

/// A recording that is still being written: everything from its start tick on counts
/// as available, however far the writer has come.
struct OpenRecording
{
    Tick start_tick = 0;
    /// Last tick written so far; informational only.
    Tick last_tick = NO_TICK;
};

/// What getRegions is asked, in the order the callers fill it.
struct RegionQuery
{
    std::uint64_t stream_id = 0;
    Tick first = 0;
    Tick last = 0;
    std::uint32_t kind = REGION_KIND_SAMPLES;
    /// Cut every region to [first, last].
    bool clip = false;
    /// Take an open recording into account; its region ends in NO_TICK unless clipped.
    bool include_open = false;
};

/// One region as (first tick, last tick), both inclusive; NO_TICK as last for an open end.
using DataRegion = std::pair<Tick, Tick>;
using DataRegions = std::vector<DataRegion>;

/// Which ticks of which stream are there to read, shared by the channels of one source.
/// Availability is answered from the interval sets alone, without touching samples.
/// All reads take the lock shared; the host's writers take it exclusively.
class DataRegionsManager
{
public:
    /// Interval with open or closed bounds; touching and overlapping ones are joined.
    using Interval = boost::icl::discrete_interval<Tick>;
    using IntervalSet = boost::icl::interval_set<Tick, std::less, Interval>;

    /// Adds the closed range [first, last]; nothing for last below first.
    void addRegion(std::uint64_t stream_id, std::uint32_t kind, Tick first, Tick last);
    void addInterval(std::uint64_t stream_id, std::uint32_t kind, const Interval& interval);
    /// Takes the closed range [first, last] out again.
    void removeRegion(std::uint64_t stream_id, std::uint32_t kind, Tick first, Tick last);
    /// Forgets all intervals and the open recording of a stream.
    void clearStream(std::uint64_t stream_id);

    /// Marks a recording on the stream as open from @p start_tick on (replacing one there was).
    void beginOpenRecording(std::uint64_t stream_id, Tick start_tick);
    /// Notes how far an open recording has come; nothing without one.
    void updateOpenRecording(std::uint64_t stream_id, Tick last_tick);
    /// Ends the open recording and returns it; the caller adds what was recorded as regions.
    std::optional<OpenRecording> endOpenRecording(std::uint64_t stream_id);
    std::optional<OpenRecording> openRecording(std::uint64_t stream_id) const;

    /// Whether @p tick lies in an interval of the kind, or at or after the start of an
    /// open recording of the stream.
    bool isAvailable(std::uint64_t stream_id, std::uint32_t kind, Tick tick) const;
    /// Whether [first, last] lies wholly in one interval, or an open recording starts at or
    /// before first. A range with last below first is a fault of the caller.
    bool isRangeAvailable(std::uint64_t stream_id, std::uint32_t kind, Tick first, Tick last) const;

    /// The regions that overlap [query.first, query.last], in order; see RegionQuery.
    DataRegions getRegions(const RegionQuery& query) const;

    /// All intervals of a kind as closed (first, last) pairs, in order.
    DataRegions regions(std::uint64_t stream_id, std::uint32_t kind) const;

    /// First and last tick that an interval stands for, with open bounds stepped in.
    static Tick firstTick(const Interval& interval);
    static Tick lastTick(const Interval& interval);

private:
    struct Key
    {
        std::uint64_t stream_id;
        std::uint32_t kind;
        bool operator==(const Key& other) const { return stream_id == other.stream_id && kind == other.kind; }
    };
    struct KeyHash
    {
        std::size_t operator()(const Key& key) const noexcept
        {
            return std::hash<std::uint64_t>()(key.stream_id * 31u + key.kind);
        }
    };

    const IntervalSet* findSet(std::uint64_t stream_id, std::uint32_t kind) const;
    const OpenRecording* findOpen(std::uint64_t stream_id) const;

    mutable std::shared_mutex m_lock;
    std::unordered_map<Key, IntervalSet, KeyHash> m_intervals;
    std::unordered_map<std::uint64_t, OpenRecording> m_open_recordings;
};

} // namespace ferrin
