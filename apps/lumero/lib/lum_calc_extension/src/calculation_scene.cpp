#include <lum_calc_extension/calculation_scene.h>

#include <om_model/calculation.h>
#include <om_model/overmap_xml_read_writer.h>
#include <om_model/position_object.h>

#include <ferrin_core/scalar_channel.h>
#include <ferrin_core/tick_arithmetic.h>

#include <cmath>
#include <limits>

namespace lum::calc {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
/// Reference chains deeper than this are taken for a cycle the model let through.
constexpr int MAX_DEPTH = 64;

void collect(const overmap::GeoObject* object, std::vector<std::shared_ptr<ferrin::ScalarChannel>>& out)
{
    const auto* position = dynamic_cast<const overmap::PositionObject*>(object);
    for (int depth = 0; position != nullptr && depth < MAX_DEPTH; ++depth) {
        for (const auto* channel : {&position->getLatitudeChannel(), &position->getLongitudeChannel(),
                                    &position->getHeadingChannel()}) {
            if (*channel)
                out.push_back(*channel);
        }
        position = position->getReferenceObject().get();
    }
}

} // namespace

std::shared_ptr<CalculationScene> CalculationScene::read(const std::string& text,
                                                         overmap::IfChannelFetcher& fetcher)
{
    auto manager = std::make_unique<overmap::ObjectManager>();
    overmap::XmlReadWriter reader(manager.get(), &fetcher);
    if (!reader.read(text))
        return nullptr;
    return std::make_shared<CalculationScene>(std::move(manager));
}

CalculationScene::CalculationScene(std::unique_ptr<overmap::ObjectManager> manager)
    : m_manager(std::move(manager))
{}

std::vector<std::shared_ptr<const overmap::Calculation>> CalculationScene::measurableCalculations() const
{
    std::vector<std::shared_ptr<const overmap::Calculation>> result;
    for (const auto& calculation : m_manager->getCalculations()) {
        if (calculation->getFrom() && calculation->getTo())
            result.push_back(calculation);
    }
    return result;
}

std::vector<std::shared_ptr<ferrin::ScalarChannel>>
CalculationScene::inputChannels(const overmap::Calculation& calculation)
{
    std::vector<std::shared_ptr<ferrin::ScalarChannel>> channels;
    collect(calculation.getFrom().get(), channels);
    collect(calculation.getTo().get(), channels);
    return channels;
}

bool CalculationScene::recordedAt(const ferrin::ScalarChannel& channel, double time)
{
    const auto& time_base = channel.getTimeBase();
    if (!time_base)
        return false;
    const ferrin::Tick tick = ferrin::timeToTickFloor(time, *time_base);
    if (tick == ferrin::NO_TICK)
        return false;
    // The region found last answers most questions of a replay without the regions' lock.
    ferrin::DataRegion& cached = m_recorded.try_emplace(&channel, ferrin::NO_TICK, 0).first->second;
    if (cached.first <= tick && tick <= cached.second)
        return true;
    if (!channel.getRegionsManager())
        return true; // a channel without regions cannot tell: its samples stand for themselves
    for (const ferrin::DataRegion& region :
         channel.getDataRegions(tick, tick, ferrin::REGION_KIND_SAMPLES, 0, false, true)) {
        if (region.first <= tick && tick <= region.second) {
            // A closed recording's region stays as it is; an open one still grows.
            if (region.second != ferrin::NO_TICK)
                cached = region;
            return true;
        }
    }
    return false;
}

bool CalculationScene::knownAt(const overmap::PositionObject& object, double time, int depth)
{
    if (depth >= MAX_DEPTH)
        return false;
    const auto cached = m_known.find(&object);
    if (cached != m_known.end() && cached->second.time == time) {
        m_last_reading = &cached->second.reading;
        return cached->second.known;
    }
    bool known = true;
    overmap::PositionObject::ChannelReading reading{NaN, NaN, NaN};
    const auto& parent = object.getReferenceObject();
    if (parent && !knownAt(*parent, time, depth + 1))
        known = false;
    // A child stands where its parent puts it, and an object placed by XY without a
    // parent ignores its channels: update() reads channels in neither case.
    if (known && !parent && !object.isXYPosition()) {
        const auto& latitude = object.getLatitudeChannel();
        const auto& longitude = object.getLongitudeChannel();
        const auto& heading = object.getHeadingChannel();
        // The values read here are the ones update() would read: place() hands them over.
        math_geo::GeoPosition position = object.getGeoPosition();
        if (latitude) {
            reading.latitude = recordedAt(*latitude, time) ? latitude->getValueAtTime(time, nullptr) : NaN;
            position.latitude = reading.latitude;
        }
        if (longitude) {
            reading.longitude = recordedAt(*longitude, time) ? longitude->getValueAtTime(time, nullptr) : NaN;
            position.longitude = reading.longitude;
        }
        known = position.valid();
        if (known && heading) {
            known = recordedAt(*heading, time);
            if (known) {
                reading.heading = heading->getValueAtTime(time, nullptr);
                known = std::isfinite(reading.heading);
            }
        }
    }
    Known& entry = m_known[&object];
    entry = Known{time, known, reading};
    m_last_reading = &entry.reading;
    return known;
}

bool CalculationScene::place(overmap::PositionObject& object, double time)
{
    if (!knownAt(object, time, 0))
        return false;
    object.update(time, *m_last_reading);
    return true;
}

std::optional<Measurement> CalculationScene::measurementAt(const overmap::Calculation& calculation,
                                                           double time)
{
    if (!std::isfinite(time))
        return std::nullopt;
    const std::lock_guard<std::mutex> lock(m_mutex);
    // The ends of a calculation never change kind: which of them move is looked up once.
    auto ends = m_ends.find(&calculation);
    if (ends == m_ends.end()) {
        ends = m_ends
                   .emplace(&calculation,
                            Ends{dynamic_cast<overmap::PositionObject*>(calculation.getFrom().get()),
                                 dynamic_cast<overmap::PositionObject*>(calculation.getTo().get())})
                   .first;
    }
    for (overmap::PositionObject* position : {ends->second.from, ends->second.to}) {
        if (position != nullptr && !place(*position, time))
            return std::nullopt;
    }
    return measure(calculation);
}

double CalculationScene::valueAt(const overmap::Calculation& calculation, double time)
{
    const std::optional<Measurement> measurement = measurementAt(calculation, time);
    return measurement ? measurement->value : NaN;
}

} // namespace lum::calc
