/// \file
/// Textures for the paths that materials name.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

class QImage;
class QThreadPool;

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
    /// OpenGL's limit is asked for in any case, but only when a texture is uploaded.
    int mostOnASide = std::numeric_limits<int>::max();
    /// Why a file is not to be read, to end the sentence "The texture 'x' "; empty where it
    /// may. Null where all may.
    std::function<QString(const QString &path)> objection;
};

/// The textures of one model. Each file is decoded once, under whatever names materials
/// give it. Other than LoadTexture(), it takes images of every pixel format, finds those
/// that are missing only for a backslash in their path or for the case of a letter, and owns
/// what it loads: a file that has changed is another texture in the next cache.
///
/// There is one warning for each path that is drawn without its texture or with another file.
class TextureCache
{
public:
    explicit TextureCache(TextureSettings settings);
    ~TextureCache();
    TextureCache(const TextureCache &) = delete;
    TextureCache &operator=(const TextureCache &) = delete;

    /// Decodes what is not decoded yet, on any thread, without OpenGL; not while anything else
    /// of the cache is in use. The result depends on the order of the paths, and on nothing else.
    /// \param pool shares the work; null for none.
    /// \param progress hears the part that is done; false stops. May be null.
    /// \return false when it was stopped.
    bool prepare(const QStringList &paths, QThreadPool *pool = nullptr,
                 const std::function<bool(double fraction)> &progress = {});

    /// A decoded image, the top row first, made so small that no side is longer than `side`. Null
    /// where there is none, or it is uploaded already. On any thread, as prepare().
    QImage thumbnail(const QString &path, int side) const;

    /// Makes one texture of a decoded image. Needs the OpenGL context current.
    /// \return whether there are more.
    bool uploadNext();

    /// Prepares and uploads where that was not done. Needs the OpenGL context current.
    /// \return owned by the cache; null when the file cannot be used.
    Texture *texture(const QString &path);

private:
    struct Image;
    struct Request;

    Request resolve(const QString &path);
    void lookUp(const QString &path, Request &request);
    bool decode(const std::vector<Image *> &images, QThreadPool *pool,
                const std::function<bool(double)> &progress);
    void admit(Image &image);
    void upload(Image &image);

    const TextureSettings _settings;
    qint64 _pixels = 0;
    int _searches = 0;
    // Ordered: names come from files, and some could be made to collide in a hash table.
    QMap<QString, Image *> _byPath; // null where there is none
    QMap<QString, Image *> _byFile; // by the path without links
    std::vector<std::unique_ptr<Image>> _images;
    size_t _nextToUpload = 0;
};

} // namespace Halvard::Orv::Render
