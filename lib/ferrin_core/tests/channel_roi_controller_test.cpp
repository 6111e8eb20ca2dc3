#include <ferrin_core/channel_roi_controller.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using ferrin::Tick;

class NullSource : public ferrin::DataSource
{
public:
    std::uint64_t reductionFactor(std::uint32_t, std::uint64_t) const override { return 0; }
    std::uint64_t tickReductionFactor(std::uint32_t, std::uint64_t) const override { return 0; }
    std::shared_ptr<ferrin::ReducedStream> getReducedStream(std::uint32_t, std::uint32_t) const override
    {
        return nullptr;
    }
    std::uint64_t streamId() const override { return 1; }
    std::shared_ptr<ferrin::IfLoadableStream> getSampleStream() const override { return nullptr; }
};

/// Writes down every call, so that the order of reserve, load and release can be checked.
class RecordingStream : public ferrin::IfLoadableStream
{
public:
    bool reserve(const ferrin::DataSource&, Tick first, Tick last, const std::string& owner,
                 std::uint32_t flags) override
    {
        calls.push_back(text("reserve", first, last) + " " + owner + " " + std::to_string(flags));
        return accept_reserve;
    }
    bool release(const ferrin::DataSource&, Tick first, Tick last, const std::string& owner,
                 std::uint32_t flags) override
    {
        calls.push_back(text("release", first, last) + " " + owner + " " + std::to_string(flags));
        return true;
    }
    bool load(const ferrin::DataSource&, Tick first, Tick last) override
    {
        calls.push_back(text("load", first, last));
        return true;
    }

    std::vector<std::string> calls;
    bool accept_reserve = true;

private:
    static std::string text(const char* what, Tick first, Tick last)
    {
        return std::string(what) + " " + std::to_string(first) + ".." + std::to_string(last);
    }
};

class RoiControllerTest : public ::testing::Test
{
protected:
    std::shared_ptr<NullSource> m_source = std::make_shared<NullSource>();
    std::shared_ptr<RecordingStream> m_stream = std::make_shared<RecordingStream>();
};

TEST_F(RoiControllerTest, ReservesThenLoadsAndReleasesOnDestruction)
{
    {
        ferrin::ChannelRoiController guard(m_source, m_stream, 10, 20);
        EXPECT_TRUE(guard.isActive());
        EXPECT_EQ(m_stream->calls,
                  (std::vector<std::string>{"reserve 10..20 ChannelRoiController 0", "load 10..20"}));
    }
    EXPECT_EQ(m_stream->calls.back(), "release 10..20 ChannelRoiController 0");
    EXPECT_EQ(m_stream->calls.size(), 3u);
}

TEST_F(RoiControllerTest, ANewRangeReleasesTheOldOneFirst)
{
    ferrin::ChannelRoiController guard(m_source, m_stream);
    EXPECT_FALSE(guard.isActive());
    guard.reserve(1, 2);
    guard.reserve(5, 9);
    EXPECT_EQ(m_stream->calls,
              (std::vector<std::string>{"reserve 1..2 ChannelRoiController 0", "load 1..2",
                                        "release 1..2 ChannelRoiController 0",
                                        "reserve 5..9 ChannelRoiController 0", "load 5..9"}));
    m_stream->calls.clear();
    guard.reserve(5, 9);
    EXPECT_EQ(m_stream->calls, (std::vector<std::string>{"load 5..9"})) << "same range: held once, not twice";
    guard.release();
    guard.release();
    EXPECT_EQ(m_stream->calls.back(), "release 5..9 ChannelRoiController 0");
    EXPECT_EQ(m_stream->calls.size(), 2u) << "a released guard releases nothing more";
}

TEST_F(RoiControllerTest, ARefusedReservationIsNotReleased)
{
    m_stream->accept_reserve = false;
    {
        ferrin::ChannelRoiController guard(m_source, m_stream, 3, 4);
        EXPECT_FALSE(guard.isActive());
    }
    EXPECT_EQ(m_stream->calls, (std::vector<std::string>{"reserve 3..4 ChannelRoiController 0"}));
}

TEST_F(RoiControllerTest, WithoutStreamNothingHappens)
{
    ferrin::ChannelRoiController guard(m_source, nullptr, 3, 4);
    EXPECT_FALSE(guard.isActive());
    EXPECT_FALSE(guard.reserve(1, 1));
}

} // namespace
