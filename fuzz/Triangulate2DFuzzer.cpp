// Rings of any floats, cut by the library and by the plain algorithm.
#include "support/Coordinates.h"
#include "support/Fuzzing.h"
#include "support/Recipes.h"

#include "support/MessageCapture.h"
#include "support/PlainGeometry.h"

#include <OrvModel/Triangulate2D.h>

#include <QtGui/QVector2D>

#include <algorithm>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

/// From 256 corners on the library looks at some of them only.
constexpr std::size_t LargeRing = 330;
/// The plain algorithm would take a minute, and so would a search that grows as it does.
constexpr int HugeRing = 50000;

/// A ring around the origin, which can be cut however far out its corners lie: a byte
/// each.
std::vector<QVector2D> takeStar(Input &input, std::size_t mostCorners)
{
    const std::size_t count = std::min(input.size(), mostCorners);
    std::vector<QVector2D> points;
    for (std::size_t i = 0; i < count; ++i) {
        const double angle =
            6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
        const double radius = 1.0 + input.byte();
        points.emplace_back(static_cast<float>(radius * std::cos(angle)),
                            static_cast<float>(radius * std::sin(angle)));
    }
    return points;
}

std::vector<QVector2D> takeRing(Input &input)
{
    Coordinates coordinates(input);
    std::vector<QVector2D> points;
    while (!input.isAtEnd() && points.size() < MaxCorners) {
        const float x = coordinates.next();
        points.emplace_back(x, coordinates.next());
    }
    return points;
}

std::vector<QVector2D> takePoints(Input &input, unsigned options)
{
    if (options & 2u)
        return takeStar(input, options & 4u ? LargeRing : MaxCorners);
    if (options & 4u) {
        // One of sixteen is too large for the plain algorithm.
        const unsigned size = input.byte();
        const int count = size < 16 ? HugeRing : static_cast<int>(LargeRing - 64 + size / 4);
        return takeRingByRecipe(input, count);
    }
    return takeRing(input);
}

bool sameNumber(float first, float second)
{
    return first == second || (std::isnan(first) && std::isnan(second));
}

/// The record of one corner of the whole ring.
void compareCorner(const std::vector<QVector2D> &points, int index)
{
    const int count = static_cast<int>(points.size());
    QVector<Vertex> ring;
    for (int i = 0; i < count; ++i)
        ring.append({(i + 1) % count, (i + count - 1) % count, 0.0f, 0.0f, true, false});
    UpdateVertex(ring, points.data(), index);
    const Vertex &corner = ring.at(index);
    const OrvTest::PlainCorner plain = OrvTest::plainCorner(
        points, std::vector<bool>(points.size(), true), index, corner.next, corner.prev);
    require(sameNumber(corner.crossZ, plain.crossZ), "another sine");
    require(sameNumber(corner.cosAngle, plain.cosAngle), "another cosine");
    require(corner.isEar == plain.isEar, "an ear for one of the two only");
}

/// The one message that a ring without a result gives.
void checkMessages(const std::vector<OrvTest::Message> &messages, std::size_t corners, bool failed)
{
    require(messages.size() == (failed ? 1u : 0u), "not one message for a failure");
    if (failed)
        require(messages.front().type == QtWarningMsg &&
                    messages.front().text ==
                        (corners < 3 ? "Cannot triangulate a polygon with fewer than 3 vertices"
                                     : "Unable to triangulate polygon."),
                "another message");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const unsigned options = input.byte();
    const bool clockwise = options & 1u;
    const std::vector<QVector2D> points = takePoints(input, options);

    const int count = static_cast<int>(points.size());
    if (count >= 3)
        compareCorner(points, static_cast<int>(options >> 3) % count);

    const OrvTest::MessageCapture capture;
    QVector<int> triangles{1, 2, 3}; // which must go
    Triangulate2D(count, reinterpret_cast<const float *>(points.data()), triangles, clockwise);
    if (count == HugeRing) {
        require(triangles.isEmpty() || triangles.size() == 3 * (count - 2),
                "neither none nor all triangles");
        checkMessages(capture.messages(), points.size(), triangles.isEmpty());
        return 0;
    }
    const std::vector<int> plain = OrvTest::plainTriangulate2D(points, clockwise);
    require(std::vector<int>(triangles.begin(), triangles.end()) == plain, "other triangles");
    checkMessages(capture.messages(), points.size(), plain.empty());
    return 0;
}
