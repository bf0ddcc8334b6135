/// \file
/// Files that lie where another name looks for them.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv::Checking {

/// The file at `path` if only the case of letters is passed over; null where there is none. Of
/// several, the first by name.
/// \param path absolute, with slashes.
QString fileOfOtherCase(const QString &path);

/// A file beside `path` with the same name but for its suffix, and for the case of letters; one
/// with the suffix `preferred`, if there is one. Null where there is none.
QString fileOfOtherSuffix(const QString &path, const QString &preferred);

/// Whether there is a regular file at a path. False for names with a zero byte.
bool isRegularFile(const QString &path);

} // namespace Halvard::Orv::Checking
