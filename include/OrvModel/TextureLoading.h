/// \file
/// Image files as OpenGL textures, shared by file name.
#pragma once

#include <OrvModel/OrvModelExport.h>

class QString;

namespace Halvard::Orv {

class Texture;

/// Loads an image file into a mip-mapped, repeating, read-only 2D texture, its
/// first row at the top (texture coordinate v = 1).
///
/// The result is kept under the file name, exactly as given, for the life of the
/// process: asking again costs a look-up and gives the same texture. Another
/// spelling of the same path gives another texture.
///
/// \return a texture that the caller does not own; null when the name is not a
///         regular file, when the image cannot be decoded, when it does not
///         decode to 32 bits per pixel (indexed and grey images), or when no
///         OpenGL context is current. Null, too, after a warning: for an image of
///         more pixels on a side than GL_MAX_TEXTURE_SIZE or more than 2^28 in all,
///         which is not decoded, and where OpenGL has no room for the pixels. A
///         null is not kept: the next call tries again.
///
/// Call it only on the thread whose OpenGL context is current.
ORVMODEL_EXPORT Texture *LoadTexture(const QString &fileName);

} // namespace Halvard::Orv
