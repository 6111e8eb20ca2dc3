#pragma once

#include <algorithm>
#include <cmath>

namespace overmap_ui::detail {

/// Equal when the lesser magnitude is at least 1e12 times the difference: a relative test, so 0
/// equals only 0 and numbers of opposite sign always differ.
inline bool sameValue(double a, double b)
{
    return std::min(std::fabs(a), std::fabs(b)) >= std::fabs(a - b) * 1e12;
}

} // namespace overmap_ui::detail
