#pragma once

#include <cstdint>

namespace ferrin {

/// A cursor over the samples of a channel, as channels hand it out. The operations the
/// display layer calls come first and keep their order.
class IfSampleIterator
{
public:
    /// Timestamp (tick) of the current sample.
    virtual std::uint64_t getTimestamp() const = 0;
    /// A current sample exists.
    virtual bool isValid() const = 0;
    virtual ~IfSampleIterator() = default;
    /// Address of the current value, null without one. Iterators of a
    /// ferrin::ScalarChannel point to a double.
    virtual const void* getValue() const = 0;
    /// Bytes at getValue(); 0 without a current sample.
    virtual std::uint32_t getValueSize() const = 0;
    /// Steps to the next sample; false (and no longer valid) when there is none.
    virtual bool next() = 0;
};

} // namespace ferrin
