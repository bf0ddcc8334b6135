// Threads of a pool, also one that has none to give.
#include "Threads/Work.h"

#include <gtest/gtest.h>

#include <QtCore/QRunnable>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <atomic>
#include <chrono>
#include <future>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

constexpr StagePart Part = {WorkStage::Reading};

/// Keeps a thread of a pool busy while it lives.
class BusyThread
{
public:
    explicit BusyThread(QThreadPool &pool)
    {
        pool.start([this] {
            _begun.release();
            _mayEnd.acquire();
            _ended.release();
        });
        _begun.acquire();
    }
    ~BusyThread()
    {
        _mayEnd.release();
        _ended.acquire();
    }

private:
    QSemaphore _begun, _mayEnd, _ended;
};

std::vector<int> countsOfTasks(Work &work, size_t count)
{
    std::vector<std::atomic<int>> calls(count);
    work.forEach(Part, count, [&](size_t number) { ++calls.at(number); });
    return {calls.begin(), calls.end()};
}

TEST(Work, DoesEachTaskOnce)
{
    for (const int threads : {0, 1, 2, 6, 15}) {
        QThreadPool pool;
        pool.setMaxThreadCount(threads);
        Work work(&pool);
        EXPECT_EQ(work.threadCount(), static_cast<unsigned>(threads) + 1);
        for (const size_t count : {0, 1, 2, 3, 1000})
            EXPECT_EQ(countsOfTasks(work, count), std::vector<int>(count, 1)) << threads;
    }
    Work alone;
    EXPECT_TRUE(alone.isAlone());
    EXPECT_EQ(countsOfTasks(alone, 10), std::vector<int>(10, 1));
}

TEST(Work, UsesThreadsThatAreFree)
{
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    Work work(&pool);
    // Neither task ends before the other has begun.
    QSemaphore begun;
    std::atomic<bool> bothBegan{true};
    work.forEach(Part, 2, [&](size_t) {
        begun.release();
        const bool both = begun.tryAcquire(2, 20000);
        if (both)
            begun.release(2);
        bothBegan = bothBegan && both;
    });
    EXPECT_TRUE(bothBegan);
}

TEST(Work, DoesNotWaitForABusyPool)
{
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    {
        const BusyThread busy(pool);
        Work work(&pool);
        EXPECT_EQ(countsOfTasks(work, 100), std::vector<int>(100, 1));
    }
    EXPECT_TRUE(pool.waitForDone(20000)) << "something is left in the pool";
}

TEST(Work, MayBeDoneOnTheOnlyThreadOfThePool)
{
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    std::promise<std::vector<int>> counts;
    pool.start([&] {
        Work work(&pool);
        counts.set_value(countsOfTasks(work, 100));
    });
    std::future<std::vector<int>> result = counts.get_future();
    ASSERT_EQ(result.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_EQ(result.get(), std::vector<int>(100, 1));
}

TEST(Work, ThrowsWhatATaskThrows)
{
    for (const int threads : {0, 1, 7}) {
        QThreadPool pool;
        pool.setMaxThreadCount(threads);
        Work work(&pool);
        std::atomic<int> begun{0};
        EXPECT_THROW(work.forEach(Part, 100000,
                                  [&](size_t number) {
                                      ++begun;
                                      if (number == 50)
                                          throw std::runtime_error("this one");
                                  }),
                     std::runtime_error);
        EXPECT_LT(begun, 100000) << "the others go on";
        EXPECT_EQ(countsOfTasks(work, 10), std::vector<int>(10, 1)) << "it can be used again";
    }
}

TEST(Work, LeavesNoThreadBehind)
{
    QThreadPool pool;
    pool.setMaxThreadCount(4);
    for (int i = 0; i < 200; ++i) {
        std::atomic<int> atWork{0};
        Work work(&pool);
        work.forEach(Part, 5, [&](size_t) {
            ++atWork;
            std::this_thread::yield();
            --atWork;
        });
        EXPECT_EQ(atWork, 0);
    }
}

TEST(Work, TellsItsProgressOnTheCallingThread)
{
    for (const int threads : {0, 3}) {
        QThreadPool pool;
        pool.setMaxThreadCount(threads);
        std::vector<double> fractions;
        const auto caller = std::this_thread::get_id();
        Work work(&pool, [&](WorkStage, double fraction) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            fractions.push_back(fraction);
            return true;
        });
        work.setInterval(0);
        for (const WorkStage stage :
             {WorkStage::Reading, WorkStage::Welding, WorkStage::Triangulating, WorkStage::Normals})
            work.forEach({stage}, 20, [](size_t) {});
        work.report(WorkStage::Reading, 0.5); // late: the fraction stays
        work.finish();
        EXPECT_GE(fractions.size(), 2u);
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GE(fractions.front(), 0.0);
        EXPECT_EQ(fractions.back(), 1.0);
    }
}

TEST(Work, AsksAtMostEveryFiftyMilliseconds)
{
    int calls = 0;
    QElapsedTimer timer;
    timer.start();
    Work work(nullptr, [&](WorkStage, double) {
        ++calls;
        return true;
    });
    while (timer.elapsed() < 220)
        work.report(WorkStage::Reading, 0.5);
    EXPECT_GE(calls, 1);
    EXPECT_LE(calls, static_cast<int>(timer.elapsed() / 50));
}

TEST(Work, StopsWhenToldSo)
{
    for (const int threads : {0, 3}) {
        QThreadPool pool;
        pool.setMaxThreadCount(threads);
        Work work(&pool, [](WorkStage, double) { return false; });
        work.setInterval(0);
        std::atomic<int> begun{0};
        const auto task = [&](size_t) {
            ++begun;
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        };
        EXPECT_THROW(work.forEach(Part, 20000, task), WorkStopped);
        EXPECT_LT(begun, 20000);
    }
}

TEST(TaskRange, CoversAllElements)
{
    for (const size_t count : {0, 1, 9, 10, 11, 100}) {
        size_t next = 0;
        for (size_t task = 0; task < TaskRange::taskCount(10, count); ++task) {
            const TaskRange range(task, 10, count);
            EXPECT_EQ(range.begin, next);
            EXPECT_GT(range.end, range.begin);
            next = range.end;
        }
        EXPECT_EQ(next, count);
    }
}

} // namespace
} // namespace OrvTest
