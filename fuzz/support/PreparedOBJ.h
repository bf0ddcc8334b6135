/// \file
/// An OBJ text on either road of the loader, up to what would go to the GPU.
#pragma once

#include "support/MessageCapture.h"

#include "Scanning/OBJScanLimits.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <map>
#include <string>
#include <vector>

namespace OrvFuzz {

/// Everything that comes of a text, floats and indices as bytes.
struct PreparedOBJ
{
    struct Command
    {
        QString group;
        unsigned firstIndex;
        unsigned count;
    };

    /// Whether the text must be read by lines, or passes a limit; then nothing else is
    /// set.
    bool needsLineReader = false;
    bool isTooLarge = false;
    bool isLibraryMissing = false;
    QString libraryPath;
    /// Per material group what its record holds, one line a member.
    std::map<QString, std::vector<QString>> materials;
    std::map<QString, QByteArray> attributes;
    QByteArray indices;
    std::vector<Command> commands;
    std::vector<OrvTest::Message> messages;
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

/// Pours the text line by line into a builder, and prepares that.
PreparedOBJ prepareByLines(const QByteArray &obj, const QString &baseDir,
                           const Halvard::Orv::OBJScanLimits &limits);

/// The limits of a loader, but for chunks that hold all of a text and take less time to
/// make.
Halvard::Orv::OBJScanLimits largeChunks();

/// What differs first; empty when nothing does.
std::string difference(const PreparedOBJ &first, const PreparedOBJ &second);

} // namespace OrvFuzz
