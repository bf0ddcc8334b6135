#include <OrvModel/TextureLoading.h>

#include <OrvModel/TexturePreparing.h>

#include "Lanes/FloatingPointState.h"

#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QtDebug>

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>

namespace Halvard::Orv {

namespace {

/// Textures by file name as given, for all threads. Its destruction at exit frees the table
/// only: by then there is no context in which a texture could be deleted. Ordered, since
/// names come from files: some could be made to collide in a hash table.
class TextureTable
{
public:
    /// Null for an unknown name.
    Texture *find(const QString &fileName)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _byName.value(fileName, nullptr);
    }

    /// \return the texture under that name: that of another thread, if it was faster.
    Texture *insert(const QString &fileName, std::unique_ptr<Texture> texture)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        Texture *&entry = _byName[fileName];
        if (!entry)
            entry = texture.release();
        return entry;
    }

private:
    std::mutex _mutex;
    QMap<QString, Texture *> _byName;
};

TextureTable &textureTable()
{
    static TextureTable table;
    return table;
}

/// What has glTexImage2D read whole rows from the address that it is given, and not from
/// beside it or from a buffer. An application may have set any of these.
class PlainUnpackState
{
public:
    PlainUnpackState()
    {
        glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &_buffer);
        if (_buffer != 0)
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        for (std::size_t i = 0; i < Modes.size(); ++i) {
            glGetIntegerv(Modes[i], &_values[i]);
            if (_values[i] != 0)
                glPixelStorei(Modes[i], 0);
        }
    }

    ~PlainUnpackState()
    {
        for (std::size_t i = 0; i < Modes.size(); ++i) {
            if (_values[i] != 0)
                glPixelStorei(Modes[i], _values[i]);
        }
        if (_buffer != 0)
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(_buffer));
    }

    PlainUnpackState(const PlainUnpackState &) = delete;
    PlainUnpackState &operator=(const PlainUnpackState &) = delete;

private:
    static constexpr std::array<GLenum, 5> Modes = {GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST,
                                                    GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS,
                                                    GL_UNPACK_SKIP_PIXELS};
    std::array<GLint, 5> _values{};
    GLint _buffer = 0;
};

GLint mostOnASide()
{
    GLint side = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
    return side;
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
/// \return the error of OpenGL, GL_NO_ERROR where there is none.
GLenum uploadImage(Texture *texture, const QImage &image)
{
    const PlainUnpackState unpack;
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
    if (const GLenum error = glGetError(); error != GL_NO_ERROR)
        return error;
    glGenerateMipmap(texture->target());
    return glGetError();
}

/// Says why there is no texture, to the caller or else to everybody.
std::nullptr_t refuse(const PreparedTexture &prepared, QString *reason, const QString &why)
{
    if (reason)
        *reason = why;
    else
        qWarning("'%s' is not loaded: it %s", qUtf8Printable(prepared.fileName),
                 qUtf8Printable(why));
    return nullptr;
}

/// Whether a failure is told: a file that is missing or is no image is the caller's to find.
bool isWorthAWarning(PreparedTexture::Trouble trouble)
{
    using Trouble = PreparedTexture::Trouble;
    return trouble == Trouble::TooLarge || trouble == Trouble::Hostile ||
           trouble == Trouble::Misleading || trouble == Trouble::NoMemory;
}

} // namespace

std::unique_ptr<Texture> makeTexture(const PreparedTexture &prepared, QString *reason)
{
    const FloatingPointState state;
    // Fewer bits per pixel would make the upload read past the end of the image.
    const QImage &image = prepared.image;
    if (image.isNull() || image.depth() != 32 || !OpenGLDeviceContext::current()) {
        if (reason)
            *reason = image.isNull() ? prepared.reason
                                     : QStringLiteral("does not decode to 32 bits per pixel");
        return nullptr;
    }
    const auto why = [&image](const char *text) {
        return QString::fromLatin1(text).arg(image.width()).arg(image.height());
    };
    if (image.width() > mostOnASide() || image.height() > mostOnASide())
        return refuse(prepared, reason,
                      why("has %1 x %2 pixels, more on a side than OpenGL can hold"));

    auto texture = std::make_unique<Texture>(GL_TEXTURE_2D, GL_RGBA, image.width(), image.height(),
                                             0, nullptr);
    {
        const AutoBinder binder(texture.get());
        const GLenum error = uploadImage(texture.get(), image);
        if (error == GL_OUT_OF_MEMORY)
            return refuse(prepared, reason,
                          why("has %1 x %2 pixels, for which OpenGL has no memory"));
        if (error != GL_NO_ERROR)
            return refuse(prepared, reason,
                          why("has %1 x %2 pixels, which OpenGL does not take (error 0x%3)")
                              .arg(error, 4, 16, QLatin1Char('0')));
    }
    texture->setReadOnly();
    return texture;
}

Texture *uploadTexture(const PreparedTexture &prepared, QString *reason)
{
    if (Texture *known = textureTable().find(prepared.fileName))
        return known;
    std::unique_ptr<Texture> texture = makeTexture(prepared, reason);
    return texture ? textureTable().insert(prepared.fileName, std::move(texture)) : nullptr;
}

Texture *LoadTexture(const QString &fileName)
{
    const FloatingPointState state;
    if (Texture *known = textureTable().find(fileName))
        return known;
    if (!OpenGLDeviceContext::current())
        return nullptr;
    PrepareTextureOptions options;
    options.mostOnASide = mostOnASide();
    const PreparedTexture prepared = prepareTexture(fileName, options);
    if (isWorthAWarning(prepared.trouble))
        return refuse(prepared, nullptr, prepared.reason);
    return uploadTexture(prepared);
}

} // namespace Halvard::Orv
