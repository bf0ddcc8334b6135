#include "Numbers/NumberConversion.h"

#include "Numbers/ASCIIBytes.h"

#include <QtCore/QString>

#include <fast_float/fast_float.h>

#include <cmath>
#include <limits>

namespace Halvard::Orv {

namespace {

/// Ten to the power of the index; a double holds all of them exactly.
constexpr double PowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int MaxPower = sizeof PowersOfTen / sizeof *PowersOfTen - 1;
static_assert(MaxPower >= int(MaxPlainDigits));

/// "-", digits, "." and digits, and an exponent, where the sign, the point and the
/// digits on one side of it, and the exponent may be left out.
bool readPlainFloat(const char *begin, const char *end, float &value)
{
    const bool negative = begin < end && *begin == '-';
    const char *text = begin + (negative ? 1 : 0);
    quint64 mantissa = 0;
    unsigned digits = 0;
    const char *point = nullptr;
    int power = 0;
    for (; text < end; ++text) {
        if (isDigit(*text)) {
            mantissa = 10 * mantissa + static_cast<unsigned>(*text - '0');
            if (++digits > MaxPlainDigits)
                return false;
        } else if (*text == '.' && !point) {
            point = text;
        } else if ((*text == 'e' || *text == 'E') && readExponent(text + 1, end, power)) {
            break;
        } else {
            return false;
        }
    }
    if (digits == 0)
        return false;
    power -= point ? static_cast<int>(text - point) - 1 : 0;
    if (power < -MaxPower || power > MaxPower)
        return false;
    const auto number = static_cast<double>(mantissa);
    const double magnitude = power < 0 ? number / PowersOfTen[-power] : number * PowersOfTen[power];
    value = static_cast<float>(negative ? -magnitude : magnitude);
    return true;
}

/// Numbers that fast_float and Qt read alike: both accept the same texts of
/// digits, point and exponent, and both round to the nearest double. The bounds
/// keep away from where Qt has rules of its own, at the ends of float's range.
bool readLongFloat(const char *begin, const char *end, float &value)
{
    const char *text = begin + (begin < end && *begin == '-' ? 1 : 0);
    if (text == end || !isDigit(*text))
        return false; // neither "inf" nor "nan"
    double number = 0;
    const auto result = fast_float::from_chars(begin, end, number);
    const double magnitude = std::fabs(number);
    if (result.ec != std::errc() || result.ptr != end ||
        magnitude < static_cast<double>(std::numeric_limits<float>::min()) ||
        magnitude > static_cast<double>(std::numeric_limits<float>::max()))
        return false;
    value = static_cast<float>(number);
    return true;
}

} // namespace

float floatFromToken(const char *begin, const char *end)
{
    float value = 0.0f;
    if (readPlainFloat(begin, end, value) || readLongFloat(begin, end, value))
        return value;
    return QString::fromLatin1(begin, static_cast<int>(end - begin)).toFloat();
}

bool readPlainInt(const char *begin, const char *end, int &value)
{
    const bool negative = begin < end && *begin == '-';
    qint64 number = 0;
    if (!readDigits(begin + (negative ? 1 : 0), end, 10, number))
        return false;
    number = negative ? -number : number;
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        return false;
    value = static_cast<int>(number);
    return true;
}

} // namespace Halvard::Orv
