#pragma once

#include <boost/bimap.hpp>

#include <optional>
#include <string>
#include <string_view>

// The enumerations that configuration items carry, and the texts they travel as.
// Each text table is a two-way map, built once on first use and read-only after.

namespace channel_config {

enum class UserScalingMode : int
{
    SCALE = 0,
    SENSITIVITY = 1,
    TWO_POINT = 2,
    AUTO_UNIT = 3,
    BRIDGE = 4,
    TABLE_SCALING = 5,
    POLYNOMIAL = 6,
};

/// Kind of a channel; the texts double as the channel kinds that views filter on.
enum class DAQChannelType : int
{
    ANALOG = 0,
    DIGITAL = 1,
    DIGI_GROUP = 2,
    COUNTER = 3,
    CAN = 4,
    CAN_SIGNAL = 5,
    GPS_NMEA = 6,
    MATH = 7,
    POWER = 8,
    POWER_GROUP = 9,
    AI_ASYNC_PAD = 10,
    DI_ASYNC_PAD = 11,
    STATISTICS = 12,
    VIDEO = 13,
    FILTER = 14,
    FFT = 15,
    POSITION_LAT = 16,
    POSITION_LONG = 17,
    POSITION_ALT = 18,
    POSITION_HEAD = 19,
    POSITION_VEL = 20,
    POSITION_NUM_SAT = 21,
    POSITION_QUALITY = 22,
    POSITION_HORIZONTAL_DILUTION = 23,
    TIME_SECOND_OF_DAY = 24,
    DATE = 25,
    ACCELERATION = 26,
    DISTANCE = 27,
    OVERMAP_CHANNEL = 28,
    ADMA_CHANNEL = 29,
    ROSETTE_CHANNEL = 30,
    ROSETTE_GROUP = 31,
    SNAPSHOT = 32,
    OXTS_CHANNEL = 33,
    RECEIVER_CHANNEL = 34,
    RECEIVER_GROUP = 35,
    PSOPHOMETER = 36,
    SSA_CHANNEL = 37,
    SSA_GROUP = 38,
    FLEXRAY = 39,
    FIBEX_PDU = 40,
    FIBEX_SIGNAL = 41,
    OA_CHANNEL = 42,
    OA_GROUP = 43,
    SL_CHANNEL = 44,
    SL_GROUP = 45,
    CPB_CHANNEL = 46,
    CPB_GROUP = 47,
    ANALOG_OUT = 48,
    MATRIX_SAMPLER = 49,
    ARINC_429 = 50,
    MILSTD_1553 = 51,
    ARXML_CAN_FRAME = 52,
    ARXML_SIGNAL = 53,
    FIR_CHANNEL = 54,
    FIR_GROUP = 55,
    MODAL_TEST = 56,
    CALCULATION = 57,
    AREF = 58,
};

enum class SampleOccurrenceType : int
{
    SYNC = 0,
    ASYNC = 1,
    SINGLE_VALUE = 2,
    NEVER = 3,
};

enum class DAQSampleResolution : int
{
    BYTE = 0,
    SINT8 = 1,
    SINT16 = 2,
    SINT24 = 3,
    SINT32 = 4,
    SINT64 = 5,
    UINT8 = 6,
    UINT16 = 7,
    UINT32 = 8,
    UINT64 = 9,
    FLOAT = 10,
    DOUBLE = 11,
    CAN = 12,
    FLEXRAY = 13,
    CFLOAT = 14,
    CDOUBLE = 15,
    RVIDEO = 16,
    UTF8STR = 17,
    NONE = 18,
};

enum class PhysicalQuantity : int
{
    NONE = 0,
    STRAIN = 1,
    STRESS = 2,
};

} // namespace channel_config

namespace timing {

/// Where the acquisition takes its clock from.
enum class TimeSource : int
{
    INTERNAL = 0,
    GPS = 1,
    IRIG = 2,
    PTP = 3,
    NTP = 4,
    EXTERNAL = 5,
};

/// IRIG time code formats: B00x level shift, B12x amplitude modulated.
enum class IrigCode : int
{
    B000 = 0,
    B001 = 1,
    B002 = 2,
    B003 = 3,
    B004 = 4,
    B005 = 5,
    B006 = 6,
    B007 = 7,
    B120 = 8,
    B121 = 9,
    B122 = 10,
    B123 = 11,
    B124 = 12,
    B125 = 13,
    B126 = 14,
    B127 = 15,
};

} // namespace timing

namespace channel_config {

template <typename Enum>
using EnumTextMap = boost::bimap<Enum, std::string>;

/// The text table of one enumeration. Its throwing lookups (`.left.at`, `.right.at`)
/// fail with "bimap<>: invalid key"; the functions below never throw.
template <typename Enum>
const EnumTextMap<Enum>& enumTextMap();

/// The text of @p value, or "INVALID" for a value without one.
template <typename Enum>
std::string enumToString(Enum value);

/// The value whose text is exactly @p text.
template <typename Enum>
std::optional<Enum> enumFromString(std::string_view text);

/// Text tables that are known by name and used as the enum type of generic
/// enumeration items: "ChannelStored" and "ReducedFormat". Null for any other name.
const EnumTextMap<int>* namedEnumTextMap(std::string_view name);

#define CONFIG_ENUM_TEXTS_DECLARE(Enum)                                                                      \
    template <>                                                                                              \
    const EnumTextMap<Enum>& enumTextMap<Enum>();                                                            \
    extern template std::string enumToString<Enum>(Enum);                                                    \
    extern template std::optional<Enum> enumFromString<Enum>(std::string_view);

CONFIG_ENUM_TEXTS_DECLARE(UserScalingMode)
CONFIG_ENUM_TEXTS_DECLARE(DAQChannelType)
CONFIG_ENUM_TEXTS_DECLARE(SampleOccurrenceType)
CONFIG_ENUM_TEXTS_DECLARE(DAQSampleResolution)
CONFIG_ENUM_TEXTS_DECLARE(PhysicalQuantity)
CONFIG_ENUM_TEXTS_DECLARE(timing::TimeSource)
CONFIG_ENUM_TEXTS_DECLARE(timing::IrigCode)

#undef CONFIG_ENUM_TEXTS_DECLARE

} // namespace channel_config
