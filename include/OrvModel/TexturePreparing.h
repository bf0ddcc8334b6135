/// \file
/// LoadTexture() in two halves: images decoded on any thread, and uploaded later.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <OrvGL/Texture.h>

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

#include <limits>
#include <memory>

namespace Halvard::Orv {

/// \addtogroup prepare
/// @{

/// What an image file may ask for.
struct PrepareTextureOptions
{
    /// Most pixels on a side. OpenGL's limit is GL_MAX_TEXTURE_SIZE, which
    /// uploadTexture() looks at in any case.
    int mostOnASide = std::numeric_limits<int>::max();
    /// Most pixels in all: 4 bytes each make a gigabyte.
    qint64 mostPixels = qint64(1) << 28;
    /// Whether images of other than 32 bits per pixel (indexed, grey, 16 bits a channel)
    /// are converted. Otherwise they stay as they are, and uploadTexture() refuses them.
    bool convertsTo32Bits = false;
};

/// An image on its way to becoming a texture. A value; copies share the pixels.
struct PreparedTexture
{
    /// Why there is no image.
    enum class Trouble
    {
        None,       ///< There is one.
        Missing,    ///< No file of that name, or a directory.
        NotAFile,   ///< A pipe, a device, or what the kernel makes up while it is read.
        Unreadable, ///< It cannot be opened.
        NoImage,    ///< It cannot be decoded.
        TooLarge,   ///< More pixels than the options allow; it was not decoded.
        Hostile,    ///< Made so that decoding it takes more than its size is worth.
        Misleading, ///< It decoded to another size than it claims.
        NoMemory    ///< The process has no room for the pixels.
    };

    QString fileName; ///< As given to prepareTexture(): the name in LoadTexture()'s table.
    /// The pixels, the bottom row first as OpenGL wants them; null where there is trouble.
    QImage image;
    /// What the file says of its size; invalid where it says nothing.
    QSize claimedSize;
    Trouble trouble = Trouble::Missing; ///< Why `image` is null; None where it is not.
    /// Ends the sentence "The texture 'sea.png' ": "does not exist", for example. Empty
    /// where there is no trouble.
    QString reason;

    /// Whether there is no image.
    bool isNull() const { return image.isNull(); }
};

/// Decodes an image file, without OpenGL.
///
/// What the file claims is checked before anything is decoded, and what was decoded is
/// checked afterwards. Only regular files are opened, and never waited for. Files that are
/// built to be expensive are refused: images within icons that are larger than the icon,
/// JPEGs of very many scans, PNGs of very much compressed text.
///
/// \param fileName any path that QFile knows.
/// \param options most pixels, and whether they are converted.
/// \return an image, or why there is none. Nothing is logged.
///
/// Safe on any thread, also on several at once.
ORVMODEL_EXPORT PreparedTexture prepareTexture(const QString &fileName,
                                               const PrepareTextureOptions &options = {});

/// Makes a texture of a prepared image, as LoadTexture() does, and keeps it in the same
/// table under the same name. Where the table has that name already, its texture is the
/// result, and nothing is uploaded.
///
/// \param prepared of 32 bits per pixel.
/// \param reason where not null, receives why the result is null, as in
///        PreparedTexture::reason; otherwise that is logged as a warning where OpenGL
///        cannot hold the pixels.
/// \return a texture that the caller does not own; null where there is no image or none of
///         32 bits per pixel, where no OpenGL context is current, and where OpenGL cannot
///         hold the pixels.
///
/// Call it only on a thread with an OpenGL context current. Leaves the bindings and the
/// pixel storage modes as they are, but for GL_UNPACK_ALIGNMENT, which is 1 afterwards.
ORVMODEL_EXPORT Texture *uploadTexture(const PreparedTexture &prepared, QString *reason = nullptr);

/// The same for programs that keep their textures themselves, and let go of them: every call makes
/// another texture, and no table knows it.
///
/// \param prepared of 32 bits per pixel.
/// \param reason as of uploadTexture().
/// \return the caller's; null where uploadTexture() would make none. It may be destroyed anywhere,
///         also when its context is gone.
///
/// Call it only on a thread with an OpenGL context current; what is bound, and the pixel storage
/// modes, are left as by uploadTexture().
ORVMODEL_EXPORT std::unique_ptr<Texture> makeTexture(const PreparedTexture &prepared,
                                                     QString *reason = nullptr);

/// @}

} // namespace Halvard::Orv
