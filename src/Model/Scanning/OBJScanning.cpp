#include "Scanning/OBJScanning.h"

#include "Libraries/MaterialLibraries.h"
#include "Scanning/ASCIIBytes.h"
#include "Scanning/DigitMarks.h"
#include "Scanning/FaceGrouping.h"
#include "Scanning/FaceRuns.h"
#include "Scanning/LineChunks.h"
#include "Scanning/OddLines.h"
#include "Scanning/PlainLines.h"
#include "Scanning/ValueRuns.h"

#include <QtCore/QIODevice>

#include <algorithm>
#include <cstring>
#include <optional>

namespace Halvard::Orv {

namespace {

using Outcome = OBJScanOutcome;

/// Turns the text mode of a device off while it lives.
class RawReading
{
public:
    explicit RawReading(QIODevice &device) : _device(device), _textMode(device.isTextModeEnabled())
    {
        _device.setTextModeEnabled(false);
    }
    ~RawReading() { _device.setTextModeEnabled(_textMode); }
    RawReading(const RawReading &) = delete;
    RawReading &operator=(const RawReading &) = delete;

private:
    QIODevice &_device;
    const bool _textMode;
};

/// Makes room for what a file of `bytes` bytes may hold, by the length that numbers
/// have in large files. Arrays as large as theirs have pages of their own: room that is
/// not used takes no memory, while growing by moving loses large pages. Arrays of smaller
/// files share their pages, and room for one would be taken from others.
void expectValues(OBJGeometry &geometry, size_t bytes)
{
    constexpr size_t Large = size_t(20) << 20;
    if (bytes < Large)
        return;
    for (OBJAttribute *attribute : {&geometry.positions, &geometry.normals, &geometry.texCoords})
        attribute->values.tryReserve(bytes / 8);
    geometry.positions.indices.tryReserve(bytes / 6);
    geometry.normals.indices.tryReserve(bytes / 12);
    geometry.texCoords.indices.tryReserve(bytes / 12);
    geometry.cornerCounts.small.tryReserve(bytes / 12);
}

/// Whether the token [`begin`, `end`) is `keyword`.
template <size_t Size>
bool isKeyword(const char *begin, const char *end, const char (&keyword)[Size])
{
    return static_cast<size_t>(end - begin) == Size - 1 &&
           std::memcmp(begin, keyword, Size - 1) == 0;
}

class Scanner
{
public:
    Scanner(const QString &baseDir, MaterialLibraries &libraries, OBJGeometry &geometry)
        : _libraries(libraries), _geometry(geometry), _oddLines(baseDir),
          _grouping(geometry, libraries, QStringLiteral("<default>"))
    {}

    Outcome scan(QIODevice &device, const OBJScanLimits &limits)
    {
        LineChunks chunks(device, limits.chunkBytes, limits.lineBytes);
        while (!_failure && chunks.next()) {
            scanChunk(chunks);
            checkCounts(limits);
        }
        if (!_failure && chunks.lineTooLong()) {
            _failure = Outcome::LimitExceeded;
            _detail = QStringLiteral("a line of more than %1 bytes").arg(limits.lineBytes);
        }
        _grouping.startRun();
        return _failure.value_or(Outcome::Finished);
    }

    const QString &detail() const { return _detail; }

private:
    void scanChunk(const LineChunks &chunks)
    {
        const char *line = chunks.begin();
        if (chunks.offset() == 0) {
            if (!_oddLines.decoder().start(line, chunks.byteCount()))
                _failure = Outcome::NeedsLineReader;
            line += _oddLines.decoder().markBytes();
        }
        _chunks = &chunks;
        _marks.mark(chunks.begin(), chunks.end());
        while (!_failure && line < chunks.end()) {
            const char *next = readRun(line);
            line = next == line ? readLine(line) : next;
        }
    }

    /// Reads a run of lines of one kind that are written plainly.
    /// \return start of the first unread line; equals `line` where there is no run.
    const char *readRun(const char *line)
    {
        const char *const end = _chunks->end();
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
    const char *readLine(const char *line)
    {
        const char *const end = _chunks->end();
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
    const char *readPlainLine(const char *keyword, const char *text)
    {
        const char *const end = _chunks->end();
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

    const char *readMaterial(const char *text)
    {
        const char *const name = skipBlanks(text);
        const char *const nameEnd = isLineEnd(name) ? name : tokenEnd(name);
        if (!nameEnd)
            return nullptr;
        _grouping.select(QString::fromLatin1(name, static_cast<int>(nameEnd - name)));
        return lineAfter(nameEnd, _chunks->end());
    }

    /// Reads the line that ends at `next`, the start of another, with the line reader.
    void readOddLine(const char *line, const char *next)
    {
        const bool endsOpen = next == _chunks->end() && _chunks->endsOpen();
        if (!_oddLines.read(line, next - (endsOpen ? 1 : 0), _chunks->offsetOf(line))) {
            _failure = Outcome::NeedsLineReader;
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
            loadLibrary(reader.getMtllibPath());
            break;
        case OBJReader::LINE_USEMTL:
            _grouping.select(reader.getUsemtlName());
            break;
        default:
            break;
        }
    }

    void loadLibrary(const QString &path)
    {
        if (!_libraries.load(path)) {
            _detail = path;
            _failure = Outcome::LibraryMissing;
        }
        _grouping.startRun(); // the selected material may have a group now
    }

    /// Once a chunk is enough: a corner takes two bytes of text at least, so that one
    /// chunk cannot make counts wrap that were within the limits. The limit is exceeded
    /// first when a library is missing in the same chunk, since the scan stops there.
    void checkCounts(const OBJScanLimits &limits)
    {
        OBJCounts counts;
        counts.positions = _geometry.positions.values.size();
        counts.normals = _geometry.normals.values.size();
        counts.texCoords = _geometry.texCoords.values.size();
        counts.corners = _geometry.cornerCount;
        counts.faces = _geometry.faceCount();
        const QString excess = counts.excess(limits);
        if (excess.isNull() || _failure == Outcome::NeedsLineReader)
            return;
        _failure = Outcome::LimitExceeded;
        _detail = excess;
    }

    MaterialLibraries &_libraries;
    OBJGeometry &_geometry;
    OddLines _oddLines;
    FaceGrouping _grouping;
    DigitMarks _marks;
    const LineChunks *_chunks = nullptr;
    std::optional<Outcome> _failure;
    QString _detail;
};

} // namespace

OBJScanOutcome scanOBJFile(QIODevice &device, const QString &baseDir, MaterialLibraries &libraries,
                           OBJGeometry &geometry, QString &detail, const OBJScanLimits &limits)
{
    // A stream that comes piece by piece may be cut anywhere by QTextStream, and
    // could not be read again.
    if (device.isSequential())
        return Outcome::NeedsLineReader;
    if (device.atEnd()) // so says a file of size 0, even if it has bytes
        return Outcome::Finished;
    const RawReading raw(device);
    geometry.textBytes = static_cast<size_t>(device.size());
    expectValues(geometry, geometry.textBytes);
    Scanner scanner(baseDir, libraries, geometry);
    const Outcome outcome = scanner.scan(device, limits);
    detail = scanner.detail();
    return outcome;
}

} // namespace Halvard::Orv
