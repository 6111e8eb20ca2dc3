#pragma once

#include <lum_data/memory_reduced_stream.h>

#include <ferrin_core/reduced_value.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace lum::data {

/// Running summary of a block of samples.
struct ReducedAccumulator
{
    double min = 0.0;
    double max = 0.0;
    double sum = 0.0;
    double sum_of_squares = 0.0;
    std::uint64_t count = 0;

    // Inline: they run once per sample and once per block.
    void add(double value)
    {
        if (count == 0) {
            min = max = value;
        } else {
            min = std::min(min, value);
            max = std::max(max, value);
        }
        sum += value;
        sum_of_squares += value * value;
        ++count;
    }
    void merge(const ReducedAccumulator& other)
    {
        if (other.count == 0)
            return;
        if (count == 0) {
            *this = other;
            return;
        }
        min = std::min(min, other.min);
        max = std::max(max, other.max);
        sum += other.sum;
        sum_of_squares += other.sum_of_squares;
        count += other.count;
    }
    /// min, max, average and root mean square; NaN throughout for an empty block.
    ferrin::ReducedValue value() const;
};

/// Feeds reduced streams of several levels from samples in position order. Level 1
/// entry e summarises positions [e * block, (e + 1) * block - 1]; each further level
/// summarises `block` entries of the level below. An entry is written only when it is
/// complete: when a later position arrives or completeUpTo() passes its end. Only blocks
/// holding at least `min_count` samples are stored; the streams count the others, which
/// read as NaN (empty) or through the stream's fallback, so that gaps cost nothing.
class ReductionBuilder
{
public:
    /// @param block     positions per level-1 entry, and entries per entry of each level above (at least 2)
    /// @param streams   one stream per level, level 1 first
    /// @param min_count fewest samples of a block that is stored (at least 1)
    ReductionBuilder(std::uint64_t block, std::vector<std::shared_ptr<MemoryReducedStream>> streams,
                     std::uint64_t min_count = 1);

    /// Positions must not go backwards; a position behind the last one is ignored.
    void add(std::uint64_t position, double value)
    {
        if (m_levels.empty() || position < m_last_position)
            return;
        m_last_position = position;
        // Most samples fall in the block of the one before: no division for them.
        if (position > m_block_last)
            startBlockOf(position);
        m_levels.front().current.add(value);
    }
    /// Declares positions below @p end final and writes every entry they complete.
    void completeUpTo(std::uint64_t end);

    /// Positions per entry of @p level (1 = block); 0 beyond the levels built.
    std::uint64_t factor(std::uint32_t level) const;
    /// Positions whose level-1 entries are complete: [0, coveredEnd()).
    std::uint64_t coveredEnd() const { return m_complete_level1 * m_block; }
    const std::vector<std::shared_ptr<MemoryReducedStream>>& streams() const { return m_streams; }

private:
    struct Level
    {
        std::uint64_t factor;
        std::uint64_t index = 0;
        ReducedAccumulator current;
        /// Entries the level's stream was last told exist.
        std::uint64_t counted = 0;
    };

    /// @p position / the factor of @p level (0 = first): a shift when the block is a power of two.
    std::uint64_t entryOf(std::uint64_t position, std::size_t level) const
    {
        return m_block_shift > 0 ? position >> (m_block_shift * (level + 1))
                                 : position / m_levels[level].factor;
    }

    /// Writes the block that @p level accumulates and merges it into the level above.
    void flush(std::size_t level);
    /// Completes the blocks before @p position's and makes its block the first level's.
    void startBlockOf(std::uint64_t position);

    std::uint64_t m_block;
    std::uint64_t m_min_count;
    std::vector<std::shared_ptr<MemoryReducedStream>> m_streams;
    std::vector<Level> m_levels;
    std::uint64_t m_complete_level1 = 0;
    std::uint64_t m_last_position = 0;
    /// Last position of the block the first level accumulates: add() divides only past it.
    std::uint64_t m_block_last = 0;
    /// log2 of the block when it is a power of two, else 0.
    unsigned m_block_shift = 0;
};

} // namespace lum::data
