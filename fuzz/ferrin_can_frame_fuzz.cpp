// Any bytes as the value area of a CAN sample: a frame or a reported fault, never a
// crash, and a frame that reads back to the same bytes.
#include <ferrin_core/can_frame.h>

#include <uni_base/uni_assert.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {
int quietHandler(const char*, const char*, const char*, int)
{
    return 1;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool installed = (uni::setAssertHandler(&quietHandler), true);
    (void)installed;
    if (size > 0xFFFF)
        return 0;
    const auto frame = ferrin::decodeCanFrame(data, static_cast<std::uint32_t>(size));
    if (size < ferrin::CAN_FRAME_HEADER_SIZE) {
        if (frame)
            std::abort(); // a value without a whole header is no frame
        return 0;
    }
    if (!frame)
        std::abort();
    const daq::ByteVector wire = ferrin::encodeCanFrame(*frame);
    if (wire.size() != size || !std::equal(wire.begin(), wire.end(), data))
        std::abort();
    if (const auto view = ferrin::j1939View(*frame)) {
        if (view->priority > 7 || view->pgn() > 0x3FFFF)
            std::abort();
        if (!frame->isExtended())
            std::abort();
    } else if (frame->isExtended()) {
        std::abort();
    }
    return 0;
}
