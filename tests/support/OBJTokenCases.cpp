#include "support/OBJTokenCases.h"

#include <limits>

namespace OrvTest {

namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Largest = std::numeric_limits<float>::max();

std::string zeros(std::size_t count)
{
    return std::string(count, '0');
}

std::vector<NumberCase> wellFormedNumbers()
{
    return {
        {"digit", "1", 1.0f},
        {"plus sign", "+1.5", 1.5f},
        {"minus sign", "-2.25", -2.25f},
        {"nothing before the point", ".5", 0.5f},
        {"nothing after the point", "5.", 5.0f},
        {"sign, point, exponent", "-.5e1", -5.0f},
        {"exponent after the point", "1.e1", 10.0f},
        {"exponent", "1e3", 1000.0f},
        {"capital exponent", "1E3", 1000.0f},
        {"exponent with plus", "1e+3", 1000.0f},
        {"negative exponent", "25e-2", 0.25f},
        {"exponent with zeros", "1e0000000001", 10.0f},
        {"negative exponent of zero", "1e-0", 1.0f},
        {"leading zeros", "007", 7.0f},
        {"many leading zeros", zeros(400) + "1.5", 1.5f},
        {"nearest to a tenth", "0.1", 0x1.99999ap-4f},
        {"many digits of a third", "0." + std::string(20000, '3'), 0x1.555556p-2f},
        {"large mantissa, small exponent", "1" + zeros(400) + "e-400", 1.0f},
        {"small mantissa, large exponent", "0." + zeros(400) + "1e401", 1.0f},
        {"zero", "0", 0.0f},
        {"minus zero", "-0", -0.0f},
        {"minus zero with a point", "-0.0", -0.0f},
        {"zero to any power", "0e5000000000", 0.0f},
        {"true minus sign U+2212", "\u22122", -2.0f},
        {"true minus sign in the exponent", "25e\u22122", 0.25f},
        {"not a number", "nan", NaN},
        {"not a number, capitals", "NaN", NaN},
        {"infinity", "inf", Infinity},
        {"infinity, capitals", "INF", Infinity},
        {"infinity with plus", "+inf", Infinity},
        {"infinity with minus", "-inf", -Infinity},
    };
}

/// Text goes to double and then to float, each step to the nearest and ties to even.
std::vector<NumberCase> roundedNumbers()
{
    return {
        {"2^24 + 1, a tie", "16777217", 0x1p24f},
        {"2^24 + 3, a tie", "16777219", 0x1.000004p24f},
        {"1 + 2^-24, a tie", "1.000000059604644775390625", 1.0f},
        {"1 + 3 * 2^-24, a tie", "1.000000178813934326171875", 0x1.000004p0f},
        // A little more than a tie is a tie once it has been a double.
        {"1 + 2^-24 and a little", "1.00000005960464477539062500000001", 1.0f},
        {"2^53 + 2^29 + 1", "9007199791611905", 0x1p53f},
        {"2^53 + 2^29 + 2", "9007199791611906", 0x1.000002p53f},

        {"largest float", "3.4028234663852886e38", Largest},
        {"largest float, negative", "-3.4028234663852886e38", -Largest},
        // Nearer to the largest float than to anything beyond, but beyond it.
        {"largest float rounded to eight digits", "3.4028235e38", Infinity},
        {"the same, negative", "-3.4028235e38", -Infinity},
        {"largest float rounded down to eight digits", "3.4028234e38", Largest},
        {"beyond float", "1e39", Infinity},
        {"beyond float, negative", "-1e39", -Infinity},
        {"beyond double", "1e400", Infinity},
        {"beyond double, negative", "-1e400", -Infinity},
        {"beyond any exponent", "1e5000000000", Infinity},
        {"exponent 2^31", "1e2147483648", Infinity},
        {"20000 digits", std::string(20000, '9'), Infinity},

        {"smallest normal float", "1.1754943508222875e-38", 0x1p-126f},
        {"largest denormal", "1.1754942e-38", 0x0.fffffep-126f},
        {"smallest denormal", "1.4e-45", 0x1p-149f},
        {"more than half of it", "8e-46", 0x1p-149f},
        {"less than half of it", "7e-46", 0.0f},
        // What underflows has no sign; what is written as zero keeps it.
        {"less than half of it, negative", "-7e-46", 0.0f},
        {"smallest double", "4.9e-324", 0.0f},
        {"smallest double, negative", "-4.9e-324", 0.0f},
        {"below double", "1e-400", 0.0f},
        {"below double, negative", "-1e-400", 0.0f},
        {"below any exponent", "1e-5000000000", 0.0f},
    };
}

std::vector<NumberCase> malformedNumbers()
{
    const char *const texts[] = {"abc",
                                 "1x",
                                 "1f",
                                 "1.0f",
                                 "1e",
                                 "1E",
                                 "0e",
                                 "1e+",
                                 "1e-",
                                 "1e1.5",
                                 "1d3",
                                 "+",
                                 "-",
                                 ".",
                                 "-.",
                                 "e5",
                                 ".e1",
                                 "--1",
                                 "+-1",
                                 "1-2",
                                 "1..2",
                                 "1.2.3",
                                 "1,5",
                                 "1,500",
                                 "1'000",
                                 "1_000",
                                 "1#",
                                 "#",
                                 "1;",
                                 "1/2",
                                 "0x10",
                                 "0x1p3",
                                 "-nan",
                                 "+nan",
                                 "nanx",
                                 "nan(1)",
                                 "infinity",
                                 "-infinity",
                                 "in",
                                 "infx",
                                 "\u0661",
                                 "\uff11",
                                 "\uff0b1",
                                 "\uff0d1",
                                 "2\u00b2",
                                 "1\u00d710",
                                 "\u221e",
                                 "\u200b1",
                                 "1\u200b",
                                 "x\ufeff1",
                                 "\ufffd1",
                                 "1e\u0661",
                                 "\U0001d7cf",
                                 "1\u066b5",
                                 "\u2012"
                                 "1"};
    std::vector<NumberCase> cases;
    for (const char *text : texts)
        cases.push_back({std::string("malformed ") + text, text, 0.0f});
    using namespace std::string_literals;
    cases.push_back({"NUL after", "1\0"s, 0.0f});
    cases.push_back({"NUL before",
                     "\0"s
                     "1",
                     0.0f});
    cases.push_back({"NUL inside",
                     "1\0"s
                     "2",
                     0.0f});
    return cases;
}

std::vector<CornerCase> malformedCorners()
{
    const char *const texts[] = {"x",
                                 "1x",
                                 "5.0",
                                 "1e0",
                                 "0x1",
                                 "1,2",
                                 "--1",
                                 "+",
                                 "-",
                                 "#",
                                 "1#",
                                 "1\\",
                                 "/",
                                 "//",
                                 "/1",
                                 "//1",
                                 "/1/1",
                                 "1/x",
                                 "1/x/1",
                                 "1/1/x",
                                 "1//x",
                                 "1/1.5",
                                 "1/1/1.5",
                                 "x/1/1",
                                 "1/-/1",
                                 "1/+",
                                 "1:2:3",
                                 "\uff11",
                                 "\u0661",
                                 "1\u200b",
                                 "1/#",
                                 "1//#",
                                 "1/1/1#",
                                 "1#/1/1",
                                 "1/1#/1",
                                 "1|1|1",
                                 "1\\1\\1",
                                 "2147483648",
                                 "1/2147483648",
                                 "1//2147483648",
                                 "-2147483649",
                                 "4294967295",
                                 "4294967296",
                                 "18446744073709551616",
                                 "99999999999999999999999999999999"};
    std::vector<CornerCase> cases;
    for (const char *text : texts) {
        if (text[0] != '#') // begins a comment instead
            cases.push_back({std::string("malformed ") + text, text, false, 0, 0, 0});
    }
    using namespace std::string_literals;
    cases.push_back({"NUL after", "1\0"s, false, 0, 0, 0});
    cases.push_back({"NUL in a component",
                     "1/1\0"s
                     "/1",
                     false, 0, 0, 0});
    return cases;
}

} // namespace

const std::vector<NumberCase> &numberCases()
{
    static const std::vector<NumberCase> cases = [] {
        std::vector<NumberCase> all;
        for (const auto &part : {wellFormedNumbers(), roundedNumbers(), malformedNumbers()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return cases;
}

const std::vector<CornerCase> &cornerCases()
{
    constexpr int Largest32 = std::numeric_limits<int>::max();
    constexpr int Smallest32 = std::numeric_limits<int>::min();
    static const std::vector<CornerCase> cases = [] {
        std::vector<CornerCase> all{
            {"position only", "3", true, 2, Absent, Absent},
            {"position and texture", "3/4", true, 2, 3, Absent},
            {"position and normal", "3//5", true, 2, Absent, 4},
            {"all three", "3/4/5", true, 2, 3, 4},
            {"empty texture", "3/", true, 2, Absent, Absent},
            {"empty texture and normal", "3//", true, 2, Absent, Absent},
            {"empty normal", "3/4/", true, 2, 3, Absent},
            {"fourth part", "3/4/5/6", true, 2, 3, 4},
            {"empty fourth part", "3/4/5/", true, 2, 3, 4},
            {"fourth part that is no number", "3/4/5/x", true, 2, 3, 4},
            {"many parts", "3/4/5/6/7/8//9/", true, 2, 3, 4},
            {"only a fourth part is missing nothing", "3////6", true, 2, Absent, Absent},
            {"zero is absent", "0/0/0", true, Absent, Absent, Absent},
            {"minus zero is absent", "-0/-0/-0", true, Absent, Absent, Absent},
            {"plus sign", "+3/+4/+5", true, 2, 3, 4},
            {"leading zeros", "003/0004/00005", true, 2, 3, 4},
            {"last ones", "-1/-1/-1", true, 9, 9, 9},
            {"first ones counted backwards", "-10/-10/-10", true, 0, 0, 0},
            {"too far back", "-11/-12/-13", true, -1, -2, -3},
            {"true minus sign U+2212", "\u22121/\u22122/\u22123", true, 9, 8, 7},
            {"far beyond", "11/1000/1000000", true, 10, 999, 999999},
            {"largest", "2147483647", true, Largest32 - 1, Absent, Absent},
            {"largest with leading zeros", "00000000002147483647", true, Largest32 - 1, Absent,
             Absent},
            {"smallest", "-2147483648", true, Smallest32 + 10, Absent, Absent},
        };
        const std::vector<CornerCase> malformed = malformedCorners();
        all.insert(all.end(), malformed.begin(), malformed.end());
        return all;
    }();
    return cases;
}

const std::vector<BlankCase> &blankCases()
{
    using namespace std::string_literals;
    static const std::vector<BlankCase> cases{
        {"space", " ", true},
        {"many spaces", "      ", true},
        {"tab", "\t", true},
        {"vertical tab", "\v", true},
        {"form feed", "\f", true},
        {"mixed", " \t \v \f ", true},
        {"next line U+0085", "\u0085", true},
        {"no-break space U+00A0", "\u00a0", true},
        {"ogham space U+1680", "\u1680", true},
        {"en quad U+2000", "\u2000", true},
        {"em space U+2003", "\u2003", true},
        {"hair space U+200A", "\u200a", true},
        {"line separator U+2028", "\u2028", true},
        {"paragraph separator U+2029", "\u2029", true},
        {"narrow no-break space U+202F", "\u202f", true},
        {"mathematical space U+205F", "\u205f", true},
        {"ideographic space U+3000", "\u3000", true},
        {"NUL", "\0"s, false},
        {"unit separator", "\x1f", false},
        {"escape", "\x1b", false},
        {"delete", "\x7f", false},
        {"mongolian vowel separator U+180E", "\u180e", false},
        {"zero width space U+200B", "\u200b", false},
        {"word joiner U+2060", "\u2060", false},
        {"byte-order mark U+FEFF", "\ufeff", false},
        {"replacement character U+FFFD", "\ufffd", false},
    };
    return cases;
}

} // namespace OrvTest
