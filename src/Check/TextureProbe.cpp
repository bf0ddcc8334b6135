#include "TextureProbe.h"

#include <OrvModel/TexturePreparing.h>

#include <SimilarFiles.h>

#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <algorithm>

namespace Halvard::Orv::Checking {

namespace {

/// Most pixels that are decoded to see whether they can be, of one image and of all: a few bytes
/// may claim billions. Of further images only the head is read.
constexpr qint64 MostPixels = qint64(1) << 26;
constexpr qint64 MostPixelsOfAll = qint64(1) << 29;

/// Most missing textures for which others are looked for, in all directories of their paths.
constexpr int MostSearches = 100;

/// An option of a map line and how many values follow it, at least and at most.
struct MapOption
{
    const char *name;
    int fewest;
    int most;
};

constexpr MapOption MapOptions[] = {
    {"-blendu", 1, 1}, {"-blendv", 1, 1},  {"-bm", 1, 1},  {"-boost", 1, 1}, {"-cc", 1, 1},
    {"-clamp", 1, 1},  {"-imfchan", 1, 1}, {"-mm", 2, 2},  {"-o", 1, 3},     {"-s", 1, 3},
    {"-t", 1, 3},      {"-texres", 1, 1},  {"-type", 1, 1}};

const MapOption *optionNamed(const QString &word)
{
    for (const MapOption &option : MapOptions) {
        if (word == QLatin1String(option.name))
            return &option;
    }
    return nullptr;
}

bool isNumber(const QString &word)
{
    bool ok = false;
    word.toFloat(&ok);
    return ok;
}

QString resolved(const QString &directory, const QString &path)
{
    return QDir::isRelativePath(path) ? QDir(directory).absoluteFilePath(path) : path;
}

QString withSlashes(QString path)
{
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

/// `found`, an absolute path, as a library in `directory` would write it.
QString asWritten(const QString &directory, const QString &found)
{
    return found.isNull() ? found : QDir(directory).relativeFilePath(found);
}

} // namespace

QString withoutMapOptions(const QString &rest)
{
    const QStringList words = rest.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    int i = 0;
    while (i < words.size()) {
        const MapOption *option = optionNamed(words.at(i));
        if (!option)
            break;
        i += 1 + option->fewest;
        for (int more = option->fewest; more < option->most; ++more) {
            if (i < words.size() && isNumber(words.at(i)))
                ++i;
        }
    }
    return i == 0 ? rest : words.mid(i).join(QLatin1Char(' '));
}

bool TextureProbe::mayLookAt(const QString &path) const
{
    return !path.contains(QChar::Null) && (!_options.mayLookAt || _options.mayLookAt(path));
}

TextureTrouble TextureProbe::troubleWith(const QString &path)
{
    const auto known = _known.constFind(path);
    if (known != _known.constEnd())
        return *known;
    const bool isName = !path.contains(QChar::Null); // others are none for the system
    const TextureTrouble trouble = !isName           ? TextureTrouble::Missing
                                   : mayLookAt(path) ? troubleOfFile(path)
                                                     : TextureTrouble::None;
    _known.insert(path, trouble);
    return trouble;
}

TextureTrouble TextureProbe::troubleOfFile(const QString &path)
{
    if (!isRegularFile(path))
        return TextureTrouble::Missing;
    if (!_options.decodeTextures)
        return TextureTrouble::None;
    PrepareTextureOptions limits;
    limits.mostPixels = std::min(MostPixels, MostPixelsOfAll - _pixels);
    const PreparedTexture texture = prepareTexture(path, limits);
    switch (texture.trouble) {
    case PreparedTexture::Trouble::None:
        _pixels += qint64(texture.image.width()) * texture.image.height();
        return texture.image.depth() == 32 ? TextureTrouble::None : TextureTrouble::NotThirtyTwoBit;
    case PreparedTexture::Trouble::Missing:
        return TextureTrouble::Missing;
    case PreparedTexture::Trouble::TooLarge:
        return TextureTrouble::None; // for this check, not for a texture
    default:
        return TextureTrouble::Undecodable;
    }
}

TextureState TextureProbe::look(const QString &directory, const QString &word, const QString &rest)
{
    const TextureTrouble trouble = troubleWith(resolved(directory, word));
    if (trouble != TextureTrouble::Missing)
        return {trouble, {}};
    if (optionNamed(word))
        return {TextureTrouble::Options, withoutMapOptions(rest)};

    if (++_searches > MostSearches)
        return {TextureTrouble::Missing, {}};
    // From the likeliest to the boldest guess.
    const bool hasBackslash = word.contains(QLatin1Char('\\')) || rest.contains(QLatin1Char('\\'));
    for (const QString &text : {word, rest}) {
        const QString path = withSlashes(text);
        const QString base = path.section(QLatin1Char('/'), -1);
        const TextureTrouble kind = hasBackslash   ? TextureTrouble::Backslash
                                    : text != word ? TextureTrouble::CutAtBlank
                                                   : TextureTrouble::OtherCase;
        for (const QString &candidate : {path, hasBackslash ? base : path}) {
            if (candidate.isEmpty())
                continue;
            const QString absolute = resolved(directory, candidate);
            if (!mayLookAt(absolute))
                continue;
            if (candidate != word && isRegularFile(absolute))
                return {kind, candidate};
            const QString similar = fileOfOtherCase(absolute);
            if (!similar.isNull())
                return {kind, asWritten(directory, similar)};
        }
    }
    return {TextureTrouble::Missing, {}};
}

} // namespace Halvard::Orv::Checking
