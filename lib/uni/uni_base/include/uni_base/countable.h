#pragma once

#include <atomic>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace uni {

namespace detail {
using CountReader = long (*)();
void registerCountable(const std::type_info& type, CountReader reader);
std::string countableName(const std::type_info& type);
} // namespace detail

/// Base that counts the live instances of T, for leak diagnostics. Construction
/// (copies included) raises the count, destruction lowers it; it holds no data.
template <typename T>
class Countable
{
public:
    Countable() noexcept { raise(); }
    Countable(const Countable&) noexcept { raise(); }
    Countable& operator=(const Countable&) noexcept = default;
    ~Countable() { s_count.fetch_sub(1); }

    /// Number of live instances of T.
    static long count() noexcept { return s_count.load(); }
    /// Name under which diagnostics report T, e.g. "::uni::Countable<QChannel>".
    static std::string countableName() { return detail::countableName(typeid(T)); }

private:
    static void raise() noexcept
    {
        static const bool registered = (detail::registerCountable(typeid(T), &Countable::count), true);
        (void)registered;
        s_count.fetch_add(1);
    }

    static inline std::atomic<long> s_count{0};
};

/// Every Countable class that has had an instance, by display name, with its live count.
std::vector<std::pair<std::string, long>> countableCounts();

} // namespace uni
