#include "render/SharedTasks.h"

#include <gmock/gmock.h>

#include <QtCore/QRunnable>
#include <QtCore/QSemaphore>
#include <QtCore/QThreadPool>

#include <atomic>
#include <stdexcept>
#include <vector>

namespace {

using Halvard::Orv::Render::shareTasks;
using ::testing::Each;

/// How often each of `count` tasks is done.
std::vector<int> timesDone(std::size_t count, QThreadPool *pool)
{
    std::vector<std::atomic<int>> times(count);
    shareTasks(count, pool, [&times](std::size_t number) { ++times[number]; });
    return {times.begin(), times.end()};
}

TEST(SharedTasksTest, EachIsDoneOnce)
{
    QThreadPool pool;
    for (const int threads : {0, 1, 3}) {
        pool.setMaxThreadCount(threads);
        for (const std::size_t count : {0, 1, 2, 1000})
            EXPECT_THAT(timesDone(count, &pool), Each(1)) << threads << " threads, " << count;
    }
    EXPECT_THAT(timesDone(1000, nullptr), Each(1));
}

TEST(SharedTasksTest, ABusyPoolIsNotWaitedFor)
{
    QThreadPool busy;
    busy.setMaxThreadCount(1);
    QSemaphore mayEnd;
    busy.start(QRunnable::create([&mayEnd] { mayEnd.acquire(); }));
    EXPECT_THAT(timesDone(10, &busy), Each(1));
    mayEnd.release();
}

TEST(SharedTasksTest, AnExceptionComesBackAndEndsTheRest)
{
    QThreadPool pool;
    pool.setMaxThreadCount(3);
    constexpr int Bad = 20;
    std::atomic<int> done{0};
    const auto task = [&done](std::size_t number) {
        if (number == Bad)
            throw std::runtime_error("bad");
        ++done;
    };
    EXPECT_THROW(shareTasks(100'000, &pool, task), std::runtime_error);
    EXPECT_GE(done, Bad);
    done = 0;
    EXPECT_THROW(shareTasks(100'000, nullptr, task), std::runtime_error);
    EXPECT_EQ(done, Bad);
}

} // namespace
