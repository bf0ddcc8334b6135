#include "Threads/Work.h"

#include "Lanes/FloatingPointState.h"

#include <QtCore/QRunnable>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace Halvard::Orv {

namespace {

/// How long waiting goes on without a look at the clock for the callback.
constexpr std::chrono::milliseconds LongestWait(10);

/// Where the stages begin, in fractions of the whole: by their shares of the time that files
/// of 200 MB take on one thread.
double fractionOfWhole(WorkStage stage, double fraction)
{
    constexpr double begins[] = {0.0, 0.55, 0.79, 0.96, 1.0};
    const auto at = static_cast<size_t>(stage);
    return begins[at] + (begins[at + 1] - begins[at]) * std::clamp(fraction, 0.0, 1.0);
}

/// What the threads of one call share. Lives until the last helper is gone, which may be after
/// the call.
struct Crew
{
    std::mutex mutex{};
    std::condition_variable allDone{};
    /// Of the calling thread: not touched once the crew is closed and nobody is at work.
    const std::function<void(bool)> *body;
    std::atomic<bool> *isStopping;
    bool isClosed = false;
    unsigned atWork = 0;
    std::exception_ptr failure{};

    void run(bool isCaller)
    {
        try {
            (*body)(isCaller);
        } catch (...) {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!failure)
                failure = std::current_exception();
            *isStopping = true;
        }
    }
};

/// Orders what the calling thread has done before what a helper does, as the pool does as well:
/// but within Qt, where the thread sanitizer does not see it.
std::atomic<unsigned> handedOver{0};

/// Deleted by the pool when it has run.
class Helper : public QRunnable
{
public:
    explicit Helper(std::shared_ptr<Crew> crew, bool &hasBegun)
        : _crew(std::move(crew)), _hasBegun(hasBegun)
    {}

    void run() override
    {
        handedOver.load(std::memory_order_acquire);
        const FloatingPointState state;
        std::unique_lock<std::mutex> lock(_crew->mutex);
        if (_crew->isClosed)
            return;
        _hasBegun = true;
        ++_crew->atWork;
        lock.unlock();
        _crew->run(false);
        lock.lock();
        --_crew->atWork;
        _crew->allDone.notify_all();
    }

private:
    const std::shared_ptr<Crew> _crew;
    bool &_hasBegun; ///< not touched once the crew is closed
};

/// The helpers of one call, and whether they have begun.
class Helpers
{
public:
    Helpers(QThreadPool &pool, std::shared_ptr<Crew> crew, unsigned count)
        : _pool(pool), _crew(std::move(crew)), _entries(count)
    {
        try {
            for (Entry &entry : _entries) {
                auto helper = std::make_unique<Helper>(_crew, entry.hasBegun);
                handedOver.fetch_add(1, std::memory_order_release);
                pool.start(helper.get());
                entry.helper = helper.release();
            }
        } catch (const std::bad_alloc &) {
            // Those that were started will do.
        }
    }

    /// Takes those back that have not begun, and waits for the others. A helper that is just
    /// being started is neither: it will find the crew closed, or never run at all where the
    /// system has no more threads.
    ~Helpers()
    {
        std::unique_lock<std::mutex> lock(_crew->mutex);
        _crew->isClosed = true;
        for (Entry &entry : _entries) {
            // Not begun, and so not deleted: to begin, it needs the lock.
            if (entry.helper && !entry.hasBegun && _pool.tryTake(entry.helper))
                delete entry.helper;
        }
        _crew->allDone.wait(lock, [&] { return _crew->atWork == 0; });
    }

    Helpers(const Helpers &) = delete;
    Helpers &operator=(const Helpers &) = delete;

private:
    struct Entry
    {
        Helper *helper = nullptr;
        bool hasBegun = false;
    };

    QThreadPool &_pool;
    const std::shared_ptr<Crew> _crew;
    std::vector<Entry> _entries;
};

} // namespace

Work::Work(QThreadPool *pool, Callback callback)
    : _pool(pool),
      _threadCount(1 + (pool ? static_cast<unsigned>(std::max(pool->maxThreadCount(), 0)) : 0)),
      _callback(std::move(callback))
{
    _sinceCall.start();
}

void Work::report(WorkStage stage, double fraction)
{
    if (_callback && _sinceCall.elapsed() >= _interval)
        tell(stage, fractionOfWhole(stage, fraction));
}

void Work::finish()
{
    if (_callback)
        tell(WorkStage::Normals, 1.0);
}

void Work::tell(WorkStage stage, double fraction)
{
    _sinceCall.start();
    _fraction = std::max(_fraction, fraction);
    if (!_callback(stage, _fraction))
        throw WorkStopped();
}

void Work::step(WorkSteps &steps)
{
    disturb();
    const size_t done = ++steps.done;
    if (isStopping())
        throw WorkStopped();
    if (std::this_thread::get_id() == _callingThread)
        report(steps.part.stage,
               steps.part.at(static_cast<double>(done) / static_cast<double>(steps.count)));
}

void Work::together(unsigned helperCount, const std::function<void(bool isCaller)> &body)
{
    _isStopping = false;
    helperCount = std::min(helperCount, _threadCount - 1);
    if (helperCount == 0)
        return body(true);

    const auto crew = std::make_shared<Crew>();
    crew->body = &body;
    crew->isStopping = &_isStopping;
    {
        const Helpers helpers(*_pool, crew, helperCount);
        crew->run(true);
    }
    // Taken out: a helper that comes late deletes the crew on its thread.
    if (const std::exception_ptr failure = std::exchange(crew->failure, nullptr))
        std::rethrow_exception(failure);
}

void Work::forEachInOrder(const StagePart &part, size_t count,
                          const std::function<void(size_t)> &task)
{
    _isStopping = false;
    for (size_t number = 0; number < count; ++number) {
        disturb();
        task(number);
        report(part.stage, part.at(static_cast<double>(number + 1) / static_cast<double>(count)));
    }
}

void Work::forEach(const StagePart &part, size_t count, const std::function<void(size_t)> &task)
{
    if (isAlone() || count <= 1)
        return forEachInOrder(part, count, task);

    std::atomic<size_t> next{0};
    std::mutex mutex;
    std::condition_variable finished;
    size_t finishedCount = 0;
    const auto fraction = [&](size_t done) {
        return part.at(static_cast<double>(done) / static_cast<double>(count));
    };
    together(static_cast<unsigned>(std::min<size_t>(count - 1, _threadCount)), [&](bool isCaller) {
        for (size_t number = next++; number < count && !isStopping(); number = next++) {
            disturb();
            task(number);
            std::unique_lock<std::mutex> lock(mutex);
            const size_t done = ++finishedCount;
            lock.unlock();
            if (isCaller)
                report(part.stage, fraction(done));
            else if (done == count)
                finished.notify_all();
        }
        if (!isCaller || !_callback)
            return;
        // The others are on their last tasks; meanwhile the callback is still asked.
        std::unique_lock<std::mutex> lock(mutex);
        while (finishedCount < count && !isStopping()) {
            finished.wait_for(lock, LongestWait);
            const size_t done = finishedCount;
            lock.unlock();
            report(part.stage, fraction(done));
            lock.lock();
        }
    });
    report(part.stage, part.end);
}

} // namespace Halvard::Orv
