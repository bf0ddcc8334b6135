#include "Pieces/DeviceReading.h"

#include "Threads/Work.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileDevice>
#include <QtCore/QIODevice>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace Halvard::Orv {

namespace {

/// Waits until a sequential device has more bytes.
/// \return false when it has ended. QIODevice does not tell the end from a time that has
///         passed, but only the latter takes all of the time.
bool waitForBytes(QIODevice &device, Work *work)
{
    constexpr int WaitMilliseconds = 50;
    for (;;) {
        QElapsedTimer timer;
        timer.start();
        if (device.waitForReadyRead(WaitMilliseconds))
            return true;
        if (!device.isOpen() || timer.elapsed() < WaitMilliseconds / 2)
            return false;
        if (work)
            work->report(WorkStage::Reading, 0.0); // no further than it was
    }
}

} // namespace

size_t readSome(QIODevice &device, char *bytes, size_t count, Work *work)
{
    for (;;) {
        const qint64 read = device.read(bytes, static_cast<qint64>(count));
        if (read > 0)
            return static_cast<size_t>(read);
        if (read < 0 || !device.isSequential() || !waitForBytes(device, work))
            return 0;
    }
}

QByteArray firstBytes(QIODevice &device, int count, Work *work)
{
    for (;;) {
        QByteArray bytes = device.peek(count);
        if (bytes.size() >= count || !device.isSequential())
            return bytes;
        if (!waitForBytes(device, work))
            return device.peek(count);
    }
}

#ifdef Q_OS_UNIX

int descriptorOf(QIODevice &device)
{
    const auto *const file = qobject_cast<QFileDevice *>(&device);
    if (!file || file->isWritable() || file->pos() != 0) // bytes not written yet are elsewhere
        return -1;
    const int descriptor = file->handle();
    struct stat status;
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return -1;
    return descriptor;
}

size_t readAt(int descriptor, qint64 offset, char *bytes, size_t count)
{
    size_t done = 0;
    while (done < count) {
        const ssize_t read = ::pread(descriptor, bytes + done, count - done,
                                     static_cast<off_t>(offset + static_cast<qint64>(done)));
        if (read < 0 && errno == EINTR)
            continue;
        if (read <= 0)
            break;
        done += static_cast<size_t>(read);
    }
    return done;
}

#else

int descriptorOf(QIODevice &)
{
    return -1;
}

size_t readAt(int, qint64, char *, size_t)
{
    return 0;
}

#endif

} // namespace Halvard::Orv
