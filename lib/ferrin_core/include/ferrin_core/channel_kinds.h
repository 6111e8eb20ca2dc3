#pragma once

#include <ferrin_core/channel.h>

// The channel kinds besides ferrin::ScalarChannel. They add no operations of their
// own: their samples come through getSampleAtTime, and the display layer tells them
// apart by dynamic_cast.

namespace ferrin {

/// A vector of doubles per sample (sample dimension elements); resolution 0 means bytes.
class ScalarVectorChannel : public Channel
{
public:
    using Channel::Channel;
};

/// A vector of complex doubles per sample.
class ComplexVectorChannel : public Channel
{
public:
    using Channel::Channel;
};

/// Byte vectors of varying length, one per asynchronous sample.
class AsyncByteVectorChannel : public Channel
{
public:
    using Channel::Channel;
};

/// CAN frames.
class CANMessageChannel : public Channel
{
public:
    using Channel::Channel;
};

/// Encoded video frames.
class VideoChannel : public Channel
{
public:
    using Channel::Channel;
};

} // namespace ferrin
