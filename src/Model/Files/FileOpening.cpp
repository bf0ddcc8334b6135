#include "Files/FileOpening.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

namespace Halvard::Orv {

namespace {

#ifdef Q_OS_UNIX

bool isNullDevice(const struct stat &status)
{
    struct stat null;
    return S_ISCHR(status.st_mode) && ::stat("/dev/null", &null) == 0 &&
           null.st_rdev == status.st_rdev;
}

FileTrouble troubleOfKind(const struct stat &status)
{
    if (S_ISREG(status.st_mode) || isNullDevice(status))
        return FileTrouble::None;
    return S_ISDIR(status.st_mode) ? FileTrouble::Directory : FileTrouble::NotRegular;
}

/// Opens whatever is at a path, without waiting for the other end of a pipe: between any two
/// looks another kind of file may have taken the place of the last one. Only a lease that
/// somebody holds on a file is waited for. Linux ends it after 45 seconds, if not told
/// otherwise.
/// \return the descriptor; or -1.
int openDescriptor(const QByteArray &path)
{
    constexpr unsigned long BetweenLooks = 1; // in milliseconds
    constexpr qint64 Patience = 60 * 1000;
    const QDeadlineTimer deadline(Patience);
    for (;;) {
        const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (descriptor >= 0 || (errno != EWOULDBLOCK && errno != EINTR))
            return descriptor;
        if (deadline.hasExpired()) {
            errno = EWOULDBLOCK;
            return -1;
        }
        QThread::msleep(BetweenLooks);
    }
}

/// Opens a file of the file system.
FileTrouble openNative(QFile &file, QIODevice::OpenMode mode)
{
    const QByteArray path = QFile::encodeName(file.fileName());
    struct stat status;
    if (::stat(path.constData(), &status) != 0)
        return FileTrouble::Missing;
    if (const FileTrouble kind = troubleOfKind(status); kind != FileTrouble::None)
        return kind; // not even opened: that alone can have effects on a device
    const int descriptor = openDescriptor(path);
    if (descriptor < 0) {
        if (errno == EWOULDBLOCK)
            return FileTrouble::Busy;
        file.open(mode); // fails as well, and leaves the reason in `file`
        file.close();
        return FileTrouble::Unreadable;
    }
    FileTrouble trouble = FileTrouble::Unreadable;
    if (::fstat(descriptor, &status) == 0) {
        trouble = troubleOfKind(status);
        if (trouble == FileTrouble::None &&
            !file.open(descriptor, mode, QFileDevice::AutoCloseHandle))
            trouble = FileTrouble::Unreadable;
    }
    if (trouble != FileTrouble::None)
        ::close(descriptor);
    return trouble;
}

#endif

} // namespace

FileTrouble openWithoutWaiting(QFile &file, QIODevice::OpenMode mode)
{
    if (!file.exists()) // also names that the system would cut at a zero byte
        return FileTrouble::Missing;
    const QFileInfo info(file);
#ifdef Q_OS_UNIX
    if (info.isNativePath())
        return openNative(file, mode);
#endif
    if (!info.isFile())
        return info.isDir() ? FileTrouble::Directory : FileTrouble::NotRegular;
    return file.open(mode) ? FileTrouble::None : FileTrouble::Unreadable;
}

bool isMadeUpByTheKernel(const QFile &file)
{
#ifdef Q_OS_LINUX
    struct statfs system;
    if (file.handle() < 0 || ::fstatfs(file.handle(), &system) != 0)
        return false;
    for (const long kind :
         {PROC_SUPER_MAGIC, SYSFS_MAGIC, DEBUGFS_MAGIC, TRACEFS_MAGIC, SECURITYFS_MAGIC}) {
        if (system.f_type == kind)
            return true;
    }
#else
    Q_UNUSED(file)
#endif
    return false;
}

} // namespace Halvard::Orv
