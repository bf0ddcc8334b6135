#include "reference/ModelGenerator.h"
#include "reference/Reference.h"
#include "reference/Shrinking.h"
#include "support/GLTest.h"
#include "support/ModelDifferences.h"
#include "support/ModelReadBack.h"
#include "support/PreparedContents.h"

#include <OrvModel/ModelPreparing.h>

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <algorithm>

namespace {

using namespace OrvReference;
using namespace OrvTest;

/// What is prepared of a file, without OpenGL.
UploadedModel prepareWithLibrary(const QString &fileName)
{
    const MessageCapture capture;
    UploadedModel result;
    const std::unique_ptr<Halvard::Orv::PreparedModel> prepared =
        Halvard::Orv::prepareModelFromOBJFile(fileName, result.error);
    if (prepared)
        result.bundles = contentsOf(*prepared).bundles;
    result.isNull = !prepared;
    result.messages = withoutAddresses(capture.messages());
    return result;
}

/// Where the reference implementation, the loader and what is prepared disagree about a model.
std::vector<std::string> disagreement(const ModelFiles &model)
{
    const WrittenModel written(model);
    const UploadedModel expected = loadByReference(written.objPath());
    const std::vector<std::string> found =
        differences(expected, loadWithLibrary(written.objPath()));
    return found.empty() ? differences(expected, prepareWithLibrary(written.objPath())) : found;
}

/// The environment's say, for long runs.
quint32 setting(const char *name, quint32 otherwise)
{
    bool ok = false;
    const uint value = qEnvironmentVariable(name).toUInt(&ok);
    return ok ? value : otherwise;
}

void reportFailure(quint32 seed, const ModelFiles &model)
{
    const auto disagrees = [](const ModelFiles &candidate) {
        return !disagreement(candidate).empty();
    };
    const ModelFiles small = shrunk(model, disagrees, 3000);
    std::string text = "seed " + std::to_string(seed) + ", shrunk to:\n" + printable(small);
    for (const std::string &line : disagreement(small))
        text += line + '\n';
    ADD_FAILURE() << text;
}

class RandomModels : public GLTest
{};

/// Long runs: ORV_RANDOM_MODELS_FIRST and ORV_RANDOM_MODELS_COUNT (see scripts/soak.sh).
TEST_F(RandomModels, AreLoadedAsByTheReference)
{
    const quint32 first = setting("ORV_RANDOM_MODELS_FIRST", 1);
    const quint32 count = setting("ORV_RANDOM_MODELS_COUNT", ORV_RANDOM_MODELS);
    // A broken build fails everywhere: a few failures tell enough.
    int failuresLeft = 5;
    for (quint32 seed = first; seed - first < count && failuresLeft > 0; ++seed) {
        const ModelFiles model = generateModel(seed);
        if (disagreement(model).empty())
            continue;
        reportFailure(seed, model);
        --failuresLeft;
    }
}

/// So many vertices, all different, in triangles.
ModelFiles modelOfVertices(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "v " + QByteArray::number(i) + " 0 " + QByteArray::number(i % 7) + '\n';
    for (int i = 3; i < count + 3; i += 3) {
        const int last = std::min(i, count);
        for (const int vertex : {last - 2, last - 1, last})
            text += (vertex == last - 2 ? "f " : " ") + QByteArray::number(vertex);
        text += '\n';
    }
    return {{}, {{QStringLiteral("model.obj"), text}}};
}

TEST_F(RandomModels, IndicesAreNarrowAsLongAsTheyFit)
{
    for (const int count : {65534, 65535, 65537}) {
        const WrittenModel written(modelOfVertices(count));
        const UploadedModel expected = loadByReference(written.objPath());
        ASSERT_EQ(expected.bundles.size(), 1u);
        EXPECT_EQ(expected.bundles[0].vertexCount, static_cast<unsigned>(count));
        EXPECT_EQ(expected.bundles[0].indexType, count == 65534 ? 0x1403u : 0x1405u);
        EXPECT_EQ(expected.bundles[0].indices.back(), static_cast<unsigned>(count - 1));
        for (const std::string &line : differences(expected, loadWithLibrary(written.objPath())))
            ADD_FAILURE() << count << " vertices: " << line;
    }
}

} // namespace
