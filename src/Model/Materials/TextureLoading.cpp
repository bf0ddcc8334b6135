#include <OrvModel/TextureLoading.h>

#include "Lanes/FloatingPointState.h"
#include "Materials/TextureSize.h"

#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>

#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtGui/QImage>

#include <memory>

namespace Halvard::Orv {

namespace {

/// Textures by file name as given. Its destruction at exit frees the table only:
/// by then there is no context in which a texture could be deleted.
QHash<QString, Texture *> &textureCache()
{
    static QHash<QString, Texture *> cache;
    return cache;
}

/// Decodes the file into 32-bit pixels, bottom row first, as OpenGL wants them.
/// Null when it cannot: fewer bits per pixel would make the upload read past the
/// end of the image.
QImage loadFlippedImage(const QString &fileName)
{
    QImage image;
    if (!claimsTextureSize(fileName) || !image.load(fileName, nullptr) || image.depth() != 32)
        return {};
    return image.mirrored(false, true);
}

/// Lowers the error flags that somebody else has raised. There are few, but a lost
/// context answers with an error for ever.
void clearErrors()
{
    constexpr int MostFlags = 8;
    for (int i = 0; i < MostFlags && glGetError() != GL_NO_ERROR; ++i) {
    }
}

/// Gives the bound texture its parameters and pixels.
/// \return false when the GPU has no room for them.
bool uploadImage(Texture *texture, const QImage &image)
{
    clearErrors();
    constexpr GLint LastMipLevel = 4;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, LastMipLevel);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width(), image.height(), 0, GL_BGRA,
                 GL_UNSIGNED_BYTE, image.constBits());
    glGenerateMipmap(texture->target());
    return glGetError() == GL_NO_ERROR;
}

} // namespace

Texture *LoadTexture(const QString &fileName)
{
    const FloatingPointState state;
    QHash<QString, Texture *> &cache = textureCache();
    if (Texture *known = cache.value(fileName))
        return known;
    if (!QFileInfo(fileName).isFile())
        return nullptr;
    if (!OpenGLDeviceContext::current())
        return nullptr;
    const QImage image = loadFlippedImage(fileName);
    if (image.isNull())
        return nullptr;

    auto texture = std::make_unique<Texture>(GL_TEXTURE_2D, GL_RGBA, image.width(), image.height(),
                                             0, nullptr);
    {
        const AutoBinder binder(texture.get());
        if (!uploadImage(texture.get(), image)) {
            qWarning("'%s' is not loaded: OpenGL cannot hold its %d x %d pixels",
                     qUtf8Printable(fileName), image.width(), image.height());
            return nullptr;
        }
        cache.insert(fileName, texture.get());
        texture->setReadOnly();
    }
    return texture.release();
}

} // namespace Halvard::Orv
