#include "Scanning/ValueRuns.h"

#include "Numbers/ASCIIBytes.h"
#include "Numbers/NumberConversion.h"

#include <algorithm>
#include <cstring>

namespace Halvard::Orv {

#ifdef ORV_SCAN_SSE2

namespace {

/// Text read between two looks at the room for values. Room is made for the shortest lines
/// that there can be, so that this bounds what an array has and does not need.
constexpr ptrdiff_t RunBytes = 1 << 13;

/// Bytes of the longest number read here, not counting its point: see
/// floatsFromGroups().
constexpr size_t MaxDecimalBytes = 15;

/// How the numbers of a line are written.
enum class Notation
{
    Plain, ///< "-0.5", "2", "2."
    Any    ///< ".5" and "2.5e-01", too
};

/// Three plain numbers, each with a point and up to two spaces before it, fit into a
/// window, so that a line needs but one.
static_assert(3 * (MaxDecimalBytes + 1 + 2) + 1 <= DigitMarks::WindowBytes);

/// Moves `text`, and the window of marks that begins there, behind one space or two.
inline bool takeSpaces(const char *&text, quint64 &marks)
{
    if (*text != ' ')
        return false;
    ++text;
    marks >>= 1;
    // To be guessed, not waited for: hence a branch.
    if (Q_UNLIKELY(*text == ' ')) {
        ++text;
        marks >>= 1;
    }
    return true;
}

/// Moves `text`, and the window of marks that begins there, behind a number but for its
/// exponent.
/// \return false when it is not written so, or too long.
template <Notation Written>
inline bool takeDecimal(const char *&text, quint64 &marks, DecimalText &number)
{
    const bool hasSign = *text == '-';
    if constexpr (Written == Notation::Plain) {
        if ((marks & 1) != quint64(hasSign))
            return false;
        marks &= ~quint64(1);
    } else {
        marks &= ~quint64(hasSign);
    }
    size_t end = lowestBit(marks);
    number.begin = text;
    number.negative = hasSign;
    number.point = end;
    number.filled = end;
    number.exponent = 0;
    if (text[end] == '.') {
        marks = withoutLowestBit(marks);
        end = lowestBit(marks);
        number.filled = end - 1;
    }
    text += end;
    marks >>= end;
    return number.filled <= MaxDecimalBytes && number.filled > number.negative;
}

/// Moves `text` behind an exponent, where there is one.
/// \param marks the window that begins at `text`.
/// \return false when it is not written plainly, or too far from 0.
inline bool takeExponent(const char *&text, quint64 marks, DecimalText &number)
{
    if (*text != 'e' && *text != 'E')
        return true;
    marks = withoutLowestBit(marks);
    if (text[1] == '-' || text[1] == '+')
        marks = withoutLowestBit(marks);
    const char *const end = text + lowestBit(marks);
    int exponent = 0;
    if (!readExponent(text + 1, end, exponent))
        return false;
    number.exponent = exponent;
    text = end;
    return hasDivisor(number);
}

/// Moves `text`, and the window of marks that begins there, behind spaces and a number.
template <Notation Written>
inline bool takeNumber(const char *&text, quint64 &window, const DigitMarks &marks,
                       DecimalText &number)
{
    if (!takeSpaces(text, window) || !takeDecimal<Written>(text, window, number))
        return false;
    if constexpr (Written == Notation::Any) {
        if (!takeExponent(text, window, number))
            return false;
        window = marks.window(text);
    }
    return true;
}

/// Reads the numbers of a line. Kept out of the loop over lines: together they have not
/// registers enough, which was measured to cost 3 to 7 percent of reading.
/// \param text what follows the keyword.
/// \param window of `marks`, at `text`.
/// \return where the last number ends; null when the line is not written so.
template <Notation Written, unsigned Components>
[[gnu::noinline]] const char *readNumbers(const char *text, quint64 window, const DigitMarks &marks,
                                          float *target)
{
    static_assert(Components == 2 || Components == 3);
    DecimalText x, y, z;
    if (!takeNumber<Written>(text, window, marks, x) ||
        !takeNumber<Written>(text, window, marks, y))
        return nullptr;
    if constexpr (Components == 3) {
        if (!takeNumber<Written>(text, window, marks, z))
            return nullptr;
    }
    if (!isBlank(*text) && !isLineEnd(text))
        return nullptr;
    storeFloats(x, y, target);
    if constexpr (Components == 3)
        storeFloat(z, target + 2);
    return text;
}

template <unsigned Components, size_t Size>
const char *readRun(const char *line, const char *end, const DigitMarks &marks,
                    const char (&keyword)[Size], GrowArray<float> &values)
{
    constexpr size_t keywordBytes = Size - 1;
    const char *const runEnd = line + std::min(end - line, RunBytes);
    const auto maxLines = static_cast<size_t>(runEnd - line) / Size + 1;
    float *const first = values.reserveMore(maxLines * Components);
    float *target = first;
    // Another kind of line, "vn" among "v", is not looked at twice.
    while (line < runEnd && std::memcmp(line, keyword, keywordBytes) == 0 &&
           line[keywordBytes] == ' ') {
        const char *const numbers = line + keywordBytes;
        const quint64 window = marks.window(numbers);
        const char *text = readNumbers<Notation::Plain, Components>(numbers, window, marks, target);
        if (!text)
            text = readNumbers<Notation::Any, Components>(numbers, window, marks, target);
        if (!text)
            break;
        target += Components;
        line = *text == '\n' ? text + 1 : lineAfter(text, end);
    }
    values.commit(static_cast<size_t>(target - first));
    return line;
}

} // namespace

const char *readPositionRun(const char *line, const char *end, const DigitMarks &marks,
                            OBJAttribute &positions)
{
    return readRun<3>(line, end, marks, "v", positions.values);
}

const char *readNormalRun(const char *line, const char *end, const DigitMarks &marks,
                          OBJAttribute &normals)
{
    return readRun<3>(line, end, marks, "vn", normals.values);
}

const char *readTexCoordRun(const char *line, const char *end, const DigitMarks &marks,
                            OBJAttribute &texCoords)
{
    return readRun<2>(line, end, marks, "vt", texCoords.values);
}

#else

const char *readPositionRun(const char *line, const char *, const DigitMarks &, OBJAttribute &)
{
    return line;
}

const char *readNormalRun(const char *line, const char *, const DigitMarks &, OBJAttribute &)
{
    return line;
}

const char *readTexCoordRun(const char *line, const char *, const DigitMarks &, OBJAttribute &)
{
    return line;
}

#endif

} // namespace Halvard::Orv
