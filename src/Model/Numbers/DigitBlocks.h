/// \file
/// Digits of several numbers at once, with SSE2.
///
/// A number's digits are put into the 16 bytes of a register, with zeros for the
/// bytes that it does not fill, and then added up in pairs, fours and eights: its
/// length costs nothing. Every step is exact, integers below 2^53 as they are, but
/// for one division per decimal number, so that the results are those of
/// NumberConversion.h.
#pragma once

// The portable code gives the same results; tests build it beside this one.
#if defined(__SSE2__) && !defined(ORV_PORTABLE_VECTORS)
#define ORV_SCAN_SSE2 1
#endif

#ifdef ORV_SCAN_SSE2

#include <QtCore/QtGlobal>

#include <array>
#include <cstddef>
#include <emmintrin.h>

namespace Halvard::Orv {

/// Bytes in a block. As many must be readable before and behind any text.
constexpr size_t BlockBytes = 16;

inline __m128i loadBlock(const void *source)
{
    return _mm_loadu_si128(static_cast<const __m128i *>(source));
}

/// Bit i tells that text[i] is a digit.
inline unsigned digitsInBlock(const char *text)
{
    // Moves '0'..'9' to the ten smallest signed bytes: SSE2 compares signed ones only.
    const __m128i moved =
        _mm_sub_epi8(loadBlock(text), _mm_set1_epi8(static_cast<char>('0' - 128)));
    return static_cast<unsigned>(
        _mm_movemask_epi8(_mm_cmplt_epi8(moved, _mm_set1_epi8(-128 + 10))));
}

/// Position of the lowest bit.
/// \pre `bits` is not 0.
inline size_t lowestBit(quint64 bits)
{
    return static_cast<unsigned>(__builtin_ctzll(bits));
}

/// The word without its lowest bit.
inline quint64 withoutLowestBit(quint64 bits)
{
    return bits & (bits - 1);
}

namespace DigitTables {

/// Entry n has ones in its first n bytes.
struct alignas(16) FirstBytes
{
    constexpr FirstBytes() : entries()
    {
        for (size_t n = 0; n <= BlockBytes; ++n) {
            for (size_t i = 0; i < n; ++i)
                entries[n][i] = 0xff;
        }
    }
    unsigned char entries[BlockBytes + 1][BlockBytes];
};
inline constexpr FirstBytes firstBytes;

/// Eight bytes from entry `n` on turn the codes of the last n digits of eight into
/// their values, and what stands before them into zeros.
alignas(16) inline constexpr unsigned char lastDigits[16] = {
    0, 0, 0, 0, 0, 0, 0, 0, 0x0f, 0x0f, 0x0f, 0x0f, 0x0f, 0x0f, 0x0f, 0x0f};

/// What 16 digits with the point before digit n are to be divided by, ten to the power of
/// 16 - n, stands in entry n - LeastPoint; 10^22 is the largest that a double holds. The
/// second row is for negative numbers: it gives -0 for 0, as the sign asks for.
constexpr ptrdiff_t LeastPoint = 16 - 22;
inline constexpr double divisors[2][22 + 1] = {
    {1e22, 1e21, 1e20, 1e19, 1e18, 1e17, 1e16, 1e15, 1e14, 1e13, 1e12, 1e11,
     1e10, 1e9,  1e8,  1e7,  1e6,  1e5,  1e4,  1e3,  1e2,  1e1,  1e0},
    {-1e22, -1e21, -1e20, -1e19, -1e18, -1e17, -1e16, -1e15, -1e14, -1e13, -1e12, -1e11,
     -1e10, -1e9,  -1e8,  -1e7,  -1e6,  -1e5,  -1e4,  -1e3,  -1e2,  -1e1,  -1e0}};

} // namespace DigitTables

/// Four groups of four digits, in a dword each, of 16 digit values.
inline __m128i groupsOfFour(__m128i digits)
{
    // Little-endian words d0 + 256 d1 times 10 * 256 + 1: the high byte is 10 d0 + d1.
    __m128i factor = _mm_set1_epi16(10 * 256 + 1);
    __asm__("" : "+x"(factor)); // GCC would make four shifts and additions of a known factor
    const __m128i pairs = _mm_srli_epi16(_mm_mullo_epi16(digits, factor), 8);
    return _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
}

/// Two numbers of eight digits from each argument's four groups of four.
inline __m128i groupsOfEight(__m128i first, __m128i second)
{
    return _mm_madd_epi16(_mm_packs_epi32(first, second), _mm_set1_epi32(1 << 16 | 10000));
}

/// A number such as "-12.75" or "-1.25e+01", of at most 15 bytes not counting the point
/// and the exponent.
struct DecimalText
{
    const char *begin;  ///< the sign, if any
    size_t point;       ///< bytes before the point; all of them without one
    size_t filled;      ///< bytes not counting the point
    size_t negative;    ///< 1 or 0
    ptrdiff_t exponent; ///< 0 without one
};

/// The digits of a number, left-aligned, as four groups of four. A sign counts as
/// a leading zero.
inline __m128i decimalGroups(const DecimalText &number)
{
    const auto firstBytes = [](size_t count) {
        const void *entry = DigitTables::firstBytes.entries[count];
        return _mm_load_si128(static_cast<const __m128i *>(entry));
    };
    const __m128i whole = loadBlock(number.begin);
    const __m128i fraction = loadBlock(number.begin + 1); // moves down into the point's place
    const __m128i mixed = _mm_xor_si128(
        fraction, _mm_and_si128(_mm_xor_si128(whole, fraction), firstBytes(number.point)));
    const __m128i values = _mm_subs_epu8(mixed, _mm_set1_epi8('0')); // 0 for the sign
    return groupsOfFour(_mm_and_si128(values, firstBytes(number.filled)));
}

/// Two floats, in the low half, from the groups of eight of two numbers.
inline __m128 floatsFromGroups(__m128i groups, double firstDivisor, double secondDivisor)
{
    // At most 15 of the 16 digits are filled, so that the number is below 10^16 and
    // even: a double holds it.
    const __m128d high = _mm_cvtepi32_pd(_mm_shuffle_epi32(groups, _MM_SHUFFLE(2, 0, 2, 0)));
    const __m128d low = _mm_cvtepi32_pd(_mm_shuffle_epi32(groups, _MM_SHUFFLE(3, 1, 3, 1)));
    const __m128d numbers = _mm_add_pd(_mm_mul_pd(high, _mm_set1_pd(1e8)), low);
    return _mm_cvtpd_ps(_mm_div_pd(numbers, _mm_set_pd(secondDivisor, firstDivisor)));
}

/// Where the point belongs, counted from the first byte.
inline ptrdiff_t movedPoint(const DecimalText &number)
{
    return static_cast<ptrdiff_t>(number.point) + number.exponent;
}

/// Whether a double holds what the number's digits are to be divided by.
inline bool hasDivisor(const DecimalText &number)
{
    const ptrdiff_t point = movedPoint(number);
    return point >= DigitTables::LeastPoint && point <= static_cast<ptrdiff_t>(BlockBytes);
}

/// \pre hasDivisor(number), as every number without an exponent.
inline double divisorOf(const DecimalText &number)
{
    return DigitTables::divisors[number.negative][movedPoint(number) - DigitTables::LeastPoint];
}

inline void storeFloats(const DecimalText &first, const DecimalText &second, float *target)
{
    const __m128i groups = groupsOfEight(decimalGroups(first), decimalGroups(second));
    _mm_storel_pi(reinterpret_cast<__m64 *>(target),
                  floatsFromGroups(groups, divisorOf(first), divisorOf(second)));
}

inline void storeFloat(const DecimalText &number, float *target)
{
    const __m128i groups = groupsOfEight(decimalGroups(number), _mm_setzero_si128());
    _mm_store_ss(target, floatsFromGroups(groups, divisorOf(number), 1.0));
}

/// The most digits of an index that is read in a block.
constexpr size_t MaxIndexDigits = 8;

/// An index of 1 to 8 digits.
struct IndexText
{
    const char *end; ///< past its last digit
    size_t digits;
};

/// Digit values of two indices.
inline __m128i indexDigits(const IndexText &first, const IndexText &second)
{
    const auto load8 = [](const void *source) {
        return _mm_loadl_epi64(static_cast<const __m128i *>(source));
    };
    const __m128i text = _mm_unpacklo_epi64(load8(first.end - 8), load8(second.end - 8));
    const __m128i select = _mm_unpacklo_epi64(load8(DigitTables::lastDigits + first.digits),
                                              load8(DigitTables::lastDigits + second.digits));
    return _mm_and_si128(text, select);
}

/// The numbers of four indices.
inline __m128i indexNumbers(const IndexText &a, const IndexText &b, const IndexText &c,
                            const IndexText &d)
{
    return groupsOfEight(groupsOfFour(indexDigits(a, b)), groupsOfFour(indexDigits(c, d)));
}

/// Of numbers that count from the first value: one less, and OBJReader::AbsentIndex for 0.
inline __m128i indicesFromFirst(__m128i numbers)
{
    return _mm_and_si128(_mm_add_epi32(numbers, _mm_set1_epi32(-1)), _mm_set1_epi32(0x7fffffff));
}

/// Of numbers that count back from behind the last of `valueCount` values: that many less,
/// and OBJReader::AbsentIndex for 0.
inline __m128i indicesFromLast(__m128i numbers, quint32 valueCount)
{
    const __m128i isZero = _mm_cmpeq_epi32(numbers, _mm_setzero_si128());
    const __m128i indices = _mm_sub_epi32(_mm_set1_epi32(static_cast<int>(valueCount)), numbers);
    return _mm_or_si128(_mm_andnot_si128(isZero, indices), _mm_srli_epi32(isZero, 1));
}

inline void storeIndices(__m128i indices, quint32 *target)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(target), indices);
}

} // namespace Halvard::Orv

#endif
