#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace overmap {

class GeoObject;

/// The host's calculation extension gives the result channel of calculation n the local id BASE + n.
inline constexpr std::uint32_t CALCULATION_RESULT_LOCAL_ID_BASE = 0x40000000u;

enum class DistanceType
{
    EUCLIDEAN = 0,
    X = 1,
    Y = 2
};

enum class TrackTarget
{
    CENTER = 0,
    EDGE = 1
};

enum class ResultTransformation
{
    AS_IS = 0,
    ABSOLUTE = 1,
    INVERT = 2
};

/// A distance between two scene objects, as a description for the host's calculation
/// extension; the model computes nothing from it. Ids come from a process-wide counter
/// of their own, raised past explicit ids.
class Calculation
{
public:
    Calculation();
    explicit Calculation(std::int32_t id);

    std::int32_t getId() const { return m_id; }
    const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }

    const std::shared_ptr<GeoObject>& getFrom() const { return m_from; }
    /// Stores the object; a distance type it no longer allows falls back to EUCLIDEAN.
    void setFrom(std::shared_ptr<GeoObject> from);
    const std::shared_ptr<GeoObject>& getTo() const { return m_to; }
    void setTo(std::shared_ptr<GeoObject> to);

    std::uint32_t getFromPoiIdx() const { return m_from_poi_idx; }
    void setFromPoiIdx(std::uint32_t index) { m_from_poi_idx = index; }
    std::uint32_t getToPoiIdx() const { return m_to_poi_idx; }
    void setToPoiIdx(std::uint32_t index) { m_to_poi_idx = index; }

    /// Effective use of the from POI: only a car can switch it off, a track never has one.
    bool useFromPoi() const;
    bool useToPoi() const;
    /// The flags as stored, whatever their effect.
    bool getStoredUseFromPoi() const { return m_use_from_poi; }
    bool getStoredUseToPoi() const { return m_use_to_poi; }
    void setUseFromPoi(bool use);
    void setUseToPoi(bool use);

    DistanceType getDistanceType() const { return m_distance_type; }
    /// Stores @p type only when it is allowed; otherwise the old type stays.
    void setDistanceType(DistanceType type);
    /// EUCLIDEAN always; X and Y need a point on each side, so not with a car without POI.
    bool isDistanceTypeAllowed(DistanceType type) const;

    TrackTarget getTrackTarget() const { return m_track_target; }
    void setTrackTarget(TrackTarget target) { m_track_target = target; }
    ResultTransformation getResultTransformation() const { return m_result_transformation; }
    void setResultTransformation(ResultTransformation value) { m_result_transformation = value; }

    /// The id the next calculation made without an explicit id will get.
    static std::int32_t peekNextId();

private:
    void recheckDistanceType();

    std::int32_t m_id;
    std::string m_name;
    std::shared_ptr<GeoObject> m_from;
    std::shared_ptr<GeoObject> m_to;
    std::uint32_t m_from_poi_idx = 0;
    std::uint32_t m_to_poi_idx = 0;
    bool m_use_from_poi = true;
    bool m_use_to_poi = true;
    DistanceType m_distance_type = DistanceType::EUCLIDEAN;
    TrackTarget m_track_target = TrackTarget::CENTER;
    ResultTransformation m_result_transformation = ResultTransformation::AS_IS;
};

} // namespace overmap
