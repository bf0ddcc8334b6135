// examples/arrays: areas and volumes of bodies for which there are formulas.
#include "support/TemporaryModel.h"

#include "ExampleRun.h"

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>

#include <cmath>

namespace {

using OrvTest::ExampleRun;
using OrvTest::runExample;
using OrvTest::samplePath;

/// A box from `x`, `y`, `z` on, of 2 by 3 by 4; its faces look outwards.
QByteArray boxText(int x, int y, int z)
{
    QByteArray text;
    for (int corner = 0; corner < 8; ++corner)
        text += "v " + QByteArray::number(x + (corner & 1 ? 2 : 0)) + ' ' +
                QByteArray::number(y + (corner & 2 ? 3 : 0)) + ' ' +
                QByteArray::number(z + (corner & 4 ? 4 : 0)) + '\n';
    return text + "f 1 3 4 2\nf 5 6 8 7\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\nf 2 4 8 6\n";
}

// 2 * (2 * 3 + 3 * 4 + 4 * 2), 2 * 3 * 4
const char ofTheBox[] = "8 vertices, 12 triangles\n"
                        "<default>: area 52\n"
                        "area 52\n"
                        "volume 24, if the surface is closed\n";

/// The number behind `word` at the beginning of a line.
double numberAfter(const char *word, const QByteArray &text)
{
    const QRegularExpression line(QStringLiteral("^%1 (\\S+?),?(?: |$)").arg(QLatin1String(word)),
                                  QRegularExpression::MultilineOption);
    return line.match(QString::fromUtf8(text)).captured(1).toDouble();
}

} // namespace

TEST(ArraysExampleTest, MeasuresTheSidesOfACube)
{
    // Two a side: 6 * 2 * 2 and 2 * 2 * 2. No two sides share a vertex: their normals differ.
    EXPECT_EQ(runExample({samplePath("textured_cube.obj")}),
              (ExampleRun{0,
                          "24 vertices, 12 triangles\n"
                          "sides: area 24\n"
                          "area 24\n"
                          "volume 8, if the surface is closed\n",
                          ""}));
}

TEST(ArraysExampleTest, MeasuresMaterialsOneByOne)
{
    // A sphere of quads, its corners on the unit sphere: a little less than 4 pi and 4/3 pi.
    const ExampleRun run = runExample({samplePath("quad_sphere.obj")});
    EXPECT_EQ(run.status, 0) << run;
    const double pi = std::acos(-1.0);
    const double area = numberAfter("area", run.out);
    EXPECT_LT(area, 4 * pi);
    EXPECT_GT(area, 0.99 * 4 * pi);
    EXPECT_LT(numberAfter("volume", run.out), 4 * pi / 3);
    EXPECT_GT(numberAfter("volume", run.out), 0.98 * 4 * pi / 3);
    EXPECT_NEAR(numberAfter("orange: area", run.out) + numberAfter("cream: area", run.out), area,
                1e-4);
}

TEST(ArraysExampleTest, ReadsStandardInput)
{
    EXPECT_EQ(runExample({QStringLiteral("-")}, boxText(0, 0, 0)), (ExampleRun{0, ofTheBox, ""}));
}

TEST(ArraysExampleTest, MeasuresFarFromTheOriginAsWell)
{
    EXPECT_EQ(runExample({QStringLiteral("-")}, boxText(1000000, -2000000, 3000000)),
              (ExampleRun{0, ofTheBox, ""}));
}

TEST(ArraysExampleTest, FindsNothingInAModelWithoutFaces)
{
    EXPECT_EQ(runExample({QStringLiteral("-")}, "v 1 2 3\n"),
              (ExampleRun{0,
                          "0 vertices, 0 triangles\n"
                          "area 0\n"
                          "volume 0, if the surface is closed\n",
                          ""}));
}

TEST(ArraysExampleTest, SaysWhatIsWrong)
{
    const OrvTest::TemporaryModel files;
    const QString missing = files.path(QStringLiteral("missing.obj"));
    EXPECT_EQ(runExample({missing}),
              (ExampleRun{1, "", missing.toLocal8Bit() + ": No such file or directory\n"}));

    const QString model = files.write(QStringLiteral("model.obj"), "mtllib none.mtl\n");
    EXPECT_EQ(runExample({model}),
              (ExampleRun{1, "",
                          "Failed to load MTL file '" +
                              files.path(QStringLiteral("none.mtl")).toLocal8Bit() +
                              "': no such file\n"}));

    EXPECT_EQ(runExample({}),
              (ExampleRun{2, "", "Usage: arrays MODEL.obj, or arrays - to read standard input\n"}));
}
