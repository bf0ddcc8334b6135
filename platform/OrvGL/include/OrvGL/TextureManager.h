/// \file
/// Textures that the whole process shares.
#pragma once

#include <OrvGL/OrvGLExport.h>

#include <QtCore/QMap>
#include <QtCore/QPair>

#include <memory>
#include <mutex>
#include <vector>

class QColor;

namespace Halvard::Orv {

/// \addtogroup draw
/// @{

class Texture;

/// Textures that the whole process shares.
class ORVGL_EXPORT TextureManager
{
public:
    /// The process-wide manager, made on first use. Safe from any thread.
    static TextureManager &Instance();

    TextureManager(const TextureManager &) = delete;
    TextureManager &operator=(const TextureManager &) = delete;

    /// A texture of one texel of that colour, 8 bits per channel: GL_TEXTURE_2D, GL_RGBA8,
    /// read-only.
    ///
    /// The same colour gives the same texture in the current context and in those that share
    /// objects with it. What is bound, and the pixel storage modes, stay as they are.
    ///
    /// \param color any; what QColor::rgba() says of it counts.
    /// \return owned by the manager, valid until the process ends (also when its context is
    ///     gone, it then cannot be bound any more); null when no context is current.
    Texture *colorTexture(const QColor &color);

private:
    TextureManager();
    ~TextureManager();

    /// The share group's number and the colour as QRgb.
    using Key = QPair<quint64, unsigned int>;

    std::mutex _mutex;
    QMap<Key, Texture *> _byColor;
    std::vector<std::unique_ptr<Texture>> _textures;
};

/// @}

} // namespace Halvard::Orv
