// The writer used by the host and by tests: what it refuses, how it fills and
// closes blocks, and that it publishes nothing before it is asked to.
#include <daq/async_sample_iterator.h>
#include <daq_writer/async_sample_writer.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::AsyncSampleWriter;
using Ticks = std::vector<std::uint64_t>;

std::shared_ptr<AsyncSampleStream> fixedStream(std::uint32_t timestamp_size = 8)
{
    return std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(timestamp_size, sizeof(double)));
}

Ticks allTimestamps(const std::shared_ptr<AsyncSampleStream>& stream)
{
    Ticks seen;
    daq::AsyncSampleIterator it = daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER);
    for (bool ok = it.isValid(); ok; ok = it.next())
        seen.push_back(it.getTimestamp());
    return seen;
}

TEST(AsyncSampleWriterRefuses, WhatTheStreamCannotHoldWithTheReason)
{
    auto stream = fixedStream(2);
    AsyncSampleWriter writer(stream, 20); // two samples of 10 bytes per block
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(writer.append(0x10000, 1.0));
    EXPECT_TRUE(asserts.fired("timestamp <= m_stream->timestampMask()", "65536"));
    ASSERT_TRUE(writer.append(0xFFF0, 1.0));
    EXPECT_FALSE(writer.append(0xFFEF, 2.0));
    EXPECT_TRUE(asserts.fired("!m_has_last || timestamp >= m_last_timestamp", "goes back"));
    EXPECT_FALSE(writer.append<float>(0xFFF0, 1.0f));
    EXPECT_TRUE(asserts.fired("value_size == m_layout.m_fixed_sample_size", "value of 4 bytes"));
    ASSERT_TRUE(writer.append(0xFFF0, 2.0)) << "equal timestamps within one block are fine";
    EXPECT_FALSE(writer.append(0xFFF0, 3.0));
    EXPECT_TRUE(asserts.fired("!m_has_last || timestamp != m_last_timestamp", "do not fit into one block"));
    EXPECT_EQ(writer.appendedCount(), 2u);
    EXPECT_EQ(writer.lastTimestamp(), 0xFFF0u);

    const std::vector<std::uint8_t> big(300, 1);
    const struct
    {
        std::uint32_t size_field, value_size;
        bool accepted;
    } values[] = {{1, 256, false}, {1, 255, true}, {2, 300, true}};
    for (const auto& v : values) {
        auto variable = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(8, v.size_field));
        EXPECT_EQ(AsyncSampleWriter(variable, 4096 - 48).appendValue(1, big.data(), v.value_size), v.accepted)
            << v.size_field << " " << v.value_size;
    }
    AsyncSampleWriter unusable(std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(0, 8)));
    EXPECT_FALSE(unusable.append(1, 1.0));
}

TEST(AsyncSampleWriterBlocks, FullBlocksCloseAndPublishAndABlockFitsOneSampleExactly)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream, 48); // three samples per block
    for (std::uint64_t t = 1; t <= 7; ++t)
        ASSERT_TRUE(writer.append(t * 2, double(t)));
    EXPECT_EQ(stream->closedBlockCount(), 2u);
    EXPECT_EQ(writer.visibleCount(), 6u) << "closing a block publishes it";
    writer.finish();
    EXPECT_EQ(writer.visibleCount(), 7u);
    std::uint32_t count = 0;
    daq::SampleDataBlockPtr last = stream->findBlockForSeek(14, count);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->m_sample_count, 1u);
    EXPECT_EQ(last->m_time_span, 1u);
    EXPECT_EQ(last->m_data_length, 16u);
    EXPECT_EQ(stream->findBlockForSeek(5, count)->m_time_span, 5u); // 2 to 6

    auto exact = fixedStream();
    AsyncSampleWriter one_each(exact, 16);
    for (std::uint64_t t = 1; t <= 3; ++t)
        one_each.append(t, 0.0);
    EXPECT_EQ(exact->closedBlockCount(), 2u);
}

TEST(AsyncSampleWriterBlocks, OversizedSamplesGetAPageSizedBlockAndNarrowTimestampsAreTruncated)
{
    auto stream = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(8, 4));
    AsyncSampleWriter writer(stream, 64);
    std::vector<std::uint8_t> frame(5000);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<std::uint8_t>(i * 7);
    ASSERT_TRUE(writer.appendValue(1, frame.data(), 5000));
    writer.finish();
    daq::AsyncSampleIterator it = daq::createIterator(stream, 1, daq::SEEK_EXACT);
    ASSERT_EQ(it.GetValueSize(), 5000u);
    EXPECT_EQ(std::memcmp(it.GetValue(), frame.data(), 5000), 0);
    std::uint32_t count = 0;
    EXPECT_EQ(stream->findBlockForSeek(1, count)->m_payload_capacity, 2 * 4096u - 48);

    auto narrow = fixedStream(3);
    AsyncSampleWriter narrow_writer(narrow);
    ASSERT_TRUE(narrow_writer.append(0xABCDEF, 0.5));
    narrow_writer.finish();
    daq::AsyncSampleIterator at = daq::createIterator(narrow, 0xABCDEF, daq::SEEK_EXACT);
    // The byte after the three-byte field is the value's first byte, not part of the timestamp.
    const std::uint8_t expected[] = {0xEF, 0xCD, 0xAB, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F};
    EXPECT_EQ(std::memcmp(at.currentSample(), expected, sizeof(expected)), 0);
}

TEST(AsyncSampleWriterBlocks, SampleBytesAreLaidOutAsTheLayoutSays)
{
    uni_testing::AssertCapture asserts; // an eight-byte size field is reported on every read
    auto wide = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(4, 8));
    AsyncSampleWriter wide_writer(wide);
    EXPECT_FALSE(wide_writer.appendValue(1, nullptr, 1));
    ASSERT_TRUE(wide_writer.appendValue(0x01020304, "a", 1));
    wide_writer.finish();
    const std::uint8_t wide_bytes[] = {4, 3, 2, 1, 1, 0, 0, 0, 0, 0, 0, 0, 'a'};
    EXPECT_EQ(
        std::memcmp(daq::createIterator(wide, 0, daq::SEEK_AT_OR_AFTER).currentSample(), wide_bytes, 13), 0);

    AsyncSampleLayout value_first = AsyncSampleLayout::fixedSize(2, 2);
    value_first.m_timestamp_field.m_offset = 2;
    value_first.m_value_offset = 0;
    auto stream = std::make_shared<AsyncSampleStream>(value_first);
    AsyncSampleWriter writer(stream);
    writer.append<std::uint16_t>(5, 0xAAAA);
    writer.append<std::uint16_t>(6, 0xBBBB);
    writer.finish();
    const std::uint8_t bytes[] = {0xAA, 0xAA, 5, 0, 0xBB, 0xBB, 6, 0};
    EXPECT_EQ(std::memcmp(daq::createIterator(stream, 5, daq::SEEK_EXACT).currentSample(), bytes, 8), 0);
}

TEST(AsyncSampleWriterPublishing, NothingIsVisibleBeforePublishNothingIsLostAndALaterWriterGoesOn)
{
    auto stream = fixedStream();
    {
        AsyncSampleWriter writer(stream);
        writer.append(1, 1.0);
        writer.append(2, 2.0);
        EXPECT_TRUE(allTimestamps(stream).empty());
        writer.publish();
        EXPECT_EQ(allTimestamps(stream), (Ticks{1, 2}));
        EXPECT_EQ(stream->closedBlockCount(), 0u) << "published, still live";
        writer.append(10, 3.0);
    }
    EXPECT_EQ(allTimestamps(stream), (Ticks{1, 2, 10})) << "destruction finishes";
    AsyncSampleWriter writer(stream);
    EXPECT_EQ(writer.lastTimestamp(), 10u);
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(writer.append(10, 2.0)) << "would start a second block at 10";
    EXPECT_TRUE(writer.append(11, 2.0));
    writer.finish();
    EXPECT_EQ(allTimestamps(stream), (Ticks{1, 2, 10, 11}));
}

} // namespace
