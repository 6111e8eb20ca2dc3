#pragma once

#include <om_model/position_object.h>

#include <string>
#include <vector>

namespace pugi {
class xml_document;
}

namespace overmap {

/// A vehicle: an outline around its centre, seven named points around it, and the offset
/// of its GPS antenna from the centre. Channels give the antenna's position, so the
/// object plane is centred on the antenna while contour, POIs and XY position belong to
/// the centre.
class Car : public PositionObject
{
public:
    explicit Car(const math_geo::ProjectionPlane* plane);
    Car(std::int32_t id, const math_geo::ProjectionPlane* plane);
    ~Car() override;

    math_geo::Point2D toLocal(const math_geo::GeoPosition& position) const override;
    /// Also relabels the antenna offset; the contour keeps its label.
    void setCoordinateSystem(math_geo::CoordinateSystem value) override;
    bool hasSelectablePois() const override { return true; }
    math_geo::GeoPosition toGeo(const math_geo::Point2D& pt) const override;
    /// Stores the length and moves POIs 1 to 6.
    void setLength(double length) override;
    /// Stores the width and moves POIs 1 to 6.
    void setWidth(double width) override;
    void updateXYFromGeo() override;
    void updateGeoFromXY() override;

    const std::vector<math_geo::Point2D>& getContour() const { return m_contour; }
    /// The contour in the car's present local system, in which toGeo takes its points.
    std::vector<math_geo::Point2D> contourInLocalSystem() const;
    /// Takes the outline over, centres it on (0, 0) and sets length and width from its extent.
    void setContour(const std::vector<math_geo::Point2D>& points);

    /// Reads an outline from a text file of "x,y" lines. False, with the car unchanged,
    /// when the file cannot be read or holds fewer than three vertices.
    bool loadContourFile(const std::string& path);
    /// Reads contour, POIs and metadata from a vehicle document.
    bool loadVehicle(const pugi::xml_document& document);
    /// Appends the vehicle element (POIs, contour, metadata) to @p document.
    void saveVehicle(pugi::xml_document& document) const;

    const math_geo::Point2D& getGpsOffset() const { return m_gps_offset; }
    /// Antenna position relative to the contour's centre, in the local system.
    void setGpsOffset(const math_geo::Point2D& offset);

    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& text) { m_description = text; }
    /// Nominal length from the vehicle file, metres; -1.0 when none was read.
    double getVehicleLength() const { return m_vehicle_length; }
    /// Nominal width from the vehicle file, metres; -1.0 when none was read.
    double getVehicleWidth() const { return m_vehicle_width; }

    /// Names of the seven standard POIs, in index order.
    static const std::vector<std::string>& standardPoiNames();

private:
    void init();
    void updatePois();
    math_geo::Point2D offsetIn(math_geo::CoordinateSystem system) const;

    std::vector<math_geo::Point2D> m_contour;
    math_geo::Point2D m_gps_offset;
    std::string m_description;
    double m_vehicle_length = -1.0;
    double m_vehicle_width = -1.0;
};

/// Parses a contour text file: one vertex a line, "x,y", in @p system. Empty on any
/// error, with the error logged.
std::vector<math_geo::Point2D> readContourFile(const std::string& path, math_geo::CoordinateSystem system);

} // namespace overmap
