#pragma once

#include <ferrin_core/data_source.h>

#include <memory>

namespace ferrin {

class Channel;

/// Scoped guard that keeps a range of a stream in memory: it reserves the range with
/// the stream's loader, loads it, and releases it again when it goes or moves on.
class ChannelRoiController
{
public:
    /// Owner text of every reservation made through this guard.
    static constexpr const char* OWNER = "ChannelRoiController";

    /// A guard on @p stream of @p source without a reservation yet.
    ChannelRoiController(std::shared_ptr<const DataSource> source, std::shared_ptr<IfLoadableStream> stream);
    /// A guard on @p stream that reserves [first, last] at once.
    ChannelRoiController(std::shared_ptr<const DataSource> source, std::shared_ptr<IfLoadableStream> stream,
                         Tick first, Tick last);
    /// A guard on the sample stream of @p channel that reserves @p tick.
    ChannelRoiController(const Channel& channel, Tick tick);
    ~ChannelRoiController();

    ChannelRoiController(const ChannelRoiController&) = delete;
    ChannelRoiController& operator=(const ChannelRoiController&) = delete;

    /// Reserves and loads [first, last], giving up a different range held before.
    /// Returns whether the range could be loaded.
    bool reserve(Tick first, Tick last);
    /// Gives up the reservation, if one is active.
    void release();

    bool isActive() const { return m_active; }
    Tick first() const { return m_first; }
    Tick last() const { return m_last; }

private:
    std::shared_ptr<const DataSource> m_source;
    std::shared_ptr<IfLoadableStream> m_stream;
    Tick m_first = 0;
    Tick m_last = 0;
    bool m_active = false;
};

} // namespace ferrin
