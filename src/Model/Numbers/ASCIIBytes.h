/// \file
/// Telling the bytes of OBJ text apart.
///
/// A line of plain text is one whose decoding cannot change where its tokens
/// begin and end: as far as it is read, all bytes are ASCII, and carriage returns
/// stand before its line feed only. In any codec that is a superset of ASCII, and
/// in text mode, which takes every carriage return out, such a line has the same
/// tokens as bytes and as QChars.
#pragma once

#include <cstddef>
#include <cstring>

namespace Halvard::Orv {

/// Whether `c` is a digit.
inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The ASCII characters that QChar::isSpace() answers for: space, tab, line feed,
/// vertical tab and form feed. Not the carriage return, which is no character of
/// the decoded text.
inline bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\f');
}

/// Whether `c` may stand in a token of plain text. Zero bytes may.
inline bool isTokenByte(char c)
{
    return static_cast<signed char>(c) >= 0 && c != '\r' && !isBlank(c);
}

/// Whether a line ends at `text`: any carriage returns, then the line feed.
/// \pre a line feed follows.
inline bool isLineEnd(const char *text)
{
    while (*text == '\r')
        ++text;
    return *text == '\n';
}

/// The first byte from `text` on that is no blank, at most the line feed.
/// \pre a line feed follows.
inline const char *skipBlanks(const char *text)
{
    while (isBlank(*text) && *text != '\n')
        ++text;
    return text;
}

/// The end of the token that begins at `text`, or null when the text up to it is
/// not plain, so that the token may be a longer or an other one.
/// \pre a line feed follows.
inline const char *tokenEnd(const char *text)
{
    while (isTokenByte(*text))
        ++text;
    return isBlank(*text) || isLineEnd(text) ? text : nullptr;
}

/// Where the line after the one at `text` begins.
/// \pre a line feed follows before `end`.
inline const char *lineAfter(const char *text, const char *end)
{
    const void *feed = std::memchr(text, '\n', static_cast<size_t>(end - text));
    return static_cast<const char *>(feed) + 1;
}

} // namespace Halvard::Orv
