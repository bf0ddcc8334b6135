// Contexts that share objects: a model loaded in one, perhaps on a thread of its own, is drawn in
// the other.

#include <OrvGL/DrawBuffers.h>
#include <OrvGL/Texture.h>
#include <OrvGL/TextureManager.h>
#include <OrvGL/VertexArrayObject.h>

#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/Shaders.h"

#include <gmock/gmock.h>

#include <QtGui/QColor>

#include <thread>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;

const char *const whiteTriangle = R"(
#version 430 core
in vec2 va_Vertex;
flat out vec4 colour;
void main() { colour = vec4(1); gl_Position = vec4(va_Vertex, 0, 1); }
)";

// A triangle that covers everything there is to see.
std::unique_ptr<DrawBuffers> makeLargeTriangle()
{
    auto vao = OpenGLDeviceContext::current()->createVertexArrayObject();
    vao->registerBO(QStringLiteral("va_Vertex"),
                    makeBuffer<float>(GL_ARRAY_BUFFER, {-1, -1, 3, -1, -1, 3}), 2, GL_FLOAT);
    const DrawElementsIndirectCommand command = {3, 1, 0, 0, 0};
    auto draw = std::make_unique<DrawBuffers>(nullptr);
    draw->setVAO(vao);
    draw->setIndexedDraw(makeBuffer<unsigned>(GL_ELEMENT_ARRAY_BUFFER, {0, 1, 2}), 3,
                         GL_UNSIGNED_INT);
    draw->setDrawElementsIndirectCommands(&command, 1);
    return draw;
}

class SharedContextTest : public GLFixture
{
protected:
    void SetUp() override
    {
        GLFixture::SetUp();
        _sharing = makeContext(_context.get());
        ASSERT_TRUE(_sharing);
    }

    std::unique_ptr<HeadlessContext> _sharing;
};

TEST_F(SharedContextTest, IsAContextOfItsOwn)
{
    ASSERT_TRUE(_sharing->makeCurrent());
    EXPECT_NE(OpenGLDeviceContext::current(), _device);
}

TEST_F(SharedContextTest, UsesBuffersAndTexturesOfTheOther)
{
    const auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {1, 2});
    Texture *const texture = TextureManager::Instance().colorTexture(Qt::white);
    ASSERT_TRUE(_sharing->makeCurrent());
    EXPECT_TRUE(buffer->isUsable());
    EXPECT_EQ(buffer->download(), bytesOf<int>({1, 2}));
    EXPECT_TRUE(texture->isUsable());
    EXPECT_EQ(TextureManager::Instance().colorTexture(Qt::white), texture);
}

TEST_F(SharedContextTest, DeletesObjectsOfTheOther)
{
    auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {1});
    const GLuint name = buffer->id();
    ASSERT_TRUE(_sharing->makeCurrent());
    EXPECT_TRUE(glIsBuffer(name));
    buffer.reset();
    EXPECT_FALSE(glIsBuffer(name));
}

TEST_F(SharedContextTest, KeepsObjectsWhenTheOtherIsGone)
{
    const auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {1, 2});
    _context.reset();
    ASSERT_TRUE(_sharing->makeCurrent());
    EXPECT_TRUE(buffer->isUsable());
    EXPECT_EQ(buffer->download(), bytesOf<int>({1, 2}));
}

TEST_F(SharedContextTest, DrawsWhatWasMadeOnAnotherThread)
{
    std::unique_ptr<DrawBuffers> draw;
    std::thread([&] {
        if (!_sharing->makeCurrent())
            return;
        draw = makeLargeTriangle();
        glFinish();
        _sharing->doneCurrent();
    }).join();
    ASSERT_TRUE(draw);
    Canvas canvas(2, 2);
    EXPECT_TRUE(draw->draw(linkProgram(whiteTriangle, showColour), 0, 1));
    EXPECT_EQ(canvas.pixel(1, 1), White);
}

TEST_F(SharedContextTest, DrawsOneBundleInBothInTurn)
{
    const auto draw = makeLargeTriangle();
    const GLuint program = linkProgram(whiteTriangle, showColour); // programs are shared too
    for (HeadlessContext *context : {_context.get(), _sharing.get(), _context.get()}) {
        ASSERT_TRUE(context->makeCurrent());
        Canvas canvas(2, 2);
        EXPECT_TRUE(draw->draw(program, 0, 1));
        EXPECT_EQ(canvas.pixel(1, 1), White);
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }
}

TEST_F(SharedContextTest, KeepsAwayFromContextsThatDoNotShare)
{
    const auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {1});
    const auto stranger = makeContext();
    ASSERT_TRUE(stranger && stranger->makeCurrent());
    const auto own = makeBuffer<int>(GL_ARRAY_BUFFER, {2});
    ASSERT_EQ(own->id(), buffer->id()) << "else the test shows nothing";
    const MessageCapture log;
    EXPECT_FALSE(buffer->isUsable());
    buffer->uploadArbitraryData("abcd", 4, GL_STATIC_DRAW, 1);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("BufferObject::upload: the buffer's OpenGL context is not current"));
    EXPECT_EQ(own->download(), bytesOf<int>({2}));
}

} // namespace
