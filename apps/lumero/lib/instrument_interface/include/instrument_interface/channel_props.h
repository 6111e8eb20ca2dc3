#pragma once

#include <channel_config/channel_id.h>
#include <qchannel/qchannel.h>
#include <uni_base/countable.h>

#include <QObject>
#include <QPointer>
#include <QString>

namespace im {

class ChannelPropertiesListModel;
class PropertyChangeForwarder;

/// An instrument's view of one channel it displays: the range and unit it shows and
/// a place for settings of this channel in this instrument. Made with a null channel,
/// it stands for the properties shared by all channels of the instrument (the unified
/// properties) and answers 0.0, 1.0 and an empty unit.
///
/// The channel is not owned. Its changes come through as this object's signals; when
/// it is destroyed, channelDestroyed tells the instrument to drop the row; the channel
/// stays set until its QObject part is gone, and reads as null from then on.
class ChannelProps : public QObject, public uni::Countable<ChannelProps>
{
    Q_OBJECT
    Q_PROPERTY(lum::qchannel::QChannel* channel READ channel NOTIFY channelChanged)
    Q_PROPERTY(double minValue READ minValue NOTIFY minValueChanged)
    Q_PROPERTY(double maxValue READ maxValue NOTIFY maxValueChanged)
    Q_PROPERTY(QString unit READ unit NOTIFY unitChanged)

public:
    explicit ChannelProps(lum::qchannel::QChannel* channel, QObject* parent = nullptr);
    ~ChannelProps() override;

    lum::qchannel::QChannel* channel() const { return m_channel; }
    ChannelPropertiesListModel* channelList() const { return m_channel_list; }

public Q_SLOTS:
    /// Any change of an item of the channel; tells channelChanged whatever the key.
    virtual void channelConfigChanged(channel_config::ChannelID id, QString key);

public:
    /// Gives the unified properties to a channel's properties; nothing to take here.
    virtual void setUnifiedProperties(ChannelProps* unified_properties);
    /// The list the unified properties belong to; stored.
    virtual void setChannelList(ChannelPropertiesListModel* channel_list);

    /// The channel's range minimum; 0.0 without a channel.
    virtual double minValue() const;
    /// The channel's range maximum; 1.0 without a channel.
    virtual double maxValue() const;
    /// The channel's unit; empty without a channel.
    virtual QString unit() const;

Q_SIGNALS:
    void channelDestroyed(lum::qchannel::QChannel* channel);
    void channelChanged(lum::qchannel::QChannel* channel);
    void minValueChanged();
    void maxValueChanged();
    void unitChanged();
    void configChanged();
    void settingChanged(QObject* instr, QString setting);

protected:
    /// Subclasses register their settings here, so that they reach settingChanged.
    PropertyChangeForwarder* forwarder() const { return m_forwarder; }

private:
    void onChannelDestroying(lum::qchannel::QChannel* channel);

    ChannelPropertiesListModel* m_channel_list = nullptr;
    QPointer<lum::qchannel::QChannel> m_channel;
    PropertyChangeForwarder* m_forwarder;
};

} // namespace im
