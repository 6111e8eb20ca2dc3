#pragma once

namespace uni {

/// Base of a cheap handle class T over one shared state of type T::State.
/// The state is built on first use (thread-safe, as a function-local static), is
/// read-only from then on and lives to the end of the program, so handles can be
/// made on the stack wherever they are needed.
template <class T>
class Singleton
{
protected:
    Singleton() = default;

    /// The one state; deduced so that T may still be incomplete where it derives from us.
    static const auto& state()
    {
        static const typename T::State s_state;
        return s_state;
    }
};

} // namespace uni
