/// \file
/// The tokens of a line, each with its place among the line's bytes.
#pragma once

#include "Reading/TextLines.h"

#include <QtCore/QString>

#include <array>
#include <cstring>
#include <vector>

namespace Halvard::Orv::Checking {

/// A longest run of characters that are no blanks.
struct Token
{
    const char *begin = nullptr;
    const char *end = nullptr;
    /// Whether the bytes are the text: ASCII without carriage returns. The loader drops carriage
    /// returns wherever they stand: "2\r3" reads 23.
    bool isPlain = true;

    size_t size() const { return static_cast<size_t>(end - begin); }
    bool startsWith(char c) const { return begin < end && *begin == c; }
    bool endsWith(char c) const { return begin < end && end[-1] == c; }
};

/// Splits lines as the library's line readers do: at the characters that QChar::isSpace()
/// answers for, in the text that the codec makes of the bytes, without its carriage returns.
class LineTokens
{
public:
    /// \param lines knows the codec; must outlive the object.
    explicit LineTokens(const TextLines &lines);

    /// Replaces the tokens by those of a line; they point into it.
    void split(const TextLine &line);

    int size() const { return static_cast<int>(_tokens.size()); }
    bool isEmpty() const { return _tokens.empty(); }
    const Token &operator[](int i) const { return _tokens[static_cast<size_t>(i)]; }

    /// Whether token `i` reads `keyword`. False when there is no such token.
    template <size_t Size>
    bool is(int i, const char (&keyword)[Size]) const
    {
        if (i >= size())
            return false;
        const Token &token = (*this)[i];
        if (!token.isPlain)
            return text(i) == QLatin1String(keyword);
        return token.size() == Size - 1 && std::memcmp(token.begin, keyword, Size - 1) == 0;
    }

    /// The text of token `i`; null when there is no such token.
    QString text(int i) const;
    /// The text from token `first` to the last one, blanks between them included.
    QString textFrom(int first) const;
    /// The text of bytes of the line.
    QString decoded(const char *begin, const char *end) const;

private:
    void splitOdd();
    size_t blankBytes(const char *at, const char *end) const;

    const QTextCodec &_codec;
    const bool _isUTF8;
    std::array<bool, 256> _isBlank; // by byte; those of several bytes in UTF-8 are not in it
    TextLine _line;
    std::vector<Token> _tokens;
};

} // namespace Halvard::Orv::Checking
