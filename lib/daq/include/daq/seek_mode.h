#pragma once

#include <cstdint>

namespace daq {

/// Where a seek to target tick t positions an iterator.
enum SeekMode : std::int32_t
{
    SEEK_EXACT = 0,        ///< the sample with timestamp t, else none
    SEEK_BEFORE = 1,       ///< the last sample with timestamp below t
    SEEK_AFTER = 2,        ///< the first sample with timestamp above t
    SEEK_AT_OR_BEFORE = 3, ///< the sample at t, else the last before it
    SEEK_AT_OR_AFTER = 4,  ///< the sample at t, else the first after it
};

/// The tick that means "none".
constexpr std::uint64_t NO_TICK = ~std::uint64_t{0};

} // namespace daq
