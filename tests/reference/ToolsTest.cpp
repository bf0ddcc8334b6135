// The comparison and the shrinking: a judge whose verdict is not heard would be no use.

#include "reference/JudgedTexts.h"
#include "reference/ModelGenerator.h"
#include "reference/Shrinking.h"
#include "reference/UnusedValues.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>

namespace {

using namespace OrvReference;
using ::testing::IsEmpty;
using ::testing::SizeIs;

UploadedModel sample()
{
    return judged(modelOf("mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\nf 1 2\n",
                          "newmtl red\nmap_Kd a.png\n"));
}

void setFloat(QByteArray &bytes, int index, quint32 bits)
{
    std::memcpy(bytes.data() + 4 * index, &bits, sizeof bits);
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
     [](UploadedModel &, Bundle &bundle) {
         setFloat(bundle.attributes[QStringLiteral("va_Vertex")].bytes, 3, 0x3f800001u);
     }},
    {"sign of a zero",
     [](UploadedModel &, Bundle &bundle) {
         setFloat(bundle.attributes[QStringLiteral("va_Normal")].bytes, 0, 0x80000000u);
     }},
    {"a value too many",
     [](UploadedModel &, Bundle &bundle) {
         bundle.attributes[QStringLiteral("va_Vertex")].bytes.append("1234");
     }},
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
     [](UploadedModel &, Bundle &bundle) {
         setFloat(bundle.materials.records[0].members[0].bytes, 0, 0);
     }},
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
    const QString normals = QStringLiteral("va_Normal");
    setFloat(expected.bundles[0].attributes[normals].bytes, 0, 0x7fc00000u);
    setFloat(actual.bundles[0].attributes[normals].bytes, 0, 0xffc00001u);
    EXPECT_THAT(differences(expected, actual), IsEmpty());
    expected.hasGeneratedNormals = false;
    EXPECT_THAT(differences(expected, actual), SizeIs(1));
}

TEST(Messages, OnlyAnAddressIsCutOff)
{
    const OrvTest::Message statistics{QtDebugMsg, "0x7f00 Vertices Map 1"};
    const OrvTest::Message other{QtDebugMsg, "(nil) Vertices Map 1"};
    const auto messages = withoutAddresses({statistics, other});
    EXPECT_EQ(messages[0].text, "Vertices Map 1");
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
