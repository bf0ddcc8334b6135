#include "FileStamp.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <sys/stat.h>

namespace Halvard::Orv::Viewer {

FileStamp stampOf(const QString &path)
{
    struct stat status;
    if (path.contains(QChar::Null) || ::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    constexpr qint64 NanosecondsASecond = 1'000'000'000;
    return {quint64(status.st_dev), quint64(status.st_ino), qint64(status.st_size),
            qint64(status.st_mtim.tv_sec) * NanosecondsASecond + qint64(status.st_mtim.tv_nsec)};
}

FileStamps stampsOf(const QStringList &paths)
{
    FileStamps stamps;
    for (const QString &path : paths)
        stamps.insert(path, stampOf(path));
    return stamps;
}

bool endsInTheMiddle(const QString &path)
{
    QFile file(path);
    // Others than regular files may have one wait.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    if (file.size() == 0)
        return true;
    file.seek(file.size() - 1);
    const QByteArray last = file.read(1);
    return last != "\n" && last != "\r" && last != QByteArray(1, '\0'); // which ends UTF-16
}

} // namespace Halvard::Orv::Viewer
