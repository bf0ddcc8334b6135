/// \file
/// Whether the texture that a material names can be had, and what its author may have meant.
#pragma once

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QMap>
#include <QtCore/QString>

#include <utility>

namespace Halvard::Orv::Checking {

/// What is the matter with a texture's path.
enum class TextureTrouble
{
    None,
    Missing,
    Undecodable,
    NotThirtyTwoBit, ///< Decodes to fewer bits per pixel, which LoadTexture() refuses.
    Backslash,
    OtherCase,
    Options,
    CutAtBlank
};

struct TextureState
{
    TextureTrouble trouble = TextureTrouble::None;
    QString found; ///< The file that was meant, as it would be written; null where none is found.
};

/// Looks for textures, and for each file once.
class TextureProbe
{
public:
    explicit TextureProbe(CheckOptions options) : _options(std::move(options)) {}
    /// \param decodes whether images are decoded.
    explicit TextureProbe(bool decodes) { _options.decodeTextures = decodes; }

    /// \param directory of the library, absolute.
    /// \param word the path as the loader reads it: up to the first blank.
    /// \param rest all that the line says.
    TextureState look(const QString &directory, const QString &word, const QString &rest);

private:
    TextureTrouble troubleWith(const QString &path);
    TextureTrouble troubleOfFile(const QString &path);
    bool mayLookAt(const QString &path) const;

    CheckOptions _options;
    qint64 _pixels = 0; // decoded so far
    int _searches = 0;  // for files that are missing
    QMap<QString, TextureTrouble> _known;
};

/// What a map line says after its options, such as "-s 2 2 1"; all of it where it begins with
/// none.
QString withoutMapOptions(const QString &rest);

} // namespace Halvard::Orv::Checking
