#pragma once

#include <daq_data_block/sample_data_block_ptr.h>

#include <cstdint>

namespace daq {

/// Source of closed blocks for a stream whose blocks do not live in its own map,
/// such as blocks loaded from a stored file. Called under the stream's lock, so an
/// implementation must not call back into the stream. Returned blocks carry their
/// final sample count (or an open count, walked until timestamps or data length stop it).
class BlockProvider
{
public:
    /// The last block whose first timestamp is at or before @p t and whose span covers @p t.
    virtual SampleDataBlockPtr findBlockContaining(std::uint64_t t) = 0;
    /// The first block whose first timestamp is above @p t.
    virtual SampleDataBlockPtr findFirstBlockAfter(std::uint64_t t) = 0;
    /// The last block whose first timestamp is at or before @p t, whatever its span.
    virtual SampleDataBlockPtr findLastBlockAtOrBefore(std::uint64_t t) = 0;

    virtual ~BlockProvider() = default;
};

} // namespace daq
