/// \file
/// Error flags as warnings.
#pragma once

class QString;

namespace Halvard::Orv {

/// Logs a warning for every error flag that the current context has raised, and lowers the flags.
/// \param when ends the sentence "OpenGL error GL_OUT_OF_MEMORY (0x505) ...".
/// \return whether there was an error.
bool reportGLErrors(const QString &when);

} // namespace Halvard::Orv
