#include <lum_data/memory_data_source.h>

namespace lum::data {

MemoryDataSource::MemoryDataSource(std::uint64_t stream_id,
                                   std::shared_ptr<ferrin::DataRegionsManager> regions,
                                   std::shared_ptr<MemoryLoader> sample_loader)
    : m_stream_id(stream_id), m_regions(std::move(regions)), m_sample_loader(std::move(sample_loader))
{}

void MemoryDataSource::addReducedStream(std::uint32_t kind, std::uint32_t level, std::uint64_t factor,
                                        std::shared_ptr<MemoryReducedStream> stream)
{
    m_reduced[{kind, level}] = Reduced{factor, std::move(stream)};
}

std::uint64_t MemoryDataSource::factorOf(std::uint32_t kind, std::uint32_t level,
                                         std::uint64_t stream_id) const
{
    if (stream_id != m_stream_id)
        return 0;
    const auto it = m_reduced.find({kind, level});
    return it == m_reduced.end() ? 0 : it->second.factor;
}

std::uint64_t MemoryDataSource::reductionFactor(std::uint32_t level, std::uint64_t stream_id) const
{
    return factorOf(ferrin::REDUCED_KIND_SAMPLES, level, stream_id);
}

std::uint64_t MemoryDataSource::tickReductionFactor(std::uint32_t level, std::uint64_t stream_id) const
{
    return factorOf(ferrin::REDUCED_KIND_TICKS, level, stream_id);
}

std::shared_ptr<ferrin::ReducedStream> MemoryDataSource::getReducedStream(std::uint32_t kind,
                                                                          std::uint32_t level) const
{
    const auto it = m_reduced.find({kind, level});
    return it == m_reduced.end() ? nullptr : it->second.stream;
}

} // namespace lum::data
