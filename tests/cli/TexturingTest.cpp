// Image files on surfaces.
#include "cli/RenderFixture.h"
#include "support/MessageCapture.h"

#include <OrvGL/OpenGLFunctions.h>

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtCore/QtEndian>

namespace {

using namespace OrvTest;
using ::testing::ElementsAre;

class TexturingTest : public RenderTest
{
protected:
    /// Four fields: red, green (above), blue, white (below).
    static QImage fourFields(QImage::Format format = QImage::Format_RGB32)
    {
        QImage image(32, 32, QImage::Format_RGB32);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x)
                image.setPixelColor(x, y,
                                    y < 16 ? (x < 16 ? Qt::red : Qt::green)
                                           : (x < 16 ? Qt::blue : Qt::white));
        }
        return image.convertToFormat(format);
    }

    void save(const QImage &image, const char *name)
    {
        ASSERT_TRUE(image.save(files.path(QString::fromLatin1(name))));
    }

    /// A square of a material given by the lines of its section.
    QImage drawWith(const QByteArray &material)
    {
        files.write(QStringLiteral("m.mtl"), "newmtl m\n" + material);
        return draw("mtllib m.mtl\n" + QByteArray(square) + "usemtl m\nf 1/1 2/2 3/3 4/4\n");
    }

    static void expectFourFields(const QImage &picture)
    {
        const auto channels = [&picture](double x, double y) {
            const QColor colour = at(picture, x, y);
            return std::string(colour.red() > 120 ? "r" : "") + (colour.green() > 120 ? "g" : "") +
                   (colour.blue() > 120 ? "b" : "");
        };
        EXPECT_EQ(channels(0.25, 0.25), "r");
        EXPECT_EQ(channels(0.75, 0.25), "g");
        EXPECT_EQ(channels(0.25, 0.75), "b");
        EXPECT_EQ(channels(0.75, 0.75), "rgb");
    }
};

TEST_F(TexturingTest, TheImageStandsUpright)
{
    save(fourFields(), "t.png");
    expectFourFields(drawWith("map_Kd t.png\n"));
}

TEST_F(TexturingTest, EveryKindOfImageIsDrawn)
{
    for (const QImage::Format format :
         {QImage::Format_ARGB32, QImage::Format_Indexed8, QImage::Format_RGBX64}) {
        SCOPED_TRACE(format);
        const std::string name = "t" + std::to_string(format) + ".png";
        save(fourFields(format), name.c_str());
        expectFourFields(drawWith("map_Kd " + QByteArray::fromStdString(name) + '\n'));
    }
}

TEST_F(TexturingTest, GreyImagesAreGrey)
{
    QImage grey(8, 8, QImage::Format_Grayscale8);
    grey.fill(200);
    save(grey, "grey.png");
    const QColor colour = centre(drawWith("map_Kd grey.png\n"));
    EXPECT_LT(colour.saturation(), 20);
    EXPECT_GT(colour.lightness(), 150);
}

TEST_F(TexturingTest, TheTextureIsTintedByTheColour)
{
    save(fourFields(), "t.png");
    const QImage picture = drawWith("Kd 0 1 0\nmap_Kd t.png\n");
    EXPECT_LT(at(picture, 0.25, 0.25).lightness(), 10);
    EXPECT_GT(at(picture, 0.75, 0.25).green(), 120);
    EXPECT_EQ(at(picture, 0.75, 0.75).red(), 0);
}

TEST_F(TexturingTest, TexturesRepeat)
{
    save(fourFields(), "t.png");
    files.write(QStringLiteral("m.mtl"), "newmtl m\nmap_Kd t.png\n");
    const QImage picture = draw("mtllib m.mtl\nv -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\n"
                                "vt 3 -2\nvt 4 -2\nvt 4 -1\nvt 3 -1\n"
                                "usemtl m\nf 1/1 2/2 3/3 4/4\n");
    expectFourFields(picture);
}

TEST_F(TexturingTest, ModelsWithoutTextureCoordinatesReadTheCorner)
{
    QImage image = fourFields();
    image.fill(Qt::black);
    image.setPixelColor(0, 31, Qt::white);
    image.setPixelColor(31, 31, Qt::white);
    image.setPixelColor(0, 0, Qt::white);
    image.setPixelColor(31, 0, Qt::white);
    save(image, "corners.png");
    files.write(QStringLiteral("m.mtl"), "newmtl m\nmap_Kd corners.png\n");
    // What an application may have left for attributes that have no values.
    for (GLuint location = 0; location < 4; ++location)
        glVertexAttrib4f(location, 0.5f, 0.5f, 0.5f, 1);
    const QColor colour =
        centre(draw("mtllib m.mtl\nv -1 -1 0\nv 1 -1 0\nv 1 1 0\nusemtl m\nf 1 2 3\n"));
    EXPECT_GT(colour.lightness(), 150);
}

TEST_F(TexturingTest, HolesInTheImageAreHolesInTheSurface)
{
    QImage image = fourFields(QImage::Format_ARGB32);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x)
            image.setPixelColor(x, y, Qt::transparent);
    }
    save(image, "t.png");
    setBackground(Qt::yellow);
    const QImage picture = drawWith("map_Kd t.png\n");
    EXPECT_EQ(at(picture, 0.25, 0.25), QColor(Qt::yellow));
    EXPECT_GT(at(picture, 0.75, 0.25).green(), 120);
}

TEST_F(TexturingTest, ASpecularMapDimsTheHighlight)
{
    QImage black(4, 4, QImage::Format_RGB32);
    black.fill(Qt::black);
    save(black, "black.png");
    const QByteArray shiny = "Kd 0 0 0\nKs 1 1 1\nNs 5\n";
    EXPECT_GT(centre(drawWith(shiny)).lightness(), 60);
    EXPECT_EQ(centre(drawWith(shiny + "map_Ks black.png\n")), QColor(Qt::black));
}

TEST_F(TexturingTest, AMissingImageIsSaidOnceAndLeftOut)
{
    files.write(QStringLiteral("m.mtl"), "newmtl a\nKd 0 0 1\nmap_Kd gone.png\n"
                                         "newmtl b\nmap_Kd gone.png\nmap_Ks gone.png\n");
    const MessageCapture messages;
    const QImage picture = draw("mtllib m.mtl\n" + QByteArray(square) +
                                "usemtl a\nf 1/1 2/2 3/3 4/4\nusemtl b\nf 1/1 1/1 1/1\n");
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre("The texture '" + files.path(QStringLiteral("gone.png")).toStdString() +
                            "' does not exist; drawn without it."));
    EXPECT_GT(centre(picture).blue(), 200);
    EXPECT_EQ(centre(picture).red(), 0);
}

TEST_F(TexturingTest, SoIsAFileThatIsNoImage)
{
    files.write(QStringLiteral("text.png"), "no image");
    const MessageCapture messages;
    const QImage picture = drawWith("Kd 0 0 1\nmap_Kd text.png\n");
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre("The texture '" + files.path(QStringLiteral("text.png")).toStdString() +
                            "' is no image that can be read; drawn without it."));
    EXPECT_GT(centre(picture).blue(), 200);
}

TEST_F(TexturingTest, SoIsAnImageThatClaimsTooManyPixels)
{
    files.write(QStringLiteral("bomb.ppm"), "P6 20000 20000 255\nabc");
    const MessageCapture messages;
    const QImage picture = drawWith("Kd 0 0 1\nmap_Kd bomb.ppm\n");
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre(::testing::AllOf(
                    ::testing::StartsWith("The texture '" +
                                          files.path(QStringLiteral("bomb.ppm")).toStdString() +
                                          "' has 20000 x 20000 pixels, more than the "),
                    ::testing::EndsWith(" that a texture can have; drawn without it."))));
    EXPECT_GT(centre(picture).blue(), 200);
}

TEST_F(TexturingTest, SoIsAnIconThatHoldsALargerImage)
{
    save(QImage(300, 300, QImage::Format_RGB32), "large.png");
    QFile large(files.path(QStringLiteral("large.png")));
    ASSERT_TRUE(large.open(QIODevice::ReadOnly));
    const QByteArray png = large.readAll();
    const quint32 bytes = qToLittleEndian(quint32(png.size()));
    QByteArray icon("\0\0\1\0\1\0\x10\x10\0\0\1\0\x20\0", 14);
    icon += QByteArray(reinterpret_cast<const char *>(&bytes), 4) + QByteArray("\x16\0\0\0", 4);
    files.write(QStringLiteral("lie.ico"), icon + png);
    const MessageCapture messages;
    const QImage picture = drawWith("Kd 0 0 1\nmap_Kd lie.ico\n");
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre("The texture '" + files.path(QStringLiteral("lie.ico")).toStdString() +
                            "' holds a larger image than it says; drawn without it."));
    EXPECT_GT(centre(picture).blue(), 200);
}

TEST_F(TexturingTest, AModelsTexturesShareABudget)
{
    save(fourFields(), "a.png");
    save(fourFields(), "b.png");
    files.write(QStringLiteral("m.mtl"), "newmtl a\nmap_Kd a.png\nmap_Ks ./a.png\n"
                                         "newmtl b\nmap_Kd b.png\n");
    const QByteArray model = "mtllib m.mtl\n" + QByteArray(square) +
                             "usemtl a\nf 1/1 2/2 3/3 4/4\nusemtl b\nf 1/1 1/1 1/1\n";
    // Under two names one file counts once.
    textures.mostPixels = 2 * 32 * 32;
    {
        const MessageCapture messages;
        draw(model);
        EXPECT_THAT(messages.texts(QtWarningMsg), ::testing::IsEmpty());
    }
    --textures.mostPixels;
    const MessageCapture messages;
    draw(model);
    ASSERT_THAT(messages.texts(QtWarningMsg), ::testing::SizeIs(1));
    EXPECT_THAT(messages.texts(QtWarningMsg)[0],
                ::testing::EndsWith("' has 32 x 32 pixels, more than the textures before it leave "
                                    "of the 2047 that a model may have; drawn without it."));
}

TEST_F(TexturingTest, TexturesThatTheCallerObjectsToAreNotRead)
{
    save(fourFields(), "t.png");
    textures.objection = [](const QString &path) {
        return path.endsWith(QLatin1String("t.png")) ? QStringLiteral("is not wanted") : QString();
    };
    const MessageCapture messages;
    EXPECT_GT(centre(drawWith("Kd 0 0 1\nmap_Kd t.png\n")).blue(), 200);
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre("The texture '" + files.path(QStringLiteral("t.png")).toStdString() +
                            "' is not wanted; drawn without it."));
}

TEST_F(TexturingTest, NeighboursKeepTheirTextures)
{
    QImage red(4, 4, QImage::Format_RGB32);
    red.fill(Qt::red);
    save(red, "red.png");
    QImage blue(4, 4, QImage::Format_RGB32);
    blue.fill(Qt::blue);
    save(blue, "blue.png");
    files.write(QStringLiteral("m.mtl"), "newmtl a\nmap_Kd red.png\nnewmtl b\nmap_Kd blue.png\n"
                                         "newmtl c\nKd 0 1 0\n");
    size = {150, 50};
    const QImage picture = draw("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 2 0 0\nv 3 0 0\n"
                                "v 0 1 0\nv 1 1 0\nv 2 1 0\nv 3 1 0\nvt 0 0\n"
                                "usemtl a\nf 1/1 2/1 6/1 5/1\nusemtl b\nf 2/1 3/1 7/1 6/1\n"
                                "usemtl c\nf 3/1 4/1 8/1 7/1\n");
    EXPECT_GT(at(picture, 0.2, 0.5).red(), 150);
    EXPECT_EQ(at(picture, 0.2, 0.5).blue(), 0);
    EXPECT_GT(at(picture, 0.5, 0.5).blue(), 150);
    EXPECT_EQ(at(picture, 0.5, 0.5).red(), 0);
    EXPECT_GT(at(picture, 0.8, 0.5).green(), 150);
}

} // namespace
