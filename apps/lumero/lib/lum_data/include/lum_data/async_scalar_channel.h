#pragma once

#include <lum_data/append_only_index.h>
#include <lum_data/memory_channel_options.h>
#include <lum_data/memory_data_source.h>
#include <lum_data/reduction_builder.h>

#include <ferrin_core/scalar_channel.h>

#include <daq/async_sample_stream.h>
#include <daq_writer/async_sample_writer.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace lum::data {

/// An asynchronous scalar channel: every sample carries its own tick, kept in a
/// daq::AsyncSampleStream (an 8-byte timestamp and an 8-byte double per sample).
///
/// One thread may write (append, publish, finish) while others read. While a
/// recording is open, the regions manager holds it as an open recording from the first
/// sample's tick; finish() turns it into a closed region. Reduced streams are of kind
/// REDUCED_KIND_TICKS only (one entry per `reduction_block` ticks; blocks without a
/// sample give entries of NaN): blocks of samples have no place on the tick axis.
/// Residency is kept per page of ticks.
class AsyncScalarChannel : public ferrin::ScalarChannel
{
public:
    using TimedValue = std::pair<ferrin::Tick, double>;

    /// An empty channel, to be written with append(). @p setup's time base must be set.
    static std::shared_ptr<AsyncScalarChannel> create(ferrin::ChannelSetup setup,
                                                      std::shared_ptr<ferrin::DataRegionsManager> regions,
                                                      std::uint64_t stream_id,
                                                      const MemoryChannelOptions& options = {});
    /// A finished channel holding @p samples (ticks not going backwards).
    static std::shared_ptr<AsyncScalarChannel> create(ferrin::ChannelSetup setup,
                                                      const std::vector<TimedValue>& samples,
                                                      std::shared_ptr<ferrin::DataRegionsManager> regions,
                                                      std::uint64_t stream_id,
                                                      const MemoryChannelOptions& options = {});

    AsyncScalarChannel(ferrin::ChannelSetup setup, std::shared_ptr<MemoryDataSource> source,
                       std::shared_ptr<daq::AsyncSampleStream> stream, ReductionBuilder reduction);
    ~AsyncScalarChannel() override;

    // --- writing side, one thread ---
    /// Appends a sample; false (reported by the stream's writer) for a tick behind the last one.
    bool append(ferrin::Tick tick, double value);
    /// Makes every appended sample visible to readers.
    void publish();
    /// Publishes and ends the recording; later appends start a new one.
    void finish();

    // --- reading side ---
    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return m_source; }
    daq::SamplePtr getSampleAtTime(double time) const override;
    double getValueAtTime(double time, ferrin::Tick* tick_out) const override;
    double getValueAtTimeEnsureLoaded(double time, ferrin::Tick* tick_out) const override;
    double calculateValue(double start, double end, std::int32_t calculation_type) const override;
    double minValue() const override;
    double maxValue() const override;
    std::unique_ptr<ferrin::IfSampleIterator> getSampleIterator(ferrin::Tick tick,
                                                                daq::SeekMode mode) const override;

    const std::shared_ptr<daq::AsyncSampleStream>& stream() const { return m_stream; }
    const std::shared_ptr<MemoryDataSource>& memorySource() const { return m_source; }

private:
    /// The last published sample at or before @p tick, whether resident or not.
    std::optional<TimedValue> findAtOrBefore(ferrin::Tick tick) const;
    /// The same within one block of which @p count samples may be read.
    std::optional<TimedValue> searchBlock(const daq::SampleDataBlock& block, std::uint32_t count,
                                          ferrin::Tick tick) const;
    /// Takes the blocks that the writer closed since the last call into m_closed_firsts.
    void indexClosedBlocks();
    double valueAt(double time, ferrin::Tick* tick_out, bool ensure_loaded) const;

    std::shared_ptr<MemoryDataSource> m_source;
    std::shared_ptr<daq::AsyncSampleStream> m_stream;
    MemoryLoader* m_loader;
    std::uint32_t m_stride;

    // Writer's state.
    daq::AsyncSampleWriter m_writer;
    ReductionBuilder m_reduction;
    bool m_recording_open = false;
    ferrin::Tick m_recording_first = 0;
    ferrin::Tick m_last_tick = 0;
    bool m_has_samples = false;
    double m_pending_min;
    double m_pending_max;

    struct ClosedBlock
    {
        std::uint64_t first = 0;
        const daq::SampleDataBlock* block = nullptr;
    };
    // Closed blocks never change: an index of their first timestamps finds one with a
    // binary search instead of a walk through the stream's map, and without a lock, as
    // every value read at a time asks it.
    AppendOnlyIndex<ClosedBlock> m_closed;
    /// Where the last search ended: a hint any reader may leave, checked before use.
    mutable std::atomic<std::size_t> m_last_block{0};
    /// The same for the sample within its block.
    mutable std::atomic<std::uint32_t> m_last_sample{0};
    /// Keeps the indexed blocks; the writer's only.
    std::vector<daq::SampleDataBlockPtr> m_closed_blocks;
    std::size_t m_known_closed = 0;
    ferrin::Tick m_first_tick = ferrin::NO_TICK;

    mutable std::mutex m_range_mutex;
    double m_min;
    double m_max;
};

} // namespace lum::data
