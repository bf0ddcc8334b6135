// The dump of tiny models against what the rules say, worked out by hand.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;

OrvRun dumpOf(const QString &model, const QStringList &options = {})
{
    return runOrv(QStringList{QStringLiteral("dump"), model} + options);
}

OrvRun dumpOfText(const QByteArray &contents)
{
    const TemporaryModel files;
    return dumpOf(files.write(QStringLiteral("m.obj"), contents));
}

QByteArray indented(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

QByteArray indented(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_TRUE(document.isObject()) << error.errorString().toStdString();
    return document.toJson();
}

QJsonValue firstBundle(const OrvRun &run)
{
    return valueAt(run.json(), "bundles.0");
}

/// The record of each instance, as the loader makes it.
const char identityInstance[] = R"({ "name": "InstanceInfo", "values": {
    "ModelMatrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1],
    "ModelNormalMatrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1],
    "PreviousModelMatrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1] },
    "textures": {} })";

const char defaultMaterial[] = R"({ "name": "OBJMaterial", "values": {
    "Ka": [0, 0, 0], "Kd": [0.7, 0.7, 0.7], "Ks": [1, 1, 1], "Ns": [10], "d": [1] },
    "textures": { "map_Kd": "texture", "map_Ks": "texture" } })";

//   4 --- 3
//   |   / |     The quad is split between its corners 2 and 4 (numbered from 1),
//   | /   |     as convex quads are; one GPU vertex per corner, none is shared.
//   1 --- 2
TEST(DumpCommandTest, AQuadWithTextureCoordinatesAndNormals)
{
    const OrvRun run = dumpOfText("v 0 0 0\nv 2 0 0\nv 2 1 0\nv 0 1 0\n"
                                  "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                                  "vn 0 0 1\n"
                                  "f 1/1/1 2/2/1 3/3/1 4/4/1\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    const QByteArray expected = QByteArray(R"({
        "vertexCount": 4, "indexType": 5123, "indices": [0, 1, 3, 1, 2, 3],
        "attributes": {
            "va_Normal": { "components": 3, "type": 5126,
                           "values": [0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1] },
            "va_TexCoord": { "components": 2, "type": 5126,
                             "values": [0, 0, 1, 0, 1, 1, 0, 1] },
            "va_Vertex": { "components": 3, "type": 5126,
                           "values": [0, 0, 0, 2, 0, 0, 2, 1, 0, 0, 1, 0] } },
        "bundles": [ { "key": 0, "primitiveType": 4, "vertexCount": 4,
            "indexCount": 6, "indexType": 5123,
            "commands": [ { "count": 6, "instanceCount": 1, "firstIndex": 0, "baseVertex": 0,
                            "baseInstance": 0, "material": "<default>", "object": "" } ],
            "materials": [ )") + defaultMaterial +
                                R"( ], "instances": [ )" + identityInstance + " ] } ] }";
    EXPECT_EQ(indented(run.json()), indented(expected));
}

TEST(DumpCommandTest, GeneratedNormalsPointToTheClockwiseSide)
{
    const OrvRun run = dumpOfText("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    const QJsonValue attributes = valueAt(run.json(), "attributes");
    EXPECT_EQ(valueAt(attributes, "va_Normal.values"), (QJsonArray{0, 0, -1, 0, 0, -1, 0, 0, -1}));
    EXPECT_TRUE(valueAt(attributes, "va_TexCoord").isUndefined());
}

TEST(DumpCommandTest, MaterialsAndTexturesOfALibrary)
{
    const TemporaryModel files;
    files.write(QStringLiteral("sub/m.mtl"), "newmtl red\nKd 1 0 0\nNs 0.1\nmap_Kd r.png\n"
                                             "newmtl unused\nKd 0 1 0\n");
    const QString model = files.write(QStringLiteral("m.obj"), "mtllib sub/m.mtl\n"
                                                               "v 0 0 0\nv 1 0 0\nv 0 1 0\n"
                                                               "usemtl red\nf 1 2 3\n");
    const QJsonValue bundle = firstBundle(dumpOf(model));
    EXPECT_EQ(valueAt(bundle, "commands.0.material").toString(), QStringLiteral("red"));
    const QJsonObject expected{
        {QStringLiteral("name"), QStringLiteral("OBJMaterial")},
        {QStringLiteral("values"), QJsonObject{{QStringLiteral("Kd"), QJsonArray{1, 0, 0}},
                                               {QStringLiteral("Ns"), QJsonArray{0.1}},
                                               {QStringLiteral("d"), QJsonArray{1}}}},
        {QStringLiteral("textures"),
         QJsonObject{{QStringLiteral("map_Kd"), files.path(QStringLiteral("sub/r.png"))}}}};
    EXPECT_EQ(indented(valueAt(bundle, "materials.0").toObject()), indented(expected));
    EXPECT_EQ(valueAt(bundle, "materials").toArray().size(), 1);
}

TEST(DumpCommandTest, EveryMaterialHasItsRunOfTheIndices)
{
    const TemporaryModel files;
    files.write(QStringLiteral("m.mtl"), "newmtl a\nnewmtl b\n");
    const QString model =
        files.write(QStringLiteral("m.obj"), "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\n"
                                             "f 1 2 3\nusemtl a\nf 1 2 4\nf 2 4 3\nusemtl b\n"
                                             "f 1 2 4 3\nusemtl a\nf 1 4 3\n");
    const QJsonValue bundle = firstBundle(dumpOf(model));
    QHash<QString, int> indicesOf;
    int next = 0;
    for (const QJsonValue command : valueAt(bundle, "commands").toArray()) {
        const int count = valueAt(command, "count").toInt();
        EXPECT_EQ(valueAt(command, "firstIndex").toInt(), next);
        indicesOf[valueAt(command, "material").toString()] = count;
        next += count;
    }
    const QHash<QString, int> expected{
        {QStringLiteral("<default>"), 3}, {QStringLiteral("a"), 9}, {QStringLiteral("b"), 6}};
    EXPECT_EQ(indicesOf, expected);
    EXPECT_EQ(valueAt(bundle, "indexCount").toInt(), next);
}

TEST(DumpCommandTest, FloatsReadBackAsTheyAre)
{
    const OrvRun run =
        dumpOfText("v -0 0.1 1e-45\nv 3.4028235e38 nan inf\nv -1e99 16777217 0.33333333\n"
                   "f 1 2 3\n");
    EXPECT_THAT(run.out.toStdString(), HasSubstr("        -0, 0.1, 1e-45,\n"
                                                 "        \"inf\", \"nan\", \"inf\",\n"
                                                 "        \"-inf\", 16777216, 0.33333334\n"));
}

TEST(DumpCommandTest, AModelWithoutFacesIsEmpty)
{
    const char expected[] = R"({ "vertexCount": 0, "indexType": 5123, "indices": [],
                                 "attributes": {}, "bundles": [] })";
    for (const char *contents : {"", "v 0 0 0\n", "v 0 0 0\nusemtl unknown\nf 1 1 1\n"}) {
        const OrvRun run = dumpOfText(contents);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(indented(run.json()), indented(QByteArray(expected))) << contents;
    }
}

/// Triangles that share no vertex.
QByteArray modelOfVertices(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "v " + QByteArray::number(i) + ' ' + QByteArray::number(i % 3) + " 0\n";
    for (int i = 0; i + 2 < count; i += 3)
        text += "f " + QByteArray::number(i + 1) + ' ' + QByteArray::number(i + 2) + ' ' +
                QByteArray::number(i + 3) + '\n';
    return text;
}

TEST(DumpCommandTest, ManyVerticesHaveWideIndices)
{
    const QJsonObject narrow = dumpOfText(modelOfVertices(65532)).json();
    EXPECT_EQ(valueAt(narrow, "vertexCount").toInt(), 65532);
    EXPECT_EQ(valueAt(narrow, "indexType").toInt(), 5123);
    const QJsonObject wide = dumpOfText(modelOfVertices(65535)).json();
    EXPECT_EQ(valueAt(wide, "vertexCount").toInt(), 65535);
    EXPECT_EQ(valueAt(wide, "indexType").toInt(), 5125);
    EXPECT_EQ(valueAt(wide, "indices").toArray().last().toInt(), 65534);
}

TEST(DumpCommandTest, TwoRunsSayTheSame)
{
    const TemporaryModel files;
    QByteArray library;
    QByteArray faces = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\n";
    for (int i = 0; i < 40; ++i) {
        library += "newmtl m" + QByteArray::number(i) + "\nKd 0 0 1\n";
        faces += "usemtl m" + QByteArray::number(i) + "\nf 1/1 2/1 3/1\n";
    }
    files.write(QStringLiteral("m.mtl"), library);
    const QString model = files.write(QStringLiteral("m.obj"), faces);
    const OrvRun first = dumpOf(model);
    EXPECT_EQ(valueAt(first.json(), "bundles.0.commands").toArray().size(), 40);
    EXPECT_EQ(dumpOf(model).out, first.out);
}

TEST(DumpCommandTest, NamesAreInAlphabeticalOrder)
{
    const TemporaryModel files;
    files.write(QStringLiteral("m.mtl"), "newmtl a\nd 1\nNs 3\nKs 1 0 0\nKd 0 1 0\nKa 0 0 1\n"
                                         "map_Ns n.png\nmap_Kd d.png\n");
    const QString model =
        files.write(QStringLiteral("m.obj"), "mtllib m.mtl\nvt 0 0\nvn 0 0 1\nv 0 0 0\n"
                                             "usemtl a\nf 1/1/1 1/1/1 1/1/1\n");
    const QByteArray out = dumpOf(model).out;
    int last = 0;
    for (const char *name : {"va_Normal", "va_TexCoord", "va_Vertex", "Ka", "Kd", "Ks", "Ns", "d",
                             "map_Kd", "map_Ns", "ModelMatrix", "PreviousModelMatrix"}) {
        const int position = out.indexOf('"' + QByteArray(name) + '"');
        EXPECT_GT(position, last) << name;
        last = position;
    }
}

TEST(DumpCommandTest, AFileGetsTheSameAsStdout)
{
    const TemporaryModel files;
    const QString model =
        files.write(QStringLiteral("m.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    const QString output = files.write(QStringLiteral("out.json"), "what was there before");
    const OrvRun run = dumpOf(model, {QStringLiteral("-o"), output});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    QFile file(output);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), dumpOf(model).out);
}

TEST(DumpCommandTest, AFailedLoadLeavesTheFileAlone)
{
    const TemporaryModel files;
    const QString output = files.write(QStringLiteral("out.json"), "precious");
    const OrvRun run =
        dumpOf(files.path(QStringLiteral("missing.obj")), {QStringLiteral("-o"), output});
    EXPECT_EQ(run.status, 1);
    QFile file(output);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "precious");
    EXPECT_EQ(QDir(files.directory()).entryList(QDir::Files).size(), 1);
}

TEST(DumpCommandTest, AFullDiskLeavesTheFileAlone)
{
    // Small enough to wait in a buffer until the end, and far beyond any buffer.
    for (const int vertexCount : {30, 30000}) {
        const TemporaryModel files;
        const QString model = files.write(QStringLiteral("m.obj"), modelOfVertices(vertexCount));
        const QString output = files.write(QStringLiteral("out.json"), "precious");
        const OrvRun run =
            runOrvWithSmallFiles({QStringLiteral("dump"), model, QStringLiteral("-o"), output});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.toStdString(),
                  "orv: Cannot write '" + output.toStdString() + "': File too large.\n");
        QFile file(output);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), "precious");
        EXPECT_EQ(QDir(files.directory()).entryList(QDir::Files).size(), 2);
    }
}

TEST(DumpCommandTest, PipesAreWrittenToNotReplaced)
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("m.obj"), "v 0 0 0\nf 1 1 1\n");
    const QString pipe = files.path(QStringLiteral("pipe"));
    const QByteArray name = pipe.toLocal8Bit();
    ASSERT_EQ(mkfifo(name.constData(), 0600), 0);
    // Open for both, so that neither end waits for the other.
    const int end = open(name.constData(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(end, 0);

    EXPECT_EQ(dumpOf(model, {QStringLiteral("-o"), pipe}).status, 0);

    QByteArray bytes(65536, '\0');
    const ssize_t count = read(end, bytes.data(), size_t(bytes.size()));
    close(end);
    EXPECT_EQ(bytes.left(int(count)), dumpOf(model).out);
    EXPECT_FALSE(QFileInfo(pipe).isFile());
}

TEST(DumpCommandSeedTest, TheOutputIsTheSameForEverySeedOfQtsHashTables)
{
    // In UTF-16 it is read line by line, through the builder's tables.
    QByteArray text = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\n";
    QByteArray library;
    for (const char *name : {"oak", "ash", "elm", "fir", "yew", "box", "bay"}) {
        library += QByteArray("newmtl ") + name + "\nmap_Kd " + name + ".png\nKs 1 0 0\n";
        text += QByteArray("usemtl ") + name + "\nf 1/1 2/1 3/1\n";
    }
    QByteArray wide("\xff\xfe", 2);
    for (const char character : text)
        wide += QByteArray(1, character) + '\0';
    const TemporaryModel files;
    files.write(QStringLiteral("m.mtl"), library);
    for (const QByteArray &contents : {text, wide}) {
        const QString model = files.write(QStringLiteral("m.obj"), contents);
        const auto dumped = [&model](int seed) {
            return runOrv({QStringLiteral("dump"), model},
                          {QStringLiteral("QT_HASH_SEED=%1").arg(seed)})
                .out;
        };
        const QByteArray first = dumped(0);
        EXPECT_FALSE(first.isEmpty());
        for (int seed = 1; seed <= 5; ++seed)
            EXPECT_EQ(dumped(seed), first) << seed;
    }
}

} // namespace
