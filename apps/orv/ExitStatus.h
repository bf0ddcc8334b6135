/// \file
/// What the process ends with.
#pragma once

namespace Halvard::Orv::Cli {

enum ExitStatus
{
    Fine = 0,
    /// The model file, or one that it names, cannot be used.
    FileAtFault = 1,
    /// A wrong call, an output that cannot be written, or no OpenGL.
    CannotRun = 2,
    /// There is not enough memory.
    OutOfMemory = 3,
};

} // namespace Halvard::Orv::Cli
