#pragma once

#include <cstdint>

namespace overmap::detail {

/// A process-wide id source: starts at 1, hands out ids in order and is raised past
/// any id given explicitly. Never lowered; deliberately not thread-safe, as the model
/// lives on one thread.
class IdCounter
{
public:
    std::int32_t take() { return m_next++; }
    std::int32_t claim(std::int32_t id)
    {
        if (id >= m_next)
            m_next = id + 1;
        return id;
    }
    std::int32_t peek() const { return m_next; }

private:
    std::int32_t m_next = 1;
};

} // namespace overmap::detail
