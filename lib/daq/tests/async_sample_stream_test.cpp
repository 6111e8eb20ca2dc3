// Seeking and stepping over streams: block boundaries, gaps, the live block and its
// published count, open-ended blocks from a provider, and the reported misuse.
#include <daq/async_sample_iterator.h>
#include <daq_writer/async_sample_writer.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

using daq::AsyncSampleIterator;
using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::AsyncSampleWriter;
using daq::SampleDataBlock;
using daq::SampleDataBlockPtr;

// Samples of 8-byte timestamp and 8-byte value: blocks of 48 bytes hold three.
constexpr std::uint32_t THREE_SAMPLES = 48;

std::shared_ptr<AsyncSampleStream> fixedStream()
{
    return std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(8, sizeof(std::uint64_t)));
}

std::uint64_t valueOf(const AsyncSampleIterator& it)
{
    std::uint64_t value = 0;
    std::memcpy(&value, it.GetValue(), sizeof(value));
    return value;
}

// Blocks [10 20 30] [100 110 120] [200 210], each value being timestamp + 1.
class ClosedBlocksTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        AsyncSampleWriter writer(m_stream, THREE_SAMPLES);
        for (std::uint64_t t : {10, 20, 30, 100, 110, 120, 200, 210}) {
            if (t == 100 || t == 200)
                writer.finish(); // start a new block here, leaving a gap
            ASSERT_TRUE(writer.append<std::uint64_t>(t, t + 1));
        }
    }

    std::uint64_t seekTo(std::uint64_t t, daq::SeekMode mode)
    {
        AsyncSampleIterator it = daq::createIterator(m_stream, t, mode);
        if (!it.isValid())
            return daq::NO_TICK;
        EXPECT_EQ(valueOf(it), it.getTimestamp() + 1);
        return it.getTimestamp();
    }

    std::shared_ptr<AsyncSampleStream> m_stream = fixedStream();
};

TEST_F(ClosedBlocksTest, WriterClosesBlocksAtTheirCapacity)
{
    EXPECT_EQ(m_stream->closedBlockCount(), 3u);
    std::uint32_t count = 99;
    SampleDataBlockPtr block = m_stream->findBlockForSeek(115, count);
    ASSERT_TRUE(block);
    EXPECT_EQ(count, 0u) << "closed blocks are read in full";
    EXPECT_EQ(block->m_first_timestamp, 100u);
    EXPECT_EQ(block->m_time_span, 21u);
    EXPECT_EQ(block->m_sample_count, 3u);
    EXPECT_EQ(block->m_data_length, 48u);
}

TEST_F(ClosedBlocksTest, SeekEachModeOnASample)
{
    EXPECT_EQ(seekTo(110, daq::SEEK_EXACT), 110u);
    EXPECT_EQ(seekTo(110, daq::SEEK_BEFORE), 100u);
    EXPECT_EQ(seekTo(110, daq::SEEK_AFTER), 120u);
    EXPECT_EQ(seekTo(110, daq::SEEK_AT_OR_BEFORE), 110u);
    EXPECT_EQ(seekTo(110, daq::SEEK_AT_OR_AFTER), 110u);
}

TEST_F(ClosedBlocksTest, SeeksAcrossBlockBoundaries)
{
    EXPECT_EQ(seekTo(100, daq::SEEK_BEFORE), 30u);
    EXPECT_EQ(seekTo(30, daq::SEEK_AFTER), 100u);
    EXPECT_EQ(seekTo(120, daq::SEEK_AFTER), 200u);
    EXPECT_EQ(seekTo(200, daq::SEEK_BEFORE), 120u);
}

TEST_F(ClosedBlocksTest, SeeksInAGapBetweenBlocks)
{
    EXPECT_EQ(seekTo(50, daq::SEEK_EXACT), daq::NO_TICK);
    EXPECT_EQ(seekTo(50, daq::SEEK_AT_OR_AFTER), 100u);
    EXPECT_EQ(seekTo(50, daq::SEEK_AFTER), 100u);
    // Past the earlier block's span, still its last sample.
    EXPECT_EQ(seekTo(50, daq::SEEK_AT_OR_BEFORE), 30u);
    EXPECT_EQ(seekTo(50, daq::SEEK_BEFORE), 30u);
    // Inside a block's span between two samples.
    EXPECT_EQ(seekTo(105, daq::SEEK_EXACT), daq::NO_TICK);
    EXPECT_EQ(seekTo(105, daq::SEEK_AT_OR_BEFORE), 100u);
    EXPECT_EQ(seekTo(105, daq::SEEK_AT_OR_AFTER), 110u);
}

TEST_F(ClosedBlocksTest, SeeksAtTheEndsOfTheTickRange)
{
    EXPECT_EQ(seekTo(0, daq::SEEK_BEFORE), daq::NO_TICK);
    EXPECT_EQ(seekTo(0, daq::SEEK_AT_OR_BEFORE), daq::NO_TICK);
    EXPECT_EQ(seekTo(0, daq::SEEK_AT_OR_AFTER), 10u);
    EXPECT_EQ(seekTo(0, daq::SEEK_AFTER), 10u);
    EXPECT_EQ(seekTo(daq::NO_TICK, daq::SEEK_AFTER), daq::NO_TICK);
    EXPECT_EQ(seekTo(daq::NO_TICK, daq::SEEK_AT_OR_AFTER), daq::NO_TICK);
    EXPECT_EQ(seekTo(daq::NO_TICK, daq::SEEK_EXACT), daq::NO_TICK);
    EXPECT_EQ(seekTo(daq::NO_TICK, daq::SEEK_AT_OR_BEFORE), 210u);
    EXPECT_EQ(seekTo(daq::NO_TICK, daq::SEEK_BEFORE), 210u);
    EXPECT_EQ(seekTo(211, daq::SEEK_AT_OR_AFTER), daq::NO_TICK);
}

TEST_F(ClosedBlocksTest, NextStepsThroughEveryBlockInOrder)
{
    AsyncSampleIterator it = daq::createIterator(m_stream, 0, daq::SEEK_AT_OR_AFTER);
    std::vector<std::uint64_t> seen;
    for (bool ok = it.isValid(); ok; ok = it.next())
        seen.push_back(it.getTimestamp());
    EXPECT_EQ(seen, (std::vector<std::uint64_t>{10, 20, 30, 100, 110, 120, 200, 210}));
    EXPECT_TRUE(it.isEnded());
    EXPECT_EQ(it.rangeStart(), daq::NO_TICK);
    EXPECT_EQ(it.rangeEnd(), daq::NO_TICK);
    EXPECT_FALSE(it.next()) << "ended is final";
    EXPECT_FALSE(it.seek(100, daq::SEEK_EXACT)) << "ended is final";
}

TEST_F(ClosedBlocksTest, RangeIsTheCurrentBlocksVisibleSpan)
{
    AsyncSampleIterator it = daq::createIterator(m_stream, 110, daq::SEEK_EXACT);
    EXPECT_EQ(it.rangeStart(), 100u);
    EXPECT_EQ(it.rangeEnd(), 120u);
}

TEST_F(ClosedBlocksTest, FailedCreateGivesEndedIteratorAtTheTarget)
{
    AsyncSampleIterator it = daq::createIterator(m_stream, 50, daq::SEEK_EXACT);
    EXPECT_FALSE(it.isValid());
    EXPECT_TRUE(it.isEnded());
    EXPECT_EQ(it.rangeStart(), 50u);
    EXPECT_EQ(it.rangeEnd(), 50u);
    EXPECT_EQ(it.getTimestamp(), daq::NO_TICK);
}

TEST_F(ClosedBlocksTest, ValueAccessWithoutSampleThrows)
{
    AsyncSampleIterator it = daq::createIterator(m_stream, 50, daq::SEEK_EXACT);
    try {
        it.GetValue();
        ADD_FAILURE() << "GetValue did not throw";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "daq.AsyncSampleIterator.GetValue - no valid block available");
    }
    try {
        it.GetValueSize();
        ADD_FAILURE() << "GetValueSize did not throw";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "daq.AsyncSampleIterator.GetValueSize - no valid block available");
    }
}

TEST_F(ClosedBlocksTest, UnknownSeekModeIsReportedAndFindsNothing)
{
    uni_testing::AssertCapture capture;
    AsyncSampleIterator it = daq::createIterator(m_stream, 100, static_cast<daq::SeekMode>(7));
    EXPECT_FALSE(it.isValid());
    EXPECT_TRUE(capture.fired("false"));
}

TEST_F(ClosedBlocksTest, ReseekingMovesTheSameIterator)
{
    AsyncSampleIterator it = daq::createIterator(m_stream, 210, daq::SEEK_EXACT);
    ASSERT_TRUE(it.isValid());
    EXPECT_TRUE(it.seek(20, daq::SEEK_EXACT));
    EXPECT_EQ(it.getTimestamp(), 20u);
    EXPECT_TRUE(it.next());
    EXPECT_EQ(it.getTimestamp(), 30u);
    EXPECT_FALSE(it.seek(25, daq::SEEK_EXACT));
    EXPECT_FALSE(it.isValid());
    EXPECT_FALSE(it.next()) << "no sample to step from";
}

TEST(LiveBlock, ReaderSeesOnlyPublishedSamples)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream);
    writer.append<std::uint64_t>(5, 6);
    writer.append<std::uint64_t>(7, 8);
    EXPECT_FALSE(daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER).isValid()) << "nothing published yet";

    writer.publish();
    writer.append<std::uint64_t>(9, 10); // appended, not published
    AsyncSampleIterator last = daq::createIterator(stream, daq::NO_TICK, daq::SEEK_AT_OR_BEFORE);
    ASSERT_TRUE(last.isValid());
    EXPECT_EQ(last.getTimestamp(), 7u);
    EXPECT_EQ(last.rangeEnd(), 7u);
    EXPECT_FALSE(daq::createIterator(stream, 9, daq::SEEK_EXACT).isValid());
    EXPECT_FALSE(daq::createIterator(stream, 7, daq::SEEK_AFTER).isValid());

    std::uint32_t count = 0;
    SampleDataBlockPtr live = stream->findBlockForSeek(6, count);
    ASSERT_TRUE(live);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(stream->closedBlockCount(), 0u);
}

TEST(LiveBlock, NextOnLastPublishedSampleEndsWithoutLaterBlock)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream);
    writer.append<std::uint64_t>(5, 6);
    writer.append<std::uint64_t>(7, 8);
    writer.publish();
    writer.append<std::uint64_t>(9, 10);
    AsyncSampleIterator it = daq::createIterator(stream, 7, daq::SEEK_EXACT);
    ASSERT_TRUE(it.isValid());
    EXPECT_FALSE(it.next());
    EXPECT_TRUE(it.isEnded());
}

// Regression: a reader that had indexed the live block skipped the samples published
// into it later once the writer had closed it and started another block.
TEST(LiveBlock, SamplesPublishedAfterIndexingAreNotSkipped)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream, THREE_SAMPLES);
    writer.append<std::uint64_t>(1, 2);
    writer.publish();
    AsyncSampleIterator it = daq::createIterator(stream, 1, daq::SEEK_EXACT);
    ASSERT_TRUE(it.isValid());

    writer.append<std::uint64_t>(2, 3);
    writer.publish(); // the live block grew
    ASSERT_TRUE(it.next());
    EXPECT_EQ(it.getTimestamp(), 2u);
    EXPECT_EQ(it.rangeEnd(), 2u);

    writer.append<std::uint64_t>(3, 4);
    writer.append<std::uint64_t>(4, 5); // closes [1 2 3], starts [4]
    writer.publish();
    std::vector<std::uint64_t> seen;
    while (it.next())
        seen.push_back(it.getTimestamp());
    EXPECT_EQ(seen, (std::vector<std::uint64_t>{3, 4}));
}

TEST(LiveBlock, LiveBlockFollowsTheClosedOnes)
{
    auto stream = fixedStream();
    AsyncSampleWriter writer(stream, THREE_SAMPLES);
    for (std::uint64_t t = 1; t <= 5; ++t)
        writer.append<std::uint64_t>(t * 10, t);
    writer.publish();
    EXPECT_EQ(stream->closedBlockCount(), 1u);
    AsyncSampleIterator it = daq::createIterator(stream, 30, daq::SEEK_EXACT);
    ASSERT_TRUE(it.next());
    EXPECT_EQ(it.getTimestamp(), 40u) << "from the closed block into the live one";
    EXPECT_EQ(daq::createIterator(stream, 35, daq::SEEK_AT_OR_AFTER).getTimestamp(), 40u);
    EXPECT_EQ(daq::createIterator(stream, 45, daq::SEEK_AT_OR_BEFORE).getTimestamp(), 40u);
    EXPECT_EQ(daq::createIterator(stream, 50, daq::SEEK_BEFORE).getTimestamp(), 40u);
}

TEST(LiveBlock, HeldBlockOutlivesTheWriter)
{
    auto stream = fixedStream();
    AsyncSampleIterator it;
    {
        auto writer = std::make_unique<AsyncSampleWriter>(stream);
        writer->append<std::uint64_t>(3, 33);
        writer->publish();
        it = daq::createIterator(stream, 3, daq::SEEK_EXACT);
    }
    stream.reset(); // the iterator keeps stream and block alive
    ASSERT_TRUE(it.isValid());
    EXPECT_EQ(valueOf(it), 33u);
}

TEST(VariableSamples, ValuesAndSizesRoundTrip)
{
    auto stream = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(4, 2));
    AsyncSampleWriter writer(stream, 64);
    const std::vector<std::string> texts = {"", "a", "bus frame", std::string(40, 'x'), "end"};
    for (std::size_t i = 0; i < texts.size(); ++i)
        ASSERT_TRUE(
            writer.appendValue(100 + i, texts[i].data(), static_cast<std::uint32_t>(texts[i].size())));
    writer.finish();

    AsyncSampleIterator it = daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER);
    for (std::size_t i = 0; i < texts.size(); ++i, it.next()) {
        ASSERT_TRUE(it.isValid()) << i;
        EXPECT_EQ(it.getTimestamp(), 100 + i);
        ASSERT_EQ(it.GetValueSize(), texts[i].size());
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(it.GetValue()), it.GetValueSize()), texts[i]);
    }
    EXPECT_FALSE(it.isValid());
    EXPECT_GE(stream->closedBlockCount(), 2u) << "64-byte blocks cannot hold them all";
}

// Blocks from elsewhere, such as a stored file, with counts left open.
class VectorProvider : public daq::BlockProvider
{
public:
    void add(SampleDataBlockPtr block) { m_blocks[block->m_first_timestamp] = std::move(block); }

    SampleDataBlockPtr findBlockContaining(std::uint64_t t) override
    {
        SampleDataBlockPtr block = findLastBlockAtOrBefore(t);
        return block && t - block->m_first_timestamp < block->m_time_span ? block : SampleDataBlockPtr();
    }
    SampleDataBlockPtr findFirstBlockAfter(std::uint64_t t) override
    {
        auto it = m_blocks.upper_bound(t);
        return it == m_blocks.end() ? SampleDataBlockPtr() : it->second;
    }
    SampleDataBlockPtr findLastBlockAtOrBefore(std::uint64_t t) override
    {
        auto it = m_blocks.upper_bound(t);
        return it == m_blocks.begin() ? SampleDataBlockPtr() : std::prev(it)->second;
    }

private:
    std::map<std::uint64_t, SampleDataBlockPtr> m_blocks;
};

// A block of 8-byte timestamps and 8-byte values written by hand, count open.
SampleDataBlockPtr openBlock(const std::vector<std::uint64_t>& timestamps, std::uint64_t first,
                             std::uint64_t span, std::uint32_t data_samples)
{
    SampleDataBlockPtr block = daq::DataBlockPool::instance()->acquire(16 * 16);
    for (std::size_t i = 0; i < timestamps.size(); ++i) {
        std::memcpy(block->m_data + 16 * i, &timestamps[i], 8);
        std::memcpy(block->m_data + 16 * i + 8, &timestamps[i], 8);
    }
    block->m_sample_count = SampleDataBlock::OPEN_COUNT;
    block->m_first_timestamp = first;
    block->m_time_span = span;
    block->m_data_length = 16 * data_samples;
    return block;
}

TEST(OpenEndedBlocks, WalkedUntilTimestampsOrDataLengthStop)
{
    auto provider = std::make_shared<VectorProvider>();
    // Stopped by the span: 40 is past it, though the data holds it.
    provider->add(openBlock({10, 20, 30, 40}, 10, 21, 4));
    // Stopped by the data length: two of three samples written.
    provider->add(openBlock({100, 110, 120}, 100, 1000, 2));
    auto stream =
        std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(8, sizeof(std::uint64_t)), provider);

    AsyncSampleIterator it = daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER);
    std::vector<std::uint64_t> seen;
    for (bool ok = it.isValid(); ok; ok = it.next())
        seen.push_back(it.getTimestamp());
    EXPECT_EQ(seen, (std::vector<std::uint64_t>{10, 20, 30, 100, 110}));

    AsyncSampleIterator in_span = daq::createIterator(stream, 25, daq::SEEK_AT_OR_BEFORE);
    EXPECT_EQ(in_span.getTimestamp(), 20u);
    EXPECT_EQ(in_span.rangeEnd(), 30u) << "the index is shorter than the open count: the span's end";
    EXPECT_EQ(daq::createIterator(stream, 500, daq::SEEK_AT_OR_BEFORE).getTimestamp(), 110u);
    EXPECT_EQ(daq::createIterator(stream, 30, daq::SEEK_AFTER).getTimestamp(), 100u);
}

TEST(OpenEndedBlocks, SampleBeyondTheBlocksSpanIsReportedOnNext)
{
    auto provider = std::make_shared<VectorProvider>();
    // The span ends at 14, but the walk takes 20 before it notices.
    provider->add(openBlock({10, 12, 20}, 10, 5, 3));
    auto stream =
        std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(8, sizeof(std::uint64_t)), provider);
    AsyncSampleIterator it = daq::createIterator(stream, 20, daq::SEEK_AT_OR_BEFORE);
    ASSERT_TRUE(it.isValid());
    uni_testing::AssertCapture capture;
    EXPECT_FALSE(it.next());
    EXPECT_TRUE(capture.fired("last_sample_timestamp >= old_last_sample_timestamp"));
}

} // namespace
