// OpenGL objects outlive and are outlived by their contexts, in every order, on every thread. Names
// of OpenGL objects are small numbers that come again in every context: deleting one in the wrong
// context hits somebody else's object.

#include <OrvGL/Texture.h>
#include <OrvGL/VertexArrayObject.h>

#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/Shaders.h"

#include <gmock/gmock.h>

#include <QtCore/QVector>

#include <functional>
#include <memory>
#include <thread>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::IsEmpty;

struct Kind
{
    const char *name;
    /// Makes an object in the current context; calling the result destroys it.
    std::function<std::function<void()>(GLuint *name)> make;
    std::function<bool(GLuint name)> exists;
};

std::function<void()> makeBufferObject(GLuint *name)
{
    auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {1});
    *name = buffer->id();
    return [buffer]() mutable { buffer.reset(); };
}

std::function<void()> makeTexture(GLuint *name)
{
    auto texture = std::make_shared<Texture>(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    texture->bind(); // a name becomes an object when it is first bound
    texture->release();
    *name = texture->id();
    return [texture]() mutable { texture.reset(); };
}

std::function<void()> makeVertexArray(GLuint *name)
{
    auto vertexArray = std::make_shared<VertexArrayObject>();
    const GLuint program = linkProgram("#version 430 core\nvoid main() { gl_Position = vec4(0); }",
                                       "#version 430 core\nvoid main() {}");
    vertexArray->bind(program);
    *name = integer(GL_VERTEX_ARRAY_BINDING);
    vertexArray->release();
    glDeleteProgram(program);
    return [vertexArray]() mutable { vertexArray.reset(); };
}

const QVector<Kind> kinds = {
    {"buffer", makeBufferObject, [](GLuint name) { return glIsBuffer(name) == GL_TRUE; }},
    {"texture", makeTexture, [](GLuint name) { return glIsTexture(name) == GL_TRUE; }},
    {"vertex array", makeVertexArray, [](GLuint name) { return glIsVertexArray(name) == GL_TRUE; }},
};

class ObjectLifetimeTest : public GLFixture
{};

TEST_F(ObjectLifetimeTest, AnObjectIsDeletedAtOnceWhereItsContextIsCurrent)
{
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        GLuint name = 0;
        const auto destroy = kind.make(&name);
        ASSERT_TRUE(kind.exists(name));
        destroy();
        EXPECT_FALSE(kind.exists(name));
    }
}

TEST_F(ObjectLifetimeTest, AnObjectDestroyedWithoutContextIsDeletedWhenItsContextComesBack)
{
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        GLuint name = 0;
        const auto destroy = kind.make(&name);
        _context->doneCurrent();
        destroy();
        ASSERT_TRUE(_context->makeCurrent());
        EXPECT_TRUE(kind.exists(name)) << "nobody could have deleted it yet";
        OpenGLDeviceContext::current();
        EXPECT_FALSE(kind.exists(name));
    }
}

TEST_F(ObjectLifetimeTest, AnObjectDestroyedInAnotherContextLeavesThatOnesObjectsAlone)
{
    const auto other = makeContext();
    ASSERT_TRUE(other);
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        ASSERT_TRUE(_context->makeCurrent());
        GLuint name = 0;
        const auto destroy = kind.make(&name);
        ASSERT_TRUE(other->makeCurrent());
        GLuint otherName = 0;
        const auto destroyOther = kind.make(&otherName);
        ASSERT_EQ(otherName, name) << "else the test shows nothing";
        destroy();
        OpenGLDeviceContext::current();
        EXPECT_TRUE(kind.exists(otherName));
        ASSERT_TRUE(_context->makeCurrent());
        OpenGLDeviceContext::current();
        EXPECT_FALSE(kind.exists(name));
        destroyOther();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }
}

TEST_F(ObjectLifetimeTest, AnObjectMayOutliveItsContext)
{
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        auto gone = makeContext();
        ASSERT_TRUE(gone && gone->makeCurrent());
        GLuint name = 0;
        const auto destroy = kind.make(&name);
        gone.reset();

        ASSERT_TRUE(_context->makeCurrent());
        GLuint ownName = 0;
        const auto destroyOwn = kind.make(&ownName);
        const MessageCapture log;
        destroy();
        OpenGLDeviceContext::current();
        EXPECT_TRUE(kind.exists(ownName));
        EXPECT_THAT(log.messages(), IsEmpty());
        destroyOwn();
        EXPECT_FALSE(kind.exists(ownName));
    }
}

TEST_F(ObjectLifetimeTest, AnObjectMayBeDestroyedWhenThereIsNoContextLeft)
{
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        ASSERT_TRUE(_context || ((_context = makeContext()) && _context->makeCurrent()));
        GLuint name = 0;
        const auto destroy = kind.make(&name);
        _context.reset();
        const MessageCapture log;
        destroy();
        EXPECT_THAT(log.messages(), IsEmpty());
    }
}

TEST_F(ObjectLifetimeTest, AnObjectMayBeDestroyedOnAnotherThread)
{
    for (const Kind &kind : kinds) {
        SCOPED_TRACE(kind.name);
        GLuint name = 0;
        const auto destroy = kind.make(&name);
        std::thread([&destroy] { destroy(); }).join();
        EXPECT_TRUE(kind.exists(name));
        OpenGLDeviceContext::current();
        EXPECT_FALSE(kind.exists(name));
    }
}

} // namespace
