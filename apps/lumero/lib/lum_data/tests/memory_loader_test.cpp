#include <lum_data/memory_data_source.h>
#include <lum_data/memory_loader.h>

#include <ferrin_core/channel_roi_controller.h>

#include <gtest/gtest.h>

namespace {

using lum::data::MemoryLoader;

class LoaderTest : public ::testing::Test
{
protected:
    void SetUp() override { m_loader->setExtent(1000); }

    // Pages of 100 positions, at most 3 resident.
    std::shared_ptr<MemoryLoader> m_loader = std::make_shared<MemoryLoader>(100, 3);
    lum::data::MemoryDataSource m_source{1, std::make_shared<ferrin::DataRegionsManager>(), m_loader};
};

TEST_F(LoaderTest, NothingIsResidentUntilLoaded)
{
    EXPECT_FALSE(m_loader->isResident(0));
    EXPECT_TRUE(m_loader->load(m_source, 150, 250));
    EXPECT_FALSE(m_loader->isResident(99));
    EXPECT_TRUE(m_loader->isResident(100)) << "whole pages come in";
    EXPECT_TRUE(m_loader->isResident(299));
    EXPECT_FALSE(m_loader->isResident(300));
    EXPECT_EQ(m_loader->residentPageCount(), 2u);
}

TEST_F(LoaderTest, LoadingBeyondTheExtentFailsAndIsCut)
{
    EXPECT_FALSE(m_loader->load(m_source, 1000, 1100));
    EXPECT_TRUE(m_loader->load(m_source, 950, 5000));
    EXPECT_TRUE(m_loader->isResident(999));
    EXPECT_FALSE(m_loader->isResident(1000));
    EXPECT_EQ(m_loader->residentPageCount(), 1u);
}

TEST_F(LoaderTest, OverTheBudgetTheOldestUnreservedPagesGo)
{
    m_loader->load(m_source, 0, 0);
    m_loader->load(m_source, 100, 100);
    m_loader->load(m_source, 200, 200);
    m_loader->load(m_source, 300, 300);
    EXPECT_EQ(m_loader->residentPageCount(), 3u);
    EXPECT_FALSE(m_loader->isResident(0)) << "loaded longest ago";
    EXPECT_TRUE(m_loader->isResident(300));
}

TEST_F(LoaderTest, ReservedPagesStayWhateverTheBudget)
{
    ferrin::ChannelRoiController guard(std::shared_ptr<const ferrin::DataSource>(&m_source, [](auto*) {}),
                                       m_loader, 5, 5);
    EXPECT_TRUE(m_loader->isResident(5));
    EXPECT_EQ(m_loader->reservationCount(ferrin::ChannelRoiController::OWNER), 1u);
    for (ferrin::Tick position = 100; position < 1000; position += 100)
        m_loader->load(m_source, position, position);
    EXPECT_TRUE(m_loader->isResident(5)) << "held by the guard";
    guard.release();
    EXPECT_EQ(m_loader->reservationCount(ferrin::ChannelRoiController::OWNER), 0u);
    m_loader->load(m_source, 100, 100);
    EXPECT_FALSE(m_loader->isResident(5)) << "released, then squeezed out";
}

TEST_F(LoaderTest, ReleaseMustMatchOwnerAndRange)
{
    EXPECT_TRUE(m_loader->reserve(m_source, 10, 20, "viewer", 0));
    EXPECT_FALSE(m_loader->release(m_source, 10, 20, "export", 0));
    EXPECT_FALSE(m_loader->release(m_source, 10, 21, "viewer", 0));
    EXPECT_TRUE(m_loader->release(m_source, 10, 20, "viewer", 0));
    EXPECT_FALSE(m_loader->release(m_source, 10, 20, "viewer", 0));
    EXPECT_FALSE(m_loader->reserve(m_source, 20, 10, "viewer", 0)) << "backwards range";
}

TEST_F(LoaderTest, LoadAllLiftsTheBudget)
{
    m_loader->load(m_source, 0, 0);
    m_loader->loadAll();
    EXPECT_EQ(m_loader->residentPageCount(), 10u);
    EXPECT_EQ(m_loader->pagesLoaded(), 10u) << "the page loaded before counts once";
    m_loader->load(m_source, 0, 0);
    EXPECT_EQ(m_loader->residentPageCount(), 10u);
    EXPECT_TRUE(m_loader->isResident(999));
    m_loader->setExtent(1001);
    EXPECT_EQ(m_loader->pagesLoaded(), 11u) << "a page that comes with the extent";
}

} // namespace
