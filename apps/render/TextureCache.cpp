#include "TextureCache.h"

#include "SharedTasks.h"

#include <OrvGL/Texture.h>
#include <OrvModel/TexturePreparing.h>

#include <SimilarFiles.h>

#include <QtCore/QFileInfo>
#include <QtCore/QThreadPool>
#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv::Render {

/// A file.
struct TextureCache::Image
{
    QString path; // as it was first asked for, or found
    PreparedTexture prepared;
    bool isUploaded = false;
    QString reason; // why there is no texture; empty where there is one, or it is not known yet
    std::unique_ptr<Texture> texture;
};

/// What a path leads to.
struct TextureCache::Request
{
    QString path;
    QString meant;          // the file in its place, where it does not exist
    Image *image = nullptr; // null where there is none
    bool isNewImage = false;
    QString reason; // why there is none
};

namespace {

QString missing()
{
    return QStringLiteral("does not exist");
}

void warnWithout(const QString &path, const QString &reason)
{
    // Names with a zero byte have to come out whole.
    qWarning().noquote()
        << QStringLiteral("The texture '%1' %2; drawn without it.").arg(path, reason);
}

} // namespace

TextureCache::TextureCache(TextureSettings settings) : _settings(std::move(settings)) {}
TextureCache::~TextureCache() = default;

Texture *TextureCache::texture(const QString &path)
{
    if (!_byPath.contains(path))
        prepare({path});
    Image *const image = _byPath.value(path);
    if (!image)
        return nullptr;
    if (!image->isUploaded)
        upload(*image);
    return image->texture.get();
}

bool TextureCache::prepare(const QStringList &paths, QThreadPool *pool,
                           const std::function<bool(double)> &progress)
{
    std::vector<Request> requests;
    std::vector<Image *> undecoded;
    for (const QString &path : paths) {
        if (_byPath.contains(path))
            continue;
        requests.push_back(resolve(path));
        _byPath.insert(path, requests.back().image);
        if (requests.back().isNewImage)
            undecoded.push_back(requests.back().image);
    }
    if (!decode(undecoded, pool, progress))
        return false;
    for (const Request &request : requests) {
        const QString reason = request.image ? request.image->reason : request.reason;
        if (!reason.isEmpty() && (!request.image || request.isNewImage))
            warnWithout(request.path,
                        request.meant.isNull()
                            ? reason
                            : QStringLiteral("does not exist, and '%1' in its place %2")
                                  .arg(request.meant, reason));
        else if (reason.isEmpty() && !request.meant.isNull())
            qWarning("The texture '%s' does not exist; drawn with '%s' in its place.",
                     qUtf8Printable(request.path), qUtf8Printable(request.meant));
    }
    return true;
}

TextureCache::Request TextureCache::resolve(const QString &path)
{
    Request request;
    request.path = path;
    lookUp(path, request);
    // Each search reads directories, and a library may name any number of files.
    constexpr int MostSearches = 100;
    if (request.reason != missing() || ++_searches > MostSearches)
        return request;
    const QString meant = fileMeantBy(path);
    if (meant.isNull())
        return request;
    request.meant = meant;
    lookUp(meant, request);
    return request;
}

/// Fills in image or reason.
void TextureCache::lookUp(const QString &path, Request &request)
{
    request.reason = _settings.objection ? _settings.objection(path) : QString();
    if (!request.reason.isEmpty())
        return;
    // A name with a zero byte is none for the system.
    const QString file =
        path.contains(QChar::Null) ? QString() : QFileInfo(path).canonicalFilePath();
    if (file.isEmpty()) {
        request.reason = missing();
        return;
    }
    request.image = _byFile.value(file);
    request.isNewImage = !request.image;
    if (request.isNewImage) {
        _images.push_back(std::make_unique<Image>());
        request.image = _images.back().get();
        request.image->path = path;
        _byFile.insert(file, request.image);
    }
}

/// In batches, so that a stop is heard, and no more than one batch is decoded in vain when the
/// pixels that a model may have run out.
bool TextureCache::decode(const std::vector<Image *> &images, QThreadPool *pool,
                          const std::function<bool(double)> &progress)
{
    const size_t batchSize = pool ? size_t(std::max(pool->maxThreadCount(), 0)) + 1 : 1;
    for (size_t begin = 0; begin < images.size(); begin += batchSize) {
        if (progress && !progress(double(begin) / double(images.size())))
            return false;
        const size_t end = std::min(begin + batchSize, images.size());
        const std::vector<Image *> batch(images.begin() + std::ptrdiff_t(begin),
                                         images.begin() + std::ptrdiff_t(end));
        PrepareTextureOptions options;
        options.mostOnASide = _settings.mostOnASide;
        options.convertsTo32Bits = true;
        options.mostPixels = std::min(options.mostPixels, _settings.mostPixels - _pixels);
        shareTasks(batch.size(), pool, [&](std::size_t i) {
            batch[i]->prepared = prepareTexture(batch[i]->path, options);
        });
        for (Image *image : batch)
            admit(*image);
    }
    return true;
}

/// Takes a decoded image, unless those before it have left too few pixels for it.
void TextureCache::admit(Image &image)
{
    PreparedTexture &prepared = image.prepared;
    image.reason = prepared.reason;
    const bool isTooLarge = prepared.trouble == PreparedTexture::Trouble::TooLarge;
    const QSize size = isTooLarge ? prepared.claimedSize : prepared.image.size();
    const qint64 pixels = qint64(size.width()) * size.height();
    const bool isTooMany = pixels > _settings.mostPixels - _pixels;
    const bool canBeAlone = pixels <= PrepareTextureOptions().mostPixels &&
                            size.width() <= _settings.mostOnASide &&
                            size.height() <= _settings.mostOnASide;
    if ((isTooLarge || !prepared.isNull()) && isTooMany && canBeAlone)
        image.reason = QStringLiteral("has %1 x %2 pixels, more than the textures before it leave "
                                      "of the %3 that a model may have")
                           .arg(size.width())
                           .arg(size.height())
                           .arg(_settings.mostPixels);
    if (image.reason.isEmpty())
        _pixels += pixels;
    else
        prepared.image = QImage();
}

QImage TextureCache::thumbnail(const QString &path, int side) const
{
    const Image *const image = _byPath.value(path);
    if (!image || image->prepared.isNull())
        return {};
    const auto scaled = [](const QImage &from, int most, Qt::TransformationMode mode) {
        return from.width() <= most && from.height() <= most
                   ? from
                   : from.scaled(most, most, Qt::KeepAspectRatio, mode);
    };
    // Of a large image a sample will do: smoothing all of it takes seconds. From twice 65,536
    // pixels on Qt has threads help, and waits without end where none can be started.
    const QImage sample = scaled(image->prepared.image, 3 * side, Qt::FastTransformation);
    return scaled(sample, side, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .mirrored();
}

bool TextureCache::uploadNext()
{
    while (_nextToUpload < _images.size()) {
        Image &image = *_images[_nextToUpload++];
        if (image.isUploaded || image.prepared.isNull())
            continue;
        upload(image);
        break;
    }
    return _nextToUpload < _images.size();
}

void TextureCache::upload(Image &image)
{
    image.isUploaded = true;
    if (!image.reason.isEmpty() || image.prepared.isNull())
        return;
    image.texture = makeTexture(image.prepared, &image.reason);
    image.prepared.image = QImage();
    if (!image.texture)
        warnWithout(image.path, image.reason);
}

} // namespace Halvard::Orv::Render
