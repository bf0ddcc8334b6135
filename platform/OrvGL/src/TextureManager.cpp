#include <OrvGL/TextureManager.h>

#include "ShareGroup.h"

#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>

#include <QtGui/QColor>

#include <array>

namespace Halvard::Orv {

namespace {

// What has glTexImage2D read a single texel from the address it is given, and not from beside it or
// from a buffer. The other pixel storage modes say nothing about one texel of bytes.
class PlainUnpackState
{
public:
    PlainUnpackState()
    {
        glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &_buffer);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        for (size_t i = 0; i < Modes.size(); ++i) {
            glGetIntegerv(Modes[i], &_values[i]);
            glPixelStorei(Modes[i], 0);
        }
    }

    ~PlainUnpackState()
    {
        for (size_t i = 0; i < Modes.size(); ++i)
            glPixelStorei(Modes[i], _values[i]);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(_buffer));
    }

    PlainUnpackState(const PlainUnpackState &) = delete;
    PlainUnpackState &operator=(const PlainUnpackState &) = delete;

private:
    static constexpr std::array<GLenum, 2> Modes = {GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS};
    std::array<GLint, 2> _values{};
    GLint _buffer = 0;
};

std::unique_ptr<Texture> makeTexel(QRgb color)
{
    auto texture = std::make_unique<Texture>(GL_TEXTURE_2D, GL_RGBA8, 1, 1, 0, nullptr);
    const std::array<GLubyte, 4> texel = {
        static_cast<GLubyte>(qRed(color)), static_cast<GLubyte>(qGreen(color)),
        static_cast<GLubyte>(qBlue(color)), static_cast<GLubyte>(qAlpha(color))};
    const PlainUnpackState unpack;
    const AutoBinder bound(texture.get());
    // Without mip levels the initial filter would make the texture incomplete, and read as black.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel.data());
    texture->setReadOnly();
    return texture;
}

} // namespace

TextureManager &TextureManager::Instance()
{
    static TextureManager manager;
    return manager;
}

TextureManager::TextureManager()
{
    // The textures ask which context is current when they are destroyed: what answers must be there
    // before this object, to be destroyed after it.
    ShareGroup::current();
}

TextureManager::~TextureManager() = default;

Texture *TextureManager::colorTexture(const QColor &color)
{
    const QSharedPointer<ShareGroup> group = ShareGroup::current();
    if (!group)
        return nullptr;
    const Key key(group->number(), color.rgba());
    const std::lock_guard<std::mutex> lock(_mutex);
    if (Texture *known = _byColor.value(key, nullptr))
        return known;
    _textures.push_back(makeTexel(color.rgba()));
    _byColor.insert(key, _textures.back().get());
    return _textures.back().get();
}

} // namespace Halvard::Orv
