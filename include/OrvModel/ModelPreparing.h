/// \file
/// Making a model's arrays from a file or a builder, without OpenGL.
#pragma once

#include <OrvModel/OrvModelExport.h>
#include <OrvModel/PreparedModel.h>

#include <QtCore/QIODevice>
#include <QtCore/QString>

#include <functional>
#include <memory>

class QThreadPool;

namespace Halvard::Orv {

/// \addtogroup prepare
/// @{

class ModelBuilder;

/// What a preparation is busy with.
enum class PrepareStage
{
    Reading,       ///< the text, and the material libraries that it names
    Welding,       ///< equal vertices
    Triangulating, ///< faces
    Normals        ///< of the triangles, where the file has none
};

/// How far a preparation is.
struct PrepareProgress
{
    PrepareStage stage; ///< what it is busy with
    double fraction;    ///< of the whole work; never falls, and ends at 1
};

/// How a model is prepared. The model is the same to the bit whatever is chosen here.
struct PrepareOptions
{
    /// Told how far the work is; false stops it. Called on the thread that called, at most every
    /// 50 ms, and once with 1 at the end. What it throws passes through, and leaves nothing
    /// behind. Called in the default floating-point state.
    std::function<bool(const PrepareProgress &)> progress;

    /// Threads to share the work with: the caller's pool, which may be busy, or have one thread.
    /// Null: the calling thread works alone, as it does for small files. No task is left in the
    /// pool when the call returns.
    QThreadPool *threadPool = nullptr;

    /// Opens a material library for reading; null where there is none. Called on the thread that
    /// called. `path` is the library's, made absolute beside the model. Null: libraries are files.
    std::function<std::unique_ptr<QIODevice>(const QString &path)> openLibrary;

    /// Where not null, receives why the call failed: "no such file", "permission denied",
    /// "is a directory", "not a regular file", "not enough memory", "cancelled", or which limit
    /// the file goes beyond. Untouched otherwise.
    QString *reason = nullptr;
};

/// Reads a Wavefront OBJ file, and the material libraries that it names, into arrays: the same
/// vertices, indices, commands and materials that loadModelFromOBJFile() uploads, to the bit.
///
/// \param fileName the OBJ file. Material libraries are looked for beside it.
/// \param errorMessage assigned when the result is null, untouched otherwise: "Failed to load OBJ
///        file '%1'" or "Failed to load MTL file '%1'" as by loadModelFromOBJFile(), or "Loading
///        of '%1' was cancelled".
/// \param options progress, threads, libraries and reasons; nothing in it changes the result.
/// \return null as above. A file without anything to draw gives an empty model.
///
/// Safe on any thread, on several at once.
ORVMODEL_EXPORT std::unique_ptr<PreparedModel>
prepareModelFromOBJFile(const QString &fileName, QString &errorMessage,
                        const PrepareOptions &options = {});

/// The same from a device: a file, a buffer, a pipe, a socket, or what decompresses on the way.
///
/// \param device open for reading; read from where it is to its end. May be sequential; then a
///        read that gives nothing waits for more, as long as QIODevice::waitForReadyRead() does.
///        Where it is a file, its name stands for `fileName`, in messages and for the folder in
///        which libraries are looked for; else that is the current folder, and messages show an
///        empty name.
/// \param errorMessage as for prepareModelFromOBJFile().
/// \param options as for prepareModelFromOBJFile(); PrepareOptions::openLibrary for libraries that
///        are no files either.
/// \return as from prepareModelFromOBJFile(). A device that is not open for reading is a file
///         that cannot be opened.
ORVMODEL_EXPORT std::unique_ptr<PreparedModel>
prepareModelFromOBJ(QIODevice &device, QString &errorMessage, const PrepareOptions &options = {});

/// The arrays of what a builder holds: the first half of ModelBuilder::upload(). The builder is
/// prepared as by an upload, and keeps its streams: the result is a copy, so that whatever is done
/// with the builder leaves the result as it is.
///
/// \param builder geometry and material groups; used by no other thread meanwhile.
/// \param positionAttribute an attribute of at least three GL_FLOAT components.
/// \return null where upload() would do nothing: the builder is not valid, the attribute does not
///         exist or is no position, or a stream cannot be had. The report of the result has no
///         numbers of a file.
ORVMODEL_EXPORT std::unique_ptr<PreparedModel> prepareModel(ModelBuilder &builder,
                                                            const QString &positionAttribute);

/// @}

} // namespace Halvard::Orv
