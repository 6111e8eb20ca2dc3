#include <lumero_app/recording_loader.h>

#include <overmap_replay/replay_inputs.h>

#include <QMetaObject>
#include <QMutex>
#include <QThreadPool>

#include <string>
#include <vector>

namespace lum {

namespace {
// Guards the loader pointer that pool tasks share: cleared under it by the destructor.
QMutex g_self_lock;
} // namespace

RecordingLoader::RecordingLoader(QObject* parent)
    : QObject(parent), m_self(std::make_shared<RecordingLoader*>(this))
{}

RecordingLoader::~RecordingLoader()
{
    {
        QMutexLocker lock(&g_self_lock);
        *m_self = nullptr;
    }
    m_pool.waitForDone();
}

void RecordingLoader::load(const QStringList& paths)
{
    const quint64 request = ++m_request;
    if (m_pending++ == 0)
        Q_EMIT busyChanged(true);
    std::vector<std::string> files;
    for (const QString& path : paths)
        files.push_back(path.toStdString());
    std::shared_ptr<RecordingLoader*> self = m_self;
    m_pool.start([self, files, paths, request] {
        auto recordings =
            std::make_shared<overmap_replay::LoadedRecordings>(overmap_replay::loadRecordings(files));
        QMutexLocker lock(&g_self_lock);
        if (*self == nullptr)
            return;
        // Queued into the loader's thread; the pointer is checked there again, as the
        // loader may go between now and then.
        QMetaObject::invokeMethod(
            *self,
            [self, recordings, paths, request] {
                if (*self != nullptr)
                    (*self)->onDone(recordings, paths, request);
            },
            Qt::QueuedConnection);
    });
}

void RecordingLoader::onDone(std::shared_ptr<overmap_replay::LoadedRecordings> recordings, QStringList paths,
                             quint64 request)
{
    const bool newest = request == m_request;
    if (--m_pending == 0)
        Q_EMIT busyChanged(false);
    if (newest)
        Q_EMIT loaded(std::move(recordings), std::move(paths));
}

} // namespace lum
