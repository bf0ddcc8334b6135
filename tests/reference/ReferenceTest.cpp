#include "reference/ReferenceTexts.h"
#include "support/QtPrinting.h"

#include <gmock/gmock.h>

namespace {

using namespace OrvReference;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

/// The bundle of a model that has to have one.
Bundle bundleOf(const ModelFiles &model)
{
    const UploadedModel result = loadByReference(model);
    EXPECT_FALSE(result.isNull) << result.error.toStdString();
    EXPECT_THAT(result.bundles, SizeIs(1));
    return result.bundles.empty() ? Bundle() : result.bundles.front();
}

TEST(Reference, AQuadOfItsOwn)
{
    const ModelFiles quad = modelOf("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n");
    const Bundle bundle = bundleOf(quad);
    EXPECT_EQ(bundle.vertexCount, 4u);
    EXPECT_EQ(bundle.primitiveType, 4u);
    EXPECT_EQ(bundle.indexType, 0x1403u);
    EXPECT_THAT(bundle.indices, ElementsAre(0, 1, 3, 1, 2, 3));
    EXPECT_THAT(bundle.values("va_Vertex"), ElementsAre(0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0));
    EXPECT_THAT(bundle.values("va_Normal"), ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1));
    EXPECT_THAT(bundle.attributes, SizeIs(2));
    ASSERT_THAT(bundle.commands, SizeIs(1));
    EXPECT_EQ(bundle.commands[0].count, 6u);
    EXPECT_EQ(bundle.commands[0].material, QStringLiteral("<default>"));
    EXPECT_THAT(
        loadByReference(quad).messages,
        ElementsAre(Message{QtDebugMsg,
                            "(address) Vertices Map        4 ->        4 d        0 (100 %) 4"}));
}

TEST(Reference, EqualCornersAreWelded)
{
    // Vertices 1 and 4 are equal, 1 and 5 are not: zero and minus zero differ in their bytes.
    const ModelFiles model = modelOf("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 0\nv -0 0 0\n"
                                     "f 1 2 3\nf 4 2 3\nf 5 2 3\n");
    EXPECT_THAT(bundleOf(model).indices, ElementsAre(0, 1, 2, 0, 1, 2, 3, 1, 2));
    EXPECT_THAT(
        loadByReference(model).messages,
        ElementsAre(Message{QtDebugMsg,
                            "(address) Vertices Map        9 ->        4 d        5 ( 44 %) 4"}));
}

TEST(Reference, CornersWithOtherNormalsStayApart)
{
    const Bundle bundle = bundleOf(modelOf("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 0 1\nvn 0 0 2\n"
                                           "f 1//1 2//1 3//1\nf 1//2 2//1 3//1\n"));
    EXPECT_THAT(bundle.indices, ElementsAre(0, 1, 2, 3, 1, 2));
    EXPECT_THAT(bundle.values("va_Normal"), ElementsAre(0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 2));
}

TEST(Reference, WhatAnIndexDoesNotSelectIsZeros)
{
    // Beyond the end, before the start, absent, and the forward reference that is fine.
    const Bundle bundle = bundleOf(modelOf("v 1 1 1\nv 2 2 2\nf 3 9 -3\nf 0 1 2\nv 3 3 3\n"));
    EXPECT_THAT(bundle.values("va_Vertex"), ElementsAre(3, 3, 3, 0, 0, 0, 1, 1, 1, 2, 2, 2));
    EXPECT_THAT(bundle.indices, ElementsAre(0, 1, 1, 1, 2, 3));
}

TEST(Reference, NegativeIndicesCountLinesAlsoThoseOfZeros)
{
    const Bundle bundle = bundleOf(modelOf("v 1 0 0\nv x\nv 3 0 0\nf -1 -2 -3\nv 4 0 0\n"));
    EXPECT_THAT(bundle.values("va_Vertex"), ElementsAre(3, 0, 0, 0, 0, 0, 1, 0, 0));
}

TEST(Reference, AnAttributeThatComesLateServesTheFirstCorners)
{
    // The normals' indices 0, 0, 1 were given by the second face and serve the first.
    const Bundle bundle = bundleOf(modelOf("v 1 0 0\nv 2 0 0\nv 3 0 0\nf 1 2 3\n"
                                           "vn 0 0 1\nvn 1 0 0\nf 1//1 2//1 3//2\n"));
    EXPECT_EQ(bundle.vertexCount, 6u);
    EXPECT_THAT(bundle.values("va_Normal"),
                ElementsAre(0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(Reference, NothingToDraw)
{
    const char *const texts[] = {"", "# only this\n", "v 0 0 0\n", "f 1 2 3\n", "f\n",
                                 "vn 0 0 1\nf 1 2 3\n",
                                 // Values that no corner could have an index to.
                                 "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nvn 0 0 1\n",
                                 // Faces in no group.
                                 "v 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl none\nf 1 2 3\n"};
    for (const char *const text : texts) {
        const UploadedModel model = loadByReference(modelOf(text));
        EXPECT_FALSE(model.isNull) << text;
        EXPECT_EQ(model.error, UploadedModel::untouchedError()) << text;
        EXPECT_THAT(model.bundles, IsEmpty()) << text;
    }
}

TEST(Reference, FacesOfFewCornersAreCommandsOfNothing)
{
    const UploadedModel model = loadByReference(modelOf("v 0 0 0\nv 1 0 0\nf\nf 1\nf 1 2 # 3\n"));
    ASSERT_THAT(model.bundles, SizeIs(1));
    ASSERT_THAT(model.bundles[0].commands, SizeIs(1));
    EXPECT_EQ(model.bundles[0].commands[0].count, 0u);
    EXPECT_EQ(model.bundles[0].vertexCount, 2u);
    const Message few{QtWarningMsg, "Cannot triangulate a polygon with fewer than 3 vertices"};
    EXPECT_THAT(model.messages,
                ElementsAre(Message{QtDebugMsg, "(address) Vertices Map        3 ->        2 d  "
                                                "      1 ( 66 %) 4"},
                            few, few, few));
}

TEST(Reference, FacesWithABadCornerAreNone)
{
    const Bundle bundle = bundleOf(modelOf("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3 x\nf 1 2 3#\n"
                                           "f 1 2 3.0\nf 1 2 2147483648\nf 1 2 3/x\nf 1 2 3//x\n"
                                           "f 3/1/1/x 2/// +1\n"));
    EXPECT_THAT(bundle.indices, ElementsAre(0, 1, 2));
    EXPECT_THAT(bundle.values("va_Vertex"), ElementsAre(0, 1, 0, 1, 0, 0, 0, 0, 0));
}

TEST(Reference, LinesAreTextWithoutCarriageReturns)
{
    const Bundle bundle = bundleOf(modelOf("v 2\r3 \t1 1\r\n\xc2\xa0v\xe2\x80\x83"
                                           "4 4 4\n  v 5 5 5\n"
                                           "V 6 6 6\nf 1 2 3"));
    EXPECT_THAT(bundle.values("va_Vertex"), ElementsAre(23, 1, 1, 4, 4, 4, 5, 5, 5));
}

const char *const Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";

TEST(Reference, MaterialsHaveRunsOfTheIndices)
{
    const std::string text = std::string("mtllib a.mtl\n") + Triangle +
                             "f 1 2 3\nusemtl red\nf 3 2 1\nusemtl none\nf 1 2 3\n"
                             "usemtl red\nf 2 1 3\nusemtl <default>\nf 3 1 2\n";
    const Bundle bundle = bundleOf(modelOf(text.c_str(), "newmtl unused\nnewmtl red\n"));
    ASSERT_THAT(bundle.commands, SizeIs(2));
    const bool redFirst = bundle.commands[0].material == QLatin1String("red");
    const Command &red = bundle.commands[redFirst ? 0 : 1];
    const Command &other = bundle.commands[redFirst ? 1 : 0];
    EXPECT_EQ(red.material, QStringLiteral("red"));
    EXPECT_EQ(other.material, QStringLiteral("<default>"));
    EXPECT_EQ(red.count, 6u);
    EXPECT_EQ(red.firstIndex, redFirst ? 0u : 6u);
    EXPECT_EQ(other.count, 6u);
    EXPECT_EQ(other.firstIndex, redFirst ? 6u : 0u);
    const auto at = [&bundle](quint32 first) {
        return std::vector<quint32>(bundle.indices.begin() + first,
                                    bundle.indices.begin() + first + 6);
    };
    EXPECT_THAT(at(red.firstIndex), ElementsAre(2, 1, 0, 1, 0, 2));
    EXPECT_THAT(at(other.firstIndex), ElementsAre(0, 1, 2, 2, 0, 1));
}

/// The members of the material "red" of a library, as "name=values".
std::vector<std::string> redMaterial(const char *library, QString *directory = nullptr)
{
    const std::string text = std::string("mtllib a.mtl\n") + Triangle + "usemtl red\nf 1 2 3\n";
    const WrittenModel written(modelOf(text.c_str(), library));
    if (directory)
        *directory = written.objPath().section(QLatin1Char('/'), 0, -2);
    const UploadedModel model = loadByReference(written.objPath());
    std::vector<std::string> members;
    if (model.bundles.size() != 1 || model.bundles[0].materials.records.size() != 1)
        return {"no material"};
    EXPECT_EQ(model.bundles[0].materials.name, QStringLiteral("OBJMaterial"));
    EXPECT_EQ(model.bundles[0].materials.records[0].plan, QStringLiteral("OBJMaterial"));
    for (const Member &member : model.bundles[0].materials.records[0].members) {
        std::string shown = member.name.toStdString() + '=' + member.path.toStdString();
        const char *separator = "";
        for (const float value : member.floats()) {
            shown += separator + QByteArray::number(double(value)).toStdString();
            separator = " ";
        }
        members.push_back(shown);
    }
    return members;
}

TEST(Reference, MaterialsStartOpaque)
{
    EXPECT_THAT(redMaterial("Kd 1 0 0\nd 0.5\nnewmtl red\n"), ElementsAre("d=1"));
    EXPECT_THAT(redMaterial("newmtl red\nKa 0 1 2 # grey\n Ns 5\nd .5\nKd 1 2 3\nd .25\n"),
                ElementsAre("d=0.25", "Ka=0 1 2", "Ns=5", "Kd=1 2 3"));
}

TEST(Reference, MaterialLinesThatDoNotParseAreNone)
{
    EXPECT_THAT(redMaterial("newmtl red\nKd 1 1\nKs a 1 1\nNs\nkd 1 1 1\nillum 2\nnewmtl\nNs 7x\n"),
                ElementsAre("d=1", "Ns=7"));
}

TEST(Reference, TheFirstMaterialOfANameStays)
{
    EXPECT_THAT(redMaterial("newmtl red\nNs 1\nnewmtl blue\nnewmtl red#2\nNs 2\n"),
                ElementsAre("d=1", "Ns=1"));
    EXPECT_THAT(redMaterial("newmtl blue\nNs 1\n"), ElementsAre("no material"));
}

TEST(Reference, TexturePathsAreResolvedBesideTheLibrary)
{
    QString directory;
    const auto members =
        redMaterial("newmtl red\nmap_Kd x/a.png\nmap_Ks /b.png\nmap_Ka -s 2 c.png\n"
                    "map_Ns\n",
                    &directory);
    EXPECT_THAT(members, ElementsAre("d=1", "map_Kd=" + directory.toStdString() + "/x/a.png",
                                     "map_Ks=/b.png", "map_Ka=" + directory.toStdString() + "/-s"));
}

TEST(Reference, TheDefaultMaterialIsNotRedefined)
{
    const std::string text = std::string("mtllib a.mtl\n") + Triangle + "f 1 2 3\n";
    const Bundle bundle = bundleOf(modelOf(text.c_str(), "newmtl <default>\nNs 3\n"));
    ASSERT_THAT(bundle.materials.records, SizeIs(1));
    EXPECT_THAT(bundle.materials.records[0].members, SizeIs(7));
    ASSERT_THAT(bundle.instances.records, SizeIs(1));
    EXPECT_EQ(bundle.instances.name, QStringLiteral("InstanceInfo"));
    EXPECT_THAT(bundle.instances.records[0].members, SizeIs(3));
}

TEST(Reference, MissingFilesAreNamed)
{
    const UploadedModel missing = loadByReference(QStringLiteral("no/such.obj"));
    EXPECT_TRUE(missing.isNull);
    EXPECT_EQ(missing.error, QStringLiteral("Failed to load OBJ file 'no/such.obj'"));

    const WrittenModel written(modelOf("v 0 0 0\nmtllib a.mtl\n"));
    const UploadedModel model = loadByReference(written.objPath());
    const QString directory = written.objPath().section(QLatin1Char('/'), 0, -2);
    EXPECT_TRUE(model.isNull);
    EXPECT_EQ(model.error, QStringLiteral("Failed to load MTL file '%1/a.mtl'").arg(directory));
}

} // namespace
