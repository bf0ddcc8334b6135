/// \file
/// Work that may use several threads, tells how far it is, and can be stopped.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QtGlobal>

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <utility>

class QThreadPool;

namespace Halvard::Orv {

/// What is being done, in this order.
enum class WorkStage
{
    Reading,
    Welding,
    Triangulating,
    Normals,
};

/// Thrown where work ends because the callback asked for it.
struct WorkStopped
{};

/// A part of a stage: fractions of it, from 0 to 1.
struct StagePart
{
    WorkStage stage;
    double begin = 0.0;
    double end = 1.0;

    double at(double fraction) const { return begin + (end - begin) * fraction; }
};

/// Steps of tasks that take long.
struct WorkSteps
{
    StagePart part;
    size_t count;
    std::atomic<size_t> done{0};
};

/// The threads and the callback that one piece of work has.
///
/// Threads are borrowed from a pool and only while a call lasts. Whoever comes takes the
/// next task; the calling thread takes part, and takes all of them when the pool is busy: no
/// thread is waited for that has not begun. When a task throws, the others end as soon as
/// they have finished the task at hand, and the calling thread throws the same.
///
/// Made and called on one thread, the calling thread. Results must not depend on which thread
/// does what: tasks are numbered, and write to places of their own.
class Work
{
public:
    /// Called with the stage and the fraction of the whole, which never falls. A false stops
    /// the work, as does whatever it throws.
    using Callback = std::function<bool(WorkStage stage, double fraction)>;

    /// \param pool as many threads as it allows work beside the calling one; null: none.
    explicit Work(QThreadPool *pool = nullptr, Callback callback = {});

    Work(const Work &) = delete;
    Work &operator=(const Work &) = delete;

    /// Threads that may work at the same time, the calling one included.
    unsigned threadCount() const { return _threadCount; }
    bool isAlone() const { return _threadCount == 1; }

    /// While it lives, the calling thread works alone: for what is too small to be shared out.
    class OnOneThread
    {
    public:
        explicit OnOneThread(Work &work)
            : _work(work), _threadCount(std::exchange(work._threadCount, 1u))
        {}
        ~OnOneThread() { _work._threadCount = _threadCount; }

        OnOneThread(const OnOneThread &) = delete;
        OnOneThread &operator=(const OnOneThread &) = delete;

    private:
        Work &_work;
        const unsigned _threadCount;
    };

    /// Tells how far a stage is: at most every 50 ms.
    void report(WorkStage stage, double fraction);
    /// Tells that all is done.
    void finish();

    /// Calls task(number) once for every number below `count`, in this order where the
    /// calling thread is alone.
    void forEach(const StagePart &part, size_t count, const std::function<void(size_t)> &task);

    /// The same on the calling thread only, in this order: for tasks that count on each other.
    void forEachInOrder(const StagePart &part, size_t count,
                        const std::function<void(size_t)> &task);

    /// Called by a task that takes long, on any thread, after each of its steps.
    /// Throws WorkStopped when the work has ended meanwhile; tells how far it is.
    void step(WorkSteps &steps);

    /// Runs `body` on the calling thread, to which it says so, and at the same time on up to
    /// `helperCount` threads of the pool; returns when all have returned. A body that has
    /// nothing to do returns; it also returns soon when isStopping().
    void together(unsigned helperCount, const std::function<void(bool isCaller)> &body);

    /// Whether a body has thrown, so that the others should return.
    bool isStopping() const { return _isStopping.load(std::memory_order_relaxed); }

    /// \name For tests
    /// @{
    /// Milliseconds between two calls of the callback.
    void setInterval(qint64 milliseconds) { _interval = milliseconds; }
    /// Called on any thread before each task, to disturb the order of things.
    void setDisturbance(std::function<void()> disturbance)
    {
        _disturbance = std::move(disturbance);
    }
    void disturb() const
    {
        if (_disturbance)
            _disturbance();
    }
    /// @}

private:
    void tell(WorkStage stage, double fraction);

    QThreadPool *_pool;
    unsigned _threadCount;
    Callback _callback;
    std::function<void()> _disturbance;
    QElapsedTimer _sinceCall;
    qint64 _interval = 50;
    double _fraction = 0.0;
    const std::thread::id _callingThread = std::this_thread::get_id();
    std::atomic<bool> _isStopping{false};
};

/// The part of [0, count) that is part `number` of `partCount`, about as large as the others.
struct EqualRange
{
    EqualRange(size_t number, size_t partCount, size_t count)
        : begin(count / partCount * number + count % partCount * number / partCount),
          end(count / partCount * (number + 1) + count % partCount * (number + 1) / partCount)
    {}

    size_t begin;
    size_t end;
};

/// The part of [0, count) that is task `number` of tasks of `size` each.
struct TaskRange
{
    TaskRange(size_t number, size_t size, size_t count)
        : begin(number * size), end(count - begin < size ? count : begin + size)
    {}

    static size_t taskCount(size_t size, size_t count) { return (count + size - 1) / size; }

    size_t begin;
    size_t end;
};

} // namespace Halvard::Orv
