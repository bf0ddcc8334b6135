// What a check predicts is what the loader does.
#include "Check/Agreement.h"

#include "reference/ModelGenerator.h"
#include "reference/Shrinking.h"
#include "support/GLTest.h"
#include "support/ModelFolders.h"
#include "support/TemporaryModel.h"

#include "Check/ChecksPage.h"

#include <QtCore/QHashFunctions>

namespace {

using namespace OrvReference;
using OrvTest::disagreements;

class Agreement : public OrvTest::GLTest
{
protected:
    void SetUp() override
    {
        qSetGlobalQHashSeed(0); // a failing seed shall fail again
        GLTest::SetUp();
    }

    /// \return how many models the folder holds.
    static int expectAgreement(const char *folder)
    {
        int models = 0;
        for (const QString &file : OrvTest::modelsBelow(QString::fromUtf8(folder))) {
            for (const std::string &line : disagreements(file))
                ADD_FAILURE() << file.toStdString() << ": " << line;
            ++models;
        }
        return models;
    }
};

std::vector<std::string> disagreement(const ModelFiles &model)
{
    const WrittenModel written(model);
    return disagreements(written.objPath());
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

TEST_F(Agreement, OnTheSamples)
{
    EXPECT_GT(expectAgreement(ORV_SAMPLES_DIR), 0);
}

TEST_F(Agreement, OnRealModels)
{
    if (expectAgreement(ORV_SHARED_MODELS_DIR) == 0)
        GTEST_SKIP() << "no folder of real models beside the repository";
}

TEST_F(Agreement, OnTestModelsOfAnotherLibrary)
{
    if (expectAgreement("/usr/share/assimp/models/OBJ") == 0)
        GTEST_SKIP() << "the package assimp-testmodels is not installed";
}

/// A file may end anywhere.
TEST_F(Agreement, OnEveryPrefixOfTheExamples)
{
    int models = 0;
    for (const OrvTest::CheckExample &example :
         OrvTest::readChecksPage(QStringLiteral(ORV_CHECKS_PAGE))) {
        const OrvTest::TemporaryModel directory;
        example.write(directory.directory());
        for (const OrvTest::ExampleFile &file : example.files) {
            if (file.name != QLatin1String("model.obj"))
                continue;
            for (int size = 0; size <= file.contents.size(); ++size) {
                const QString path = directory.write(file.name, file.contents.left(size));
                for (const std::string &line : disagreements(path))
                    ADD_FAILURE() << example.code.toStdString() << " cut behind " << size
                                  << " bytes: " << line;
                ++models;
            }
        }
    }
    EXPECT_GT(models, 1000);
}

/// Long runs: ORV_RANDOM_MODELS_FIRST and ORV_RANDOM_MODELS_COUNT.
TEST_F(Agreement, OnRandomModels)
{
    bool ok = false;
    const uint given = qEnvironmentVariable("ORV_RANDOM_MODELS_COUNT").toUInt(&ok);
    const quint32 count = ok ? given : ORV_RANDOM_MODELS;
    const uint start = qEnvironmentVariable("ORV_RANDOM_MODELS_FIRST").toUInt(&ok);
    const quint32 first = ok ? start : 1;
    int failuresLeft = 5; // a broken build fails everywhere: a few tell enough
    for (quint32 seed = first; seed - first < count && failuresLeft > 0; ++seed) {
        const ModelFiles model = generateModel(seed);
        if (disagreement(model).empty())
            continue;
        reportFailure(seed, model);
        --failuresLeft;
    }
}

} // namespace
