#include <ferrin_core/can_frame.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

namespace {

TEST(CanWireForm, IdIsLittleEndianThenFlagsThenPayload)
{
    const std::uint8_t wire[] = {0x78, 0x56, 0x34, 0x12, 0x01, 0xAA, 0xBB, 0xCC};
    const auto frame = ferrin::decodeCanFrame(wire, sizeof(wire));
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->id, 0x12345678u);
    EXPECT_TRUE(frame->isExtended());
    EXPECT_FALSE(frame->isRemote());
    EXPECT_EQ(frame->payload, (daq::ByteVector{0xAA, 0xBB, 0xCC}));
}

TEST(CanWireForm, EncodeAndDecodeRoundTrip)
{
    daq::CanFrame frame;
    frame.id = 0x7FF;
    frame.flags = daq::CanFrame::FLAG_REMOTE_FRAME;
    frame.payload = {1, 2, 3, 4, 5, 6, 7, 8};
    const daq::ByteVector wire = ferrin::encodeCanFrame(frame);
    ASSERT_EQ(wire.size(), ferrin::CAN_FRAME_HEADER_SIZE + 8);
    EXPECT_EQ(wire[0], 0xFF);
    EXPECT_EQ(wire[1], 0x07);
    const auto back = ferrin::decodeCanFrame(wire.data(), static_cast<std::uint32_t>(wire.size()));
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, frame);
    EXPECT_TRUE(back->isRemote());
}

TEST(CanWireForm, HeaderOnlyIsAFrameWithoutPayload)
{
    const std::uint8_t wire[] = {1, 0, 0, 0, 0};
    const auto frame = ferrin::decodeCanFrame(wire, sizeof(wire));
    ASSERT_TRUE(frame);
    EXPECT_TRUE(frame->payload.empty());
    EXPECT_EQ(frame->id, 1u);
}

TEST(CanWireForm, ValueShorterThanTheHeaderIsReported)
{
    uni_testing::AssertCapture asserts;
    const std::uint8_t wire[] = {1, 2, 3, 4};
    EXPECT_FALSE(ferrin::decodeCanFrame(wire, sizeof(wire)));
    EXPECT_TRUE(asserts.fired("value_size >= CAN_FRAME_HEADER_SIZE", "4 >= 5"));
}

TEST(J1939View, SplitsAnExtendedId)
{
    // Priority 6, EDP 0, DP 0, PF 0xF0, PS 0x04, SA 0x00: EEC1, PGN 61444.
    const auto view = ferrin::j1939View(0x0CF00400u, true);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->priority, 3);
    EXPECT_EQ(view->pdu_format, 0xF0);
    EXPECT_EQ(view->pdu_specific, 0x04);
    EXPECT_EQ(view->source_address, 0x00);
    EXPECT_FALSE(view->isPdu1());
    EXPECT_EQ(view->pgn(), 61444u);
    EXPECT_FALSE(view->destinationAddress());
}

TEST(J1939View, Pdu1LeavesTheDestinationOutOfThePgn)
{
    // Priority 6, DP 1, PF 0xEA (request), destination 0x21, source 0xF9.
    const std::uint32_t id = 6u << 26 | 1u << 24 | 0xEAu << 16 | 0x21u << 8 | 0xF9u;
    const auto view = ferrin::j1939View(id, true);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->priority, 6);
    EXPECT_EQ(view->data_page, 1);
    EXPECT_EQ(view->extended_data_page, 0);
    EXPECT_TRUE(view->isPdu1());
    EXPECT_EQ(view->destinationAddress(), std::optional<std::uint8_t>(0x21));
    EXPECT_EQ(view->source_address, 0xF9);
    EXPECT_EQ(view->pgn(), 0x1EA00u);
}

TEST(J1939View, ExtendedDataPageIsBit25)
{
    const auto view = ferrin::j1939View(1u << 25 | 0xFEu << 16 | 0x10u << 8, true);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->extended_data_page, 1);
    EXPECT_EQ(view->data_page, 0);
    EXPECT_EQ(view->pgn(), 0x2FE10u);
}

TEST(J1939View, StandardIdHasNone)
{
    daq::CanFrame frame;
    frame.id = 0x123;
    EXPECT_FALSE(ferrin::j1939View(frame));
    frame.flags = daq::CanFrame::FLAG_EXTENDED_ID;
    EXPECT_TRUE(ferrin::j1939View(frame));
}

} // namespace
