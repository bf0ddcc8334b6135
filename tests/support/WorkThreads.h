/// \file
/// Threads for work, and delays that put them out of step.
#pragma once

#include "Threads/Work.h"

#include <QtCore/QThreadPool>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

namespace OrvTest {

/// Work on a pool of its own.
class WorkThreads
{
public:
    /// \param threadCount the calling thread included.
    explicit WorkThreads(int threadCount, Halvard::Orv::Work::Callback callback = {})
        : _work(pool(threadCount), std::move(callback))
    {
        _work.setInterval(0);
    }

    /// Some tasks wait a little before they begin, which ones is another for each seed. Few:
    /// on a busy machine, each that gives its processor away waits for all who want it.
    void disturb(std::uint32_t seed)
    {
        _state = seed;
        _work.setDisturbance([this] {
            const std::uint32_t number = _state += 0x9e3779b9u;
            const std::uint32_t mixed = (number ^ number >> 15) * 0x85ebca6bu >> 24;
            if (mixed < 4)
                std::this_thread::sleep_for(std::chrono::microseconds(40 * mixed));
            else if (mixed < 8)
                std::this_thread::yield();
        });
    }

    Halvard::Orv::Work &work() { return _work; }

private:
    QThreadPool *pool(int threadCount)
    {
        _pool.setMaxThreadCount(threadCount - 1);
        return &_pool;
    }

    QThreadPool _pool;
    std::atomic<std::uint32_t> _state{0};
    Halvard::Orv::Work _work;
};

} // namespace OrvTest
