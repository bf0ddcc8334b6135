#include "Worker.h"

#include <system_error>
#include <utility>

namespace Halvard::Orv::Viewer {

Worker::~Worker()
{
    finish();
}

void Worker::start(std::function<void()> job)
{
    if (!hasThread()) {
        job();
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _jobs.push_back(std::move(job));
    }
    _isChanged.notify_one();
}

void Worker::finish()
{
    if (!_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isFinishing = true;
    }
    _isChanged.notify_one();
    _thread.join();
    _isFinishing = false;
}

bool Worker::hasThread()
{
    if (_thread.joinable())
        return true;
    try {
        _thread = std::thread([this] { work(); });
        return true;
    } catch (const std::system_error &) {
        return false;
    }
}

void Worker::work()
{
    std::unique_lock<std::mutex> lock(_mutex);
    for (;;) {
        _isChanged.wait(lock, [this] { return _isFinishing || !_jobs.empty(); });
        if (_jobs.empty())
            return;
        const std::function<void()> job = std::move(_jobs.front());
        _jobs.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace Halvard::Orv::Viewer
