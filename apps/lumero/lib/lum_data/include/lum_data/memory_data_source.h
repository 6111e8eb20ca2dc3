#pragma once

#include <lum_data/memory_loader.h>
#include <lum_data/memory_reduced_stream.h>

#include <ferrin_core/data_regions_manager.h>
#include <ferrin_core/data_source.h>

#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace lum::data {

/// The source behind one in-memory channel: its stream id in the regions manager,
/// the loader of its samples and its reduced streams. Reduced streams are added while
/// the source is set up, before it is shared.
class MemoryDataSource : public ferrin::DataSource
{
public:
    MemoryDataSource(std::uint64_t stream_id, std::shared_ptr<ferrin::DataRegionsManager> regions,
                     std::shared_ptr<MemoryLoader> sample_loader);

    /// Registers the stream of @p kind and @p level (from 1), each entry of which stands
    /// for @p factor ticks.
    void addReducedStream(std::uint32_t kind, std::uint32_t level, std::uint64_t factor,
                          std::shared_ptr<MemoryReducedStream> stream);

    std::uint64_t reductionFactor(std::uint32_t level, std::uint64_t stream_id) const override;
    std::uint64_t tickReductionFactor(std::uint32_t level, std::uint64_t stream_id) const override;
    std::shared_ptr<ferrin::ReducedStream> getReducedStream(std::uint32_t kind,
                                                            std::uint32_t level) const override;
    std::uint64_t streamId() const override { return m_stream_id; }
    std::shared_ptr<ferrin::IfLoadableStream> getSampleStream() const override { return m_sample_loader; }

    const std::shared_ptr<ferrin::DataRegionsManager>& regions() const { return m_regions; }
    const std::shared_ptr<MemoryLoader>& sampleLoader() const { return m_sample_loader; }

private:
    struct Reduced
    {
        std::uint64_t factor;
        std::shared_ptr<MemoryReducedStream> stream;
    };
    std::uint64_t factorOf(std::uint32_t kind, std::uint32_t level, std::uint64_t stream_id) const;

    std::uint64_t m_stream_id;
    std::shared_ptr<ferrin::DataRegionsManager> m_regions;
    std::shared_ptr<MemoryLoader> m_sample_loader;
    std::map<std::pair<std::uint32_t, std::uint32_t>, Reduced> m_reduced;
};

} // namespace lum::data
