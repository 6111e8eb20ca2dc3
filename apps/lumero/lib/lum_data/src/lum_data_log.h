#pragma once

namespace lum::data::detail {

/// Logger channel of the recorded channels and their list.
constexpr const char* LOG_CHANNEL = "lum_data";

} // namespace lum::data::detail
