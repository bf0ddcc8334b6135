// examples/window: what it draws on a display without a screen, and what it measures.
#include "support/TemporaryModel.h"

#include "ExamplePicture.h"
#include "ExampleRun.h"

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace {

using OrvTest::colourAt;
using OrvTest::ExampleRun;
using OrvTest::expectColour;
using OrvTest::runExample;
using OrvTest::samplePath;

/// How many frames or steps a line of the report is about.
int countIn(const QByteArray &report, const char *line)
{
    const QRegularExpression pattern(
        QStringLiteral("^%1: (\\d+) (?:frames|steps), half of them within [\\d.]+ ms, "
                       "99 % within [\\d.]+ ms, the longest [\\d.]+ ms$")
            .arg(QLatin1String(line)),
        QRegularExpression::MultilineOption);
    const auto match = pattern.match(QString::fromLatin1(report));
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

/// The part of a surface's colour that is seen where it looks along `normal`, as the camera has it.
float lightOn(const QVector3D &normal)
{
    const QVector3D toLight = QVector3D(0.4f, 1, 0.7f).normalized();
    return 0.3f + 0.7f * std::max(QVector3D::dotProduct(normal, toLight), 0.0f);
}

} // namespace

TEST(WindowExampleTest, GoesOnDrawingWhileItLoads)
{
    const ExampleRun run = runExample({QStringLiteral("--measure"), QStringLiteral("0.3"),
                                       samplePath("quad_sphere.obj"), samplePath("lighthouse.obj"),
                                       samplePath("textured_cube.obj")});
    EXPECT_EQ(run.status, 0) << run;
    EXPECT_GE(countIn(run.out, "without a load"), 2) << run;
    EXPECT_GE(countIn(run.out, "while preparing"), 2) << run;
    // One frame each for two models' indices, positions, normals and texture coordinates, and for
    // four images and one.
    EXPECT_GE(countIn(run.out, "while uploading"), 2 * 4 + 4 + 1) << run;
    EXPECT_GE(countIn(run.out, "the uploads alone"), 2 * 4 + 4 + 1) << run;
    EXPECT_EQ(countIn(run.out, "a model's first frame"), 2) << run;
    EXPECT_EQ(run.out.count('\n'), 5) << run;
}

TEST(WindowExampleTest, DrawsTheLastModelLitFromAbove)
{
    const OrvTest::TemporaryModel files;
    const QString path = files.path(QStringLiteral("picture.png"));
    const ExampleRun run =
        runExample({QStringLiteral("--measure"), QStringLiteral("0.1"), QStringLiteral("--picture"),
                    path, samplePath("lighthouse.obj"), samplePath("quad_sphere.obj")});
    ASSERT_EQ(run.status, 0) << run;
    const QImage picture(path);
    ASSERT_FALSE(picture.isNull());

    // A sphere, which looks the same from all sides, but for its fields of two colours. It is seen
    // from the distance at which the sphere around its box just fits in.
    const float distance = 1 / std::sin(0.35f);
    QMatrix4x4 projection;
    projection.perspective(40, float(picture.width()) / float(picture.height()), distance - 1,
                           distance + 1);
    const QVector3D orange(0.85f, 0.36f, 0.12f), cream(0.93f, 0.88f, 0.76f);
    for (const QVector3D &direction : {QVector3D(0, 1, 0.8f), QVector3D(0.5f, 0.5f, 1),
                                       QVector3D(-1, 0, 1), QVector3D(0, -1, 1)}) {
        SCOPED_TRACE(testing::Message() << direction.x() << ' ' << direction.y());
        const QVector3D normal = direction.normalized();
        const QColor seen =
            colourAt(picture, projection, QVector3D(0, 0, -distance) + normal / std::sqrt(3.0f));
        const QVector3D paint = seen.blue() * 2 < seen.red() ? orange : cream;
        const QVector3D expected = paint * lightOn(normal);
        expectColour(seen, double(expected.x()), double(expected.y()), double(expected.z()), 6);
    }
    expectColour(picture.pixelColor(0, 0), 0.1, 0.12, 0.15);
}

TEST(WindowExampleTest, SaysWhatIsWrong)
{
    const OrvTest::TemporaryModel files;
    const QString missing = files.path(QStringLiteral("missing.obj"));
    const ExampleRun run =
        runExample({QStringLiteral("--measure"), QStringLiteral("0.1"), missing});
    EXPECT_EQ(run.status, 1) << run;
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(
        run.err.endsWith("Failed to load OBJ file '" + missing.toLocal8Bit() + "': no such file\n"))
        << run;
    EXPECT_EQ(runExample({}).status, 2);
}
