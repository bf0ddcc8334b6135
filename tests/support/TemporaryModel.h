/// \file
/// A directory of model files that lives as long as the test.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

namespace OrvTest {

/// The files are written byte for byte and removed with the object.
class TemporaryModel
{
public:
    TemporaryModel();

    /// Absolute path of the directory, without a trailing slash.
    QString directory() const;
    /// Where `name` lies or would lie; `name` may contain slashes.
    QString path(const QString &name) const;
    /// Writes a file, with the directories above it, and returns its path.
    QString write(const QString &name, const QByteArray &contents) const;

private:
    QTemporaryDir _directory;
};

} // namespace OrvTest
