/// \file
/// Writes a model anew, line by line, with what a survey and its libraries ask for.
#pragma once

#include "FaceShapes.h"
#include "Repairs/FaceNormals.h"
#include "Repairs/LibraryPlan.h"
#include "Repairs/MaterialNames.h"
#include "Repairs/MendedText.h"
#include "Repairs/OBJSurvey.h"
#include "Repairs/RepairLog.h"
#include "Repairs/TextSink.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Halvard::Orv::Checking {

class OBJRewrite
{
public:
    /// \param source what `lines` reads.
    OBJRewrite(const OBJSurvey &survey, const FaceNormals &normals, const LibraryPlan &plan,
               RepairLog &log, int file, TextSink &sink);

    void write(OBJLines &lines, const MendedText &source);

private:
    struct Attribute
    {
        const char *keyword;
        const AttributeSurvey &survey;
        bool isMoved;  ///< Its first line goes before the first face.
        bool isUnused; ///< Its lines become comments.
        qint64 added;  ///< Values added behind the last one.
    };

    void writeEarlyLines();
    void writeAdded(const Attribute &attribute);
    void takeLine(OBJLines &lines);
    void takeValue(const Attribute &attribute);
    void takeLibrary();
    void takeMaterial();
    void takeFace(OBJLines &lines);
    bool splitsWrongly(const std::vector<Corner> &corners);
    bool wantsTexCoord(const Corner &corner) const;
    QByteArray rewritten(const Token &token, const Corner &corner, int normal);
    QByteArray shifted(const Attribute &attribute, const char *begin, const char *end, int index);
    qint64 shiftAt(const Attribute &attribute) const;
    void writeLine();
    void startNewLine();
    void tell(Code code, const QString &subject, const QString &message);

    const OBJSurvey &_survey;
    const FaceNormals &_normals;
    const LibraryLines &_libraries;
    const bool _wantsTexCoords; // where a corner has none
    const MaterialNames &_names;
    RepairLog &_log;
    const int _file;
    TextSink &_sink;
    const Attribute _v;
    const Attribute _vn;
    const Attribute _vt;
    FaceShapes _shapes;

    OBJLines *_lines = nullptr;
    qint64 _number = 0;     // of the line
    qint64 _sourceLine = 0; // in the file
    LineEdits _edits;
    bool _isLineOpen = false; // what is written does not end in a line feed
    std::vector<QByteArray> _corners;
};

} // namespace Halvard::Orv::Checking
