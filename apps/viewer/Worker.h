/// \file
/// A thread beside the window's.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Halvard::Orv::Viewer {

/// Does jobs one after the other on a thread of its own, which begins with the first of them.
/// Where the system starts no thread, a job is done on the caller's: the window stands still
/// for so long, but nothing waits for ever.
class Worker
{
public:
    Worker() = default;
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;
    /// As finish().
    ~Worker();

    /// \param job throws nothing.
    void start(std::function<void()> job);

    /// Waits until all jobs are done, and ends the thread.
    void finish();

private:
    bool hasThread();
    void work();

    std::thread _thread;
    std::mutex _mutex;
    std::condition_variable _isChanged;
    std::deque<std::function<void()>> _jobs;
    bool _isFinishing = false;
};

} // namespace Halvard::Orv::Viewer
