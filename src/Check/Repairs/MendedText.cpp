#include "Repairs/MendedText.h"

#include "Reading/Numbers.h"

#include <QtCore/QTextCodec>

#include <algorithm>
#include <cstring>

namespace Halvard::Orv::Checking {

namespace {

constexpr int MibUTF8 = 106;

/// A line is not joined any further beyond this: it is too long for the loader as it is.
constexpr int MostJoinedBytes = 1 << 30;

/// Keywords of the format. A line that begins with one continues none, whatever stands at the end
/// of the line before it.
constexpr const char *Keywords[] = {
    "v",     "vn",     "vt",     "vp",         "f",    "l",     "p",         "g",
    "o",     "s",      "usemtl", "mtllib",     "mg",   "bevel", "c_interp",  "d_interp",
    "lod",   "usemap", "maplib", "shadow_obj", "parm", "trim",  "trace_obj", "ctech",
    "stech", "cstype", "deg",    "bmat",       "step", "curv",  "curv2",     "surf",
    "hole",  "scrv",   "sp",     "end",        "con",  "call",  "csh"};

bool isPlainBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isCarriageReturn(char c)
{
    return c == '\r';
}

bool contains(const char *begin, const char *end, char c)
{
    return begin < end && std::memchr(begin, c, static_cast<size_t>(end - begin)) != nullptr;
}

} // namespace

MendedText::MendedText(QIODevice &source, const Wishes &wishes, RepairLog *log, int file)
    : _wishes(wishes), _log(log), _file(file), _lines(std::make_unique<TextLines>(source)),
      _tokens(*_lines)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

MendedText::~MendedText() = default;

qint64 MendedText::sourceLine(qint64 line) const
{
    const auto after =
        std::upper_bound(_shifts.cbegin(), _shifts.cend(), line,
                         [](qint64 number, const Shift &shift) { return number < shift.line; });
    if (after == _shifts.cbegin())
        return line;
    const Shift &shift = after[-1];
    return shift.sourceLine + (line - shift.line);
}

qint64 MendedText::readData(char *to, qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        if (_readyBegin == _ready.size() && !produce())
            break;
        const qint64 count = std::min(size - done, _ready.size() - _readyBegin);
        std::memcpy(to + done, _ready.constData() + _readyBegin, static_cast<size_t>(count));
        done += count;
        _readyBegin += count;
    }
    return done;
}

/// Makes further bytes ready, once all of the last ones are taken.
/// \return false when there are none.
bool MendedText::produce()
{
    constexpr int EnoughBytes = 1 << 16;
    _ready.resize(0);
    _readyBegin = 0;
    if (!_hasBegun)
        begin();
    TextLine line;
    while (_ready.size() < EnoughBytes) {
        if (_lines->next(line)) {
            takeLine(line);
            continue;
        }
        if (_isJoining)
            finishLine({nullptr, nullptr, nullptr, 0, 0});
        break;
    }
    return !_ready.isEmpty();
}

void MendedText::begin()
{
    constexpr char Mark[] = "\xEF\xBB\xBF";
    _hasBegun = true;
    const QByteArray from = _lines->transcodedFrom();
    if (from.isNull()) {
        _ready.append(Mark, static_cast<int>(_lines->markBytes()));
        return;
    }
    tell(Code::Encoding, 1, QString::fromLatin1(from), "The text is turned into UTF-8.");
    _isChanged = true;
    // Without a mark the loader takes the text for one in the locale's encoding.
    if (QTextCodec::codecForLocale()->mibEnum() != MibUTF8)
        _ready.append(Mark);
}

void MendedText::takeLine(const TextLine &line)
{
    if (_wishes.mendsReturns && line.hasInnerReturn()) {
        takePieces(line);
        return;
    }
    ++_sourceLine;
    takePiece(line);
}

/// Takes a line that carriage returns break into several.
void MendedText::takePieces(const TextLine &line)
{
    static const char Feed[] = "\n";
    tell(Code::CarriageReturns, _sourceLine + 1, {}, "Carriage returns become line feeds.");
    _isChanged = true;
    const char *begin = line.begin;
    while (begin < line.next) {
        const char *const end = std::find_if(begin, line.next, isCarriageReturn);
        TextLine piece{begin, end, line.next, 0, 0};
        begin = end + 1;
        ++_sourceLine;
        if (end == line.next ||
            (begin < line.next && *begin == '\n')) { // the last one has the line's own ending
            if (end == line.next && line.next[-1] == '\n')
                --piece.end;
            takePiece(piece);
            return;
        }
        // The piece and its line feed have to lie in one place.
        QByteArray text(piece.begin, static_cast<int>(end - piece.begin));
        text.append(Feed);
        takePiece({text.constData(), text.constData() + text.size() - 1,
                   text.constData() + text.size(), 0, 0});
    }
}

/// Whether the format has the line go on in the next one, and the loader misses what stands there.
bool MendedText::isContinuable(const TextLine &line)
{
    const char *end = line.end;
    while (end > line.begin && isPlainBlank(end[-1]))
        --end;
    if (end == line.begin || (static_cast<signed char>(end[-1]) >= 0 && end[-1] != '\\'))
        return false;
    _tokens.split(line);
    if (_tokens.isEmpty() || !_tokens[_tokens.size() - 1].endsWith('\\'))
        return false;
    if (_wishes.format == Format::OBJ)
        return _isJoining || _tokens.is(0, "f") || numberCount() > 0;
    return _isJoining ? !contains(line.begin, line.end, '#')
                      : isContinuedLibraryLine(line, _tokens, numberCount());
}

/// Whether a line stands for itself, whatever stands at the end of the line before it.
bool MendedText::startsLine(const TextLine &line)
{
    _tokens.split(line);
    if (_tokens.isEmpty() || _tokens[0].startsWith('#'))
        return true;
    if (_wishes.format == Format::MTL)
        return !continuesLibraryLine(_tokens);
    const QByteArray word(_tokens[0].begin, static_cast<int>(_tokens[0].size()));
    return std::any_of(std::begin(Keywords), std::end(Keywords),
                       [&word](const char *keyword) { return word == keyword; });
}

void MendedText::takePiece(const TextLine &piece)
{
    if (_isJoining) {
        if (startsLine(piece) || _joined.size() > MostJoinedBytes) {
            finishLine({nullptr, nullptr, nullptr, 0, 0});
        } else if (!_joined.isEmpty() && !isPlainBlank(_joined.at(_joined.size() - 1)) &&
                   !isPlainBlank(*piece.begin)) {
            _joined.append(' ');
        }
    }
    if (!_isJoining)
        _joinedLine = _sourceLine;
    if (isContinuable(piece)) {
        const char *const backslash = _tokens[_tokens.size() - 1].end - 1;
        tell(Code::LineContinued, _sourceLine, {},
             "The line is joined with the one that continues it.");
        _isChanged = true;
        _isJoining = true;
        _joined.append(piece.begin, static_cast<int>(backslash - piece.begin));
        _joinedEnding = QByteArray(piece.end, static_cast<int>(piece.next - piece.end));
        return;
    }
    finishLine(piece);
}

/// Hands out a line: what is joined so far, if anything is, and `line`, if there is one.
void MendedText::finishLine(const TextLine &line)
{
    ++_line;
    const qint64 expected =
        _shifts.empty() ? _line : _shifts.back().sourceLine + (_line - _shifts.back().line);
    if (_joinedLine != expected)
        _shifts.push_back({_line, _joinedLine});
    if (!_isJoining) {
        if (!mendCommas(line))
            _ready.append(line.begin, static_cast<int>(line.next - line.begin));
        return;
    }
    _isJoining = false;
    int size = _joined.size();
    if (line.begin) {
        _joined.append(line.begin, static_cast<int>(line.next - line.begin));
        size = _joined.size() - static_cast<int>(line.next - line.end);
    } else {
        _joined.append(_joinedEnding);
    }
    const char *const text = _joined.constData();
    if (!mendCommas({text, text + size, text + _joined.size(), 0, 0}))
        _ready.append(_joined);
    _joined.resize(0);
}

/// Number of values that the keyword of the line in `_tokens` takes; 0 for other keywords.
int MendedText::numberCount()
{
    constexpr int Three = 3;
    if (_wishes.format == Format::OBJ) {
        if (_tokens.is(0, "v") || _tokens.is(0, "vn"))
            return Three;
        return _tokens.is(0, "vt") ? 2 : 0;
    }
    if (_tokens.is(0, "Ka") || _tokens.is(0, "Kd") || _tokens.is(0, "Ks"))
        return Three;
    return _tokens.is(0, "Ns") || _tokens.is(0, "d") ? 1 : 0;
}

/// Hands a line out with points for decimal commas; false where it has none. One in a value that
/// is read takes those in others with it: such a line is all of one writer.
bool MendedText::mendCommas(const TextLine &line)
{
    if (!contains(line.begin, line.end, ','))
        return false;
    _tokens.split(line);
    const int count = numberCount();
    if (count == 0)
        return false;
    int known = 1; // tokens before a comment
    while (known < _tokens.size() && !contains(_tokens[known].begin, _tokens[known].end, '#'))
        ++known;
    const auto isMendable = [this](int i) {
        return contains(_tokens[i].begin, _tokens[i].end, ',') && hasDecimalComma(_tokens.text(i));
    };
    bool isNeeded = false;
    for (int i = 1; i <= count && i < known; ++i)
        isNeeded = isNeeded || isMendable(i);
    if (!isNeeded)
        return false;
    const char *from = line.begin;
    const QString keyword = _tokens.text(0);
    for (int i = 1; i < known; ++i) {
        if (!isMendable(i))
            continue;
        const Token &token = _tokens[i];
        const char *const comma = std::find(token.begin, token.end, ',');
        _ready.append(from, static_cast<int>(comma - from));
        _ready.append('.');
        from = comma + 1;
        tell(Code::NumberDecimalComma, _joinedLine, keyword, "The decimal comma becomes a point.");
    }
    _ready.append(from, static_cast<int>(line.next - from));
    _isChanged = true;
    return true;
}

void MendedText::tell(Code code, qint64 line, const QString &subject, const char *message)
{
    if (_log)
        _log->add(code, _file, line, subject, QLatin1String(message));
}

} // namespace Halvard::Orv::Checking
