#pragma once

#include <cstddef>

namespace uni {

/// A compile-time list of types, for code that must say what it does with each of them.
template <class... Ts>
struct TypeList
{
    static constexpr std::size_t size = sizeof...(Ts);
};

} // namespace uni
