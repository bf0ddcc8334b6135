// Where things appear in a picture, and what is around them.
#include "cli/RenderFixture.h"

#include <OrvGL/GPUModel.h>

#include <gmock/gmock.h>

namespace {

using namespace OrvTest;
using Halvard::Orv::GPUModel;
using Halvard::Orv::Render::noMemoryFor;
using Halvard::Orv::Render::PictureError;
using Halvard::Orv::Render::renderPicture;

class PictureTest : public RenderTest
{
protected:
    /// A cube whose faces look along the axes, each in a colour of its own.
    QImage drawCube()
    {
        files.write(QStringLiteral("cube.mtl"),
                    "newmtl +x\nKd 1 0 0\nnewmtl -x\nKd 0 1 1\nnewmtl +y\nKd 0 1 0\n"
                    "newmtl -y\nKd 1 0 1\nnewmtl +z\nKd 0 0 1\nnewmtl -z\nKd 1 1 0\n");
        return draw("mtllib cube.mtl\n"
                    "v -1 -1 -1\nv 1 -1 -1\nv 1 1 -1\nv -1 1 -1\n"
                    "v -1 -1 1\nv 1 -1 1\nv 1 1 1\nv -1 1 1\n"
                    "usemtl -z\nf 1 4 3 2\nusemtl +z\nf 5 6 7 8\nusemtl -y\nf 1 2 6 5\n"
                    "usemtl +x\nf 2 3 7 6\nusemtl +y\nf 3 4 8 7\nusemtl -x\nf 4 1 5 8\n");
    }
};

/// Which of red, green and blue are more than dark.
std::string channels(const QColor &colour)
{
    return std::string(colour.red() > 60 ? "r" : "") + (colour.green() > 60 ? "g" : "") +
           (colour.blue() > 60 ? "b" : "");
}

TEST_F(PictureTest, AnglesSayFromWhereToLook)
{
    struct Row
    {
        double azimuth;
        double elevation;
        const char *seen;
    };
    const Row rows[] = {
        {0, 0, "b"},    // +z
        {90, 0, "r"},   // +x
        {180, 0, "rg"}, // -z
        {-90, 0, "gb"}, // -x
        {270, 0, "gb"}, // -x once more
        {0, 90, "g"},   // +y
        {45, 90, "g"},  //
        {0, -90, "rb"}, // -y
        {3690, 0, "r"}, // ten turns and a quarter
    };
    for (const Row &row : rows) {
        angles = {row.azimuth, row.elevation};
        EXPECT_EQ(channels(centre(drawCube())), row.seen) << row.azimuth << ", " << row.elevation;
    }
}

TEST_F(PictureTest, UpIsUpAndRightIsRight)
{
    angles = {45, 45};
    const QImage picture = drawCube();
    EXPECT_EQ(channels(at(picture, 0.5, 0.25)), "g");  // +y above
    EXPECT_EQ(channels(at(picture, 0.35, 0.65)), "b"); // +z to the left
    EXPECT_EQ(channels(at(picture, 0.65, 0.65)), "r"); // +x to the right
}

TEST_F(PictureTest, NearThingsHideFarOnes)
{
    files.write(QStringLiteral("m.mtl"), "newmtl near\nKd 1 0 0\nnewmtl far\nKd 0 0 1\n");
    const QByteArray points = "mtllib m.mtl\nv -1 -1 1\nv 1 -1 1\nv 0 1 1\n"
                              "v -1 -1 -1\nv 1 -1 -1\nv 0 1 -1\n";
    const QByteArray near = "usemtl near\nf 1 2 3\n";
    const QByteArray far = "usemtl far\nf 4 5 6\n";
    EXPECT_EQ(channels(centre(draw(points + near + far))), "r");
    EXPECT_EQ(channels(centre(draw(points + far + near))), "r");
    angles.azimuth = 180;
    EXPECT_EQ(channels(centre(draw(points + near + far))), "b");
}

TEST_F(PictureTest, APlainBackgroundIsThatColour)
{
    setBackground(QColor(10, 200, 90));
    EXPECT_EQ(draw("").pixelColor(5, 60), QColor(10, 200, 90));
}

TEST_F(PictureTest, ATransparentBackgroundLeavesTheModel)
{
    setBackground(Qt::transparent);
    const QImage picture = draw(QByteArray(square) + "f 1 2 3 4\n");
    EXPECT_EQ(at(picture, 0.01, 0.01).alpha(), 0);
    EXPECT_EQ(centre(picture).alpha(), 255);
}

TEST_F(PictureTest, TheDefaultBackgroundIsLighterAbove)
{
    options = {};
    const QImage picture = draw("");
    EXPECT_GT(at(picture, 0.5, 0.02).lightness(), at(picture, 0.5, 0.98).lightness() + 30);
}

/// The smallest rectangle around what is not background.
QRect drawnRect(const QImage &picture, const QColor &background)
{
    QRect rect;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) != background)
                rect |= QRect(x, y, 1, 1);
        }
    }
    return rect;
}

QByteArray boxOf(double x, double y, double z, double halfSize)
{
    QByteArray text;
    for (int corner = 0; corner < 8; ++corner) {
        text += "v";
        text += ' ' + QByteArray::number(x + (corner & 1 ? halfSize : -halfSize), 'g', 9);
        text += ' ' + QByteArray::number(y + (corner & 2 ? halfSize : -halfSize), 'g', 9);
        text += ' ' + QByteArray::number(z + (corner & 4 ? halfSize : -halfSize), 'g', 9) + '\n';
    }
    return text + "f 1 3 4 2\nf 5 6 8 7\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\nf 2 4 8 6\n";
}

TEST_F(PictureTest, TheModelFillsThePictureWhateverItsSizeAndPlace)
{
    struct Row
    {
        const char *name;
        QByteArray contents;
    };
    const Row rows[] = {
        {"one", boxOf(0, 0, 0, 1)},         {"millionth", boxOf(0, 0, 0, 1e-6)},
        {"million", boxOf(0, 0, 0, 1e6)},   {"largest", boxOf(0, 0, 0, 3e38)},
        {"tiniest", boxOf(0, 0, 0, 1e-30)}, {"far away", boxOf(1e6, -1e6, 0, 64)},
    };
    size = {200, 100};
    angles = {30, 20};
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const QRect drawn = drawnRect(draw(row.contents), Qt::black);
        // 6 of 100 pixels stay free above and below.
        EXPECT_NEAR(drawn.top(), 6, 1);
        EXPECT_NEAR(drawn.bottom(), 93, 1);
        // In the middle of the view, and so nearly of the picture: near parts look
        // larger.
        EXPECT_NEAR(drawn.left() + drawn.right(), 199, 10);
    }
}

TEST_F(PictureTest, FacesThatAreNotDrawnDoNotCount)
{
    const QByteArray face = QByteArray(square) + "f 1 2 3 4\n";
    EXPECT_EQ(draw("v 1000 1000 1000\nv 0 0 0\n" + QByteArray(square) +
                   "f 3 4 5 6\nusemtl unknown\nf 1 2 1\n"),
              draw(face));
}

TEST_F(PictureTest, TallPicturesAreFilledToTheSides)
{
    size = {60, 200};
    const QRect drawn = drawnRect(draw(QByteArray(square) + "f 1 2 3 4\n"), Qt::black);
    EXPECT_NEAR(drawn.left(), 60 * 0.06, 1);
    EXPECT_NEAR(drawn.right(), 60 * 0.94, 1);
    EXPECT_NEAR(drawn.top() + drawn.bottom(), 199, 2);
}

TEST_F(PictureTest, FlatModelsAreSeen)
{
    angles = {30, 20};
    EXPECT_NE(centre(draw("v 0 0 0\nv 1 0 0\nv 1 0 1\nv 0 0 1\nf 1 2 3 4\n")), QColor(Qt::black));
}

TEST_F(PictureTest, ModelsWithoutExtentAreNoTrouble)
{
    for (const char *contents :
         {"", "v 1 2 3\n", "v 1 2 3\nf 1 1 1\n", "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n",
          "v nan nan nan\nf 1 1 1\n", "v 1e-45 0 0\nv 0 1e-45 0\nv 0 0 0\nf 1 2 3\n"}) {
        const QImage picture = draw(contents);
        EXPECT_EQ(at(picture, 0.1, 0.9), QColor(Qt::black)) << contents;
    }
}

TEST_F(PictureTest, TrianglesWithACornerNowhereAreLeftOut)
{
    const QImage sound = draw(QByteArray(square) + "vn 0 0 1\nf 1/1/1 2/2/1 3/3/1\n");
    for (const char *nowhere : {"nan 0 0", "inf 0 0", "0 -inf 0", "1 1 1e39"}) {
        const QImage picture = draw(QByteArray(square) + "v " + nowhere +
                                    "\nvn 0 0 1\nf 1/1/1 2/2/1 3/3/1\nf 3/3/1 4/4/1 5/1/1\n");
        EXPECT_EQ(picture, sound) << nowhere;
    }
}

TEST_F(PictureTest, WireframeDrawsTheEdgesOnTop)
{
    size = {65, 65};
    const QByteArray face = QByteArray(square) + "f 1 2 3 4\n";
    const QImage plain = draw(face);
    options.wireframe = true;
    const QImage lines = draw(face);
    // The quad is cut along one diagonal, from its corner 2 to its corner 4.
    EXPECT_LT(centre(lines).lightness(), centre(plain).lightness() - 40);
    EXPECT_LT(at(lines, 0.25, 0.25).lightness(), at(plain, 0.25, 0.25).lightness() - 40);
    EXPECT_EQ(at(lines, 0.75, 0.25), at(plain, 0.75, 0.25));
    EXPECT_EQ(at(lines, 0.3, 0.7), at(plain, 0.3, 0.7));
}

TEST_F(PictureTest, NormalsAreShownAsStored)
{
    options.shading = Halvard::Orv::Render::Shading::Normals;
    const QByteArray corners = "\nf 1/1/1 2/2/1 3/3/1 4/4/1\n";
    const auto shown = [&](const char *normal) {
        return centre(draw(QByteArray(square) + "vn " + normal + corners));
    };
    const auto near = [](int value, int expected) { return std::abs(value - expected) <= 1; };
    const QColor up = shown("0 3 0");
    EXPECT_TRUE(near(up.red(), 128) && near(up.green(), 255) && near(up.blue(), 128));
    const QColor front = shown("0 0 1");
    EXPECT_TRUE(near(front.red(), 128) && near(front.green(), 128) && near(front.blue(), 255));
    // One that points away from the viewer is turned round, of whatever length.
    EXPECT_EQ(shown("0 0 -1e30"), front);
    const QColor none = shown("0 0 0");
    EXPECT_TRUE(near(none.red(), 128) && near(none.green(), 128) && near(none.blue(), 128));
}

/// No driver draws a million pixels in a row, however much memory there is.
TEST_F(PictureTest, ErrorsSayWhetherMemoryIsMissing)
{
    const GPUModel model;
    PictureError error;
    EXPECT_TRUE(renderPicture(model, QSize(1'000'000, 2), angles, options, error).isNull());
    EXPECT_EQ(error.text,
              QStringLiteral("The OpenGL driver cannot draw a picture of 1000000x2 pixels."));
    EXPECT_FALSE(error.lacksMemory);
    error = noMemoryFor(QSize(1'000'000, 2));
    EXPECT_EQ(error.text, QStringLiteral("There is no memory for a picture of 1000000x2 pixels."));
    EXPECT_TRUE(error.lacksMemory);
}

} // namespace
