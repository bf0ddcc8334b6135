#include <OrvModel/Triangulate2D.h>

#include <gmock/gmock.h>

#include <QtGui/QVector2D>

#include <limits>

using namespace Halvard::Orv;

namespace {

using Points = std::vector<QVector2D>;

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

/// A ring in order of position, no corner evaluated yet.
QVector<Vertex> freshRing(int count)
{
    QVector<Vertex> ring;
    for (int i = 0; i < count; ++i)
        ring.append({(i + 1) % count, (i + count - 1) % count, 0.0f, 0.0f, true, false});
    return ring;
}

struct AngleCase
{
    const char *name;
    QVector2D prev;
    QVector2D next;
    float crossZ;
    float cosAngle;
    bool isEar;
};

/// The corner lies at the origin. 3-4-5 triangles: 3/5 and 4/5 are rounded to float
/// once, when the direction is normalised in double precision.
const AngleCase AngleCases[] = {
    {"right angle", {0, 2}, {3, 0}, 1.0f, 0.0f, true},
    {"right angle, reflex", {3, 0}, {0, 2}, -1.0f, 0.0f, false},
    {"sharp", {3, 4}, {1, 0}, 0.8f, 0.6f, true},
    {"blunt", {-3, 4}, {1, 0}, 0.8f, -0.6f, true},
    {"sharp, reflex", {3, -4}, {1, 0}, -0.8f, 0.6f, false},
    {"blunt, reflex", {-3, -4}, {1, 0}, -0.8f, -0.6f, false},
    {"straight", {-3, 0}, {1, 0}, 0.0f, -1.0f, false},
    {"closed", {3, 0}, {1, 0}, 0.0f, 1.0f, false},
    {"hardly open", {1, 0x1p-20f}, {1, 0}, 0x1p-20f, 1.0f, true},
    {"neighbour in the same place", {0, 0}, {1, 0}, 0.0f, 0.0f, false},
    {"both neighbours in the same place", {0, 0}, {0, 0}, 0.0f, 0.0f, false},
    // (3/5, 4/5) and (-7/25, 24/25): products rounded to float make 4/5 a bit more than
    // 0.8f, and 3/5 0.6f. In double they would be 0.8f and a bit less than 0.6f.
    {"products are rounded", {-7, 24}, {3, 4}, 0x1.99999cp-1f, 0.6f, true},
    // Directions up to a length of 1e-6 are none.
    {"neighbour at 1e-7", {0, 1e-7f}, {1, 0}, 0.0f, 0.0f, false},
    // The squares are (1 - 5.05e-9) * 1e-12 and 5.05e-21: added up, the double 1e-12.
    {"neighbour at exactly 1e-6", {0x1.38866p-34f, 0x1.0c6f7ap-20f}, {1, 0}, 0, 0, false},
    {"neighbour at 1e-5", {0, 1e-5f}, {1, 0}, 1.0f, 0.0f, true},
    {"neighbour at FLT_MAX", {0, std::numeric_limits<float>::max()}, {1, 0}, 1.0f, 0.0f, true},
};

TEST(UpdateVertex, MeasuresTheAngle)
{
    for (const AngleCase &row : AngleCases) {
        SCOPED_TRACE(row.name);
        const Points points{{0, 0}, row.next, row.prev};
        QVector<Vertex> ring = freshRing(3);
        ring[0].isEar = !row.isEar;
        UpdateVertex(ring, points.data(), 0);
        EXPECT_EQ(ring[0].crossZ, row.crossZ);
        EXPECT_EQ(ring[0].cosAngle, row.cosAngle);
        EXPECT_EQ(ring[0].isEar, row.isEar);
    }
}

TEST(UpdateVertex, FindsNoEarWhereNumbersAreNotFinite)
{
    for (const QVector2D odd : {QVector2D(NaN, 1), QVector2D(0, NaN), QVector2D(0, Infinity),
                                QVector2D(Infinity, Infinity)}) {
        QVector<Vertex> ring = freshRing(3);
        ring[0].isEar = true;
        const Points points{{0, 0}, {1, 0}, odd};
        UpdateVertex(ring, points.data(), 0);
        EXPECT_FALSE(ring[0].isEar) << odd.x() << ", " << odd.y();
        const Points turned{odd, {1, 0}, {0, 1}};
        UpdateVertex(ring, turned.data(), 0);
        EXPECT_FALSE(ring[0].isEar) << odd.x() << ", " << odd.y();
    }
}

struct BlockCase
{
    const char *name;
    QVector2D point;
    bool isEar;
};

///   2            The ear: corner 0, next 1, previous 2. The point stands at
///   | \          position 3, which is linked to neither.
///   |   \    .
///   0 --- 1
const BlockCase BlockCases[] = {
    {"inside", {0.25f, 0.25f}, false},
    {"outside, left", {-1, 0.5f}, true},
    {"outside, below", {0.5f, -1}, true},
    {"outside, beyond the diagonal", {1, 1}, true},
    {"outside, behind corner 0", {-1, -1}, true},
    {"outside, behind corner 1", {3, -1}, true},
    {"outside, behind corner 2", {-1, 3}, true},
    {"upon the edge 0-1", {0.5f, 0}, false},
    {"upon the edge 1-2", {0.5f, 0.5f}, false},
    {"upon the edge 2-0", {0, 0.5f}, false},
    {"in line with 0-1 beyond 1", {2, 0}, true},
    {"in line with 0-1 before 0", {-1, 0}, true},
    {"in line with 2-0 beyond 2", {0, 2}, true},
    {"in line with 2-0 behind 0", {0, -1}, true},
    {"in line with 1-2 behind 1", {2, -1}, true},
    {"exactly upon corner 0", {0, 0}, true},
    {"exactly upon corner 1", {1, 0}, true},
    {"exactly upon corner 2", {0, 1}, true},
    {"upon corner 0 with a negative zero", {-0.0f, 0}, true},
    // Closer than 1e-6 there is no direction from corner 0 to the point, so that the
    // edge 0-1 cannot tell above from below. The other two edges are looked at from
    // corners 1 and 2 and still tell left from right.
    {"1e-7 below corner 0", {0, -1e-7f}, false},
    {"1e-7 left of corner 0", {-1e-7f, 0}, true},
    {"1e-7 right of corner 0", {1e-7f, 0}, false},
    {"1e-5 below corner 0", {0, -1e-5f}, true},
    {"1e-5 left of corner 0", {-1e-5f, 0}, true},
    {"smallest denormal above corner 0", {0, 0x1p-149f}, false},
    {"not a number", {NaN, 0.25f}, true},
    {"not numbers", {NaN, NaN}, true},
    {"infinite", {Infinity, Infinity}, true},
};

TEST(UpdateVertex, LooksForCornersInsideTheEar)
{
    for (const BlockCase &row : BlockCases) {
        SCOPED_TRACE(row.name);
        const Points points{{0, 0}, {1, 0}, {0, 1}, row.point};
        QVector<Vertex> ring = freshRing(4);
        ring[0].prev = 2;
        UpdateVertex(ring, points.data(), 0);
        EXPECT_EQ(ring[0].isEar, row.isEar);
        EXPECT_EQ(ring[0].crossZ, 1.0f);
        EXPECT_EQ(ring[0].cosAngle, 0.0f);
    }
}

/// A blocking corner is found wherever it stands in the ring.
TEST(UpdateVertex, LooksAtEveryPosition)
{
    for (const int count : {4, 5, 8, 9, 16, 17, 33, 100, 1500}) {
        for (int ear = 0; ear < count; ear += 1 + count / 9) {
            const int next = (ear + 1) % count;
            const int prev = (ear + count - 1) % count;
            Points points(static_cast<std::size_t>(count), QVector2D(5, 5));
            points[static_cast<std::size_t>(ear)] = {0, 0};
            points[static_cast<std::size_t>(next)] = {1, 0};
            points[static_cast<std::size_t>(prev)] = {0, 1};
            QVector<Vertex> ring = freshRing(count);
            UpdateVertex(ring, points.data(), ear);
            EXPECT_TRUE(ring[ear].isEar) << count << " corners, ear at " << ear;

            for (int blocker = 0; blocker < count; blocker += 1 + count / 9) {
                if (blocker == ear || blocker == next || blocker == prev)
                    continue;
                points[static_cast<std::size_t>(blocker)] = {0.25f, 0.25f};
                UpdateVertex(ring, points.data(), ear);
                EXPECT_FALSE(ring[ear].isEar)
                    << count << " corners, ear at " << ear << ", blocked by " << blocker;
                points[static_cast<std::size_t>(blocker)] = {5, 5};
            }
        }
    }
}

/// The corner that blocks when it is active does not when it is clipped.
TEST(UpdateVertex, PassesOverClippedCorners)
{
    const Points points{{0, 0}, {1, 0}, {0.25f, 0.25f}, {0, 1}};
    QVector<Vertex> ring = freshRing(4);
    UpdateVertex(ring, points.data(), 0);
    EXPECT_FALSE(ring[0].isEar);
    ring[2].isActive = false;
    UpdateVertex(ring, points.data(), 0);
    EXPECT_TRUE(ring[0].isEar);
}

/// Neighbours are those of the links, not of the positions, and which way round
/// they are linked decides what is convex.
TEST(UpdateVertex, FollowsTheLinks)
{
    const Points points{{9, 9}, {0, 1}, {9, 8}, {0, 0}, {8, 9}, {1, 0}};
    QVector<Vertex> ring = freshRing(6);
    ring[3].next = 5;
    ring[3].prev = 1;
    UpdateVertex(ring, points.data(), 3);
    EXPECT_EQ(ring[3].crossZ, 1.0f);
    EXPECT_TRUE(ring[3].isEar);
    std::swap(ring[3].next, ring[3].prev);
    UpdateVertex(ring, points.data(), 3);
    EXPECT_EQ(ring[3].crossZ, -1.0f);
    EXPECT_FALSE(ring[3].isEar);
}

TEST(UpdateVertex, ChangesNothingElse)
{
    const Points points{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    QVector<Vertex> ring;
    for (int i = 0; i < 4; ++i)
        ring.append({(i + 1) % 4, (i + 3) % 4, 0.25f, 0.75f, i != 3, i == 1});
    const QVector<Vertex> before = ring;

    UpdateVertex(ring, points.data(), 0);

    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(ring[i].next, before[i].next);
        EXPECT_EQ(ring[i].prev, before[i].prev);
        EXPECT_EQ(ring[i].isActive, before[i].isActive);
        EXPECT_EQ(ring[i].crossZ, i == 0 ? 1.0f : 0.25f);
        EXPECT_EQ(ring[i].cosAngle, i == 0 ? 0.0f : 0.75f);
        EXPECT_EQ(ring[i].isEar, i < 2);
    }
}

TEST(UpdateVertex, LeavesACopyOfTheRingAlone)
{
    const Points points{{0, 0}, {1, 0}, {0, 1}};
    QVector<Vertex> ring = freshRing(3);
    const QVector<Vertex> copy = ring;
    UpdateVertex(ring, points.data(), 0);
    EXPECT_TRUE(ring[0].isEar);
    EXPECT_FALSE(copy[0].isEar);
    EXPECT_EQ(copy[0].crossZ, 0.0f);
}

} // namespace
