#pragma once

#include <om_ui/qposition_object.h>

#include <QObject>

#include <cstddef>
#include <memory>
#include <vector>

namespace overmap {
class Locator;
}

namespace overmap_ui {

class QChannelFetcher;

/// One quality range of the locator: a quality channel and the two thresholds that
/// grade its value. Stands for the entry at its index in the model's list.
class QPositionQuality : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double lowerThreshold READ lowerThreshold WRITE setLowerThreshold NOTIFY lowerThresholdChanged)
    Q_PROPERTY(double upperThreshold READ upperThreshold WRITE setUpperThreshold NOTIFY upperThresholdChanged)
    Q_PROPERTY(lum::qchannel::QChannel* qualityChannel READ qualityChannel WRITE setQualityChannel NOTIFY
                   qualityChannelChanged)

public:
    QPositionQuality(QObject* parent, std::shared_ptr<overmap::Locator> model, std::size_t index,
                     QChannelFetcher* fetcher);
    ~QPositionQuality() override;

    double lowerThreshold() const;
    void setLowerThreshold(double value);
    double upperThreshold() const;
    void setUpperThreshold(double value);
    /// The QChannel of the entry's channel; null without one or when the list lacks it.
    lum::qchannel::QChannel* qualityChannel() const;
    void setQualityChannel(lum::qchannel::QChannel* channel);

Q_SIGNALS:
    void lowerThresholdChanged();
    void upperThresholdChanged();
    void qualityChannelChanged();
    void dataChanged();

private:
    std::shared_ptr<overmap::Locator> m_model;
    std::size_t m_index;
    QChannelFetcher* m_fetcher;
};

/// The Qt face of the scene's GPS receiver, with its position qualities.
class QLocator : public QPositionObject
{
    Q_OBJECT
    Q_PROPERTY(int positionQualitiesCount READ getPositionQualitiesCount NOTIFY positionQualitiesCountChanged)

public:
    /// The qualities are made once, for the entries the model has now.
    QLocator(std::shared_ptr<overmap::Locator> model, QObject* parent);
    ~QLocator() override;

    Type getType() const override { return LOCATOR; }

    Q_INVOKABLE int getPositionQualitiesCount() const;
    /// Throws std::out_of_range for an index without a wrapper.
    Q_INVOKABLE overmap_ui::QPositionQuality* getPositionQuality(int idx) const;

Q_SIGNALS:
    void positionQualitiesCountChanged();

private:
    std::shared_ptr<overmap::Locator> m_locator;
    std::vector<QPositionQuality*> m_position_qualities;
};

} // namespace overmap_ui
