#pragma once

#include <memory>

namespace ferrin {
class ScalarChannel;
}

namespace overmap {

/// A value range of a GPS quality channel, which the display turns into a quality step.
struct QualityPosition
{
    double lowerLimit = 0.0;
    double upperLimit = 0.0;
    std::shared_ptr<ferrin::ScalarChannel> channel;
};

} // namespace overmap
