#pragma once

#include <cstdint>

namespace lum::data {

/// How an in-memory channel keeps its data.
struct MemoryChannelOptions
{
    /// Positions per level-1 reduced entry, and entries per entry of each level above.
    std::uint64_t reduction_block = 64;
    /// Reduced levels built (0 for none).
    std::uint32_t reduction_levels = 2;
    /// Positions per page of the loaders: samples for a synchronous channel, ticks for an
    /// asynchronous one, entries for reduced streams.
    std::uint64_t page_size = 4096;
    /// Everything stays in memory; otherwise pages come in on demand.
    bool all_resident = true;
    /// With all_resident off: most pages resident per loader; 0 for no limit.
    std::uint64_t resident_pages = 16;
};

} // namespace lum::data
