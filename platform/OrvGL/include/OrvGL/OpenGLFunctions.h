/// \file
/// The functions of OpenGL.
#pragma once

/// All OpenGL functions and enumerants, resolved on first call by libepoxy.
///
/// Include it before any header that brings <GL/gl.h> (Qt's OpenGL headers do): libepoxy takes that
/// header's place and refuses to come second.
///
/// libepoxy ends the process when a function is called with no context current, or one that the
/// current context lacks. Ask OpenGLDeviceContext::current() first.
#include <epoxy/gl.h>
