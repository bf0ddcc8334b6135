#include "TextureCache.h"

#include "SimilarFiles.h"

#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvModel/TexturePreparing.h>

#include <QtCore/QFileInfo>
#include <QtCore/QtDebug>

namespace Halvard::Orv::Render {

namespace {

QString missing()
{
    return QStringLiteral("does not exist");
}

} // namespace

Texture *TextureCache::texture(const QString &path)
{
    const auto known = _byPath.constFind(path);
    if (known != _byPath.constEnd())
        return *known;
    QString reason;
    Texture *const texture = find(path, reason);
    if (!reason.isEmpty())
        qWarning("The texture '%s' %s; drawn without it.", qUtf8Printable(path),
                 qUtf8Printable(reason));
    return *_byPath.insert(path, texture);
}

/// \param reason stays empty where there is nothing to say, or it was said.
Texture *TextureCache::find(const QString &path, QString &reason)
{
    Texture *const texture = load(path, reason);
    if (texture || reason != missing())
        return texture;
    // Each search reads directories, and a library may name any number of files.
    constexpr int MostSearches = 100;
    const QString meant = ++_searches <= MostSearches ? fileMeantBy(path) : QString();
    if (meant.isNull())
        return nullptr;
    QString trouble;
    Texture *const other = load(meant, trouble);
    if (!trouble.isEmpty()) {
        reason = QStringLiteral("does not exist, and '%1' in its place %2").arg(meant, trouble);
        return nullptr;
    }
    reason.clear(); // of a file that cannot be used, too: it was said
    if (other)
        qWarning("The texture '%s' does not exist; drawn with '%s' in its place.",
                 qUtf8Printable(path), qUtf8Printable(meant));
    return other;
}

Texture *TextureCache::load(const QString &path, QString &reason)
{
    if (_settings.objection) {
        reason = _settings.objection(path);
        if (!reason.isEmpty())
            return nullptr;
    }
    // A name with a zero byte is none for the system.
    const QString file =
        path.contains(QChar::Null) ? QString() : QFileInfo(path).canonicalFilePath();
    if (file.isEmpty()) {
        reason = missing();
        return nullptr;
    }
    const auto known = _byFile.constFind(file);
    if (known != _byFile.constEnd())
        return *known;
    return *_byFile.insert(file, decode(path, reason));
}

Texture *TextureCache::decode(const QString &path, QString &reason)
{
    GLint mostOnASide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &mostOnASide);
    PrepareTextureOptions options;
    options.mostOnASide = mostOnASide;
    options.convertsTo32Bits = true;
    const qint64 mostOfOne = options.mostPixels;
    options.mostPixels = qMin(mostOfOne, _settings.mostPixels - _pixels);

    const PreparedTexture prepared = prepareTexture(path, options);
    const QSize size = prepared.claimedSize;
    const qint64 pixels = qint64(size.width()) * size.height();
    if (prepared.trouble == PreparedTexture::Trouble::TooLarge && pixels <= mostOfOne &&
        size.width() <= mostOnASide && size.height() <= mostOnASide) {
        reason = QStringLiteral("has %1 x %2 pixels, more than the textures before it leave of the "
                                "%3 that a model may have")
                     .arg(size.width())
                     .arg(size.height())
                     .arg(_settings.mostPixels);
        return nullptr;
    }
    Texture *const texture = uploadTexture(prepared, &reason);
    if (!texture)
        return nullptr;
    if (!texture->isUsable()) {
        reason = QStringLiteral("belongs to another OpenGL context");
        return nullptr;
    }
    _pixels += qint64(texture->width()) * texture->height();
    return texture;
}

} // namespace Halvard::Orv::Render
