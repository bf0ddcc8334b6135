/// \file
/// Material libraries: what they define, and what in them will not do what is expected.
#pragma once

#include "FindingTable.h"
#include "Materials.h"
#include "NameCuts.h"
#include "NameSet.h"
#include "Reading/MTLLines.h"
#include "TextureProbe.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace Halvard::Orv::Checking {

/// Reads the libraries of one model, each once, in the order in which the model names them.
class LibraryCheck
{
public:
    LibraryCheck(FindingTable &findings, Materials &materials, NameCuts &names,
                 const CheckOptions &options)
        : _findings(findings), _materials(materials), _names(names), _options(options),
          _textures(options)
    {}

    /// How a model names a library.
    struct Reference
    {
        QString name;  ///< As written.
        QString path;  ///< As the loader opens it.
        QString shown; ///< As findings name it.
        qint64 line;
    };

    /// Reads a library, unless it has been read before.
    /// \return false when it cannot be opened.
    bool read(const Reference &reference);

    /// Settles how severe the findings are: those on materials that no face uses matter little.
    void finish();

private:
    /// The section being read: from its "newmtl" to the next one or the end.
    struct Section
    {
        QString name;
        qint64 line = 0;
        bool isOpen = false;
        bool counts = false; ///< Not if the name is defined already.
        bool hasMap = false;
        float opacity = 1.0f;
        float transparency = 0.0f; ///< Of a "Tr" line.
        qint64 opacityLine = 0;    ///< 0 where there is none.
        qint64 transparencyLine = 0;
        QMap<QString, QString> members;
    };

    std::unique_ptr<QIODevice> open(const QString &path) const;
    void takeLine(const MTLLines &lines);
    void openSection(const MTLLines &lines);
    void closeSection();
    void takeValues(const MTLLines &lines);
    void takeUnread(const MTLLines &lines);
    void takeMap(const MTLLines &lines);
    void takeUnknown(const MTLLines &lines);
    bool checkNumbers(const MTLLines &lines);
    Tally &tell(Code code, const QString &subject, qint64 line);

    FindingTable &_findings;
    Materials &_materials;
    NameCuts &_names;
    const CheckOptions &_options;
    TextureProbe _textures;
    NameSet _read; // paths as given, and canonical: one file has many names
    QMap<QString, QMap<QString, QString>> _records;    // by material
    std::vector<std::pair<Tally *, int>> _ofMaterials; // findings, and whose they are
    QHash<int, int> _unknownKeywords;                  // their number by file

    // Of the library being read.
    Reference _reference;
    QString _directory;
    int _file = 0;
    Section _section;
    qint64 _continuedLine = -1; // the last one that is meant to go on in the next
    bool _isNameless = false;   // a "newmtl" without a name was read: what follows is told by that
};

} // namespace Halvard::Orv::Checking
