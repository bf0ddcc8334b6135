/// \file
/// Text from files, as it reaches a terminal.
#pragma once

#include <QtCore/QString>

#include <common/PrintedName.h>

namespace Halvard::Orv::Cli {

using Apps::printed;

/// A whole message, which holds names between single quotes: no name is longer than printed()
/// makes it, nor is the message longer than ten of them. Paths below the directory of --within
/// are relative to it.
QString printedMessage(const QString &message);

} // namespace Halvard::Orv::Cli
