#pragma once

#include <ferrin_core/scalar_channel.h>

#include <channel_config/channel_id.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace overmap {
class Calculation;
}

namespace lum::calc {

class CalculationScene;
class ResultSource;

/// The result of one calculation as a channel of the host: metres at any time asked,
/// computed from the same channel samples that move the calculation's objects.
///
/// Its samples are those of its clock, the first input channel (CalculationScene::
/// inputChannels): time base, occurrence, data regions and sample iterators follow that
/// channel, and each sample's value is the distance at the sample's time. A value asked
/// at a time is the distance at that very time; it is NaN where any input has no sample.
/// A calculation between objects that stand still has no clock: one value that holds at
/// every time, at tick 0 of a 1 Hz clock starting at 0.
///
/// The calculation it stands for can be swapped (rebind) while readers read, from any
/// thread; the clock is fixed, so a calculation whose clock changes needs a new channel.
/// Reduced data follows the clock's reduction (its factors and entry counts); an entry
/// summarises the values at the clock's samples of its block and is worked out when read.
class ResultChannel : public ferrin::ScalarChannel
{
public:
    struct Binding
    {
        std::shared_ptr<CalculationScene> scene;
        std::shared_ptr<const overmap::Calculation> calculation;
    };

    /// A channel named @p name for @p binding, in metres, of channel type "Calculation".
    /// Its items change through @p config_manager (the host's), as every channel's do.
    static std::shared_ptr<ResultChannel> create(channel_config::ChannelID id, const std::string& name,
                                                 Binding binding,
                                                 ferrin_config::IfChannelConfigManager* config_manager);

    ResultChannel(ferrin::ChannelSetup setup, Binding binding, std::shared_ptr<ferrin::ScalarChannel> clock);

    /// Makes the channel compute @p binding from now on; its clock must be the same.
    void rebind(Binding binding);
    Binding binding() const;
    /// The input whose samples are the channel's samples; null for one without inputs.
    const std::shared_ptr<ferrin::ScalarChannel>& clock() const { return m_clock; }
    /// The clock that @p binding's channel gets.
    static std::shared_ptr<ferrin::ScalarChannel> clockFor(const overmap::Calculation& calculation);

    /// The distance at @p time (seconds), NaN for none.
    double valueAt(double time) const;

    std::shared_ptr<ferrin::DataSource> getDataSource() const override;
    daq::SamplePtr getSampleAtTime(double time) const override;
    double getValueAtTime(double time, ferrin::Tick* tick_out) const override;
    /// Loads every input's sample at @p time first.
    double getValueAtTimeEnsureLoaded(double time, ferrin::Tick* tick_out) const override;
    /// Over the values at the clock's samples from @p start to @p end.
    double calculateValue(double start, double end, std::int32_t calculation_type) const override;
    /// Not known without computing every sample: NaN.
    double minValue() const override;
    double maxValue() const override;
    std::unique_ptr<ferrin::IfSampleIterator> getSampleIterator(ferrin::Tick tick,
                                                                daq::SeekMode mode) const override;

private:
    struct State
    {
        Binding binding;
        std::vector<std::shared_ptr<ferrin::ScalarChannel>> inputs;
    };

    std::shared_ptr<const State> state() const;
    /// The tick of the sample a value at @p time belongs to.
    ferrin::Tick tickAt(double time, bool ensure_loaded) const;

    std::shared_ptr<ferrin::ScalarChannel> m_clock;
    std::shared_ptr<ResultSource> m_source;
    mutable std::mutex m_state_mutex;
    std::shared_ptr<const State> m_state;
};

} // namespace lum::calc
