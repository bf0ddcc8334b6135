/// \file
/// Which files a model consists of.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Halvard::Orv::Cli {

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

} // namespace Halvard::Orv::Cli
