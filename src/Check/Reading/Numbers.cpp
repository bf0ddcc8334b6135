#include "Reading/Numbers.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Halvard::Orv::Checking {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Up to nine digits, with or without a minus sign.
bool readPlainInt(const char *begin, const char *end, int &value)
{
    constexpr std::ptrdiff_t MostDigits = 9;
    const bool isNegative = begin < end && *begin == '-';
    const char *text = begin + (isNegative ? 1 : 0);
    if (text == end || end - text > MostDigits)
        return false;
    int number = 0;
    for (; text < end; ++text) {
        if (!isDigit(*text))
            return false;
        number = 10 * number + (*text - '0');
    }
    value = isNegative ? -number : number;
    return true;
}

} // namespace

// fast_float and Qt read such numbers alike: both accept the same texts and round to the nearest
// double. What lies at the ends of float's range, where Qt has rules of its own, is left to it.
bool readPlainFloat(const char *begin, const char *end, float &value)
{
    const char *const digits = begin + (begin < end && *begin == '-' ? 1 : 0);
    if (digits == end || !(isDigit(*digits) || *digits == '.'))
        return false;
    double number = 0;
    const auto result = fast_float::from_chars(begin, end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return false;
    const double magnitude = std::fabs(number);
    constexpr double Least = static_cast<double>(std::numeric_limits<float>::min());
    constexpr double Most = static_cast<double>(std::numeric_limits<float>::max());
    const bool isZero =
        magnitude == 0.0 && std::all_of(digits, end, [](char c) { return c == '0' || c == '.'; });
    if (!isZero && !(magnitude >= Least && magnitude <= Most))
        return false;
    value = static_cast<float>(number);
    return true;
}

Number readNumber(const LineTokens &tokens, int i)
{
    Number number;
    if (i >= tokens.size()) {
        number.kind = NumberKind::Unreadable;
        return number;
    }
    const Token &token = tokens[i];
    if (token.isPlain && readPlainFloat(token.begin, token.end, number.value))
        return number;
    const QString text = tokens.text(i);
    bool ok = false;
    number.value = text.toFloat(&ok);
    if (!std::isfinite(number.value))
        number.kind = NumberKind::NotFinite;
    else if (!ok && hasDecimalComma(text))
        number.kind = NumberKind::DecimalComma;
    else if (!ok)
        number.kind = NumberKind::Unreadable;
    return number;
}

bool readInt(const LineTokens &tokens, const char *begin, const char *end, bool plain, int &value)
{
    if (plain && readPlainInt(begin, end, value))
        return true;
    bool ok = false;
    const int number = tokens.decoded(begin, end).toInt(&ok);
    if (ok)
        value = number;
    return ok;
}

bool hasDecimalComma(const QString &text)
{
    const int comma = text.indexOf(QLatin1Char(','));
    if (comma < 0 || comma + 1 == text.size() || !text.at(comma + 1).isDigit())
        return false;
    QString withPoint = text;
    withPoint[comma] = QLatin1Char('.');
    bool ok = false;
    withPoint.toDouble(&ok);
    return ok;
}

bool isContinuedLibraryLine(const TextLine &line, const LineTokens &tokens, int count)
{
    const int numbers = tokens.size() - 2; // between the keyword and what ends in the backslash
    return numbers >= 0 && numbers < count && tokens[tokens.size() - 1].endsWith('\\') &&
           std::find(line.begin, line.end, '#') == line.end;
}

bool continuesLibraryLine(const LineTokens &tokens)
{
    if (tokens.isEmpty())
        return false;
    const char first = *tokens[0].begin;
    return (first >= '0' && first <= '9') || first == '-' || first == '+' || first == '.' ||
           first == '\\';
}

} // namespace Halvard::Orv::Checking
