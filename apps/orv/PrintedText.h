/// \file
/// Text from files, as it reaches a terminal.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv::Cli {

/// A name or a path. Characters that would change how a terminal shows the rest (control
/// characters, marks of the direction of writing, bytes that are no text) are shown by their
/// numbers, as in "\x1b" and "\u{202e}". Of more than 200 characters the middle is left out.
QString printed(const QString &name);

/// A whole message, which holds names between single quotes: no name is longer than printed()
/// makes it, nor is the message longer than ten of them. Paths below the directory of --within
/// are relative to it.
QString printedMessage(const QString &message);

} // namespace Halvard::Orv::Cli
