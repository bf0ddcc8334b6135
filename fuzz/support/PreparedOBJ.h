/// \file
/// An OBJ text on either path of the loader, up to what would go to the GPU.
#pragma once

#include "support/PlainModel.h"
#include "support/UploadedModel.h"

#include "Scanning/OBJScanning.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <string>
#include <vector>

namespace OrvFuzz {

/// Everything that comes of a text.
struct PreparedOBJ
{
    /// With NeedsLineReader and LimitExceeded nothing else is set.
    Halvard::Orv::OBJScanOutcome outcome = Halvard::Orv::OBJScanOutcome::Finished;
    QString libraryPath;
    /// The material groups of the builder, with their records, without their faces.
    OrvTest::PlainModel materials;
    /// What would go to the GPU, if anything, and what was said.
    OrvTest::UploadedModel prepared;
};

/// A model in one input: the text up to a line "#mtl" is the OBJ file, and what
/// follows it a library that this file finds under the name "m.mtl".
struct ModelText
{
    explicit ModelText(const QByteArray &input);

    QByteArray obj;
    QByteArray mtl;
};

/// Where a model's library lies: a temporary directory, which should be in memory.
class LibraryDirectory
{
public:
    static LibraryDirectory &instance();

    const QString &path() const { return _path; }
    /// Makes `contents` the library "m.mtl".
    void write(const QByteArray &contents);

private:
    LibraryDirectory();

    QString _path;
    QByteArray _contents;
};

/// Whether the text names a library by a path. Such texts are not loaded: a path may
/// lead to any file of the machine, also to one that never ends.
bool namesLibraryByPath(const QByteArray &obj);

/// Reads the text as bytes, and prepares it.
PreparedOBJ prepareByBytes(const QByteArray &obj, const QString &baseDir,
                           const Halvard::Orv::OBJScanLimits &limits);

/// Reads the text line by line into a builder, and prepares that.
PreparedOBJ prepareByLines(const QByteArray &obj, const QString &baseDir,
                           const Halvard::Orv::OBJScanLimits &limits);

/// The limits of a loader, but for chunks that hold all of a text and take less time to
/// make.
Halvard::Orv::OBJScanLimits largeChunks();

/// One line per difference: see ModelDifferences.h.
std::vector<std::string> differences(const PreparedOBJ &lines, const PreparedOBJ &bytes);

} // namespace OrvFuzz
