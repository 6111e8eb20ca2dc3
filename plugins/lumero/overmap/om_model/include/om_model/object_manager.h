#pragma once

#include <om_model/calculation.h>
#include <om_model/geo_object.h>
#include <om_model/position_object.h>

#include <math_geo/geo_position.h>
#include <math_geo/point_2d.h>
#include <math_geo/projection_plane.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace overmap {

/// Two points known both on the globe and in the plane, which fix a plane's centre and
/// rotation.
struct PlaneDefinition
{
    math_geo::GeoPosition primaryPosition;
    math_geo::GeoPosition secondaryPosition;
    math_geo::Point2D primaryPoint;
    math_geo::Point2D secondaryPoint;
};

/// The aerial image under the scene and the two points that place it.
struct AerialImage
{
    PlaneDefinition definition;
    std::string imagePath;
};

/// How the setup view of the street map looks.
struct MapSetupView
{
    math_geo::GeoPosition center;
    double scale = 1.0;
    /// Degrees.
    double rotation = 0.0;
};

/// The setup record: every object and calculation of a scene, its reference plane and
/// its view data. Objects point at its reference plane, so the manager never moves.
class ObjectManager
{
public:
    ObjectManager();
    ObjectManager(const ObjectManager&) = delete;
    ObjectManager& operator=(const ObjectManager&) = delete;

    /// Empties calculations, then objects, and resets everything but the reference plane's
    /// XY system and the map setup view.
    void clear();

    void addObject(std::shared_ptr<GeoObject> object);
    std::size_t objectCount() const { return m_objects.size(); }
    /// Throws std::out_of_range for a bad index.
    const std::shared_ptr<GeoObject>& objectAt(std::size_t index) const { return m_objects.at(index); }
    const std::vector<std::shared_ptr<GeoObject>>& getObjects() const { return m_objects; }
    /// Null when no object has that id.
    std::shared_ptr<GeoObject> findObjectById(std::int32_t id) const;
    /// Null when no position object has that id (a track with the id does not count).
    std::shared_ptr<PositionObject> findPositionObjectById(std::int32_t id) const;

    void addCalculation(std::shared_ptr<Calculation> calculation);
    std::size_t calculationCount() const { return m_calculations.size(); }
    /// Throws std::out_of_range for a bad index.
    const std::shared_ptr<Calculation>& calculationAt(std::size_t index) const
    {
        return m_calculations.at(index);
    }
    const std::vector<std::shared_ptr<Calculation>>& getCalculations() const { return m_calculations; }
    void clearCalculations() { m_calculations.clear(); }

    /// The plane every object of this manager points at.
    math_geo::ProjectionPlane* getReferencePlane() { return &m_reference_plane; }
    const math_geo::ProjectionPlane* getReferencePlane() const { return &m_reference_plane; }
    /// Copies @p plane into the reference plane; the objects' pointers stay valid.
    void setReferencePlane(const math_geo::ProjectionPlane& plane) { m_reference_plane = plane; }

    const PlaneDefinition& getPlaneDefinition() const { return m_plane_definition; }
    void setPlaneDefinition(const PlaneDefinition& definition) { m_plane_definition = definition; }
    bool getUsePlaneDefinitionPoints() const { return m_use_plane_definition_points; }
    void setUsePlaneDefinitionPoints(bool use) { m_use_plane_definition_points = use; }
    const AerialImage& getAerialImage() const { return m_aerial_image; }
    void setAerialImage(const AerialImage& image) { m_aerial_image = image; }

    /// The scene's locator. Not type-checked: a setup may name any object.
    const std::shared_ptr<GeoObject>& getLocator() const { return m_locator; }
    void setLocator(std::shared_ptr<GeoObject> locator) { m_locator = std::move(locator); }

    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& text) { m_description = text; }
    const std::string& getViewDescription() const { return m_view_description; }
    void setViewDescription(const std::string& text) { m_view_description = text; }
    const std::string& getObjectsDescription() const { return m_objects_description; }
    void setObjectsDescription(const std::string& text) { m_objects_description = text; }

    const MapSetupView& getMapSetupView() const { return m_map_setup_view; }
    void setMapSetupView(const MapSetupView& view) { m_map_setup_view = view; }

private:
    std::vector<std::shared_ptr<GeoObject>> m_objects;
    std::vector<std::shared_ptr<Calculation>> m_calculations;
    math_geo::ProjectionPlane m_reference_plane;
    PlaneDefinition m_plane_definition;
    bool m_use_plane_definition_points = false;
    AerialImage m_aerial_image;
    std::shared_ptr<GeoObject> m_locator;
    std::string m_description;
    std::string m_view_description;
    std::string m_objects_description;
    MapSetupView m_map_setup_view;
};

} // namespace overmap
