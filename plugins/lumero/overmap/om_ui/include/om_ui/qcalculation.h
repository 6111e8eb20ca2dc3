#pragma once

#include <om_ui/qgeo_object.h>

#include <QObject>
#include <QString>

#include <memory>

namespace overmap {
class Calculation;
}

namespace overmap_ui {

class QChannelFetcher;
class QObjectManager;

/// The Qt face of one calculation, for the setup dialogs. Nothing is computed here: the
/// host's extension computes the distance from the setup text and delivers it as a
/// channel, whose name this class keeps in step with the calculation's.
class QCalculation : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int calcId READ calcId CONSTANT)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(
        overmap_ui::QGeoObject* fromObject READ fromObject WRITE setFromObject NOTIFY fromObjectChanged)
    Q_PROPERTY(overmap_ui::QGeoObject* toObject READ toObject WRITE setToObject NOTIFY toObjectChanged)
    Q_PROPERTY(int fromPoiIdx READ fromPoiIdx WRITE setFromPoiIdx NOTIFY fromPoiIdxChanged)
    Q_PROPERTY(int toPoiIdx READ toPoiIdx WRITE setToPoiIdx NOTIFY toPoiIdxChanged)
    Q_PROPERTY(bool useFromPoi READ useFromPoi WRITE setUseFromPoi NOTIFY useFromPoiChanged)
    Q_PROPERTY(bool useToPoi READ useToPoi WRITE setUseToPoi NOTIFY useToPoiChanged)
    Q_PROPERTY(DistanceType distanceType READ distanceType WRITE setDistanceType NOTIFY distanceTypeChanged)
    Q_PROPERTY(TrackTarget trackTarget READ trackTarget WRITE setTrackTarget NOTIFY trackTargetChanged)
    Q_PROPERTY(ResultTransformation resultTransformation READ resultTransformation WRITE
                   setResultTransformation NOTIFY resultTransformationChanged)
    Q_PROPERTY(bool euclideanOnly READ euclideanOnly NOTIFY euclideanOnlyChanged)

public:
    // A fixed underlying type: a view may write any number, which the setters refuse.
    enum DistanceType : int
    {
        EUCLIDEAN = 0,
        X = 1,
        Y = 2
    };
    Q_ENUM(DistanceType)

    enum TrackTarget : int
    {
        CENTER = 0,
        EDGE = 1
    };
    Q_ENUM(TrackTarget)

    enum ResultTransformation : int
    {
        AS_IS = 0,
        ABSOLUTE = 1,
        INVERT = 2
    };
    Q_ENUM(ResultTransformation)

    /// @p manager is the parent; it translates model objects to display objects.
    /// @p fetcher finds the result channel; may be null.
    QCalculation(std::shared_ptr<overmap::Calculation> model, QObjectManager* manager,
                 QChannelFetcher* fetcher);
    ~QCalculation() override;

    /// False when another calculation of the manager already has @p name.
    Q_INVOKABLE bool isNameUnique(QString name) const;

    int calcId() const;
    QString name() const;
    void setName(const QString& name);
    QGeoObject* fromObject() const;
    void setFromObject(QGeoObject* object);
    QGeoObject* toObject() const;
    void setToObject(QGeoObject* object);
    int fromPoiIdx() const;
    void setFromPoiIdx(int index);
    int toPoiIdx() const;
    void setToPoiIdx(int index);
    /// The effective use: only a car can measure without its POI.
    bool useFromPoi() const;
    void setUseFromPoi(bool use);
    bool useToPoi() const;
    void setUseToPoi(bool use);
    DistanceType distanceType() const;
    /// A type that the objects do not allow leaves the model unchanged.
    void setDistanceType(DistanceType type);
    TrackTarget trackTarget() const;
    void setTrackTarget(TrackTarget target);
    ResultTransformation resultTransformation() const;
    void setResultTransformation(ResultTransformation value);
    /// True while X (and so Y) is not allowed.
    bool euclideanOnly() const;

    const std::shared_ptr<overmap::Calculation>& calculationModel() const { return m_model; }

Q_SIGNALS:
    void nameChanged();
    void fromObjectChanged();
    void toObjectChanged();
    void fromPoiIdxChanged();
    void toPoiIdxChanged();
    void dataChanged();
    void useFromPoiChanged();
    void useToPoiChanged();
    void distanceTypeChanged();
    void trackTargetChanged();
    void resultTransformationChanged();
    void euclideanOnlyChanged();

private:
    /// What differs between the from and the to side of a calculation.
    struct Side;
    static const Side FROM;
    static const Side TO;

    QGeoObject* objectOf(const Side& side) const;
    void setObject(const Side& side, QGeoObject* object);
    void setPoiIdx(const Side& side, int index);
    void setUsePoi(const Side& side, bool use);

    std::shared_ptr<overmap::Calculation> m_model;
    QObjectManager* m_manager;
    QChannelFetcher* m_fetcher;
};

} // namespace overmap_ui
