#pragma once

#include <ferrin_core/reduced_value.h>
#include <ferrin_core/time_base.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace ferrin {

class DataSource;

/// Families of reduced data a source may keep, chosen by the kind argument.
enum ReducedKind : std::uint32_t
{
    /// One entry per block of samples; read through DataSource::reductionFactor.
    REDUCED_KIND_SAMPLES = 0,
    /// One entry per block of ticks; read through DataSource::tickReductionFactor.
    REDUCED_KIND_TICKS = 1
};

/// The storage behind a stream of a source, which can be asked to keep ranges in
/// memory. Ranges are in the stream's own positions: ticks for a sample stream, entry
/// indices for a reduced stream. A reservation holds a range until its owner releases
/// it; the owner text is how the loader tells its clients apart.
class IfLoadableStream
{
public:
    virtual ~IfLoadableStream() = default;

    virtual bool reserve(const DataSource& source, Tick first, Tick last, const std::string& owner,
                         std::uint32_t flags) = 0;
    virtual bool release(const DataSource& source, Tick first, Tick last, const std::string& owner,
                         std::uint32_t flags) = 0;
    /// Brings [first, last] into memory; false when that is not possible.
    virtual bool load(const DataSource& source, Tick first, Tick last) = 0;
};

/// Reduced data of one level: entry i summarises the i-th block of the level's factor.
class ReducedStream : public IfLoadableStream
{
public:
    /// Bytes of one encoded entry.
    virtual std::uint32_t entrySize() const = 0;
    /// Number of complete entries.
    virtual std::uint64_t entryCount() const = 0;
    /// Copies entry @p index (entrySize() bytes) to @p out; false when it is beyond the
    /// end or not in memory.
    virtual bool readEntry(std::uint64_t index, std::uint8_t* out) const = 0;
};

/// Largest entry the channels' reduced decoder reads.
constexpr std::uint32_t MAX_REDUCED_ENTRY_SIZE = 64;

/// The default encoding of a reduced entry: min, max, avg, rms as four native doubles.
constexpr std::uint32_t REDUCED_ENTRY_SIZE = 4 * sizeof(double);
void encodeReducedEntry(const ReducedValue& value, std::uint8_t* out);
std::optional<ReducedValue> decodeReducedEntry(const std::uint8_t* entry, std::uint32_t size);

/// What stands behind a channel: its samples and reduced data, given by the host. A
/// channel without one is not valid.
class DataSource
{
public:
    virtual ~DataSource() = default;

    /// Ticks per entry of reduced level @p level of kind REDUCED_KIND_SAMPLES; 0 for none.
    virtual std::uint64_t reductionFactor(std::uint32_t level, std::uint64_t stream_id) const = 0;
    /// Ticks per entry of reduced level @p level of kind REDUCED_KIND_TICKS; 0 for none.
    virtual std::uint64_t tickReductionFactor(std::uint32_t level, std::uint64_t stream_id) const = 0;
    /// The reduced stream of a kind and level (from 1); null when there is none.
    virtual std::shared_ptr<ReducedStream> getReducedStream(std::uint32_t kind,
                                                            std::uint32_t level) const = 0;
    /// Identifies the source's sample stream in the regions manager.
    virtual std::uint64_t streamId() const = 0;
    /// The loadable storage of the samples, which the ROI guard reserves; null if the
    /// samples are always in memory.
    virtual std::shared_ptr<IfLoadableStream> getSampleStream() const = 0;

    /// The factor by kind: kind 0 and 1 as above, any other kind counts as 1.
    std::uint64_t reductionFactorByKind(std::uint32_t kind, std::uint32_t level) const;
};

} // namespace ferrin
