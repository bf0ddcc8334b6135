/// \file
/// Textures for the paths that materials name.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace Halvard::Orv {
class Texture;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

/// Loads each file once. What LoadTexture() refuses (indexed, grey and 16-bit
/// images) is converted here, and drawn all the same.
class TextureCache
{
public:
    TextureCache();
    ~TextureCache();

    /// \return not owned, lives as long as the cache; null when the file is missing
    ///         or is no image, with one warning for each such file. Needs the
    ///         OpenGL context current.
    Texture *texture(const QString &path);

private:
    QHash<QString, Texture *> _byPath;
    std::vector<std::unique_ptr<Texture>> _converted;
};

} // namespace Halvard::Orv::Render
