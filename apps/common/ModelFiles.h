/// \file
/// What the lines of a model file say: which files it consists of, and where its faces are.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace Halvard::Orv::Apps {

/// The files that a model names, existing or not, each once and by the path at which it would be
/// looked for.
struct ModelFiles
{
    QStringList libraries;
    QStringList textures;
};

/// Reads the lines of an OBJ file that name material libraries.
/// \return empty where the file cannot be read: whoever loads it says so.
QStringList librariesOf(const QString &model);

/// The same with all textures of the libraries that are regular files.
ModelFiles filesOf(const QString &model);

/// The lines, counted from 1, of some of a file's faces, which are counted from 0 and ascend.
/// \return fewer where the file has changed or cannot be read.
std::vector<qint64> linesOfFaces(const QString &model, const std::vector<quint64> &faces);

/// Whether a file has lines, but none that an OBJ file could have. A long file is looked at up to
/// its first megabyte.
bool hasNoOBJLine(const QString &model);

} // namespace Halvard::Orv::Apps
