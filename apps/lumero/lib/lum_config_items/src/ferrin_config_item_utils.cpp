#include <lum_config_items/ferrin_config_item_utils.h>
#include <lum_config_items/qconfig_value_types.h>

#include <config_items/parse_string_visitor.h>
#include <uni_base/uni_assert.h>

#include <QPointF>
#include <QRegularExpression>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace ferrin_config {

namespace ci = config_items;
namespace cc = channel_config;

namespace {

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

using PointList = ci::ValueListConfigItem<ci::TupleValue<double, double>>;

template <typename T>
bool holds(const QVariant& value)
{
    return value.userType() == qMetaTypeId<T>();
}

bool isNumber(const QVariant& value)
{
    switch (static_cast<int>(value.type())) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

bool isFloating(const QVariant& value)
{
    return value.type() == QVariant::Double || static_cast<int>(value.type()) == QMetaType::Float;
}

bool allPoints(const QVariantList& list)
{
    for (const QVariant& element : list)
        if (element.type() != QVariant::PointF && element.type() != QVariant::Point)
            return false;
    return !list.isEmpty();
}

QString doubleText(double value)
{
    return qs(ci::SingleValueConfigItem<double>(value).toString());
}

QEnumType::EnumCfgItemType enumTypeOf(std::size_t index)
{
    switch (index) {
    case cc::configItemIndex<ci::SingleValueConfigItem<cc::UserScalingMode>>:
        return QEnumType::CHANNEL_CONF_USER_SCALING_MODE;
    case cc::configItemIndex<ci::SingleValueConfigItem<cc::DAQChannelType>>:
        return QEnumType::CHANNEL_CONF_CHANNEL_TYPE_ENUM;
    case cc::configItemIndex<ci::SingleValueConfigItem<cc::SampleOccurrenceType>>:
        return QEnumType::CHANNEL_CONF_SAMPLE_OCCURRENCE_TYPE_ENUM;
    case cc::configItemIndex<ci::SingleValueConfigItem<cc::DAQSampleResolution>>:
        return QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM;
    case cc::configItemIndex<ci::SingleValueConfigItem<cc::PhysicalQuantity>>:
        return QEnumType::CHANNEL_CONF_PHYSICAL_QUANTITY;
    default:
        return QEnumType::INVALID_TYPE;
    }
}

std::optional<cc::ConfigItemVariant> enumItem(const QEnumType& value)
{
    switch (value.m_type) {
    case QEnumType::CHANNEL_CONF_CHANNEL_TYPE_ENUM:
        return cc::ConfigItemVariant(
            ci::SingleValueConfigItem(static_cast<cc::DAQChannelType>(value.m_value)));
    case QEnumType::CHANNEL_CONF_SAMPLE_OCCURRENCE_TYPE_ENUM:
        return cc::ConfigItemVariant(
            ci::SingleValueConfigItem(static_cast<cc::SampleOccurrenceType>(value.m_value)));
    case QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM:
        return cc::ConfigItemVariant(
            ci::SingleValueConfigItem(static_cast<cc::DAQSampleResolution>(value.m_value)));
    case QEnumType::CHANNEL_CONF_USER_SCALING_MODE:
        return cc::ConfigItemVariant(
            ci::SingleValueConfigItem(static_cast<cc::UserScalingMode>(value.m_value)));
    case QEnumType::CHANNEL_CONF_PHYSICAL_QUANTITY:
        return cc::ConfigItemVariant(
            ci::SingleValueConfigItem(static_cast<cc::PhysicalQuantity>(value.m_value)));
    default:
        // The timing enumerations are option values only; no item holds them.
        UNI_FAIL("Unknown object type in QVariant.");
        return std::nullopt;
    }
}

template <typename Enum>
QString enumText(int value, const char* complaint, const char* unknown)
{
    const auto found = cc::enumTextMap<Enum>().left.find(static_cast<Enum>(value));
    if (found != cc::enumTextMap<Enum>().left.end())
        return qs(found->second);
    UNI_FAIL("%s", complaint);
    return QString::fromLatin1(unknown);
}

QString sampleFormatText(int value)
{
    static const char* const texts[] = {
        "8 bit",           "16 bit",          "24 bit",          "32 bit",    "64 bit",      "8 bit unsigned",
        "16 bit unsigned", "32 bit unsigned", "64 bit unsigned", "float",     "double",      "CAN",
        "FlexRay",         "complex float",   "complex double",  "raw video", "UTF8 string", "none"};
    if (value >= 1 && value <= 18)
        return QString::fromLatin1(texts[value - 1]);
    UNI_FAIL("Invalid channel type in cfg item conversion!");
    return QStringLiteral("err");
}

QString enumTypeText(const QEnumType& value)
{
    switch (value.m_type) {
    case QEnumType::CHANNEL_CONF_SAMPLE_FORMAT_ENUM:
        return sampleFormatText(value.m_value);
    case QEnumType::CHANNEL_CONF_CHANNEL_TYPE_ENUM:
        return enumText<cc::DAQChannelType>(value.m_value, "Invalid channel type in cfg item conversion!",
                                            "UNKNOWN");
    case QEnumType::CHANNEL_CONF_USER_SCALING_MODE:
        return enumText<cc::UserScalingMode>(value.m_value,
                                             "Invalid user scaling mode in cfg item conversion!", "INVALID");
    case QEnumType::CHANNEL_CONF_PHYSICAL_QUANTITY:
        return enumText<cc::PhysicalQuantity>(value.m_value,
                                              "Invalid physicl quantity in cfg item conversion!", "INVALID");
    default:
        UNI_FAIL("Invalid enum type for cfg item conversion!");
        return QStringLiteral("INVALID");
    }
}

QString genericEnumText(const QGenericEnumType& value)
{
    if (value.m_type == QLatin1String("ReducedFormat")) {
        // Values come as the table's text or as its number.
        bool is_number = false;
        int number = value.m_value.toInt(&is_number);
        if (!is_number) {
            const auto* table = cc::namedEnumTextMap("ReducedFormat");
            const auto found = table->right.find(value.m_value.toStdString());
            number = found == table->right.end() ? -1 : found->second;
        }
        if (number == 1)
            return QStringLiteral("scaled avg/rms");
        if (number == 0)
            return qs(cc::namedEnumTextMap("ReducedFormat")->left.at(0));
        UNI_FAIL("Invalid reduced format in cfg item conversion!");
        return QStringLiteral("INVALID");
    }
    return qs(ci::GenericEnumConfigItem(value.m_type.toStdString(), value.m_value.toStdString()).toString());
}

QString unitSuffix(const QString& unit)
{
    return unit.isEmpty() ? QString() : QStringLiteral(" ") + unit;
}

} // namespace

QVariant configItemToVariant(const cc::ConfigItemVariant& item)
{
    return std::visit(
        [&item](const auto& value) -> QVariant {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, ci::StringConfigItem>)
                return qs(value.getValue());
            else if constexpr (std::is_same_v<T, ci::ScalarConfigItem>)
                return QVariant::fromValue(QScalar(value.getValue(), qs(value.getUnit())));
            else if constexpr (std::is_same_v<T, ci::DecoratedNumberConfigItem>)
                return QVariant::fromValue(
                    QDecoratedNumber(value.getValue(), qs(value.getPrefix()), qs(value.getPostfix())));
            else if constexpr (std::is_same_v<T, ci::SingleValueConfigItem<double>> ||
                               std::is_same_v<T, ci::SingleValueConfigItem<int>> ||
                               std::is_same_v<T, ci::SingleValueConfigItem<unsigned int>> ||
                               std::is_same_v<T, ci::SingleValueConfigItem<bool>>)
                return QVariant(value.getValue());
            else if constexpr (std::is_same_v<T, ci::SingleValueConfigItem<cc::ChannelID>>)
                return QVariant(static_cast<qulonglong>(value.getValue().toUInt64()));
            else if constexpr (std::is_same_v<T, ci::RangeConfigItem<double>>)
                return QVariant::fromValue(QDoubleRange(value.getMin(), value.getMax(),
                                                        qs(value.getMinUnit()), qs(value.getMaxUnit())));
            else if constexpr (std::is_same_v<T, ci::RationalScalarConfigItem>)
                return QVariant::fromValue(
                    QRationalScalar(value.getNumerator(), value.getDenominator(), qs(value.getUnit())));
            else if constexpr (std::is_same_v<T, ci::ValueListConfigItem<std::string>>) {
                QStringList list;
                for (const std::string& text : value.getValues())
                    list << qs(text);
                return list;
            } else if constexpr (std::is_same_v<T, PointList>) {
                QVariantList list;
                for (const auto& point : value.getValues())
                    list << QPointF(point.first, point.second);
                return list;
            } else if constexpr (std::is_same_v<T, ci::ValueListConfigItem<cc::ChannelID>>) {
                QVariantList list;
                for (const cc::ChannelID& id : value.getValues())
                    list << static_cast<qulonglong>(id.toUInt64());
                return list;
            } else if constexpr (std::is_same_v<T, ci::GenericEnumConfigItem>)
                return QVariant::fromValue(QGenericEnumType(qs(value.getEnumType()), qs(value.getValue())));
            else if constexpr (std::is_same_v<T, ci::InvalidConfigItem>)
                return QVariant();
            else
                return QVariant::fromValue(
                    QEnumType(enumTypeOf(item.index()), static_cast<int>(value.getValue())));
        },
        item);
}

std::optional<cc::ConfigItemVariant> variantToConfigItem(const QVariant& value)
{
    if (holds<QScalar>(value)) {
        const auto scalar = value.value<QScalar>();
        return cc::ConfigItemVariant(ci::ScalarConfigItem(scalar.m_value, scalar.m_unit.toStdString()));
    }
    if (holds<QRationalScalar>(value)) {
        const auto rational = value.value<QRationalScalar>();
        if (rational.m_denominator == 0)
            return std::nullopt;
        try {
            return cc::ConfigItemVariant(ci::RationalScalarConfigItem(
                rational.m_numerator, rational.m_denominator, rational.m_unit.toStdString()));
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    if (holds<QDecoratedNumber>(value)) {
        const auto number = value.value<QDecoratedNumber>();
        return cc::ConfigItemVariant(ci::DecoratedNumberConfigItem(
            number.m_value, number.m_leading.toStdString(), number.m_trailing.toStdString()));
    }
    if (holds<QDoubleRange>(value)) {
        const auto range = value.value<QDoubleRange>();
        return cc::ConfigItemVariant(ci::RangeConfigItem<double>(
            range.m_min, range.m_max, range.m_min_unit.toStdString(), range.m_max_unit.toStdString()));
    }
    if (holds<QEnumType>(value))
        return enumItem(value.value<QEnumType>());
    if (holds<QGenericEnumType>(value)) {
        const auto generic = value.value<QGenericEnumType>();
        return cc::ConfigItemVariant(
            ci::GenericEnumConfigItem(generic.m_type.toStdString(), generic.m_value.toStdString()));
    }
    if (holds<QMultilineStringType>(value))
        return cc::ConfigItemVariant(
            ci::StringConfigItem(value.value<QMultilineStringType>().m_value.toStdString()));

    switch (static_cast<int>(value.type())) {
    case QMetaType::Bool:
        return cc::ConfigItemVariant(ci::SingleValueConfigItem<bool>(value.toBool()));
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
        return cc::ConfigItemVariant(ci::SingleValueConfigItem<int>(value.toInt()));
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return cc::ConfigItemVariant(ci::SingleValueConfigItem<unsigned int>(value.toUInt()));
    case QMetaType::LongLong:
    case QMetaType::Long: {
        const qlonglong number = value.toLongLong();
        if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
            return cc::ConfigItemVariant(ci::SingleValueConfigItem<int>(static_cast<int>(number)));
        return cc::ConfigItemVariant(ci::SingleValueConfigItem<double>(static_cast<double>(number)));
    }
    case QMetaType::ULongLong:
    case QMetaType::ULong: {
        const qulonglong number = value.toULongLong();
        if (number <= std::numeric_limits<unsigned int>::max())
            return cc::ConfigItemVariant(
                ci::SingleValueConfigItem<unsigned int>(static_cast<unsigned int>(number)));
        return cc::ConfigItemVariant(ci::SingleValueConfigItem<double>(static_cast<double>(number)));
    }
    case QMetaType::Double:
    case QMetaType::Float:
        return cc::ConfigItemVariant(ci::SingleValueConfigItem<double>(value.toDouble()));
    case QMetaType::QString:
        return cc::ConfigItemVariant(ci::StringConfigItem(value.toString().toStdString()));
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        if (value.type() == QVariant::List) {
            const QVariantList list = value.toList();
            if (allPoints(list)) {
                std::vector<ci::TupleValue<double, double>> points;
                for (const QVariant& element : list)
                    points.push_back({element.toPointF().x(), element.toPointF().y()});
                return cc::ConfigItemVariant(PointList(std::move(points)));
            }
            for (const QVariant& element : list)
                if (element.type() != QVariant::String) {
                    UNI_FAIL("Unknown object type in QVariant.");
                    return std::nullopt;
                }
        }
        std::vector<std::string> texts;
        for (const QString& text : value.toStringList())
            texts.push_back(text.toStdString());
        return cc::ConfigItemVariant(ci::ValueListConfigItem<std::string>(std::move(texts)));
    }
    default:
        UNI_FAIL("Unknown object type in QVariant.");
        return std::nullopt;
    }
}

std::optional<cc::ConfigItemVariant> matchConfigItem(const QVariant& value,
                                                     const cc::ConfigItemVariant& current)
{
    if (std::holds_alternative<ci::InvalidConfigItem>(current) || !value.isValid())
        return std::nullopt;
    if (value.type() == QVariant::String) {
        cc::ConfigItemVariant item = current;
        try {
            if (cc::ParseStringVisitor().parse(value.toString().toStdString(), item))
                return item;
        } catch (const std::exception&) {
            // A text the item's parser cannot take does not match.
        }
        return std::nullopt;
    }
    if (isNumber(value)) {
        // A bare number takes the unit or decoration the item has, as a typed one would.
        const double number = value.toDouble();
        if (const auto* scalar = std::get_if<ci::ScalarConfigItem>(&current))
            return cc::ConfigItemVariant(ci::ScalarConfigItem(number, scalar->getUnit()));
        if (const auto* decorated = std::get_if<ci::DecoratedNumberConfigItem>(&current))
            return cc::ConfigItemVariant(
                ci::DecoratedNumberConfigItem(number, decorated->getPrefix(), decorated->getPostfix()));
        if (std::holds_alternative<ci::SingleValueConfigItem<double>>(current))
            return cc::ConfigItemVariant(ci::SingleValueConfigItem<double>(number));
        if (!isFloating(value) || number == std::floor(number)) {
            if (std::holds_alternative<ci::SingleValueConfigItem<int>>(current) &&
                number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
                return cc::ConfigItemVariant(ci::SingleValueConfigItem<int>(static_cast<int>(number)));
            if (std::holds_alternative<ci::SingleValueConfigItem<unsigned int>>(current) && number >= 0 &&
                number <= std::numeric_limits<unsigned int>::max())
                return cc::ConfigItemVariant(
                    ci::SingleValueConfigItem<unsigned int>(static_cast<unsigned int>(number)));
            if (std::holds_alternative<ci::SingleValueConfigItem<cc::ChannelID>>(current) &&
                !isFloating(value))
                return cc::ConfigItemVariant(
                    ci::SingleValueConfigItem<cc::ChannelID>(cc::ChannelID(value.toULongLong())));
        }
        return std::nullopt;
    }
    if (value.type() == QVariant::Bool) {
        if (std::holds_alternative<ci::SingleValueConfigItem<bool>>(current))
            return cc::ConfigItemVariant(ci::SingleValueConfigItem<bool>(value.toBool()));
        return std::nullopt;
    }
    const bool known_type = value.userType() >= QMetaType::User || value.type() == QVariant::List ||
                            value.type() == QVariant::StringList;
    if (!known_type)
        return std::nullopt;
    const bool recognised = holds<QScalar>(value) || holds<QRationalScalar>(value) ||
                            holds<QDecoratedNumber>(value) || holds<QDoubleRange>(value) ||
                            holds<QEnumType>(value) || holds<QGenericEnumType>(value) ||
                            holds<QMultilineStringType>(value) || value.type() == QVariant::List ||
                            value.type() == QVariant::StringList;
    if (!recognised)
        return std::nullopt;
    std::optional<cc::ConfigItemVariant> converted = variantToConfigItem(value);
    if (converted && converted->index() == current.index())
        return converted;
    return std::nullopt;
}

QString variantToString(const QVariant& value)
{
    if (value.type() == QVariant::Bool)
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (isNumber(value)) {
        bool conversion_ok = false;
        const double number = value.toDouble(&conversion_ok);
        UNI_ASSERT_MSG(conversion_ok, "Conversion to double failed");
        if (isFloating(value))
            return doubleText(number);
        if (value.type() == QVariant::ULongLong || static_cast<int>(value.type()) == QMetaType::ULong)
            return QString::number(value.toULongLong());
        return QString::number(value.toLongLong());
    }
    if (value.type() == QVariant::String)
        return value.toString();
    if (value.type() == QVariant::StringList) {
        std::vector<std::string> texts;
        for (const QString& text : value.toStringList())
            texts.push_back(text.toStdString());
        return qs(ci::ValueListConfigItem<std::string>(std::move(texts)).toString());
    }
    if (value.type() == QVariant::List) {
        if (const auto item = variantToConfigItem(value))
            return qs(cc::toString(*item));
        return QStringLiteral("INVALID");
    }
    if (holds<QScalar>(value)) {
        const auto scalar = value.value<QScalar>();
        return QStringLiteral("(%1 %2)").arg(scalar.m_value).arg(scalar.m_unit);
    }
    if (holds<QDoubleRange>(value)) {
        const auto range = value.value<QDoubleRange>();
        return QString::number(range.m_min) + unitSuffix(range.m_min_unit) + QStringLiteral(" .. ") +
               QString::number(range.m_max) + unitSuffix(range.m_max_unit);
    }
    if (holds<QRationalScalar>(value)) {
        const auto rational = value.value<QRationalScalar>();
        const QString number =
            rational.m_denominator == 1 ? QString::number(rational.m_numerator) : rational.asRatio();
        return number + unitSuffix(rational.m_unit);
    }
    if (holds<QDecoratedNumber>(value)) {
        const auto number = value.value<QDecoratedNumber>();
        return number.m_leading + doubleText(number.m_value) + number.m_trailing;
    }
    if (holds<QEnumType>(value))
        return enumTypeText(value.value<QEnumType>());
    if (holds<QGenericEnumType>(value))
        return genericEnumText(value.value<QGenericEnumType>());
    if (holds<QMultilineStringType>(value))
        return value.value<QMultilineStringType>().m_value;
    UNI_FAIL("Unknown object type in QVariant.");
    return QStringLiteral("INVALID");
}

void registerConfigValueTypes()
{
    qRegisterMetaType<QScalar>();
    qRegisterMetaType<QRationalScalar>();
    qRegisterMetaType<QDecoratedNumber>();
    qRegisterMetaType<QDoubleRange>();
    qRegisterMetaType<QEnumType>();
    qRegisterMetaType<QGenericEnumType>();
    qRegisterMetaType<QMultilineStringType>();
}

QString QConfigItemUtils::toString(const QVariant& value) const
{
    return variantToString(value);
}

QVariantMap QConfigItemUtils::parseCANBitTimingParameters(const QVariant& value) const
{
    // "CANBitTimingParameters(SamplePoint=87.5, TSeg1=13, TSeg2=2)"; "{...}" and ":" are taken too.
    static const QRegularExpression whole(
        QStringLiteral("^\\s*CANBitTimingParameters\\s*[({]\\s*([^(){}]*)[)}]\\s*$"));
    static const QRegularExpression field(
        QStringLiteral("^\\s*(SamplePoint|TSeg1|TSeg2)\\s*[=:]\\s*(\\S+?)\\s*$"));
    const QRegularExpressionMatch match = whole.match(value.toString());
    if (!match.hasMatch())
        return {};
    QVariantMap fields;
    for (const QString& part : match.captured(1).split(QRegularExpression(QStringLiteral("[,;]")))) {
        const QRegularExpressionMatch pair = field.match(part);
        if (!pair.hasMatch())
            return {};
        bool ok = false;
        const QString name = pair.captured(1);
        if (name == QLatin1String("SamplePoint")) {
            const double point = pair.captured(2).toDouble(&ok);
            if (ok)
                fields.insert(name, point);
        } else {
            const int segment = pair.captured(2).toInt(&ok);
            if (ok)
                fields.insert(name, segment);
        }
        if (!ok || fields.size() > 3)
            return {};
    }
    if (fields.size() != 3)
        return {};
    return fields;
}

QVariant QConfigItemUtils::makeMultilineString(const QString& value) const
{
    QMultilineStringType::Format format = QMultilineStringType::PLAIN;
    if (value.trimmed().startsWith(QLatin1Char('<')))
        format = QMultilineStringType::XML;
    else if (value.contains(QLatin1Char('\n')))
        format = QMultilineStringType::MULTILINE;
    return QVariant::fromValue(QMultilineStringType(value, format));
}

} // namespace ferrin_config
