// examples/draw: the pixels of its pictures.
#include "support/ImageFiles.h"
#include "support/TemporaryModel.h"

#include "ExamplePicture.h"
#include "ExampleRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using OrvTest::colourAt;
using OrvTest::ExampleRun;
using OrvTest::expectColour;
using OrvTest::runExample;
using OrvTest::samplePath;

const QSize pictureSize(640, 480);
const QVector3D toLight = QVector3D(0.4f, 1, 0.7f).normalized();

/// What the example looks through at a model whose box goes from -half to half.
QMatrix4x4 cameraFor(const QVector3D &half)
{
    const float distance = half.length() / std::sin(0.35f);
    QMatrix4x4 camera;
    camera.perspective(40, 640.0f / 480, distance - half.length(), distance + half.length());
    camera.lookAt(distance * QVector3D(0.5f, 0.4f, 1).normalized(), {0, 0, 0}, {0, 1, 0});
    return camera;
}

/// The part of a surface's colour that is seen where it looks along `normal`.
double lightOn(const QVector3D &normal)
{
    return 0.3 + 0.7 * std::max(double(QVector3D::dotProduct(normal.normalized(), toLight)), 0.0);
}

bool isBackground(QRgb pixel)
{
    return pixel == qRgb(26, 31, 38); // 0.1, 0.12 and 0.15 of 255, rounded
}

class DrawExampleTest : public ::testing::Test
{
protected:
    /// \param warnings what the example prints.
    QImage draw(const QString &model, const QByteArray &warnings = {})
    {
        const QString path = files.path(QStringLiteral("picture.png"));
        EXPECT_EQ(runExample({model, path}), (ExampleRun{0, "", warnings}));
        const QImage picture = QImage(path).convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(picture.size(), pictureSize);
        return picture;
    }

    OrvTest::TemporaryModel files;
};

/// Of each way down through the model, 10 pixels or more: whether it is lighter where it begins.
std::vector<bool> isLighterAbove(const QImage &picture)
{
    std::vector<bool> results;
    for (int x = 0; x < picture.width(); ++x) {
        int begin = 0;
        for (int y = 0; y < picture.height(); ++y) {
            if (!isBackground(picture.pixel(x, y)))
                continue;
            if (y == 0 || isBackground(picture.pixel(x, y - 1)))
                begin = y;
            const bool isLast = y + 1 == picture.height() || isBackground(picture.pixel(x, y + 1));
            if (isLast && y - begin >= 10)
                results.push_back(qGreen(picture.pixel(x, begin + 1)) >
                                  qGreen(picture.pixel(x, y - 1)));
        }
    }
    return results;
}

const char octahedron[] = "v 1 0 0\nv -1 0 0\nv 0 1 0\nv 0 -1 0\nv 0 0 1\nv 0 0 -1\n"
                          "f 3 5 1\nf 3 1 6\nf 3 6 2\nf 3 2 5\n"
                          "f 4 1 5\nf 4 6 1\nf 4 2 6\nf 4 5 2\n";

// Looks at +z, 2 wide and 2 high, with the whole of its image upon it.
const char square[] = "mtllib square.mtl\nusemtl painted\n"
                      "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\n"
                      "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 0 1\n"
                      "f 1/1/1 2/2/1 3/3/1 4/4/1\n";

} // namespace

TEST_F(DrawExampleTest, LightsGeneratedNormalsFromAbove)
{
    const QImage picture = draw(files.write(QStringLiteral("octahedron.obj"), octahedron));
    const QMatrix4x4 camera = cameraFor({1, 1, 1});
    // The default material's Kd is 0.7. Normals of the corners are interpolated over the faces.
    for (const QVector3D &place : {QVector3D(0.3f, 0.4f, 0.3f), QVector3D(-0.2f, 0.3f, 0.5f),
                                   QVector3D(0.3f, -0.4f, 0.3f), QVector3D(0.6f, -0.2f, 0.2f)}) {
        SCOPED_TRACE(testing::Message() << place.x() << ' ' << place.y() << ' ' << place.z());
        const double grey = 0.7 * lightOn(place);
        expectColour(colourAt(picture, camera, place), grey, grey, grey);
    }
}

TEST_F(DrawExampleTest, LightsTheSampleWithoutNormalsFromAbove)
{
    // A bent tube. Where it crosses itself, a way through it may begin or end in the middle.
    const std::vector<bool> results = isLighterAbove(draw(samplePath("generated_normals.obj")));
    ASSERT_GT(results.size(), 200u);
    EXPECT_GT(std::count(results.begin(), results.end(), true), 0.9 * double(results.size()));
}

TEST_F(DrawExampleTest, LightsStoredNormalsFromAbove)
{
    // The unit sphere, with its own normals, in fields of two colours: each place has one of them.
    const QImage picture = draw(samplePath("quad_sphere.obj"));
    const QMatrix4x4 camera = cameraFor({1, 1, 1});
    const QVector3D orange(0.85f, 0.36f, 0.12f), cream(0.93f, 0.88f, 0.76f);
    for (const QVector3D &direction :
         {QVector3D(0, 1, 0.3f), QVector3D(0.4f, 1, 0.7f), QVector3D(-1, 0.5f, 1),
          QVector3D(0.1f, 0.1f, 1), QVector3D(1, -0.5f, 1), QVector3D(0.1f, -1, 0.9f)}) {
        SCOPED_TRACE(testing::Message() << direction.x() << ' ' << direction.y());
        const QColor seen = colourAt(picture, camera, direction.normalized());
        const QVector3D paint = seen.blue() * 2 < seen.red() ? orange : cream;
        const QVector3D expected = paint * float(lightOn(direction));
        expectColour(seen, double(expected.x()), double(expected.y()), double(expected.z()), 4);
    }
}

TEST_F(DrawExampleTest, PutsTheImageOnTheRightSidesTheRightWayUp)
{
    const QImage picture = draw(samplePath("textured_cube.obj"));
    const QImage image(samplePath("textured_cube.png"));
    ASSERT_FALSE(image.isNull());
    const QMatrix4x4 camera = cameraFor({1, 1, 1});
    // Six fields, three in a row; sides without a name or an arrow where they are looked at.
    const struct
    {
        const char *name;
        QVector3D place;
        QVector3D normal;
        QPointF field; ///< where in the image, from the left and the bottom
    } rows[] = {
        {"front, left of the arrow", {-0.7f, 0.5f, 1}, {0, 0, 1}, {0.15 / 3, 0.75 / 2}},
        {"front, on the arrow", {0, 0.3f, 1}, {0, 0, 1}, {0.5 / 3, 0.65 / 2}},
        {"right, left of the arrow", {1, 0.5f, 0.7f}, {1, 0, 0}, {1.15 / 3, 0.75 / 2}},
        {"right, on the arrow", {1, 0.3f, 0}, {1, 0, 0}, {1.5 / 3, 0.65 / 2}},
        {"top, left of the arrow", {-0.7f, 1, -0.5f}, {0, 1, 0}, {1.15 / 3, 1.75 / 2}},
        {"top, on the arrow", {0, 1, -0.3f}, {0, 1, 0}, {1.5 / 3, 1.65 / 2}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const QColor paint = image.pixelColor(int(row.field.x() * image.width()),
                                              int((1 - row.field.y()) * image.height()));
        const double light = lightOn(row.normal);
        expectColour(colourAt(picture, camera, row.place), paint.redF() * light,
                     paint.greenF() * light, paint.blueF() * light, 6);
    }
}

TEST_F(DrawExampleTest, FramesTheWholeModel)
{
    for (const char *name : {"lighthouse.obj", "textured_cube.obj", "concave_polygons.obj"}) {
        SCOPED_TRACE(name);
        const QImage picture = draw(samplePath(name));
        int covered = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) {
                if (isBackground(picture.pixel(x, y)))
                    continue;
                ++covered;
                ASSERT_TRUE(x > 0 && y > 0 && x < picture.width() - 1 && y < picture.height() - 1);
            }
        EXPECT_GT(covered, picture.width() * picture.height() / 20);
    }
}

TEST_F(DrawExampleTest, ShowsAGreyImageOfAMaterialWithoutAColour)
{
    QImage image(4, 4, QImage::Format_Grayscale8);
    image.fill(QColor(200, 200, 200));
    files.write(QStringLiteral("grey.png"), OrvTest::encoded(image, "PNG"));
    files.write(QStringLiteral("square.mtl"), "newmtl painted\nmap_Kd grey.png\n");
    const QImage picture = draw(files.write(QStringLiteral("square.obj"), square));
    const double grey = 200.0 / 255 * lightOn({0, 0, 1});
    expectColour(colourAt(picture, cameraFor({1, 1, 0}), {0, 0, 0}), grey, grey, grey);
}

TEST_F(DrawExampleTest, ShowsTheColourOfAMaterialWhoseImageIsMissing)
{
    files.write(QStringLiteral("square.mtl"), "newmtl painted\nKd 0.2 0.4 0.8\nmap_Kd none.png\n");
    const QByteArray missing = files.path(QStringLiteral("none.png")).toLocal8Bit();
    const QImage picture = draw(files.write(QStringLiteral("square.obj"), square),
                                "The texture '" + missing + "' does not exist.\n");
    const double light = lightOn({0, 0, 1});
    expectColour(colourAt(picture, cameraFor({1, 1, 0}), {0, 0, 0}), 0.2 * light, 0.4 * light,
                 0.8 * light);
}

TEST_F(DrawExampleTest, DrawsOnlyTheBackgroundOfAnEmptyModel)
{
    const QImage picture = draw(files.write(QStringLiteral("empty.obj"), ""));
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ASSERT_TRUE(isBackground(picture.pixel(x, y))) << x << ' ' << y;
}

TEST_F(DrawExampleTest, SaysWhatIsWrong)
{
    const QString missing = files.path(QStringLiteral("missing.obj"));
    const QString picture = files.path(QStringLiteral("picture.png"));
    EXPECT_EQ(runExample({missing, picture}),
              (ExampleRun{1, "", "Failed to load OBJ file '" + missing.toLocal8Bit() + "'\n"}));
    EXPECT_EQ(runExample({samplePath("quad_sphere.obj"), files.path(QStringLiteral("none/a.png"))}),
              (ExampleRun{1, "", "The picture cannot be written.\n"}));
    EXPECT_EQ(runExample({}), (ExampleRun{1, "", "Usage: draw MODEL.obj OUT.png\n"}));
}
