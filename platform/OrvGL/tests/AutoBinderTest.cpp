#include <OrvGL/AutoBinder.h>

#include <OrvGL/Texture.h>

#include "support/GLFixture.h"
#include "support/MessageCapture.h"

#include <gmock/gmock.h>

#include <memory>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;

class AutoBinderTest : public GLFixture
{
protected:
    static std::unique_ptr<Texture> makeTexture()
    {
        return std::make_unique<Texture>(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    }
};

TEST_F(AutoBinderTest, BindsForItsScopeAndRestoresTheTextureBefore)
{
    const auto before = makeTexture();
    const auto inside = makeTexture();
    before->bind();
    {
        const AutoBinder binder(inside.get());
        EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), inside->id());
    }
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), before->id());
}

TEST_F(AutoBinderTest, RestoresThatNothingWasBound)
{
    const auto inside = makeTexture();
    {
        const AutoBinder binder(inside.get());
    }
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
}

TEST_F(AutoBinderTest, Nests)
{
    const auto outer = makeTexture();
    const auto inner = makeTexture();
    {
        const AutoBinder outerBinder(outer.get());
        {
            const AutoBinder innerBinder(inner.get());
            EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), inner->id());
        }
        EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), outer->id());
    }
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
}

TEST_F(AutoBinderTest, RestoresOnTheUnitWhereItBound)
{
    const auto before = makeTexture();
    const auto inside = makeTexture();
    glActiveTexture(GL_TEXTURE1);
    before->bind();
    {
        const AutoBinder binder(inside.get());
        glActiveTexture(GL_TEXTURE4);
    }
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GLuint(GL_TEXTURE4));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
    glActiveTexture(GL_TEXTURE1);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), before->id());
}

TEST_F(AutoBinderTest, LeavesNothingBoundWhereTheTextureBeforeIsGone)
{
    auto before = makeTexture();
    const auto inside = makeTexture();
    before->bind();
    {
        const AutoBinder binder(inside.get());
        before.reset();
    }
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
}

TEST_F(AutoBinderTest, BindsBuffersToo)
{
    const auto before = makeBuffer<float>(GL_UNIFORM_BUFFER, {1});
    const auto inside = makeBuffer<float>(GL_UNIFORM_BUFFER, {2});
    before->bind();
    {
        const AutoBinder binder(inside.data());
        EXPECT_EQ(integer(GL_UNIFORM_BUFFER_BINDING), inside->id());
    }
    EXPECT_EQ(integer(GL_UNIFORM_BUFFER_BINDING), before->id());
}

struct BufferTargetCase
{
    const char *name;
    GLenum target;
    GLenum query;
};

const BufferTargetCase bufferTargetCases[] = {
    {"array", GL_ARRAY_BUFFER, GL_ARRAY_BUFFER_BINDING},
    {"element array", GL_ELEMENT_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER_BINDING},
    {"draw indirect", GL_DRAW_INDIRECT_BUFFER, GL_DRAW_INDIRECT_BUFFER_BINDING},
    {"shader storage", GL_SHADER_STORAGE_BUFFER, GL_SHADER_STORAGE_BUFFER_BINDING},
    {"uniform", GL_UNIFORM_BUFFER, GL_UNIFORM_BUFFER_BINDING},
    {"copy read", GL_COPY_READ_BUFFER, GL_COPY_READ_BUFFER_BINDING},
    {"copy write", GL_COPY_WRITE_BUFFER, GL_COPY_WRITE_BUFFER_BINDING},
    {"pixel pack", GL_PIXEL_PACK_BUFFER, GL_PIXEL_PACK_BUFFER_BINDING},
    {"pixel unpack", GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_UNPACK_BUFFER_BINDING},
    {"transform feedback", GL_TRANSFORM_FEEDBACK_BUFFER, GL_TRANSFORM_FEEDBACK_BUFFER_BINDING},
    {"atomic counter", GL_ATOMIC_COUNTER_BUFFER, GL_ATOMIC_COUNTER_BUFFER_BINDING},
    {"dispatch indirect", GL_DISPATCH_INDIRECT_BUFFER, GL_DISPATCH_INDIRECT_BUFFER_BINDING},
    {"texture", GL_TEXTURE_BUFFER, GL_TEXTURE_BUFFER},
};

TEST_F(AutoBinderTest, RestoresEveryTargetOfBuffers)
{
    GLuint vertexArray = 0; // carries the element array's binding
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    for (const BufferTargetCase &expected : bufferTargetCases) {
        SCOPED_TRACE(expected.name);
        const auto before = makeBuffer<float>(expected.target, {1});
        const auto inside = makeBuffer<float>(expected.target, {2});
        before->bind();
        {
            const AutoBinder binder(inside.data());
            EXPECT_EQ(integer(expected.query), inside->id());
        }
        EXPECT_EQ(integer(expected.query), before->id());
    }
    glDeleteVertexArrays(1, &vertexArray);
}

TEST_F(AutoBinderTest, DoesNothingForNull)
{
    const auto before = makeTexture();
    before->bind();
    {
        const AutoBinder binder(nullptr);
    }
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), before->id());
}

TEST_F(AutoBinderTest, SurvivesThatNoContextIsCurrent)
{
    const auto texture = makeTexture();
    _context->doneCurrent();
    const MessageCapture log;
    {
        const AutoBinder binder(texture.get());
    }
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("Texture::bind: the texture's OpenGL context is not current"));
    ASSERT_TRUE(_context->makeCurrent());
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
}

} // namespace
