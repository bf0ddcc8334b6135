/// \file
/// What the driver says, as messages.
#pragma once

namespace Halvard::Orv {

/// Sends the debug messages of the current context, which has OpenGL 4.3 or KHR_debug, to Qt's
/// logger, each while the call that causes it is still running. Does nothing where the application
/// has installed a callback of its own.
void connectDebugOutput();

} // namespace Halvard::Orv
