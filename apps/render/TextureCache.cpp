#include "TextureCache.h"

#include "Materials/TextureSize.h"
#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvModel/TextureLoading.h>

#include <QtCore/QFileInfo>
#include <QtGui/QImage>

namespace Halvard::Orv::Render {

namespace {

/// Null when the file is no image. Looks the same as what LoadTexture() makes.
std::unique_ptr<Texture> convertedTexture(const QString &path)
{
    QImage image;
    if (!image.load(path, nullptr))
        return nullptr;
    image = image.convertToFormat(QImage::Format_ARGB32).mirrored(false, true);

    auto texture = std::make_unique<Texture>(GL_TEXTURE_2D, GL_RGBA, image.width(), image.height(),
                                             0, nullptr);
    const AutoBinder binder(texture.get());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width(), image.height(), 0, GL_BGRA,
                 GL_UNSIGNED_BYTE, image.constBits());
    glGenerateMipmap(GL_TEXTURE_2D);
    texture->setReadOnly();
    return texture;
}

} // namespace

TextureCache::TextureCache() = default;
TextureCache::~TextureCache() = default;

Texture *TextureCache::texture(const QString &path)
{
    const auto known = _byPath.constFind(path);
    if (known != _byPath.constEnd())
        return *known;

    Texture *texture = nullptr;
    if (!QFileInfo(path).isFile()) {
        qWarning("The texture '%s' does not exist; drawn without it.", qUtf8Printable(path));
    } else if (claimsTextureSize(path)) {
        texture = LoadTexture(path);
        if (!texture) {
            if (auto converted = convertedTexture(path)) {
                texture = converted.get();
                _converted.push_back(std::move(converted));
            } else {
                qWarning("The texture '%s' is no image that can be read; drawn without it.",
                         qUtf8Printable(path));
            }
        }
    }
    _byPath.insert(path, texture);
    return texture;
}

} // namespace Halvard::Orv::Render
