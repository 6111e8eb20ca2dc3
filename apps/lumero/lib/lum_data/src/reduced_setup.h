#pragma once

#include <lum_data/memory_channel_options.h>
#include <lum_data/memory_data_source.h>
#include <lum_data/reduction_builder.h>

#include <initializer_list>
#include <memory>
#include <vector>

namespace lum::data::detail {

/// Makes the reduced streams the options ask for, registers them with @p source under
/// each of @p kinds and returns the builder that fills them (see ReductionBuilder for
/// @p min_count).
inline ReductionBuilder makeReducedStreams(MemoryDataSource& source,
                                           std::initializer_list<std::uint32_t> kinds,
                                           const MemoryChannelOptions& options, std::uint64_t min_count = 1)
{
    std::vector<std::shared_ptr<MemoryReducedStream>> streams;
    for (std::uint32_t level = 1; level <= options.reduction_levels; ++level) {
        auto stream = std::make_shared<MemoryReducedStream>(
            options.page_size, options.all_resident ? 0 : options.resident_pages);
        if (options.all_resident)
            stream->loader().loadAll();
        streams.push_back(std::move(stream));
    }
    ReductionBuilder builder(options.reduction_block, streams, min_count);
    for (std::uint32_t level = 1; level <= builder.streams().size(); ++level) {
        const std::uint64_t factor = builder.factor(level);
        for (std::uint32_t kind : kinds)
            source.addReducedStream(kind, level, factor, streams[level - 1]);
    }
    return builder;
}

inline std::shared_ptr<MemoryLoader> makeSampleLoader(const MemoryChannelOptions& options)
{
    auto loader =
        std::make_shared<MemoryLoader>(options.page_size, options.all_resident ? 0 : options.resident_pages);
    if (options.all_resident)
        loader->loadAll();
    return loader;
}

} // namespace lum::data::detail
