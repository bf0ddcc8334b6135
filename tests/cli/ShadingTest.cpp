// What the surface of a model shows.
#include "cli/RenderFixture.h"
#include "support/MessageCapture.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>

#include <cmath>

namespace {

using namespace OrvTest;
using Halvard::Orv::Render::Shading;
using Halvard::Orv::Render::UpAxis;
using ::testing::ElementsAre;

class ShadingTest : public RenderTest
{
protected:
    QImage drawAs(Shading shading, const QByteArray &contents)
    {
        options.shading = shading;
        return draw(contents);
    }

    /// A square folded along its middle, so that smooth normals differ from those of its halves:
    /// the left half looks to the left, the right half to the right.
    const QByteArray roof = "v -1 -1 0\nv 0 -1 1\nv 1 -1 0\nv -1 1 0\nv 0 1 1\nv 1 1 0\n"
                            "f 1 2 5 4\nf 2 3 6 5\n";
};

int brightness(const QColor &colour)
{
    return colour.red() + colour.green() + colour.blue();
}

TEST_F(ShadingTest, FlatFacesHaveOneColourUpToTheirEdges)
{
    const QImage flat = drawAs(Shading::Flat, roof);
    EXPECT_NEAR(brightness(at(flat, 0.2, 0.5)), brightness(at(flat, 0.45, 0.5)), 6);
    EXPECT_GT(std::abs(brightness(at(flat, 0.45, 0.5)) - brightness(at(flat, 0.55, 0.5))), 60);
    const QImage smooth = drawAs(Shading::Material, roof);
    EXPECT_LT(std::abs(brightness(at(smooth, 0.49, 0.5)) - brightness(at(smooth, 0.51, 0.5))), 30);
}

TEST_F(ShadingTest, FlatShadingKeepsTheMaterials)
{
    files.write(QStringLiteral("m.mtl"), "newmtl m\nKd 1 0 0\n");
    const QColor colour = centre(
        drawAs(Shading::Flat, "mtllib m.mtl\n" + QByteArray(square) + "usemtl m\nf 1 2 3 4\n"));
    EXPECT_GT(colour.red(), 200);
    EXPECT_EQ(colour.green(), 0);
}

TEST_F(ShadingTest, NormalsLookAlikeWhicheverWayTheyPoint)
{
    const QByteArray corners = "f 1/1/1 2/2/1 3/3/1 4/4/1\n";
    const QImage outwards = drawAs(Shading::Normals, QByteArray(square) + "vn 0 0 1\n" + corners);
    EXPECT_EQ(drawAs(Shading::Normals, QByteArray(square) + "vn 0 0 -1\n" + corners), outwards);
    EXPECT_EQ(drawAs(Shading::Normals, QByteArray(square) + "f 1 2 3 4\n"), outwards);
    EXPECT_EQ(drawAs(Shading::Normals, QByteArray(square) + "f 4 3 2 1\n"), outwards);
    EXPECT_EQ(centre(outwards).blue(), 255);
}

TEST_F(ShadingTest, TextureCoordinatesAreACheckerOfEightFieldsAUnit)
{
    size = {256, 256};
    const QImage picture =
        drawAs(Shading::TextureCoordinates, QByteArray(square) + "f 1/1 2/2 3/3 4/4\n");
    // The square covers 6 to 94 percent; the middles of neighbouring fields take turns.
    const auto field = [&picture](int u, int v) {
        return at(picture, 0.06 + 0.88 * (u + 0.5) / 8, 0.94 - 0.88 * (v + 0.5) / 8);
    };
    for (int v = 0; v < 8; ++v) {
        for (int u = 0; u < 7; ++u) {
            const bool isDark = (u + v) % 2 == 1;
            EXPECT_EQ(field(u, v).blue() < field(u + 1, v).blue(), isDark) << u << ", " << v;
        }
    }
    EXPECT_GT(field(6, 0).red(), field(0, 0).red() + 60);
    EXPECT_GT(field(0, 6).green(), field(0, 0).green() + 60);
    EXPECT_NEAR(field(0, 6).red(), field(0, 0).red(), 2);
}

TEST_F(ShadingTest, EveryGroupHasAColourOfItsOwn)
{
    files.write(QStringLiteral("m.mtl"), "newmtl a\nKd 0 0 0\nd 0.1\nnewmtl b\nnewmtl c\n");
    size = {150, 50};
    const QImage picture =
        drawAs(Shading::Groups, "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 2 0 0\nv 3 0 0\n"
                                "v 0 1 0\nv 1 1 0\nv 2 1 0\nv 3 1 0\nusemtl a\nf 1 2 6 5\n"
                                "usemtl b\nf 2 3 7 6\nusemtl c\nf 3 4 8 7\n");
    const QColor colours[] = {at(picture, 0.2, 0.5), at(picture, 0.5, 0.5), at(picture, 0.8, 0.5)};
    for (int first = 0; first < 3; ++first) {
        EXPECT_GT(brightness(colours[first]), 150);
        for (int second = 0; second < first; ++second) {
            const QColor &a = colours[first];
            const QColor &b = colours[second];
            EXPECT_GT(std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
                          std::abs(a.blue() - b.blue()),
                      90);
        }
    }
}

TEST_F(ShadingTest, BackFacesAreRed)
{
    const QColor front = centre(drawAs(Shading::BackFaces, QByteArray(square) + "f 1 2 3 4\n"));
    EXPECT_LT(front.saturation(), 20);
    const QColor back = centre(drawAs(Shading::BackFaces, QByteArray(square) + "f 4 3 2 1\n"));
    EXPECT_GT(back.red(), back.green() + 100);
}

TEST_F(ShadingTest, FacesTurnedAwayDoNotShineThroughAtSilhouettes)
{
    files.write(QStringLiteral("m.mtl"), "newmtl far\nKd 1 0 0\nnewmtl near\nKd 0 0 1\n");
    // Two cones with a common rim that look away from each other: a lens.
    QByteArray near = "usemtl near\n";
    QByteArray far = "usemtl far\n";
    QByteArray vertices = "v 0 0 0.3\nv 0 0 -0.3\n";
    constexpr int Corners = 96;
    for (int i = 0; i < Corners; ++i) {
        const double angle = i * 2 * 3.14159265358979 / Corners;
        vertices += "v " + QByteArray::number(std::cos(angle)) + ' ' +
                    QByteArray::number(std::sin(angle)) + " 0\n";
        const QByteArray a = QByteArray::number(3 + i);
        const QByteArray b = QByteArray::number(3 + (i + 1) % Corners);
        near += "f 1 " + a + ' ' + b + '\n';
        far += "f 2 " + b + ' ' + a + '\n';
    }
    const QByteArray lens = "mtllib m.mtl\n" + vertices + near + far;
    size = {300, 300};
    setBackground(Qt::black);
    // Up to the angle of the cones, only the near one is seen.
    angles = {12, 0};
    const QImage picture = draw(lens);
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            red += picture.pixelColor(x, y).red() > 40;
    }
    // Where the two meet, a sample may be of either.
    EXPECT_LE(red, 3);
}

TEST_F(ShadingTest, WireframeOfADenseMeshKeepsItsShape)
{
    // 200 squares a side on a picture of 64 pixels: as many lines as there are would leave nothing
    // but their colour.
    constexpr int Side = 200;
    QByteArray grid;
    for (int y = 0; y <= Side; ++y) {
        for (int x = 0; x <= Side; ++x)
            grid += "v " + QByteArray::number(x) + ' ' + QByteArray::number(y) + " 0\n";
    }
    for (int y = 0; y < Side; ++y) {
        for (int x = 0; x < Side; ++x) {
            const int corner = y * (Side + 1) + x + 1;
            for (const int offset : {0, 1, Side + 2, Side + 1})
                grid += (offset == 0 ? "f " : " ") + QByteArray::number(corner + offset);
            grid += '\n';
        }
    }
    const int plain = brightness(centre(draw(grid)));
    options.wireframe = true;
    const int dense = brightness(centre(draw(grid)));
    EXPECT_GT(dense, plain / 4);
    EXPECT_LT(dense, plain * 9 / 10);
}

TEST_F(ShadingTest, AnyAxisMayPointUp)
{
    // Each of the three tetrahedra points along an axis, and has its base across it.
    const QByteArray tips[] = {"v 4 0 0\nv 0 1 0\nv 0 -1 1\nv 0 -1 -1\n",
                               "v 0 4 0\nv 1 0 0\nv -1 0 1\nv -1 0 -1\n",
                               "v 0 0 4\nv 0 1 0\nv 1 -1 0\nv -1 -1 0\n"};
    const UpAxis axes[] = {UpAxis::X, UpAxis::Y, UpAxis::Z};
    for (int axis = 0; axis < 3; ++axis) {
        angles = {30, 0, axes[axis]};
        const QImage picture = draw(tips[axis] + "f 1 2 3\nf 1 3 4\nf 1 4 2\nf 2 4 3\n");
        // Narrow above, wide below.
        int above = 0;
        int below = 0;
        for (int x = 0; x < picture.width(); ++x) {
            above += picture.pixelColor(x, 10) != QColor(Qt::black);
            below += picture.pixelColor(x, 53) != QColor(Qt::black);
        }
        EXPECT_GT(above, 0) << axis;
        EXPECT_GT(below, above + 10) << axis;
    }
}

TEST_F(ShadingTest, LightComesFromWhereverUpIs)
{
    const QByteArray floor = "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\nf 1 2 3 4\n";
    angles = {0, 60, UpAxis::Z};
    const int fromAbove = brightness(centre(drawAs(Shading::Flat, floor)));
    angles = {0, -60, UpAxis::Z};
    EXPECT_GT(fromAbove, brightness(centre(draw(floor))) + 30);
}

class MeantTextureTest : public RenderTest
{
protected:
    /// Draws a black square with a red texture that lies at `stored`, and that the library calls
    /// `named`.
    std::vector<std::string> warnings(const char *stored, const char *named)
    {
        QImage red(4, 4, QImage::Format_RGB32);
        red.fill(Qt::red);
        const QString path = files.path(QLatin1String(stored));
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        EXPECT_TRUE(red.save(path));
        files.write(QStringLiteral("m.mtl"), QByteArray("newmtl m\nmap_Kd ") + named + '\n');
        const MessageCapture messages;
        const QImage picture =
            draw("mtllib m.mtl\n" + QByteArray(square) + "usemtl m\nf 1/1 2/2 3/3 4/4\n");
        isRed = centre(picture).red() > 150 && centre(picture).blue() == 0;
        return messages.texts(QtWarningMsg);
    }

    std::string path(const char *name)
    {
        return "'" + files.path(QLatin1String(name)).toStdString() + "'";
    }

    bool isRed = false;
};

TEST_F(MeantTextureTest, BackslashesAreSlashes)
{
    EXPECT_THAT(warnings("maps/red.png", "maps\\red.png"),
                ElementsAre("The texture " + path("maps\\red.png") +
                            " does not exist; drawn with " + path("maps/red.png") +
                            " in its place."));
    EXPECT_TRUE(isRed);
}

TEST_F(MeantTextureTest, TheCaseOfLettersIsPassedOver)
{
    EXPECT_THAT(warnings("Maps/Red.PNG", "maps\\red.png"),
                ElementsAre("The texture " + path("maps\\red.png") +
                            " does not exist; drawn with " + path("Maps/Red.PNG") +
                            " in its place."));
    EXPECT_TRUE(isRed);
}

TEST_F(MeantTextureTest, AnotherNameIsAnotherFile)
{
    EXPECT_THAT(warnings("red.png", "read.png"), ElementsAre("The texture " + path("read.png") +
                                                             " does not exist; drawn without it."));
    EXPECT_FALSE(isRed);
}

} // namespace
