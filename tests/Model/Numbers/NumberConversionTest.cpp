// Numbers converted from bytes against QString, which defines what they are.
#include "Numbers/NumberConversion.h"

#include "support/OBJTokenCases.h"
#include "support/RandomRings.h"

#include "Numbers/ASCIIBytes.h"
#include "Scanning/PlainLines.h"
#include "Scanning/ValueRuns.h"

#include <gtest/gtest.h>

#include <QtCore/QString>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

std::uint32_t bitsOf(float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

float floatByQt(const std::string &token)
{
    return QString::fromLatin1(token.data(), static_cast<int>(token.size())).toFloat();
}

/// The tokens as "vt" lines of two.
std::string linesOf(const std::vector<std::string> &tokens)
{
    std::string text;
    for (std::size_t i = 0; i < tokens.size(); i += 2) {
        const std::string &second = tokens[std::min(i + 1, tokens.size() - 1)];
        text += "vt " + tokens[i] + " " + second + "\n";
    }
    return text;
}

/// What both ways to read value lines make of the text, and how many lines were
/// read plainly.
OBJAttribute valuesOf(const std::string &text, std::size_t &plainLines)
{
    constexpr std::size_t margin = 64;
    const std::string padded = std::string(margin, '\0') + text + std::string(margin, '\0');
    const char *line = padded.data() + margin;
    const char *const end = line + text.size();
    DigitMarks marks;
    marks.mark(line, end);
    OBJAttribute attribute(2);
    while (line < end) {
        const std::uint32_t before = attribute.valueCount();
        const char *const next = readTexCoordRun(line, end, marks, attribute);
        plainLines += attribute.valueCount() - before;
        line = next != line ? next : readPlainValue(line + 2, end, attribute);
    }
    return attribute;
}

/// Every token is the float that Qt reads, as a token and on a line.
void expectQtsFloats(const std::vector<std::string> &tokens)
{
    for (const std::string &token : tokens) {
        const char *const begin = token.data();
        ASSERT_EQ(bitsOf(floatFromToken(begin, begin + token.size())), bitsOf(floatByQt(token)))
            << "'" << token << "'";
    }
    std::size_t plainLines = 0;
    const OBJAttribute attribute = valuesOf(linesOf(tokens), plainLines);
    ASSERT_GE(attribute.values.size(), tokens.size());
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        ASSERT_EQ(bitsOf(attribute.values[i]), bitsOf(floatByQt(tokens[i])))
            << "'" << tokens[i] << "' on a line";
    }
}

std::string digits(Dice &dice, int count)
{
    std::string text;
    const int kind = dice.below(6);
    for (int i = 0; i < count; ++i)
        text += static_cast<char>('0' + (kind == 0 ? 9 : kind == 1 ? 0 : dice.below(10)));
    return text;
}

TEST(NumberConversion, EveryCountOfDigits)
{
    Dice dice(1);
    std::vector<std::string> tokens;
    for (int whole = 0; whole <= 19; ++whole) {
        for (int decimals = 0; decimals <= 24; ++decimals) {
            for (int i = 0; i < 12; ++i) {
                const std::string sign = i % 2 == 0 ? "" : "-";
                for (const char *point : {".", ""}) {
                    const std::string front = sign + digits(dice, whole) + point;
                    tokens.push_back(front + digits(dice, decimals));
                }
            }
        }
    }
    tokens.erase(std::remove(tokens.begin(), tokens.end(), std::string()), tokens.end());
    expectQtsFloats(tokens);
}

TEST(NumberConversion, EveryExponent)
{
    Dice dice(2);
    const char *const forms[] = {"e", "E", "e+", "E-", "e-", "e-0", "E+00", "e00000000000"};
    std::vector<std::string> tokens;
    for (const char *form : forms) {
        for (int exponent = 0; exponent <= 70; ++exponent) {
            for (int i = 0; i < 8; ++i) {
                std::string mantissa = i % 2 == 0 ? "" : "-";
                mantissa += digits(dice, dice.below(4));
                if (!dice.oneIn(3))
                    mantissa += "." + digits(dice, dice.below(20));
                tokens.push_back(mantissa + form + std::to_string(exponent));
            }
        }
        tokens.push_back(std::string("1") + form);
        tokens.push_back(std::string("-0") + form + "5");
        tokens.push_back(std::string("1") + form + "330");
        tokens.push_back(std::string("1") + form + "99999999999999999999");
    }
    expectQtsFloats(tokens);
}

/// Doubles halfway between floats, and next to halfway: here converting to double
/// first and to float then gives another result than converting at once.
TEST(NumberConversion, TwoRoundings)
{
    Dice dice(3);
    std::vector<std::string> tokens;
    for (int i = 0; i < 20000; ++i) {
        const auto mantissa = static_cast<std::uint64_t>(dice.below(1 << 23)) | 1u << 23;
        const std::uint64_t half = mantissa << 1 | 1; // 25 bits: a tie for a float
        const int shift = dice.between(0, 28);
        tokens.push_back(std::to_string(half << shift));
        tokens.push_back(std::to_string((half << shift) + 1));
        tokens.push_back(std::to_string((half << shift) - 1));
        tokens.push_back(std::to_string(half << shift) + ".0000000001");
        char text[64];
        const int decimals = dice.between(1, 25);
        std::snprintf(text, sizeof text, "%.*f", decimals,
                      static_cast<double>(half) / static_cast<double>(1u << dice.between(1, 30)));
        tokens.push_back(text);
    }
    expectQtsFloats(tokens);
}

/// Integers of 15 digits over and times powers of ten, next to what lies halfway between two
/// floats: a double that is not the nearest one gives the other float here and there. From 10^23 on
/// no double holds the power.
TEST(NumberConversion, PowersOfTenNextToTies)
{
    Dice dice(6);
    std::vector<std::string> tokens;
    for (int power = -26; power <= 26; ++power) {
        const long double scale = std::pow(10.0L, power);
        for (int i = 0; i < 1500; ++i) {
            const int half = dice.below(1 << 23) << 1 | 1 << 24 | 1; // 25 bits: a tie for a float
            const long double size = dice.real(1e14, 9.9e14);
            const int shift = std::ilogb(size / scale / half);
            const long double digits = std::round(std::ldexp(scale * half, shift));
            std::string token = dice.oneIn(2) ? "-" : "";
            token += std::to_string(static_cast<std::int64_t>(digits) + dice.between(-1, 1));
            if (dice.oneIn(2))
                token.insert(token.size() - 14, ".");
            else
                token += ".";
            token += "e" + std::to_string(-power);
            tokens.push_back(token);
        }
    }
    expectQtsFloats(tokens);
}

/// A sample over all bit patterns, as the shortest text that reads back the same,
/// and as programs print floats.
TEST(NumberConversion, FloatsOfAllSizes)
{
    std::vector<std::string> tokens;
    const std::uint32_t step = 0xffffffffu / 60000;
    for (std::uint32_t i = 0; i <= 60000; ++i) {
        const std::uint32_t bits = i * step;
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        char text[400];
        tokens.emplace_back(text, std::to_chars(text, text + sizeof text, value).ptr);
        tokens.emplace_back(
            text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr);
        for (const char *format : {"%g", "%f", "%.9g", "%.17g", "%e"}) {
            std::snprintf(text, sizeof text, format, static_cast<double>(value));
            tokens.emplace_back(text);
        }
    }
    expectQtsFloats(tokens);
}

TEST(NumberConversion, ExporterNumbersAreReadPlainly)
{
    Dice dice(4);
    std::vector<std::string> tokens;
    for (int i = 0; i < 20000; ++i) {
        char text[64];
        const double value = dice.real(-1000, 1000);
        const int decimals = dice.oneIn(2) ? 6 : dice.between(0, 6);
        const char *const format = dice.oneIn(3) ? "%.*e" : "%.*f";
        std::snprintf(text, sizeof text, format, decimals, value);
        tokens.emplace_back(text);
    }
    expectQtsFloats(tokens);
    std::size_t plainLines = 0;
    valuesOf(linesOf(tokens), plainLines);
#ifndef ORV_PORTABLE_VECTORS
    EXPECT_EQ(plainLines, tokens.size() / 2);
#endif
}

TEST(NumberConversion, RandomTokens)
{
    constexpr std::uint32_t seed = 20250917;
    Dice dice(seed);
    const std::string often = "0123456789.-eE";
    const std::string seldom = "0123456789.-eE+#/,_xnaifINF\001\177";
    std::vector<std::string> tokens;
    for (int i = 0; i < 300000; ++i) {
        const std::string &alphabet = dice.oneIn(3) ? seldom : often;
        std::string token;
        for (int length = dice.between(1, 20); length > 0; --length)
            token +=
                alphabet[static_cast<std::size_t>(dice.below(static_cast<int>(alphabet.size())))];
        tokens.push_back(token);
    }
    SCOPED_TRACE(seed);
    expectQtsFloats(tokens);
}

TEST(NumberConversion, TokenCases)
{
    std::vector<std::string> tokens;
    for (const NumberCase &row : numberCases()) {
        if (std::all_of(row.text.begin(), row.text.end(), isTokenByte))
            tokens.push_back(row.text);
    }
    EXPECT_GT(tokens.size(), 50u);
    expectQtsFloats(tokens);
}

/// Whether `token` is an int to Qt, and which.
bool readsAsQtDoes(const std::string &token)
{
    bool ok = false;
    const int expected =
        QString::fromLatin1(token.data(), static_cast<int>(token.size())).toInt(&ok);
    int value = 0;
    return !readPlainInt(token.data(), token.data() + token.size(), value) ||
           (ok && value == expected);
}

TEST(PlainInt, RandomTokens)
{
    Dice dice(5);
    const std::string alphabet = "0123456789-+.x";
    for (int i = 0; i < 300000; ++i) {
        const int limit = dice.oneIn(2) ? 10 : static_cast<int>(alphabet.size());
        std::string token = dice.oneIn(3) ? "-" : "";
        for (int length = dice.between(0, 12); length > 0; --length)
            token += alphabet[static_cast<std::size_t>(dice.below(limit))];
        ASSERT_TRUE(readsAsQtDoes(token)) << "'" << token << "'";
    }
}

TEST(PlainInt, ReadsWhatFilesHold)
{
    const struct
    {
        const char *text;
        bool isPlain;
        int value;
    } rows[] = {
        {"0", true, 0},
        {"-0", true, 0},
        {"7", true, 7},
        {"007", true, 7},
        {"-12", true, -12},
        {"2147483647", true, 2147483647},
        {"2147483648", false, 0},
        {"-2147483648", true, -2147483647 - 1},
        {"-2147483649", false, 0},
        {"9999999999", false, 0},
        {"12345678901", false, 0},
        {"", false, 0},
        {"-", false, 0},
        {"+1", false, 0},
        {"1-", false, 0},
        {"1.0", false, 0},
    };
    for (const auto &row : rows) {
        const std::string token = row.text;
        int value = 0;
        EXPECT_EQ(readPlainInt(token.data(), token.data() + token.size(), value), row.isPlain)
            << token;
        EXPECT_EQ(value, row.value) << token;
        EXPECT_TRUE(readsAsQtDoes(token)) << token;
    }
}

} // namespace
} // namespace OrvTest
