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
#include <memory>

using lum::qchannel::QChannel;
using qchannel_test::ChannelFactory;
using qchannel_test::PreparedChannel;

namespace {

/// A QVariant that holds a NaN double: the "no sample" answer of the value reads.
::testing::AssertionResult isNaNValue(const QVariant& value)
{
    if (!value.isValid())
        return ::testing::AssertionFailure() << "invalid QVariant";
    if (value.type() != QVariant::Double)
        return ::testing::AssertionFailure() << "holds " << value.typeName();
    if (!std::isnan(value.toDouble()))
        return ::testing::AssertionFailure() << "holds " << value.toDouble();
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

class NearSearchAsync : public ::testing::Test
{
protected:
    // Ticks of a microsecond: samples at 1.0 s (value 10) and 2.0 s (value 20).
    ChannelFactory factory{1e6};
    std::shared_ptr<lum::data::AsyncScalarChannel> channel =
        factory.async("gps", {{1000000, 10.0}, {2000000, 20.0}});
    QChannel qchannel{channel};
};

TEST_F(NearSearchAsync, TheNearerNeighbourWinsAndTheMidpointQualifiesNeither)
{
    EXPECT_EQ(qchannel.valueNearTime(1.4).toDouble(), 10.0);
    EXPECT_EQ(qchannel.sampletimeNearTime(1.4), 1.0);
    EXPECT_EQ(qchannel.valueNearTime(1.6).toDouble(), 20.0);
    EXPECT_EQ(qchannel.sampletimeNearTime(1.6), 2.0);
    EXPECT_TRUE(isNaNValue(qchannel.valueNearTime(1.5)));
    EXPECT_EQ(qchannel.sampletimeNearTime(1.5), 1.5);
}

TEST_F(NearSearchAsync, ASampleAskedAtItsOwnTimeIsFound)
{
    // Previous and next are the same sample: a span of 0 accepts the next one.
    EXPECT_EQ(qchannel.findNearSample(2.0), std::make_pair(20.0, 2.0));
    EXPECT_EQ(qchannel.findNearSample(1.0), std::make_pair(10.0, 1.0));
}

TEST_F(NearSearchAsync, BeforeTheFirstSampleNothingQualifies)
{
    const auto found = qchannel.findNearSample(0.9);
    EXPECT_TRUE(std::isnan(found.first));
    EXPECT_EQ(found.second, 0.9);
    EXPECT_TRUE(isNaNValue(qchannel.valueNearTime(0.9)));
}

TEST_F(NearSearchAsync, AfterTheLastSampleOnlyOneTickCounts)
{
    EXPECT_EQ(qchannel.findNearSample(2.0000005), std::make_pair(20.0, 2.0));
    const auto far = qchannel.findNearSample(2.1);
    EXPECT_TRUE(std::isnan(far.first));
    EXPECT_EQ(far.second, 2.1);
}

TEST_F(NearSearchAsync, NegativeTimeGivesNaNTime)
{
    EXPECT_TRUE(std::isnan(qchannel.sampletimeNearTime(-1.0)));
}

TEST_F(NearSearchAsync, ValueAtTimeIsTheSampleAtOrBefore)
{
    EXPECT_EQ(qchannel.valueAtTime(1.9).toDouble(), 10.0);
    EXPECT_EQ(qchannel.valueAtTimeEnsureLoaded(2.5).toDouble(), 20.0);
    EXPECT_TRUE(isNaNValue(qchannel.valueAtTime(0.5)));
    EXPECT_TRUE(isNaNValue(qchannel.valueAtTimeEnsureLoaded(0.5)));
}

TEST_F(NearSearchAsync, RegionsSpanTheRecordedSamples)
{
    EXPECT_DOUBLE_EQ(qchannel.getFirstRegionStart(), 1.0);
    EXPECT_DOUBLE_EQ(qchannel.getLastRegionEnd(), 2.0);
}

TEST_F(NearSearchAsync, AnyValueHasOnlyTheKeysFound)
{
    EXPECT_FALSE(qchannel.anyValueAtTimeEnsureLoaded(-0.1).isValid());
    const QVariantMap before = qchannel.anyValueAtTimeEnsureLoaded(0.5).toMap();
    EXPECT_FALSE(before.contains("value"));
    const QVariantMap after = qchannel.anyValueAtTimeEnsureLoaded(1.5).toMap();
    EXPECT_EQ(after.value("value").toDouble(), 10.0);
}

class NearSearchSync : public ::testing::Test
{
protected:
    // 100 Hz, 100 samples from 0.00 s to 0.99 s.
    ChannelFactory factory{100.0};
    std::shared_ptr<lum::data::SyncScalarChannel> channel = factory.sync("speed", ramp(100));
    QChannel qchannel{channel};
};

TEST_F(NearSearchSync, ANeighbourCountsOnlyCloserThanOnePeriod)
{
    EXPECT_EQ(qchannel.findNearSample(0.004), std::make_pair(100.0, 0.0));
    EXPECT_EQ(qchannel.findNearSample(0.006), std::make_pair(101.0, 0.01));
    // After the last sample there is no next one; the previous one counts within a period.
    EXPECT_EQ(qchannel.findNearSample(0.995).first, 199.0);
    const auto far = qchannel.findNearSample(1.5);
    EXPECT_TRUE(std::isnan(far.first));
    EXPECT_EQ(far.second, 1.5);
    EXPECT_EQ(qchannel.sampletimeNearTime(1.5), 1.5);
    EXPECT_TRUE(isNaNValue(qchannel.valueNearTime(1.5)));
}

TEST_F(NearSearchSync, TheMidpointGoesToTheNextSample)
{
    EXPECT_EQ(qchannel.findNearSample(0.005), std::make_pair(101.0, 0.01));
}

TEST_F(NearSearchSync, ValuesCalculationsAndRanges)
{
    EXPECT_EQ(qchannel.valueAtTime(0.015).toDouble(), 101.0);
    EXPECT_TRUE(isNaNValue(qchannel.valueAtTime(-0.5)));
    EXPECT_EQ(qchannel.minValue(), 100.0);
    EXPECT_EQ(qchannel.maxValue(), 199.0);
    EXPECT_DOUBLE_EQ(
        qchannel.calculateValue(0.0, 0.02, lum::qchannel::QSampleCalcType::DERIVED_AVERAGE).toDouble(),
        channel->calculateValue(0.0, 0.02, ferrin::CALC_AVERAGE));
    EXPECT_EQ(qchannel.calculateValue(0.0, 0.99, lum::qchannel::QSampleCalcType::DERIVED_MAX).toDouble(),
              199.0);
    EXPECT_TRUE(isNaNValue(qchannel.calculateValue(0.0, 1.0, lum::qchannel::QSampleCalcType::NUM_ENUMS)));
    EXPECT_TRUE(isNaNValue(qchannel.indexedValueAtTime(0, 0.5)));
    EXPECT_TRUE(isNaNValue(qchannel.sliceAtTime(0, 3, 0.5)));
    EXPECT_DOUBLE_EQ(qchannel.getFirstRegionStart(), 0.0);
    EXPECT_DOUBLE_EQ(qchannel.getLastRegionEnd(), 0.99);
}

TEST_F(NearSearchSync, AnyValueCarriesReducedData)
{
    const QVariantMap found = qchannel.anyValueAtTimeEnsureLoaded(0.9).toMap();
    EXPECT_EQ(found.value("value").toDouble(), 190.0);
    ASSERT_TRUE(found.contains("reduced_value"));
    const QVariantMap reduced = found.value("reduced_value").toMap();
    EXPECT_EQ(reduced.keys(), (QStringList{"avg", "max", "min", "rms"}));
    EXPECT_EQ(reduced.value("min").toDouble(), 100.0);
    EXPECT_EQ(reduced.value("max").toDouble(), 163.0);
}

// --- other channel kinds ---------------------------------------------------------------

class VectorChannels : public ::testing::Test
{
protected:
    ChannelFactory factory{10.0};
};

TEST_F(VectorChannels, IndexedValuesAndSlices)
{
    auto channel = factory.prepared<ferrin::ScalarVectorChannel>(
        "spectrum", {{0, std::vector<double>{0, 1, 2, 3, 4, 5}}, {10, std::vector<double>{10, 11}}}, 11, 6);
    channel->getItemStore()->set("Range", config_items::RangeConfigItem<double>(-5.0, 7.5, "V", "V"));
    QChannel qchannel(channel);

    EXPECT_EQ(qchannel.indexedValueAtTime(3, 0.5).toDouble(), 3.0);
    EXPECT_EQ(qchannel.indexedValueAtTimeEnsureLoaded(5, 0.5).toDouble(), 5.0);
    EXPECT_TRUE(isNaNValue(qchannel.indexedValueAtTime(6, 0.5)));
    EXPECT_TRUE(isNaNValue(qchannel.indexedValueAtTime(-1, 0.5)));
    EXPECT_EQ(qchannel.indexedValueAtTime(1, 1.5).toDouble(), 11.0);

    EXPECT_EQ(qchannel.sliceAtTime(4, 10, 0.5).toList(), (QVariantList{4.0, 5.0}));
    EXPECT_EQ(qchannel.sliceAtTime(1, 2, 0.5).toList(), (QVariantList{1.0, 2.0}));
    EXPECT_TRUE(isNaNValue(qchannel.sliceAtTime(6, 10, 0.5)));
    EXPECT_TRUE(isNaNValue(qchannel.sliceAtTime(0, 10, -1.0)));

    EXPECT_EQ(qchannel.valueAtTime(0.5).toList(), (QVariantList{0.0, 1.0, 2.0, 3.0, 4.0, 5.0}));
    EXPECT_TRUE(isNaNValue(qchannel.valueAtTime(-1.0)));
    EXPECT_EQ(qchannel.minValue(), -5.0);
    EXPECT_EQ(qchannel.maxValue(), 7.5);
    EXPECT_TRUE(isNaNValue(qchannel.calculateValue(0.0, 1.0, 0)));
    EXPECT_TRUE(std::isnan(qchannel.sampletimeNearTime(0.5)));

    const QVariantMap any = qchannel.anyValueAtTimeEnsureLoaded(0.5).toMap();
    EXPECT_EQ(any.value("value").toList().size(), 6);
}

TEST_F(VectorChannels, ComplexElementsAreNewObjects)
{
    auto channel = factory.prepared<ferrin::ComplexVectorChannel>(
        "fft", {{0, std::vector<std::complex<double>>{{1, 2}, {3, -4}}}}, 15, 2);
    QChannel qchannel(channel);

    const QVariant element = qchannel.indexedValueAtTime(1, 0.0);
    std::unique_ptr<lum::qchannel::QComplexSample> sample(element.value<lum::qchannel::QComplexSample*>());
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->real(), 3.0);
    EXPECT_EQ(sample->imag(), -4.0);
    EXPECT_EQ(sample->abs(), 5.0);
    EXPECT_EQ(sample->parent(), nullptr);
    EXPECT_TRUE(isNaNValue(qchannel.indexedValueAtTime(2, 0.0)));
    EXPECT_TRUE(isNaNValue(qchannel.sliceAtTime(0, 1, 0.0)));
    EXPECT_TRUE(std::isnan(qchannel.minValue()));
}

TEST_F(VectorChannels, OtherKindsHaveNoIndexedValuesOrRange)
{
    auto channel =
        factory.prepared<ferrin::CANMessageChannel>("can", {{0, daq::CanFrame{{1, 2}, 0x123, 0}}}, 12);
    QChannel qchannel(channel);
    EXPECT_TRUE(isNaNValue(qchannel.indexedValueAtTime(0, 0.0)));
    EXPECT_TRUE(std::isnan(qchannel.minValue()));
    EXPECT_TRUE(std::isnan(qchannel.maxValue()));
    std::unique_ptr<QObject> frame(qchannel.valueAtTime(0.0).value<QObject*>());
    EXPECT_NE(qobject_cast<lum::message::QCanMessage*>(frame.get()), nullptr);
}

// --- sample conversion -----------------------------------------------------------------

TEST(SampleToVariant, ScalarVectorTextAndBytes)
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
}

TEST(SampleToVariant, ComplexElementsAreOwnedByTheCaller)
{
    const QVariantList list =
        QChannel::sampleToVariant(daq::makeSample(1, std::vector<std::complex<double>>{{1, 0}, {0, 1}}).get())
            .toList();
    ASSERT_EQ(list.size(), 2);
    for (const QVariant& element : list) {
        std::unique_ptr<lum::qchannel::QComplexSample> owned(element.value<lum::qchannel::QComplexSample*>());
        ASSERT_NE(owned, nullptr);
        EXPECT_EQ(owned->parent(), nullptr);
    }
}

TEST(SampleToVariant, BusFramesBecomeMessageObjects)
{
    std::unique_ptr<lum::message::QCanMessage> can(
        QChannel::sampleToVariant(daq::makeSample(77, daq::CanFrame{{0xde, 0xad}, 0x18ff, 0x03}).get())
            .value<lum::message::QCanMessage*>());
    ASSERT_NE(can, nullptr);
    EXPECT_EQ(can->ticks(), 77u);
    EXPECT_EQ(can->id(), 0x18ff);
    EXPECT_EQ(can->extendedId(), 1);
    EXPECT_EQ(can->remoteFrame(), 1);
    EXPECT_EQ(can->dataSize(), 2);
    EXPECT_EQ(can->getDataByte(1), 0xad);
    EXPECT_EQ(can->getDataByte(2), -1);
    EXPECT_EQ(can->getDataByte(-1), -1);
    EXPECT_EQ(can->property("id").toInt(), 0x18ff);

    std::unique_ptr<lum::message::QFlexrayMessage> flexray(
        QChannel::sampleToVariant(daq::makeSample(5, daq::FlexRayFrame{{1}, 63, 2047}).get())
            .value<lum::message::QFlexrayMessage*>());
    ASSERT_NE(flexray, nullptr);
    EXPECT_EQ(flexray->cycle(), 63);
    EXPECT_EQ(flexray->slot(), 2047);
    EXPECT_EQ(flexray->ticks(), 5u);

    std::unique_ptr<lum::message::QBusMessage> bus(
        QChannel::sampleToVariant(daq::makeSample(9, daq::ByteVector{}).get())
            .value<lum::message::QBusMessage*>());
    ASSERT_NE(bus, nullptr);
    EXPECT_EQ(bus->dataSize(), 0);
    EXPECT_EQ(bus->getDataByte(0), -1);
    EXPECT_EQ(qobject_cast<lum::message::QCanMessage*>(bus.get()), nullptr);
}

TEST(SampleToVariant, UnknownTypeCodesAreReported)
{
    uni_testing::AssertCapture asserts;
    daq::Sample odd(1, 2.0);
    odd.type = 9;
    EXPECT_FALSE(QChannel::sampleToVariant(&odd).isValid());
    EXPECT_TRUE(asserts.fired("", "Unknown sample type"));
}

// --- kinds, type texts ----------------------------------------------------------------

class ChannelKinds : public ::testing::Test
{
protected:
    ChannelFactory factory{10.0};
};

TEST_F(ChannelKinds, SampleValueTypeAndDescription)
{
    QChannel scalar(factory.sync("a", ramp(3)));
    EXPECT_EQ(scalar.sampleValueType(), QChannel::SAMPLE_VALUE_SCALAR);
    EXPECT_TRUE(scalar.isScalarChannel());
    EXPECT_EQ(scalar.channelTypeDescription(), "Scalar, double, SYNC, invalid");

    auto vector_channel = factory.prepared<ferrin::ScalarVectorChannel>("v", {}, 11, 8);
    vector_channel->getItemStore()->set("ChannelType",
                                        config_items::SingleValueConfigItem<channel_config::DAQChannelType>(
                                            static_cast<channel_config::DAQChannelType>(15)));
    QChannel vector(vector_channel);
    EXPECT_EQ(vector.sampleValueType(), QChannel::SAMPLE_VALUE_VECTOR);
    EXPECT_EQ(vector.channelTypeDescription(), "Vector, double * 8, SYNC, FFT");
    EXPECT_TRUE(vector.isVectorChannel());
    EXPECT_FALSE(vector.isScalarChannel());

    QChannel bytes(factory.prepared<ferrin::ScalarVectorChannel>("b", {}, 0, 4));
    EXPECT_EQ(bytes.sampleValueType(), QChannel::SAMPLE_VALUE_BYTE_VECTOR);

    QChannel complex(factory.prepared<ferrin::ComplexVectorChannel>("c", {}, 15, 2));
    EXPECT_EQ(complex.sampleValueType(), QChannel::SAMPLE_VALUE_COMPLEX_VECTOR);
    EXPECT_EQ(complex.channelTypeDescription(), "ComplexVector, cdouble * 2, SYNC, invalid");
    EXPECT_TRUE(complex.isComplexVectorChannel());

    QChannel video(factory.prepared<ferrin::VideoChannel>("cam", {}, 16, 1));
    EXPECT_EQ(video.sampleValueType(), QChannel::SAMPLE_VALUE_VIDEO);
    EXPECT_EQ(video.channelTypeDescription(), "Video, rvideo * 1, SYNC, invalid");
    EXPECT_TRUE(video.isVideoChannel());

    QChannel async_bytes(factory.prepared<ferrin::AsyncByteVectorChannel>("ab", {}, 11, 1));
    EXPECT_EQ(async_bytes.sampleValueType(), QChannel::SAMPLE_VALUE_BYTE_VECTOR);
    EXPECT_EQ(async_bytes.channelTypeDescription(), "Generic, double * 1, SYNC, invalid");

    QChannel can(factory.prepared<ferrin::CANMessageChannel>("can", {}, 12, 1));
    EXPECT_EQ(can.sampleValueType(), QChannel::SAMPLE_VALUE_CAN_MESSAGE);
    QChannel flexray(factory.prepared<ferrin::CANMessageChannel>("fr", {}, 13, 1));
    EXPECT_EQ(flexray.sampleValueType(), QChannel::SAMPLE_VALUE_FLEXRAY_MESSAGE);
    QChannel text(factory.prepared<ferrin::CANMessageChannel>("t", {}, 17, 1));
    EXPECT_EQ(text.sampleValueType(), QChannel::SAMPLE_VALUE_STRING);
    QChannel raw(factory.prepared<ferrin::CANMessageChannel>("r", {}, 0, 1));
    EXPECT_EQ(raw.sampleValueType(), QChannel::SAMPLE_VALUE_VECTOR);
    QChannel other(factory.prepared<ferrin::CANMessageChannel>("o", {}, 5, 1));
    EXPECT_EQ(other.sampleValueType(), QChannel::SAMPLE_VALUE_INVALID);
    QChannel unknown(factory.prepared<ferrin::CANMessageChannel>("u", {}, 99, 1));
    EXPECT_EQ(unknown.channelTypeDescription(), "Generic, invalid * 1, SYNC, invalid");
}

TEST_F(ChannelKinds, AScalarChannelOfAnotherDimensionIsReported)
{
    ferrin::ChannelSetup setup = factory.setup("wide");
    setup.sample_dimension = 3;
    auto channel = std::make_shared<lum::data::SyncScalarChannel>(
        setup, ramp(2), std::make_shared<lum::data::MemoryDataSource>(99, factory.regions, nullptr));
    uni_testing::AssertCapture asserts;
    QChannel qchannel(channel);
    ASSERT_EQ(channel->getSampleDimension(), 3u);
    EXPECT_EQ(qchannel.channelTypeDescription(), "Scalar, double, SYNC, invalid");
    EXPECT_TRUE(asserts.fired("m_ferrin_scalar_channel->getSampleDimension() == 1",
                              "m_ferrin_scalar_channel->getSampleDimension() != 1 (3 != 1)"));
}

TEST_F(ChannelKinds, MetadataByKey)
{
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
    EXPECT_TRUE(qchannel.hasMetaData());
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
