#include <ferrin_core/data_source.h>
#include <ferrin_core/sample.h>

#include <gtest/gtest.h>

#include <variant>

namespace {

TEST(Sample, TypeCodeFollowsTheHeldAlternative)
{
    EXPECT_EQ(daq::Sample(1, 2.5).type, daq::SAMPLE_TYPE_DOUBLE);
    EXPECT_EQ(daq::Sample(1, std::vector<double>{1, 2}).type, daq::SAMPLE_TYPE_VECTOR);
    EXPECT_EQ(daq::Sample(1, std::vector<std::complex<double>>{}).type, daq::SAMPLE_TYPE_COMPLEX_VECTOR);
    EXPECT_EQ(daq::Sample(1, daq::CanFrame{}).type, daq::SAMPLE_TYPE_CAN);
    EXPECT_EQ(daq::Sample(1, daq::VideoFrame{}).type, daq::SAMPLE_TYPE_VIDEO);
    EXPECT_EQ(daq::Sample(1, std::string("x")).type, daq::SAMPLE_TYPE_STRING);
    EXPECT_EQ(daq::Sample(1, daq::FlexRayFrame{}).type, daq::SAMPLE_TYPE_FLEXRAY);
    EXPECT_EQ(daq::Sample(1, daq::ByteVector{1}).type, daq::SAMPLE_TYPE_BYTE_VECTOR);
    EXPECT_EQ(daq::Sample().type, daq::SAMPLE_TYPE_NONE);
}

TEST(Sample, ReadingAnotherAlternativeThrowsTheVariantError)
{
    const daq::SamplePtr sample = daq::makeSample(42, daq::VideoFrame{{1, 2, 3}});
    EXPECT_EQ(sample->timestamp, 42u);
    EXPECT_EQ(std::get<daq::VideoFrame>(sample->value).bytes.size(), 3u);
    // Video bytes are not a generic byte vector, though both hold bytes.
    EXPECT_THROW((void)std::get<daq::ByteVector>(sample->value), std::bad_variant_access);
    EXPECT_THROW((void)std::get<double>(sample->value), std::bad_variant_access);
}

TEST(ReducedEntry, RoundTripsInFieldOrder)
{
    std::uint8_t bytes[ferrin::REDUCED_ENTRY_SIZE];
    ferrin::encodeReducedEntry(ferrin::ReducedValue{-1.0, 4.0, 1.5, 2.25}, bytes);
    const auto value = ferrin::decodeReducedEntry(bytes, sizeof(bytes));
    ASSERT_TRUE(value);
    EXPECT_EQ(value->min, -1.0);
    EXPECT_EQ(value->max, 4.0);
    EXPECT_EQ(value->avg, 1.5);
    EXPECT_EQ(value->rms, 2.25);
    EXPECT_FALSE(ferrin::decodeReducedEntry(bytes, sizeof(bytes) - 1)) << "truncated entry";
}

} // namespace
