#include "Repairs/OutputFiles.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

#include <sys/stat.h>

namespace Halvard::Orv::Checking {

namespace {

QString cannotWrite(const QString &path, const QString &reason)
{
    return QStringLiteral("cannot write '%1': %2").arg(path, reason);
}

} // namespace

bool isSameFile(const QString &a, const QString &b)
{
    struct stat first;
    struct stat second;
    return ::stat(QFile::encodeName(a).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(b).constData(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

QString obstacleTo(const QString &path)
{
    if (path.isEmpty() || path.contains(QChar::Null))
        return QStringLiteral("the output file has no name");
    const QFileInfo info(path);
    const QFileInfo directory(info.absolutePath());
    if (info.isDir())
        return cannotWrite(path, QStringLiteral("it is a directory"));
    // Renaming a file over a device or a pipe would take that away.
    if (info.exists() && !info.isFile())
        return cannotWrite(path, QStringLiteral("it is no regular file"));
    if (!directory.isDir())
        return cannotWrite(path, QStringLiteral("there is no such directory"));
    if (!directory.isWritable())
        return cannotWrite(path, QStringLiteral("its directory is not writable"));
    if (info.exists() && !info.isWritable())
        return cannotWrite(path, QStringLiteral("it is not writable"));
    return {};
}

QSaveFile *OutputFiles::open(const QString &path)
{
    _reason = obstacleTo(path);
    if (!_reason.isEmpty())
        return nullptr;
    auto file = std::make_unique<QSaveFile>(path);
    if (!file->open(QIODevice::WriteOnly)) {
        fail(*file);
        return nullptr;
    }
    _files.push_back(std::move(file));
    return _files.back().get();
}

void OutputFiles::fail(const QSaveFile &file)
{
    _reason = cannotWrite(file.fileName(), file.errorString());
}

bool OutputFiles::commit()
{
    // Nothing is renamed before all bytes of all files are with the system. Where a part of the
    // last block could be written, only another try learns that the rest cannot.
    for (const auto &file : _files) {
        if (file->error() != QFileDevice::NoError || !(file->flush() || file->flush())) {
            fail(*file);
            return false;
        }
    }
    QStringList made;
    for (auto file = _files.rbegin(); file != _files.rend(); ++file) {
        const QString path = (*file)->fileName();
        const bool isNew = !QFileInfo::exists(path);
        if (!(*file)->commit()) {
            fail(**file);
            std::for_each(made.cbegin(), made.cend(),
                          [](const QString &name) { QFile::remove(name); });
            return false;
        }
        if (isNew)
            made.append(path);
    }
    return true;
}

} // namespace Halvard::Orv::Checking
