// Value reads: NaN and invalid results, the near search on synchronous and
// asynchronous channels, the conversion of every sample kind, and the channel kinds.

#include "qchannel_fakes.h"

#include <qchannel/qbus_message.h>
#include <qchannel/qchannel.h>
#include <qchannel/qcomplex_sample.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <QVariantList>
#include <QVariantMap>

#include <cmath>
#include <functional>
#include <memory>

using lum::qchannel::QChannel;
using qchannel_test::ChannelFactory;

namespace {

constexpr double NONE = std::numeric_limits<double>::quiet_NaN();

/// A QVariant that holds a NaN double: the "no sample" answer of the value reads.
::testing::AssertionResult isNaNValue(const QVariant& value)
{
    if (value.type() != QVariant::Double || !std::isnan(value.toDouble()))
        return ::testing::AssertionFailure()
               << "holds " << value.typeName() << " " << value.toString().toStdString();
    return ::testing::AssertionSuccess();
}

std::vector<double> ramp(int count)
{
    std::vector<double> values;
    for (int i = 0; i < count; ++i)
        values.push_back(100.0 + i);
    return values;
}

// --- near search ---------------------------------------------------------------------

struct NearRow
{
    const char* name;
    bool async;
    double time;
    double value; ///< NONE: nothing qualifies
    double sample_time;
};

void PrintTo(const NearRow& row, std::ostream* out)
{
    *out << row.name;
}

class NearSearch : public ::testing::TestWithParam<NearRow>
{
protected:
    // Asynchronous: ticks of a microsecond, samples at 1.0 s (10) and 2.0 s (20).
    // Synchronous: 100 Hz, 100 samples 100..199 from 0.00 s to 0.99 s.
    ChannelFactory async_factory{1e6};
    ChannelFactory sync_factory{100.0};
    QChannel async{async_factory.async("gps", {{1000000, 10.0}, {2000000, 20.0}})};
    QChannel sync{sync_factory.sync("speed", ramp(100))};
};

TEST_P(NearSearch, FindsTheNearerNeighbourWithinOnePeriod)
{
    const NearRow& row = GetParam();
    QChannel& channel = row.async ? async : sync;
    const auto found = channel.findNearSample(row.time);
    EXPECT_DOUBLE_EQ(found.second, row.sample_time);
    EXPECT_DOUBLE_EQ(channel.sampletimeNearTime(row.time), row.sample_time);
    if (std::isnan(row.value)) {
        EXPECT_TRUE(std::isnan(found.first));
        EXPECT_TRUE(isNaNValue(channel.valueNearTime(row.time)));
    } else {
        EXPECT_EQ(found.first, row.value);
        EXPECT_EQ(channel.valueNearTime(row.time).toDouble(), row.value);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Times, NearSearch,
    ::testing::Values(NearRow{"async_previous_nearer", true, 1.4, 10.0, 1.0},
                      NearRow{"async_next_nearer", true, 1.6, 20.0, 2.0},
                      NearRow{"async_midpoint_qualifies_neither", true, 1.5, NONE, 1.5},
                      NearRow{"async_at_a_sample", true, 2.0, 20.0, 2.0},
                      NearRow{"async_at_the_first_sample", true, 1.0, 10.0, 1.0},
                      NearRow{"async_before_the_first", true, 0.9, NONE, 0.9},
                      NearRow{"async_within_a_tick_after_the_last", true, 2.0000005, 20.0, 2.0},
                      NearRow{"async_far_after_the_last", true, 2.1, NONE, 2.1},
                      NearRow{"sync_previous_nearer", false, 0.004, 100.0, 0.0},
                      NearRow{"sync_next_nearer", false, 0.006, 101.0, 0.01},
                      NearRow{"sync_midpoint_goes_to_the_next", false, 0.005, 101.0, 0.01},
                      NearRow{"sync_after_the_last_within_a_period", false, 0.995, 199.0, 0.99},
                      NearRow{"sync_more_than_a_period_after_the_last", false, 1.005, NONE, 1.005},
                      NearRow{"sync_far_after_the_last", false, 1.5, NONE, 1.5}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(NearSearch, ReadsAtOrBeforeRangesAndCalculations)
{
    using lum::qchannel::QSampleCalcType;
    EXPECT_TRUE(std::isnan(async.sampletimeNearTime(-1.0)));
    EXPECT_EQ(async.valueAtTime(1.9).toDouble(), 10.0);
    EXPECT_EQ(async.valueAtTimeEnsureLoaded(2.5).toDouble(), 20.0);
    EXPECT_TRUE(isNaNValue(async.valueAtTime(0.5)));
    EXPECT_TRUE(isNaNValue(async.valueAtTimeEnsureLoaded(0.5)));
    EXPECT_DOUBLE_EQ(async.getFirstRegionStart(), 1.0);
    EXPECT_DOUBLE_EQ(async.getLastRegionEnd(), 2.0);
    EXPECT_FALSE(async.anyValueAtTimeEnsureLoaded(-0.1).isValid());
    EXPECT_FALSE(async.anyValueAtTimeEnsureLoaded(0.5).toMap().contains("value"));
    EXPECT_EQ(async.anyValueAtTimeEnsureLoaded(1.5).toMap().value("value").toDouble(), 10.0);

    EXPECT_EQ(sync.valueAtTime(0.015).toDouble(), 101.0);
    EXPECT_TRUE(isNaNValue(sync.valueAtTime(-0.5)));
    EXPECT_EQ(sync.minValue(), 100.0);
    EXPECT_EQ(sync.maxValue(), 199.0);
    EXPECT_DOUBLE_EQ(sync.calculateValue(0.0, 0.02, QSampleCalcType::DERIVED_AVERAGE).toDouble(), 101.0);
    EXPECT_EQ(sync.calculateValue(0.0, 0.99, QSampleCalcType::DERIVED_MAX).toDouble(), 199.0);
    EXPECT_TRUE(isNaNValue(sync.calculateValue(0.0, 1.0, QSampleCalcType::NUM_ENUMS)));
    EXPECT_TRUE(isNaNValue(sync.indexedValueAtTime(0, 0.5)));
    EXPECT_TRUE(isNaNValue(sync.sliceAtTime(0, 3, 0.5)));
    EXPECT_DOUBLE_EQ(sync.getLastRegionEnd(), 0.99);

    const QVariantMap found = sync.anyValueAtTimeEnsureLoaded(0.9).toMap();
    EXPECT_EQ(found.value("value").toDouble(), 190.0);
    const QVariantMap reduced = found.value("reduced_value").toMap();
    EXPECT_EQ(reduced.keys(), (QStringList{"avg", "max", "min", "rms"}));
    EXPECT_EQ(reduced.value("min").toDouble(), 100.0);
    EXPECT_EQ(reduced.value("max").toDouble(), 163.0);
}

// --- other channel kinds ---------------------------------------------------------------

TEST(VectorChannels, IndexedValuesSlicesAndRanges)
{
    ChannelFactory factory;
    auto channel = factory.prepared<ferrin::ScalarVectorChannel>(
        "spectrum", {{0, std::vector<double>{0, 1, 2, 3, 4, 5}}, {10, std::vector<double>{10, 11}}}, 11, 6);
    channel->getItemStore()->set("Range", config_items::RangeConfigItem<double>(-5.0, 7.5, "V", "V"));
    QChannel vector(channel);

    EXPECT_EQ(vector.indexedValueAtTime(0, 0.5).toDouble(), 0.0);
    EXPECT_EQ(vector.indexedValueAtTime(3, 0.5).toDouble(), 3.0);
    EXPECT_EQ(vector.indexedValueAtTimeEnsureLoaded(5, 0.5).toDouble(), 5.0);
    EXPECT_TRUE(isNaNValue(vector.indexedValueAtTime(6, 0.5)));
    EXPECT_TRUE(isNaNValue(vector.indexedValueAtTime(-1, 0.5)));
    EXPECT_EQ(vector.indexedValueAtTime(1, 1.5).toDouble(), 11.0);
    EXPECT_EQ(vector.sliceAtTime(4, 10, 0.5).toList(), (QVariantList{4.0, 5.0}));
    EXPECT_EQ(vector.sliceAtTime(1, 2, 0.5).toList(), (QVariantList{1.0, 2.0}));
    EXPECT_TRUE(isNaNValue(vector.sliceAtTime(6, 10, 0.5)));
    EXPECT_TRUE(isNaNValue(vector.sliceAtTime(0, 10, -1.0)));
    EXPECT_EQ(vector.valueAtTime(0.5).toList(), (QVariantList{0.0, 1.0, 2.0, 3.0, 4.0, 5.0}));
    EXPECT_TRUE(isNaNValue(vector.valueAtTime(-1.0)));
    EXPECT_EQ(vector.minValue(), -5.0);
    EXPECT_EQ(vector.maxValue(), 7.5);
    EXPECT_TRUE(isNaNValue(vector.calculateValue(0.0, 1.0, 0)));
    EXPECT_TRUE(std::isnan(vector.sampletimeNearTime(0.5)));
    EXPECT_EQ(vector.anyValueAtTimeEnsureLoaded(0.5).toMap().value("value").toList().size(), 6);

    QChannel complex(factory.prepared<ferrin::ComplexVectorChannel>(
        "fft", {{0, std::vector<std::complex<double>>{{1, 2}, {3, -4}}}}, 15, 2));
    std::unique_ptr<lum::qchannel::QComplexSample> element(
        complex.indexedValueAtTime(1, 0.0).value<lum::qchannel::QComplexSample*>());
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->real(), 3.0);
    EXPECT_EQ(element->imag(), -4.0);
    EXPECT_EQ(element->abs(), 5.0);
    EXPECT_EQ(element->parent(), nullptr);
    EXPECT_TRUE(isNaNValue(complex.indexedValueAtTime(2, 0.0)));
    EXPECT_TRUE(isNaNValue(complex.sliceAtTime(0, 1, 0.0)));
    EXPECT_TRUE(std::isnan(complex.minValue()));

    QChannel can(
        factory.prepared<ferrin::CANMessageChannel>("can", {{0, daq::CanFrame{{1, 2}, 0x123, 0}}}, 12));
    EXPECT_TRUE(isNaNValue(can.indexedValueAtTime(0, 0.0)));
    EXPECT_TRUE(std::isnan(can.maxValue()));
    std::unique_ptr<QObject> frame(can.valueAtTime(0.0).value<QObject*>());
    EXPECT_NE(qobject_cast<lum::message::QCanMessage*>(frame.get()), nullptr);
}

// --- sample conversion -----------------------------------------------------------------

TEST(SampleToVariant, EveryKindOfSample)
{
    EXPECT_FALSE(QChannel::sampleToVariant(nullptr).isValid());
    EXPECT_FALSE(QChannel::sampleToVariant(daq::makeSample(1, std::monostate()).get()).isValid());
    EXPECT_EQ(QChannel::sampleToVariant(daq::makeSample(1, 2.5).get()), QVariant(2.5));
    EXPECT_EQ(QChannel::sampleToVariant(daq::makeSample(1, std::vector<double>{1, 2}).get()).toList(),
              (QVariantList{1.0, 2.0}));
    EXPECT_EQ(QChannel::sampleToVariant(daq::makeSample(1, daq::VideoFrame{{0x41, 0x00, 0x42}}).get())
                  .toByteArray(),
              QByteArray("A\0B", 3));
    const QVariant text =
        QChannel::sampleToVariant(daq::makeSample(1, std::string("Gr\xc3\xbc\xc3\x9f")).get());
    EXPECT_EQ(text.type(), QVariant::String);
    EXPECT_EQ(text.toString(), QString::fromUtf8("Grüß"));

    const QVariantList complex =
        QChannel::sampleToVariant(daq::makeSample(1, std::vector<std::complex<double>>{{1, 0}, {0, 1}}).get())
            .toList();
    ASSERT_EQ(complex.size(), 2);
    for (const QVariant& element : complex) {
        std::unique_ptr<lum::qchannel::QComplexSample> owned(element.value<lum::qchannel::QComplexSample*>());
        ASSERT_NE(owned, nullptr);
        EXPECT_EQ(owned->parent(), nullptr);
    }

    std::unique_ptr<lum::message::QCanMessage> can(
        QChannel::sampleToVariant(daq::makeSample(77, daq::CanFrame{{0xde, 0xad}, 0x18ff, 0x03}).get())
            .value<lum::message::QCanMessage*>());
    ASSERT_NE(can, nullptr);
    EXPECT_EQ(can->ticks(), 77u);
    EXPECT_EQ(can->property("id").toInt(), 0x18ff);
    EXPECT_EQ(can->extendedId(), 1);
    EXPECT_EQ(can->remoteFrame(), 1);
    EXPECT_EQ(can->dataSize(), 2);
    EXPECT_EQ(can->getDataByte(1), 0xad);
    EXPECT_EQ(can->getDataByte(2), -1);
    EXPECT_EQ(can->getDataByte(-1), -1);

    std::unique_ptr<lum::message::QFlexrayMessage> flexray(
        QChannel::sampleToVariant(daq::makeSample(5, daq::FlexRayFrame{{1}, 63, 2047}).get())
            .value<lum::message::QFlexrayMessage*>());
    ASSERT_NE(flexray, nullptr);
    EXPECT_EQ(flexray->cycle(), 63);
    EXPECT_EQ(flexray->slot(), 2047);

    std::unique_ptr<lum::message::QBusMessage> bus(
        QChannel::sampleToVariant(daq::makeSample(9, daq::ByteVector{}).get())
            .value<lum::message::QBusMessage*>());
    ASSERT_NE(bus, nullptr);
    EXPECT_EQ(bus->getDataByte(0), -1);
    EXPECT_EQ(qobject_cast<lum::message::QCanMessage*>(bus.get()), nullptr);

    uni_testing::AssertCapture asserts;
    daq::Sample odd(1, 2.0);
    odd.type = 9;
    EXPECT_FALSE(QChannel::sampleToVariant(&odd).isValid());
    EXPECT_TRUE(asserts.fired("", "Unknown sample type"));
}

// --- kinds, type texts ----------------------------------------------------------------

struct KindRow
{
    const char* name;
    std::function<std::shared_ptr<ferrin::Channel>(ChannelFactory&)> make;
    QChannel::SampleValueType type;
    const char* description;  ///< "" when not checked
    bool vector_kind = false; ///< a channel of vectors, whatever its samples read as
};

void PrintTo(const KindRow& row, std::ostream* out)
{
    *out << row.name;
}

class ChannelKinds : public ::testing::TestWithParam<KindRow>
{
protected:
    ChannelFactory factory;
};

TEST_P(ChannelKinds, SampleValueTypeAndDescription)
{
    QChannel channel(GetParam().make(factory));
    EXPECT_EQ(channel.sampleValueType(), GetParam().type);
    if (*GetParam().description) {
        EXPECT_EQ(channel.channelTypeDescription(), GetParam().description);
    }
    EXPECT_EQ(channel.isScalarChannel(), GetParam().type == QChannel::SAMPLE_VALUE_SCALAR);
    EXPECT_EQ(channel.isVectorChannel(), GetParam().vector_kind);
    EXPECT_EQ(channel.isComplexVectorChannel(), GetParam().type == QChannel::SAMPLE_VALUE_COMPLEX_VECTOR);
    EXPECT_EQ(channel.isVideoChannel(), GetParam().type == QChannel::SAMPLE_VALUE_VIDEO);
}

template <typename Kind>
std::function<std::shared_ptr<ferrin::Channel>(ChannelFactory&)> kind(std::int32_t resolution,
                                                                      std::uint32_t dimension)
{
    return [=](ChannelFactory& f) { return f.prepared<Kind>("k", {}, resolution, dimension); };
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ChannelKinds,
    ::testing::Values(
        KindRow{"scalar", [](ChannelFactory& f) { return f.sync("a", ramp(3)); },
                QChannel::SAMPLE_VALUE_SCALAR, "Scalar, double, SYNC, invalid"},
        KindRow{"fft_vector",
                [](ChannelFactory& f) {
                    auto channel = f.prepared<ferrin::ScalarVectorChannel>("v", {}, 11, 8);
                    channel->getItemStore()->set(
                        "ChannelType", config_items::SingleValueConfigItem<channel_config::DAQChannelType>(
                                           static_cast<channel_config::DAQChannelType>(15)));
                    return channel;
                },
                QChannel::SAMPLE_VALUE_VECTOR, "Vector, double * 8, SYNC, FFT", true},
        KindRow{"bytes", kind<ferrin::ScalarVectorChannel>(0, 4), QChannel::SAMPLE_VALUE_BYTE_VECTOR, "",
                true},
        KindRow{"complex", kind<ferrin::ComplexVectorChannel>(15, 2), QChannel::SAMPLE_VALUE_COMPLEX_VECTOR,
                "ComplexVector, cdouble * 2, SYNC, invalid"},
        KindRow{"video", kind<ferrin::VideoChannel>(16, 1), QChannel::SAMPLE_VALUE_VIDEO,
                "Video, rvideo * 1, SYNC, invalid"},
        KindRow{"async_bytes", kind<ferrin::AsyncByteVectorChannel>(11, 1),
                QChannel::SAMPLE_VALUE_BYTE_VECTOR, "Generic, double * 1, SYNC, invalid"},
        KindRow{"can", kind<ferrin::CANMessageChannel>(12, 1), QChannel::SAMPLE_VALUE_CAN_MESSAGE, ""},
        KindRow{"flexray", kind<ferrin::CANMessageChannel>(13, 1), QChannel::SAMPLE_VALUE_FLEXRAY_MESSAGE,
                ""},
        KindRow{"text", kind<ferrin::CANMessageChannel>(17, 1), QChannel::SAMPLE_VALUE_STRING, ""},
        KindRow{"raw", kind<ferrin::CANMessageChannel>(0, 1), QChannel::SAMPLE_VALUE_VECTOR, ""},
        KindRow{"other_resolution", kind<ferrin::CANMessageChannel>(5, 1), QChannel::SAMPLE_VALUE_INVALID,
                ""},
        KindRow{"unknown_resolution", kind<ferrin::CANMessageChannel>(99, 1), QChannel::SAMPLE_VALUE_INVALID,
                "Generic, invalid * 1, SYNC, invalid"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ChannelKindChecks, AScalarChannelOfAnotherDimensionIsReported)
{
    ChannelFactory factory;
    ferrin::ChannelSetup setup = factory.setup("wide");
    setup.sample_dimension = 3;
    auto channel = std::make_shared<lum::data::SyncScalarChannel>(
        setup, ramp(2), std::make_shared<lum::data::MemoryDataSource>(99, factory.regions, nullptr));
    uni_testing::AssertCapture asserts;
    QChannel qchannel(channel);
    EXPECT_EQ(qchannel.channelTypeDescription(), "Scalar, double, SYNC, invalid");
    EXPECT_TRUE(asserts.fired("m_ferrin_scalar_channel->getSampleDimension() == 1",
                              "m_ferrin_scalar_channel->getSampleDimension() != 1 (3 != 1)"));
}

TEST(ChannelKindChecks, MetadataByKey)
{
    ChannelFactory factory;
    auto channel = factory.prepared<ferrin::CANMessageChannel>("can", {}, 12, 1);
    QChannel qchannel(channel);
    {
        uni_testing::AssertCapture asserts;
        EXPECT_FALSE(qchannel.hasMetaData());
        EXPECT_TRUE(isNaNValue(qchannel.metaData("error_counter")));
        EXPECT_TRUE(asserts.fired("", "Meta data not found"));
    }
    channel->metadata = std::map<std::string, std::any>{
        {"error_counter", std::int32_t(7)}, {"bus_fault", std::int32_t(2)}, {"other", std::int32_t(1)}};
    EXPECT_TRUE(qchannel.hasMetaData("bus_fault"));
    EXPECT_FALSE(qchannel.hasMetaData("missing"));
    const QVariant errors = qchannel.metaData("error_counter");
    EXPECT_EQ(errors.type(), QVariant::Double);
    EXPECT_EQ(errors.toDouble(), 7.0);
    const QVariant fault = qchannel.metaData("bus_fault");
    EXPECT_EQ(fault.type(), QVariant::Int);
    EXPECT_EQ(fault.toInt(), 2);
    EXPECT_TRUE(isNaNValue(qchannel.metaData("missing")));
    uni_testing::AssertCapture asserts;
    EXPECT_TRUE(isNaNValue(qchannel.metaData("other")));
    EXPECT_TRUE(asserts.fired("", "Key not implemented"));
}

} // namespace
