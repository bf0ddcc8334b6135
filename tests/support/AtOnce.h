/// \file
/// Threads that begin together.
#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace OrvTest {

/// As many as the tests of concurrent use start: more than any machine of ours has
/// processors, so that threads are also interrupted half-way.
inline constexpr int threadsAtOnce = 16;

/// Runs `task(number)` on threadsAtOnce threads, numbered from 0. None begins before
/// all are there. Returns when all have ended.
template <typename Task>
void runAtOnce(const Task &task)
{
    std::atomic<int> missing{threadsAtOnce};
    std::vector<std::thread> threads;
    for (int number = 0; number < threadsAtOnce; ++number) {
        threads.emplace_back([&missing, &task, number] {
            --missing;
            while (missing > 0)
                std::this_thread::yield();
            task(number);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace OrvTest
