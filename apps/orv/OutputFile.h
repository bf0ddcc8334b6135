/// \file
/// Where results go: a file that is there whole or not at all, or stdout.
#pragma once

#include "ExitStatus.h"

#include <QtCore/QString>

#include <functional>
#include <memory>

class QFileDevice;
class QIODevice;

namespace Halvard::Orv::Cli {

class OutputFile
{
public:
    /// Opens `path` for writing, or stdout when it is empty. A file appears, and an
    /// older one is replaced, only by commit(). Devices and pipes are written to
    /// directly: renaming a file over them would take them away.
    /// \return null when it cannot be opened; `error` then receives a sentence.
    static std::unique_ptr<OutputFile> open(const QString &path, QString &error);

    /// Why open() would fail, as far as can be told without trying, or would do harm: when
    /// the output is the model or one of the files that it names, under whatever name. Empty
    /// when nothing is against it. Asked before long work, not instead of open().
    static QString obstacle(const QString &path, const QString &model);

    /// Opens, has `write` write, and commits. Prints on stderr what goes wrong.
    static ExitStatus write(const QString &path, const std::function<void(QIODevice &)> &write);

    /// Leaves everything as it was, unless commit() came before.
    ~OutputFile();

    QIODevice &device();

    /// \return false when something could not be written, now or before; `error` then
    ///         receives a sentence.
    bool commit(QString &error);

private:
    OutputFile(const QString &path, std::unique_ptr<QFileDevice> device);

    QString _path;
    std::unique_ptr<QFileDevice> _device;
};

} // namespace Halvard::Orv::Cli
