#include <qchannel/qbus_message.h>

#include <utility>

namespace lum::message {

QBusMessage::QBusMessage(quint64 ticks, std::vector<std::uint8_t> payload, QObject* parent)
    : QObject(parent), m_ticks(ticks), m_payload(std::move(payload))
{}

int QBusMessage::getDataByte(int n) const
{
    if (n < 0 || static_cast<std::size_t>(n) >= m_payload.size())
        return -1;
    return m_payload[static_cast<std::size_t>(n)];
}

QCanMessage::QCanMessage(quint64 ticks, std::uint32_t id, bool extended_id, bool remote_frame,
                         std::vector<std::uint8_t> payload, QObject* parent)
    : QBusMessage(ticks, std::move(payload), parent), m_id(id), m_extended_id(extended_id ? 1 : 0),
      m_remote_frame(remote_frame ? 1 : 0)
{}

QFlexrayMessage::QFlexrayMessage(quint64 ticks, std::int32_t cycle, std::int32_t slot,
                                 std::vector<std::uint8_t> payload, QObject* parent)
    : QBusMessage(ticks, std::move(payload), parent), m_cycle(cycle), m_slot(slot)
{}

} // namespace lum::message
