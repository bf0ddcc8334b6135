#include <OrvModel/MTLReader.h>

#include "Lanes/FloatingPointState.h"

#include <algorithm>
#include <iterator>

namespace Halvard::Orv {

namespace {

/// Keywords by the line type that they stand for.
constexpr const char *Keywords[] = {"newmtl", "Ka",     "Kd",     "Ks",     "Ns",
                                    "d",      "map_Kd", "map_Ks", "map_Ka", "map_Ns"};

static_assert(std::size(Keywords) == MTLReader::LINE_EOF);

/// Position of the first character that is no blank; the length if there is none.
int firstNonBlank(const QString &line)
{
    const auto found = std::find_if(line.cbegin(), line.cend(),
                                    [](QChar character) { return !character.isSpace(); });
    return static_cast<int>(found - line.cbegin());
}

} // namespace

MTLReader::MTLReader(QTextStream &stream, bool skipUnknown)
    : _skipUnknown(skipUnknown), _baseDir(QString()), _stream(&stream), _parsedOk(false),
      _lineType(LINE_UNKNOWN), _values{0.0f, 0.0f, 0.0f}
{}

void MTLReader::setBaseDir(const QString &path)
{
    _baseDir = QDir(path);
}

bool MTLReader::valid() const
{
    return _lineType != LINE_EOF;
}

void MTLReader::next()
{
    _parsedOk = false;
    do {
        if (!readContentLine()) {
            _lineType = LINE_EOF;
            return;
        }
        classify();
    } while (_lineType == LINE_UNKNOWN && _skipUnknown);
}

/// Reads on to a line that holds more than blanks and a comment, and keeps it
/// without them. False at the end of the stream.
bool MTLReader::readContentLine()
{
    while (!_stream->atEnd()) {
        _line = _stream->readLine();
        const int first = firstNonBlank(_line);
        const int hash = _line.indexOf(QLatin1Char('#'));
        const int end = hash < 0 ? _line.size() : hash;
        if (end <= first)
            continue;
        _line = _line.mid(first, end - first).trimmed();
        return true;
    }
    return false;
}

void MTLReader::classify()
{
    _lineStream.setString(&_line, QIODevice::ReadOnly); // resets position and status
    QString keyword;
    _lineStream >> keyword;
    const auto found =
        std::find_if(std::begin(Keywords), std::end(Keywords),
                     [&](const char *candidate) { return keyword == QLatin1String(candidate); });
    _lineType = found == std::end(Keywords) ? int(LINE_UNKNOWN)
                                            : static_cast<int>(found - std::begin(Keywords));
}

bool MTLReader::parseLine()
{
    const FloatingPointState state;
    _parsedOk = false;
    switch (_lineType) {
    case LINE_NEWMTL:
        readWord();
        break;
    case LINE_KA:
    case LINE_KD:
    case LINE_KS:
        _lineStream >> _values[0] >> _values[1] >> _values[2];
        break;
    case LINE_NS:
    case LINE_D:
        _lineStream >> _values[0];
        break;
    case LINE_MAP_KD:
    case LINE_MAP_KS:
    case LINE_MAP_KA:
    case LINE_MAP_NS:
        readPath();
        break;
    default:
        return false;
    }
    _parsedOk = _lineStream.status() == QTextStream::Ok;
    return _parsedOk;
}

void MTLReader::readWord()
{
    _lineStream >> _text;
}

void MTLReader::readPath()
{
    readWord();
    if (QDir::isRelativePath(_text))
        _text = _baseDir.absoluteFilePath(_text);
}

int MTLReader::getLineType() const
{
    return _lineType;
}

const MTLReader::Floats &MTLReader::getKa() const
{
    return _values;
}
const MTLReader::Floats &MTLReader::getKd() const
{
    return _values;
}
const MTLReader::Floats &MTLReader::getKs() const
{
    return _values;
}

float MTLReader::getNs() const
{
    return _values[0];
}
float MTLReader::getD() const
{
    return _values[0];
}

const QString &MTLReader::getNewmtlName() const
{
    return _text;
}
const QString &MTLReader::getMapKdPath() const
{
    return _text;
}
const QString &MTLReader::getMapKsPath() const
{
    return _text;
}
const QString &MTLReader::getMapKaPath() const
{
    return _text;
}
const QString &MTLReader::getMapNsPath() const
{
    return _text;
}

const QString &MTLReader::line() const
{
    return _line;
}

} // namespace Halvard::Orv
