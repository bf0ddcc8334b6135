#include "support/GLTest.h"
#include "support/LoadedOBJ.h"
#include "support/QtPrinting.h"
#include "support/StreamContents.h"
#include "support/TemporaryModel.h"

#include <OrvCore/InstanceDataCollection.h>

#include <QtCore/QDir>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A square of side 1 whose first corner is (1, 1, 0), counter-clockwise seen from
/// +z, and a point above it. No coordinates are all zeros.
///
///     4 --- 3
///     |     |    5 above 1
///     1 --- 2
const QByteArray Points = "v 1 1 0\nv 2 1 0\nv 2 2 0\nv 1 2 0\nv 1 1 5\n";
const QByteArray Library = "newmtl red\nKd 1 0 0\nnewmtl blue\nKd 0 0 1\nnewmtl unused\n";

/// Which of the points stands at a corner: 0 for zeros, -1 for anything else.
int pointNumber(float x, float y, float z)
{
    const float points[6][3] = {{0, 0, 0}, {1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 2, 0}, {1, 1, 5}};
    for (int number = 0; number < 6; ++number) {
        const float *point = points[number];
        if (point[0] == x && point[1] == y && point[2] == z)
            return number;
    }
    return -1;
}

/// The triangles of each material by the numbers of the points.
using Triangles = std::map<std::string, std::vector<int>>;

Triangles trianglesOf(const LoadedOBJ &loaded)
{
    Triangles triangles;
    for (const QString &material : loaded.materials()) {
        const std::string name = material.toStdString();
        const std::vector<float> corners = loaded.cornerValues(name.c_str(), "va_Vertex");
        std::vector<int> &numbers = triangles[name];
        for (std::size_t i = 0; i < corners.size(); i += 3)
            numbers.push_back(pointNumber(corners[i], corners[i + 1], corners[i + 2]));
    }
    return triangles;
}

class OBJLoading : public GLTest
{
protected:
    LoadedOBJ load(const QByteArray &text)
    {
        return LoadedOBJ(_directory.write(QStringLiteral("model.obj"), text));
    }

    TemporaryModel _directory;
};

TEST_F(OBJLoading, LoadsATriangle)
{
    LoadedOBJ loaded = load("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    ASSERT_FALSE(loaded.isEmpty());
    EXPECT_EQ(loaded.errorMessage(), UploadedModel::untouchedError());
    EXPECT_THAT(loaded.warnings(), IsEmpty());

    EXPECT_EQ(loaded.vertexCount(), 3u);
    EXPECT_EQ(loaded.indexType(), 0x1403u); // GL_UNSIGNED_SHORT
    EXPECT_THAT(loaded.indices(), ElementsAre(0, 1, 2));
    EXPECT_THAT(loaded.attributeNames(),
                ElementsAre(QStringLiteral("va_Normal"), QStringLiteral("va_Vertex")));
    EXPECT_EQ(loaded.components("va_Vertex"), 3);
    EXPECT_EQ(loaded.components("va_Normal"), 3);
    EXPECT_THAT(loaded.values("va_Vertex"), areFloats({0, 0, 0, 1, 0, 0, 0, 1, 0}));
    // The generated normals point to the side from which the corners run clockwise.
    EXPECT_THAT(loaded.values("va_Normal"), areFloats({0, 0, -1, 0, 0, -1, 0, 0, -1}));

    ASSERT_EQ(loaded.drawn().size(), 1u);
    const Drawn &drawn = loaded.drawn().front();
    EXPECT_EQ(drawn.command.material, QStringLiteral("<default>"));
    EXPECT_TRUE(drawn.command.object.isEmpty());
    EXPECT_EQ(drawn.command.count, 3u);
    EXPECT_EQ(drawn.command.instanceCount, 1u);
    EXPECT_EQ(drawn.command.firstIndex, 0u);
    EXPECT_EQ(drawn.command.baseVertex, 0);
    EXPECT_EQ(drawn.command.baseInstance, 0u);
    EXPECT_EQ(loaded.model().key(0), 0u);
    EXPECT_EQ(loaded.model().instanceCount(0), 1);
}

TEST_F(OBJLoading, LoadsEveryAttribute)
{
    const LoadedOBJ loaded = load("v 1 2 3\nv 4 5 6\nv 7 8 10\nvt .1 .2\nvt .3 .4 .5\n"
                                  "vn 0 0 1\nvn 2 0 0\nf 1/1/2 2/2/1 3/2/2\n");
    EXPECT_THAT(loaded.values("va_Vertex"), areFloats({1, 2, 3, 4, 5, 6, 7, 8, 10}));
    EXPECT_EQ(loaded.components("va_TexCoord"), 2);
    EXPECT_THAT(loaded.values("va_TexCoord"), areFloats({.1f, .2f, .3f, .4f, .3f, .4f}));
    // As they stand in the file, not normalised.
    EXPECT_THAT(loaded.values("va_Normal"), areFloats({2, 0, 0, 0, 0, 1, 2, 0, 0}));
    EXPECT_THAT(loaded.warnings(), IsEmpty());
}

struct DrawCase
{
    const char *name;
    QByteArray faces;
    Triangles triangles;
    int tooFewCorners; ///< how many faces are complained about
};

/// What follows the points in the file. "m.mtl" defines red, blue and unused.
const DrawCase DrawCases[] = {
    {"triangle", "f 1 2 3\n", {{"<default>", {1, 2, 3}}}, 0},
    {"quad", "f 1 2 3 4\n", {{"<default>", {1, 2, 4, 2, 3, 4}}}, 0},
    {"two faces", "f 1 2 3\nf 1 3 4\n", {{"<default>", {1, 2, 3, 1, 3, 4}}}, 0},
    {"no line end at the end", "f 1 2 3\nf 1 3 4", {{"<default>", {1, 2, 3, 1, 3, 4}}}, 0},
    {"things that are skipped",
     "o thing\ng left\ns off\nl 1 2\np 1\nf 1 2 3\nvp 1 2\nF 1 2 3\n",
     {{"<default>", {1, 2, 3}}},
     0},

    {"materials",
     "mtllib m.mtl\nusemtl red\nf 1 2 3\nusemtl blue\nf 1 3 4\nusemtl red\nf 2 3 4\n",
     {{"red", {1, 2, 3, 2, 3, 4}}, {"blue", {1, 3, 4}}},
     0},
    {"faces before the first material",
     "f 1 2 3\nmtllib m.mtl\nf 1 3 4\nusemtl red\nf 2 3 4\n",
     {{"<default>", {1, 2, 3, 1, 3, 4}}, {"red", {2, 3, 4}}},
     0},
    {"unknown material only", "usemtl red\nf 1 2 3\n", {}, 0},
    {"unknown material first",
     "usemtl none\nf 1 2 3\nusemtl <default>\nf 1 3 4\n",
     {{"<default>", {1, 3, 4}}},
     0},
    {"unknown material between",
     "f 1 2 3\nusemtl none\nf 2 3 4\nusemtl <default>\nf 1 3 4\n",
     {{"<default>", {1, 2, 3, 1, 3, 4}}},
     0},
    {"material before its library",
     "usemtl red\nf 1 2 3\nmtllib m.mtl\nf 1 3 4\n",
     {{"red", {1, 3, 4}}},
     0},
    {"material without a name",
     "usemtl\nf 1 2 3\nusemtl <default>\nf 1 3 4\n",
     {{"<default>", {1, 3, 4}}},
     0},
    {"name of two words", "mtllib m.mtl\nusemtl red metal\nf 1 2 3\n", {{"red", {1, 2, 3}}}, 0},
    {"name in other case", "mtllib m.mtl\nusemtl Red\nf 1 2 3\n", {}, 0},
    {"name with a comment sign", "mtllib m.mtl\nusemtl red#1\nf 1 2 3\n", {}, 0},
    {"library named twice",
     "mtllib m.mtl\nmtllib m.mtl\nusemtl red\nf 1 2 3\n",
     {{"red", {1, 2, 3}}},
     0},
    {"only the first library of a line",
     "mtllib m.mtl none.mtl\nusemtl red\nf 1 2 3\n",
     {{"red", {1, 2, 3}}},
     0},

    {"face with a bad corner",
     "f 1 x 3\nf 1 3 4\nf 1/x 2 3\nf 1 2 3#c\n",
     {{"<default>", {1, 3, 4}}},
     0},
    {"bad faces are not counted",
     "mtllib m.mtl\nusemtl red\nf x\nf 1 2 3\nusemtl blue\nf 1 2 x\nf 1 3 4\n",
     {{"red", {1, 2, 3}}, {"blue", {1, 3, 4}}},
     0},
    {"comment in a face", "f 1 2 3 # 4\n", {{"<default>", {1, 2, 3}}}, 0},

    {"counted backwards", "f -5 -4 -3\nf -5 -3 -2\n", {{"<default>", {1, 2, 3, 1, 3, 4}}}, 0},
    {"too far back", "f -6 2 3\n", {{"<default>", {0, 2, 3}}}, 0},
    {"very far back", "f -2147483648 2 3\n", {{"<default>", {0, 2, 3}}}, 0},
    {"beyond the last", "f 6 2 3\n", {{"<default>", {0, 2, 3}}}, 0},
    {"far beyond the last", "f 2147483646 2 3\n", {{"<default>", {0, 2, 3}}}, 0},
    {"as far as it goes", "f 2147483647 2 3\n", {{"<default>", {0, 2, 3}}}, 0},
    {"index zero", "f 0 2 3\n", {{"<default>", {0, 2, 3}}}, 0},
    {"nothing but absent corners", "f 0 0 0\n", {{"<default>", {0, 0, 0}}}, 0},
    {"the same corner", "f 1 1 1\n", {{"<default>", {1, 1, 1}}}, 0},

    {"one and two corners", "f 1\nf 1 2\nf 1 2 3\n", {{"<default>", {1, 2, 3}}}, 2},
    {"no corners first", "f\nf 1 2 3\n", {{"<default>", {1, 2, 3}}}, 1},
    {"no corners last", "f 1 2 3\nf\n", {{"<default>", {1, 2, 3}}}, 1},
    {"no corners but a comment", "f # 1\nf 1 2 3\nf # 1\n", {{"<default>", {1, 2, 3}}}, 2},
    {"nothing that gives a triangle", "f 1 2\n", {{"<default>", {}}}, 1},
    {"a material that gives no triangle",
     "mtllib m.mtl\nf 1 2 3\nusemtl red\nf 1\nf\n",
     {{"<default>", {1, 2, 3}}, {"red", {}}},
     2},
};

TEST_F(OBJLoading, DrawsFacesWithTheirMaterials)
{
    _directory.write(QStringLiteral("m.mtl"), Library);
    const Message tooFew{QtWarningMsg, "Cannot triangulate a polygon with fewer than 3 vertices"};
    for (const DrawCase &row : DrawCases) {
        SCOPED_TRACE(row.name);
        const LoadedOBJ loaded = load(Points + row.faces);
        ASSERT_TRUE(loaded.isModel());
        EXPECT_EQ(loaded.errorMessage(), UploadedModel::untouchedError());
        EXPECT_EQ(trianglesOf(loaded), row.triangles);
        EXPECT_EQ(loaded.isEmpty(), row.triangles.empty());
        EXPECT_EQ(loaded.warnings(),
                  std::vector<Message>(static_cast<std::size_t>(row.tooFewCorners), tooFew));
    }
}

/// Each group's run follows the one before, in whatever order the groups go.
TEST_F(OBJLoading, DrawsRunsOfOneElementBuffer)
{
    _directory.write(QStringLiteral("m.mtl"), Library);
    const LoadedOBJ loaded = load("mtllib m.mtl\n" + Points +
                                  "f 1 2 3\nusemtl red\nf 1 2 3 4\nusemtl blue\nf 1 3 4\nf 2 3 4\n"
                                  "usemtl red\nf 1 2 5\n");
    ASSERT_EQ(loaded.drawn().size(), 3u);
    unsigned first = 0;
    for (const Drawn &drawn : loaded.drawn()) {
        EXPECT_EQ(drawn.command.firstIndex, first) << drawn.command.material.toStdString();
        EXPECT_EQ(drawn.command.instanceCount, 1u);
        EXPECT_EQ(drawn.command.baseVertex, 0);
        EXPECT_EQ(drawn.command.baseInstance, 0u);
        first += drawn.command.count;
    }
    EXPECT_EQ(loaded.indices().size(), 3u + 9u + 6u);
    EXPECT_EQ(loaded.drawnWith("red").command.count, 9u);
    EXPECT_EQ(loaded.drawnWith("blue").command.count, 6u);
    EXPECT_EQ(loaded.drawnWith("<default>").command.count, 3u);
}

TEST_F(OBJLoading, WarnsOfPolygonsThatCannotBeCut)
{
    // Five corners in one place.
    const LoadedOBJ loaded = load(Points + "f 1 1 1 1 1\nf 1 2 3\n");
    EXPECT_EQ(trianglesOf(loaded), (Triangles{{"<default>", {1, 2, 3}}}));
    EXPECT_THAT(loaded.warnings(),
                ElementsAre(Message{QtWarningMsg, "Unable to triangulate polygon."}));
}

/// One line with the builder's address, the corners of all faces, drawn or not, the
/// vertices they became, the difference, the percentage kept, and the bytes of an
/// index.
TEST_F(OBJLoading, LogsHowManyVerticesWereWelded)
{
    const auto line = [](const std::string &numbers) {
        return ElementsAre("(address) Vertices Map " + numbers);
    };
    EXPECT_THAT(load(Points + "f 1 2 3 4\nf 1 2 3\nf 5\n").statistics(),
                line("       8 ->        5 d        3 ( 62 %) 4"));
    EXPECT_THAT(load(Points + "usemtl none\nf 1 2 3\n").statistics(),
                line("       3 ->        3 d        0 (100 %) 4"));
    EXPECT_THAT(load(Points + "f 1 1 1\n").statistics(),
                line("       3 ->        1 d        2 ( 33 %) 4"));
    EXPECT_THAT(load(Points + "f 1 2 3\nvn 0 0 1\n").statistics(), IsEmpty());
    EXPECT_THAT(load("").statistics(), IsEmpty());
}

TEST_F(OBJLoading, GivesEachCommandItsRecords)
{
    _directory.write(QStringLiteral("m.mtl"), Library);
    LoadedOBJ loaded =
        load("mtllib m.mtl\n" + Points + "f 1 2 3\nusemtl red\nf 1 2 3\nusemtl blue\nf 1 2 3\n");
    ASSERT_EQ(loaded.drawn().size(), 3u);
    EXPECT_THAT(described(loaded.drawnWith("<default>").record),
                ElementsAre("Ka 0 0 0", "Kd 0.7 0.7 0.7", "Ks 1 1 1", "Ns 10", "d 1",
                            "map_Kd texture", "map_Ks texture"));
    EXPECT_THAT(described(loaded.drawnWith("red").record), ElementsAre("Kd 1 0 0", "d 1"));
    EXPECT_THAT(described(loaded.drawnWith("blue").record), ElementsAre("Kd 0 0 1", "d 1"));

    const std::vector<float> identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (const Drawn &drawn : loaded.drawn()) {
        EXPECT_EQ(drawn.record.plan, QStringLiteral("OBJMaterial"));
        EXPECT_EQ(drawn.instance.plan, QStringLiteral("InstanceInfo"));
        const char *const matrices[] = {"ModelMatrix", "PreviousModelMatrix", "ModelNormalMatrix"};
        ASSERT_EQ(drawn.instance.members.size(), std::size(matrices));
        for (std::size_t i = 0; i < std::size(matrices); ++i) {
            EXPECT_EQ(drawn.instance.members[i].name, QLatin1String(matrices[i]));
            EXPECT_THAT(drawn.instance.members[i].floats(), areFloats(identity)) << matrices[i];
        }
    }
    EXPECT_EQ(loaded.model().materials(0)->name(), QStringLiteral("OBJMaterial"));
    EXPECT_EQ(loaded.model().materials(0)->records().size(), 3);
    EXPECT_EQ(loaded.model().instances(0)->name(), QStringLiteral("InstanceInfo"));
    EXPECT_EQ(loaded.model().instances(0)->records().size(), 3);
}

TEST_F(OBJLoading, KeepsTheFirstDefinitionAmongLibraries)
{
    _directory.write(QStringLiteral("1.mtl"), "newmtl a\nNs 1\n");
    _directory.write(QStringLiteral("2.mtl"), "newmtl a\nNs 2\nnewmtl b\nNs 3\n"
                                              "newmtl <default>\nNs 4\n");
    const LoadedOBJ loaded = load("mtllib 1.mtl\nmtllib 2.mtl\n" + Points +
                                  "f 1 2 3\nusemtl a\nf 1 2 3\nusemtl b\nf 1 2 3\n");
    EXPECT_THAT(described(loaded.drawnWith("a").record), ElementsAre("Ns 1", "d 1"));
    EXPECT_THAT(described(loaded.drawnWith("b").record), ElementsAre("Ns 3", "d 1"));
    // The default material is there before any library.
    EXPECT_THAT(loaded.drawnWith("<default>").record.member("Ns").floats(), areFloats({10}));
}

TEST_F(OBJLoading, FindsLibrariesAndTexturesBesideTheFilesThatNameThem)
{
    _directory.write(QStringLiteral("lib/m.mtl"), "newmtl a\nmap_Kd wood.png\n");
    _directory.write(QStringLiteral("model.obj"),
                     "mtllib lib/m.mtl\n" + Points + "usemtl a\nf 1 2 3\n");
    const std::string wood =
        "map_Kd " + _directory.path(QStringLiteral("lib/wood.png")).toStdString();

    const LoadedOBJ absolute(_directory.path(QStringLiteral("model.obj")));
    EXPECT_THAT(described(absolute.drawnWith("a").record), ElementsAre("d 1", wood));

    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(_directory.path(QStringLiteral("lib"))));
    const LoadedOBJ relative(QStringLiteral("../model.obj"));
    EXPECT_FALSE(relative.isEmpty());
    EXPECT_THAT(described(relative.drawnWith("a").record), ElementsAre("d 1", wood));
    QDir::setCurrent(before);
}

TEST_F(OBJLoading, LoadsAFileTwiceTheSame)
{
    _directory.write(QStringLiteral("m.mtl"), Library);
    const QString fileName = _directory.write(QStringLiteral("model.obj"),
                                              "mtllib m.mtl\n" + Points +
                                                  "vt 0 1\nf 1/1 2 3 4\nusemtl red\nf 1 2 5/1\n"
                                                  "usemtl blue\nf 3 4 5\nusemtl none\nf 2 3 5\n");
    const LoadedOBJ first(fileName);
    const LoadedOBJ second(fileName);
    EXPECT_EQ(first.attributeNames(), second.attributeNames());
    EXPECT_EQ(first.values("va_Vertex"), second.values("va_Vertex"));
    EXPECT_EQ(first.values("va_TexCoord"), second.values("va_TexCoord"));
    EXPECT_EQ(first.materials(), second.materials());
    for (const char *material : {"<default>", "red", "blue"}) {
        EXPECT_EQ(first.drawnWith(material).indices, second.drawnWith(material).indices);
        EXPECT_EQ(described(first.drawnWith(material).record),
                  described(second.drawnWith(material).record));
    }
}

TEST_F(OBJLoading, DoesNotMindTheLineEnds)
{
    _directory.write(QStringLiteral("m.mtl"), QByteArray(Library).replace("\n", "\r\n"));
    const QByteArray text = "mtllib m.mtl\n" + Points + "usemtl red\nf 1 2 3\n# x\n\nf 1 3 4";
    const Triangles expected{{"red", {1, 2, 3, 1, 3, 4}}};
    EXPECT_EQ(trianglesOf(load(text)), expected);
    EXPECT_EQ(trianglesOf(load(QByteArray(text).replace("\n", "\r\n"))), expected);
    EXPECT_EQ(trianglesOf(load(QByteArray(text).replace("\n", "\r\r\n"))), expected);
    EXPECT_EQ(trianglesOf(load(QByteArray(text).replace("\n", "\n\n") + "\n\n")), expected);
    // A CR is taken out wherever it stands.
    EXPECT_EQ(
        trianglesOf(load(QByteArray(text).replace("use", "u\rs\re").replace("f 1", "\rf\r 1\r"))),
        expected);
}

} // namespace
