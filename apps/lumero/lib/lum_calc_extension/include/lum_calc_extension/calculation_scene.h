#pragma once

#include <lum_calc_extension/calculation_geometry.h>

#include <om_model/object_manager.h>
#include <om_model/position_object.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ferrin {
class ScalarChannel;
}
namespace overmap {
class IfChannelFetcher;
class GeoObject;
class PositionObject;
} // namespace overmap

namespace lum::calc {

/// One setup text read into objects of its own, bound to the host's channels, that the
/// result channels of its calculations evaluate at any time asked. Objects move as the
/// scene's own display moves them (PositionObject::update with the same channels), one
/// caller at a time: every evaluation takes the scene's lock, so result channels may be
/// read from any thread. An object moved to a time stays there, so the calculations of
/// one time step share each object's update.
class CalculationScene
{
public:
    /// Reads @p text; null when it cannot be read completely (nothing half-read is used).
    static std::shared_ptr<CalculationScene> read(const std::string& text,
                                                  overmap::IfChannelFetcher& fetcher);

    explicit CalculationScene(std::unique_ptr<overmap::ObjectManager> manager);
    CalculationScene(const CalculationScene&) = delete;
    CalculationScene& operator=(const CalculationScene&) = delete;

    /// The scene's calculations that have both ends, in setup order. Only these get a
    /// result channel: without an end there is nothing to measure.
    std::vector<std::shared_ptr<const overmap::Calculation>> measurableCalculations() const;

    /// The value of @p calculation (one of this scene's) at @p time, seconds; NaN when an
    /// object it measures has no sample at that time, or its channels give no valid place.
    double valueAt(const overmap::Calculation& calculation, double time);
    /// The same with where it measures; empty where valueAt gives NaN.
    std::optional<Measurement> measurementAt(const overmap::Calculation& calculation, double time);

    /// Every channel that moves an end of @p calculation (reference objects included), in
    /// a fixed order: from side before to side; latitude, longitude, heading; each object
    /// before its reference object. Empty for a calculation between objects that stand still.
    static std::vector<std::shared_ptr<ferrin::ScalarChannel>>
    inputChannels(const overmap::Calculation& calculation);

private:
    /// Brings @p object to @p time; false when its channels give it no place then.
    bool place(overmap::PositionObject& object, double time);
    bool knownAt(const overmap::PositionObject& object, double time, int depth);
    /// Whether @p channel has a sample at @p time: reading past its last sample or into a
    /// gap between recordings would hold an old value, which is no value of that time.
    bool recordedAt(const ferrin::ScalarChannel& channel, double time);

    struct Known
    {
        double time;
        bool known;
        /// What the object's own channels gave then, for its update.
        overmap::PositionObject::ChannelReading reading;
    };
    /// The ends of a calculation that move; null for one that is not a position object.
    struct Ends
    {
        overmap::PositionObject* from;
        overmap::PositionObject* to;
    };

    std::mutex m_mutex;
    std::unique_ptr<overmap::ObjectManager> m_manager;
    std::unordered_map<const overmap::PositionObject*, Known> m_known;
    /// The reading of the object knownAt() looked at last, at its top level.
    const overmap::PositionObject::ChannelReading* m_last_reading = nullptr;
    std::unordered_map<const overmap::Calculation*, Ends> m_ends;
    /// By input channel, the closed region of samples last found (ticks, both inclusive).
    std::unordered_map<const ferrin::ScalarChannel*, std::pair<std::uint64_t, std::uint64_t>> m_recorded;
};

} // namespace lum::calc
