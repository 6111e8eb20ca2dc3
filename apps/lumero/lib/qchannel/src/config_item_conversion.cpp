#include "config_item_conversion.h"

#include <config_items/parse_string_visitor.h>
#include <uni_base/uni_assert.h>

#include <QStringList>
#include <QVariantList>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace lum::qchannel::detail {

namespace ci = config_items;

QVariant configItemToVariant(const channel_config::ConfigItemVariant& item)
{
    return std::visit(
        [&item](const auto& value) -> QVariant {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, ci::StringConfigItem>)
                return QString::fromStdString(value.getValue());
            else if constexpr (std::is_same_v<T, ci::SingleValueConfigItem<double>> ||
                               std::is_same_v<T, ci::ScalarConfigItem> ||
                               std::is_same_v<T, ci::DecoratedNumberConfigItem>)
                return value.getValue();
            else if constexpr (std::is_same_v<T, ci::SingleValueConfigItem<int>>)
                return value.getValue();
            else if constexpr (std::is_same_v<T, ci::SingleValueConfigItem<unsigned int>>)
                return value.getValue();
            else if constexpr (std::is_same_v<T, ci::SingleValueConfigItem<bool>>)
                return value.getValue();
            else if constexpr (std::is_same_v<T, ci::RationalScalarConfigItem>)
                return static_cast<double>(value.getValue().numerator()) /
                       static_cast<double>(value.getValue().denominator());
            else if constexpr (std::is_same_v<T, ci::ValueListConfigItem<std::string>>) {
                QStringList list;
                for (const std::string& text : value.getValues())
                    list << QString::fromStdString(text);
                return list;
            } else if constexpr (std::is_same_v<T, ci::InvalidConfigItem>)
                return QVariant();
            else
                return QString::fromStdString(channel_config::toString(item));
        },
        item);
}

std::optional<channel_config::ConfigItemVariant> variantToConfigItem(const QVariant& value)
{
    switch (static_cast<int>(value.type())) {
    case QMetaType::Bool:
        return channel_config::ConfigItemVariant(ci::SingleValueConfigItem<bool>(value.toBool()));
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
        return channel_config::ConfigItemVariant(ci::SingleValueConfigItem<int>(value.toInt()));
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return channel_config::ConfigItemVariant(ci::SingleValueConfigItem<unsigned int>(value.toUInt()));
    case QMetaType::LongLong: {
        const qlonglong number = value.toLongLong();
        if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
            return channel_config::ConfigItemVariant(
                ci::SingleValueConfigItem<int>(static_cast<int>(number)));
        return channel_config::ConfigItemVariant(
            ci::SingleValueConfigItem<double>(static_cast<double>(number)));
    }
    case QMetaType::ULongLong: {
        const qulonglong number = value.toULongLong();
        if (number <= std::numeric_limits<unsigned int>::max())
            return channel_config::ConfigItemVariant(
                ci::SingleValueConfigItem<unsigned int>(static_cast<unsigned int>(number)));
        return channel_config::ConfigItemVariant(
            ci::SingleValueConfigItem<double>(static_cast<double>(number)));
    }
    case QMetaType::Double:
    case QMetaType::Float:
        return channel_config::ConfigItemVariant(ci::SingleValueConfigItem<double>(value.toDouble()));
    case QMetaType::QString:
        return channel_config::ConfigItemVariant(ci::StringConfigItem(value.toString().toStdString()));
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        if (value.type() == QVariant::List)
            for (const QVariant& element : value.toList())
                if (!element.canConvert<QString>()) {
                    UNI_FAIL("Unknown object type in QVariant.");
                    return std::nullopt;
                }
        std::vector<std::string> texts;
        for (const QString& text : value.toStringList())
            texts.push_back(text.toStdString());
        return channel_config::ConfigItemVariant(ci::ValueListConfigItem<std::string>(std::move(texts)));
    }
    default:
        UNI_FAIL("Unknown object type in QVariant.");
        return std::nullopt;
    }
}

std::optional<ferrin::ConfigItem> itemForValue(const ferrin::Channel& channel, const std::string& key,
                                               const QVariant& value)
{
    if (value.type() == QVariant::String && channel.hasConfigItem(key)) {
        ferrin::ConfigItem current = channel.getConfigItem(key);
        if (!std::holds_alternative<config_items::InvalidConfigItem>(current) &&
            !std::holds_alternative<config_items::StringConfigItem>(current)) {
            try {
                if (channel_config::ParseStringVisitor().parse(value.toString().toStdString(), current))
                    return current;
            } catch (const std::exception&) {
                // Refused by the typed parser: the plain conversion below decides.
            }
        }
    }
    return variantToConfigItem(value);
}

} // namespace lum::qchannel::detail
