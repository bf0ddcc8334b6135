/// \file
/// Image files as OpenGL textures, shared by file name.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <OrvGL/Texture.h>

#include <QtCore/QString>

namespace Halvard::Orv {

/// \addtogroup upload
/// @{

/// Loads an image file into a mip-mapped, repeating, read-only 2D texture, its
/// first row at the top (texture coordinate v = 1).
///
/// The result is kept under the file name, exactly as given, for the life of the
/// process: asking again costs a look-up and gives the same texture. Another
/// spelling of the same path gives another texture.
///
/// \param fileName an image file of a format that Qt reads; the key of the table.
/// \return a texture that the caller does not own; null when the name is not a
///         regular file, when the image cannot be decoded, when it does not
///         decode to 32 bits per pixel (indexed and grey images), or when no
///         OpenGL context is current. Null, too, after a warning: for an image of
///         more pixels on a side than GL_MAX_TEXTURE_SIZE or more than 2^28 in all,
///         or one that prepareTexture() refuses as hostile or misleading, and where
///         there is no memory for the pixels, in the process or on the GPU. A null
///         is not kept: the next call tries again.
///
/// Call it only on a thread with an OpenGL context current. Several threads may call it at
/// once. The table is one for the process, and so a texture belongs to the share group of
/// its first caller's context: load a file of the same name for another group, and you get
/// a texture that cannot be bound there (Texture::isUsable() says so). A pixel-unpack
/// buffer that is bound stays bound and is not read from; of the pixel storage modes only
/// GL_UNPACK_ALIGNMENT is changed, to 1.
ORVMODEL_EXPORT Texture *LoadTexture(const QString &fileName);

/// @}

} // namespace Halvard::Orv
