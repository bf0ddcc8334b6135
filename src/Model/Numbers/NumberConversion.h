/// \file
/// Numbers of OBJ text, converted as Qt converts them.
#pragma once

#include "Numbers/ASCIIBytes.h"

#include <QtCore/QtGlobal>

#include <cstddef>

namespace Halvard::Orv {

/// The most digits of a plain number, leading zeros included. Read as one
/// integer they stay below 2^53, so that a double holds them.
constexpr unsigned MaxPlainDigits = 15;

/// The float that QString::toFloat() gives for the token [`begin`, `end`), and 0
/// where it gives none.
/// \pre all bytes are ASCII; none is a blank.
///
/// Numbers of up to 15 digits are an integer times or over a power of ten. Up to 10^22 a
/// double holds both, so that one operation gives the double nearest to the number, which is
/// the one Qt finds (W. D. Clinger, How to Read Floating Point Numbers Accurately, 1990).
/// Longer numbers and larger powers go through fast_float, which finds the nearest double
/// too (D. Lemire, Number Parsing at a Gigabyte per Second, 2021); what overflows,
/// underflows or is no number is left to Qt.
float floatFromToken(const char *begin, const char *end);

/// Reads from one to `most` digits, which must be all that there is.
/// \param most at most 18, so that the number fits.
/// \return false for anything else.
inline bool readDigits(const char *begin, const char *end, ptrdiff_t most, qint64 &number)
{
    if (begin == end || end - begin > most)
        return false;
    number = 0;
    for (const char *text = begin; text < end; ++text) {
        if (!isDigit(*text))
            return false;
        number = 10 * number + (*text - '0');
    }
    return true;
}

/// Reads what follows the "e" of a number: a sign, which may be left out, and up to
/// three digits.
/// \return false for anything else; `exponent` is then not set.
inline bool readExponent(const char *begin, const char *end, int &exponent)
{
    const bool negative = begin < end && *begin == '-';
    const bool hasSign = negative || (begin < end && *begin == '+');
    qint64 number = 0;
    if (!readDigits(begin + (hasSign ? 1 : 0), end, 3, number))
        return false;
    exponent = static_cast<int>(negative ? -number : number);
    return true;
}

/// Reads the integer [`begin`, `end`): a minus sign, if any, and digits.
/// \return false for anything else, also where QString::toInt() would accept
///         it; `value` is then not set.
bool readPlainInt(const char *begin, const char *end, int &value);

} // namespace Halvard::Orv
