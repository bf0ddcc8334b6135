/// \file
/// One pass over the lines of a model.
#pragma once

#include "FaceCheck.h"
#include "FindingTable.h"
#include "LibraryCheck.h"
#include "Materials.h"
#include "NameCuts.h"
#include "Reading/OBJLines.h"

#include <QtCore/QDir>
#include <QtCore/QString>

namespace Halvard::Orv::Checking {

/// Takes the lines of a model one by one, and settles the accounts at the end.
class OBJCheck
{
public:
    /// \param fileName as findings name the model.
    /// \param options kept.
    OBJCheck(const QString &fileName, const CheckOptions &options);

    /// \return false when the loader could not hold more.
    bool takeLine(OBJLines &lines);
    /// To be told before finish(): the line that follows is too long.
    void takeTooLongLine(qint64 line);
    /// Call once, behind the last line.
    void finish(OBJLines &lines);

    /// The outcome, without its file name.
    ModelFindings result() const;
    /// Position whose line is wanted as that of the first unused one; -1 where there is none.
    qint64 firstUnusedPosition() const;
    /// Tells of the unused positions, the first of which is in `line`.
    void tellUnused(qint64 line);

private:
    void takeValues(OBJLines &lines, int wanted, float *values);
    void takeOddValues(OBJLines &lines, int wanted, float *values);
    void takeExtraValues(const OBJLines &lines, int count);
    void takeFace(OBJLines &lines);
    void takeLibrary(OBJLines &lines);
    void takeFurtherNames(const OBJLines &lines, const QString &name);
    QString similarLibrary(const QString &path) const;
    void tellMissing(const QString &name, const QString &path, qint64 line);
    void takeMaterial(OBJLines &lines);
    void useMaterial();
    void takeOther(OBJLines &lines);
    void checkReturns(const OBJLines &lines);
    void checkFirstLine(const OBJLines &lines);
    bool isWithinLimits(qint64 line);
    void finishMaterials();
    void finishModel();
    void finishContents(OBJLines &lines);
    bool mayLookAt(const QString &path) const;
    QString shownPath(const QString &name) const;

    const QString _fileName;
    const QDir _directory;
    const CheckOptions _options;
    FindingTable _findings;
    Materials _materials;
    NameCuts _names;
    LibraryCheck _libraries;
    FaceCheck _faces;
    int _material;         // that is selected; -1 before its first face
    QString _materialName; // then its name
    bool _isNamedWhole = false;
    qint64 _materialLine = 0;     // of the "usemtl" that selects it
    bool _isEarlyCounted = false; // whether that line is among its early uses
    Tally *_failure = nullptr;    // what makes the loader give up, first of all
    qint64 _knownLines = 0;       // with one of the six keywords
    qint64 _formatLines = 0;      // with another keyword of the format
    int _unknownKeywords = 0;
    qint64 _firstUnknownLine = 0;
    qint64 _smoothingOffLine = 0;
    int _searches = 0; // for files that are missing
    qint64 _facesDrawn = 0;
    qint64 _triangles = 0;
    QStringList _drawnMaterials;
};

} // namespace Halvard::Orv::Checking
