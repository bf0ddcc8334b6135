/// \file
/// Work on a thread beside the window's.
#pragma once

#include "../Worker.h"

#include <QtCore/QObject>

#include <atomic>
#include <functional>
#include <memory>

namespace Halvard::Orv::Viewer {

/// Does one job at a time on a thread of its own; the next job stops that before it. Lives on the
/// window's thread, and hands results over there.
class BackgroundWork : public QObject
{
    Q_OBJECT

public:
    /// What a job knows of itself, on its thread.
    class Job
    {
    public:
        bool isStopped() const { return *_stop; }
        /// Has something done on the window's thread, unless the job is stopped before.
        void tell(std::function<void()> action) const;

    private:
        friend class BackgroundWork;
        using Stop = std::shared_ptr<std::atomic<bool>>;
        Job(BackgroundWork &work, Stop stop) : _work(&work), _stop(std::move(stop)) {}

        BackgroundWork *_work;
        Stop _stop;
    };

    /// Done on the window's thread at the end of a job.
    using End = std::function<void()>;

    explicit BackgroundWork(QObject *parent = nullptr);
    /// Stops the job and waits for its end, which comes soon.
    ~BackgroundWork() override;

    /// \param work is done on the other thread, and asks now and then whether it is stopped.
    ///        The end that it gives is for jobs that are not.
    void start(std::function<End(const Job &)> work);
    void stop();
    /// Until the end of the job that was started last, or its stop.
    bool isBusy() const { return _stop != nullptr; }

private:
    void post(const Job::Stop &stop, std::function<void()> action);

    Worker _worker;
    Job::Stop _stop; // of the job that is under way; null for none
};

} // namespace Halvard::Orv::Viewer
