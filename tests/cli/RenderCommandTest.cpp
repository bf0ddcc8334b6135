// Pictures as files. What is in them is the renderer's tests' matter.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QImage>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class RenderCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        _files.write(QStringLiteral("m.mtl"), "newmtl red\nKd 1 0 0\nnewmtl blue\nKd 0 0 1\n");
        // Side by side: a red square, and a blue one to its right.
        _model = _files.write(QStringLiteral("m.obj"),
                              "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nv 2 1 0\n"
                              "usemtl red\nf 1 2 5 4\nusemtl blue\nf 2 3 6 5\n");
        _picture = _files.path(QStringLiteral("out.png"));
    }

    OrvRun render(const QStringList &options, const QStringList &environment = {}) const
    {
        return runOrv(QStringList{QStringLiteral("render"), _model} + options, environment);
    }

    QStringList to(const QString &path) const { return {QStringLiteral("-o"), path}; }

    QStringList filesThere() const { return QDir(_files.directory()).entryList(QDir::Files); }

    TemporaryModel _files;
    QString _model;
    QString _picture;
};

TEST_F(RenderCommandTest, WritesAPictureOf800x600)
{
    const OrvRun run = render(to(_picture));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    const QImage image(_picture);
    EXPECT_EQ(image.size(), QSize(800, 600));
    EXPECT_FALSE(image.hasAlphaChannel());
}

TEST_F(RenderCommandTest, OptionsReachTheRenderer)
{
    const QStringList options = QStringLiteral("--size 120x80 --azimuth -180 --elevation 0 "
                                               "--background #102030")
                                    .split(QLatin1Char(' '));
    ASSERT_EQ(render(to(_picture) + options).status, 0);
    const QImage image(_picture);
    ASSERT_EQ(image.size(), QSize(120, 80));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(0x10, 0x20, 0x30));
    // Seen from behind, blue is on the left.
    EXPECT_GT(image.pixelColor(40, 40).blue(), 150);
    EXPECT_EQ(image.pixelColor(40, 40).red(), 0);
    EXPECT_GT(image.pixelColor(80, 40).red(), 150);
    EXPECT_EQ(image.pixelColor(80, 40).blue(), 0);
}

TEST_F(RenderCommandTest, WireframeAndNormalsChangeThePicture)
{
    const QString size = QStringLiteral("--size");
    const QString small = QStringLiteral("64x64");
    ASSERT_EQ(render(to(_picture) + QStringList{size, small}).status, 0);
    const QImage plain(_picture);
    ASSERT_EQ(render(to(_picture) + QStringList{size, small, QStringLiteral("--wireframe")}).status,
              0);
    const QImage lines(_picture);
    ASSERT_EQ(render(to(_picture) + QStringList{size, small, QStringLiteral("--normals")}).status,
              0);
    const QImage normals(_picture);
    EXPECT_NE(lines, plain);
    EXPECT_NE(normals, plain);
    EXPECT_NE(normals, lines);
}

TEST_F(RenderCommandTest, ABackgroundMayBeTransparent)
{
    const QStringList transparent{QStringLiteral("--background"), QStringLiteral("transparent")};
    ASSERT_EQ(render(to(_picture) + transparent).status, 0);
    const QImage image(_picture);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(400, 300).alpha(), 255);
}

TEST_F(RenderCommandTest, TheCameraMayStandAnywhere)
{
    // The middle of the blue square, from straight before it and near: nothing else is seen.
    const QStringList place = QStringLiteral("--azimuth 0 --elevation 0 --target=1.5,0.5,0 "
                                             "--distance 0.5 --size 60x40")
                                  .split(QLatin1Char(' '));
    ASSERT_EQ(render(to(_picture) + place).status, 0);
    const QImage image(_picture);
    for (const QPoint &corner : {QPoint(0, 0), QPoint(59, 39), QPoint(30, 20)}) {
        EXPECT_GT(image.pixelColor(corner).blue(), 150);
        EXPECT_EQ(image.pixelColor(corner).red(), 0);
    }
}

TEST_F(RenderCommandTest, ABackgroundMayHaveTwoColours)
{
    ASSERT_EQ(render(to(_picture) +
                     QStringList{QStringLiteral("--background"), QStringLiteral("#ff0000,#0000ff")})
                  .status,
              0);
    const QImage image(_picture);
    // Half a pixel of 600 from the border: 255 * (1 - 0.5 / 600) is 254.8.
    EXPECT_EQ(image.pixelColor(0, 0), QColor(255, 0, 0));
    EXPECT_EQ(image.pixelColor(0, 599), QColor(0, 0, 255));
}

TEST_F(RenderCommandTest, GridAndAxesAreDrawnWhereAskedFor)
{
    const QStringList plain =
        to(_picture) + QStringList{QStringLiteral("--background"), QStringLiteral("white")};
    ASSERT_EQ(render(plain).status, 0);
    const QImage without(_picture);
    ASSERT_EQ(render(plain + QStringList{QStringLiteral("--grid")}).status, 0);
    const QImage grid(_picture);
    ASSERT_EQ(render(plain + QStringList{QStringLiteral("--axes")}).status, 0);
    const QImage axes(_picture);

    // The lower left corner, where the axes are, and a strip above it.
    const QRect corner(0, 480, 160, 120);
    const QRect strip(0, 300, 800, 150);
    EXPECT_NE(axes.copy(corner), without.copy(corner));
    EXPECT_EQ(axes.copy(strip), without.copy(strip));
    EXPECT_NE(grid.copy(strip), without.copy(strip));
    // Upon the model there is neither.
    EXPECT_EQ(grid.pixelColor(400, 300), without.pixelColor(400, 300));
}

TEST_F(RenderCommandTest, TheSuffixSaysTheFormat)
{
    const QString bitmap = _files.path(QStringLiteral("out.BMP"));
    ASSERT_EQ(render(to(bitmap)).status, 0);
    EXPECT_EQ(QImage(bitmap, "BMP").size(), QSize(800, 600));

    for (const char *name : {"out.obj2", "out", "out."}) {
        const QString path = _files.path(QString::fromLatin1(name));
        const OrvRun run = render(to(path));
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.toStdString(), "orv: Cannot write '" + path.toStdString() +
                                             "': its suffix is not that of an image format such "
                                             "as .png.\n");
        EXPECT_FALSE(QFile::exists(path));
    }
}

TEST_F(RenderCommandTest, APictureMayGoToStdout)
{
    const OrvRun run = render(QStringLiteral("-o - --format png").split(QLatin1Char(' ')));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    ASSERT_EQ(render(to(_picture)).status, 0);
    EXPECT_EQ(QImage::fromData(run.out, "PNG"), QImage(_picture));
}

TEST_F(RenderCommandTest, TheFormatMayBeNamed)
{
    const QString file = _files.path(QStringLiteral("out.data"));
    ASSERT_EQ(render(to(file) + QStringLiteral("--format BMP").split(QLatin1Char(' '))).status, 0);
    EXPECT_EQ(QImage(file, "BMP").size(), QSize(800, 600));
    const OrvRun run = render(to(file) + QStringLiteral("--format obj").split(QLatin1Char(' ')));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "orv: There is no image format 'obj' to write.\n");
}

TEST_F(RenderCommandTest, TheAxisThatPointsUpIsAChoice)
{
    // Seen from its front, the squares lie side by side; with +x up, one above the other.
    const QStringList view =
        QStringLiteral("--size 90x90 --azimuth 0 --elevation 0 --up x").split(QLatin1Char(' '));
    ASSERT_EQ(render(to(_picture) + view).status, 0);
    const QImage image(_picture);
    EXPECT_GT(image.pixelColor(45, 20).blue(), 150);
    EXPECT_GT(image.pixelColor(45, 70).red(), 150);
}

TEST_F(RenderCommandTest, AFewFacesWithoutNormalsAreLitOneByOne)
{
    const QString cube = QStringLiteral(ORV_SAMPLES_DIR "/textured_cube.obj");
    QFile file(cube);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    // Its faces, without what they say of normals, textures and materials.
    QByteArray plain;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("v "))
            plain += line + '\n';
        if (!line.startsWith("f "))
            continue;
        plain += 'f';
        for (const QByteArray &corner : line.simplified().split(' ').mid(1))
            plain += ' ' + corner.split('/').first();
        plain += '\n';
    }
    const QString model = _files.write(QStringLiteral("cube.obj"), plain);
    const auto drawn = [&](const char *options) {
        QStringList call{QStringLiteral("render"), model,
                         QStringLiteral("-o"),     _picture,
                         QStringLiteral("--size"), QStringLiteral("90x90")};
        EXPECT_EQ(
            runOrv(call + QString::fromLatin1(options).split(QLatin1Char(' '), Qt::SkipEmptyParts))
                .status,
            0);
        return QImage(_picture);
    };
    const QImage chosen = drawn("");
    EXPECT_EQ(chosen, drawn("--shading flat"));
    EXPECT_NE(chosen, drawn("--shading material"));
    EXPECT_NE(drawn("--normals"), chosen);
    EXPECT_EQ(drawn("--normals"), drawn("--shading normals"));
}

TEST_F(RenderCommandTest, APlaceThatCannotBeWrittenIsSaidAtOnce)
{
    // Before the load: the model is not even there.
    QFile::remove(_model);
    const QString path = _files.path(QStringLiteral("no/such/out.png"));
    const OrvRun run = render(to(path));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.toStdString(),
              "orv: Cannot write '" + path.toStdString() + "': there is no such directory.\n");

    const QString directory = _files.path(QStringLiteral("dir.png"));
    ASSERT_TRUE(QDir().mkpath(directory));
    EXPECT_EQ(render(to(directory)).err.toStdString(),
              "orv: Cannot write '" + directory.toStdString() + "': it is a directory.\n");
}

TEST_F(RenderCommandTest, AnOlderPictureIsReplacedAndNothingElseLeft)
{
    _files.write(QStringLiteral("out.png"), "older");
    const QStringList before = filesThere();
    ASSERT_EQ(render(to(_picture)).status, 0);
    EXPECT_FALSE(QImage(_picture).isNull());
    EXPECT_EQ(filesThere(), before);
}

TEST_F(RenderCommandTest, AFailureKeepsTheOlderPicture)
{
    _files.write(QStringLiteral("out.png"), "older");
    QFile::remove(_files.path(QStringLiteral("m.mtl")));
    const OrvRun run = render(to(_picture));
    EXPECT_EQ(run.status, 1);
    QFile file(_picture);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "older");
    EXPECT_EQ(filesThere(), (QStringList{QStringLiteral("m.obj"), QStringLiteral("out.png")}));
}

TEST_F(RenderCommandTest, AFullDiskKeepsTheOlderPicture)
{
    _files.write(QStringLiteral("out.png"), "older");
    const QStringList before = filesThere();
    const OrvRun run =
        runOrvWithSmallFiles(QStringList{QStringLiteral("render"), _model} + to(_picture));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.toStdString(),
              "orv: Cannot write '" + _picture.toStdString() + "': File too large.\n");
    QFile file(_picture);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "older");
    EXPECT_EQ(filesThere(), before);
}

TEST_F(RenderCommandTest, AModelWithNothingToDrawGivesABackgroundAndAWarning)
{
    const QString empty = _files.write(QStringLiteral("empty.obj"), "");
    const OrvRun run = runOrv({QStringLiteral("render"), empty, QStringLiteral("-o"), _picture});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(),
              "orv: warning: There is nothing to draw in '" + empty.toStdString() + "'.\n");
    EXPECT_EQ(QImage(_picture).size(), QSize(800, 600));
}

TEST_F(RenderCommandTest, DriversThatCannotTellDrawsApartGiveTheSamePicture)
{
    ASSERT_EQ(render(to(_picture)).status, 0);
    const QImage atOnce(_picture);
    // Mesa's switch; other drivers do not know it and have the extension all the same.
    ASSERT_EQ(render(to(_picture), {QStringLiteral("MESA_EXTENSION_OVERRIDE="
                                                   "-GL_ARB_shader_draw_parameters")})
                  .status,
              0);
    EXPECT_EQ(QImage(_picture), atOnce);
}

} // namespace
