#include "support/ModelBuilding.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvModel/ModelDataStream.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <numeric>
#include <type_traits>

namespace OrvTest {
namespace {

using Halvard::Orv::ModelDataArray;
using Halvard::Orv::ModelDataArrayAllocator;
using Halvard::Orv::ModelDataStream;
using Halvard::Orv::ModelDataStreamAllocator;
using ::testing::ElementsAre;

static_assert(std::is_abstract_v<ModelDataStream>);
static_assert(std::has_virtual_destructor_v<ModelDataStream>);
static_assert(std::is_abstract_v<ModelDataStreamAllocator>);
static_assert(std::has_virtual_destructor_v<ModelDataStreamAllocator>);
static_assert(sizeof(ModelDataStream) == sizeof(void *), "a virtual table and no data members");

TEST(ModelDataStreamTest, TypeSizes)
{
    struct Row
    {
        const char *name;
        unsigned type;
        unsigned long bytes;
    };
    const Row rows[] = {
        {"below the table", 0x13FF, 0},
        {"GL_BYTE", 0x1400, 1},
        {"GL_UNSIGNED_BYTE", 0x1401, 1},
        {"GL_SHORT", 0x1402, 2},
        {"GL_UNSIGNED_SHORT", 0x1403, 2},
        {"GL_INT", 0x1404, 4},
        {"GL_UNSIGNED_INT", 0x1405, 4},
        {"GL_FLOAT", 0x1406, 4},
        {"GL_2_BYTES is no element type", 0x1407, 0},
        {"GL_3_BYTES is no element type", 0x1408, 0},
        {"GL_4_BYTES is no element type", 0x1409, 0},
        {"GL_DOUBLE", 0x140A, 8},
        {"GL_HALF_FLOAT", 0x140B, 2},
        {"above the table", 0x140C, 0},
        {"zero", 0, 0},
        {"largest number", 0xFFFFFFFF, 0},
    };
    for (const Row &row : rows)
        EXPECT_EQ(ModelDataStream::typeSize(row.type), row.bytes) << row.name;
}

#if defined(__GXX_ABI_VERSION)
/// Place of a virtual function in the table, counted from its begin. The common
/// C++ ABI keeps 1 plus the byte offset in a pointer to a virtual member.
template <typename Member>
std::size_t slotOf(Member member)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void *);
}

// Streams compiled against these headers by a host keep working only as long as
// the operations keep their places.
TEST(ModelDataStreamTest, OperationsKeepTheirPlacesInTheVirtualTable)
{
    // 0 and 1 are the destructor: without and with freeing the memory.
    EXPECT_EQ(slotOf(&ModelDataStream::type), 2u);
    EXPECT_EQ(slotOf(&ModelDataStream::setType), 3u);
    EXPECT_EQ(slotOf(&ModelDataStream::isEmpty), 4u);
    EXPECT_EQ(slotOf(&ModelDataStream::size), 5u);
    EXPECT_EQ(slotOf(&ModelDataStream::resize), 6u);
    EXPECT_EQ(slotOf(&ModelDataStream::byteCount), 7u);
    EXPECT_EQ(slotOf(&ModelDataStream::data), 8u);
    EXPECT_EQ(slotOf(&ModelDataStream::setData), 9u);
    EXPECT_EQ(slotOf(&ModelDataStream::append), 10u);
    EXPECT_EQ(slotOf(&ModelDataStreamAllocator::alloc), 2u);
}
#endif

TEST(ModelDataStreamTest, BaseAppendAsksForTheSizeThenResizesThenSetsTheData)
{
    RecordingAllocator allocator;
    const QSharedPointer<ModelDataStream> stream(allocator.alloc(typeUnsignedInt, 4));
    const unsigned oldValues[] = {1, 2, 3, 4};
    const unsigned newValues[] = {5, 6, 7};
    stream->setData(0, 4, oldValues);
    allocator.log().clear();

    stream->append(3, newValues);

    EXPECT_THAT(allocator.log().lines(),
                ElementsAre("s0.append 3", "s0.size", "s0.resize 7", "s0.setData 4 3"));
    EXPECT_THAT(uints(stream), ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST(ModelDataStreamTest, BaseByteCountAndIsEmptyUseTheVirtualOperations)
{
    RecordingAllocator allocator;
    const std::unique_ptr<ModelDataStream> stream(allocator.alloc(typeDouble, 3));
    EXPECT_FALSE(stream->isEmpty());
    EXPECT_EQ(stream->byteCount(), 24u); // 3 x 8
    stream->resize(0);
    EXPECT_TRUE(stream->isEmpty());
    EXPECT_EQ(stream->byteCount(), 0u);
    EXPECT_EQ(allocator.log().count("s0.size"), 4);
    EXPECT_EQ(allocator.log().count("s0.type"), 2);
}

TEST(ModelDataArrayTest, HoldsAsManyElementsAsAsked)
{
    struct Row
    {
        const char *name;
        unsigned type;
        unsigned long count;
        unsigned long bytes;
    };
    const Row rows[] = {
        {"none", typeFloat, 0, 0},
        {"bytes", typeUnsignedByte, 5, 5},
        {"shorts", typeUnsignedShort, 5, 10},
        {"floats", typeFloat, 5, 20},
        {"doubles", typeDouble, 5, 40},
        {"half floats", typeHalfFloat, 5, 10},
    };
    for (const Row &row : rows) {
        const ModelDataArray array(row.type, row.count);
        EXPECT_EQ(array.type(), row.type) << row.name;
        EXPECT_EQ(array.size(), row.count) << row.name;
        EXPECT_EQ(array.byteCount(), row.bytes) << row.name;
        EXPECT_EQ(array.isEmpty(), row.count == 0) << row.name;
    }
}

TEST(ModelDataArrayTest, AppendsToAnEmptyArray)
{
    const auto array = QSharedPointer<ModelDataArray>::create(typeUnsignedInt, 0ul);
    EXPECT_TRUE(array->isEmpty());

    const unsigned values[] = {10, 20, 30};
    array->append(3, values);

    EXPECT_FALSE(array->isEmpty());
    EXPECT_EQ(array->size(), 3u);
    EXPECT_EQ(array->byteCount(), 12u);
    EXPECT_THAT(uints(array), ElementsAre(10, 20, 30));
}

TEST(ModelDataArrayTest, AppendsAfterTheInitialElements)
{
    const auto array = QSharedPointer<ModelDataArray>::create(typeUnsignedInt, 2ul);
    const unsigned first[] = {1, 2};
    array->setData(0, 2, first);
    const unsigned more[] = {3};
    array->append(1, more);
    EXPECT_THAT(uints(array), ElementsAre(1, 2, 3));
}

TEST(ModelDataArrayTest, AppendsNothing)
{
    ModelDataArray array(typeFloat, 1);
    array.append(0, nullptr);
    EXPECT_EQ(array.size(), 1u);
}

TEST(ModelDataArrayTest, DataAndSetDataCountInElements)
{
    const auto array = QSharedPointer<ModelDataArray>::create(typeUnsignedShort, 5ul);
    const std::uint16_t start[] = {1, 2, 3, 4, 5};
    array->setData(0, 5, start);
    const std::uint16_t middle[] = {20, 30};
    array->setData(1, 2, middle);
    *static_cast<std::uint16_t *>(array->data(4)) = 50;

    EXPECT_THAT(elements<std::uint16_t>(array), ElementsAre(1, 20, 30, 4, 50));
    EXPECT_EQ(static_cast<char *>(array->data(3)) - static_cast<char *>(array->data(0)), 3 * 2);
    EXPECT_EQ(static_cast<char *>(array->data(5)) - static_cast<char *>(array->data(0)), 5 * 2);
}

TEST(ModelDataArrayTest, ResizeKeepsTheFirstElements)
{
    const auto array = QSharedPointer<ModelDataArray>::create(typeUnsignedInt, 0ul);
    const unsigned values[] = {1, 2, 3, 4};
    array->append(4, values);

    array->resize(2);
    EXPECT_THAT(uints(array), ElementsAre(1, 2));

    array->resize(3);
    EXPECT_EQ(array->size(), 3u);
    EXPECT_EQ(uints(array)[0], 1u);
    EXPECT_EQ(uints(array)[1], 2u);

    array->resize(0);
    EXPECT_TRUE(array->isEmpty());
    EXPECT_EQ(array->type(), typeUnsignedInt);
}

TEST(ModelDataArrayTest, SetTypeKeepsTheNumberOfElementsAndTheBytes)
{
    struct Row
    {
        const char *name;
        unsigned from;
        unsigned to;
        unsigned long bytesAfter;
    };
    const Row rows[] = {
        {"cut off", typeFloat, typeUnsignedShort, 10},
        {"extended", typeUnsignedShort, typeFloat, 20},
        {"of the same width", typeFloat, typeUnsignedInt, 20},
        {"to no element type", typeFloat, 0x1407, 0},
    };
    for (const Row &row : rows) {
        ModelDataArray array(row.from, 5);
        const unsigned long bytesBefore = array.byteCount();
        auto *bytes = static_cast<unsigned char *>(array.data(0));
        std::iota(bytes, bytes + bytesBefore, static_cast<unsigned char>(1));

        array.setType(row.to);

        EXPECT_EQ(array.type(), row.to) << row.name;
        EXPECT_EQ(array.size(), row.bytesAfter ? 5u : 0u) << row.name;
        ASSERT_EQ(array.byteCount(), row.bytesAfter) << row.name;
        const auto *after = static_cast<const unsigned char *>(array.data(0));
        for (unsigned long i = 0; i < std::min(bytesBefore, row.bytesAfter); ++i)
            EXPECT_EQ(after[i], i + 1) << row.name << ", byte " << i;
    }
}

/// Notes which of its virtual operations are called, and can keep its bytes.
class WatchedArray : public ModelDataArray
{
public:
    using ModelDataArray::ModelDataArray;

    unsigned long size() const override
    {
        ++sizeCalls;
        return ModelDataArray::size();
    }
    void resize(unsigned long count) override
    {
        resizedTo.push_back(count);
        if (!keepsBytes)
            ModelDataArray::resize(count);
    }

    mutable int sizeCalls = 0;
    std::vector<unsigned long> resizedTo;
    bool keepsBytes = false;
};

TEST(ModelDataArrayTest, SetTypeToTheSameTypeDoesNothing)
{
    WatchedArray array(typeFloat, 5);
    const float values[] = {1, 2, 3, 4, 5};
    array.setData(0, 5, values);

    array.setType(typeFloat);

    EXPECT_EQ(array.sizeCalls, 0);
    EXPECT_THAT(array.resizedTo, ElementsAre());
    EXPECT_EQ(std::memcmp(array.data(0), values, sizeof values), 0);
}

TEST(ModelDataArrayTest, SetTypeHonoursASubclassThatOverridesSizeAndResize)
{
    WatchedArray array(typeFloat, 5);
    array.setType(typeUnsignedShort);
    EXPECT_EQ(array.sizeCalls, 1);
    EXPECT_THAT(array.resizedTo, ElementsAre(5));
}

// Twelve bytes are three floats. Read as doubles they are one and a half: the
// byte count is still twelve, not 1 x 8.
TEST(ModelDataArrayTest, ByteCountIsTheLengthOfTheBytes)
{
    WatchedArray array(typeFloat, 3);
    array.keepsBytes = true;
    array.setType(typeDouble);
    EXPECT_EQ(array.byteCount(), 12u);
    EXPECT_EQ(array.size(), 1u);
    EXPECT_FALSE(array.isEmpty());

    // Four bytes are no double at all, yet the array is not empty.
    WatchedArray small(typeFloat, 1);
    small.keepsBytes = true;
    small.setType(typeDouble);
    EXPECT_EQ(small.size(), 0u);
    EXPECT_FALSE(small.isEmpty());
}

TEST(ModelDataArrayTest, HasNoElementsOfATypeWithoutASize)
{
    for (const unsigned type : {0x1407u, 0x1408u, 0x1409u, 0x13FFu, 0x140Cu, 0u}) {
        ModelDataArray array(type, 7);
        EXPECT_EQ(array.size(), 0u) << type;
        EXPECT_EQ(array.byteCount(), 0u) << type;
        EXPECT_TRUE(array.isEmpty()) << type;
        const float value = 1;
        array.append(1, &value);
        EXPECT_EQ(array.size(), 0u) << type;
    }
}

// A byte array's length is a signed 32-bit number.
TEST(ModelDataArrayTest, AnAppendOfALargerByteCountIsCutToThirtyTwoBits)
{
    struct Row
    {
        const char *name;
        unsigned type;
        unsigned long count;
        unsigned long size;
    };
    // Only what remains is read: there is no more than one element.
    const Row rows[] = {
        {"2^31 bytes, a negative number", typeFloat, 1ul << 29, 1},
        {"2^32 - 1 bytes, the largest negative number", typeUnsignedByte, (1ul << 32) - 1, 1},
        {"2^32 bytes, none", typeUnsignedByte, 1ul << 32, 1},
        {"2^32 bytes and one", typeUnsignedByte, (1ul << 32) + 1, 2},
        {"2^64 bytes and eight", typeDouble, (1ul << 61) + 1, 2},
    };
    for (const Row &row : rows) {
        ModelDataArray array(row.type, 1);
        const double value = 0;
        array.append(row.count, &value);
        EXPECT_EQ(array.size(), row.size) << row.name;
    }
}

/// Not even read: none of these many bytes exist.
TEST(ModelDataArrayTest, AnAppendWithoutRoomThrowsAndLeavesTheArrayAsItWas)
{
    ModelDataArray array(typeUnsignedByte, 3);
    const unsigned char value = 0;
    const unsigned long largest = std::numeric_limits<int>::max();
    // A byte array needs some for its header, and one for a zero.
    const unsigned long room = largest - sizeof(QByteArrayData) - 1;
    for (const unsigned long count : {largest, room + 1, room - 2})
        EXPECT_THROW(array.append(count, &value), std::bad_alloc) << count;
    EXPECT_EQ(array.size(), 3u);
}

TEST(ModelDataArrayTest, ALargerByteCountIsCutToThirtyTwoBits)
{
    ModelDataArray array(typeUnsignedByte, 0);
    array.resize((1ul << 32) + 3);
    EXPECT_EQ(array.size(), 3u);
    EXPECT_EQ(ModelDataArray(typeUnsignedShort, (1ul << 31) + 3).size(), 3u); // 2^32 + 6 bytes
}

TEST(ModelDataArrayTest, CopiesDoNotSeeEachOthersWrites)
{
    const std::uint16_t start[] = {1, 2, 3};
    const std::uint16_t other = 9;
    struct Row
    {
        const char *name;
        void (*write)(ModelDataArray &array, const void *source);
        std::vector<std::uint16_t> written;
    };
    const Row rows[] = {
        {"data",
         [](ModelDataArray &array, const void *source) { std::memcpy(array.data(1), source, 2); },
         {1, 9, 3}},
        {"setData",
         [](ModelDataArray &array, const void *source) { array.setData(1, 1, source); },
         {1, 9, 3}},
        {"append",
         [](ModelDataArray &array, const void *source) { array.append(1, source); },
         {1, 2, 3, 9}},
        {"resize", [](ModelDataArray &array, const void *) { array.resize(2); }, {1, 2}},
    };
    for (const Row &row : rows) {
        const auto original = QSharedPointer<ModelDataArray>::create(typeUnsignedShort, 3ul);
        original->setData(0, 3, start);
        const auto copy = QSharedPointer<ModelDataArray>::create(*original);
        row.write(*copy, &other);
        EXPECT_EQ(elements<std::uint16_t>(copy), row.written) << row.name;
        EXPECT_THAT(elements<std::uint16_t>(original), ElementsAre(1, 2, 3)) << row.name;
    }
}

TEST(ModelDataArrayAllocatorTest, HandsOutArraysOfTheTypeAndSize)
{
    ModelDataArrayAllocator allocator;
    ModelDataStreamAllocator &interface = allocator;
    const std::unique_ptr<ModelDataStream> first(interface.alloc(typeUnsignedShort, 4));
    const std::unique_ptr<ModelDataStream> second(interface.alloc(typeUnsignedShort, 4));
    ASSERT_TRUE(first);
    EXPECT_NE(dynamic_cast<ModelDataArray *>(first.get()), nullptr);
    EXPECT_EQ(first->type(), typeUnsignedShort);
    EXPECT_EQ(first->size(), 4u);
    EXPECT_NE(first.get(), second.get());
}

} // namespace
} // namespace OrvTest
