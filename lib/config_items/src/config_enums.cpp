#include <config_items/config_enums.h>

#include <initializer_list>
#include <utility>

namespace channel_config {
namespace {

template <typename Enum>
EnumTextMap<Enum> makeMap(std::initializer_list<std::pair<Enum, const char*>> entries)
{
    EnumTextMap<Enum> map;
    for (const auto& [value, text] : entries)
        map.insert({value, text});
    return map;
}

} // namespace

template <>
const EnumTextMap<SampleOccurrenceType>& enumTextMap<SampleOccurrenceType>()
{
    static const auto map = makeMap<SampleOccurrenceType>({
        {SampleOccurrenceType::SYNC, "SYNC"},
        {SampleOccurrenceType::ASYNC, "ASYNC"},
        {SampleOccurrenceType::SINGLE_VALUE, "SINGLE_VALUE"},
        {SampleOccurrenceType::NEVER, "NEVER"},
    });
    return map;
}

template <>
const EnumTextMap<PhysicalQuantity>& enumTextMap<PhysicalQuantity>()
{
    static const auto map = makeMap<PhysicalQuantity>({
        {PhysicalQuantity::NONE, "None"},
        {PhysicalQuantity::STRAIN, "Strain"},
        {PhysicalQuantity::STRESS, "Stress"},
    });
    return map;
}

template <>
const EnumTextMap<UserScalingMode>& enumTextMap<UserScalingMode>()
{
    static const auto map = makeMap<UserScalingMode>({
        {UserScalingMode::SCALE, "Scale"},
        {UserScalingMode::SENSITIVITY, "Sensitivity"},
        {UserScalingMode::TWO_POINT, "TwoPoint"},
        {UserScalingMode::AUTO_UNIT, "AutoUnit"},
        {UserScalingMode::BRIDGE, "Bridge"},
        {UserScalingMode::TABLE_SCALING, "TableScaling"},
        {UserScalingMode::POLYNOMIAL, "Polynomial"},
    });
    return map;
}

template <>
const EnumTextMap<DAQSampleResolution>& enumTextMap<DAQSampleResolution>()
{
    static const auto map = makeMap<DAQSampleResolution>({
        {DAQSampleResolution::BYTE, "byte"},     {DAQSampleResolution::SINT8, "sint8"},
        {DAQSampleResolution::SINT16, "sint16"}, {DAQSampleResolution::SINT24, "sint24"},
        {DAQSampleResolution::SINT32, "sint32"}, {DAQSampleResolution::SINT64, "sint64"},
        {DAQSampleResolution::UINT8, "uint8"},   {DAQSampleResolution::UINT16, "uint16"},
        {DAQSampleResolution::UINT32, "uint32"}, {DAQSampleResolution::UINT64, "uint64"},
        {DAQSampleResolution::FLOAT, "float"},   {DAQSampleResolution::DOUBLE, "double"},
        {DAQSampleResolution::CAN, "can"},       {DAQSampleResolution::FLEXRAY, "flexray"},
        {DAQSampleResolution::CFLOAT, "cfloat"}, {DAQSampleResolution::CDOUBLE, "cdouble"},
        {DAQSampleResolution::RVIDEO, "rvideo"}, {DAQSampleResolution::UTF8STR, "utf8str"},
        {DAQSampleResolution::NONE, "none"},
    });
    return map;
}

template <>
const EnumTextMap<DAQChannelType>& enumTextMap<DAQChannelType>()
{
    static const auto map = makeMap<DAQChannelType>({
        {DAQChannelType::ANALOG, "Analog"},
        {DAQChannelType::DIGITAL, "Digital"},
        {DAQChannelType::DIGI_GROUP, "DigiGroup"},
        {DAQChannelType::COUNTER, "Counter"},
        {DAQChannelType::CAN, "CAN"},
        {DAQChannelType::CAN_SIGNAL, "CAN_Signal"},
        {DAQChannelType::GPS_NMEA, "GPS_NMEA"},
        {DAQChannelType::MATH, "Math"},
        {DAQChannelType::POWER, "Power"},
        {DAQChannelType::POWER_GROUP, "PowerGroup"},
        {DAQChannelType::AI_ASYNC_PAD, "AI_ASYNC_PAD"},
        {DAQChannelType::DI_ASYNC_PAD, "DI_ASYNC_PAD"},
        {DAQChannelType::STATISTICS, "Statistics"},
        {DAQChannelType::VIDEO, "Video"},
        {DAQChannelType::FILTER, "Filter"},
        {DAQChannelType::FFT, "FFT"},
        {DAQChannelType::POSITION_LAT, "Position_Lat"},
        {DAQChannelType::POSITION_LONG, "Position_Long"},
        {DAQChannelType::POSITION_ALT, "Position_Alt"},
        {DAQChannelType::POSITION_HEAD, "Position_Head"},
        {DAQChannelType::POSITION_VEL, "Position_Vel"},
        {DAQChannelType::POSITION_NUM_SAT, "Position_NumSat"},
        {DAQChannelType::POSITION_QUALITY, "Position_Quality"},
        {DAQChannelType::POSITION_HORIZONTAL_DILUTION, "Position_HorizontalDilution"},
        {DAQChannelType::TIME_SECOND_OF_DAY, "Time_SecondOfDay"},
        {DAQChannelType::DATE, "Date"},
        {DAQChannelType::ACCELERATION, "Acceleration"},
        {DAQChannelType::DISTANCE, "Distance"},
        {DAQChannelType::OVERMAP_CHANNEL, "OVERMAP/Channel"},
        {DAQChannelType::ADMA_CHANNEL, "ADMA/Channel"},
        {DAQChannelType::ROSETTE_CHANNEL, "ROSETTE/Channel"},
        {DAQChannelType::ROSETTE_GROUP, "ROSETTE/Group"},
        {DAQChannelType::SNAPSHOT, "Snapshot"},
        {DAQChannelType::OXTS_CHANNEL, "OXTS/Channel"},
        {DAQChannelType::RECEIVER_CHANNEL, "RECEIVER/Channel"},
        {DAQChannelType::RECEIVER_GROUP, "RECEIVER/Group"},
        {DAQChannelType::PSOPHOMETER, "Psophometer"},
        {DAQChannelType::SSA_CHANNEL, "SSA/Channel"},
        {DAQChannelType::SSA_GROUP, "SSA/Group"},
        {DAQChannelType::FLEXRAY, "FLEXRAY"},
        {DAQChannelType::FIBEX_PDU, "FIBEX/Pdu"},
        {DAQChannelType::FIBEX_SIGNAL, "FIBEX/Signal"},
        {DAQChannelType::OA_CHANNEL, "OA/Channel"},
        {DAQChannelType::OA_GROUP, "OA/Group"},
        {DAQChannelType::SL_CHANNEL, "SL/Channel"},
        {DAQChannelType::SL_GROUP, "SL/Group"},
        {DAQChannelType::CPB_CHANNEL, "CPB/Channel"},
        {DAQChannelType::CPB_GROUP, "CPB/Group"},
        {DAQChannelType::ANALOG_OUT, "AnalogOut"},
        {DAQChannelType::MATRIX_SAMPLER, "MatrixSampler"},
        {DAQChannelType::ARINC_429, "ARINC_429"},
        {DAQChannelType::MILSTD_1553, "MILSTD_1553"},
        {DAQChannelType::ARXML_CAN_FRAME, "ARXML/CAN_Frame"},
        {DAQChannelType::ARXML_SIGNAL, "ARXML/Signal"},
        {DAQChannelType::FIR_CHANNEL, "FIR/Channel"},
        {DAQChannelType::FIR_GROUP, "FIR/Group"},
        {DAQChannelType::MODAL_TEST, "ModalTest"},
        {DAQChannelType::CALCULATION, "Calculation"},
        {DAQChannelType::AREF, "ARef"},
    });
    return map;
}

template <>
const EnumTextMap<timing::TimeSource>& enumTextMap<timing::TimeSource>()
{
    static const auto map = makeMap<timing::TimeSource>({
        {timing::TimeSource::INTERNAL, "Internal"},
        {timing::TimeSource::GPS, "GPS"},
        {timing::TimeSource::IRIG, "IRIG"},
        {timing::TimeSource::PTP, "PTP"},
        {timing::TimeSource::NTP, "NTP"},
        {timing::TimeSource::EXTERNAL, "External"},
    });
    return map;
}

template <>
const EnumTextMap<timing::IrigCode>& enumTextMap<timing::IrigCode>()
{
    static const auto map = makeMap<timing::IrigCode>({
        {timing::IrigCode::B000, "B000"},
        {timing::IrigCode::B001, "B001"},
        {timing::IrigCode::B002, "B002"},
        {timing::IrigCode::B003, "B003"},
        {timing::IrigCode::B004, "B004"},
        {timing::IrigCode::B005, "B005"},
        {timing::IrigCode::B006, "B006"},
        {timing::IrigCode::B007, "B007"},
        {timing::IrigCode::B120, "B120"},
        {timing::IrigCode::B121, "B121"},
        {timing::IrigCode::B122, "B122"},
        {timing::IrigCode::B123, "B123"},
        {timing::IrigCode::B124, "B124"},
        {timing::IrigCode::B125, "B125"},
        {timing::IrigCode::B126, "B126"},
        {timing::IrigCode::B127, "B127"},
    });
    return map;
}

template <typename Enum>
std::string enumToString(Enum value)
{
    const auto& map = enumTextMap<Enum>();
    const auto it = map.left.find(value);
    return it == map.left.end() ? std::string("INVALID") : it->second;
}

template <typename Enum>
std::optional<Enum> enumFromString(std::string_view text)
{
    const auto& map = enumTextMap<Enum>();
    const auto it = map.right.find(std::string(text));
    if (it == map.right.end())
        return std::nullopt;
    return it->second;
}

const EnumTextMap<int>* namedEnumTextMap(std::string_view name)
{
    static const auto channel_stored = makeMap<int>({{0, "Auto"}, {1, "No"}});
    static const auto reduced_format = makeMap<int>({{0, "r_r_r"}, {1, "r_sf_sf"}});
    if (name == "ChannelStored")
        return &channel_stored;
    if (name == "ReducedFormat")
        return &reduced_format;
    return nullptr;
}

#define CONFIG_ENUM_TEXTS(Enum)                                                                              \
    template std::string enumToString<Enum>(Enum);                                                           \
    template std::optional<Enum> enumFromString<Enum>(std::string_view);

CONFIG_ENUM_TEXTS(UserScalingMode)
CONFIG_ENUM_TEXTS(DAQChannelType)
CONFIG_ENUM_TEXTS(SampleOccurrenceType)
CONFIG_ENUM_TEXTS(DAQSampleResolution)
CONFIG_ENUM_TEXTS(PhysicalQuantity)
CONFIG_ENUM_TEXTS(timing::TimeSource)
CONFIG_ENUM_TEXTS(timing::IrigCode)

#undef CONFIG_ENUM_TEXTS

} // namespace channel_config
