#include "config_item_conversion.h"

#include <lum_config_items/ferrin_config_item_utils.h>
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
    return ferrin_config::variantToConfigItem(value);
}

std::optional<ferrin::ConfigItem> itemForValue(const ferrin::Channel& channel, const std::string& key,
                                               const QVariant& value)
{
    if (channel.hasConfigItem(key))
        if (std::optional<ferrin::ConfigItem> matched =
                ferrin_config::matchConfigItem(value, channel.getConfigItem(key)))
            return matched;
    return variantToConfigItem(value);
}

} // namespace lum::qchannel::detail
