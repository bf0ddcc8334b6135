/// \file
/// The GLSL sources of the renderer.
#pragma once

#include <QtCore/QByteArray>

namespace Halvard::Orv::Render {

/// Turns vertices into view space and picks the material record of the draw.
/// \param knowsDrawNumber whether shaders can tell the draws of one call apart, see
///        OpenGLDeviceContext::hasDrawParameters().
QByteArray modelVertexShader(bool knowsDrawNumber);

/// Lit, in the colours of the material or of what uShading asks for: see Shading.
QByteArray surfaceFragmentShader();
/// The stored normal as a colour, turned to the viewer; grey where there is none.
QByteArray normalsFragmentShader();
/// One colour, for lines.
QByteArray lineFragmentShader();

/// A gradient over the whole picture, without vertex attributes.
QByteArray backgroundVertexShader();
QByteArray backgroundFragmentShader();

/// Of LineDrawer.
QByteArray wideLineVertexShader();
QByteArray wideLineFragmentShader();

} // namespace Halvard::Orv::Render
