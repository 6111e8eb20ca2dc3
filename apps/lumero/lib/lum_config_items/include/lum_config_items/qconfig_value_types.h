#pragma once

#include <uni_base/countable.h>

#include <QMetaType>
#include <QObject>
#include <QString>

#include <utility>

namespace ferrin_config {

/// A number with its unit, for views: the QML face of a scalar item.
class QScalar : public uni::Countable<QScalar>
{
    Q_GADGET
    Q_PROPERTY(double value MEMBER m_value)
    Q_PROPERTY(QString unit MEMBER m_unit)

public:
    QScalar() = default;
    QScalar(double value, QString unit) : m_value(value), m_unit(std::move(unit)) {}

    double m_value = 0.0;
    QString m_unit;
};

/// An exact fraction with its unit.
class QRationalScalar
{
    Q_GADGET
    Q_PROPERTY(qlonglong numerator MEMBER m_numerator)
    Q_PROPERTY(qlonglong denominator MEMBER m_denominator)
    Q_PROPERTY(QString unit MEMBER m_unit)
    Q_PROPERTY(double asDouble READ asDouble)
    Q_PROPERTY(QString asRatio READ asRatio)

public:
    QRationalScalar() = default;
    QRationalScalar(qlonglong numerator, qlonglong denominator, QString unit)
        : m_numerator(numerator), m_denominator(denominator), m_unit(std::move(unit))
    {}

    double asDouble() const { return static_cast<double>(m_numerator) / static_cast<double>(m_denominator); }
    QString asRatio() const { return QStringLiteral("%1/%2").arg(m_numerator).arg(m_denominator); }

    qlonglong m_numerator = 0;
    qlonglong m_denominator = 1;
    QString m_unit;
};

/// A number between a leading and a trailing text ("#12 pcs").
class QDecoratedNumber
{
    Q_GADGET
    Q_PROPERTY(double value MEMBER m_value)
    Q_PROPERTY(QString leadingString MEMBER m_leading)
    Q_PROPERTY(QString trailingString MEMBER m_trailing)

public:
    QDecoratedNumber() = default;
    QDecoratedNumber(double value, QString leading, QString trailing)
        : m_value(value), m_leading(std::move(leading)), m_trailing(std::move(trailing))
    {}

    double m_value = 0.0;
    QString m_leading;
    QString m_trailing;
};

/// Lower and upper bound, each with a unit that the view shows but does not edit.
class QDoubleRange : public uni::Countable<QDoubleRange>
{
    Q_GADGET
    Q_PROPERTY(double minValue MEMBER m_min)
    Q_PROPERTY(double maxValue MEMBER m_max)
    Q_PROPERTY(QString minValueUnit READ minValueUnit CONSTANT)
    Q_PROPERTY(QString maxValueUnit READ maxValueUnit CONSTANT)

public:
    QDoubleRange() = default;
    QDoubleRange(double min, double max, QString min_unit, QString max_unit)
        : m_min(min), m_max(max), m_min_unit(std::move(min_unit)), m_max_unit(std::move(max_unit))
    {}

    QString minValueUnit() const { return m_min_unit; }
    QString maxValueUnit() const { return m_max_unit; }

    double m_min = 0.0;
    double m_max = 0.0;
    QString m_min_unit;
    QString m_max_unit;
};

/// A value of one of the typed enumerations of the configuration items.
class QEnumType : public uni::Countable<QEnumType>
{
    Q_GADGET
    Q_PROPERTY(EnumCfgItemType type MEMBER m_type)
    Q_PROPERTY(int value MEMBER m_value)

public:
    enum EnumCfgItemType
    {
        INVALID_TYPE = 0,
        CHANNEL_CONF_CHANNEL_TYPE_ENUM = 1,
        CHANNEL_CONF_SAMPLE_OCCURRENCE_TYPE_ENUM = 2,
        CHANNEL_CONF_SAMPLE_FORMAT_ENUM = 3,
        CHANNEL_CONF_USER_SCALING_MODE = 4,
        CHANNEL_CONF_PHYSICAL_QUANTITY = 5,
        TIMING_TIME_SOURCE = 6,
        TIMING_IRIG_CODE = 7,
        NUM_ENUM_CFG_ITEM_TYPES = 8
    };
    Q_ENUM(EnumCfgItemType)

    QEnumType() = default;
    QEnumType(EnumCfgItemType type, int value) : m_type(type), m_value(value) {}

    EnumCfgItemType m_type = INVALID_TYPE;
    int m_value = 0;
};

/// A value of an enumeration known only by its name ("ReducedFormat").
class QGenericEnumType : public uni::Countable<QGenericEnumType>
{
    Q_GADGET
    Q_PROPERTY(QString type MEMBER m_type)
    Q_PROPERTY(QString value MEMBER m_value)

public:
    QGenericEnumType() = default;
    QGenericEnumType(QString type, QString value) : m_type(std::move(type)), m_value(std::move(value)) {}

    QString m_type;
    QString m_value;
};

/// A long text, with a hint how the editor should show it.
class QMultilineStringType : public uni::Countable<QMultilineStringType>
{
    Q_GADGET
    Q_PROPERTY(QString value READ value CONSTANT)
    Q_PROPERTY(Format format READ format CONSTANT)

public:
    enum Format
    {
        PLAIN = 0,
        XML = 1,
        MULTILINE = 2
    };
    Q_ENUM(Format)

    QMultilineStringType() = default;
    QMultilineStringType(QString value, Format format) : m_value(std::move(value)), m_format(format) {}

    QString value() const { return m_value; }
    Format format() const { return m_format; }

    QString m_value;
    Format m_format = PLAIN;
};

/// Registers the value types with Qt's meta types; safe to call more than once.
void registerConfigValueTypes();

} // namespace ferrin_config

Q_DECLARE_METATYPE(ferrin_config::QScalar)
Q_DECLARE_METATYPE(ferrin_config::QRationalScalar)
Q_DECLARE_METATYPE(ferrin_config::QDecoratedNumber)
Q_DECLARE_METATYPE(ferrin_config::QDoubleRange)
Q_DECLARE_METATYPE(ferrin_config::QEnumType)
Q_DECLARE_METATYPE(ferrin_config::QGenericEnumType)
Q_DECLARE_METATYPE(ferrin_config::QMultilineStringType)
