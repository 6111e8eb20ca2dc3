#pragma once

namespace overmap::detail {

/// Logger channel of the scene model.
constexpr const char* LOG_CHANNEL = "overmap";

} // namespace overmap::detail
