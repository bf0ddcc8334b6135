#include "OutputFile.h"

#include "CommandLine.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <unistd.h>

namespace Halvard::Orv::Cli {

namespace {

QString cannotWrite(const QString &path, const QString &reason)
{
    if (path.isEmpty())
        return QStringLiteral("Cannot write to stdout: %1.").arg(reason);
    return QStringLiteral("Cannot write '%1': %2.").arg(path, reason);
}

bool isDeviceOrPipe(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

} // namespace

OutputFile::OutputFile(const QString &path, std::unique_ptr<QFileDevice> device)
    : _path(path), _device(std::move(device))
{}

OutputFile::~OutputFile() = default;

QString OutputFile::obstacle(const QString &path)
{
    const QFileInfo info(path);
    const QFileInfo directory(info.absolutePath());
    if (info.isDir())
        return cannotWrite(path, QStringLiteral("it is a directory"));
    if (!directory.isDir())
        return cannotWrite(path, QStringLiteral("there is no such directory"));
    if (!info.exists() && !directory.isWritable())
        return cannotWrite(path, QStringLiteral("its directory is not writable"));
    if (info.exists() && !info.isWritable())
        return cannotWrite(path, QStringLiteral("it is not writable"));
    return {};
}

std::unique_ptr<OutputFile> OutputFile::open(const QString &path, QString &error)
{
    std::unique_ptr<QFileDevice> device;
    bool isOpen = false;
    if (path.isEmpty()) {
        auto file = std::make_unique<QFile>();
        isOpen = file->open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
        device = std::move(file);
    } else if (isDeviceOrPipe(path)) {
        device = std::make_unique<QFile>(path);
        isOpen = device->open(QIODevice::WriteOnly);
    } else {
        device = std::make_unique<QSaveFile>(path);
        isOpen = device->open(QIODevice::WriteOnly);
    }
    if (isOpen)
        return std::unique_ptr<OutputFile>(new OutputFile(path, std::move(device)));
    error = cannotWrite(path, device->errorString());
    return nullptr;
}

ExitStatus OutputFile::write(const QString &path, const std::function<void(QIODevice &)> &write)
{
    QString error;
    if (const auto file = open(path, error)) {
        write(file->device());
        if (file->commit(error))
            return Fine;
    }
    printError(error);
    return CannotRun;
}

QIODevice &OutputFile::device()
{
    return *_device;
}

bool OutputFile::commit(QString &error)
{
    // QSaveFile itself does not notice when the last of its buffer cannot be written.
    // Where a part of it was, only another try learns the reason.
    bool isWritten =
        _device->error() == QFileDevice::NoError && (_device->flush() || _device->flush());
    if (auto *saved = qobject_cast<QSaveFile *>(_device.get()))
        isWritten = isWritten && saved->commit();
    if (!isWritten)
        error = cannotWrite(_path, _device->errorString());
    return isWritten;
}

} // namespace Halvard::Orv::Cli
