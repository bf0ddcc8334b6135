/// \file
/// Textures for the paths that materials name.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>

#include <functional>

namespace Halvard::Orv {
class Texture;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

/// What the textures of a model may ask for.
struct TextureSettings
{
    /// Of all textures of a model together; each takes 4 bytes a pixel, and a third more on
    /// the GPU.
    qint64 mostPixels = qint64(1) << 29;
    /// Why a file is not to be read, to end the sentence "The texture 'x' "; empty where it
    /// may. Null where all may.
    std::function<QString(const QString &path)> objection;
};

/// The textures of one model. Each file is decoded once, under whatever names materials
/// give it. Other than LoadTexture(), it takes images of every pixel format, and finds those
/// that are missing only for a backslash in their path or for the case of a letter.
class TextureCache
{
public:
    explicit TextureCache(TextureSettings settings) : _settings(std::move(settings)) {}

    /// \return not owned, lives as long as the process; null when the file cannot be used,
    ///         with one warning for each such file. Needs the OpenGL context current.
    Texture *texture(const QString &path);

private:
    Texture *find(const QString &path, QString &reason);
    Texture *load(const QString &path, QString &reason);
    Texture *decode(const QString &path, QString &reason);

    const TextureSettings _settings;
    qint64 _pixels = 0;
    int _searches = 0;
    // Ordered: names come from files, and some could be made to collide in a hash table.
    QMap<QString, Texture *> _byPath;
    QMap<QString, Texture *> _byFile; // by the path without links
};

} // namespace Halvard::Orv::Render
