#include <ferrin_core/scalar_channel.h>

namespace ferrin {

std::shared_ptr<ReducedStream> ScalarChannel::getReducedStream(std::uint32_t kind, std::uint32_t level) const
{
    const std::shared_ptr<DataSource> source = getDataSource();
    return source ? source->getReducedStream(kind, level) : nullptr;
}

} // namespace ferrin
