/// \file
/// File names that are no text in the locale's encoding.
#pragma once

class QStringList;

namespace Halvard::Orv::Apps {

/// The arguments of main() as texts.
///
/// A file name may have any bytes. Qt reads those that mean nothing in the locale's encoding as
/// U+FFFD, and then does not find the file. Here each of them becomes a character of its own,
/// U+DC80 to U+DCFF, which is in no valid text, and Qt is taught to write these characters as
/// the bytes that they were, and to read names so where it asks the system for them. Reading
/// the text of files stays as it is.
///
/// Call it once, before other threads begin.
QStringList argumentsOf(int argc, char *argv[]);

} // namespace Halvard::Orv::Apps
