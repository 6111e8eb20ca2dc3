#pragma once

namespace lum::calc::detail {

/// Logger channel of the calculation extension.
constexpr const char* LOG_CHANNEL = "lum_calc";

} // namespace lum::calc::detail
