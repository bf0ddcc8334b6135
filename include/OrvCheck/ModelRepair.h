/// \file
/// Mends a model file, so that the loader makes of it what its author meant.
#pragma once

#include <OrvCheck/OrvCheckExport.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>
#include <memory>

class QIODevice;

namespace Halvard::Orv {

/// \addtogroup check
/// @{

/// One kind of change: all its occurrences together.
///
/// Texts are as those of a Finding: names from the file stand in them as they are.
struct RepairChange
{
    /// Of the finding that it mends; "library-copied" where a library only moves, and
    /// "library-name-taken" where it cannot have the output's name.
    QString code;
    QString file;     ///< The input file that it is about: the model, or a library that it names.
    qint64 line = 0;  ///< Of the first occurrence in that file, counted from 1.
    qint64 count = 0; ///< Number of occurrences: lines, faces or values.
    QString subject;  ///< As the finding's.
    QString message;  ///< What is done at the first occurrence, in one sentence.
};

/// How a repair is done.
struct RepairOptions
{
    /// Tells what would be changed, and writes nothing.
    bool dryRun = false;
    /// Called on the calling thread with the fraction of the work that is done, in [0, 1], never
    /// falling; false stops the work, and nothing is written then. May be null.
    std::function<bool(double fraction)> progress;
    /// Opens a material library; null where it cannot be opened. Without it libraries are files.
    std::function<std::unique_ptr<QIODevice>(const QString &path)> openLibrary;
    /// Whether a texture may be looked at, or a directory in which a missing file may have
    /// another name. Paths that lead to what may not stay as they are. Without it all may. Not asked
    /// about names with a zero byte, which are those of no file.
    std::function<bool(const QString &path)> mayLookAt;
};

/// How a repair ended.
enum class RepairStatus
{
    Done,
    Unreadable, ///< The model cannot be read to its end.
    Unwritable, ///< An output cannot be written, or is one of the inputs.
    Stopped     ///< `progress` returned false.
};

/// What a repair did.
struct RepairResult
{
    /// Sorted by file (the model's own first, then libraries as they are loaded), line and code.
    QVector<RepairChange> changes;
    /// What was written: the model first, then libraries. With RepairOptions::dryRun, what would
    /// be written.
    QStringList written;
};

/// Writes a model that does what the author of `fileName` meant, with its library beside it.
///
/// It works from text to text: every byte that no repair is about is as it was, and a model that
/// needs no repair comes out identical. What it writes it leaves unchanged another time. These
/// findings of checkModel() it mends: those that say `fixable`.
///
///     before                          after
///     mtllib a.mtl                    mtllib OUT.mtl
///     v 0,5 0 0                       v 0.5 0 0
///     vn 0 0 1                        vn 0 0 1
///     usemtl red paint                usemtl red_paint
///     f 1//1 2 \                      f 1//1 2//2 3//2
///       3
///
/// A library stays where it is, and the model goes on naming it, as long as it lies in the folder
/// of the output and needs no change. Otherwise a copy of it is written beside the output, under
/// its own name in another folder and under the output's name with the suffix "mtl" in the
/// same one; a number is added where that is the name of an input or of any other file. Paths of
/// textures in a copy lead to where the textures lie; textures are not copied.
///
/// Either all outputs are written or none, and none by halves. An older file `outputName` is
/// replaced; of libraries that are there, only one that bears the output's name and that this older
/// file names, as an earlier output does. Inputs are never written to.
///
/// \param fileName the OBJ file to mend.
/// \param outputName the OBJ file to write. Not written in a dry run, but names libraries there,
///        too.
/// \param result assigned when the status is Done.
/// \param reason a sentence without a full stop, assigned when the status is Unreadable or
///        Unwritable.
/// \param options a dry run, progress and libraries.
/// \return whether the outputs are written; they are in no other case.
///
/// Any file ends in one of the four ways; std::bad_alloc where memory ends. Memory is in
/// proportion to the number of values in the file, of libraries to their size. Safe on any thread.
/// Needs no OpenGL.
ORVCHECK_EXPORT RepairStatus repairModel(const QString &fileName, const QString &outputName,
                                         RepairResult &result, QString &reason,
                                         const RepairOptions &options = {});

/// @}

} // namespace Halvard::Orv
