// The dumps of the committed samples: the small ones worked out by hand, and what
// must be true of them all.
#include "cli/OrvProcess.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>

#include <vector>

namespace {

using namespace OrvTest;
using ::testing::ElementsAreArray;

QString samplePath(const QString &name)
{
    return QDir(QStringLiteral(ORV_SAMPLES_DIR)).absoluteFilePath(name);
}

OrvRun dumpOf(const QString &name)
{
    return runOrv({QStringLiteral("dump"), samplePath(name)});
}

/// The numbers at a path. The floats of the samples are short decimals, which are
/// printed as they were written.
std::vector<double> numbersAt(const QJsonObject &dump, const char *path)
{
    std::vector<double> numbers;
    for (const QJsonValue &value : valueAt(dump, path).toArray())
        numbers.push_back(value.toDouble());
    return numbers;
}

/// Triangles that the faces of an OBJ file give: two less than their corners. All
/// faces of the samples can be cut, and have a material.
int trianglesIn(const QString &name)
{
    QFile file(samplePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    int triangles = 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("f "))
            triangles += line.simplified().split(' ').size() - 1 - 2;
    }
    return triangles;
}

QStringList samples()
{
    return QDir(QStringLiteral(ORV_SAMPLES_DIR)).entryList({QStringLiteral("*.obj")});
}

// Each side has a normal of its own, so none of the 24 corners are welded, and GPU
// vertices are numbered as the corners of the file. A side with the vertices a, b, c
// and d is cut between b and d:
//
//     d --- c
//     | \   |     a b d   b c d
//     |   \ |
//     a --- b
TEST(SampleDumpTest, TheTexturedCube)
{
    const QJsonObject dump = dumpOf(QStringLiteral("textured_cube.obj")).json();
    EXPECT_EQ(valueAt(dump, "vertexCount").toInt(), 24);
    EXPECT_EQ(valueAt(dump, "indexType").toInt(), 0x1403);

    std::vector<double> indices;
    for (int a = 0; a < 24; a += 4)
        indices.insert(indices.end(), {a + 0., a + 1., a + 3., a + 1., a + 2., a + 3.});
    EXPECT_THAT(numbersAt(dump, "indices"), ElementsAreArray(indices));

    // The sides as the file lists them: front, right, back, left, top, bottom; each
    // corner is the value that its line's index selects.
    EXPECT_THAT(numbersAt(dump, "attributes.va_Vertex.values"),
                ElementsAreArray(
                    std::vector<double>{-1, -1, 1,  1,  -1, 1,  1,  1,  1,  -1, 1,  1,    // 1 2 3 4
                                        1,  -1, 1,  1,  -1, -1, 1,  1,  -1, 1,  1,  1,    // 2 5 6 3
                                        1,  -1, -1, -1, -1, -1, -1, 1,  -1, 1,  1,  -1,   // 5 7 8 6
                                        -1, -1, -1, -1, -1, 1,  -1, 1,  1,  -1, 1,  -1,   // 7 1 4 8
                                        -1, 1,  1,  1,  1,  1,  1,  1,  -1, -1, 1,  -1,   // 4 3 6 8
                                        -1, -1, -1, 1,  -1, -1, 1,  -1, 1,  -1, -1, 1})); // 7 5 2 1
    std::vector<double> normals;
    for (const std::vector<double> &side : std::vector<std::vector<double>>{
             {0, 0, 1}, {1, 0, 0}, {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}}) {
        for (int corner = 0; corner < 4; ++corner)
            normals.insert(normals.end(), side.begin(), side.end());
    }
    EXPECT_THAT(numbersAt(dump, "attributes.va_Normal.values"), ElementsAreArray(normals));
    const double third = 0.3333;
    const double thirds = 0.6667;
    EXPECT_THAT(numbersAt(dump, "attributes.va_TexCoord.values"),
                ElementsAreArray(std::vector<double>{
                    0,      0,   third,  0,   third,  0.5, 0,      0.5,  // 1 2 3 4
                    third,  0,   thirds, 0,   thirds, 0.5, third,  0.5,  // 2 5 6 3
                    thirds, 0,   1,      0,   1,      0.5, thirds, 0.5,  // 5 7 8 6
                    0,      0.5, third,  0.5, third,  1,   0,      1,    // 4 3 9 10
                    third,  0.5, thirds, 0.5, thirds, 1,   third,  1,    // 3 6 11 9
                    thirds, 0.5, 1,      0.5, 1,      1,   thirds, 1})); // 6 8 12 11

    EXPECT_EQ(valueAt(dump, "bundles").toArray().size(), 1);
    EXPECT_EQ(valueAt(dump, "bundles.0.commands").toArray().size(), 1);
    EXPECT_EQ(valueAt(dump, "bundles.0.commands.0.count").toInt(), 36);
    EXPECT_EQ(valueAt(dump, "bundles.0.commands.0.material").toString(), QStringLiteral("sides"));
    EXPECT_EQ(valueAt(dump, "bundles.0.materials.0.textures.map_Kd").toString(),
              samplePath(QStringLiteral("textured_cube.png")));
    EXPECT_THAT(numbersAt(dump, "bundles.0.materials.0.values.Ks"),
                ElementsAreArray({0.15, 0.15, 0.15}));
    EXPECT_THAT(numbersAt(dump, "bundles.0.materials.0.values.d"), ElementsAreArray({1.0}));
}

TEST(SampleDumpTest, TwoRunsSayTheSameOfEach)
{
    ASSERT_FALSE(samples().isEmpty());
    for (const QString &name : samples()) {
        const OrvRun first = dumpOf(name);
        EXPECT_EQ(first.status, 0) << name.toStdString();
        EXPECT_EQ(first.err, "") << name.toStdString();
        EXPECT_TRUE(first.out == dumpOf(name).out) << name.toStdString();
    }
}

TEST(SampleDumpTest, NumbersOfEachAgree)
{
    for (const QString &name : samples()) {
        SCOPED_TRACE(name.toStdString());
        const QJsonObject dump = dumpOf(name).json();
        const int vertexCount = valueAt(dump, "vertexCount").toInt();
        const std::vector<double> indices = numbersAt(dump, "indices");
        EXPECT_EQ(static_cast<int>(indices.size()), 3 * trianglesIn(name));
        EXPECT_THAT(indices, ::testing::Each(::testing::Lt(vertexCount)));

        const QJsonObject attributes = valueAt(dump, "attributes").toObject();
        EXPECT_TRUE(attributes.contains(QStringLiteral("va_Vertex")));
        EXPECT_TRUE(attributes.contains(QStringLiteral("va_Normal")));
        for (const QJsonValue &attribute : attributes)
            EXPECT_EQ(valueAt(attribute, "values").toArray().size(),
                      vertexCount * valueAt(attribute, "components").toInt());

        // The commands cut the indices into runs without a gap.
        const QJsonArray commands = valueAt(dump, "bundles.0.commands").toArray();
        EXPECT_EQ(valueAt(dump, "bundles.0.materials").toArray().size(), commands.size());
        EXPECT_EQ(valueAt(dump, "bundles.0.instances").toArray().size(), commands.size());
        int next = 0;
        for (const QJsonValue &command : commands) {
            EXPECT_EQ(valueAt(command, "firstIndex").toInt(), next);
            next += valueAt(command, "count").toInt();
        }
        EXPECT_EQ(next, static_cast<int>(indices.size()));
    }
}

} // namespace
