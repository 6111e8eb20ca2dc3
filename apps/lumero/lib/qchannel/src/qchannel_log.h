#pragma once

namespace lum::qchannel::detail {

/// Logger channel of the Qt face of channels and of their list.
constexpr const char* LOG_CHANNEL = "QCHANNEL";

} // namespace lum::qchannel::detail
