/// \file
/// The libraries of a model: which files they are, what is written of them, and how the model
/// names them from now on.
#pragma once

#include "NameSet.h"
#include "Repairs/LibraryRepair.h"
#include "Repairs/MaterialNames.h"
#include "Repairs/MendedText.h"
#include "Repairs/OBJSurvey.h"
#include "Repairs/RepairLog.h"

#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Halvard::Orv::Checking {

/// What becomes of the "mtllib" lines.
struct LibraryLines
{
    /// What stands in place of one of them.
    struct Rewrite
    {
        bool isComment = false; ///< The line stays, as a comment.
        bool isRemoved = false;
        QStringList names;   ///< To load, one in a line each.
        QStringList missing; ///< To name in comments behind them.
    };

    QHash<qint64, Rewrite> rewrites; ///< By line; lines that are not in it stay.
    QStringList early;               ///< Names to load before the first face, in order.
};

/// Finds the libraries that a model names, and settles what becomes of them.
class LibraryPlan
{
public:
    /// A library to write.
    struct Output
    {
        QString path;
        std::string text;
    };

    /// \param fileName the model. \param outputName where it goes.
    /// \param options must outlive the object. \param file number of the model in the log.
    LibraryPlan(const QString &fileName, const QString &outputName, const OBJSurvey &survey,
                const MendedText &source, const RepairOptions &options, RepairLog &log, int file);

    /// Finds the libraries, and settles everything.
    void make();

    const MaterialNames &names() const { return _names; }
    const LibraryLines &lines() const { return _lines; }
    const std::vector<Output> &outputs() const { return _outputs; }
    /// Whether a face with a texture has a corner without a texture coordinate.
    bool wantsTexCoords() const { return _wantsTexCoords; }
    /// Whether a path leads to the model or to one of its libraries.
    bool isInput(const QString &path) const;

private:
    /// A name of a library in the model.
    struct Reference
    {
        qint64 line;
        int library;
        QString written;
        QString name;   ///< For the same file; another than `written` where that is wrong.
        QString target; ///< Name in the output.
    };

    struct Library
    {
        std::unique_ptr<LibraryRepair> repair;
        QStringList definitions; ///< To add.
        QString output;          ///< Path to write to; null where it stays where it is.
    };

    void findLibraries();
    void findOnLine(const LibraryLine &line);
    QString troubleWith(const QString &name) const;
    bool addReference(qint64 line, const QString &written, const QString &name);
    QString meant(const QString &name);
    bool mayLookAt(const QString &path) const;
    bool isThere(const QString &path) const;
    void settleNames();
    void settleMaterials();
    int libraryOf(const QString &material) const;
    void settleOutputs();
    void mendLibrary(int number);
    bool takeOwnName(int number, const Reference &reference);
    bool canDefineInFirst(const QStringList &names) const;
    void addDefinitions(const QStringList &definitions);
    std::string textFor(int number, const QString &path, RepairLog &log);
    QString freeOutput(const std::string &text);
    bool isOfAnother(const QString &path, const std::string &text);
    void settleLines();
    QString pathOf(const QString &name) const;
    QString shown(const QString &name) const;
    void tell(Code code, qint64 line, const QString &subject, const QString &message);

    const QString _fileName;
    const QString _outputName;
    const OBJSurvey &_survey;
    const MendedText &_source;
    const RepairOptions &_options;
    RepairLog &_log;
    const int _file;
    const QDir _directory;       // of the model
    const QDir _outputDirectory; // of the output
    bool _staysInPlace;          // both are one
    MaterialNames _names;
    LibraryLines _lines;
    std::vector<Library> _libraries;
    std::vector<Reference> _references;
    QMap<QString, int> _numbers; // of libraries, by canonical path
    QMap<QString, int> _owners;  // first reference that defines a material
    NameSet _textured;           // names of materials
    QSet<qint64> _late;          // lines of references that move
    std::vector<Output> _outputs;
    std::optional<QStringList> _replaced; // libraries of the model that the output replaces
    QString _newLibrary;                  // name of one made for definitions alone
    bool _wantsTexCoords = false;
    int _searches = 0;
};

} // namespace Halvard::Orv::Checking
