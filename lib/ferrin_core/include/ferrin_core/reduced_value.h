#pragma once

#include <optional>

namespace ferrin {

/// Summary of one block of samples of a reduced stream.
struct ReducedValue
{
    double min = 0.0;
    double max = 0.0;
    double avg = 0.0;
    double rms = 0.0;
};

using OptionalReducedValue = std::optional<ReducedValue>;

} // namespace ferrin
