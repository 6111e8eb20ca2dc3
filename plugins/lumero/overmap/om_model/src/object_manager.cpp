#include <om_model/object_manager.h>

#include <om_model/coordinate_defaults.h>

#include <uni_base/uni_assert.h>

namespace overmap {

ObjectManager::ObjectManager()
    : m_reference_plane(math_geo::GeoPosition(0.0, 0.0), 0.0, defaultPlaneCoordinateSystem())
{}

void ObjectManager::clear()
{
    m_calculations.clear();
    m_objects.clear();
    m_reference_plane.setCenter(math_geo::GeoPosition(0.0, 0.0));
    m_reference_plane.setRotation(0.0);
    m_plane_definition = PlaneDefinition();
    m_use_plane_definition_points = false;
    m_aerial_image = AerialImage();
    m_locator.reset();
    m_description.clear();
    m_view_description.clear();
    m_objects_description.clear();
}

void ObjectManager::addObject(std::shared_ptr<GeoObject> object)
{
    if (!UNI_ASSERT(object != nullptr))
        return;
    m_objects.push_back(std::move(object));
}

std::shared_ptr<GeoObject> ObjectManager::findObjectById(std::int32_t id) const
{
    for (const std::shared_ptr<GeoObject>& object : m_objects)
        if (object->getId() == id)
            return object;
    return nullptr;
}

std::shared_ptr<PositionObject> ObjectManager::findPositionObjectById(std::int32_t id) const
{
    for (const std::shared_ptr<GeoObject>& object : m_objects)
        if (object->getId() == id)
            if (auto position_object = std::dynamic_pointer_cast<PositionObject>(object))
                return position_object;
    return nullptr;
}

void ObjectManager::addCalculation(std::shared_ptr<Calculation> calculation)
{
    if (!UNI_ASSERT(calculation != nullptr))
        return;
    m_calculations.push_back(std::move(calculation));
}

} // namespace overmap
