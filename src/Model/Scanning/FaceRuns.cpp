#include "Scanning/FaceRuns.h"

#include "Numbers/ASCIIBytes.h"

#include <OrvModel/OBJReader.h>

#include <algorithm>

namespace Halvard::Orv {

#ifdef ORV_SCAN_SSE2

namespace {

/// Text read between two looks at the room for indices. Room is made for the shortest lines
/// that there can be, so that this bounds what an array has and does not need.
constexpr ptrdiff_t RunBytes = 1 << 13;

/// The most corners of a face that is read here: one line must not overrun the
/// room, and a byte must hold their number.
constexpr quint32 MaxCorners = 64;
static_assert(MaxCorners < CornerCounts::Escape);

/// How the corners of a line are written.
enum class CornerForm
{
    Position,       ///< "v"
    TexCoord,       ///< "v/vt"
    Normal,         ///< "v//vn"
    TexCoordNormal, ///< "v/vt/vn"
};

constexpr bool hasTexCoord(CornerForm form)
{
    return form == CornerForm::TexCoord || form == CornerForm::TexCoordNormal;
}

constexpr bool hasNormal(CornerForm form)
{
    return form == CornerForm::Normal || form == CornerForm::TexCoordNormal;
}

/// Where the indices of a line count from.
enum class Counting
{
    FromFirst, ///< "1" is the file's first value
    FromLast,  ///< "-1" is the latest value
};

const char *behindIndex(const char *text)
{
    text += *text == '-' ? 1 : 0;
    while (isDigit(*text))
        ++text;
    return text;
}

/// The form of the corner at `text`. Any answer will do for a corner of no form:
/// reading it will fail.
CornerForm formOf(const char *text)
{
    text = behindIndex(text);
    if (*text != '/')
        return CornerForm::Position;
    if (*++text == '/')
        return CornerForm::Normal;
    return *behindIndex(text) == '/' ? CornerForm::TexCoordNormal : CornerForm::TexCoord;
}

/// The indices of a corner.
struct CornerText
{
    IndexText position;
    IndexText texCoord;
    IndexText normal;
};

/// A place in a line of corners, between tokens or their parts.
class CornerCursor
{
public:
    CornerCursor(const DigitMarks &marks, const char *text)
        : _marks(marks), _text(text), _window(marks.window(text))
    {}

    const char *place() const { return _text + _at; }

    /// Makes sure that the window reaches `bytes` ahead.
    void keepAhead(size_t bytes)
    {
        if (_at + bytes > DigitMarks::WindowBytes) {
            _text += _at;
            _at = 0;
            _window = _marks.window(_text);
        }
    }

    /// Moves behind an index.
    template <Counting Counted>
    bool takeIndex(IndexText &index)
    {
        if (Counted == Counting::FromLast && !stepOver('-'))
            return false;
        const size_t end = lowestBit(_window);
        index.end = _text + end;
        index.digits = end - _at;
        _at = end;
        return index.digits - 1 < MaxIndexDigits;
    }

    /// Moves behind the byte at hand, which must be `separator`.
    bool stepOver(char separator)
    {
        _window = withoutLowestBit(_window);
        return _text[_at++] == separator;
    }

    /// Moves to the next token, or to the end of the line.
    bool hasFurtherToken()
    {
        if (_text[_at] != ' ')
            return false;
        stepOver(' ');
        return !isLineEnd(place());
    }

private:
    const DigitMarks &_marks;
    const char *_text;
    size_t _at = 0;
    quint64 _window; // of _text; bits below _at are clear
};

/// Reads lines whose corners all have one form and count alike.
template <CornerForm Form, Counting Counted>
class CornerReader
{
public:
    CornerReader(OBJGeometry &geometry, const DigitMarks &marks, size_t room)
        : _geometry(geometry), _marks(marks), _positions(open(geometry.positions, room)),
          _texCoords(open(geometry.texCoords, room)), _normals(open(geometry.normals, room)),
          _counts(geometry.cornerCounts.small.reserveMore(room))
    {}

    ~CornerReader()
    {
        close(_geometry.positions);
        close(_geometry.texCoords);
        close(_geometry.normals);
        _geometry.cornerCounts.small.commit(_faceCount);
        _geometry.cornerCount += _cornerCount;
    }

    /// Reads the corners of a line.
    /// \return where the next line begins, or null.
    const char *readLine(const char *text)
    {
        CornerCursor cursor(_marks, text);
        CornerText a, b, c, d;
        if (!take(cursor, a) || !cursor.stepOver(' ') || !take(cursor, b) ||
            !cursor.stepOver(' ') || !take(cursor, c))
            return nullptr;
        quint32 count = 3;
        if (!cursor.hasFurtherToken()) {
            store(a, b, c, c, 0); // what lies beyond the face's corners is overwritten later
        } else {
            if (!take(cursor, d))
                return nullptr;
            store(a, b, c, d, 0);
            for (count = 4; cursor.hasFurtherToken(); ++count) {
                if (count == MaxCorners || !take(cursor, d))
                    return nullptr;
                store(d, d, d, d, count);
            }
        }
        return finishFace(cursor.place(), count);
    }

private:
    static constexpr unsigned IndexBytes =
        (Counted == Counting::FromLast ? 1 : 0) + MaxIndexDigits + 1;
    static constexpr unsigned CornerBytes =
        IndexBytes + (hasTexCoord(Form) ? IndexBytes : 0) + (hasNormal(Form) ? IndexBytes : 0) + 1;

    /// Where the indices into an attribute go.
    struct Target
    {
        quint32 *indices;   ///< null where the file has no values so far
        quint32 valueCount; ///< of the attribute, where lines count from the last
    };

    static Target open(OBJAttribute &attribute, size_t room)
    {
        if (!attribute.exists())
            return {nullptr, 0};
        return {attribute.indices.reserveMore(room),
                Counted == Counting::FromLast ? attribute.valueCount() : 0};
    }
    void close(OBJAttribute &attribute) const
    {
        if (!attribute.exists())
            return;
        const size_t first = attribute.indices.size();
        attribute.indices.commit(_cornerCount);
        if (Counted == Counting::FromLast)
            attribute.noteRelativeIndices(first, first + _cornerCount);
    }

    static bool take(CornerCursor &cursor, CornerText &corner)
    {
        cursor.keepAhead(CornerBytes);
        if (!cursor.template takeIndex<Counted>(corner.position))
            return false;
        if constexpr (Form == CornerForm::Normal) {
            if (!cursor.stepOver('/'))
                return false;
        }
        if constexpr (hasTexCoord(Form)) {
            if (!cursor.stepOver('/') || !cursor.template takeIndex<Counted>(corner.texCoord))
                return false;
        }
        if constexpr (hasNormal(Form)) {
            if (!cursor.stepOver('/') || !cursor.template takeIndex<Counted>(corner.normal))
                return false;
        }
        return true;
    }

    void store(const CornerText &a, const CornerText &b, const CornerText &c, const CornerText &d,
               quint32 corner) const
    {
        const size_t at = _cornerCount + corner;
        if (_positions.indices)
            store(a.position, b.position, c.position, d.position, _positions, at);
        if (_texCoords.indices) {
            if constexpr (hasTexCoord(Form))
                store(a.texCoord, b.texCoord, c.texCoord, d.texCoord, _texCoords, at);
            else
                std::fill_n(_texCoords.indices + at, 4, quint32(OBJReader::AbsentIndex));
        }
        if (_normals.indices) {
            if constexpr (hasNormal(Form))
                store(a.normal, b.normal, c.normal, d.normal, _normals, at);
            else
                std::fill_n(_normals.indices + at, 4, quint32(OBJReader::AbsentIndex));
        }
    }

    static void store(const IndexText &a, const IndexText &b, const IndexText &c,
                      const IndexText &d, const Target &target, size_t at)
    {
        const __m128i numbers = indexNumbers(a, b, c, d);
        storeIndices(Counted == Counting::FromFirst ? indicesFromFirst(numbers)
                                                    : indicesFromLast(numbers, target.valueCount),
                     target.indices + at);
    }

    const char *finishFace(const char *text, quint32 count)
    {
        const char *const feed = text + (*text == '\r' ? 1 : 0);
        if (*feed != '\n')
            return nullptr;
        _counts[_faceCount++] = static_cast<quint8>(count);
        _cornerCount += count;
        return feed + 1;
    }

    OBJGeometry &_geometry;
    const DigitMarks &_marks;
    const Target _positions;
    const Target _texCoords;
    const Target _normals;
    quint8 *const _counts;
    quint32 _faceCount = 0;
    quint32 _cornerCount = 0;
};

bool isFaceLine(const char *line)
{
    return line[0] == 'f' && line[1] == ' ';
}

/// What follows the keyword and a space or two.
const char *cornersOf(const char *faceLine)
{
    // To be guessed, not waited for: hence a branch.
    if (Q_UNLIKELY(faceLine[2] == ' '))
        return faceLine + 3;
    return faceLine + 2;
}

template <CornerForm Form, Counting Counted>
const char *readRun(const char *line, const char *end, const DigitMarks &marks,
                    OBJGeometry &geometry)
{
    const char *const runEnd = line + std::min(end - line, RunBytes);
    const auto room = static_cast<size_t>(runEnd - line) / 2 + MaxCorners + 4;
    CornerReader<Form, Counted> reader(geometry, marks, room);
    while (line < runEnd && isFaceLine(line)) {
        const char *const next = reader.readLine(cornersOf(line));
        if (!next)
            break;
        line = next;
    }
    return line;
}

template <Counting Counted>
const char *readRun(CornerForm form, const char *line, const char *end, const DigitMarks &marks,
                    OBJGeometry &geometry)
{
    switch (form) {
    case CornerForm::Position:
        return readRun<CornerForm::Position, Counted>(line, end, marks, geometry);
    case CornerForm::TexCoord:
        return readRun<CornerForm::TexCoord, Counted>(line, end, marks, geometry);
    case CornerForm::Normal:
        return readRun<CornerForm::Normal, Counted>(line, end, marks, geometry);
    case CornerForm::TexCoordNormal:
        return readRun<CornerForm::TexCoordNormal, Counted>(line, end, marks, geometry);
    }
    return line;
}

} // namespace

const char *readFaceRun(const char *line, const char *end, const DigitMarks &marks,
                        OBJGeometry &geometry)
{
    if (!isFaceLine(line))
        return line;
    const char *const corners = cornersOf(line);
    const CornerForm form = formOf(corners);
    if (*corners == '-')
        return readRun<Counting::FromLast>(form, line, end, marks, geometry);
    return readRun<Counting::FromFirst>(form, line, end, marks, geometry);
}

#else

const char *readFaceRun(const char *line, const char *, const DigitMarks &, OBJGeometry &)
{
    return line;
}

#endif

} // namespace Halvard::Orv
