#include <OrvModel/OBJReader.h>

#include "Lanes/FloatingPointState.h"
#include "Readers/Tokens.h"

#include <QtCore/QTextStream>

namespace Halvard::Orv {

namespace {

constexpr int ReservedCorners = 100;

/// Part `number` of a face token such as "1/2/3", without copying it; null when
/// the token has fewer parts.
QStringRef slashPart(const QStringRef &token, int number)
{
    int begin = 0;
    for (; number > 0; --number) {
        const int slash = token.indexOf(QLatin1Char('/'), begin);
        if (slash < 0)
            return {};
        begin = slash + 1;
    }
    const int end = token.indexOf(QLatin1Char('/'), begin);
    return token.mid(begin, end < 0 ? -1 : end - begin);
}

/// Reads a texture or normal index, which a token may leave out. The index is 0
/// where it does.
bool readOptionalIndex(const QStringRef &part, int &index)
{
    index = 0;
    if (part.isEmpty())
        return true;
    bool ok = false;
    index = part.toInt(&ok);
    return ok;
}

} // namespace

OBJReader::OBJReader(QTextStream &stream)
    : _baseDir(QString()), _stream(&stream), _parsedOk(false),
      _lineType(LINE_SKIP), _xyz{0.0f, 0.0f, 0.0f}, _numV(0), _numVt(0), _numVn(0)
{
    _vertices.reserve(ReservedCorners);
    next();
}

void OBJReader::setBaseDir(const QString &path)
{
    _baseDir = QDir(path);
}

bool OBJReader::valid() const
{
    return _lineType != LINE_EOF;
}

void OBJReader::next()
{
    _lineType = LINE_SKIP;
    _parsedOk = false;
    while (_lineType == LINE_SKIP) {
        if (_stream->atEnd()) {
            _lineType = LINE_EOF;
            return;
        }
        _line = _stream->readLine();
        tokenize();
        if (_tokens.isEmpty() || token(0).startsWith(QLatin1Char('#')))
            continue;
        classify(token(0));
    }
}

void OBJReader::tokenize()
{
    _tokens.clear();
    forEachToken(_line, [this](int begin, int length) { _tokens.append({begin, length}); });
}

/// Counts the line, too: negative indices refer to the lines seen, whether or
/// not they parse.
void OBJReader::classify(const QStringRef &keyword)
{
    if (keyword == QLatin1String("v")) {
        _lineType = LINE_V;
        ++_numV;
    } else if (keyword == QLatin1String("vn")) {
        _lineType = LINE_VN;
        ++_numVn;
    } else if (keyword == QLatin1String("vt")) {
        _lineType = LINE_VT;
        ++_numVt;
    } else if (keyword == QLatin1String("f")) {
        _lineType = LINE_F;
    } else if (keyword == QLatin1String("usemtl")) {
        _lineType = LINE_USEMTL;
    } else if (keyword == QLatin1String("mtllib")) {
        _lineType = LINE_MTLLIB;
    }
}

bool OBJReader::parseLine()
{
    const FloatingPointState state;
    switch (_lineType) {
    case LINE_V:
    case LINE_VN:
        _xyz[0] = number(1);
        _xyz[1] = number(2);
        _xyz[2] = number(3);
        break;
    case LINE_VT: // a third coordinate is not read, and z stays as it was
        _xyz[0] = number(1);
        _xyz[1] = number(2);
        break;
    case LINE_F:
        _parsedOk = parseVerts();
        return _parsedOk;
    case LINE_MTLLIB:
        _name = token(1).toString();
        if (QDir::isRelativePath(_name))
            _name = _baseDir.absoluteFilePath(_name);
        break;
    case LINE_USEMTL:
        _name = token(1).toString();
        break;
    default:
        return _parsedOk;
    }
    _parsedOk = _stream->status() == QTextStream::Ok;
    return _parsedOk;
}

bool OBJReader::parseVerts()
{
    if (_stream->status() != QTextStream::Ok)
        return false;
    _vertices.clear();
    for (int i = 1; i < _tokens.size(); ++i) {
        const QStringRef text = token(i);
        if (text.startsWith(QLatin1Char('#')))
            return true;
        Vertex corner;
        if (!parseCorner(text, corner))
            return false;
        _vertices.append(corner);
    }
    return true;
}

/// Reads "v", "v/vt", "v//vn" or "v/vt/vn"; further parts are not looked at.
bool OBJReader::parseCorner(const QStringRef &text, Vertex &corner) const
{
    bool ok = false;
    const int position = slashPart(text, 0).toInt(&ok);
    int texture = 0;
    int normal = 0;
    if (!ok || !readOptionalIndex(slashPart(text, 1), texture) ||
        !readOptionalIndex(slashPart(text, 2), normal))
        return false;
    corner.v = resolveIndex(position, _numV);
    corner.vn = resolveIndex(normal, _numVn);
    corner.vt = resolveIndex(texture, _numVt);
    return true;
}

int OBJReader::getLineType() const
{
    return _lineType;
}

const OBJReader::Floats &OBJReader::getV() const
{
    return _xyz;
}
const OBJReader::Floats &OBJReader::getVn() const
{
    return _xyz;
}
const OBJReader::Floats &OBJReader::getVt() const
{
    return _xyz;
}

int OBJReader::getNumVertices() const
{
    return _vertices.size();
}

OBJReader::Vertex OBJReader::getVertex(int i) const
{
    return _vertices.at(i);
}

const QString &OBJReader::getUsemtlName() const
{
    return _name;
}
const QString &OBJReader::getMtllibPath() const
{
    return _name;
}

int OBJReader::resolveIndex(int index, int count) const
{
    if (index > 0)
        return index - 1;
    return index == 0 ? AbsentIndex : index + count;
}

/// Token `i` of the line; empty when the line is shorter.
QStringRef OBJReader::token(int i) const
{
    if (i >= _tokens.size())
        return {};
    const Token &token = _tokens.at(i);
    return _line.midRef(token.begin, token.length);
}

/// Token `i` as a number; 0 when it is missing or malformed.
float OBJReader::number(int i) const
{
    return token(i).toFloat();
}

} // namespace Halvard::Orv
