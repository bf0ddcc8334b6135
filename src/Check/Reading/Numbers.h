/// \file
/// Numbers as the loader reads them, and what is wrong with those that it does not.
#pragma once

#include "Reading/LineTokens.h"

namespace Halvard::Orv::Checking {

enum class NumberKind
{
    Finite,
    Unreadable,   ///< No number: reads as 0.
    DecimalComma, ///< No number for its comma, as in "1,5": reads as 0.
    NotFinite     ///< NaN or infinite, or beyond a float's range.
};

struct Number
{
    float value = 0.0f;
    NumberKind kind = NumberKind::Finite;
};

/// Reads ASCII bytes that are digits with a point, a minus sign or an exponent, and a number within
/// a float's range.
/// \return false for anything else, also where QString::toFloat() would accept it.
bool readPlainFloat(const char *begin, const char *end, float &value);

/// Token `i` of an OBJ line as QString::toFloat() reads it.
Number readNumber(const LineTokens &tokens, int i);

/// Token bytes as QString::toInt() reads them, in base 10.
/// \param plain whether the bytes are ASCII without carriage returns.
/// \return false where they are no such number; `value` is then not set.
bool readInt(const LineTokens &tokens, const char *begin, const char *end, bool plain, int &value);

/// Whether a text is a number with a comma in place of its point.
bool hasDecimalComma(const QString &text);

/// Whether a line of a library ends in a backslash before it has all numbers that its keyword takes,
/// so that it is meant to go on in the next one. A backslash in a comment is none.
/// \param tokens those of the line. \param count how many numbers the keyword takes.
bool isContinuedLibraryLine(const TextLine &line, const LineTokens &tokens, int count);

/// Whether a line begins as one that gives such a line its further numbers.
bool continuesLibraryLine(const LineTokens &tokens);

} // namespace Halvard::Orv::Checking
