#pragma once

#include <QObject>
#include <QVector>

#include <cstdint>
#include <vector>

namespace lum::message {

/// One bus frame handed to a view as a sample value. Made for one read; whoever
/// takes it from the QVariant owns it.
class QBusMessage : public QObject
{
    Q_OBJECT
    Q_PROPERTY(quint64 ticks READ ticks CONSTANT)
    Q_PROPERTY(int dataSize READ dataSize CONSTANT)

public:
    QBusMessage(quint64 ticks, std::vector<std::uint8_t> payload, QObject* parent = nullptr);

    quint64 ticks() const { return m_ticks; }
    int dataSize() const { return static_cast<int>(m_payload.size()); }
    const std::vector<std::uint8_t>& payload() const { return m_payload; }

    /// Byte @p n of the payload; -1 outside it.
    Q_INVOKABLE int getDataByte(int n) const;

private:
    quint64 m_ticks;
    std::vector<std::uint8_t> m_payload;
};

class QCanMessage : public QBusMessage
{
    Q_OBJECT
    Q_PROPERTY(int id READ id CONSTANT)
    Q_PROPERTY(int extendedId READ extendedId CONSTANT)
    Q_PROPERTY(int remoteFrame READ remoteFrame CONSTANT)

public:
    QCanMessage(quint64 ticks, std::uint32_t id, bool extended_id, bool remote_frame,
                std::vector<std::uint8_t> payload, QObject* parent = nullptr);

    int id() const { return static_cast<int>(m_id); }
    int extendedId() const { return m_extended_id; }
    int remoteFrame() const { return m_remote_frame; }

private:
    std::uint32_t m_id;
    std::uint8_t m_extended_id;
    std::uint8_t m_remote_frame;
};

class QFlexrayMessage : public QBusMessage
{
    Q_OBJECT
    Q_PROPERTY(int cycle READ cycle CONSTANT)
    Q_PROPERTY(int slot READ slot CONSTANT)

public:
    QFlexrayMessage(quint64 ticks, std::int32_t cycle, std::int32_t slot, std::vector<std::uint8_t> payload,
                    QObject* parent = nullptr);

    int cycle() const { return m_cycle; }
    int slot() const { return m_slot; }

private:
    std::int32_t m_cycle;
    std::int32_t m_slot;
};

} // namespace lum::message
