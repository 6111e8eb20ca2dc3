#pragma once

#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include <memory>

namespace overmap_replay {
struct LoadedRecordings;
}

namespace lum {

/// Loads recordings on a pool thread, so that the window stays responsive while a long
/// recording is read, and delivers the result in the thread of this object.
class RecordingLoader : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)

public:
    explicit RecordingLoader(QObject* parent = nullptr);
    ~RecordingLoader() override;

    bool isBusy() const { return m_pending > 0; }

    /// Starts a load of @p paths (recording n gets node id n). A load that finishes after a
    /// later one was started is dropped: only the newest request is delivered.
    void load(const QStringList& paths);

Q_SIGNALS:
    /// The newest request's result; an error result says why in its error text.
    void loaded(std::shared_ptr<overmap_replay::LoadedRecordings> recordings, QStringList paths);
    void busyChanged(bool busy);

private:
    void onDone(std::shared_ptr<overmap_replay::LoadedRecordings> recordings, QStringList paths,
                quint64 request);

    quint64 m_request = 0;
    int m_pending = 0;
    /// Shared with the pool tasks: they check it before handing a result to a gone loader.
    std::shared_ptr<RecordingLoader*> m_self;
    /// Its own pool: the destructor waits for a load under way and its thread ends with it.
    QThreadPool m_pool;
};

} // namespace lum
