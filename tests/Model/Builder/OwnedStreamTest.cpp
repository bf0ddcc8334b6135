#include "Builder/OwnedStream.h"

#include "support/ModelBuilding.h"
#include "support/StreamContents.h"

#include <gmock/gmock.h>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

GrowArray<float> arrayOf(const std::vector<float> &values)
{
    GrowArray<float> array;
    for (const float value : values)
        array.append(value);
    return array;
}

TEST(OwnedStreamTest, IsTheArray)
{
    GrowArray<float> array = arrayOf({1, 2, 3});
    const float *const memory = array.data();
    const auto stream = OwnedStream<float>::make(typeFloat, std::move(array));
    EXPECT_EQ(stream->type(), typeFloat);
    EXPECT_EQ(stream->size(), 3u);
    EXPECT_EQ(stream->byteCount(), 12u);
    EXPECT_FALSE(stream->isEmpty());
    EXPECT_EQ(stream->data(0), memory);
    EXPECT_EQ(stream->data(2), memory + 2);
    EXPECT_THAT(floats(stream), areFloats({1, 2, 3}));
}

TEST(OwnedStreamTest, GrowsAndShrinksLikeAnyStream)
{
    const auto stream = OwnedStream<float>::make(typeFloat, arrayOf({1, 2, 3}));
    const float more[] = {4, 5};
    stream->append(2, more);
    EXPECT_THAT(floats(stream), areFloats({1, 2, 3, 4, 5}));
    stream->setData(1, 2, more);
    stream->resize(4);
    EXPECT_THAT(floats(stream), areFloats({1, 4, 5, 4}));
    stream->resize(0);
    EXPECT_TRUE(stream->isEmpty());
    stream->setData(0, 0, nullptr);
}

TEST(OwnedStreamTest, KeepsItsElementCountWhenTheTypeChanges)
{
    const auto stream = OwnedStream<float>::make(typeFloat, arrayOf({1, 2, 3}));
    stream->setType(typeUnsignedShort);
    EXPECT_EQ(stream->size(), 3u);
    EXPECT_EQ(stream->byteCount(), 6u);
    stream->setType(typeDouble);
    EXPECT_EQ(stream->size(), 3u);
    EXPECT_EQ(stream->byteCount(), 24u);
    const double value = 0.5;
    stream->setData(2, 1, &value);
    EXPECT_EQ(static_cast<double *>(stream->data(0))[2], 0.5);
}

TEST(OwnedStreamTest, HasNoElementsOfATypeWithoutASize)
{
    const auto stream = OwnedStream<float>::make(typeFloat, arrayOf({1, 2, 3}));
    stream->setType(0);
    EXPECT_EQ(stream->size(), 0u);
    EXPECT_EQ(stream->byteCount(), 0u);
}

TEST(OwnedStreamTest, HasRoomForPartsOfTheArraysElements)
{
    const auto stream = OwnedStream<float>::make(typeUnsignedShort, {});
    const quint16 value = 7;
    stream->append(1, &value);
    ASSERT_TRUE(stream->data(0));
    EXPECT_EQ(*static_cast<quint16 *>(stream->data(0)), 7u);
}

TEST(OwnedStreamTest, WithoutElements)
{
    const auto stream = OwnedStream<quint32>::make(typeUnsignedInt, {});
    EXPECT_TRUE(stream->isEmpty());
    EXPECT_EQ(stream->byteCount(), 0u);
    stream->append(0, nullptr);
    EXPECT_TRUE(stream->isEmpty());
}

} // namespace
