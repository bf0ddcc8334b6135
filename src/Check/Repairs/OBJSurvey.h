/// \file
/// What has to be known of a model before the first line of it can be written anew.
#pragma once

#include "PagedPoints.h"
#include "Reading/OBJLines.h"

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace Halvard::Orv::Checking {

/// The lines of one of the keywords "v", "vn" and "vt", and the corners that select them. Line
/// numbers are those of the text that is read.
struct AttributeSurvey
{
    qint64 values = 0;
    qint64 firstLine = 0;
    qint64 lastLine = 0;
    QByteArray firstText; ///< That line, with its end.
    qint64 cornersBefore = 0;
    /// \name Of the corners of faces with three or more
    /// @{
    qint64 selecting = 0;
    qint64 absent = 0;
    qint64 largestIndex = -1;
    bool hasNegativeIndex = false; ///< After it is resolved.
    /// @}

    /// Whether a corner selects a value that is not there.
    bool selectsNothing() const
    {
        return values > 0 && (hasNegativeIndex || largestIndex >= values);
    }
    /// Whether a corner lacks a value that others have.
    bool isIncomplete() const
    {
        return selecting > 0 && values > 0 && (absent > 0 || selectsNothing());
    }
    bool has(int index) const { return index >= 0 && index < values; }
};

/// A "mtllib" line.
struct LibraryLine
{
    qint64 line;
    QStringList names;
    QString full; ///< All of them, as they are written.
};

/// A material as "usemtl" lines write it.
struct MaterialUse
{
    QString written;
    qint64 firstLine = 0;        ///< That selects it for a face; before there is one, of its first.
    qint64 firstFace = 0;        ///< Line of the first face with it; 0 where there is none.
    bool lacksTexCoords = false; ///< Of a corner of its faces, at least.
};

struct OBJSurvey
{
    /// Takes all lines.
    void read(OBJLines &lines);

    AttributeSurvey v;
    AttributeSurvey vn;
    AttributeSurvey vt;
    PagedPoints positions;
    qint64 corners = 0;
    qint64 firstFace = 0;         ///< Line of the first face that has corners; 0 without any.
    qint64 firstMaterialLine = 0; ///< Line of the first "usemtl" or "f"; 0 without any.
    std::vector<LibraryLine> libraries;
    std::vector<MaterialUse> materials; ///< In order of first mention.
    QByteArray lineEnd = "\n";          ///< Of the first line.

private:
    void takeFace(OBJLines &lines);
    void takePosition(const OBJLines &lines);
    void takeMaterial(const OBJLines &lines);
    void takeValue(AttributeSurvey &attribute, const OBJLines &lines);

    QMap<QString, int> _numbers; // of materials
    int _material = -1;
    qint64 _materialLine = 0; // that selects it
};

/// Number of tokens behind the keyword, up to a comment.
int nameCount(const LineTokens &tokens);

/// What a "usemtl" line names: all up to a comment with one blank for several, or the first word
/// where the comment takes its place.
QString writtenMaterial(const LineTokens &tokens);

} // namespace Halvard::Orv::Checking
