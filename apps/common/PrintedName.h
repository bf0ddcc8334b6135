/// \file
/// Names from files, as people read them.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv::Apps {

/// No name is shown longer than that.
constexpr int LongestName = 200;

/// At most `most` characters: of more the middle is left out, since what tells names apart mostly is
/// at the beginning and at the end.
QString shortened(const QString &text, int most);

/// A name or a path. Characters that would change how a terminal shows the rest (control
/// characters, marks of the direction of writing, bytes that are no text) are shown by their
/// numbers, as in "\x1b" and "\u{202e}". Of more than LongestName characters the middle is left out.
QString printed(const QString &name);

} // namespace Halvard::Orv::Apps
