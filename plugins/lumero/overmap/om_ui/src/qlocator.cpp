#include <om_ui/qlocator.h>

#include <om_ui/if_object_manager.h>
#include <om_ui/qchannel_fetcher.h>

#include <om_model/locator.h>

#include <ferrin_core/scalar_channel.h>
#include <qchannel/qchannel_list_model.h>
#include <qt_utils/qt_checked_connect.h>

#include <QQmlEngine>

#include <algorithm>
#include <cmath>

namespace overmap_ui {

using lum::qchannel::QChannel;

namespace {
/// Equal when the lesser magnitude is at least 1e12 times the difference.
bool sameValue(double a, double b)
{
    return std::min(std::fabs(a), std::fabs(b)) >= std::fabs(a - b) * 1e12;
}
} // namespace

QPositionQuality::QPositionQuality(QObject* parent, std::shared_ptr<overmap::Locator> model,
                                   std::size_t index, QChannelFetcher* fetcher)
    : QObject(parent), m_model(std::move(model)), m_index(index), m_fetcher(fetcher)
{}

QPositionQuality::~QPositionQuality() = default;

double QPositionQuality::lowerThreshold() const
{
    return m_model->getQualityPositions().at(m_index).lowerLimit;
}

double QPositionQuality::upperThreshold() const
{
    return m_model->getQualityPositions().at(m_index).upperLimit;
}

void QPositionQuality::setLowerThreshold(double value)
{
    overmap::QualityPosition entry = m_model->getQualityPositions().at(m_index);
    if (sameValue(entry.lowerLimit, value))
        return;
    entry.lowerLimit = value;
    m_model->setQualityPosition(entry, m_index);
    Q_EMIT lowerThresholdChanged();
    Q_EMIT dataChanged();
}

void QPositionQuality::setUpperThreshold(double value)
{
    overmap::QualityPosition entry = m_model->getQualityPositions().at(m_index);
    if (sameValue(entry.upperLimit, value))
        return;
    entry.upperLimit = value;
    m_model->setQualityPosition(entry, m_index);
    Q_EMIT upperThresholdChanged();
    Q_EMIT dataChanged();
}

QChannel* QPositionQuality::qualityChannel() const
{
    const auto& channel = m_model->getQualityPositions().at(m_index).channel;
    if (!channel || m_fetcher == nullptr || m_fetcher->channelList() == nullptr)
        return nullptr;
    return m_fetcher->channelList()->getChannelByID(channel->getChannelId());
}

void QPositionQuality::setQualityChannel(QChannel* channel)
{
    if (qualityChannel() == channel)
        return;
    overmap::QualityPosition entry = m_model->getQualityPositions().at(m_index);
    // A channel of another kind than scalar is stored as none.
    entry.channel = channel != nullptr ? channel->ferrinScalarChannel() : nullptr;
    m_model->setQualityPosition(entry, m_index);
    Q_EMIT qualityChannelChanged();
    Q_EMIT dataChanged();
}

QLocator::QLocator(std::shared_ptr<overmap::Locator> model, QObject* parent)
    : QPositionObject(model, parent), m_locator(std::move(model))
{
    const auto* manager = dynamic_cast<const IfObjectManager*>(parent);
    QChannelFetcher* fetcher = manager != nullptr ? manager->channelFetcher() : nullptr;
    const std::size_t count = m_locator->getQualityPositions().size();
    m_position_qualities.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        auto* quality = new QPositionQuality(this, m_locator, i, fetcher);
        CHECKED_CONNECT(quality, &QPositionQuality::dataChanged, this, &QGeoObject::dataChanged);
        QQmlEngine::setObjectOwnership(quality, QQmlEngine::CppOwnership);
        m_position_qualities.push_back(quality);
    }
}

QLocator::~QLocator() = default;

int QLocator::getPositionQualitiesCount() const
{
    return static_cast<int>(m_locator->getQualityPositions().size());
}

QPositionQuality* QLocator::getPositionQuality(int idx) const
{
    return m_position_qualities.at(static_cast<std::size_t>(idx));
}

} // namespace overmap_ui
