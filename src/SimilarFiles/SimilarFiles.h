/// \file
/// Files that lie where another name looks for them.
///
/// libOrvCheck and the renderer of the applications both need this, and neither uses the other:
/// the source is compiled into each of them, and no library exports it.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv {

/// Whether there is a regular file at a path. False for names with a zero byte, which are no names
/// for the system.
bool isRegularFile(const QString &path);

/// The file at `path` if the case of letters is passed over; null where there is none. Of several,
/// the first by name.
/// \param path with slashes.
QString fileOfOtherCase(const QString &path);

/// A file beside `path` with the same name but for its suffix, and for the case of letters: one
/// with the suffix `preferred` or, if there is none, the first by name. Null where there is none.
QString fileOfOtherSuffix(const QString &path, const QString &preferred);

/// The file that a path means which is missing only for backslashes in it, or for the case of
/// letters; null where there is none.
QString fileMeantBy(const QString &path);

} // namespace Halvard::Orv
