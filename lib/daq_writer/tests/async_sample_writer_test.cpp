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

using daq::AsyncSampleIterator;
using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::AsyncSampleWriter;
using daq::SampleDataBlockPtr;

std::shared_ptr<AsyncSampleStream> fixedStream(std::uint32_t timestamp_size = 8)
{
    return std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(timestamp_size, sizeof(double)));
}

std::vector<std::uint64_t> allTimestamps(const std::shared_ptr<AsyncSampleStream>& stream)
{
    std::vector<std::uint64_t> seen;
    AsyncSampleIterator it = daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER);
    for (bool ok = it.isValid(); ok; ok = it.next())
        seen.push_back(it.getTimestamp());
    return seen;
}

TEST(AsyncSampleWriterRefuses, TimestampGoingBack)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream);
    ASSERT_TRUE(writer.append(10, 1.0));
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(writer.append(9, 2.0));
    EXPECT_TRUE(capture.fired("!m_has_last || timestamp >= m_last_timestamp", "goes back"));
    EXPECT_EQ(writer.appendedCount(), 1u);
    EXPECT_EQ(writer.lastTimestamp(), 10u);
}

TEST(AsyncSampleWriterRefuses, TimestampWiderThanTheField)
{
    auto stream = fixedStream(2);
    AsyncSampleWriter writer(stream);
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(writer.append(0x10000, 1.0));
    EXPECT_TRUE(capture.fired("timestamp <= m_stream->timestampMask()", "65536"));
    EXPECT_TRUE(writer.append(0xFFFF, 1.0));
}

TEST(AsyncSampleWriterRefuses, ValueOfTheWrongSize)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream);
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(writer.append<float>(1, 1.0f));
    EXPECT_EQ(capture.size(), 1u);

    auto variable = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(8, 1));
    AsyncSampleWriter variable_writer(variable, 4096 - 48);
    std::vector<std::uint8_t> big(256, 1);
    EXPECT_FALSE(variable_writer.appendValue(1, big.data(), 256)) << "a one-byte size field holds up to 255";
    EXPECT_TRUE(variable_writer.appendValue(1, big.data(), 255));
    EXPECT_EQ(capture.size(), 2u);
}

TEST(AsyncSampleWriterRefuses, EqualTimestampsAcrossABlockBoundary)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream, 32); // two samples per block
    EXPECT_TRUE(writer.append(5, 1.0));
    EXPECT_TRUE(writer.append(5, 2.0)) << "equal timestamps within one block are fine";
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(writer.append(5, 3.0));
    EXPECT_TRUE(capture.fired("!m_has_last || timestamp != m_last_timestamp", "do not fit into one block"));
    EXPECT_TRUE(writer.append(6, 3.0));
    writer.finish();
    EXPECT_EQ(allTimestamps(stream), (std::vector<std::uint64_t>{5, 5, 6}));
}

TEST(AsyncSampleWriterBlocks, FullBlocksCloseIntoTheMap)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream, 48); // three samples per block
    for (std::uint64_t t = 1; t <= 7; ++t)
        ASSERT_TRUE(writer.append(t * 2, double(t)));
    EXPECT_EQ(stream->closedBlockCount(), 2u);
    EXPECT_EQ(writer.visibleCount(), 6u) << "closing a block publishes it";
    writer.finish();
    EXPECT_EQ(stream->closedBlockCount(), 3u);
    EXPECT_EQ(writer.visibleCount(), 7u);

    std::uint32_t count = 0;
    SampleDataBlockPtr last = stream->findBlockForSeek(14, count);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->m_sample_count, 1u);
    EXPECT_EQ(last->m_first_timestamp, 14u);
    EXPECT_EQ(last->m_time_span, 1u);
    EXPECT_EQ(last->m_data_length, 16u);
}

TEST(AsyncSampleWriterBlocks, OversizedSampleGetsAPageSizedBlock)
{
    auto stream = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(8, 4));
    AsyncSampleWriter writer(stream, 64);
    std::vector<std::uint8_t> frame(5000);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<std::uint8_t>(i * 7);
    ASSERT_TRUE(writer.appendValue(1, frame.data(), 5000));
    writer.finish();
    AsyncSampleIterator it = daq::createIterator(stream, 1, daq::SEEK_EXACT);
    ASSERT_TRUE(it.isValid());
    ASSERT_EQ(it.GetValueSize(), 5000u);
    EXPECT_EQ(std::memcmp(it.GetValue(), frame.data(), 5000), 0);
    std::uint32_t count = 0;
    EXPECT_EQ(stream->findBlockForSeek(1, count)->m_payload_capacity, 2 * 4096u - 48);
}

TEST(AsyncSampleWriterBlocks, NarrowTimestampsAreStoredTruncated)
{
    auto stream = fixedStream(3);
    AsyncSampleWriter writer(stream);
    ASSERT_TRUE(writer.append(0xABCDEF, 0.5));
    writer.finish();
    AsyncSampleIterator it = daq::createIterator(stream, 0xABCDEF, daq::SEEK_EXACT);
    ASSERT_TRUE(it.isValid());
    // The byte after the three-byte field is the value's first byte, not part of the timestamp.
    EXPECT_EQ(it.currentSample()[0], 0xEF);
    EXPECT_EQ(it.currentSample()[2], 0xAB);
    double value = 0;
    std::memcpy(&value, it.GetValue(), sizeof(value));
    EXPECT_EQ(value, 0.5);
}

TEST(AsyncSampleWriterPublishing, NothingIsVisibleBeforePublish)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream);
    writer.append(1, 1.0);
    writer.append(2, 2.0);
    EXPECT_EQ(writer.visibleCount(), 0u);
    EXPECT_TRUE(allTimestamps(stream).empty());
    writer.publish();
    EXPECT_EQ(writer.visibleCount(), 2u);
    EXPECT_EQ(allTimestamps(stream), (std::vector<std::uint64_t>{1, 2}));
    EXPECT_EQ(stream->closedBlockCount(), 0u) << "published, still live";
}

TEST(AsyncSampleWriterPublishing, DestructionFinishesSoNothingIsLost)
{
    auto stream = fixedStream();
    {
        AsyncSampleWriter writer(stream);
        writer.append(1, 1.0);
        writer.append(3, 2.0);
    }
    EXPECT_EQ(allTimestamps(stream), (std::vector<std::uint64_t>{1, 3}));
    EXPECT_EQ(stream->closedBlockCount(), 1u);
}

TEST(AsyncSampleWriterPublishing, LaterWriterGoesOnAfterTheExistingBlocks)
{
    auto stream = fixedStream();
    {
        AsyncSampleWriter writer(stream);
        writer.append(10, 1.0);
    }
    AsyncSampleWriter writer(stream);
    EXPECT_EQ(writer.lastTimestamp(), 10u);
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(writer.append(10, 2.0)) << "would start a second block at 10";
    EXPECT_TRUE(writer.append(11, 2.0));
    writer.finish();
    EXPECT_EQ(allTimestamps(stream), (std::vector<std::uint64_t>{10, 11}));
}

} // namespace
