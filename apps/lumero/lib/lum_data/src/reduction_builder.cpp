#include <lum_data/reduction_builder.h>

#include <uni_base/uni_log.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lum::data {

void ReducedAccumulator::add(double value)
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

void ReducedAccumulator::merge(const ReducedAccumulator& other)
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
                                   std::vector<std::shared_ptr<MemoryReducedStream>> streams)
    : m_block(std::max<std::uint64_t>(block, 2)), m_streams(std::move(streams)), m_current(m_streams.size()),
      m_written(m_streams.size(), 0)
{}

std::uint64_t ReductionBuilder::factor(std::uint32_t level) const
{
    if (level == 0 || level > m_streams.size())
        return 0;
    std::uint64_t factor = 1;
    for (std::uint32_t i = 0; i < level; ++i) {
        if (factor > std::numeric_limits<std::uint64_t>::max() / m_block)
            return 0;
        factor *= m_block;
    }
    return factor;
}

void ReductionBuilder::writeEntry(std::size_t level)
{
    m_streams[level]->append(m_current[level].value());
    ++m_written[level];
    if (level + 1 < m_streams.size())
        m_current[level + 1].merge(m_current[level]);
    m_current[level] = ReducedAccumulator{};
    if (level + 1 < m_streams.size() && m_written[level] % m_block == 0)
        writeEntry(level + 1);
}

void ReductionBuilder::completeUpTo(std::uint64_t end)
{
    if (m_stopped || m_streams.empty())
        return;
    const std::uint64_t complete = end / m_block;
    if (complete > m_written_level1 && complete - m_written_level1 > MAX_EMPTY_ENTRIES) {
        UNI_LOG("lum_data", SEV_ERROR)
            << "reduction stopped: a gap of " << (complete - m_written_level1) << " empty blocks";
        m_stopped = true;
        return;
    }
    while (m_written_level1 < complete) {
        writeEntry(0);
        ++m_written_level1;
    }
}

void ReductionBuilder::add(std::uint64_t position, double value)
{
    if (m_stopped || m_streams.empty() || position < m_last_position)
        return;
    m_last_position = position;
    completeUpTo(position - position % m_block);
    if (!m_stopped)
        m_current[0].add(value);
}

} // namespace lum::data
