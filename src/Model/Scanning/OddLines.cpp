#include "Scanning/OddLines.h"

namespace Halvard::Orv {

bool OddLines::read(const char *begin, const char *end, qint64 offset)
{
    if (!_decoder.decode(begin, end, offset, _text))
        return false;
    // Each line has a reader of its own, which has counted no values: indices that refer
    // back stay negative, and the caller knows what to add.
    _stream.setString(&_text, QIODevice::ReadOnly);
    _reader.emplace(_stream);
    _reader->setBaseDir(_baseDir);
    _lineType = _reader->parseLine() ? _reader->getLineType() : int(OBJReader::LINE_EOF);
    return true;
}

} // namespace Halvard::Orv
