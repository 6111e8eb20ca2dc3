#include <lum_data/reduction_builder.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lum::data {

ferrin::ReducedValue ReducedAccumulator::value() const
{
    if (count == 0) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        return ferrin::ReducedValue{nan, nan, nan, nan};
    }
    const double n = static_cast<double>(count);
    return ferrin::ReducedValue{min, max, sum / n, std::sqrt(sum_of_squares / n)};
}

ReductionBuilder::ReductionBuilder(std::uint64_t block,
                                   std::vector<std::shared_ptr<MemoryReducedStream>> streams,
                                   std::uint64_t min_count)
    : m_block(std::max<std::uint64_t>(block, 2)), m_min_count(std::max<std::uint64_t>(min_count, 1)),
      m_streams(std::move(streams)), m_block_last(m_block - 1)
{
    std::uint64_t factor = 1;
    for (std::size_t level = 0; level < m_streams.size(); ++level) {
        // Levels whose factor would overflow are never reached by a position.
        if (factor > std::numeric_limits<std::uint64_t>::max() / m_block) {
            m_streams.resize(level);
            break;
        }
        factor *= m_block;
        m_levels.push_back(Level{factor, 0, ReducedAccumulator{}, 0});
    }
    if ((m_block & (m_block - 1)) == 0)
        while ((std::uint64_t{1} << m_block_shift) < m_block)
            ++m_block_shift;
}

std::uint64_t ReductionBuilder::factor(std::uint32_t level) const
{
    if (level == 0 || level > m_levels.size())
        return 0;
    return m_levels[level - 1].factor;
}

void ReductionBuilder::flush(std::size_t level)
{
    Level& here = m_levels[level];
    if (here.current.count >= m_min_count)
        m_streams[level]->append(here.index, here.current.value());
    if (level + 1 < m_levels.size()) {
        // The block above is this one's own: the completeUpTo() that began this block
        // (add() calls it on every change of block) closed any earlier one above.
        Level& above = m_levels[level + 1];
        above.index = m_block_shift > 0 ? here.index >> m_block_shift : here.index / m_block;
        above.current.merge(here.current);
    }
    here.current = ReducedAccumulator{};
}

void ReductionBuilder::completeUpTo(std::uint64_t end)
{
    for (std::size_t level = 0; level < m_levels.size(); ++level) {
        Level& here = m_levels[level];
        const std::uint64_t complete = entryOf(end, level);
        if (here.current.count > 0 && here.index < complete)
            flush(level);
        // For sparse samples this runs once per sample: the stream is told only of growth.
        if (complete > here.counted) {
            here.counted = complete;
            m_streams[level]->setEntryCount(complete);
        }
    }
    if (!m_levels.empty())
        m_complete_level1 = std::max(m_complete_level1, entryOf(end, 0));
}

void ReductionBuilder::startBlockOf(std::uint64_t position)
{
    Level& first = m_levels.front();
    const std::uint64_t index = entryOf(position, 0);
    const std::uint64_t start = index * m_block;
    if (first.index != index)
        completeUpTo(start);
    first.index = index;
    m_block_last = start + std::min(m_block - 1, std::numeric_limits<std::uint64_t>::max() - start);
}

} // namespace lum::data
