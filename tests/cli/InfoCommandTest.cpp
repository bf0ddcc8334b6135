#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::Not;

/// A quad and a triangle that share an edge, and nothing else; a texture that
/// exists and one that does not.
class InfoCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        _files.write(QStringLiteral("here.png"), "not looked into");
        _files.write(QStringLiteral("m.mtl"), "newmtl a\nmap_Kd here.png\nnewmtl b\nKd 1 1 1\n"
                                              "map_Ks gone.png\n");
        _model =
            _files.write(QStringLiteral("m.obj"), "mtllib m.mtl\n"
                                                  "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 2 0 -3\n"
                                                  "vt 0 0\nvt 1 1\nvn 0 0 1\n"
                                                  "usemtl a\nf 1/1/1 2/1/1 3/1/1 4/1/1\n"
                                                  "usemtl b\nf 2/1/1 5/1/1 3/1/1\n");
    }

    TemporaryModel _files;
    QString _model;
};

TEST_F(InfoCommandTest, JSONSaysWhatIsInTheModel)
{
    const OrvRun run = runOrv({QStringLiteral("info"), _model, QStringLiteral("--json")});
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    const QJsonObject info = run.json();

    const QJsonObject file{{QStringLiteral("name"), _model},
                           {QStringLiteral("bytes"), QFileInfo(_model).size()},
                           {QStringLiteral("positions"), 5},
                           {QStringLiteral("normals"), 1},
                           {QStringLiteral("texCoords"), 2},
                           {QStringLiteral("faces"), 2},
                           {QStringLiteral("facesByCornerCount"),
                            QJsonObject{{QStringLiteral("3"), 1}, {QStringLiteral("4"), 1}}},
                           {QStringLiteral("corners"), 7},
                           {QStringLiteral("facesNotDrawn"), 0},
                           {QStringLiteral("notDrawn"), QJsonArray()}};
    EXPECT_EQ(valueAt(info, "file").toObject(), file);

    // 3 triangles of 16-bit indices; 5 vertices of 3 and 2 floats; 2 commands of 20 bytes.
    const QJsonObject attributes{{QStringLiteral("va_Vertex"), 5 * 12},
                                 {QStringLiteral("va_Normal"), 5 * 12},
                                 {QStringLiteral("va_TexCoord"), 5 * 8}};
    const QJsonObject bytes{{QStringLiteral("indices"), 9 * 2},
                            {QStringLiteral("attributes"), attributes},
                            {QStringLiteral("commands"), 2 * 20},
                            {QStringLiteral("total"), 18 + 60 + 60 + 40 + 40}};
    const QJsonObject gpu{{QStringLiteral("verticesBeforeWelding"), 7},
                          {QStringLiteral("verticesAfterWelding"), 5},
                          {QStringLiteral("triangles"), 3},
                          {QStringLiteral("bundles"), 1},
                          {QStringLiteral("commands"), 2},
                          {QStringLiteral("bytes"), bytes}};
    EXPECT_EQ(valueAt(info, "gpu").toObject(), gpu);

    const QJsonObject box{{QStringLiteral("minimum"), QJsonArray{0, 0, -3}},
                          {QStringLiteral("maximum"), QJsonArray{2, 1, 0}}};
    EXPECT_EQ(valueAt(info, "boundingBox").toObject(), box);
}

TEST_F(InfoCommandTest, JSONSaysWhichTexturesExist)
{
    const QJsonObject info =
        runOrv({QStringLiteral("info"), QStringLiteral("--json"), _model}).json();
    const QJsonArray materials = valueAt(info, "materials").toArray();
    ASSERT_EQ(materials.size(), 2);
    QHash<QString, QJsonValue> byName;
    for (const QJsonValue material : materials)
        byName.insert(valueAt(material, "name").toString(), material);

    const auto texture = [this](const char *name, bool exists) {
        return QJsonObject{{QStringLiteral("path"), _files.path(QString::fromLatin1(name))},
                           {QStringLiteral("exists"), exists}};
    };
    const QJsonValue a = byName[QStringLiteral("a")];
    EXPECT_EQ(valueAt(a, "triangles").toInt(), 2);
    EXPECT_EQ(valueAt(a, "textures").toObject(),
              (QJsonObject{{QStringLiteral("map_Kd"), texture("here.png", true)}}));
    const QJsonValue b = byName[QStringLiteral("b")];
    EXPECT_EQ(valueAt(b, "triangles").toInt(), 1);
    EXPECT_EQ(valueAt(b, "textures").toObject(),
              (QJsonObject{{QStringLiteral("map_Ks"), texture("gone.png", false)}}));
}

TEST_F(InfoCommandTest, TheBoxIsOfWhatIsDrawn)
{
    const QString model = _files.write(QStringLiteral("n.obj"),
                                       "v 9 9 9\nv -7 0 0\nv nan 0 0\nv 0 0 0\nv 1 0 0\nv 0 2 0\n"
                                       "f 4 5 6\nf 4 5 3\nusemtl unknown\nf 2 4 5\n");
    const QJsonObject info =
        runOrv({QStringLiteral("info"), QStringLiteral("--json"), model}).json();
    const QJsonObject box{{QStringLiteral("minimum"), QJsonArray{0, 0, 0}},
                          {QStringLiteral("maximum"), QJsonArray{1, 2, 0}}};
    EXPECT_EQ(valueAt(info, "boundingBox").toObject(), box);
}

TEST_F(InfoCommandTest, TheTimesAddUp)
{
    const OrvRun run = runOrv({QStringLiteral("info"), QStringLiteral("--json"), _model});
    const QJsonObject times = valueAt(run.json(), "nanoseconds").toObject();
    double sum = 0;
    for (const char *stage : {"read", "weld", "triangulate", "normals", "other"}) {
        const double time = times[QLatin1String(stage)].toDouble(-1);
        EXPECT_GE(time, 0) << stage;
        sum += time;
    }
    EXPECT_GT(sum, 0);
    EXPECT_EQ(times[QStringLiteral("total")].toDouble(), sum);
    EXPECT_EQ(times.size(), 6);
}

TEST_F(InfoCommandTest, TextIsAligned)
{
    const OrvRun run = runOrv({QStringLiteral("info"), _model});
    ASSERT_EQ(run.status, 0);
    const std::string text = run.out.toStdString();
    EXPECT_THAT(text, HasSubstr("\n  positions                            5\n"));
    EXPECT_THAT(text, HasSubstr("\n  normals                              1\n"));
    EXPECT_THAT(text, HasSubstr("\n  faces                                2\n"
                                "    of 3 corners                       1\n"
                                "    of 4 corners                       1\n"
                                "  corners                              7\n"));
    EXPECT_THAT(text, HasSubstr("\n  vertices before welding              7\n"
                                "  vertices after welding               5\n"
                                "  triangles                            3\n"));
    EXPECT_THAT(text, HasSubstr("\n  z                                   -3  to 0\n"));
    EXPECT_THAT(text, HasSubstr("\n    map_Kd  " +
                                _files.path(QStringLiteral("here.png")).toStdString() + "\n"));
    EXPECT_THAT(text,
                HasSubstr("\n    map_Ks  " + _files.path(QStringLiteral("gone.png")).toStdString() +
                          "  (missing)\n"));
}

TEST_F(InfoCommandTest, LargeNumbersAreGrouped)
{
    QByteArray contents = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    for (int i = 0; i < 1234; ++i)
        contents += "f 1 2 3\n";
    const OrvRun run =
        runOrv({QStringLiteral("info"), _files.write(QStringLiteral("n.obj"), contents)});
    EXPECT_THAT(run.out.toStdString(), HasSubstr("\n  faces                            1,234\n"));
    EXPECT_THAT(run.out.toStdString(),
                HasSubstr("\n  normals                              0  generated\n"));
}

TEST_F(InfoCommandTest, ManyKindsOfFacesAreSummedUp)
{
    QByteArray contents = "v 0 0 0\n";
    for (int corners = 0; corners < 12; ++corners)
        contents += "f" + QByteArray(" 1").repeated(corners) + '\n';
    const OrvRun run =
        runOrv({QStringLiteral("info"), _files.write(QStringLiteral("n.obj"), contents)});
    const std::string text = run.out.toStdString();
    EXPECT_THAT(text, HasSubstr("    of 0 corners                       1\n"
                                "    of 1 corner                        1\n"));
    EXPECT_THAT(text, HasSubstr("    of 7 corners                       1\n"
                                "    of more corners                    4  up to 11\n"));
    EXPECT_THAT(text, Not(HasSubstr("of 8 corners")));
}

TEST_F(InfoCommandTest, AnEmptyModelHasNoBox)
{
    const QString empty = _files.write(QStringLiteral("empty.obj"), "");
    const QJsonObject info =
        runOrv({QStringLiteral("info"), empty, QStringLiteral("--json")}).json();
    EXPECT_TRUE(valueAt(info, "boundingBox").isNull());
    EXPECT_EQ(valueAt(info, "materials"), QJsonArray());
    EXPECT_EQ(valueAt(info, "gpu.bundles").toInt(-1), 0);
    const OrvRun text = runOrv({QStringLiteral("info"), empty});
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out.toStdString(),
                HasSubstr("\nMaterials\n  none\n\nBounding box\n  empty\n"));
}

} // namespace
