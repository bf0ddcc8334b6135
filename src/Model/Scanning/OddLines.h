/// \file
/// Odd lines, one at a time through the line reader.
#pragma once

#include "Scanning/LineDecoding.h"

#include <OrvModel/OBJReader.h>

#include <QtCore/QString>
#include <QtCore/QTextStream>

#include <optional>

namespace Halvard::Orv {

/// Hands lines, one at a time, to an OBJReader, whose reading of a line is the
/// right one by definition.
class OddLines
{
public:
    /// \param baseDir where relative paths of material libraries begin.
    /// \param decoder started with the file's first bytes.
    OddLines(const QString &baseDir, const LineDecoder &decoder)
        : _baseDir(baseDir), _decoder(decoder)
    {}

    /// Reads a line, given as to LineDecoder::decode().
    /// \return false when only a reader of the whole file can tell what it means.
    bool read(const char *begin, const char *end, qint64 offset);

    /// The line read. A negative index counts back from the first value of the file, not
    /// from the latest: add the number of values so far, as appendFace() does.
    const OBJReader &line() const { return *_reader; }
    /// OBJReader::LINE_EOF when the line is of no kind that matters, or does not parse.
    int lineType() const { return _lineType; }

private:
    const QString _baseDir;
    const LineDecoder _decoder;
    QString _text;
    QTextStream _stream;
    std::optional<OBJReader> _reader;
    int _lineType = OBJReader::LINE_EOF;
};

} // namespace Halvard::Orv
