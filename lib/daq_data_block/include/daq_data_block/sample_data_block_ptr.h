#pragma once

#include <daq_data_block/sample_data_block.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace daq {

/// Owning reference to a block; copying it counts, dropping the last one recycles the block.
using SampleDataBlockPtr = boost::intrusive_ptr<SampleDataBlock>;

} // namespace daq
