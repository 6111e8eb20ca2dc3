#pragma once

#include <cstdint>
#include <string>

namespace math_geo {
class ProjectionPlane;
}

namespace overmap {

/// Anything that stands in the scene. Ids come from one process-wide counter shared by
/// all scene objects, so objects made after a load never collide with loaded ones.
class GeoObject
{
public:
    /// Takes the next id of the counter. @p plane is the scene's reference plane, not owned.
    explicit GeoObject(const math_geo::ProjectionPlane* plane);
    /// Keeps @p id and raises the counter past it.
    GeoObject(std::int32_t id, const math_geo::ProjectionPlane* plane);
    virtual ~GeoObject();

    GeoObject(const GeoObject&) = delete;
    GeoObject& operator=(const GeoObject&) = delete;

    /// Stores the (non-owning) reference plane pointer.
    virtual void setPlane(const math_geo::ProjectionPlane* plane);
    const math_geo::ProjectionPlane* getPlane() const { return m_plane; }

    std::int32_t getId() const { return m_id; }
    const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }
    const std::string& getColor() const { return m_color; }
    void setColor(const std::string& color) { m_color = color; }

    /// The id the next object made without an explicit id will get.
    static std::int32_t peekNextId();

protected:
    /// The reference plane; a missing plane is a programming error, answered with a
    /// default plane so that the caller can go on.
    const math_geo::ProjectionPlane& referencePlane() const;

private:
    const math_geo::ProjectionPlane* m_plane = nullptr;
    std::int32_t m_id;
    std::string m_name;
    std::string m_color = "#000000";
};

} // namespace overmap
