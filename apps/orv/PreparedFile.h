/// \file
/// A model file as arrays.
#pragma once

#include "ExitStatus.h"

#include <memory>

class QString;

namespace Halvard::Orv {
class PreparedModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Cli {

/// Reads and prepares a model, with a sign of life, within the bounds of --within. Prints on stderr
/// what goes wrong, and what the library says on the way.
/// \param fileName "-" for standard input; libraries are then looked for in the current directory.
/// \param threads to work on, the calling one included.
/// \param status receives how the process ends when the result is null.
std::unique_ptr<PreparedModel> prepareFile(const QString &fileName, int threads,
                                           ExitStatus &status);

} // namespace Halvard::Orv::Cli
