#include <ferrin_core/channel_roi_controller.h>

#include <ferrin_core/channel.h>

namespace ferrin {

ChannelRoiController::ChannelRoiController(std::shared_ptr<const DataSource> source,
                                           std::shared_ptr<IfLoadableStream> stream)
    : m_source(std::move(source)), m_stream(std::move(stream))
{}

ChannelRoiController::ChannelRoiController(std::shared_ptr<const DataSource> source,
                                           std::shared_ptr<IfLoadableStream> stream, Tick first, Tick last)
    : ChannelRoiController(std::move(source), std::move(stream))
{
    reserve(first, last);
}

ChannelRoiController::ChannelRoiController(const Channel& channel, Tick tick)
{
    m_source = channel.getDataSource();
    if (m_source)
        m_stream = m_source->getSampleStream();
    reserve(tick, tick);
}

ChannelRoiController::~ChannelRoiController()
{
    release();
}

bool ChannelRoiController::reserve(Tick first, Tick last)
{
    if (!m_source || !m_stream)
        return false;
    const std::string owner(OWNER);
    if (m_active && (first != m_first || last != m_last))
        release();
    if (!m_active) {
        if (!m_stream->reserve(*m_source, first, last, owner, 0))
            return false;
        m_first = first;
        m_last = last;
        m_active = true;
    }
    return m_stream->load(*m_source, first, last);
}

void ChannelRoiController::release()
{
    if (!m_active)
        return;
    m_active = false;
    m_stream->release(*m_source, m_first, m_last, std::string(OWNER), 0);
}

} // namespace ferrin
