// A builder whose memory ends, and one that is told of more than there can be: neither
// writes where it must not, nor gives a model by halves.
#include "support/FailingMalloc.h"
#include "support/UploadFixture.h"

#include <gmock/gmock.h>

#include <limits>
#include <new>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::IsEmpty;

namespace {

enum class Failure
{
    Throws,
    GivesNull,
    GivesLess
};

/// The library's own streams, until one is not to be had.
class FailingAllocator : public ModelDataArrayAllocator
{
public:
    explicit FailingAllocator(Failure failure) : _failure(failure) {}

    /// After `succeeding` more streams the next one fails, and those behind it do not.
    void failOnceAfter(long succeeding) { _remaining = succeeding; }
    bool hasFailed() const { return _remaining < 0; }

    ModelDataStream *alloc(unsigned type, unsigned long count) override
    {
        if (_remaining < 0 || _remaining-- > 0)
            return ModelDataArrayAllocator::alloc(type, count);
        if (_failure == Failure::Throws)
            throw std::bad_alloc();
        return _failure == Failure::GivesNull
                   ? nullptr
                   : ModelDataArrayAllocator::alloc(type, count > 0 ? count - 1 : 0);
    }

private:
    Failure _failure;
    long _remaining = std::numeric_limits<long>::max();
};

class BuilderMemory : public UploadFixture
{
protected:
    /// Three batches, generated normals, vertices to weld and a pentagon.
    void fill(ModelBuilder &builder) const
    {
        addFaces(builder, {3, 3, 4, 5});
        addAttribute(builder, vertexName(), 3,
                     {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 0, .5f, 2, 0},
                     {0, 1, 2, 4, 2, 3, 0, 1, 2, 3, 0, 1, 2, 5, 3});
        addAttribute(builder, texCoordName(), 2, {0, 0, 1, 1},
                     {0, 1, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0});
        builder.generateNormals(normalName());
        addGroup(builder, QStringLiteral("a"), {0, 1}, 1);
        addGroup(builder, QStringLiteral("b"), {2}, 2);
        addGroup(builder, QStringLiteral("c"), {3}, 4);
    }

    static void uploadTo(GPUModel &target, ModelBuilder &builder)
    {
        builder.upload(&target, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                       GL_TRIANGLES);
    }

    static void expectWhole(const GPUModel &uploaded)
    {
        ASSERT_EQ(uploaded.bundleCount(), 3);
        std::vector<unsigned> counts;
        for (int i = 0; i < 3; ++i) {
            const DrawBuffers &bundle = *uploaded.bundle(i);
            EXPECT_EQ(bundle.commands().size(), 1);
            counts.push_back(bundle.commands().at(0).count);
            EXPECT_EQ(bundle.indexCount(), 6 + 6 + 9);
            EXPECT_EQ(bundle.VAO()->attributes().size(), 3);
            EXPECT_EQ(vertexAttribute(bundle, normalName()).buffer->byteCount(),
                      12 * bundle.vertexCount());
        }
        EXPECT_THAT(counts, ::testing::UnorderedElementsAre(6, 6, 9));
    }
};

/// Each stream that an upload asks for fails once. Afterwards there is memory again, and
/// the next upload of the same builder must not find anything half done.
TEST_F(BuilderMemory, AnUploadAfterOneThatFailedIsWhole)
{
    for (const Failure failure : {Failure::Throws, Failure::GivesNull, Failure::GivesLess}) {
        bool failed = true;
        for (long succeeding = 0; failed; ++succeeding) {
            SCOPED_TRACE(testing::Message() << int(failure) << " after " << succeeding);
            const auto allocator = QSharedPointer<FailingAllocator>::create(failure);
            ModelBuilder builder(allocator, 7);
            fill(builder);
            allocator->failOnceAfter(succeeding);
            GPUModel first;
            bool threw = false;
            try {
                uploadTo(first, builder);
            } catch (const std::bad_alloc &) {
                threw = true;
            }
            failed = allocator->hasFailed();
            EXPECT_EQ(threw, failed && failure == Failure::Throws);
            if (first.bundleCount() > 0)
                expectWhole(first);
            allocator->failOnceAfter(std::numeric_limits<long>::max());
            GPUModel second;
            uploadTo(second, builder);
            expectWhole(second);
            ASSERT_LT(succeeding, 100);
        }
    }
}

/// Every stream that is asked for while filling fails once: the rest goes on.
TEST_F(BuilderMemory, FillingGoesOnWithoutAStream)
{
    for (const Failure failure : {Failure::GivesNull, Failure::GivesLess}) {
        for (long succeeding = 0; succeeding < 12; ++succeeding) {
            const auto allocator = QSharedPointer<FailingAllocator>::create(failure);
            allocator->failOnceAfter(succeeding);
            ModelBuilder builder(allocator, 7);
            fill(builder);
            builder.buildGPUFriendlyStreams(succeeding % 2 == 0);
            GPUModel target;
            uploadTo(target, builder);
            EXPECT_LE(target.bundleCount(), 3);
        }
    }
}

/// An attribute or a group is there with all of its streams, or as it was before.
TEST_F(BuilderMemory, WhatCannotBeMadeIsNotBegun)
{
    const auto allocator = QSharedPointer<FailingAllocator>::create(Failure::Throws);
    ModelBuilder builder(allocator, 0);
    for (const long succeeding : {0, 1}) {
        allocator->failOnceAfter(succeeding);
        EXPECT_THROW(builder.createVertexAttribute(vertexName(), 3, GL_FLOAT, 0, 0),
                     std::bad_alloc);
        EXPECT_FALSE(builder.hasVertexAttribute(vertexName()));
    }
    allocator->failOnceAfter(0);
    EXPECT_THROW(builder.createMaterialGroup(QStringLiteral("a"), {}, -1, 0), std::bad_alloc);
    EXPECT_FALSE(builder.hasMaterialGroup(QStringLiteral("a")));
}

/// Numbers of elements are cut to 32 bits of bytes when a stream is made; whoever asked
/// for more must not use what was cut off. The address sanitizer watches.
TEST_F(BuilderMemory, CountsBeyondTheStreamsWriteNothingOutside)
{
    constexpr unsigned long gig = 1ul << 30;
    const struct
    {
        const char *name;
        int components;
        unsigned long valueCount; ///< that the attribute begins with
        unsigned long indexCount;
    } rows[] = {
        {"2^32 bytes of values, cut to none", 3, gig, 0},
        {"2^32 bytes and a value", 3, gig + 3, 0},
        {"2^32 bytes of indices", 3, 0, gig},
        {"2^31 bytes, a negative number", 3, gig / 2, gig / 2},
        {"2^64 bytes and one value", 3, (1ul << 62) + 3, (1ul << 62) + 1},
        {"a value of 2^31 - 4 bytes", 0x1fffffff, 0, 0},
        {"values of more than 2^31 bytes", 0x3fffffff, 0, 0},
        {"values of the largest number of floats", 0x7fffffff, 0, 0},
        {"values whose corners pass 2^31 bytes", 1 << 28, 0, 0},
        {"values whose corners pass 2^32 bytes", (1 << 28) + 1, 0, 0},
        {"no components", 0, 0, 0},
        {"a negative number of components", -3, 0, 0},
        {"the smallest number of components", std::numeric_limits<int>::min(), 0, 0},
    };
    const std::vector<std::vector<unsigned>> faces = {
        {3}, {0x80000003u, 0x80000000u}, {0xffffffffu, 4}, {0x7fffffffu}, {0xffffffffu}};
    for (const auto &row : rows) {
        for (const std::vector<unsigned> &cornerCounts : faces) {
            SCOPED_TRACE(testing::Message() << row.name << ", face of " << cornerCounts[0]);
            ModelBuilder builder({}, 0);
            const float values[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
            const unsigned indices[] = {0, 1, 2};
            builder.createVertexAttribute(vertexName(), row.components, GL_FLOAT, row.valueCount,
                                          row.indexCount);
            builder.addValuesToVertexAttribute(vertexName(), 9, values, GL_FLOAT);
            builder.addIndicesToVertexAttribute(vertexName(), 3, indices);
            addFaces(builder, cornerCounts);
            addGroup(builder, a, {0, 1, 0xffffffffu});
            try {
                builder.buildGPUFriendlyStreams(true);
                upload(builder);
            } catch (const std::bad_alloc &) {
                // Some are too large for the library's streams, and say so.
            }
        }
    }
}

/// A value of a gigabyte, of which there is none: nobody has to make one of zeros.
TEST_F(BuilderMemory, ComponentsWithoutCornersTakeNoMemory)
{
    if (!FailingMalloc::isPossible())
        GTEST_SKIP() << "memory cannot be made to end here";
    for (const bool merge : {true, false}) {
        ModelBuilder builder({}, 0);
        builder.createVertexAttribute(vertexName(), 1 << 28, GL_FLOAT, 0, 0);
        const FailingMalloc nothingLarge(0);
        EXPECT_NO_THROW(builder.buildGPUFriendlyStreams(merge));
        EXPECT_EQ(FailingMalloc::failures(), 0);
    }
}

/// Just below 2^31 bytes there is no room for the header of a byte array.
TEST_F(BuilderMemory, StreamsOfTheLargestLengthsThrow)
{
    ModelDataArray array(GL_UNSIGNED_BYTE, 3);
    for (const unsigned long bytes :
         {(1ul << 31) - 1, (1ul << 31) - 25, (1ul << 32) - 1 + (1ul << 31)})
        EXPECT_THROW(array.resize(bytes), std::bad_alloc);
    EXPECT_EQ(array.size(), 3u);
    EXPECT_THROW(ModelDataArray(GL_UNSIGNED_BYTE, (1ul << 31) - 1), std::bad_alloc);
}

TEST_F(BuilderMemory, AppendsOfMoreThanAnythingAreLeftOut)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    const float value = 1;
    const unsigned index = 0;
    for (const unsigned long count : {1ul << 29, 1ul << 30, 1ul << 62, ~0ul}) {
        builder.addValuesToVertexAttribute(vertexName(), count, &value, GL_FLOAT);
        builder.addIndicesToVertexAttribute(vertexName(), count, &index);
        builder.addVertexCountsToFaces(count, &index);
        builder.addFacesToMaterialGroup(a, count, &index, QString());
    }
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_EQ(bundle().vertexCount(), 4u);
    EXPECT_EQ(bundle().indexCount(), 6);
}

} // namespace
