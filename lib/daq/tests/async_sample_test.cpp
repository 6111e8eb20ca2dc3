// Layouts, the fields of one sample, open-ended blocks and the iterator's edges; the seek
// modes themselves are checked against a model in seek_model_test.cpp.
#include <daq/async_sample_iterator.h>
#include <daq_data_block/data_block_pool.h>
#include <daq_writer/async_sample_writer.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <stdexcept>

namespace {

using daq::AsyncSampleIterator;
using daq::AsyncSampleLayout;
using daq::AsyncSampleStream;
using daq::SampleDataBlock;
using daq::SampleDataBlockPtr;

// Writes a little-endian field by hand, as an outside writer would.
void put(std::uint8_t* at, std::uint64_t value, std::uint32_t size)
{
    std::memcpy(at, &value, size);
}

TEST(AsyncSampleLayout, ValidityMaskAndFieldsReadFromBytes)
{
    const AsyncSampleLayout fixed = AsyncSampleLayout::fixedSize(8, 8);
    EXPECT_EQ(fixed.m_sample_header_size, 16u);
    EXPECT_EQ(fixed.m_value_offset, 8u);
    EXPECT_TRUE(AsyncSampleLayout::variableSize(2, 0).hasFixedSize()) << "size field 0 means fixed size";
    EXPECT_FALSE(AsyncSampleLayout::variableSize(4, 2).hasFixedSize());
    const std::pair<std::uint32_t, std::uint64_t> masks[] = {
        {1, 0xFF}, {3, 0xFFFFFF}, {4, 0xFFFFFFFF}, {7, 0xFFFFFFFFFFFFFF}, {8, ~0ull}};
    for (const auto& [size, mask] : masks)
        EXPECT_EQ(AsyncSampleLayout::fixedSize(size, 4).timestampMask(), mask) << size;
    EXPECT_FALSE(AsyncSampleLayout::fixedSize(0, 4).isValid());
    EXPECT_TRUE(AsyncSampleLayout::fixedSize(1, 0).isValid()) << "a one-byte sample";
    EXPECT_FALSE(AsyncSampleLayout::fixedSize(9, 4).isValid());
    AsyncSampleLayout value_outside = AsyncSampleLayout::fixedSize(8, 8);
    value_outside.m_value_offset = 12;
    EXPECT_FALSE(value_outside.isValid());
    AsyncSampleLayout timestamp_to_the_end = AsyncSampleLayout::variableSize(4, 2);
    timestamp_to_the_end.m_timestamp_field.m_offset = 2;
    EXPECT_TRUE(timestamp_to_the_end.isValid());
    timestamp_to_the_end.m_timestamp_field.m_offset = 3;
    EXPECT_FALSE(timestamp_to_the_end.isValid());
    {
        uni_testing::AssertCapture asserts;
        AsyncSampleStream stream(AsyncSampleLayout::fixedSize(0, 4));
        EXPECT_TRUE(asserts.fired("layout.isValid()"));
        std::uint32_t count = 0;
        EXPECT_FALSE(stream.findBlockBefore(~0ull, count));
    }
    // Bytes after each field are set, so reading too wide would show.
    std::uint8_t sample[16];
    std::memset(sample, 0xEE, sizeof(sample));
    put(sample, 0x123456, 3);
    put(sample + 8, 0x0203, 2);
    EXPECT_EQ(AsyncSampleStream(AsyncSampleLayout::fixedSize(3, 8)).getTimestamp(sample), 0x123456u);
    EXPECT_EQ(AsyncSampleStream(AsyncSampleLayout::fixedSize(8, 6)).getSampleSize(sample), 6u);
    EXPECT_EQ(AsyncSampleStream(AsyncSampleLayout::variableSize(8, 2)).getSampleSize(sample), 0x0203u);
    put(sample + 8, 0x01020304, 4);
    EXPECT_EQ(AsyncSampleStream(AsyncSampleLayout::variableSize(8, 4)).getSampleSize(sample), 0x01020304u);
    put(sample + 8, 0x11, 8);
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(AsyncSampleStream(AsyncSampleLayout::variableSize(8, 8)).getSampleSize(sample), 0x11u);
    EXPECT_TRUE(asserts.fired("m_sample_size_field.m_size < sizeof(std::uint32_t)"));
}

TEST(AsyncSampleWalk, OpenEndedWalkStopsAtTheSpanOrTheDataAndTheIndexGoesOn)
{
    SampleDataBlockPtr block = daq::DataBlockPool::instance()->acquire(256);
    AsyncSampleStream stream(AsyncSampleLayout::fixedSize(2, 2)); // 4-byte samples
    for (std::uint64_t i = 0; i < 6; ++i)
        put(block->m_data + 4 * i, 0x0004 + i, 2);
    block->m_sample_count = SampleDataBlock::OPEN_COUNT;
    block->m_first_timestamp = 0x10004; // stored truncated to 0x0004
    block->m_time_span = 3;             // the sample at 0x0006 is the last
    block->m_data_length = 24;
    std::vector<const std::uint8_t*> index;
    EXPECT_EQ(stream.extendIndex(*block, index, 0), 3u);
    block->m_time_span = 100; // now the data ends after five samples
    block->m_data_length = 20;
    EXPECT_EQ(stream.extendIndex(*block, index, 0), 2u) << "on from the last entry";
    EXPECT_EQ(stream.nextSample(*block, index[4], nullptr, true), nullptr);
    EXPECT_EQ(stream.nextSample(*block, index[4], nullptr, false), block->m_data + 20)
        << "the caller's count";
    block->m_sample_count = 5;
    uni_testing::AssertCapture asserts;
    EXPECT_EQ(stream.extendIndex(*block, index, 3), 0u);
    EXPECT_TRUE(asserts.fired("nr_entries_before<=max_samples"));
    // A variable sample that ends exactly at the end of the data is whole; one cut off is not.
    AsyncSampleStream variable(AsyncSampleLayout::variableSize(4, 1)); // 5-byte headers
    put(block->m_data, 1, 4);
    put(block->m_data + 4, 3, 1);
    put(block->m_data + 8, 2, 4);
    put(block->m_data + 12, 2, 1);
    block->m_first_timestamp = 1;
    block->m_sample_count = SampleDataBlock::OPEN_COUNT;
    for (const auto& [length, samples] : {std::pair<std::uint32_t, std::uint32_t>{15, 2}, {14, 1}}) {
        block->m_data_length = length;
        index.clear();
        EXPECT_EQ(variable.extendIndex(*block, index, 0), samples) << length;
    }
    block->m_data_length = 0;
    EXPECT_EQ(stream.nextSample(*block, nullptr, nullptr, true), nullptr) << "no data, no first sample";
}

// Blocks from elsewhere, such as a stored file, with counts left open.
class VectorProvider : public daq::BlockProvider
{
public:
    void add(const std::vector<std::uint64_t>& timestamps, std::uint64_t span, std::uint32_t data_samples)
    {
        SampleDataBlockPtr block = daq::DataBlockPool::instance()->acquire(256);
        for (std::size_t i = 0; i < timestamps.size(); ++i) {
            put(block->m_data + 16 * i, timestamps[i], 8);
            put(block->m_data + 16 * i + 8, timestamps[i], 8);
        }
        block->m_sample_count = SampleDataBlock::OPEN_COUNT;
        block->m_first_timestamp = timestamps.front();
        block->m_time_span = span;
        block->m_data_length = 16 * data_samples;
        m_blocks[timestamps.front()] = block;
    }
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

TEST(AsyncSampleWalk, BlocksOfAProviderAreWalkedUntilTheirSpanOrData)
{
    auto provider = std::make_shared<VectorProvider>();
    provider->add({10, 20, 30, 40}, 21, 4);  // 40 is past the span
    provider->add({100, 110, 120}, 1000, 2); // two of three written
    provider->add({2000, 2002, 2010}, 5, 3); // the walk meets 2010 past the span
    auto stream = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(8, 8), provider);
    AsyncSampleIterator it = daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER);
    std::vector<std::uint64_t> seen;
    for (bool ok = it.isValid(); ok && it.getTimestamp() < 2000; ok = it.next())
        seen.push_back(it.getTimestamp());
    EXPECT_EQ(seen, (std::vector<std::uint64_t>{10, 20, 30, 100, 110}));
    AsyncSampleIterator in_span = daq::createIterator(stream, 25, daq::SEEK_AT_OR_BEFORE);
    EXPECT_EQ(in_span.getTimestamp(), 20u);
    EXPECT_EQ(in_span.rangeEnd(), 30u) << "the index is shorter than the open count: the span's end";
    EXPECT_EQ(daq::createIterator(stream, 500, daq::SEEK_AT_OR_BEFORE).getTimestamp(), 110u);
    AsyncSampleIterator beyond = daq::createIterator(stream, 2010, daq::SEEK_AT_OR_BEFORE);
    ASSERT_TRUE(beyond.isValid());
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(beyond.next());
    EXPECT_TRUE(asserts.fired("last_sample_timestamp >= old_last_sample_timestamp"));
}

TEST(AsyncSampleIteratorEdges, MisuseIsReportedAndAnEndedIteratorStaysEnded)
{
    auto stream = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::variableSize(4, 2));
    daq::AsyncSampleWriter writer(stream, 64);
    const std::string texts[] = {"", "bus frame", std::string(40, 'x'), "end"};
    for (std::uint32_t i = 0; i < 4; ++i)
        ASSERT_TRUE(
            writer.appendValue(100 + 10 * i, texts[i].data(), static_cast<std::uint32_t>(texts[i].size())));
    writer.finish();
    AsyncSampleIterator it = daq::createIterator(stream, 0, daq::SEEK_AT_OR_AFTER);
    for (const std::string& text : texts) {
        ASSERT_EQ(it.GetValueSize(), text.size());
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(it.GetValue()), it.GetValueSize()), text);
        it.next();
    }
    EXPECT_TRUE(it.isEnded());
    EXPECT_FALSE(it.seek(100, daq::SEEK_EXACT)) << "ended is final";
    AsyncSampleIterator again =
        daq::createIterator(stream, 115, daq::SEEK_AT_OR_AFTER); // blocks [100 110] [120 130]
    EXPECT_EQ(again.getTimestamp(), 120u);
    EXPECT_EQ(again.rangeEnd(), 130u) << "a closed block found ahead is read in full";
    EXPECT_TRUE(again.seek(110, daq::SEEK_EXACT));
    EXPECT_FALSE(again.seek(115, daq::SEEK_EXACT)) << "in the gap between blocks";
    AsyncSampleIterator missed = daq::createIterator(stream, 105, daq::SEEK_EXACT);
    EXPECT_EQ(missed.rangeStart(), 105u);
    EXPECT_EQ(missed.getTimestamp(), daq::NO_TICK);
    for (const auto& [call, what] :
         {std::pair<std::function<void()>, const char*>{[&] { missed.GetValue(); }, "GetValue"},
          {[&] { missed.GetValueSize(); }, "GetValueSize"}}) {
        try {
            call();
            ADD_FAILURE() << what;
        } catch (const std::out_of_range& e) {
            EXPECT_EQ(std::string(e.what()),
                      std::string("daq.AsyncSampleIterator.") + what + " - no valid block available");
        }
    }
    uni_testing::AssertCapture asserts;
    EXPECT_FALSE(again.seek(100, static_cast<daq::SeekMode>(7)));
    EXPECT_FALSE(again.isValid());
    EXPECT_TRUE(asserts.fired("false"));
}

// A reader that had indexed the live block once skipped the samples published into it
// later when the writer had closed it and started another block.
TEST(AsyncSampleIteratorEdges, SamplesPublishedAfterIndexingAreNotSkippedAndTheBlockOutlivesTheWriter)
{
    auto stream = std::make_shared<AsyncSampleStream>(AsyncSampleLayout::fixedSize(8, 8));
    AsyncSampleIterator it;
    {
        daq::AsyncSampleWriter writer(stream, 48);
        writer.append<std::uint64_t>(1, 2);
        writer.publish();
        it = daq::createIterator(stream, 1, daq::SEEK_EXACT);
        writer.append<std::uint64_t>(2, 3);
        writer.publish();
        ASSERT_TRUE(it.next());
        EXPECT_EQ(it.rangeEnd(), 2u);
        writer.append<std::uint64_t>(3, 4);
        writer.append<std::uint64_t>(4, 5); // closes [1 2 3], starts [4]
        writer.publish();
    }
    stream.reset();
    std::vector<std::uint64_t> seen;
    while (it.next())
        seen.push_back(it.getTimestamp());
    EXPECT_EQ(seen, (std::vector<std::uint64_t>{3, 4}));
}

} // namespace
