#include <OrvGL/TextureManager.h>

#include <OrvGL/Texture.h>

#include "support/GLFixture.h"

#include <QtGui/QColor>

#include <array>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using Texel = std::array<int, 4>;

class TextureManagerTest : public GLFixture
{
protected:
    static Texture *textureOf(const QColor &color)
    {
        return TextureManager::Instance().colorTexture(color);
    }

    static Texel texelOf(Texture *texture)
    {
        std::array<GLubyte, 4> texel{};
        texture->bind();
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel.data());
        texture->release();
        return {texel[0], texel[1], texel[2], texel[3]};
    }
};

TEST_F(TextureManagerTest, MakesOneTexelOfTheColour)
{
    Texture *texture = textureOf(QColor(10, 20, 30, 40));
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->target(), GLenum(GL_TEXTURE_2D));
    EXPECT_EQ(texture->internalFormat(), GL_RGBA8);
    EXPECT_EQ(texture->width(), 1);
    EXPECT_EQ(texture->height(), 1);
    EXPECT_TRUE(texture->isReadOnly());
    EXPECT_EQ(texelOf(texture), (Texel{10, 20, 30, 40}));
    EXPECT_EQ(texelOf(textureOf(Qt::white)), (Texel{255, 255, 255, 255}));
}

TEST_F(TextureManagerTest, GivesTheSameTextureForTheSameColour)
{
    EXPECT_EQ(textureOf(Qt::white), textureOf(QColor(255, 255, 255)));
    EXPECT_NE(textureOf(Qt::white), textureOf(Qt::red));
    EXPECT_NE(textureOf(QColor(1, 2, 3, 4)), textureOf(QColor(1, 2, 3, 5)));
}

TEST_F(TextureManagerTest, LeavesBindingsAndPixelStorageAlone)
{
    Texture bound(GL_TEXTURE_2D, GL_RGBA, 1, 1, 0, nullptr);
    bound.bind();
    const auto pixels = makeBuffer<unsigned>(GL_PIXEL_UNPACK_BUFFER, {0x01020304});
    pixels->bind();
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 3);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 4);

    Texture *texture = textureOf(QColor(9, 8, 7));

    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), bound.id());
    EXPECT_EQ(integer(GL_PIXEL_UNPACK_BUFFER_BINDING), pixels->id());
    EXPECT_EQ(integer(GL_UNPACK_SKIP_PIXELS), 3u);
    EXPECT_EQ(integer(GL_UNPACK_SKIP_ROWS), 4u);
    EXPECT_EQ(texelOf(texture), (Texel{9, 8, 7, 255}));
}

TEST_F(TextureManagerTest, HasATextureForEachContext)
{
    Texture *first = textureOf(Qt::green);
    const auto other = makeContext();
    ASSERT_TRUE(other && other->makeCurrent());
    Texture *second = textureOf(Qt::green);
    EXPECT_NE(second, first);
    EXPECT_FALSE(first->isUsable());
    EXPECT_TRUE(second->isUsable());
    EXPECT_EQ(texelOf(second), (Texel{0, 255, 0, 255}));
    ASSERT_TRUE(_context->makeCurrent());
    EXPECT_EQ(textureOf(Qt::green), first);
    EXPECT_EQ(texelOf(first), (Texel{0, 255, 0, 255}));
}

TEST_F(TextureManagerTest, NeverAnswersWithATextureOfAContextThatIsGone)
{
    Texture *first = textureOf(Qt::blue);
    _context.reset();
    EXPECT_EQ(first->width(), 1) << "what was handed out stays valid";
    _context = makeContext();
    ASSERT_TRUE(_context && _context->makeCurrent());
    Texture *second = textureOf(Qt::blue);
    EXPECT_NE(second, first);
    EXPECT_EQ(texelOf(second), (Texel{0, 0, 255, 255}));
}

TEST_F(TextureManagerTest, HasNoTextureWithoutAContext)
{
    _context->doneCurrent();
    EXPECT_EQ(textureOf(Qt::white), nullptr);
}

} // namespace
