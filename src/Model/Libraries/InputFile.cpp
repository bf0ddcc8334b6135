#include "Libraries/InputFile.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>
#include <QtCore/QtDebug>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace Halvard::Orv {

namespace {

constexpr QIODevice::OpenMode Mode = QIODevice::ReadOnly | QIODevice::Text;

#ifdef Q_OS_UNIX

bool isNullDevice(const struct stat &status)
{
    struct stat null;
    return S_ISCHR(status.st_mode) && ::stat("/dev/null", &null) == 0 &&
           null.st_rdev == status.st_rdev;
}

bool isReadable(const struct stat &status)
{
    return S_ISREG(status.st_mode) || isNullDevice(status);
}

void warnOfKind(const QFile &file, const struct stat &status)
{
    if (!S_ISDIR(status.st_mode))
        qWarning("'%s' is not read: it is a pipe, a socket or a device; copy what it gives into "
                 "a regular file",
                 qUtf8Printable(file.fileName()));
}

/// Opens whatever is at a path, without waiting for the other end of a pipe: between any two
/// looks another kind of file may have taken the place of the last one. Only a lease that
/// somebody holds on a file is waited for. Linux ends it after 45 seconds, if not told
/// otherwise.
/// \return the descriptor; or -1.
int openWithoutWaiting(const QByteArray &path)
{
    constexpr unsigned long BetweenLooks = 1; // in milliseconds
    constexpr qint64 Patience = 60 * 1000;
    const QDeadlineTimer deadline(Patience);
    for (;;) {
        const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (descriptor >= 0 || (errno != EWOULDBLOCK && errno != EINTR))
            return descriptor;
        if (deadline.hasExpired()) {
            qWarning("'%s' is not read: another program has not let go of it for a minute",
                     qUtf8Printable(QFile::decodeName(path)));
            return -1;
        }
        QThread::msleep(BetweenLooks);
    }
}

/// Opens a file of the file system.
bool openNative(QFile &file)
{
    const QByteArray path = QFile::encodeName(file.fileName());
    struct stat status;
    if (::stat(path.constData(), &status) != 0)
        return false;
    if (!isReadable(status)) { // not even opened: that alone can have effects on a device
        warnOfKind(file, status);
        return false;
    }
    const int descriptor = openWithoutWaiting(path);
    if (descriptor < 0)
        return false;
    if (::fstat(descriptor, &status) == 0) {
        if (!isReadable(status))
            warnOfKind(file, status);
        else if (file.open(descriptor, Mode, QFileDevice::AutoCloseHandle))
            return true;
    }
    ::close(descriptor);
    return false;
}

#endif

} // namespace

bool openInputFile(QFile &file)
{
    if (!file.exists()) // also names that the system would cut at a zero byte
        return false;
    const QFileInfo info(file);
#ifdef Q_OS_UNIX
    if (info.isNativePath())
        return openNative(file);
#endif
    return info.isFile() && file.open(Mode);
}

} // namespace Halvard::Orv
