// The block header layout, reference counting and the pool's release rule.
#include <daq_data_block/data_block_pool.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using daq::DataBlockPool;
using daq::SampleDataBlock;
using daq::SampleDataBlockPtr;

constexpr std::uint32_t ONE_PAGE = 4096 - 48;
constexpr std::uint32_t TWO_PAGES = 2 * 4096 - 48;

class DataBlockPoolTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_pool = DataBlockPool::instance();
        ASSERT_NE(m_pool, nullptr);
        m_pool->trim();
    }
    void TearDown() override { m_pool->trim(); }

    DataBlockPool* m_pool = nullptr;
};

TEST_F(DataBlockPoolTest, AcquiredBlockIsEmptyWithOneReference)
{
    SampleDataBlockPtr block = m_pool->acquire(ONE_PAGE);
    ASSERT_TRUE(block);
    EXPECT_EQ(block->m_payload_capacity, ONE_PAGE);
    EXPECT_EQ(block->m_sample_count, 0u);
    EXPECT_EQ(block->m_data_length, 0u);
    EXPECT_EQ(block->m_data, block->payload());
    EXPECT_EQ(block->payload(), reinterpret_cast<std::uint8_t*>(block.get()) + 48);
    EXPECT_EQ(block->m_ref_count.load(), 1);
    block->payload()[ONE_PAGE - 1] = 0x5a; // the whole capacity is writable (ASan checks it)
}

TEST_F(DataBlockPoolTest, ReferencesAreCountedAndLastReleaseRecycles)
{
    const long live_before = DataBlockPool::liveBlocks();
    SampleDataBlockPtr first = m_pool->acquire(ONE_PAGE);
    SampleDataBlock* raw = first.get();
    {
        SampleDataBlockPtr second = first;
        EXPECT_EQ(raw->m_ref_count.load(), 2);
    }
    EXPECT_EQ(raw->m_ref_count.load(), 1);
    EXPECT_EQ(m_pool->freeBlockCount(ONE_PAGE), 0u);
    first.reset();
    EXPECT_EQ(m_pool->freeBlockCount(ONE_PAGE), 1u);
    EXPECT_EQ(m_pool->freeCapacitySum(), ONE_PAGE);
    EXPECT_EQ(DataBlockPool::liveBlocks(), live_before + 1);

    // The free block of that exact class is handed out again, reset.
    raw->m_sample_count = 7;
    SampleDataBlockPtr again = m_pool->acquire(ONE_PAGE);
    EXPECT_EQ(again.get(), raw);
    EXPECT_EQ(again->m_sample_count, 0u);
    EXPECT_EQ(m_pool->freeCapacitySum(), 0u);
}

TEST_F(DataBlockPoolTest, PageClassKeepsTwelveAndFreesTheThirteenth)
{
    const std::size_t blocks_before = m_pool->blockCount();
    const std::uint64_t capacity_before = m_pool->capacitySum();
    const long live_before = DataBlockPool::liveBlocks();

    std::vector<SampleDataBlockPtr> blocks;
    for (int i = 0; i < 13; ++i)
        blocks.push_back(m_pool->acquire(ONE_PAGE));
    EXPECT_EQ(m_pool->blockCount(), blocks_before + 13);
    EXPECT_EQ(m_pool->capacitySum(), capacity_before + 13ull * ONE_PAGE);
    EXPECT_EQ(DataBlockPool::liveBlocks(), live_before + 13);

    blocks.clear();
    EXPECT_EQ(m_pool->freeBlockCount(ONE_PAGE), 12u);
    EXPECT_EQ(m_pool->freeCapacitySum(), 12ull * ONE_PAGE);
    EXPECT_EQ(m_pool->blockCount(), blocks_before + 12);
    EXPECT_EQ(m_pool->capacitySum(), capacity_before + 12ull * ONE_PAGE);
    EXPECT_EQ(DataBlockPool::liveBlocks(), live_before + 12);
}

TEST_F(DataBlockPoolTest, SizeClassesAreExact)
{
    SampleDataBlockPtr two = m_pool->acquire(TWO_PAGES);
    two.reset();
    EXPECT_EQ(m_pool->freeBlockCount(TWO_PAGES), 1u);
    EXPECT_EQ(m_pool->freeBlockCount(ONE_PAGE), 0u);
    SampleDataBlockPtr one = m_pool->acquire(ONE_PAGE);
    EXPECT_EQ(m_pool->freeBlockCount(TWO_PAGES), 1u) << "a block of another class was handed out";
}

TEST_F(DataBlockPoolTest, OtherCapacitiesAreAlwaysFreed)
{
    const std::size_t blocks_before = m_pool->blockCount();
    const long live_before = DataBlockPool::liveBlocks();
    for (std::uint32_t capacity : {4096u, 100u, 0u, 4000u}) {
        SampleDataBlockPtr block = m_pool->acquire(capacity);
        block.reset();
        EXPECT_EQ(m_pool->freeBlockCount(capacity), 0u) << capacity;
    }
    EXPECT_EQ(m_pool->blockCount(), blocks_before);
    EXPECT_EQ(DataBlockPool::liveBlocks(), live_before);
    EXPECT_EQ(m_pool->freeCapacitySum(), 0u);
}

TEST_F(DataBlockPoolTest, TrimFreesEverythingLyingFree)
{
    const long live_before = DataBlockPool::liveBlocks();
    std::vector<SampleDataBlockPtr> blocks;
    for (int i = 0; i < 3; ++i)
        blocks.push_back(m_pool->acquire(ONE_PAGE));
    blocks.clear();
    EXPECT_EQ(DataBlockPool::liveBlocks(), live_before + 3);
    m_pool->trim();
    EXPECT_EQ(DataBlockPool::liveBlocks(), live_before);
    EXPECT_EQ(m_pool->freeBlockCount(ONE_PAGE), 0u);
}

TEST(DataBlockPoolClasses, PageClassCapacityRoundsUpToWholePages)
{
    EXPECT_EQ(DataBlockPool::pageClassCapacity(0), ONE_PAGE);
    EXPECT_EQ(DataBlockPool::pageClassCapacity(ONE_PAGE), ONE_PAGE);
    EXPECT_EQ(DataBlockPool::pageClassCapacity(ONE_PAGE + 1), TWO_PAGES);
    EXPECT_EQ(DataBlockPool::pageClassCapacity(0xFFFFFFFFu), 0xFFFFF000u - 48);
}

} // namespace
