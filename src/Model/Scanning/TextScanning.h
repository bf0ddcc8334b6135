/// \file
/// Reads the lines of a text into a geometry.
#pragma once

#include "Numbers/DigitMarks.h"
#include "Pieces/TextPiece.h"
#include "Scanning/OBJGeometry.h"
#include "Scanning/OddLines.h"

#include <QtCore/QString>

namespace Halvard::Orv {

/// Receives the lines on materials, which mean something for all lines that follow.
class MaterialLines
{
public:
    virtual ~MaterialLines() = default;

    virtual void select(const QString &material) = 0;
    /// \return false when reading ends here.
    virtual bool load(const QString &libraryPath) = 0;
};

/// How reading a text ends.
enum class TextEnd
{
    AllRead,
    LibraryMissing,  ///< at a line at which MaterialLines says so
    NeedsLineReader, ///< at a line that only a reader of the whole file can decode
};

/// Reads text line by line; see scanOBJFile().
class TextScanner
{
public:
    /// \param decoder started with the file's first bytes.
    /// \param geometry receives values and faces, behind those that it has.
    TextScanner(const QString &baseDir, const LineDecoder &decoder, OBJGeometry &geometry,
                MaterialLines &materials)
        : _geometry(geometry), _materials(materials), _oddLines(baseDir, decoder),
          _markBytes(decoder.markBytes())
    {}

    TextEnd scan(const TextPiece &text);

private:
    const char *readRun(const char *line);
    const char *readLine(const char *line);
    const char *readPlainLine(const char *keyword, const char *text);
    const char *readMaterial(const char *text);
    void readOddLine(const char *line, const char *next);

    OBJGeometry &_geometry;
    MaterialLines &_materials;
    OddLines _oddLines;
    const size_t _markBytes;
    DigitMarks _marks;
    const TextPiece *_text = nullptr;
    TextEnd _end = TextEnd::AllRead;
};

} // namespace Halvard::Orv
