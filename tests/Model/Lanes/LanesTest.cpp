// Vectors of floats against the same arithmetic one by one: every bit agrees.
#include "Lanes/Lanes.h"

#include "Lanes/UnitVectors.h"

#include <gtest/gtest.h>

#include <QtGui/QVector3D>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

using namespace Halvard::Orv;

namespace {

constexpr float Denormal = std::numeric_limits<float>::denorm_min();
constexpr float Largest = std::numeric_limits<float>::max();
constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

/// Any two NaNs are the same: which of two operands gives a NaN its bits is the machine's choice.
bool isSame(float first, float second)
{
    if (std::isnan(first) || std::isnan(second))
        return std::isnan(first) && std::isnan(second);
    return std::memcmp(&first, &second, sizeof first) == 0;
}

/// A NaN, too, has the bits it had.
void expectBits(float value, float expected)
{
    EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << value << " and " << expected;
}

/// Signs, sizes and special values, several thousand in an order that mixes them.
const std::vector<float> &values()
{
    static const std::vector<float> all = [] {
        const float special[] = {
            0.f,      -0.f,     1.f,       -1.f, Denormal, -Denormal,     0x1p-126f,      Largest,
            -Largest, Infinity, -Infinity, NaN,  1e-6f,    0x1.000002p0f, 0x1.fffffep-1f, 3e-7f};
        std::mt19937 random(20261);
        std::vector<float> floats;
        for (int i = 0; i < 6000; ++i) {
            const auto number = static_cast<std::uint32_t>(random());
            float value;
            std::memcpy(&value, &number, sizeof value); // any bits
            if (i % 5 == 0)
                value = special[number % std::size(special)];
            else if (i % 5 < 3)
                value = static_cast<float>(static_cast<std::int32_t>(number)) / 0x1p30f;
            floats.push_back(value);
        }
        return floats;
    }();
    return all;
}

Points4 pointsAt(std::size_t first)
{
    return loadPoints(values().data() + first);
}

QVector3D pointOf(const Points4 &points, int lane)
{
    return {points.x[lane], points.y[lane], points.z[lane]};
}

void expectPoint(const Points4 &points, int lane, const QVector3D &expected)
{
    const bool same = isSame(points.x[lane], expected.x()) &&
                      isSame(points.y[lane], expected.y()) && isSame(points.z[lane], expected.z());
    EXPECT_TRUE(same) << "lane " << lane << ": " << points.x[lane] << ' ' << points.y[lane] << ' '
                      << points.z[lane] << " instead of " << expected.x() << ' ' << expected.y()
                      << ' ' << expected.z();
}

constexpr std::size_t FloatsOfFourPoints = 12;

TEST(LanesTest, FloatsAreLoadedFromAnyAddress)
{
    for (std::size_t i = 0; i + 4 <= values().size(); ++i) {
        const Float4 four = loadFour(values().data() + i);
        const Float2 two = loadTwo(values().data() + i);
        for (std::size_t lane = 0; lane < 4; ++lane)
            expectBits(four[lane], values()[i + lane]);
        float stored[3] = {7, 7, 7};
        storeTwo(stored, two);
        expectBits(stored[0], values()[i]);
        expectBits(stored[1], values()[i + 1]);
        expectBits(stored[2], 7);
    }
}

TEST(LanesTest, AMaskHasABitForEachLane)
{
    for (unsigned bits = 0; bits < 16; ++bits) {
        Mask4 mask;
        for (unsigned lane = 0; lane < 4; ++lane)
            mask[lane] = (bits >> lane & 1) != 0 ? -1 : 0;
        EXPECT_EQ(lanesOf(mask), bits);
    }
}

TEST(LanesTest, RootsAreThoseOfTheStandardLibrary)
{
    for (std::size_t i = 0; i + 4 <= values().size(); i += 4) {
        const Float4 four = loadFour(values().data() + i);
        const Float4 roots = squareRoot(four);
        const Double2 doubles = squareRoot(lowerDoubles(four));
        for (int lane = 0; lane < 4; ++lane)
            EXPECT_TRUE(isSame(roots[lane], std::sqrt(four[lane]))) << four[lane];
        for (int lane = 0; lane < 2; ++lane) {
            const double expected = std::sqrt(static_cast<double>(four[lane]));
            EXPECT_TRUE(doubles[lane] == expected || std::isnan(expected)) << four[lane];
            EXPECT_EQ(std::isnan(doubles[lane]), std::isnan(expected)) << four[lane];
        }
    }
}

TEST(LanesTest, DoublesAreExactAndRoundedToTheNearestFloat)
{
    const double half = 0x1p-25; // of the last bit of a float between 0.5 and 1
    for (std::size_t i = 0; i + 4 <= values().size(); i += 4) {
        const Float4 four = loadFour(values().data() + i);
        const Double2 lower = lowerDoubles(four);
        const Double2 upper = upperDoubles(four);
        const Float4 back = toFloats(lower, upper);
        const Double2 nearLower = lower * (1.0 + half);
        const Double2 nearUpper = upper * (1.0 + half * 1.5);
        const Float4 rounded = toFloats(nearLower, nearUpper);
        for (int lane = 0; lane < 2; ++lane) {
            EXPECT_TRUE(isSame(back[lane], four[lane]));
            EXPECT_TRUE(isSame(back[2 + lane], four[2 + lane]));
            EXPECT_TRUE(isSame(rounded[lane], static_cast<float>(nearLower[lane])));
            EXPECT_TRUE(isSame(rounded[2 + lane], static_cast<float>(nearUpper[lane])));
        }
    }
}

TEST(LanesTest, PointsComeFromTwelveFloatsAndGoBack)
{
    for (std::size_t i = 0; i + FloatsOfFourPoints <= values().size(); ++i) {
        const Points4 points = pointsAt(i);
        for (std::size_t lane = 0; lane < 4; ++lane) {
            expectBits(points.x[lane], values()[i + 3 * lane]);
            expectBits(points.y[lane], values()[i + 3 * lane + 1]);
            expectBits(points.z[lane], values()[i + 3 * lane + 2]);
        }
        float stored[FloatsOfFourPoints + 1];
        stored[FloatsOfFourPoints] = 7;
        storePoints(points, stored);
        EXPECT_EQ(std::memcmp(stored, values().data() + i, FloatsOfFourPoints * sizeof(float)), 0);
        expectBits(stored[FloatsOfFourPoints], 7);
    }
}

TEST(LanesTest, PointsAreTransposedWithoutTheirFourthLane)
{
    const Points4 points = transposed(Float4{1, 2, 3, 99}, Float4{4, 5, 6, 99}, Float4{7, 8, 9, 99},
                                      Float4{10, 11, 12, 99});
    expectPoint(points, 0, {1, 2, 3});
    expectPoint(points, 1, {4, 5, 6});
    expectPoint(points, 2, {7, 8, 9});
    expectPoint(points, 3, {10, 11, 12});
}

template <unsigned CornerCount>
void expectCornersOfFourFaces()
{
    std::mt19937 random(5);
    const auto pointCount = static_cast<quint32>((values().size() - 1) / 3);
    quint32 corners[4 * CornerCount];
    for (quint32 &corner : corners)
        corner = static_cast<quint32>(random() % pointCount);
    for (unsigned i = 0; i < CornerCount; ++i) {
        const Points4 points = loadCorners<CornerCount>(corners, i, values().data());
        for (unsigned face = 0; face < 4; ++face) {
            const float *const point = values().data() + 3 * corners[CornerCount * face + i];
            expectPoint(points, static_cast<int>(face), {point[0], point[1], point[2]});
        }
    }
}

TEST(LanesTest, CornersAreLoadedOfFourFacesAtOnce)
{
    expectCornersOfFourFaces<3>();
    expectCornersOfFourFaces<4>();
}

TEST(LanesTest, LanesOfTwoAreInterleaved)
{
    const Points4 first = pointsAt(0);
    const Points4 second = pointsAt(FloatsOfFourPoints);
    const Points4 lower = interleavedLower(first, second);
    const Points4 upper = interleavedUpper(first, second);
    for (int pair = 0; pair < 2; ++pair) {
        expectPoint(lower, 2 * pair, pointOf(first, pair));
        expectPoint(lower, 2 * pair + 1, pointOf(second, pair));
        expectPoint(upper, 2 * pair, pointOf(first, 2 + pair));
        expectPoint(upper, 2 * pair + 1, pointOf(second, 2 + pair));
    }
}

TEST(LanesTest, SumsAndProductsAreThoseOfQVector3D)
{
    for (std::size_t i = 0; i + 2 * FloatsOfFourPoints <= values().size(); ++i) {
        const Points4 first = pointsAt(i);
        const Points4 second = pointsAt(i + FloatsOfFourPoints);
        const Float4 dots = dot(first, second);
        bool anyNaN = false;
        for (int lane = 0; lane < 4; ++lane) {
            const QVector3D a = pointOf(first, lane);
            const QVector3D b = pointOf(second, lane);
            expectPoint(first + second, lane, a + b);
            expectPoint(first - second, lane, a - b);
            expectPoint(cross(first, second), lane, QVector3D::crossProduct(a, b));
            EXPECT_TRUE(isSame(dots[lane], QVector3D::dotProduct(a, b)));
            anyNaN = anyNaN || std::isnan(a.x()) || std::isnan(a.y()) || std::isnan(a.z());
        }
        EXPECT_EQ(hasNaN(first), anyNaN);
    }
}

TEST(LanesTest, ANaNIsSeenInEveryLane)
{
    for (std::size_t place = 0; place < FloatsOfFourPoints; ++place) {
        float floats[FloatsOfFourPoints] = {Infinity, 1, -0.f, Denormal, Largest, 2,
                                            3,        4, 5,    6,        7,       8};
        EXPECT_FALSE(hasNaN(loadPoints(floats)));
        floats[place] = NaN;
        EXPECT_TRUE(hasNaN(loadPoints(floats))) << place;
    }
}

void expectUnitVectors(const Points4 &vectors)
{
    const Points4 zeroed = unit<NullVectors::BecomeZero>(vectors);
    const Points4 kept = unit<NullVectors::Stay>(vectors);
    for (int lane = 0; lane < 4; ++lane) {
        const QVector3D vector = pointOf(vectors, lane);
        expectPoint(zeroed, lane, vector.normalized());
        QVector3D inPlace = vector;
        inPlace.normalize();
        expectPoint(kept, lane, inPlace);
    }
}

TEST(UnitVectorsTest, AreThoseOfQVector3D)
{
    for (std::size_t i = 0; i + FloatsOfFourPoints <= values().size(); ++i)
        expectUnitVectors(pointsAt(i));
}

TEST(UnitVectorsTest, AreThoseOfQVector3DAroundItsTwoTolerances)
{
    // Squared lengths around 1e-12, which is 0 to QVector3D, and around 1, which is left alone.
    for (const float length : {1e-6f, 1.f}) {
        float x = length * (1 - 64 * 0x1p-24f);
        for (int step = 0; step < 128; ++step, x = std::nextafter(x, Infinity)) {
            const float floats[FloatsOfFourPoints] = {x,        0, 0, 0,        -x,       0,
                                                      Denormal, 0, x, x * 0.6f, x * 0.8f, 0};
            expectUnitVectors(loadPoints(floats));
        }
    }
    // The squares of these, summed up in double, are 1e-12 to the bit.
    const float x = 0x1.31afe2p-22f;
    const float y = 0x1.0153c6p-20f;
    const float z = 0x1.57a71ap-35f;
    const auto square = [](double value) { return value * value; };
    ASSERT_EQ(square(x) + square(y) + square(z), 1e-12);
    const float floats[FloatsOfFourPoints] = {x, y, z, -x, y, z, x, -y, z, x, y, -z};
    expectUnitVectors(loadPoints(floats));
}

} // namespace
