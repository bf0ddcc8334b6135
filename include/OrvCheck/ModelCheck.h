/// \file
/// What in a model file will not do what its author expects.
#pragma once

#include <OrvCheck/OrvCheckExport.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtGui/QVector3D>

#include <functional>
#include <memory>

class QIODevice;

namespace Halvard::Orv {

/// \addtogroup check
/// @{

/// How much a finding matters.
enum class FindingSeverity
{
    Error,   ///< Faces, or the whole model, are lost.
    Warning, ///< Something comes out other than it is written.
    Hint     ///< Nothing is lost; worth knowing.
};

/// The word for a severity in text and JSON: "error", "warning" or "hint".
ORVCHECK_EXPORT QString severityName(FindingSeverity severity);

/// One thing that is to be said about a file: all its occurrences together.
///
/// Texts are English sentences in plain text. Names from the file stand in them as they are,
/// control characters included: pass them through printableText() before they reach a
/// terminal. `message` cuts names at 200 characters; `subject` holds them whole.
struct Finding
{
    /// Stable name of the kind of finding, for example "material-undefined".
    /// docs/checks.md lists all of them.
    QString code;
    FindingSeverity severity = FindingSeverity::Hint; ///< How much it matters.
    /// The file that holds the first occurrence: the model, or a library that it names.
    QString file;
    /// Line of the first occurrence, counted from 1.
    qint64 line = 0;
    /// Number of occurrences, at least 1: lines, faces, corners or values; `message` says which.
    qint64 count = 1;
    /// What it is about: a material's name, a path as written, a keyword, an attribute ("v",
    /// "vt" or "vn"); empty where the code says all. No two findings of one model agree in
    /// `file`, `code` and `subject`.
    QString subject;
    QString message;     ///< What is wrong, in one sentence.
    QString consequence; ///< What the loader makes of it.
    QString remedy;      ///< What to do about it.
    /// Whether repairModel() mends it.
    bool fixable = false;
    /// Number of faces that are not drawn for this reason. A face with several reasons counts
    /// for one of them only.
    qint64 faces = 0;
    /// Positions of the corners of the first occurrence, where it is a face, or of the first face
    /// that is lost for the want of a material; at most MaxCorners of them. Otherwise empty.
    QVector<QVector3D> corners;

    static constexpr int MaxCorners = 64; ///< Most positions in `corners`.
};

/// The findings on one model and its libraries.
struct ModelFindings
{
    QString file;          ///< As the caller named it.
    qint64 faces = 0;      ///< "f" lines, also those that cannot be read.
    qint64 facesDrawn = 0; ///< Those that give at least one triangle in the loaded model.
    qint64 triangles = 0;  ///< Triangles of the loaded model.
    /// Names of the materials that faces are drawn with, sorted. Those before the first "usemtl"
    /// have "<default>".
    QStringList materials;
    /// Sorted by file (the model's own first, then libraries as they are loaded), line and
    /// code. `faces` equals `facesDrawn` and the `faces` of all findings together.
    QVector<Finding> findings;

    /// Whether a finding is at least as severe as `severity`.
    ORVCHECK_EXPORT bool has(FindingSeverity severity) const;
};

/// How a check is done.
struct CheckOptions
{
    /// Called on the calling thread with the fraction of the file that is read, in [0, 1],
    /// never falling; false stops the check. May be null.
    std::function<bool(double fraction)> progress;
    /// Whether textures are decoded to see if they can be. Without it a texture need only
    /// exist.
    bool decodeTextures = true;
    /// Opens a material library, as PrepareOptions::openLibrary does; null where it cannot be
    /// opened. Without it libraries are files.
    std::function<std::unique_ptr<QIODevice>(const QString &path)> openLibrary;
    /// Whether a texture may be looked at, or a directory in which a missing file may have
    /// another name. Nothing is said about textures that may not; of a library that is not opened,
    /// whether it is for that. Without it all may. Not asked about names with a zero byte, which
    /// are those of no file.
    std::function<bool(const QString &path)> mayLookAt;
};

/// How a check ended.
enum class CheckStatus
{
    Done,
    Unreadable, ///< The file is missing, cannot be opened, or is no regular file.
    Stopped     ///< `progress` returned false.
};

/// Reads a model and the libraries that it names, and says what will not do what its author
/// expects: which faces are not drawn and why, and what comes out other than it is written.
///
/// What it predicts is what loadModelFromOBJFile() makes of the file: faces, triangles,
/// materials. Needs no OpenGL. The file is read once from begin to end; memory holds the
/// positions and normals but no faces, save those whose indices refer to values further down
/// the file.
///
/// \param fileName the OBJ file.
/// \param result assigned when the status is Done.
/// \param reason assigned why the file is unreadable, when it is: "no such file", "permission
///        denied" ...
/// \param options progress, textures and libraries.
/// \return whether `result` holds the findings; else it is untouched.
///
/// Any file ends in one of the three ways; std::bad_alloc where memory ends. Safe on any thread.
ORVCHECK_EXPORT CheckStatus checkModel(const QString &fileName, ModelFindings &result,
                                       QString &reason, const CheckOptions &options = {});

/// `text` with everything escaped that would change how a terminal or an editor shows the rest:
/// control characters of C0 and C1, line and paragraph separators, and the characters that set
/// the writing direction become "\xNN" or "\u{NNNN}". Half of a pair of characters, which stands
/// for a byte of a file name that is no text, becomes "\xNN" too. A backslash stays as it is.
/// \param text any.
/// \param maxLength longer texts are cut there and end in "..."; 0 does not cut.
ORVCHECK_EXPORT QString printableText(const QString &text, int maxLength = 0);

/// @}

} // namespace Halvard::Orv
