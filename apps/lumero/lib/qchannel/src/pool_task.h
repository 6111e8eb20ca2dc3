#pragma once

#include <QFuture>
#include <QFutureInterface>
#include <QRunnable>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <type_traits>
#include <utility>

namespace lum::qchannel::detail {

/// One piece of work on a thread pool that reports through a QFuture. The hand-over to
/// the pool thread is published through an atomic as well: the pool's own locking is
/// invisible to the race checker.
template <typename Result>
class PoolTask : public QRunnable
{
public:
    explicit PoolTask(std::function<Result()> work) : m_work(std::move(work))
    {
        setAutoDelete(true);
        m_interface.reportStarted();
        m_published.store(true, std::memory_order_release);
    }

    QFuture<Result> future() { return m_interface.future(); }

    void run() override
    {
        while (!m_published.load(std::memory_order_acquire)) {
        }
        if constexpr (std::is_void_v<Result>) {
            m_work();
        } else {
            const Result result = m_work();
            m_interface.reportResult(result);
        }
        m_interface.reportFinished();
    }

private:
    std::function<Result()> m_work;
    QFutureInterface<Result> m_interface;
    std::atomic<bool> m_published{false};
};

/// Starts @p work on the global thread pool. Without a pool the future comes back
/// finished and cancelled, so that nobody waits for work that never runs.
template <typename Result>
QFuture<Result> runOnGlobalPool(std::function<Result()> work)
{
    QThreadPool* pool = QThreadPool::globalInstance();
    if (!pool) {
        QFutureInterface<Result> refused;
        refused.reportStarted();
        refused.reportCanceled();
        refused.reportFinished();
        return refused.future();
    }
    auto* task = new PoolTask<Result>(std::move(work));
    QFuture<Result> future = task->future();
    pool->start(task);
    return future;
}

} // namespace lum::qchannel::detail
