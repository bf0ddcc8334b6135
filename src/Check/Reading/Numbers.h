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

} // namespace Halvard::Orv::Checking
