#include "reference/NumberTexts.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace OrvReference {

namespace {

const char *const OddNumbers[] = {
    // Signs, dots and exponents.
    "+1", "-0", "-0.0", "+0", ".5", "-.5", "+.5", "5.", "-5.", ".", "-", "+", "-.", "+-1", "--1",
    "1e3", "1E3", "1e+3", "1e-3", "1E+03", "1.e2", ".1e2", "1e", "1e+", "e5", ".e1", "1e5.0",
    "1e00000000000000000002", "1e-00000000000000000002", "0e999999999999", "1e99999999999999999999",
    "00012.5", "000", "1.50000000000000000000", "1d3", "1_000",
    // Beyond what a float or a double holds.
    "3.4028235e38", "3.4028234663852886e38", "3.4028235677973366e38", "3.4028235677973365e38",
    "-3.5e38", "1e38", "1e39", "1e308", "1.8e308", "1e309", "1e400", "-1e400", "1e-37", "1e-38",
    "1.1754943e-38", "1.1754942e-38", "1e-40", "1e-45", "1.4e-45", "-1.4e-45", "7e-46", "7.1e-46",
    "7.0064923216240854e-46", "1e-46", "-1e-46", "1e-310", "4.9e-324", "2e-324", "1e-400",
    "-1e-400",
    // Two roundings, or one.
    "16777217", "16777219", "16777217.000000000001", "9007199254740993", "9007199791611905", "0.1",
    "0.3", "0.7", "1.00000005960464477539", "1.000000059604644775390625",
    "1.00000005960464477539062500000000000000000001", "1.000000059604644775390624999999999999999",
    "8388608.5", "8388609.5", "2.3509885615147285834e-38",
    // Words.
    "inf", "+inf", "-inf", "INF", "Inf", "infinity", "nan", "NaN", "+nan", "-nan", "nan(1)", "snan",
    "0x10", "0x1p3", "1f", "1.0f", "10abc", "1-2", "1,5", "1,500", "1,500.25", "1.2.3", "1/2",
    "abc", "1#2", "NULL", "1..2"};

/// As UTF-8: a minus sign, a fraction, digits of other scripts, invisible characters.
const char *const OddLetters[] = {"\u22125", "\u00bd",  "\u0661\u0662", "\uff11",   "1\u200b2",
                                  "\ufeff1", "1\u2032", "\u2212",       "1\u066b5", "e\u0301"};

const char *const OddIndices[] = {"0",
                                  "-0",
                                  "+1",
                                  "+0",
                                  "007",
                                  "1000",
                                  "-1000",
                                  "2147483647",
                                  "2147483646",
                                  "2147483648",
                                  "-2147483647",
                                  "-2147483648",
                                  "-2147483649",
                                  "4294967295",
                                  "4294967297",
                                  "99999999999999999999",
                                  "1.0",
                                  "1e0",
                                  "x",
                                  "1x",
                                  "1,000",
                                  "",
                                  "-",
                                  "+",
                                  "--1",
                                  "0x1",
                                  "#",
                                  "\u22121",
                                  "\u0661",
                                  "1/",
                                  "1//",
                                  "/1",
                                  "//",
                                  "//1",
                                  "1/x",
                                  "1//x",
                                  "1/1/x",
                                  "1/1/1/1",
                                  "1/1/1/x",
                                  "1/0/0",
                                  "1/-1/-1",
                                  "0/0/0",
                                  "1/2147483647/2147483647",
                                  "1/-9/9",
                                  "1\\1\\1",
                                  "1#2",
                                  "#1"};

QString exactText(double value)
{
    char text[512];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 60);
    return QString::fromLatin1(text, static_cast<int>(end.ptr - text));
}

/// A number at, just below or just above the middle between two floats: what rounding to a double
/// first makes of it shows.
QString nearMiddleOfFloats(Dice &dice)
{
    const double mantissa = dice.real(1.0, 2.0);
    const auto low = static_cast<float>(std::ldexp(mantissa, dice.between(-20, 30)));
    const float high = std::nextafter(low, INFINITY);
    const double middle = (static_cast<double>(low) + static_cast<double>(high)) / 2.0;
    const double values[] = {middle, std::nextafter(middle, 0.0), std::nextafter(middle, 1e300)};
    QString text = exactText(oneOf(dice, values));
    if (dice.oneIn(2))
        text += QString(dice.below(30), QLatin1Char('0')) + QLatin1Char('1');
    return text;
}

/// Whole numbers between the doubles, near the middle between two floats.
QString nearMiddleWhole(Dice &dice)
{
    const qint64 low = (qint64(1) << 60) + (qint64(dice.below(1 << 20)) << 37);
    const qint64 middle = low + (qint64(1) << 36);
    return QString::number(middle + dice.between(-200, 200));
}

QString longDigits(Dice &dice)
{
    QString text;
    const int count = dice.oneIn(20) ? 800 : dice.between(1, 40);
    const int dot = dice.between(-1, count);
    for (int i = 0; i < count; ++i) {
        if (i == dot)
            text += QLatin1Char('.');
        text += QLatin1Char(static_cast<char>('0' + dice.below(10)));
    }
    if (dice.oneIn(3))
        text += QStringLiteral("e%1").arg(dice.between(-60, 60));
    return dice.oneIn(3) ? QLatin1Char('-') + text : text;
}

/// Any float at all, by its bits.
QString anyFloat(Dice &dice)
{
    const quint32 bits = dice.bits();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return QString::number(static_cast<double>(value), 'g', dice.between(6, 17));
}

} // namespace

NumberStyle anyNumberStyle(Dice &dice)
{
    const NumberStyle styles[] = {NumberStyle::Short, NumberStyle::Fixed, NumberStyle::Fixed,
                                  NumberStyle::Exact, NumberStyle::Long,  NumberStyle::Scientific,
                                  NumberStyle::Whole};
    return oneOf(dice, styles);
}

QString numberText(double value, NumberStyle style)
{
    switch (style) {
    case NumberStyle::Short:
        return QString::number(value, 'g', 6);
    case NumberStyle::Fixed:
        return QString::number(value, 'f', 6);
    case NumberStyle::Exact:
        return QString::number(value, 'g', 9);
    case NumberStyle::Long:
        return QString::number(value, 'g', 17);
    case NumberStyle::Scientific:
        return QString::number(value, 'e', 7);
    case NumberStyle::Whole:
        break;
    }
    return QString::number(std::round(value), 'f', 0);
}

QString oddNumber(Dice &dice)
{
    switch (dice.below(12)) {
    case 0:
        return nearMiddleOfFloats(dice);
    case 1:
        return nearMiddleWhole(dice);
    case 2:
        return longDigits(dice);
    case 3:
    case 4:
        return anyFloat(dice);
    case 5:
        return QString::fromUtf8(oneOf(dice, OddLetters));
    default:
        return QString::fromLatin1(oneOf(dice, OddNumbers));
    }
}

QString oddIndex(Dice &dice)
{
    return QString::fromUtf8(oneOf(dice, OddIndices));
}

} // namespace OrvReference
