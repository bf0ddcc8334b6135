/// \file
/// The directory outside of which nothing is read.
#pragma once

#include <QtCore/QString>

#include <memory>

class QIODevice;

namespace Halvard::Orv::Cli {

/// What --within asks for, for the whole process. Without it every file may be read, and all
/// functions here let through what they are given.
class Confinement
{
public:
    /// \return false when there is no such directory.
    static bool setDirectory(const QString &directory);
    static bool isSet();

    /// Whether the file, or where it would lie, is in the directory once all links are followed.
    static bool isInside(const QString &path);

    /// Why a file must not be read, to end the sentence "The texture 'x' "; empty where it may, and
    /// for a name with a zero byte, by which no file can be opened.
    static QString objection(const QString &path);

    /// Opens a regular file that is inside, and looks once more where it lies when it is open: a
    /// link may have changed in between.
    /// \param refused receives the path of a file that is not opened since it lies outside.
    /// \return null when it lies outside, is missing, or is no regular file.
    static std::unique_ptr<QIODevice> openInside(const QString &path, QString &refused);

    /// The path relative to the directory.
    static QString relative(const QString &path);
    /// A message with the directory taken off all paths in it.
    static QString withRelativePaths(const QString &message);
};

} // namespace Halvard::Orv::Cli
