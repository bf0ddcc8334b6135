#include "Reading/OBJLines.h"

#include <algorithm>
#include <cstring>

namespace Halvard::Orv::Checking {

namespace {

bool isPlainBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\f');
}

/// ASCII that is neither a blank nor a carriage return.
bool isPlainToken(char c)
{
    return static_cast<signed char>(c) >= 0 && c != '\r' && !isPlainBlank(c);
}

/// Reads digits with a point, with or without a minus sign, up to so many that a double holds
/// them as one integer: divided by a power of ten that it holds too, that gives the double nearest
/// to the number (W. D. Clinger, How to Read Floating Point Numbers Accurately, 1990).
/// \param text is moved past them.
/// \return false for anything else that begins there; `text` is then not to be used.
bool readShortFloat(const char *&text, const char *end, float &value)
{
    constexpr int MostDigits = 15;
    constexpr double PowersOfTen[MostDigits + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool isNegative = text < end && *text == '-';
    text += isNegative ? 1 : 0;
    quint64 mantissa = 0; // wraps where there are too many digits, and is not used
    const char *const digits = text;
    while (text < end && *text >= '0' && *text <= '9' && text - digits <= MostDigits)
        mantissa = 10 * mantissa + static_cast<unsigned>(*text++ - '0');
    std::ptrdiff_t count = text - digits;
    std::ptrdiff_t behindPoint = 0;
    if (count > MostDigits)
        return false;
    if (text < end && *text == '.') {
        const char *const fraction = ++text;
        while (text < end && *text >= '0' && *text <= '9' && text - fraction <= MostDigits)
            mantissa = 10 * mantissa + static_cast<unsigned>(*text++ - '0');
        behindPoint = text - fraction;
        count += behindPoint;
    }
    if (count == 0 || count > MostDigits || (text < end && !isPlainBlank(*text)))
        return false;
    const double magnitude = static_cast<double>(mantissa) / PowersOfTen[behindPoint];
    value = static_cast<float>(isNegative ? -magnitude : magnitude);
    return true;
}

/// Whether there is nothing but carriage returns.
bool isWithoutText(const char *begin, const char *end)
{
    return std::all_of(begin, end, [](char c) { return c == '\r'; });
}

/// Reads up to nine digits, with or without a minus sign.
/// \param text is moved past them.
inline bool readPlainIndex(const char *&text, const char *end, int &index)
{
    constexpr std::ptrdiff_t MostDigits = 9;
    const bool isNegative = text < end && *text == '-';
    text += isNegative ? 1 : 0;
    const char *const digits = text;
    int number = 0;
    while (text < end && *text >= '0' && *text <= '9' && text - digits < MostDigits)
        number = 10 * number + (*text++ - '0');
    index = isNegative ? -number : number;
    return text > digits;
}

} // namespace

bool OBJLines::next()
{
    const bool wasContinued = isContinued();
    if (!_text.next(_line)) {
        _kind = OBJLineKind::Nothing;
        return false;
    }
    _continuesAnother = wasContinued;
    _isSplit = false;
    const char *begin = _line.begin;
    while (begin < _line.end && isPlainBlank(*begin))
        ++begin;
    const char *end = begin;
    while (end < _line.end && isPlainToken(*end))
        ++end;
    if (end < _line.end && !isPlainBlank(*end)) {
        // Another character than ASCII may be a blank, or a carriage return part of the keyword.
        split();
        _afterKeyword = nullptr;
        const QByteArray keyword = _tokens.text(0).toUtf8();
        classify(keyword.constData(), keyword.constData() + keyword.size());
        return true;
    }
    _afterKeyword = end;
    classify(begin, end);
    return true;
}

void OBJLines::split() const
{
    _tokens.split(_line);
    _isSplit = true;
}

/// Counts the line, too: negative indices refer to the lines before a face, whether or not they
/// can be read.
void OBJLines::classify(const char *keyword, const char *end)
{
    const auto reads = [keyword, end](const char *text) {
        const size_t size = std::strlen(text);
        return static_cast<size_t>(end - keyword) == size && std::memcmp(keyword, text, size) == 0;
    };
    if (keyword == end || *keyword == '#') {
        _kind = OBJLineKind::Nothing;
    } else if (reads("v")) {
        _kind = OBJLineKind::Position;
        ++_positions;
    } else if (reads("vn")) {
        _kind = OBJLineKind::Normal;
        ++_normals;
    } else if (reads("vt")) {
        _kind = OBJLineKind::TexCoord;
        ++_texCoords;
    } else if (reads("f")) {
        _kind = OBJLineKind::Face;
    } else if (reads("usemtl")) {
        _kind = OBJLineKind::Material;
    } else if (reads("mtllib")) {
        _kind = OBJLineKind::Library;
    } else {
        _kind = OBJLineKind::Other;
    }
}

bool OBJLines::readPlainValues(int count, float *values) const
{
    const char *text = _afterKeyword;
    if (!text)
        return false;
    for (int i = 0; i < count; ++i) {
        while (text < _line.end && isPlainBlank(*text))
            ++text;
        const char *const begin = text;
        if (readShortFloat(text, _line.end, values[i]))
            continue;
        text = begin;
        while (text < _line.end && isPlainToken(*text))
            ++text;
        if (!readPlainFloat(begin, text, values[i]))
            return false;
    }
    while (text < _line.end && isPlainBlank(*text))
        ++text;
    return text == _line.end;
}

bool OBJLines::readCorners()
{
    if (readPlainCorners())
        return true;
    _corners.clear();
    if (!_isSplit)
        split();
    for (int i = 1; i < _tokens.size(); ++i) {
        const Token &token = _tokens[i];
        if (token.startsWith('#'))
            return true;
        WrittenCorner written;
        if (!readCorner(token, written)) {
            _badToken = i;
            return false;
        }
        _corners.push_back({resolved(written.v, _positions), resolved(written.vn, _normals),
                            resolved(written.vt, _texCoords)});
    }
    return true;
}

/// Reads corners of up to three plain numbers each.
/// \return false for anything else, also where a face can be read.
bool OBJLines::readPlainCorners()
{
    const char *text = _afterKeyword;
    if (!text)
        return false;
    _corners.clear();
    for (;;) {
        while (text < _line.end && isPlainBlank(*text))
            ++text;
        if (text == _line.end)
            return true;
        int v = 0;
        int vt = 0;
        int vn = 0;
        if (!readPlainIndex(text, _line.end, v))
            return false;
        if (text < _line.end && *text == '/') {
            ++text;
            if (text < _line.end && *text != '/' && !readPlainIndex(text, _line.end, vt))
                return false;
            if (text < _line.end && *text == '/' && !readPlainIndex(++text, _line.end, vn))
                return false;
        }
        if (text < _line.end && !isPlainBlank(*text))
            return false;
        _corners.push_back(
            {resolved(v, _positions), resolved(vn, _normals), resolved(vt, _texCoords)});
    }
}

bool OBJLines::readCorner(const Token &token, WrittenCorner &corner) const
{
    corner = {};
    int *const targets[] = {&corner.v, &corner.vt, &corner.vn};
    const char *part = token.begin;
    for (int *target : targets) {
        const char *const slash = std::find(part, token.end, '/');
        const bool mayBeEmpty = target != &corner.v;
        if (!(mayBeEmpty && isWithoutText(part, slash)) &&
            !readInt(_tokens, part, slash, token.isPlain, *target))
            return false;
        ++corner.parts;
        if (slash == token.end)
            return true;
        part = slash + 1;
    }
    corner.parts += 1 + static_cast<int>(std::count(part, token.end, '/'));
    return true;
}

bool OBJLines::isContinued() const
{
    if (!_line.begin || _kind == OBJLineKind::Nothing)
        return false;
    // Nearly all lines end in a digit, and need not be split to know.
    const char *end = _line.end;
    while (end > _line.begin && isPlainBlank(end[-1]))
        --end;
    if (end > _line.begin && isPlainToken(end[-1]))
        return end[-1] == '\\';
    if (!_isSplit)
        split();
    return !_tokens.isEmpty() && !_tokens[0].startsWith('#') &&
           _tokens[_tokens.size() - 1].endsWith('\\');
}

} // namespace Halvard::Orv::Checking
