#pragma once

namespace overmap_ui::detail {

/// Logger channel of the display layer, shared with the scene model.
constexpr const char* LOG_CHANNEL = "overmap";

} // namespace overmap_ui::detail
