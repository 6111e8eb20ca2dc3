#pragma once

#include <lum_data/memory_channel_options.h>
#include <lum_data/memory_data_source.h>

#include <ferrin_core/scalar_channel.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace lum::data {

/// A synchronous scalar channel over values in memory: sample i lies at tick i of the
/// time base, so a look-up by time is one conversion and one index. Values can be read
/// while their page is resident; the ensure-loaded operations bring it in under a
/// ferrin::ChannelRoiController. Reduced streams of both kinds (one entry per
/// `reduction_block` samples, which are as many ticks) are built at construction.
/// Immutable after construction, so reads need no lock of their own.
class SyncScalarChannel : public ferrin::ScalarChannel
{
public:
    /// @param setup     its time base must be set; its frequency is the sample rate.
    ///                  occurrence and dimension are set here (synchronous, 1).
    /// @param regions   shared by the channels of one source; receives this channel's regions
    /// @param stream_id this channel's stream in @p regions
    static std::shared_ptr<SyncScalarChannel> create(ferrin::ChannelSetup setup, std::vector<double> values,
                                                     std::shared_ptr<ferrin::DataRegionsManager> regions,
                                                     std::uint64_t stream_id,
                                                     const MemoryChannelOptions& options = {});

    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return m_source; }
    daq::SamplePtr getSampleAtTime(double time) const override;

    double getValueAtTime(double time, ferrin::Tick* tick_out) const override;
    double getValueAtTimeEnsureLoaded(double time, ferrin::Tick* tick_out) const override;
    double calculateValue(double start, double end, std::int32_t calculation_type) const override;
    double minValue() const override { return m_min; }
    double maxValue() const override { return m_max; }
    std::unique_ptr<ferrin::IfSampleIterator> getSampleIterator(ferrin::Tick tick,
                                                                daq::SeekMode mode) const override;

    std::uint64_t sampleCount() const { return m_count; }
    const std::shared_ptr<MemoryDataSource>& memorySource() const { return m_source; }

    SyncScalarChannel(ferrin::ChannelSetup setup, std::vector<double> values,
                      std::shared_ptr<MemoryDataSource> source);

private:
    /// The sample index for @p time: at or before it, the last one past the end.
    ferrin::Tick tickAtOrBefore(double time) const;

    std::shared_ptr<const std::vector<double>> m_values;
    const double* m_data;
    std::uint64_t m_count;
    std::shared_ptr<MemoryDataSource> m_source;
    MemoryLoader* m_loader;
    double m_min;
    double m_max;
};

} // namespace lum::data
