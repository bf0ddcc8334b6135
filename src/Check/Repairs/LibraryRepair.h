/// \file
/// One material library: what it defines, and its text with what is wrong with it mended.
#pragma once

#include "NameSet.h"
#include "Reading/MTLLines.h"
#include "Repairs/MaterialNames.h"
#include "Repairs/RepairLog.h"
#include "Repairs/TextSink.h"
#include "TextureProbe.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTextCodec>

#include <memory>
#include <string>

namespace Halvard::Orv::Checking {

/// Thrown where a library that could be opened is gone or ends in an error.
struct LibraryUnreadable
{
    QString shown;
};

/// Reads one library as often as a repair needs it.
class LibraryRepair
{
public:
    /// \param path as the loader opens it.
    /// \param shown as changes name it.
    LibraryRepair(const QString &path, const QString &shown, const RepairOptions &options);

    const QString &path() const { return _path; }
    const QString &shown() const { return _shown; }

    /// Reads the names of the materials.
    /// \return false when the library cannot be opened.
    bool readNames();
    /// As written, one for each "newmtl" line, in order.
    const QStringList &names() const { return _names; }
    /// Those of them whose section has a texture.
    const NameSet &textured() const { return _textured; }

    /// Whether the library's encoding has all letters of a name. To be asked after readNames().
    bool canWrite(const QString &name) const { return _codec && _codec->canEncode(name); }

    /// Lines that define a material in the default material's colours.
    static QString definition(const QString &name);

    struct Wishes
    {
        /// Where the text is to lie, absolute; null where that is where it lies now.
        QString directory;
        /// Names of materials to define at its end, in the default material's colours.
        QStringList definitions;
    };

    /// Mends the text.
    /// \param text receives it.
    /// \return whether a repair changed anything; paths that lead to the same texture from
    ///         another directory are no repair.
    /// \throws LibraryUnreadable
    bool mend(const MaterialNames &names, const Wishes &wishes, RepairLog &log, std::string &text);

private:
    std::unique_ptr<QIODevice> open() const;
    void mendName(const MTLLines &lines, const MaterialNames &names);
    void mendTexture(const MTLLines &lines);
    void mendTransparency(const MTLLines &lines);
    void moveTexture(const MTLLines &lines);
    void replaceRest(const MTLLines &lines, const QString &text);
    void tell(Code code, const QString &subject, const QString &message);

    const QString _path;
    const QString _shown;
    QStringList _names;
    NameSet _textured;
    const QTextCodec *_codec = nullptr; // of the mended text
    QHash<qint64, QString> _opacities;  // for "Tr" lines, by number
    const RepairOptions &_options;
    TextureProbe _textures;

    // While it is mended.
    RepairLog *_log = nullptr;
    int _file = 0;
    qint64 _line = 0; // in the file
    QString _directory;
    QString _newDirectory;
    LineEdits _edits;
    bool _isRepaired = false;
};

} // namespace Halvard::Orv::Checking
