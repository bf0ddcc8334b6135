#include "BackgroundWork.h"

namespace Halvard::Orv::Viewer {

void BackgroundWork::Job::tell(std::function<void()> action) const
{
    _work->post(_stop, std::move(action));
}

BackgroundWork::BackgroundWork(QObject *parent) : QObject(parent) {}

BackgroundWork::~BackgroundWork()
{
    stop();
    _worker.finish();
}

void BackgroundWork::start(std::function<End(const Job &)> work)
{
    stop();
    _stop = std::make_shared<std::atomic<bool>>(false);
    const Job job(*this, _stop);
    _worker.start([this, job, work = std::move(work)] {
        if (job.isStopped())
            return;
        const End end = work(job);
        post(job._stop, [this, end] {
            _stop.reset(); // first: the end may start another job
            if (end)
                end();
        });
    });
}

void BackgroundWork::stop()
{
    if (_stop)
        *_stop = true;
    _stop.reset();
}

void BackgroundWork::post(const Job::Stop &stop, std::function<void()> action)
{
    // What is still under way when the work is destroyed goes with it.
    QMetaObject::invokeMethod(
        this,
        [this, stop, action = std::move(action)] {
            if (_stop == stop)
                action();
        },
        Qt::QueuedConnection);
}

} // namespace Halvard::Orv::Viewer
