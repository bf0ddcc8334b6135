#include <OrvGL/Texture.h>

#include "support/GLFixture.h"
#include "support/MessageCapture.h"

#include <gmock/gmock.h>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;

class TextureTest : public GLFixture
{};

TEST_F(TextureTest, KeepsWhatItWasMadeWith)
{
    Texture texture(GL_TEXTURE_2D_ARRAY, GL_RGBA, 3, 5, 7, nullptr);
    EXPECT_NE(texture.id(), 0u);
    EXPECT_TRUE(texture.isUsable());
    EXPECT_EQ(texture.target(), GLenum(GL_TEXTURE_2D_ARRAY));
    EXPECT_EQ(texture.internalFormat(), GL_RGBA);
    EXPECT_EQ(texture.width(), 3);
    EXPECT_EQ(texture.height(), 5);
    EXPECT_EQ(texture.depth(), 7);
}

TEST_F(TextureTest, IsReadOnlyOnceItWasSaid)
{
    Texture texture(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    EXPECT_FALSE(texture.isReadOnly());
    texture.setReadOnly();
    EXPECT_TRUE(texture.isReadOnly());
}

TEST_F(TextureTest, BindsToTheActiveUnit)
{
    Texture texture(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    glActiveTexture(GL_TEXTURE2);
    texture.bind();
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), texture.id());
    EXPECT_EQ(texture.binding().unit, GLuint(GL_TEXTURE2));
    EXPECT_EQ(texture.binding().name, texture.id());
    texture.release();
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
    EXPECT_TRUE(glIsTexture(texture.id()));
}

TEST_F(TextureTest, BindsToAGivenUnitAndLeavesTheActiveOne)
{
    Texture texture(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    glActiveTexture(GL_TEXTURE1);
    texture.bindToUnit(3);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GLuint(GL_TEXTURE1));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0u);
    glActiveTexture(GL_TEXTURE3);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), texture.id());
}

struct TargetCase
{
    const char *name;
    GLenum target;
    GLenum query;
};

const TargetCase targetCases[] = {
    {"1D", GL_TEXTURE_1D, GL_TEXTURE_BINDING_1D},
    {"2D", GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D},
    {"3D", GL_TEXTURE_3D, GL_TEXTURE_BINDING_3D},
    {"1D array", GL_TEXTURE_1D_ARRAY, GL_TEXTURE_BINDING_1D_ARRAY},
    {"2D array", GL_TEXTURE_2D_ARRAY, GL_TEXTURE_BINDING_2D_ARRAY},
    {"rectangle", GL_TEXTURE_RECTANGLE, GL_TEXTURE_BINDING_RECTANGLE},
    {"cube map", GL_TEXTURE_CUBE_MAP, GL_TEXTURE_BINDING_CUBE_MAP},
    {"cube map array", GL_TEXTURE_CUBE_MAP_ARRAY, GL_TEXTURE_BINDING_CUBE_MAP_ARRAY},
    {"buffer", GL_TEXTURE_BUFFER, GL_TEXTURE_BINDING_BUFFER},
    {"2D multisample", GL_TEXTURE_2D_MULTISAMPLE, GL_TEXTURE_BINDING_2D_MULTISAMPLE},
    {"2D multisample array", GL_TEXTURE_2D_MULTISAMPLE_ARRAY,
     GL_TEXTURE_BINDING_2D_MULTISAMPLE_ARRAY},
};

TEST_F(TextureTest, KnowsTheBindingOfEveryTarget)
{
    for (const TargetCase &expected : targetCases) {
        SCOPED_TRACE(expected.name);
        Texture texture(expected.target, GL_RGBA8, 1, 1, 0, nullptr);
        const Bindable::Binding before = texture.binding();
        EXPECT_EQ(before.name, 0u);
        texture.bind();
        EXPECT_EQ(integer(expected.query), texture.id());
        EXPECT_EQ(texture.binding().name, texture.id());
        texture.restore(before);
        EXPECT_EQ(integer(expected.query), 0u);
    }
}

TEST_F(TextureTest, DoesNothingWithoutItsContext)
{
    Texture texture(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    _context->doneCurrent();
    const MessageCapture log;
    EXPECT_FALSE(texture.isUsable());
    texture.bind();
    texture.bindToUnit(1);
    texture.release();
    EXPECT_EQ(texture.binding().name, 0u);
    texture.restore({GL_TEXTURE0, texture.id()});
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("Texture::bind: the texture's OpenGL context is not current",
                            "Texture::bindToUnit: the texture's OpenGL context is not current",
                            "Texture::release: the texture's OpenGL context is not current"));
}

TEST(TextureWithoutContext, HasNoOpenGLObject)
{
    const MessageCapture log;
    Texture texture(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    EXPECT_EQ(texture.id(), 0u);
    EXPECT_FALSE(texture.isUsable());
    EXPECT_EQ(texture.width(), 1);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("Texture: made while no OpenGL context is current"));
}

} // namespace
