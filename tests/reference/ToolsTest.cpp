// The comparison and the shrinking: differences that are not told would be no use.

#include "reference/FileReading.h"
#include "reference/ModelGenerator.h"
#include "reference/ReferenceTexts.h"
#include "reference/Shrinking.h"
#include "reference/UnusedValues.h"
#include "support/ModelDifferences.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>

namespace {

using namespace OrvReference;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

ModelFiles sampleFiles()
{
    return modelOf("mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\nf 1 2\n",
                   "newmtl red\nmap_Kd a.png\n");
}

UploadedModel sample()
{
    return loadByReference(sampleFiles());
}

float floatOf(quint32 bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::vector<float> &valuesOf(Bundle &bundle, const char *attribute)
{
    return bundle.attributes[QLatin1String(attribute)].values;
}

struct Change
{
    const char *name;
    std::function<void(UploadedModel &, Bundle &)> apply;
};

const Change Changes[] = {
    {"null", [](UploadedModel &model, Bundle &) { model.isNull = true; }},
    {"error", [](UploadedModel &model, Bundle &) { model.error.clear(); }},
    {"bundles", [](UploadedModel &model, Bundle &bundle) { model.bundles.push_back(bundle); }},
    {"messages", [](UploadedModel &model, Bundle &) { model.messages.pop_back(); }},
    {"message level",
     [](UploadedModel &model, Bundle &) { model.messages[0].type = QtWarningMsg; }},
    {"message", [](UploadedModel &model, Bundle &) { model.messages[1].text += '!'; }},
    {"key", [](UploadedModel &, Bundle &bundle) { bundle.key = 1; }},
    {"instances of a record", [](UploadedModel &, Bundle &bundle) { bundle.instanceCount = 0; }},
    {"primitive", [](UploadedModel &, Bundle &bundle) { bundle.primitiveType = 5; }},
    {"vertex count", [](UploadedModel &, Bundle &bundle) { ++bundle.vertexCount; }},
    {"index type", [](UploadedModel &, Bundle &bundle) { bundle.indexType = 0x1405; }},
    {"index", [](UploadedModel &, Bundle &bundle) { bundle.indices[2] = 0; }},
    {"index count", [](UploadedModel &, Bundle &bundle) { bundle.indices.push_back(0); }},
    {"attribute gone", [](UploadedModel &, Bundle &bundle) { bundle.attributes.clear(); }},
    {"attribute too many",
     [](UploadedModel &, Bundle &bundle) { bundle.attributes[QStringLiteral("va_TexCoord")]; }},
    {"components",
     [](UploadedModel &, Bundle &bundle) {
         bundle.attributes[QStringLiteral("va_Vertex")].components = 2;
     }},
    {"type", [](UploadedModel &,
                Bundle &bundle) { bundle.attributes[QStringLiteral("va_Vertex")].type = 0; }},
    {"last bit of a value",
     [](UploadedModel &, Bundle &bundle) { valuesOf(bundle, "va_Vertex")[3] = 0x1.000002p0f; }},
    {"sign of a zero",
     [](UploadedModel &, Bundle &bundle) { valuesOf(bundle, "va_Normal")[0] = -0.0f; }},
    {"a value too many",
     [](UploadedModel &, Bundle &bundle) { valuesOf(bundle, "va_Vertex").push_back(1); }},
    {"commands", [](UploadedModel &, Bundle &bundle) { bundle.commands.clear(); }},
    {"count", [](UploadedModel &, Bundle &bundle) { bundle.commands[0].count = 0; }},
    {"instance count", [](UploadedModel &, Bundle &bundle) { ++bundle.commands[0].instanceCount; }},
    {"first index", [](UploadedModel &, Bundle &bundle) { ++bundle.commands[0].firstIndex; }},
    {"base vertex", [](UploadedModel &, Bundle &bundle) { ++bundle.commands[0].baseVertex; }},
    {"base instance", [](UploadedModel &, Bundle &bundle) { ++bundle.commands[0].baseInstance; }},
    {"material name", [](UploadedModel &, Bundle &bundle) { bundle.commands[0].material.clear(); }},
    {"object name",
     [](UploadedModel &, Bundle &bundle) { bundle.commands[0].object = QLatin1String(""); }},
    {"no materials", [](UploadedModel &, Bundle &bundle) { bundle.materials.isPresent = false; }},
    {"plan of the materials",
     [](UploadedModel &, Bundle &bundle) { bundle.materials.name.clear(); }},
    {"record gone", [](UploadedModel &, Bundle &bundle) { bundle.instances.records.clear(); }},
    {"plan of a record",
     [](UploadedModel &, Bundle &bundle) { bundle.materials.records[0].plan.clear(); }},
    {"member gone",
     [](UploadedModel &, Bundle &bundle) { bundle.materials.records[0].members.pop_back(); }},
    {"member's name",
     [](UploadedModel &, Bundle &bundle) { bundle.materials.records[0].members[0].name.clear(); }},
    {"member's value",
     [](UploadedModel &, Bundle &bundle) { bundle.materials.records[0].members[0].bytes.fill(0); }},
    {"texture's path",
     [](UploadedModel &, Bundle &bundle) { bundle.materials.records[0].members[1].path.clear(); }},
    {"texture", [](UploadedModel &,
                   Bundle &bundle) { bundle.materials.records[0].members[1].isTexture = true; }},
};

TEST(Differences, EveryChangeIsSeen)
{
    const UploadedModel expected = sample();
    ASSERT_THAT(expected.bundles, SizeIs(1));
    EXPECT_THAT(differences(expected, sample()).size(), 1u) << "the path alone is another one";
    EXPECT_THAT(differences(expected, expected), IsEmpty());
    for (const Change &change : Changes) {
        UploadedModel actual = expected;
        change.apply(actual, actual.bundles[0]);
        EXPECT_FALSE(differences(expected, actual).empty()) << change.name;
        EXPECT_FALSE(differences(actual, expected).empty()) << change.name;
    }
}

TEST(Differences, AnyNaNWillDoInGeneratedNormals)
{
    UploadedModel expected = sample();
    UploadedModel actual = expected;
    valuesOf(expected.bundles[0], "va_Normal")[0] = floatOf(0x7fc00000u);
    valuesOf(actual.bundles[0], "va_Normal")[0] = floatOf(0xffc00001u);
    EXPECT_THAT(differences(expected, actual), IsEmpty());
    expected.hasGeneratedNormals = false;
    EXPECT_THAT(differences(expected, actual), SizeIs(1));
}

TEST(Differences, AreToldInWords)
{
    const UploadedModel expected = sample();
    UploadedModel actual = expected;
    valuesOf(actual.bundles[0], "va_Vertex")[4] = -0.0f;
    valuesOf(actual.bundles[0], "va_Vertex")[3] = floatOf(0x7fc00001u);
    actual.bundles[0].indices[2] = 7;
    EXPECT_THAT(
        differences(expected, actual),
        ElementsAre("index 2: expected 2, got 7",
                    "attribute \"va_Vertex\", vertex 1, component 0: expected 0x1p+0 (1), got nan "
                    "(bits 0x7fc00001)",
                    "attribute \"va_Vertex\", vertex 1, component 1: expected 0x0p+0 (0), got "
                    "-0x0p+0 (-0)"));
}

struct PlainChange
{
    const char *name;
    std::function<void(PlainModel &)> apply;
};

const PlainChange PlainChanges[] = {
    {"corner count", [](PlainModel &model) { ++model.cornerCounts[1]; }},
    {"face", [](PlainModel &model) { model.cornerCounts.push_back(0); }},
    {"sign of a zero", [](PlainModel &model) { model.positions().values[0] = -0.0f; }},
    {"value gone", [](PlainModel &model) { model.positions().values.pop_back(); }},
    {"index", [](PlainModel &model) { ++model.positions().indices[4]; }},
    {"index gone", [](PlainModel &model) { model.positions().indices.pop_back(); }},
    {"attribute", [](PlainModel &model) { model.texCoords(); }},
    {"components",
     [](PlainModel &model) { model.attributes[QStringLiteral("va_Vertex")].components = 2; }},
    {"group", [](PlainModel &model) { model.groups.pop_back(); }},
    {"group's name", [](PlainModel &model) { model.groups[0].name += QLatin1Char('!'); }},
    {"group's face", [](PlainModel &model) { model.groups[1].faces[0] = 1; }},
    {"face of no group", [](PlainModel &model) { model.groups[1].faces.clear(); }},
    {"group's record", [](PlainModel &model) { model.groups[1].material.members.pop_back(); }},
};

TEST(Differences, EveryChangeOfAPlainModelIsSeen)
{
    const WrittenModel written(sampleFiles());
    PlainModel expected;
    QString error;
    ASSERT_TRUE(readOBJFile(written.objPath(), expected, error));
    EXPECT_THAT(differences(expected, expected), IsEmpty());
    for (const PlainChange &change : PlainChanges) {
        PlainModel actual = expected;
        change.apply(actual);
        EXPECT_THAT(differences(expected, actual), SizeIs(1)) << change.name;
        EXPECT_THAT(differences(actual, expected), SizeIs(1)) << change.name;
    }
}

TEST(Messages, OnlyAnAddressIsReplaced)
{
    const Message statistics{QtDebugMsg, "0x7f00 Vertices Map 1"};
    const Message other{QtDebugMsg, "(nil) Vertices Map 1"};
    const auto messages = withoutAddresses({statistics, other});
    EXPECT_EQ(messages[0].text, "(address) Vertices Map 1");
    EXPECT_EQ(messages[1], other);
}

TEST(Shrinking, LeavesWhatShows)
{
    const ModelFiles model{"UTF-8",
                           {{QStringLiteral("model.obj"), "v 1 2 3\nf 1 2 3\nf 4 5 6\nv 7 8 9\n"},
                            {QStringLiteral("a.mtl"), "newmtl a\nKd 1 1 1\n"},
                            {QStringLiteral("b.mtl"), "newmtl b\nKd 2 2 2\n"}}};
    const auto shows = [](const ModelFiles &candidate) {
        return candidate.files[0].contents.contains("f 4") && candidate.files.size() > 1 &&
               candidate.files[1].contents.contains("Kd");
    };
    const ModelFiles small = shrunk(model, shows, 1000);
    EXPECT_TRUE(small.localeCodec.isEmpty());
    ASSERT_EQ(small.files.size(), 2u);
    EXPECT_EQ(small.files[0].contents, "f 4");
    EXPECT_EQ(small.files[1].contents, "Kd");
}

TEST(Shrinking, UnusedValuesLeaveTheFacesAsTheyWere)
{
    const QByteArray text = "v a\nvt x\nv b\nvt y\nv\nv d\nf 4/2 2 -1/1\nf 2//9 x/y\n";
    EXPECT_EQ(withoutUnusedValues(text, "v"),
              QByteArray("vt x\nv b\nvt y\nv d\nf 2/2 1 -1/1\nf 1//9 x/y\n"));
    EXPECT_EQ(withoutUnusedValues(text, "vt"), text);
    EXPECT_EQ(withoutUnusedValues("vn x\nvn y\nf 1//2\n", "vn"), QByteArray("vn y\nf 1//1\n"));
}

TEST(Shrinking, KeepsToItsAttempts)
{
    const ModelFiles model = generateModel(1);
    int calls = 0;
    shrunk(
        model,
        [&calls](const ModelFiles &) {
            ++calls;
            return false;
        },
        7);
    EXPECT_EQ(calls, 7);
}

} // namespace
