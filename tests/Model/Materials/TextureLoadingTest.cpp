#include "support/GLTest.h"
#include "support/ImageFiles.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvModel/TextureLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QImage>

#include <array>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::Each;
using ::testing::ElementsAre;

namespace {

QImage filled(int width, int height, QImage::Format format, QRgb color)
{
    QImage image(width, height, format);
    image.fill(QColor::fromRgba(color));
    return image;
}

/// The pixels of a mip level as 0xRRGGBBAA, row by row as OpenGL has them: from the
/// bottom.
std::vector<unsigned> pixelsOf(Texture *texture, int level = 0)
{
    const AutoBinder binder(texture);
    GLint width = 0;
    GLint height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &height);
    std::vector<unsigned> pixels(static_cast<std::size_t>(width * height));
    if (!pixels.empty())
        glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8, pixels.data());
    return pixels;
}

int parameterOf(Texture *texture, unsigned name)
{
    const AutoBinder binder(texture);
    GLint value = -1;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    return value;
}

int widthOfLevel(Texture *texture, int level)
{
    const AutoBinder binder(texture);
    GLint width = -1;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
    return width;
}

/// Loads, and remembers the texture: it lives as long as the process, longer than the
/// table in which the library finds it, and the leak sanitizer is to find it too.
Texture *load(const QString &fileName)
{
    static std::array<Texture *, 64> known;
    static std::size_t count = 0;
    Texture *texture = LoadTexture(fileName);
    if (texture)
        known.at(count++) = texture;
    return texture;
}

/// Textures stay in the cache, so that every test has a directory of its own.
class TextureLoading : public GLTest
{
protected:
    QString write(const char *name, const QByteArray &bytes)
    {
        return _directory.write(QLatin1String(name), bytes);
    }

    QString writePNG(const QImage &image) { return write("image.png", encoded(image, "PNG")); }

    TemporaryModel _directory;
};

///     red    green
///     blue   white
///     black  half transparent orange
QImage colourful(QImage::Format format)
{
    QImage image(2, 3, format);
    image.setPixelColor(0, 0, QColor(255, 0, 0));
    image.setPixelColor(1, 0, QColor(0, 255, 0));
    image.setPixelColor(0, 1, QColor(0, 0, 255));
    image.setPixelColor(1, 1, QColor(255, 255, 255));
    image.setPixelColor(0, 2, QColor(0, 0, 0));
    image.setPixelColor(1, 2, QColor(255, 128, 1, 127));
    return image;
}

TEST_F(TextureLoading, PutsTheFirstRowOnTop)
{
    Texture *texture = load(writePNG(colourful(QImage::Format_ARGB32)));
    ASSERT_TRUE(texture);
    EXPECT_THAT(pixelsOf(texture), ElementsAre(0x000000ffu, 0xff80017fu, //
                                               0x0000ffffu, 0xffffffffu, //
                                               0xff0000ffu, 0x00ff00ffu));
}

// Rows of 12 bytes: whoever expects them at multiples of 8 or 16 finds other pixels.
TEST_F(TextureLoading, ReadsRowsOfAnyLength)
{
    QImage image = filled(3, 2, QImage::Format_RGB32, 0xffff0000u);
    for (int x = 0; x < 3; ++x)
        image.setPixelColor(x, 1, QColor(0, 0, 255));
    Texture *texture = load(writePNG(image));
    ASSERT_TRUE(texture);
    EXPECT_THAT(pixelsOf(texture), ElementsAre(0x0000ffffu, 0x0000ffffu, 0x0000ffffu, //
                                               0xff0000ffu, 0xff0000ffu, 0xff0000ffu));
}

TEST_F(TextureLoading, MakesImagesWithoutAlphaOpaque)
{
    Texture *texture = load(writePNG(filled(3, 1, QImage::Format_RGB32, 0xff123456u)));
    ASSERT_TRUE(texture);
    EXPECT_THAT(pixelsOf(texture), ElementsAre(0x123456ffu, 0x123456ffu, 0x123456ffu));
}

TEST_F(TextureLoading, ReadsWhateverDecodesToFourBytes)
{
    // JPEG of one colour keeps it nearly, the others exactly.
    for (const char *format : {"PNG", "BMP", "PPM", "JPG"}) {
        SCOPED_TRACE(format);
        const QImage image = filled(8, 8, QImage::Format_RGB32, 0xff406080u);
        Texture *texture = load(write(format, encoded(image, format)));
        ASSERT_TRUE(texture);
        const unsigned first = pixelsOf(texture).at(0);
        EXPECT_NEAR(first >> 24, 0x40, 2);
        EXPECT_NEAR(first >> 16 & 0xff, 0x60, 2);
        EXPECT_NEAR(first >> 8 & 0xff, 0x80, 2);
        EXPECT_EQ(first & 0xff, 0xffu);
    }
}

TEST_F(TextureLoading, DetectsTheFormatFromTheFile)
{
    const QByteArray png = encoded(colourful(QImage::Format_ARGB32), "PNG");
    for (const char *name : {"none", "wrong.jpg", "wrong.txt", "with blank .png"}) {
        Texture *texture = load(write(name, png));
        ASSERT_TRUE(texture) << name;
        EXPECT_EQ(pixelsOf(texture).size(), 6u);
    }
}

TEST_F(TextureLoading, DescribesTheTexture)
{
    Texture *texture = load(writePNG(colourful(QImage::Format_ARGB32)));
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->target(), unsigned(GL_TEXTURE_2D));
    EXPECT_EQ(texture->internalFormat(), GL_RGBA);
    EXPECT_EQ(texture->width(), 2);
    EXPECT_EQ(texture->height(), 3);
    EXPECT_EQ(texture->depth(), 0);
    EXPECT_EQ(texture->parent(), nullptr);
    EXPECT_TRUE(texture->isReadOnly());
}

TEST_F(TextureLoading, FiltersAndRepeats)
{
    Texture *texture = load(writePNG(colourful(QImage::Format_ARGB32)));
    ASSERT_TRUE(texture);
    EXPECT_EQ(parameterOf(texture, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_EQ(parameterOf(texture, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(parameterOf(texture, GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(parameterOf(texture, GL_TEXTURE_WRAP_T), GL_REPEAT);
    EXPECT_EQ(parameterOf(texture, GL_TEXTURE_BASE_LEVEL), 0);
    EXPECT_EQ(parameterOf(texture, GL_TEXTURE_MAX_LEVEL), 4);
}

/// 64, 32, 16, 8 and 4 texels wide, and no more.
TEST_F(TextureLoading, HasFiveMipLevels)
{
    Texture *texture = load(writePNG(filled(64, 32, QImage::Format_ARGB32, 0x80204060u)));
    ASSERT_TRUE(texture);
    for (int level = 0; level < 5; ++level) {
        EXPECT_EQ(widthOfLevel(texture, level), 64 >> level);
        EXPECT_EQ(pixelsOf(texture, level).size(), std::size_t(64 * 32) >> (2 * level));
        EXPECT_THAT(pixelsOf(texture, level), Each(0x20406080u));
    }
    EXPECT_EQ(widthOfLevel(texture, 5), 0);
}

/// Rows of three texels are 12 bytes; eight-byte alignment would look for the second
/// row at byte 16.
TEST_F(TextureLoading, ReadsRowsWithoutGapsWhateverWasSet)
{
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(0xff112233u);
    for (int column = 0; column < 3; ++column)
        image.setPixel(column, 1, 0xff445566u);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    Texture *texture = load(writePNG(image));
    GLint alignment = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    ASSERT_TRUE(texture);
    EXPECT_EQ(alignment, 1);
    EXPECT_THAT(pixelsOf(texture), ElementsAre(0x445566ffu, 0x445566ffu, 0x445566ffu, 0x112233ffu,
                                               0x112233ffu, 0x112233ffu));
}

TEST_F(TextureLoading, LoadsASinglePixel)
{
    Texture *texture = load(writePNG(filled(1, 1, QImage::Format_ARGB32, 0x80204060u)));
    ASSERT_TRUE(texture);
    EXPECT_THAT(pixelsOf(texture), ElementsAre(0x20406080u));
    EXPECT_EQ(widthOfLevel(texture, 1), 0);
}

TEST_F(TextureLoading, KeepsTexturesByTheNameAsGiven)
{
    const QString name = writePNG(colourful(QImage::Format_ARGB32));
    Texture *texture = load(name);
    ASSERT_TRUE(texture);
    EXPECT_EQ(load(name), texture);

    const QString dotted = _directory.directory() + QStringLiteral("/./image.png");
    Texture *other = load(dotted);
    ASSERT_TRUE(other);
    EXPECT_NE(other, texture);
    EXPECT_NE(other->id(), texture->id());
    EXPECT_EQ(load(dotted), other);
    EXPECT_EQ(load(name), texture);

    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(_directory.directory()));
    Texture *relative = load(QStringLiteral("image.png"));
    QDir::setCurrent(before);
    ASSERT_TRUE(relative);
    EXPECT_NE(relative, texture);
    EXPECT_NE(relative, other);
}

TEST_F(TextureLoading, DoesNotLookAtAFileAgain)
{
    const QString name = writePNG(filled(2, 2, QImage::Format_RGB32, 0xff000000u));
    Texture *texture = load(name);
    ASSERT_TRUE(texture);
    writePNG(filled(5, 5, QImage::Format_RGB32, 0xffffffffu));
    EXPECT_EQ(load(name), texture);
    EXPECT_EQ(texture->width(), 2);
    ASSERT_TRUE(QFile::remove(name));
    EXPECT_EQ(load(name), texture);
}

TEST_F(TextureLoading, GivesNullForWhatIsNoFile)
{
    for (const QString &name :
         {_directory.directory(), _directory.path(QStringLiteral("none.png")), QString()}) {
        EXPECT_EQ(load(name), nullptr) << name.toStdString();
        EXPECT_EQ(load(name), nullptr) << name.toStdString();
    }
}

TEST_F(TextureLoading, GivesNullForWhatDoesNotDecode)
{
    const QByteArray png = encoded(colourful(QImage::Format_ARGB32), "PNG");
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("no image"), png.left(8), png.left(20), png.left(33)}) {
        const QString name = write("image.png", bytes);
        EXPECT_EQ(load(name), nullptr) << bytes.size() << " bytes";
        EXPECT_EQ(load(name), nullptr) << bytes.size() << " bytes";
    }
}

/// Their pixels are not four bytes: read as such they would end too early.
TEST_F(TextureLoading, GivesNullForOtherPixelSizes)
{
    const std::pair<const char *, QImage::Format> cases[] = {
        {"grey", QImage::Format_Grayscale8},
        {"palette", QImage::Format_Indexed8},
        {"black and white", QImage::Format_Mono},
        {"grey of 16 bits", QImage::Format_Grayscale16},
        {"colours of 16 bits", QImage::Format_RGBA64},
    };
    for (const auto &[name, format] : cases) {
        SCOPED_TRACE(name);
        QImage image(4, 4, format);
        if (image.depth() <= 8)
            image.setColorTable({0xff000000u, 0xffffffffu});
        image.fill(0);
        if (format == QImage::Format_Grayscale8)
            image = filled(4, 4, QImage::Format_RGB32, 0xff808080u).convertToFormat(format);
        const QString fileName = writePNG(image);
        ASSERT_NE(QImage(fileName).depth(), 32);
        ASSERT_FALSE(QImage(fileName).isNull());
        EXPECT_EQ(load(fileName), nullptr);
        EXPECT_EQ(load(fileName), nullptr);
    }
}

TEST_F(TextureLoading, TriesAgainAfterAFailure)
{
    const QString name = _directory.path(QStringLiteral("image.png"));
    EXPECT_EQ(load(name), nullptr);
    write("image.png", "no image");
    EXPECT_EQ(load(name), nullptr);
    writePNG(colourful(QImage::Format_ARGB32));
    {
        const NoCurrentContext without;
        EXPECT_EQ(load(name), nullptr);
    }
    Texture *texture = load(name);
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->width(), 2);
}

TEST_F(TextureLoading, LeavesTheBindingAsItWas)
{
    unsigned bound = 0;
    glGenTextures(1, &bound);
    glBindTexture(GL_TEXTURE_2D, bound);
    EXPECT_TRUE(load(writePNG(colourful(QImage::Format_ARGB32))));
    GLint now = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &now);
    EXPECT_EQ(static_cast<unsigned>(now), bound);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteTextures(1, &bound);
}

} // namespace
