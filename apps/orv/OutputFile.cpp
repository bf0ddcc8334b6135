#include "OutputFile.h"

#include "CommandLine.h"
#include "Interruption.h"

#include <common/ModelFiles.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <algorithm>
#include <optional>
#include <utility>

#include <sys/stat.h>
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

/// Device and number of a file, whatever its name; nothing where there is none.
std::optional<std::pair<dev_t, ino_t>> identityOf(const QString &path)
{
    struct stat status;
    if (path.contains(QChar::Null) || ::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return std::pair(status.st_dev, status.st_ino);
}

/// What a model needs of the file at `path`; null for nothing.
QString inputThatIs(const QString &path, const QString &model)
{
    const auto output = identityOf(path);
    const auto isOutput = [&output](const QString &input) { return identityOf(input) == output; };
    if (!output)
        return {};
    if (isOutput(model))
        return QStringLiteral("the model itself");
    const Apps::ModelFiles files = Apps::filesOf(model);
    if (std::any_of(files.libraries.begin(), files.libraries.end(), isOutput))
        return QStringLiteral("a material library of the model");
    if (std::any_of(files.textures.begin(), files.textures.end(), isOutput))
        return QStringLiteral("a texture of the model");
    return {};
}

} // namespace

OutputFile::OutputFile(const QString &path, std::unique_ptr<QFileDevice> device)
    : _path(path), _device(std::move(device))
{}

OutputFile::~OutputFile() = default;

QString OutputFile::obstacle(const QString &path, const QString &model)
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
    if (info.isFile()) {
        const QString input = inputThatIs(path, model);
        if (!input.isNull())
            return cannotWrite(path, QStringLiteral("it is %1, which would be lost").arg(input));
    }
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
        std::optional<UnfinishedFile> unfinished;
        if (qobject_cast<QSaveFile *>(file->_device.get()))
            unfinished.emplace(*file->_device);
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
