#include "qchannel_log.h"
#include <qchannel/qchannel.h>

#include "config_item_conversion.h"
#include "pool_task.h"

#include "config_constraints_to_string_visitor.h"

#include <qchannel/qbus_message.h>
#include <qchannel/qcomplex_sample.h>
#include <qchannel/qmeasurement_chain.h>
#include <qchannel/simple_xml_config.h>

#include <lum_config_items/ferrin_config_item_utils.h>

#include <config_items/config_enums.h>
#include <config_items/config_item_variant.h>
#include <config_items/parse_string_visitor.h>
#include <ferrin_core/channel_config_manager.h>
#include <ferrin_core/channel_kinds.h>
#include <ferrin_core/sample.h>
#include <ferrin_core/scalar_channel.h>
#include <ferrin_core/tick_arithmetic.h>
#include <uni_base/uni_assert.h>
#include <uni_base/uni_log.h>

#include <QFutureInterface>
#include <QQmlEngine>
#include <QReadLocker>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>
#include <QWriteLocker>

#include <algorithm>
#include <any>
#include <atomic>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace lum::qchannel {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

QVariant nanVariant()
{
    return QVariant(NaN);
}

/// The text of an enumeration value, "invalid" when the table has no entry for it.
template <typename Enum>
QString enumText(int value)
{
    const auto& map = channel_config::enumTextMap<Enum>();
    const auto found = map.left.find(static_cast<Enum>(value));
    return found == map.left.end() ? QStringLiteral("invalid") : QString::fromStdString(found->second);
}

bool hasPrefix(const std::string& key, const char* prefix)
{
    return key.rfind(prefix, 0) == 0;
}

} // namespace

QChannel::QChannel(std::shared_ptr<ferrin::Channel> channel, QObject* parent)
    : QObject(parent), m_ferrin_channel(std::move(channel))
{
    qRegisterMetaType<channel_config::ChannelID>("ChannelID");
    qRegisterMetaType<channel_config::ChannelID>();
    UNI_ASSERT(m_ferrin_channel);
    renewTypedViews();
    registerObserver();

    connect(&m_action_watcher, &QFutureWatcher<void>::finished, this,
            &QChannel::channelActionInProgressChanged);
    connect(this, &QChannel::ferrinChannelChanged, this, &QChannel::channelTypeDescriptionChanged);
    connect(this, &QChannel::sampleOccurenceChanged, this, &QChannel::channelTypeDescriptionChanged);
    connect(this, &QChannel::sampleDimensionChanged, this, &QChannel::channelTypeDescriptionChanged);
    connect(this, &QChannel::sampleValueTypeChanged, this, &QChannel::channelTypeDescriptionChanged);
}

QChannel::~QChannel()
{
    Q_EMIT destroying(this);
    unregisterObserver(m_ferrin_channel);
    m_ferrin_channel.reset();
    m_ferrin_scalar_channel.reset();
    m_ferrin_vector_channel.reset();
    m_ferrin_complex_vector_channel.reset();
    // A running action holds its own reference to the channel; let it end before the
    // watcher goes, so that nothing reports into a dead object.
    m_action_watcher.disconnect(this);
    m_action_future.waitForFinished();
    // No event loop may run after the last channel goes: what lives here is deleted now.
    QWriteLocker lock(&m_constraints_lock);
    for (ferrin_config::QCellEditorConstraints* constraints : qAsConst(m_constraints_cache)) {
        if (constraints && constraints->thread() == QThread::currentThread())
            delete constraints;
        else if (constraints)
            constraints->deleteLater();
    }
    m_constraints_cache.clear();
}

void QChannel::registerObserver()
{
    if (!m_ferrin_channel)
        return;
    m_ferrin_channel->registerObserver(this, [this](channel_config::ChannelID id, const std::string& key) {
        onChannelConfigItemChanged(id, QString::fromStdString(key));
    });
}

void QChannel::unregisterObserver(const std::shared_ptr<ferrin::Channel>& channel)
{
    if (channel)
        channel->registerObserver(this, ferrin::ConfigObserver());
}

void QChannel::renewTypedViews()
{
    m_ferrin_scalar_channel = std::dynamic_pointer_cast<ferrin::ScalarChannel>(m_ferrin_channel);
    m_ferrin_vector_channel = std::dynamic_pointer_cast<ferrin::ScalarVectorChannel>(m_ferrin_channel);
    m_ferrin_complex_vector_channel =
        std::dynamic_pointer_cast<ferrin::ComplexVectorChannel>(m_ferrin_channel);
}

// ---------------------------------------------------------------------------------------
// Values

daq::SamplePtr QChannel::sampleAt(double time, bool ensure_loaded) const
{
    if (!m_ferrin_channel)
        return nullptr;
    return ensure_loaded ? m_ferrin_channel->getSampleAtTimeEnsureLoaded(time)
                         : m_ferrin_channel->getSampleAtTime(time);
}

QVariant QChannel::valueAtTime(double time) const
{
    if (m_ferrin_scalar_channel)
        return QVariant(m_ferrin_scalar_channel->getValueAtTime(time, nullptr));
    const daq::SamplePtr sample = sampleAt(time, false);
    return sample ? sampleToVariant(sample.get()) : nanVariant();
}

QVariant QChannel::valueAtTimeEnsureLoaded(double time) const
{
    if (m_ferrin_scalar_channel)
        return QVariant(m_ferrin_scalar_channel->getValueAtTimeEnsureLoaded(time, nullptr));
    const daq::SamplePtr sample = sampleAt(time, true);
    return sample ? sampleToVariant(sample.get()) : nanVariant();
}

QVariant QChannel::valueNearTime(double time) const
{
    if (m_ferrin_scalar_channel)
        return QVariant(findNearSample(time).first);
    return valueAtTime(time);
}

double QChannel::sampletimeNearTime(double time) const
{
    if (time < 0.0 || !m_ferrin_scalar_channel)
        return NaN;
    return findNearSample(time).second;
}

std::pair<double, double> QChannel::findNearSample(double time) const
{
    const std::shared_ptr<ferrin::ScalarChannel>& channel = m_ferrin_scalar_channel;
    if (!channel || !channel->getTimeBase())
        return {NaN, time};
    const ferrin::TimeBase& time_base = *channel->getTimeBase();

    ferrin::Tick previous_tick = 0;
    const double previous_value = channel->getValueAtTimeEnsureLoaded(time, &previous_tick);
    // Without a previous sample this is the time of the largest tick, which makes the
    // span of an asynchronous channel negative: nothing qualifies then.
    const double previous_time = ferrin::tickToTime(previous_tick, time_base);

    const ferrin::Tick next_tick = ferrin::timeToTickCeil(time, time_base);
    const std::unique_ptr<ferrin::IfSampleIterator> next =
        channel->getSampleIterator(next_tick, daq::SEEK_AT_OR_AFTER);

    const bool previous_ok = previous_tick != ferrin::NO_TICK &&
                             channel->isDataAvailable(previous_tick, ferrin::REGION_KIND_SAMPLES, 0);
    const double sample_period = ferrin::ticksToSeconds(1, time_base);

    double span = sample_period;
    if (next && next->isValid() && channel->isDataAvailable(next_tick, ferrin::REGION_KIND_SAMPLES, 0)) {
        const double next_time = ferrin::tickToTime(next->getTimestamp(), time_base);
        if (channel->getSampleOccurrence() != ferrin::OCCURRENCE_SYNC)
            span = (next_time - previous_time) * 0.5;
        const bool previous_nearer =
            previous_ok && std::abs(previous_time - time) < std::abs(next_time - time);
        if (!previous_nearer && (span == 0.0 || span > std::abs(next_time - time))) {
            const auto* value = static_cast<const double*>(next->getValue());
            return {value ? *value : NaN, next_time};
        }
    }
    if (previous_ok && span > std::abs(previous_time - time))
        return {previous_value, previous_time};
    return {NaN, time};
}

QVariant QChannel::indexedValue(int index, double time, bool ensure_loaded) const
{
    if (m_ferrin_scalar_channel || index < 0)
        return nanVariant();
    if (!m_ferrin_vector_channel && !m_ferrin_complex_vector_channel)
        return nanVariant();
    const daq::SamplePtr sample = sampleAt(time, ensure_loaded);
    if (!sample)
        return nanVariant();
    const auto position = static_cast<std::size_t>(index);
    if (m_ferrin_vector_channel) {
        const auto* values = std::get_if<std::vector<double>>(&sample->value);
        if (values && position < values->size())
            return QVariant((*values)[position]);
        return nanVariant();
    }
    const auto* values = std::get_if<std::vector<std::complex<double>>>(&sample->value);
    if (values && position < values->size())
        return QVariant::fromValue(new QComplexSample((*values)[position]));
    return nanVariant();
}

QVariant QChannel::indexedValueAtTime(int index, double time) const
{
    return indexedValue(index, time, false);
}

QVariant QChannel::indexedValueAtTimeEnsureLoaded(int index, double time) const
{
    return indexedValue(index, time, true);
}

QVariant QChannel::sliceAtTime(int index, int max_elements, double time) const
{
    if (!m_ferrin_vector_channel || index < 0)
        return nanVariant();
    const daq::SamplePtr sample = sampleAt(time, false);
    const auto* values = sample ? std::get_if<std::vector<double>>(&sample->value) : nullptr;
    const auto first = static_cast<std::size_t>(index);
    if (!values || first >= values->size())
        return nanVariant();
    const std::size_t count = static_cast<std::size_t>(std::max(max_elements, 0));
    const std::size_t end = std::min(values->size(), first + count);
    QVariantList slice;
    slice.reserve(static_cast<int>(end - first));
    for (std::size_t i = first; i < end; ++i)
        slice.append((*values)[i]);
    return slice;
}

QVariant QChannel::calculateValue(double start_time, double end_time, int val_type) const
{
    if (!m_ferrin_scalar_channel || val_type < 0 || val_type >= QSampleCalcType::NUM_ENUMS)
        return nanVariant();
    return QVariant(m_ferrin_scalar_channel->calculateValue(start_time, end_time, val_type));
}

QVariant QChannel::anyValueAtTimeEnsureLoaded(double time) const
{
    if (time < 0.0)
        return QVariant();
    QVariantMap result;
    if (m_ferrin_scalar_channel) {
        ferrin::Tick tick = ferrin::NO_TICK;
        const double value = m_ferrin_scalar_channel->getValueAtTimeEnsureLoaded(time, &tick);
        if (!std::isnan(value) && tick != ferrin::NO_TICK)
            result.insert(QStringLiteral("value"), value);
        const std::optional<ferrin::ReducedValue> reduced =
            m_ferrin_scalar_channel->getReducedValueAtTime(time, 1, 1, true);
        if (reduced) {
            QVariantMap summary;
            summary.insert(QStringLiteral("min"), reduced->min);
            summary.insert(QStringLiteral("max"), reduced->max);
            summary.insert(QStringLiteral("avg"), reduced->avg);
            summary.insert(QStringLiteral("rms"), reduced->rms);
            result.insert(QStringLiteral("reduced_value"), summary);
        }
    } else if (m_ferrin_channel) {
        const daq::SamplePtr sample = m_ferrin_channel->getSampleAtTimeEnsureLoaded(time);
        const QVariant value = sampleToVariant(sample.get());
        if (!value.isNull())
            result.insert(QStringLiteral("value"), value);
    }
    return result;
}

double QChannel::minValue() const
{
    if (m_ferrin_scalar_channel)
        return m_ferrin_scalar_channel->minValue();
    if (m_ferrin_vector_channel || m_ferrin_complex_vector_channel)
        return m_ferrin_channel->getRangeMinimum();
    return NaN;
}

double QChannel::maxValue() const
{
    if (m_ferrin_scalar_channel)
        return m_ferrin_scalar_channel->maxValue();
    if (m_ferrin_vector_channel || m_ferrin_complex_vector_channel)
        return m_ferrin_channel->getRangeMaximum();
    return NaN;
}

namespace {

/// The time of the first or the last recorded tick of @p channel; 0.0 without regions.
double regionBoundary(const ferrin::Channel* channel, bool first)
{
    if (!channel || !channel->getTimeBase())
        return 0.0;
    const ferrin::DataRegions regions =
        channel->getDataRegions(0, ferrin::NO_TICK - 1, ferrin::REGION_KIND_SAMPLES, 0, false, false);
    if (regions.empty())
        return 0.0;
    return ferrin::tickToTime(first ? regions.front().first : regions.back().second, *channel->getTimeBase());
}

} // namespace

double QChannel::getFirstRegionStart() const
{
    return regionBoundary(m_ferrin_channel.get(), true);
}

double QChannel::getLastRegionEnd() const
{
    return regionBoundary(m_ferrin_channel.get(), false);
}

QVariant QChannel::sampleToVariant(const daq::Sample* sample)
{
    if (!sample)
        return QVariant();
    const daq::SampleData& data = sample->value;
    // The type code decides; a code that disagrees with the value held gives nothing
    // rather than a throw on the display path.
    switch (sample->type) {
    case daq::SAMPLE_TYPE_NONE:
        return QVariant();
    case daq::SAMPLE_TYPE_DOUBLE:
        if (const auto* value = std::get_if<double>(&data))
            return QVariant(*value);
        break;
    case daq::SAMPLE_TYPE_VECTOR:
        if (const auto* values = std::get_if<std::vector<double>>(&data)) {
            QVariantList list;
            list.reserve(static_cast<int>(values->size()));
            for (double value : *values)
                list.append(value);
            return list;
        }
        break;
    case daq::SAMPLE_TYPE_COMPLEX_VECTOR:
        if (const auto* values = std::get_if<std::vector<std::complex<double>>>(&data)) {
            QVariantList list;
            list.reserve(static_cast<int>(values->size()));
            for (const std::complex<double>& value : *values)
                list.append(QVariant::fromValue(new QComplexSample(value)));
            return list;
        }
        break;
    case daq::SAMPLE_TYPE_CAN:
        if (const auto* frame = std::get_if<daq::CanFrame>(&data))
            return QVariant::fromValue(new lum::message::QCanMessage(
                sample->timestamp, frame->id, frame->isExtended(), frame->isRemote(), frame->payload));
        break;
    case daq::SAMPLE_TYPE_VIDEO:
        if (const auto* frame = std::get_if<daq::VideoFrame>(&data))
            return QByteArray(reinterpret_cast<const char*>(frame->bytes.data()),
                              static_cast<int>(frame->bytes.size()));
        break;
    case daq::SAMPLE_TYPE_STRING:
        if (const auto* text = std::get_if<std::string>(&data))
            return QString::fromUtf8(text->data(), static_cast<int>(text->size()));
        break;
    case daq::SAMPLE_TYPE_FLEXRAY:
        if (const auto* frame = std::get_if<daq::FlexRayFrame>(&data))
            return QVariant::fromValue(new lum::message::QFlexrayMessage(sample->timestamp, frame->cycle,
                                                                         frame->slot, frame->payload));
        break;
    case daq::SAMPLE_TYPE_BYTE_VECTOR:
        if (const auto* bytes = std::get_if<daq::ByteVector>(&data))
            return QVariant::fromValue(new lum::message::QBusMessage(sample->timestamp, *bytes));
        break;
    default:
        UNI_FAIL("Unknown sample type");
        return QVariant();
    }
    UNI_FAIL("Sample type %u does not match its value", sample->type);
    return QVariant();
}

// ---------------------------------------------------------------------------------------
// Configuration

QVariant QChannel::getConfigItem(const QString& key) const
{
    if (key.isEmpty())
        return QVariant();
    if (!m_ferrin_channel) {
        UNI_FAIL("getConfigItem on invalid ferrin channel");
        return QVariant();
    }
    const std::string std_key = key.toStdString();
    const ferrin::ConfigItem item = m_ferrin_channel->getConfigItem(std_key);
    if (std_key == "Ferrin/LongName") {
        const auto* text = std::get_if<config_items::StringConfigItem>(&item);
        if (text && text->getValue().empty())
            return detail::configItemToVariant(m_ferrin_channel->getConfigItem("Ferrin/Name"));
    }
    return detail::configItemToVariant(item);
}

QString QChannel::getConfigItemType(const QString& key) const
{
    if (!m_ferrin_channel)
        return QString();
    return QString::fromStdString(
        channel_config::configItemTypeName(m_ferrin_channel->getConfigItem(key.toStdString())));
}

QString QChannel::getConfigItemAsString(const QString& key) const
{
    if (!m_ferrin_channel)
        return QString();
    return QString::fromStdString(
        channel_config::toString(m_ferrin_channel->getConfigItem(key.toStdString())));
}

QString QChannel::getStringRepresentation(const QString& key) const
{
    if (key.isEmpty())
        return QString();
    const QVariant value = getConfigItem(key);
    // A key the channel lacks has no text; that is no fault of the caller.
    if (!value.isValid())
        return QString();
    if (key == QLatin1String("CAN/MessageID")) {
        bool converts = false;
        const int id = value.toInt(&converts);
        return converts ? QStringLiteral("0x") + QString::number(static_cast<uint>(id), 16) : QString();
    }
    return getStringRep(value);
}

QString QChannel::getStringRep(const QVariant& value) const
{
    return ferrin_config::variantToString(value);
}

ferrin_config::QCellEditorConstraints* QChannel::getPropertyConstraints(const QString& key)
{
    if (!m_ferrin_channel)
        return nullptr;
    {
        QReadLocker lock(&m_constraints_lock);
        if (auto* cached = m_constraints_cache.value(key, nullptr))
            return cached;
    }
    QWriteLocker lock(&m_constraints_lock);
    if (auto* cached = m_constraints_cache.value(key, nullptr))
        return cached;
    auto* constraints =
        new ferrin_config::QCellEditorConstraints(m_ferrin_channel->getConstraints(key.toStdString()));
    // Dropped entries get deleteLater, which must run where the channel lives.
    constraints->moveToThread(thread());
    QQmlEngine::setObjectOwnership(constraints, QQmlEngine::CppOwnership);
    m_constraints_cache.insert(key, constraints);
    return constraints;
}

QStringList QChannel::getConstraintDescriptions(const QString& key) const
{
    if (!m_ferrin_channel)
        return {};
    try {
        return lum::detail::ConfigConstraintsToStringVisitor::describe(
            m_ferrin_channel->getConstraints(key.toStdString()));
    } catch (const std::invalid_argument& error) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
            << "Constraints of " << key.toStdString() << ": " << error.what();
        return {};
    }
}

QString QChannel::getSimpleXmlConfigRepresentation() const
{
    if (!m_ferrin_channel || !m_ferrin_channel->getItemStore())
        return QString();
    return QString::fromStdString(writeSimpleXmlConfig(simpleXmlEntries(*m_ferrin_channel->getItemStore())));
}

bool QChannel::setSimpleXmlConfigRepresentation(const QString& text)
{
    if (!m_ferrin_channel || !m_ferrin_channel->getItemStore())
        return false;
    const std::optional<SimpleXmlReadResult> read = readSimpleXmlConfig(text.toStdString());
    if (!read)
        return false;
    SimpleXmlApplyResult parsed = parseSimpleXmlEntries(read->entries, *m_ferrin_channel->getItemStore());
    ferrin_config::ConfigRequests requests;
    for (auto& [key, item] : parsed.items)
        requests.push_back(
            ferrin_config::ConfigRequest{m_ferrin_channel->getChannelId(), key, std::move(item)});
    const bool sent = requests.empty() || m_ferrin_channel->setConfigItems(requests);
    return sent && parsed.refused == 0 && read->passed_over == 0;
}

lum::QMeasurementChain* QChannel::getMeasurementChain() const
{
    auto* chain = new lum::QMeasurementChain();
    QQmlEngine::setObjectOwnership(chain, QQmlEngine::CppOwnership);
    if (!m_ferrin_channel)
        return chain;
    for (ferrin::MeasurementChainElement& element : m_ferrin_channel->getMeasurementChain())
        chain->append(new lum::QMeasurementChainElement(std::move(element), chain));
    return chain;
}

bool QChannel::setConfigItem(const QString& key, const QVariant& value)
{
    if (!m_ferrin_channel)
        return false;
    if (!UNI_ASSERT_MSG(value.isValid(), "setConfigItem: called with value 'invalid' for key %s",
                        qPrintable(key)))
        return false;
    const std::string std_key = key.toStdString();
    const std::optional<ferrin::ConfigItem> item = detail::itemForValue(*m_ferrin_channel, std_key, value);
    if (!item)
        return false;
    return m_ferrin_channel->setConfigItem(std_key, *item);
}

bool QChannel::setConfigItems(const QVariantMap& values)
{
    if (!m_ferrin_channel)
        return false;
    ferrin_config::ConfigRequests requests;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        const QVariant& value = it.value();
        if (!UNI_ASSERT_MSG(value.isValid(), "setConfigItems: called with value 'invalid' for key %s",
                            qPrintable(it.key())))
            return false;
        const std::string key = it.key().toStdString();
        std::optional<ferrin::ConfigItem> item = detail::itemForValue(*m_ferrin_channel, key, value);
        if (!item)
            return false;
        requests.push_back(
            ferrin_config::ConfigRequest{m_ferrin_channel->getChannelId(), key, std::move(*item)});
    }
    return m_ferrin_channel->setConfigItems(requests);
}

bool QChannel::hasConfigItem(const QString& key) const
{
    if (!m_ferrin_channel || key.isEmpty())
        return false;
    return m_ferrin_channel->hasConfigItem(key.toStdString());
}

QStringList QChannel::getAvailableConfigKeys(bool sort) const
{
    QStringList keys;
    if (!m_ferrin_channel)
        return keys;
    for (const std::string& key : m_ferrin_channel->getConfigKeys())
        if (!hasPrefix(key, "ACTION:") && !hasPrefix(key, "ID:"))
            keys << QString::fromStdString(key);
    if (sort)
        keys.sort();
    return keys;
}

QStringList QChannel::getAvailableActionKeys() const
{
    QStringList keys;
    if (!m_ferrin_channel)
        return keys;
    for (const std::string& key : m_ferrin_channel->getConfigKeys())
        if (hasPrefix(key, "ACTION:"))
            keys << QString::fromStdString(key);
    keys.sort();
    return keys;
}

QStringList QChannel::getAvailableIdKeys() const
{
    QStringList keys;
    if (!m_ferrin_channel)
        return keys;
    for (const std::string& key : m_ferrin_channel->getConfigKeys())
        if (hasPrefix(key, "ID:"))
            keys << QString::fromStdString(key);
    return keys;
}

// ---------------------------------------------------------------------------------------
// Identity and kind

QString QChannel::getChannelId() const
{
    if (!m_ferrin_channel)
        return QString();
    return QString::number(m_ferrin_channel->getChannelId().toUInt64());
}

QString QChannel::getChannelIDAsString() const
{
    return getChannelId();
}

QString QChannel::getLocalChannelId() const
{
    if (!m_ferrin_channel)
        return QString();
    return QString::number(m_ferrin_channel->getChannelId().getLocalId());
}

QString QChannel::getUniqueIdentifier() const
{
    return QString::number(reinterpret_cast<quintptr>(this), 16);
}

bool QChannel::isValid() const
{
    return m_ferrin_channel && m_ferrin_channel->isValid();
}

bool QChannel::isScalarChannel() const
{
    return m_ferrin_scalar_channel != nullptr;
}

bool QChannel::isVectorChannel() const
{
    return m_ferrin_vector_channel != nullptr;
}

bool QChannel::isComplexVectorChannel() const
{
    return m_ferrin_complex_vector_channel != nullptr;
}

bool QChannel::isVideoChannel() const
{
    return dynamic_cast<const ferrin::VideoChannel*>(m_ferrin_channel.get()) != nullptr;
}

bool QChannel::isPowerGroupChannel() const
{
    return m_ferrin_channel && m_ferrin_channel->getChannelType() == 9;
}

bool QChannel::isNameUnique() const
{
    return !m_ferrin_channel || m_ferrin_channel->isNameUnique();
}

bool QChannel::isNamePotentiallyUnique() const
{
    return !m_ferrin_channel || m_ferrin_channel->isNamePotentiallyUnique();
}

bool QChannel::isConnector(const QString& connector_id) const
{
    if (!m_ferrin_channel)
        return false;
    const std::string connector =
        channel_config::toString(m_ferrin_channel->getConfigItem("ID:ChannelType")) +
        channel_config::toString(m_ferrin_channel->getConfigItem("ID:ChannelIndex"));
    return QString::fromStdString(connector) == connector_id;
}

// ---------------------------------------------------------------------------------------
// Properties

std::string QChannel::itemText(const char* key) const
{
    if (!m_ferrin_channel || !m_ferrin_channel->hasConfigItem(key))
        return std::string();
    return channel_config::toString(m_ferrin_channel->getConfigItem(key));
}

bool QChannel::isUsed() const
{
    return m_ferrin_channel && m_ferrin_channel->isUsed();
}

bool QChannel::isStored() const
{
    if (!m_ferrin_channel)
        return false;
    try {
        return m_ferrin_channel->isStored();
    } catch (const std::exception& error) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_ERROR)
            << "Ferrin/Stored of channel " << getChannelId().toStdString() << ": " << error.what();
        return false;
    }
}

bool QChannel::isHidden() const
{
    return m_ferrin_channel && m_ferrin_channel->isHidden();
}

QColor QChannel::color() const
{
    if (!m_ferrin_channel)
        return QColor();
    return QColor(QString::fromStdString(m_ferrin_channel->getColor()));
}

QString QChannel::name() const
{
    const QString name = QString::fromStdString(itemText("Ferrin/Name"));
    const QString group = QString::fromStdString(itemText("Ferrin/AnalysisGroupId"));
    const QString domain = QString::fromStdString(itemText("Ferrin/DomainUrl"));
    if (group.isEmpty())
        return domain.isEmpty() ? name : QStringLiteral("%1@%2").arg(name, domain);
    return domain.isEmpty() ? QStringLiteral("%1.%2").arg(name, group)
                            : QStringLiteral("%1@%2.%3").arg(name, domain, group);
}

QString QChannel::displayName() const
{
    const QString text = name();
    return isStored() ? text : QStringLiteral("{%1}").arg(text);
}

QString QChannel::shortDisplayName() const
{
    const QString name = QString::fromStdString(itemText("Ferrin/Name"));
    const QString group = QString::fromStdString(itemText("Ferrin/AnalysisGroupId"));
    const QString text = group.isEmpty() ? name : QStringLiteral("%1.%2").arg(name, group);
    return isStored() ? text : QStringLiteral("{%1}").arg(text);
}

QString QChannel::unit() const
{
    if (!m_ferrin_channel)
        return QString();
    return QString::fromStdString(m_ferrin_channel->getUnit());
}

QChannel::SampleValueType QChannel::sampleValueType() const
{
    if (!m_ferrin_channel)
        return SAMPLE_VALUE_INVALID;
    if (m_ferrin_scalar_channel)
        return SAMPLE_VALUE_SCALAR;
    const std::int32_t resolution = m_ferrin_channel->getSampleResolution();
    if (m_ferrin_vector_channel)
        return resolution != 0 ? SAMPLE_VALUE_VECTOR : SAMPLE_VALUE_BYTE_VECTOR;
    if (m_ferrin_complex_vector_channel)
        return SAMPLE_VALUE_COMPLEX_VECTOR;
    if (isVideoChannel())
        return SAMPLE_VALUE_VIDEO;
    if (dynamic_cast<const ferrin::AsyncByteVectorChannel*>(m_ferrin_channel.get()))
        return SAMPLE_VALUE_BYTE_VECTOR;
    switch (resolution) {
    case 0:
        return SAMPLE_VALUE_VECTOR;
    case 12:
        return SAMPLE_VALUE_CAN_MESSAGE;
    case 13:
        return SAMPLE_VALUE_FLEXRAY_MESSAGE;
    case 17:
        return SAMPLE_VALUE_STRING;
    default:
        return SAMPLE_VALUE_INVALID;
    }
}

QString QChannel::channelTypeDescription() const
{
    if (!m_ferrin_channel)
        return QStringLiteral("-");
    const QString resolution =
        enumText<channel_config::DAQSampleResolution>(m_ferrin_channel->getSampleResolution());
    const QString occurrence =
        enumText<channel_config::SampleOccurrenceType>(m_ferrin_channel->getSampleOccurrence());
    const QString type = enumText<channel_config::DAQChannelType>(m_ferrin_channel->getChannelType());
    const QString dimension = QString::number(m_ferrin_channel->getSampleDimension());
    if (m_ferrin_scalar_channel) {
        UNI_ASSERT_MSG(m_ferrin_scalar_channel->getSampleDimension() == 1,
                       "m_ferrin_scalar_channel->getSampleDimension() != 1 (%u != %d)",
                       m_ferrin_scalar_channel->getSampleDimension(), 1);
        return QStringLiteral("Scalar, %1, %2, %3").arg(resolution, occurrence, type);
    }
    const char* format = "Generic, %1 * %2, %3, %4";
    if (m_ferrin_vector_channel)
        format = "Vector, %1 * %2, %3, %4";
    else if (m_ferrin_complex_vector_channel)
        format = "ComplexVector, %1 * %2, %3, %4";
    else if (isVideoChannel())
        format = "Video, %1 * %2, %3, %4";
    return QString::fromLatin1(format).arg(resolution, dimension, occurrence, type);
}

int QChannel::dimension() const
{
    return m_ferrin_channel ? static_cast<int>(m_ferrin_channel->getSampleDimension()) : 0;
}

bool QChannel::channelActionInProgress() const
{
    return m_action_watcher.isRunning();
}

QChannel::QSampleOccurenceType QChannel::sampleOccurence() const
{
    if (!m_ferrin_channel)
        return SOT_INVALID;
    const std::int32_t occurrence = m_ferrin_channel->getSampleOccurrence();
    if (occurrence < SOT_SYNC || occurrence > SOT_NEVER)
        return SOT_INVALID;
    return static_cast<QSampleOccurenceType>(occurrence);
}

// ---------------------------------------------------------------------------------------
// Channel actions

bool QChannel::isChannelActionAvailable(const QString& key) const
{
    return m_ferrin_channel && m_ferrin_channel->isChannelActionAvailable(key.toStdString());
}

void QChannel::applyChannelAction(const QString& key, double time)
{
    UNI_LOG(detail::LOG_CHANNEL, SEV_NOTICE) << "applyChannelAction " << key.toStdString();
    if (!m_ferrin_channel)
        return;
    if (m_action_watcher.isRunning()) {
        UNI_LOG(detail::LOG_CHANNEL, SEV_NOTE) << "Skipping ChannelAction " << key.toStdString()
                                               << " because there is already another action in progress!";
        return;
    }
    // The task holds its own reference to the channel, so that a replacement of the
    // channel meanwhile does not pull it away under the action.
    m_action_future = detail::runOnGlobalPool<void>([channel = m_ferrin_channel, std_key = key.toStdString(),
                                                     time] { channel->applyChannelAction(std_key, time); });
    m_action_watcher.setFuture(m_action_future);
    Q_EMIT channelActionInProgressChanged();
}

// ---------------------------------------------------------------------------------------
// Metadata

bool QChannel::hasMetaData() const
{
    return m_ferrin_channel && m_ferrin_channel->hasMetaData();
}

bool QChannel::hasMetaData(const QString& key) const
{
    if (!hasMetaData())
        return false;
    const auto data = m_ferrin_channel->getMetaData();
    return data && data->count(key.toStdString()) > 0;
}

QVariant QChannel::metaData(const QString& key) const
{
    if (!hasMetaData()) {
        UNI_FAIL("Meta data not found");
        return nanVariant();
    }
    const std::optional<std::map<std::string, std::any>> data = m_ferrin_channel->getMetaData();
    if (!data) {
        UNI_FAIL("Meta data not found");
        return nanVariant();
    }
    const auto found = data->find(key.toStdString());
    if (found == data->end())
        return nanVariant();
    if (key == QLatin1String("error_counter"))
        return QVariant(static_cast<double>(std::any_cast<std::int32_t>(found->second)));
    if (key == QLatin1String("bus_fault"))
        return QVariant(std::any_cast<std::int32_t>(found->second));
    UNI_FAIL("Key not implemented");
    return nanVariant();
}

// ---------------------------------------------------------------------------------------
// Changes

ferrin_config::QCellEditorConstraints* QChannel::cachedPropertyConstraints(const QString& key) const
{
    QReadLocker lock(&m_constraints_lock);
    return m_constraints_cache.value(key, nullptr);
}

ferrin_config::QCellEditorConstraints* QChannel::takeCachedConstraints(const QString& key)
{
    QWriteLocker lock(&m_constraints_lock);
    return m_constraints_cache.take(key);
}

void QChannel::clearConstraintsCache()
{
    QWriteLocker lock(&m_constraints_lock);
    for (ferrin_config::QCellEditorConstraints* constraints : qAsConst(m_constraints_cache))
        if (constraints)
            constraints->deleteLater();
    m_constraints_cache.clear();
}

void QChannel::onChannelConfigItemChanged(channel_config::ChannelID channel_id, const QString& key)
{
    if (!m_ferrin_channel)
        return;
    ferrin_config::QCellEditorConstraints* constraints = takeCachedConstraints(key);
    Q_EMIT configItemChanged(channel_id, key);

    if (key == QLatin1String("Used"))
        Q_EMIT usedChanged();
    else if (key == QLatin1String("Ferrin/Color")) {
        // A colour changes nothing else: no range signals, and the constraints taken
        // out above are not given deleteLater.
        Q_EMIT colorChanged(color());
        return;
    } else if (key == QLatin1String("Ferrin/Name")) {
        Q_EMIT nameChanged(name());
        Q_EMIT displayNameChanged();
    } else if (key == QLatin1String("Ferrin/DomainUrl")) {
        Q_EMIT domainChanged(QString::fromStdString(itemText("Ferrin/DomainUrl")));
        Q_EMIT displayNameChanged();
    } else if (key == QLatin1String("Unit") || key == QLatin1String("Ferrin/PhysicalUnit"))
        Q_EMIT unitChanged();
    else if (key == QLatin1String("Ferrin/Stored"))
        Q_EMIT storedChanged();
    else if (key == QLatin1String("Visibility"))
        Q_EMIT hiddenChanged();
    else if (key == QLatin1String("SampleUpdateType"))
        Q_EMIT sampleOccurenceChanged();
    else if (key == QLatin1String("SampleDimension"))
        Q_EMIT sampleDimensionChanged();

    Q_EMIT maxValChanged();
    Q_EMIT minValChanged();
    if (constraints)
        constraints->deleteLater();
}

void QChannel::updateFerrinChannel(std::shared_ptr<ferrin::Channel> new_channel)
{
    if (new_channel == m_ferrin_channel)
        return;
    const bool had_channel = m_ferrin_channel != nullptr;
    const QSampleOccurenceType old_occurrence = sampleOccurence();
    const int old_dimension = dimension();
    unregisterObserver(m_ferrin_channel);

    m_ferrin_channel = std::move(new_channel);
    renewTypedViews();
    if (!m_ferrin_channel)
        return;

    registerObserver();
    clearConstraintsCache();
    const channel_config::ChannelID id = m_ferrin_channel->getChannelId();
    for (const std::string& key : m_ferrin_channel->getConfigKeys())
        onChannelConfigItemChanged(id, QString::fromStdString(key));

    Q_EMIT sampleValueTypeChanged();
    if (had_channel) {
        if (old_occurrence != sampleOccurence())
            Q_EMIT sampleOccurenceChanged();
        if (old_dimension != dimension())
            Q_EMIT sampleDimensionChanged();
    }
    Q_EMIT ferrinChannelChanged(id);
}

} // namespace lum::qchannel
