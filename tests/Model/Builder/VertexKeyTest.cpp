#include "Builder/CornerHash.h"
#include <OrvModel/VertexKey.h>

#include <gtest/gtest.h>

#include <QtCore/QHash>
#include <QtCore/QVector>

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace OrvTest {
namespace {

using Halvard::Orv::VertexKey;

static_assert(offsetof(VertexKey, indexStreams) == 0);
static_assert(offsetof(VertexKey, corner) == sizeof(void *));
static_assert(offsetof(VertexKey, hash) == sizeof(void *) + 4);

// corner       0  1  2  3  4
// positions    7  8  7  7  9
// normals      1  1  1  2  1
class VertexKeyTest : public ::testing::Test
{
protected:
    const unsigned positions[5] = {7, 8, 7, 7, 9};
    const unsigned normals[5] = {1, 1, 1, 2, 1};
    const QVector<const unsigned *> streams{positions, normals};

    VertexKey key(unsigned corner, unsigned hash = 0) const { return {&streams, corner, hash}; }
};

TEST_F(VertexKeyTest, CornersAreEqualWhenEveryIndexIs)
{
    EXPECT_TRUE(key(0) == key(0));
    EXPECT_TRUE(key(0) == key(2));
    EXPECT_FALSE(key(0) == key(1)) << "another position";
    EXPECT_FALSE(key(0) == key(3)) << "another normal";
    EXPECT_FALSE(key(1) == key(4)) << "8 and 9";
}

TEST_F(VertexKeyTest, HashesAreNotCompared)
{
    EXPECT_TRUE(key(0, 1) == key(2, 2));
    EXPECT_FALSE(key(0, 5) == key(1, 5));
}

TEST_F(VertexKeyTest, EachKeyReadsItsOwnStreams)
{
    const unsigned otherPositions[] = {0, 7};
    const unsigned otherNormals[] = {0, 1};
    const QVector<const unsigned *> otherStreams{otherPositions, otherNormals};
    const VertexKey other{&otherStreams, 1, 0};
    EXPECT_TRUE(key(0) == other);
    EXPECT_TRUE(other == key(2));
    EXPECT_FALSE(other == key(3));
}

TEST_F(VertexKeyTest, TheFirstKeysListSaysHowManyStreamsCount)
{
    const QVector<const unsigned *> positionsOnly{positions};
    const VertexKey first{&positionsOnly, 0, 0};
    EXPECT_TRUE(first == key(3)) << "the normals differ, but the first list has none";
}

TEST_F(VertexKeyTest, CornersOfNoStreamAreAllEqual)
{
    const QVector<const unsigned *> none;
    EXPECT_TRUE((VertexKey{&none, 0, 0} == VertexKey{&none, 4, 0}));
}

TEST_F(VertexKeyTest, QHashIsThePrecomputedHash)
{
    for (const unsigned hash : {0u, 1u, 0x9E3779B9u, 0xFFFFFFFFu})
        EXPECT_EQ(qHash(key(0, hash)), hash);
}

// h becomes h ^ ((h << 6) + (h >> 2) + 0x9E3779B9 + index), attribute by attribute.
TEST_F(VertexKeyTest, TheHashOfATupleCombinesItsIndicesInTheirOrder)
{
    const auto hashOf = [](std::initializer_list<unsigned> tuple) {
        QVector<const unsigned *> list;
        for (const unsigned &index : tuple)
            list.append(&index);
        return Halvard::Orv::hashOfCorner(list, 0);
    };
    EXPECT_EQ(hashOf({}), 0u);
    // 0 ^ (0 + 0 + 0x9E3779B9 + 0)
    EXPECT_EQ(hashOf({0}), 0x9E3779B9u);
    EXPECT_EQ(hashOf({7}), 0x9E3779C0u);
    // 0x9E3779B9 + 0x61C88647 = 2^32: the second summand of the next line is all there is.
    EXPECT_EQ(hashOf({0x61C88647u}), 0u);
    EXPECT_EQ(hashOf({0x61C88647u, 5}), 0x9E3779BEu);
    // 0x9E3779BA << 6 = 0x8DDE6E80 in 32 bits, >> 2 = 0x278DDE6E; with the constant and 2
    // they add up to 0x53A3C6A9, and 0x9E3779BA ^ 0x53A3C6A9 = 0xCD94BF13.
    EXPECT_EQ(hashOf({1, 2}), 0xCD94BF13u);
    EXPECT_NE(hashOf({2, 1}), hashOf({1, 2}));
}

TEST_F(VertexKeyTest, TheHashOfACornerIsThatOfItsIndices)
{
    const unsigned corner1[] = {8, 1};
    const QVector<const unsigned *> tuple{corner1, corner1 + 1};
    EXPECT_EQ(Halvard::Orv::hashOfCorner(streams, 1), Halvard::Orv::hashOfCorner(tuple, 0));
}

TEST_F(VertexKeyTest, WorksAsAHashTableKey)
{
    // All in one bucket: only the comparison tells them apart.
    QHash<VertexKey, unsigned> vertices;
    for (const unsigned corner : {0u, 1u, 3u, 4u})
        vertices.insert(key(corner, 42), corner);
    EXPECT_EQ(vertices.size(), 4);
    EXPECT_EQ(vertices.value(key(2, 42), 99), 0u);
    EXPECT_EQ(vertices.value(key(3, 42), 99), 3u);
}

} // namespace
} // namespace OrvTest
