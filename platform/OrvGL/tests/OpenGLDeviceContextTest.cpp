#include <OrvGL/OpenGLDeviceContext.h>

#include <OrvGL/VertexArrayObject.h>

#include "support/ForeignContext.h"
#include "support/GLFixture.h"

#include <map>
#include <set>
#include <thread>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

TEST(OpenGLDeviceContext, IsNullWhereNoneIsCurrent)
{
    EXPECT_FALSE(OpenGLDeviceContext::current());
    const auto context = makeContext();
    EXPECT_FALSE(OpenGLDeviceContext::current());
}

TEST(OpenGLDeviceContext, IsTheSameEveryTime)
{
    const auto first = makeContext();
    const auto second = makeContext();
    ASSERT_TRUE(first && second && first->makeCurrent());
    const auto firstDevice = OpenGLDeviceContext::current();
    ASSERT_TRUE(firstDevice);
    EXPECT_EQ(OpenGLDeviceContext::current(), firstDevice);
    EXPECT_TRUE(firstDevice->isCurrent());
    ASSERT_TRUE(second->makeCurrent());
    const auto secondDevice = OpenGLDeviceContext::current();
    EXPECT_NE(secondDevice, firstDevice);
    EXPECT_FALSE(firstDevice->isCurrent());
    ASSERT_TRUE(first->makeCurrent());
    EXPECT_EQ(OpenGLDeviceContext::current(), firstDevice);
}

TEST(OpenGLDeviceContext, BelongsToTheThread)
{
    const auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    std::thread([&] {
        EXPECT_FALSE(OpenGLDeviceContext::current());
        EXPECT_FALSE(device->isCurrent());
    }).join();
    context->doneCurrent();
    std::thread([&] {
        ASSERT_TRUE(context->makeCurrent());
        EXPECT_EQ(OpenGLDeviceContext::current(), device);
        context->doneCurrent();
    }).join();
}

TEST(OpenGLDeviceContext, FindsContextsThatOthersMade)
{
    const auto context = ForeignContext::make();
    ASSERT_TRUE(context && context->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    ASSERT_TRUE(device);
    EXPECT_TRUE(device->createBufferObject()->isUsable());
    EXPECT_GE(device->version(), 43);
    context->doneCurrent();
    EXPECT_FALSE(OpenGLDeviceContext::current());
}

TEST(OpenGLDeviceContext, KnowsWhatTheDriverCanDo)
{
    const auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    EXPECT_EQ(device->version(), epoxy_gl_version());
    EXPECT_TRUE(device->hasMultiDrawIndirect());
    EXPECT_EQ(device->hasDrawParameters(), epoxy_has_gl_extension("GL_ARB_shader_draw_parameters"));
    const QString version =
        QString::fromUtf8(reinterpret_cast<const char *>(glGetString(GL_VERSION)));
    EXPECT_TRUE(device->description().startsWith(version));
}

TEST(OpenGLDeviceContext, ExpectsLittleOfOpenGLES)
{
    const auto context = ForeignContext::make(ForeignContext::Kind::OpenGLES);
    ASSERT_TRUE(context && context->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    ASSERT_TRUE(device);
    EXPECT_EQ(device->version(), 0);
    EXPECT_FALSE(device->hasMultiDrawIndirect());
    EXPECT_FALSE(device->hasDrawParameters());
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST(OpenGLDeviceContext, MeetsAContextWithoutChangingItsState)
{
    const auto context = ForeignContext::make();
    ASSERT_TRUE(context && context->makeCurrent());
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    ASSERT_TRUE(OpenGLDeviceContext::current());
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), vertexArray);
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), buffer);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// The system hands out the handles of destroyed contexts again, sooner or later. Where it takes too
// long (some tools delay the reuse of memory) there is nothing to see.
TEST(OpenGLDeviceContext, IsNotMistakenForADestroyedOneWithTheSameHandle)
{
    struct Gone
    {
        QSharedPointer<OpenGLDeviceContext> device;
        QSharedPointer<BufferObject> buffer;
    };
    constexpr int Attempts = 200;
    std::map<EGLContext, Gone> gone;
    for (int i = 0; i < Attempts; ++i) {
        const auto context = ForeignContext::make();
        ASSERT_TRUE(context && context->makeCurrent());
        const auto device = OpenGLDeviceContext::current();
        const auto before = gone.find(context->handle());
        if (before != gone.end()) {
            EXPECT_NE(device, before->second.device);
            EXPECT_FALSE(before->second.device->isCurrent());
            EXPECT_FALSE(before->second.buffer->isUsable());
            return;
        }
        gone[context->handle()] = {device, makeBuffer<int>(GL_ARRAY_BUFFER, {1})};
    }
    GTEST_SKIP() << "no handle came twice";
}

// An OpenGL ES context carries no mark.
TEST(OpenGLDeviceContext, IsNotMistakenForADestroyedOneOfOpenGLES)
{
    constexpr int Attempts = 200;
    std::set<EGLContext> gone;
    for (int i = 0; i < Attempts; ++i) {
        {
            const auto es = ForeignContext::make(ForeignContext::Kind::OpenGLES);
            ASSERT_TRUE(es && es->makeCurrent() && OpenGLDeviceContext::current());
            gone.insert(es->handle());
        }
        const auto context = ForeignContext::make();
        ASSERT_TRUE(context && context->makeCurrent());
        EXPECT_GE(OpenGLDeviceContext::current()->version(), 43);
        if (gone.count(context->handle()) > 0)
            return;
    }
    GTEST_SKIP() << "no handle came twice";
}

TEST(OpenGLDeviceContext, MakesVertexArraysWithoutBeingCurrent)
{
    const auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    context->doneCurrent();
    const auto first = device->createVertexArrayObject();
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->attributes().isEmpty());
    EXPECT_NE(device->createVertexArrayObject(), first);
}

} // namespace
