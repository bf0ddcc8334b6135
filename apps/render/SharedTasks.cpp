#include "SharedTasks.h"

#include <QtCore/QRunnable>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>

namespace Halvard::Orv::Render {

namespace {

/// What the threads of one call share. A helper that comes late finds no task left, and does not
/// touch the function, which is gone by then.
class Crew
{
public:
    Crew(std::size_t count, const std::function<void(std::size_t)> &task)
        : _count(count), _task(task)
    {}

    /// Takes tasks until none is left.
    void work()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        ++_atWork;
        while (_next < _count) {
            const std::size_t number = _next++;
            lock.unlock();
            std::exception_ptr failure;
            try {
                _task(number);
            } catch (...) {
                failure = std::current_exception();
            }
            lock.lock();
            if (failure && !_failure)
                _failure = failure;
            if (failure)
                _next = _count;
        }
        --_atWork;
        _isIdle.notify_all();
    }

    /// Waits for those at work. Whoever comes later finds no task left.
    void finish()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        _isIdle.wait(lock, [this] { return _atWork == 0; });
        if (_failure)
            std::rethrow_exception(_failure);
    }

private:
    std::mutex _mutex;
    std::condition_variable _isIdle;
    std::size_t _next = 0;
    const std::size_t _count;
    int _atWork = 0;
    std::exception_ptr _failure;
    const std::function<void(std::size_t)> &_task;
};

} // namespace

void shareTasks(std::size_t count, QThreadPool *pool,
                const std::function<void(std::size_t number)> &task)
{
    const auto crew = std::make_shared<Crew>(count, task);
    const int most = pool ? std::max(pool->maxThreadCount(), 0) : 0;
    for (int helper = 0; helper < most && std::size_t(helper) + 1 < count; ++helper) {
        std::unique_ptr<QRunnable> runnable(QRunnable::create([crew] { crew->work(); }));
        if (!pool->tryStart(runnable.get()))
            break;
        static_cast<void>(runnable.release()); // the pool deletes it
    }
    crew->work();
    crew->finish();
}

} // namespace Halvard::Orv::Render
