#include "reference/ModelGenerator.h"
#include "reference/Reference.h"

#include <gtest/gtest.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QHashFunctions>

#include <algorithm>
#include <map>

namespace {

using namespace OrvReference;
using namespace OrvTest;

bool saysAnywhere(const UploadedModel &model, const char *text)
{
    return std::any_of(model.messages.begin(), model.messages.end(),
                       [text](const auto &message) { return message.text == text; });
}

/// What can become of a model, counted over many seeds.
std::map<std::string, int> countOutcomes(quint32 seeds)
{
    std::map<std::string, int> counts;
    for (quint32 seed = 1; seed <= seeds; ++seed) {
        const WrittenModel written(generateModel(seed));
        const UploadedModel model = loadByReference(written.objPath());
        counts["no model"] += model.isNull ? 1 : 0;
        counts["an empty model"] += !model.isNull && model.bundles.empty() ? 1 : 0;
        counts["a ring that cannot be clipped"] +=
            saysAnywhere(model, "Unable to triangulate polygon.") ? 1 : 0;
        counts["a face of few corners"] +=
            saysAnywhere(model, "Cannot triangulate a polygon with fewer than 3 vertices") ? 1 : 0;
        if (model.bundles.empty())
            continue;
        const Bundle &bundle = model.bundles.front();
        counts["no triangles"] += bundle.indices.empty() ? 1 : 0;
        counts["many triangles"] += bundle.indices.size() > 30 ? 1 : 0;
        counts["vertices shared"] += bundle.indices.size() > bundle.vertexCount ? 1 : 0;
        counts["several materials"] += bundle.commands.size() > 1 ? 1 : 0;
        counts["normals of its own"] += model.hasGeneratedNormals ? 0 : 1;
        counts["texture coordinates"] +=
            static_cast<int>(bundle.attributes.count(QStringLiteral("va_TexCoord")));
    }
    return counts;
}

TEST(ModelGenerator, ReachesEveryOutcome)
{
    const quint32 seeds = 500;
    qSetGlobalQHashSeed(0);
    for (const auto &[outcome, count] : countOutcomes(seeds))
        EXPECT_GE(count, static_cast<int>(seeds) / 100) << outcome;
}

TEST(ModelGenerator, GivesTheSameForTheSameSeed)
{
    for (quint32 seed = 1; seed <= 20; ++seed)
        EXPECT_EQ(printable(generateModel(seed)), printable(generateModel(seed)));
    EXPECT_NE(printable(generateModel(1)), printable(generateModel(2)));
}

/// What gcc and clang both make of these seeds: a seed that someone reports means the same model
/// to everybody. Whoever changes the generator puts the new value here, having seen both agree.
TEST(ModelGenerator, GivesTheSameWithEveryCompiler)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (quint32 seed = 1; seed <= 1000; ++seed)
        hash.addData(QByteArray::fromStdString(printable(generateModel(seed))));
    EXPECT_EQ(hash.result().toHex().toStdString(), "b80bf18e1c79bc006ee4f6f51d20b1b59d597d30");
}

} // namespace
