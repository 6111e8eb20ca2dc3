#pragma once

#include <instrument_interface/channel_data_window.h>
#include <instrument_interface/channel_properties_list_model.h>
#include <instrument_interface/channel_props.h>
#include <instrument_interface/if_channel_data_window_provider.h>

#include <channel_config/channel_id.h>
#include <qchannel/qchannel.h>
#include <uni_base/countable.h>

#include <QList>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <QVariant>

#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace im {

class IfApplication;
class PropertyChangeForwarder;

/// The base of every instrument on a host screen: its place on the screen in fractions
/// of the screen's size, its channels with one ChannelProps each, its display settings,
/// and the data windows it wants the host to keep loaded.
///
/// Everything runs in the host's main thread except getDataWindows, which the host's
/// data threads call: the list's content and the windows change only under the
/// channels lock, a recursive mutex, so that a subclass's updateDataWindows (which
/// takes it itself) may be entered from a hook. Hooks and signals run outside it.
///
/// configChanged is the one signal that tells the host the saved state is out of date;
/// settingChanged names the setting (timeFormatVisible, backgroundVisible,
/// channelLabelFormat and, under "unifiedProperties.", those of the unified properties).
class InstrumentModel : public QObject,
                        public IfChannelDataWindowProvider,
                        public uni::Countable<InstrumentModel>
{
    Q_OBJECT
    Q_PROPERTY(int type READ type NOTIFY typeChanged)
    Q_PROPERTY(QString typeString READ getTypeQString CONSTANT)
    Q_PROPERTY(QString key READ getKey WRITE setKey NOTIFY keyChanged)
    Q_PROPERTY(QPointF position READ getPosition WRITE setPosition NOTIFY positionChanged)
    Q_PROPERTY(double width READ getWidth WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(double height READ getHeight WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(im::ChannelPropertiesListModel* channels READ getChannels NOTIFY channelsChanged)
    Q_PROPERTY(int maxChannels READ getMaxChannels NOTIFY maxChannelsChanged)
    Q_PROPERTY(im::ChannelProps* unifiedProperties READ getUnifiedProperties CONSTANT)
    Q_PROPERTY(bool backgroundVisible READ getBackgroundVisible WRITE setBackgroundVisible NOTIFY
                   backgroundVisibleChanged)
    Q_PROPERTY(bool timeFormatVisible READ getTimeFormatVisible WRITE setTimeFormatVisible NOTIFY
                   timeFormatVisibleChanged)
    Q_PROPERTY(bool usesTimeFormat READ usesTimeFormat CONSTANT)
    Q_PROPERTY(ChannelLabelFormat channelLabelFormat READ getChannelLabelFormat WRITE setChannelLabelFormat
                   NOTIFY channelLabelFormatChanged)
    Q_PROPERTY(bool showsTimeSpan READ showsTimeSpan CONSTANT)
    Q_PROPERTY(bool supportsTimeRangeConnection READ supportsTimeRangeConnection CONSTANT)
    Q_PROPERTY(TimeRangeConnectionMode timeRangeConnectionMode READ getTimeRangeConnectionMode WRITE
                   setTimeRangeConnectionMode NOTIFY timeRangeConnectionModeChanged)
    Q_PROPERTY(QString connectionGroup READ getConnectionGroup WRITE setConnectionGroup NOTIFY
                   connectionGroupChanged)
    Q_PROPERTY(lum::qchannel::QChannel* controlChannel READ getControlChannel WRITE setControlChannel NOTIFY
                   controlChannelChanged)
    Q_PROPERTY(
        QString ccChannelsItem READ getCcChannelsItem WRITE setCcChannelsItem NOTIFY ccChannelsItemChanged)

public:
    enum TimeRangeConnectionMode
    {
        TIME_RANGE_CONNECTION_OFF = 0,
        TIME_RANGE_CONNECTION_ADJACENT = 1,
        TIME_RANGE_CONNECTION_SCREEN = 2,
        TIME_RANGE_CONNECTION_GROUP = 3
    };
    Q_ENUM(TimeRangeConnectionMode)

    enum ChannelLabelFormat
    {
        CHANNEL_LABEL_NOT_AVAILABLE = 0,
        CHANNEL_LABEL_FORMAT_DEFAULT = 1,
        CHANNEL_LABEL_FORMAT_SHORT = 2
    };
    Q_ENUM(ChannelLabelFormat)

    /// @p supports_time_range_connection is fixed for the instrument's life: without it
    /// the time-range connection mode stays off.
    explicit InstrumentModel(QObject* parent = nullptr, bool supports_time_range_connection = false);
    ~InstrumentModel() override;

    // --- virtual operations ---
    /// Makes the unified properties through createChannelProps(nullptr), once; the host
    /// calls it after construction, when the subclass's createChannelProps is reachable.
    virtual void initUnifiedProperties();
    virtual std::string getType() const = 0;
    virtual std::string getGroup() const = 0;
    virtual bool showsTimeSpan() const;
    virtual bool usesTimeFormat() const;
    /// Whether the instrument takes @p channel; by default any channel with an acquisition channel.
    Q_INVOKABLE virtual bool acceptsChannel(lum::qchannel::QChannel* channel) const;
    /// A hook for the host; empty here.
    virtual void hostHook();
    /// Drops, from the last row to the first, every channel acceptsChannel refuses.
    virtual void removeChannelsNotAcceptable();
    /// Called by the host once the application is set; empty here.
    virtual void connectToApplication();
    virtual bool hostCapabilityFlag() const;
    /// Channels the instrument reads besides its own rows; none here.
    virtual std::set<channel_config::ChannelID> getExtraChannelIds() const;
    /// A second hook for the host; empty here.
    virtual void secondHostHook();
    /// The properties of a new row; the instrument is their parent.
    virtual ChannelProps* createChannelProps(lum::qchannel::QChannel* channel);
    virtual void channelAboutToBeAdded(lum::qchannel::QChannel* channel, ChannelProps* props);
    virtual void channelAdded(lum::qchannel::QChannel* channel, ChannelProps* props);
    virtual void channelRemoved(lum::qchannel::QChannel* channel, ChannelProps* props);

    // --- IfChannelDataWindowProvider ---
    std::vector<ChannelDataWindow> getDataWindows() const override;
    std::string getDelegateValue() const override;
    std::string getDataWindowProviderType() const override;

    // --- the host's pointers ---
    /// Not owned; the host sets it and then calls connectToApplication.
    void setApplication(IfApplication* application) { m_application = application; }
    IfApplication* getApplication() const { return m_application; }
    /// Not owned.
    void setWindowDelegate(IfDataWindowDelegate* delegate) { m_window_delegate = delegate; }

    /// Guards the list's content and the data windows against the host's data threads.
    std::recursive_mutex& channelsLock() const { return m_channels_lock; }

    // --- properties ---
    int type() const { return m_type; }
    QString getKey() const { return m_key; }
    QPointF getPosition() const { return m_geometry.topLeft(); }
    double getWidth() const { return m_geometry.width(); }
    double getHeight() const { return m_geometry.height(); }
    ChannelPropertiesListModel* getChannels() const { return m_channels; }
    bool supportsTimeRangeConnection() const { return m_supports_time_range_connection; }
    ChannelLabelFormat getChannelLabelFormat() const { return m_channel_label_format; }
    TimeRangeConnectionMode getTimeRangeConnectionMode() const { return m_time_range_connection_mode; }
    QString getConnectionGroup() const { return m_connection_group; }
    lum::qchannel::QChannel* getControlChannel() const { return m_control_channel; }
    QString getCcChannelsItem() const { return m_cc_channels_item; }

    /// QObject::setProperty, for the host's restore of saved settings.
    bool setQProperty(const char* name, const QVariant& value);

    Q_INVOKABLE void setKey(const QString& key);
    /// Each coordinate is clamped to 0..1; the size is not looked at, so the rectangle
    /// may stand over the edge.
    Q_INVOKABLE void setPosition(const QPointF& position);
    /// Compared unclamped with the stored width, stored clamped: 1.5 twice tells twice.
    Q_INVOKABLE void setWidth(double width);
    Q_INVOKABLE void setHeight(double height);
    /// Clamps all four to 0..1 and moves the rectangle back inside the screen.
    Q_INVOKABLE void setGeometry(double x, double y, double width, double height);
    Q_INVOKABLE void setGeometry(const QRectF& geometry);
    Q_INVOKABLE QRectF getGeometry() const;

    Q_INVOKABLE QString getTypeQString() const;
    /// The channel of the first row whose channel has this id; null for none.
    Q_INVOKABLE lum::qchannel::QChannel* getChannelWithId(channel_config::ChannelID id) const;
    Q_INVOKABLE int getMaxChannels() const { return m_max_channels; }
    Q_INVOKABLE im::ChannelProps* getUnifiedProperties() const { return m_unified_properties; }
    /// True inside a group of instruments.
    Q_INVOKABLE bool isGrouped() const;

    Q_INVOKABLE bool getBackgroundVisible() const { return m_background_visible; }
    Q_INVOKABLE void setBackgroundVisible(bool visible);
    Q_INVOKABLE bool getTimeFormatVisible() const { return m_time_format_visible; }
    Q_INVOKABLE void setTimeFormatVisible(bool visible);
    /// Does nothing while the format is CHANNEL_LABEL_NOT_AVAILABLE: a subclass that
    /// sets that value in its constructor locks the format.
    Q_INVOKABLE void setChannelLabelFormat(ChannelLabelFormat format);
    /// Does nothing unless the instrument supports time-range connections.
    void setTimeRangeConnectionMode(TimeRangeConnectionMode mode);
    void setConnectionGroup(const QString& group);
    void setControlChannel(lum::qchannel::QChannel* channel);
    void setCcChannelsItem(const QString& item);

    Q_INVOKABLE void requestFullZoom();

public Q_SLOTS:
    /// False, with no other effect, for a null, present or refused channel, or a full list.
    bool addChannel(lum::qchannel::QChannel* channel);
    /// Adds what fits, in order, skipping the rest silently; false only for an empty list.
    bool addChannels(QList<lum::qchannel::QChannel*> channels);
    bool removeChannel(lum::qchannel::QChannel* channel);
    /// Removes those found; false if one was missing. True for an empty list.
    bool removeChannels(QList<lum::qchannel::QChannel*> channels);
    bool replaceChannel(int index, lum::qchannel::QChannel* channel);
    /// Removes a present channel, else adds it, dropping the last one of a full list first.
    bool toggleChannel(lum::qchannel::QChannel* channel);
    void removeAllChannels();
    /// Recomputes the data windows, under the channels lock; does not tell the host.
    void updateDataWindows() override = 0;

Q_SIGNALS:
    void typeChanged();
    void keyChanged();
    void positionChanged();
    void widthChanged();
    void heightChanged();
    void channelsChanged();
    void maxChannelsChanged();
    void dataWindowsChanged(const im::IfChannelDataWindowProvider* provider);
    void backgroundVisibleChanged();
    void timeFormatVisibleChanged();
    void channelLabelFormatChanged();
    void timeRangeConnectionModeChanged();
    void timeRangeChanged(double time, double duration, bool snapTimeToCursor, double offset);
    void timeRangeChangeRequest(double time, double duration, bool snapTimeToCursor, double offset);
    void connectionGroupChanged(QString group);
    void configChanged();
    void geometryChanged();
    void settingChanged(QObject* instr, QString setting);
    void controlChannelChanged();
    void ccChannelsItemChanged();
    void fullZoomRequested();

protected Q_SLOTS:
    /// Recomputes the data windows and tells the host with dataWindowsChanged.
    void onDataWindowChangeDetected();
    void removeChannelIfNotAcceptable(lum::qchannel::QChannel* channel);
    void onCCConfigItemChanged(channel_config::ChannelID id, QString key);

protected:
    void setMaxChannels(int max_channels);
    void setType(int type);
    /// Subclasses register their own settings here so that they reach settingChanged.
    PropertyChangeForwarder* forwarder() const { return m_forwarder; }
    /// The windows, for a subclass's updateDataWindows; hold channelsLock() while touching them.
    std::vector<ChannelDataWindow>& dataWindows() { return m_data_windows; }

private:
    ChannelProps* prepareChannel(lum::qchannel::QChannel* channel);
    void completeChannel(lum::qchannel::QChannel* channel, ChannelProps* props);
    bool removeChannelAt(int row);
    void syncChannelsFromControlChannel();
    lum::qchannel::QChannel* channelAt(int row) const;

    ChannelPropertiesListModel* m_channels;
    mutable std::recursive_mutex m_channels_lock;
    std::vector<ChannelDataWindow> m_data_windows;
    IfApplication* m_application = nullptr;
    const bool m_supports_time_range_connection;
    QRectF m_geometry{0.0, 0.0, 0.2, 0.2};
    int m_max_channels = 1;
    ChannelProps* m_unified_properties = nullptr;
    int m_type = 0;
    bool m_background_visible = false;
    bool m_time_format_visible = false;
    ChannelLabelFormat m_channel_label_format = CHANNEL_LABEL_FORMAT_DEFAULT;
    TimeRangeConnectionMode m_time_range_connection_mode = TIME_RANGE_CONNECTION_OFF;
    QString m_connection_group;
    PropertyChangeForwarder* m_forwarder;
    QPointer<lum::qchannel::QChannel> m_control_channel;
    QString m_cc_channels_item;
    IfDataWindowDelegate* m_window_delegate = nullptr;
    QString m_key;
};

} // namespace im
