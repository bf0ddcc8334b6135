#include "Scanning/TextScanning.h"

#include "Numbers/ASCIIBytes.h"
#include "Scanning/FaceRuns.h"
#include "Scanning/PlainLines.h"
#include "Scanning/ValueRuns.h"

#include <algorithm>
#include <cstring>

namespace Halvard::Orv {

namespace {

/// Whether the token [`begin`, `end`) is `keyword`.
template <size_t Size>
bool isKeyword(const char *begin, const char *end, const char (&keyword)[Size])
{
    return static_cast<size_t>(end - begin) == Size - 1 &&
           std::memcmp(begin, keyword, Size - 1) == 0;
}

} // namespace

TextEnd TextScanner::scan(const TextPiece &text)
{
    const char *line = text.begin();
    if (text.offset() == 0)
        line += std::min(_markBytes, text.byteCount());
    _text = &text;
    _end = TextEnd::AllRead;
    _marks.mark(text.begin(), text.end());
    while (_end == TextEnd::AllRead && line < text.end()) {
        const char *next = readRun(line);
        line = next == line ? readLine(line) : next;
    }
    return _end;
}

/// Reads a run of lines of one kind that are written plainly.
/// \return start of the first unread line; equals `line` where there is no run.
const char *TextScanner::readRun(const char *line)
{
    const char *const end = _text->end();
    if (line[0] == 'f')
        return readFaceRun(line, end, _marks, _geometry);
    if (line[0] != 'v')
        return line;
    switch (line[1]) {
    case ' ':
        return readPositionRun(line, end, _marks, _geometry.positions);
    case 'n':
        return readNormalRun(line, end, _marks, _geometry.normals);
    case 't':
        return readTexCoordRun(line, end, _marks, _geometry.texCoords);
    default:
        return line;
    }
}

/// Reads one line, whatever it is.
/// \return start of the next one.
const char *TextScanner::readLine(const char *line)
{
    const char *const end = _text->end();
    const char *const keyword = skipBlanks(line);
    if (isLineEnd(keyword) || *keyword == '#')
        return lineAfter(keyword, end);
    const char *const text = tokenEnd(keyword);
    const char *next = text ? readPlainLine(keyword, text) : nullptr;
    if (!next) {
        next = lineAfter(line, end);
        readOddLine(line, next);
    }
    return next;
}

/// Reads a plain line.
/// \return start of the next one; null, with nothing done, when the line is odd.
const char *TextScanner::readPlainLine(const char *keyword, const char *text)
{
    const char *const end = _text->end();
    if (isKeyword(keyword, text, "f"))
        return readPlainFace(text, end, _geometry);
    if (isKeyword(keyword, text, "v"))
        return readPlainValue(text, end, _geometry.positions);
    if (isKeyword(keyword, text, "vn"))
        return readPlainValue(text, end, _geometry.normals);
    if (isKeyword(keyword, text, "vt"))
        return readPlainValue(text, end, _geometry.texCoords);
    if (isKeyword(keyword, text, "usemtl"))
        return readMaterial(text);
    if (isKeyword(keyword, text, "mtllib"))
        return nullptr; // rare, and the reader knows how to resolve the path
    return lineAfter(text, end);
}

const char *TextScanner::readMaterial(const char *text)
{
    const char *const name = skipBlanks(text);
    const char *const nameEnd = isLineEnd(name) ? name : tokenEnd(name);
    if (!nameEnd)
        return nullptr;
    _materials.select(QString::fromLatin1(name, static_cast<int>(nameEnd - name)));
    return lineAfter(nameEnd, _text->end());
}

/// Reads the line that ends at `next`, the start of another, with the line reader.
void TextScanner::readOddLine(const char *line, const char *next)
{
    const bool endsOpen = next == _text->end() && _text->endsOpen();
    if (!_oddLines.read(line, next - (endsOpen ? 1 : 0), _text->offsetOf(line))) {
        _end = TextEnd::NeedsLineReader;
        return;
    }
    const OBJReader &reader = _oddLines.line();
    switch (_oddLines.lineType()) {
    case OBJReader::LINE_V:
        appendValue(_geometry.positions, reader.getV());
        break;
    case OBJReader::LINE_VN:
        appendValue(_geometry.normals, reader.getVn());
        break;
    case OBJReader::LINE_VT:
        appendValue(_geometry.texCoords, reader.getVt());
        break;
    case OBJReader::LINE_F:
        appendFace(reader, _geometry);
        break;
    case OBJReader::LINE_MTLLIB:
        if (!_materials.load(reader.getMtllibPath()))
            _end = TextEnd::LibraryMissing;
        break;
    case OBJReader::LINE_USEMTL:
        _materials.select(reader.getUsemtlName());
        break;
    default:
        break;
    }
}

} // namespace Halvard::Orv
