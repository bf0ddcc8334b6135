#include "support/ForeignContext.h"
#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"

#include <gmock/gmock.h>

#include <climits>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BufferObjectTest : public GLFixture
{};

TEST_F(BufferObjectTest, StartsEmpty)
{
    const auto buffer = _device->createBufferObject();
    EXPECT_NE(buffer->id(), 0u);
    EXPECT_TRUE(buffer->isUsable());
    EXPECT_EQ(buffer->target(), GLenum(GL_ARRAY_BUFFER));
    EXPECT_EQ(buffer->byteCount(), 0);
    EXPECT_FALSE(buffer->uploadFailed());
    EXPECT_TRUE(buffer->download().isEmpty());
}

TEST_F(BufferObjectTest, GivesBackWhatWasUploaded)
{
    const auto buffer = _device->createBufferObject();
    buffer->setTarget(GL_ELEMENT_ARRAY_BUFFER);
    buffer->bind();
    const unsigned short shorts[] = {1, 2, 0xfffe};
    buffer->uploadGLushortData(shorts, 3, GL_STATIC_DRAW);
    EXPECT_EQ(buffer->byteCount(), 3 * 2);
    EXPECT_EQ(buffer->download(), bytesOf<unsigned short>({1, 2, 0xfffe}));

    const unsigned int ints[] = {70000, 0xffffffff};
    buffer->uploadGLuintData(ints, 2, GL_STATIC_DRAW);
    EXPECT_EQ(buffer->byteCount(), 2 * 4);
    EXPECT_EQ(buffer->download(), bytesOf<unsigned int>({70000, 0xffffffff}));

    const float floats[] = {1.5f, -2.0f, 0.0f, 3.0f};
    buffer->uploadArbitraryData(floats, 4, GL_DYNAMIC_DRAW, sizeof(float));
    EXPECT_EQ(buffer->byteCount(), 4 * 4);
    EXPECT_EQ(buffer->download(), bytesOf<float>({1.5f, -2.0f, 0.0f, 3.0f}));
    buffer->release();
    EXPECT_EQ(buffer->target(), GLenum(GL_ELEMENT_ARRAY_BUFFER));
}

TEST_F(BufferObjectTest, PassesTheUsageOn)
{
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1});
    buffer->uploadArbitraryData("abcd", 4, GL_DYNAMIC_READ, 1);
    buffer->bind();
    GLint usage = 0;
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_USAGE, &usage);
    EXPECT_EQ(usage, GL_DYNAMIC_READ);
}

TEST_F(BufferObjectTest, UploadOfNothingEmptiesTheBuffer)
{
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1, 2});
    buffer->uploadArbitraryData(nullptr, 0, GL_STATIC_DRAW, 4);
    EXPECT_EQ(buffer->byteCount(), 0);
    EXPECT_FALSE(buffer->uploadFailed());
    EXPECT_TRUE(buffer->download().isEmpty());
}

TEST_F(BufferObjectTest, TakesANegativeCountForNone)
{
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1});
    const MessageCapture log;
    buffer->uploadGLuintData(nullptr, -1, GL_STATIC_DRAW);
    EXPECT_EQ(buffer->byteCount(), 0);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("BufferObject::upload: -1 elements taken as none"));
}

TEST_F(BufferObjectTest, ReservesRoomWithoutData)
{
    const auto buffer = _device->createBufferObject();
    buffer->uploadArbitraryData(nullptr, 10, GL_STATIC_DRAW, 8);
    EXPECT_EQ(buffer->byteCount(), 80);
    EXPECT_EQ(buffer->download().size(), 80);
}

TEST_F(BufferObjectTest, BindsToItsTargetAndReleasesIt)
{
    const auto buffer = _device->createBufferObject();
    buffer->setTarget(GL_SHADER_STORAGE_BUFFER);
    buffer->bind();
    EXPECT_EQ(integer(GL_SHADER_STORAGE_BUFFER_BINDING), buffer->id());
    EXPECT_EQ(buffer->binding().name, buffer->id());
    buffer->release();
    EXPECT_EQ(integer(GL_SHADER_STORAGE_BUFFER_BINDING), 0u);
}

TEST_F(BufferObjectTest, TransfersLeaveAllBindingsAlone)
{
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    const auto bound = makeBuffer<unsigned>(GL_ELEMENT_ARRAY_BUFFER, {1});
    bound->bind();
    const auto source = makeBuffer<unsigned>(GL_COPY_READ_BUFFER, {2});
    source->bind();
    const auto target = makeBuffer<unsigned>(GL_COPY_WRITE_BUFFER, {3});
    target->bind();

    const auto other = makeBuffer<unsigned>(GL_ELEMENT_ARRAY_BUFFER, {4});
    EXPECT_EQ(other->download(), bytesOf<unsigned>({4}));

    EXPECT_EQ(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING), bound->id());
    EXPECT_EQ(integer(GL_COPY_READ_BUFFER_BINDING), source->id());
    EXPECT_EQ(integer(GL_COPY_WRITE_BUFFER_BINDING), target->id());
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &vertexArray);
}

// 2^31 - 1 elements of 2^30 bytes: OpenGL can count them, no machine can hold them.
TEST_F(BufferObjectTest, SaysWhenMemoryRunsOut)
{
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1});
    const MessageCapture log;
    buffer->uploadArbitraryData(nullptr, INT_MAX, GL_STATIC_DRAW, 1ul << 30);
    EXPECT_TRUE(buffer->uploadFailed());
    EXPECT_EQ(buffer->byteCount(), 0);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ::testing::Contains("OpenGL error GL_OUT_OF_MEMORY (0x505) while uploading "
                                    "2305843008139952128 bytes"));
    buffer->uploadArbitraryData("abcd", 4, GL_STATIC_DRAW, 1);
    EXPECT_FALSE(buffer->uploadFailed());
    EXPECT_EQ(buffer->download(), QByteArray("abcd"));
}

TEST_F(BufferObjectTest, RefusesMoreBytesThanCanBeCounted)
{
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1});
    const MessageCapture log;
    buffer->uploadArbitraryData(nullptr, 4, GL_STATIC_DRAW, 1ul << 61); // 2^63 bytes
    EXPECT_TRUE(buffer->uploadFailed());
    EXPECT_EQ(buffer->byteCount(), 0);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("BufferObject::upload: 4 elements of 2305843009213693952 bytes are "
                            "more than OpenGL can count"));
}

TEST_F(BufferObjectTest, ReportsErrorsWithoutDebugOutput)
{
    glDisable(GL_DEBUG_OUTPUT);
    const auto buffer = _device->createBufferObject();
    const MessageCapture log;
    buffer->uploadArbitraryData("abcd", 4, GL_TRIANGLES, 1);
    EXPECT_TRUE(buffer->uploadFailed());
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("OpenGL error GL_INVALID_ENUM (0x500) while uploading 4 bytes"));
}

TEST_F(BufferObjectTest, TellsEarlierErrorsFromItsOwn)
{
    glDisable(GL_DEBUG_OUTPUT);
    const auto buffer = _device->createBufferObject();
    glEnable(GL_TRIANGLES); // not a capability
    const MessageCapture log;
    buffer->uploadArbitraryData("abcd", 4, GL_STATIC_DRAW, 1);
    EXPECT_FALSE(buffer->uploadFailed());
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("OpenGL error GL_INVALID_ENUM (0x500) was raised before an upload"));
}

TEST_F(BufferObjectTest, DoesNothingWithoutItsContext)
{
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1});
    _context->doneCurrent();
    const MessageCapture log;
    EXPECT_FALSE(buffer->isUsable());
    buffer->bind();
    buffer->release();
    EXPECT_EQ(buffer->binding().name, 0u);
    buffer->restore({0, 1});
    EXPECT_TRUE(buffer->download().isEmpty());
    EXPECT_EQ(buffer->byteCount(), 4) << "nothing was uploaded yet";
    buffer->uploadArbitraryData("abcd", 4, GL_STATIC_DRAW, 1);
    EXPECT_TRUE(buffer->uploadFailed());
    EXPECT_EQ(buffer->byteCount(), 0);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("BufferObject::bind: the buffer's OpenGL context is not current",
                            "BufferObject::release: the buffer's OpenGL context is not current",
                            "BufferObject::download: the buffer's OpenGL context is not current",
                            "BufferObject::upload: the buffer's OpenGL context is not current"));
}

TEST_F(BufferObjectTest, MadeWithoutItsContextHasNoOpenGLObject)
{
    _context->doneCurrent();
    const MessageCapture log;
    const auto buffer = _device->createBufferObject();
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("BufferObject: made while its OpenGL context is not current"));
    ASSERT_TRUE(_context->makeCurrent());
    EXPECT_EQ(buffer->id(), 0u);
    EXPECT_FALSE(buffer->isUsable());
    buffer->uploadArbitraryData("abcd", 4, GL_STATIC_DRAW, 1);
    EXPECT_TRUE(buffer->uploadFailed());
}

TEST(BufferObjectOfOpenGLES, UploadsAndRefusesToDownload)
{
    const auto context = ForeignContext::make(ForeignContext::Kind::OpenGLES);
    ASSERT_TRUE(context);
    ASSERT_TRUE(context->makeCurrent());
    const auto buffer = makeBuffer<float>(GL_ARRAY_BUFFER, {1});
    EXPECT_EQ(buffer->byteCount(), 4);
    const MessageCapture log;
    EXPECT_TRUE(buffer->download().isEmpty());
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("BufferObject::download: OpenGL ES cannot read buffers back"));
}

} // namespace
