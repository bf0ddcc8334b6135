/// \file
/// The subcommands. Each takes the arguments after its own name, and prints its
/// results on stdout and everything else on stderr.
#pragma once

#include "ExitStatus.h"

class QStringList;

namespace Halvard::Orv::Cli {

ExitStatus renderCommand(const QStringList &arguments);
ExitStatus infoCommand(const QStringList &arguments);
ExitStatus dumpCommand(const QStringList &arguments);
ExitStatus checkCommand(const QStringList &arguments);
ExitStatus fixCommand(const QStringList &arguments);

} // namespace Halvard::Orv::Cli
