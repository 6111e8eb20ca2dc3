#include <ferrin_core/data_source.h>

#include <cstring>

namespace ferrin {

void encodeReducedEntry(const ReducedValue& value, std::uint8_t* out)
{
    const double fields[4] = {value.min, value.max, value.avg, value.rms};
    std::memcpy(out, fields, sizeof(fields));
}

std::optional<ReducedValue> decodeReducedEntry(const std::uint8_t* entry, std::uint32_t size)
{
    if (!entry || size < REDUCED_ENTRY_SIZE)
        return std::nullopt;
    double fields[4];
    std::memcpy(fields, entry, sizeof(fields));
    return ReducedValue{fields[0], fields[1], fields[2], fields[3]};
}

std::uint64_t DataSource::reductionFactorByKind(std::uint32_t kind, std::uint32_t level) const
{
    switch (kind) {
    case REDUCED_KIND_SAMPLES:
        return reductionFactor(level, streamId());
    case REDUCED_KIND_TICKS:
        return tickReductionFactor(level, streamId());
    default:
        return 1;
    }
}

} // namespace ferrin
