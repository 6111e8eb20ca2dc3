#pragma once

// Channels, a stand-in object manager and a signal recorder for the tests of the
// display objects.

#include <om_ui/if_object_manager.h>
#include <om_ui/qchannel_fetcher.h>

#include <math_geo/projection_plane.h>
#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>

#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>
#include <string>
#include <vector>

namespace om_ui_test {

/// A site on a proving ground; the reference planes of the tests sit here.
const math_geo::GeoPosition SITE(48.2, 11.6);

/// A reference plane at SITE in X_FRONT_Y_LEFT.
math_geo::ProjectionPlane sitePlane();

/// A synchronous scalar channel of @p rate samples per second from 0 s, with the node 1
/// and the next local id, named @p name.
std::shared_ptr<ferrin::Channel> makeScalar(double rate, std::vector<double> values,
                                            const std::string& name = "scalar");
/// A channel that is not scalar (as a vector channel would be).
std::shared_ptr<ferrin::Channel> makeNonScalar(const std::string& name = "vector");

/// A channel list that owns its QChannels, filled at once.
class ChannelList
{
public:
    ChannelList();
    ~ChannelList();
    /// Wraps @p channel in a QChannel and appends it.
    lum::qchannel::QChannel* add(std::shared_ptr<ferrin::Channel> channel);
    lum::qchannel::QChannelListModel& model() { return *m_model; }

private:
    std::unique_ptr<lum::qchannel::QChannelListModel> m_model;
};

/// A parent that answers for the scene's objects as the object manager will.
class FakeManager : public QObject, public overmap_ui::IfObjectManager
{
public:
    QList<overmap_ui::QGeoObject*> allGeoObjects() const override { return objects; }
    overmap_ui::QChannelFetcher* channelFetcher() const override { return fetcher; }

    QList<overmap_ui::QGeoObject*> objects;
    overmap_ui::QChannelFetcher* fetcher = nullptr;
};

/// Records the names of all signals of an object, in the order they are emitted.
class SignalRecorder : public QObject
{
public:
    explicit SignalRecorder(QObject* sender);
    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override;

    QStringList names() const { return m_log; }
    void clear() { m_log.clear(); }

private:
    QList<QByteArray> m_signal_names;
    QStringList m_log;
};

} // namespace om_ui_test
