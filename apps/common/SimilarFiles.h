/// \file
/// Files that lie where another name looks for them.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv::Apps {

/// The file that is at `path` if the case of letters is passed over; null where there is none. Of
/// several, the first by name.
QString fileOfOtherCase(const QString &path);

/// A file beside `path` with the same name but for the suffix, and for the case of letters: one
/// with the suffix that `path` has or, if there is none, the first by name. Null where there is
/// none.
QString fileOfOtherSuffix(const QString &path);

/// The file that a path means which is missing only for backslashes in it, or for the case of
/// letters; null where there is none.
QString fileMeantBy(const QString &path);

} // namespace Halvard::Orv::Apps
