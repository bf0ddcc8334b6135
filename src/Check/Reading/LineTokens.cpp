#include "Reading/LineTokens.h"

#include <QtCore/QTextCodec>

namespace Halvard::Orv::Checking {

namespace {

enum class ByteKind : unsigned char
{
    Text,
    Blank,
    Odd // not ASCII, or a carriage return
};

constexpr ByteKind kindOf(unsigned char byte)
{
    if (byte == ' ' || (byte >= '\t' && byte <= '\f'))
        return ByteKind::Blank;
    return byte >= 0x80 || byte == '\r' ? ByteKind::Odd : ByteKind::Text;
}

constexpr std::array<ByteKind, 256> makeKinds()
{
    std::array<ByteKind, 256> kinds{};
    for (unsigned byte = 0; byte < 256; ++byte)
        kinds[byte] = kindOf(static_cast<unsigned char>(byte));
    return kinds;
}

constexpr std::array<ByteKind, 256> Kinds = makeKinds();

ByteKind kindAt(const char *text)
{
    return Kinds[static_cast<unsigned char>(*text)];
}

} // namespace

LineTokens::LineTokens(const TextLines &lines) : _codec(lines.codec()), _isUTF8(lines.isUTF8())
{
    for (unsigned byte = 0; byte < 256; ++byte) {
        const auto value = static_cast<unsigned char>(byte);
        _isBlank[byte] = kindOf(value) == ByteKind::Blank;
        if (value >= 0x80 && !_isUTF8) {
            const char text = static_cast<char>(value);
            const QString decoded = _codec.toUnicode(&text, 1);
            _isBlank[byte] = decoded.size() == 1 && decoded.at(0).isSpace();
        }
    }
}

void LineTokens::split(const TextLine &line)
{
    _line = line;
    _tokens.clear();
    const char *text = line.begin;
    const char *const end = line.end;
    for (;;) {
        while (text < end && kindAt(text) == ByteKind::Blank)
            ++text;
        if (text == end)
            return;
        const char *const begin = text;
        while (text < end && kindAt(text) == ByteKind::Text)
            ++text;
        if (text < end && kindAt(text) == ByteKind::Odd) {
            _tokens.clear();
            splitOdd();
            return;
        }
        _tokens.push_back({begin, text, true});
    }
}

/// Bytes of the blank at `at`, where another byte than an ASCII blank may begin one; 0 where
/// there is none.
size_t LineTokens::blankBytes(const char *at, const char *end) const
{
    if (_isBlank[static_cast<unsigned char>(*at)])
        return 1;
    if (!_isUTF8)
        return 0;
    const auto byte = [at, end](int i) {
        return i < end - at ? static_cast<unsigned char>(at[i]) : 0u;
    };
    if (byte(0) == 0xC2) // U+0085, U+00A0
        return byte(1) == 0x85 || byte(1) == 0xA0 ? 2 : 0;
    const unsigned tail = byte(1) << 8 | byte(2);
    switch (byte(0)) {
    case 0xE1: // U+1680
        return tail == 0x9A80 ? 3 : 0;
    case 0xE2: // U+2000 to U+200A, U+2028, U+2029, U+202F, U+205F
        return (tail >= 0x8080 && tail <= 0x808A) || tail == 0x80A8 || tail == 0x80A9 ||
                       tail == 0x80AF || tail == 0x819F
                   ? 3
                   : 0;
    case 0xE3: // U+3000
        return tail == 0x8080 ? 3 : 0;
    default:
        return 0;
    }
}

/// Splits a line with bytes that are not ASCII, or with carriage returns.
void LineTokens::splitOdd()
{
    const char *text = _line.begin;
    const char *const end = _line.end;
    while (text < end) {
        const size_t blank = blankBytes(text, end);
        if (blank > 0 || *text == '\r') {
            text += blank > 0 ? blank : 1;
            continue;
        }
        Token token{text, text, true};
        while (text < end && blankBytes(text, end) == 0) {
            if (*text != '\r')
                token.end = text + 1; // carriage returns at its end are no part of it
            ++text;
        }
        for (const char *byte = token.begin; byte < token.end; ++byte)
            token.isPlain = token.isPlain && kindAt(byte) == ByteKind::Text;
        _tokens.push_back(token);
    }
}

QString LineTokens::text(int i) const
{
    if (i >= size())
        return {};
    return decoded((*this)[i].begin, (*this)[i].end);
}

QString LineTokens::textFrom(int first) const
{
    if (first >= size())
        return {};
    return decoded((*this)[first].begin, _tokens.back().end);
}

QString LineTokens::decoded(const char *begin, const char *end) const
{
    // What follows breaks a sequence off that the bytes do not complete, and how many replacement
    // characters it gives depends on that. At the end of the file nothing follows: there the lines
    // have dropped such bytes.
    const bool mayBreakOff = end > begin && static_cast<signed char>(end[-1]) < 0;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text;
    if (mayBreakOff) {
        QByteArray bytes(begin, static_cast<int>(end - begin));
        bytes += ' ';
        text = _codec.toUnicode(bytes.constData(), bytes.size(), &state);
        text.chop(1);
    } else {
        text = _codec.toUnicode(begin, static_cast<int>(end - begin), &state);
    }
    text.remove(QLatin1Char('\r'));
    return text;
}

} // namespace Halvard::Orv::Checking
