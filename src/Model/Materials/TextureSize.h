/// \file
/// How large an image may be.
#pragma once

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QtDebug>
#include <QtGui/QImageReader>

namespace Halvard::Orv {

/// Most pixels of a texture: 4 bytes each make a gigabyte, and decoding takes twice
/// that.
constexpr qint64 MaxTexturePixels = qint64(1) << 28;

/// Whether the image in a file can become a texture by the size that it claims,
/// which is looked at before anything is decoded: a few bytes may claim billions of
/// pixels. Otherwise there is a warning. A file that tells no size is let through.
///
/// Needs a current OpenGL context.
inline bool claimsTextureSize(const QString &fileName)
{
    const QSize size = QImageReader(fileName).size();
    GLint maxSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSide);
    if (size.width() <= maxSide && size.height() <= maxSide &&
        qint64(size.width()) * size.height() <= MaxTexturePixels)
        return true;
    qWarning("'%s' is not loaded: its %d x %d pixels are more than the %d on a side, or the %lld "
             "in all, that a texture can have; scale the image down",
             qUtf8Printable(fileName), size.width(), size.height(), maxSide, MaxTexturePixels);
    return false;
}

} // namespace Halvard::Orv
