// What repairs promise holds for random models, sound and slightly broken, and for real ones.
#include "reference/ModelGenerator.h"
#include "reference/Shrinking.h"
#include "support/GLTest.h"
#include "support/ModelFolders.h"

#include "Check/Agreement.h"
#include "Check/Repairs/RepairProperties.h"
#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHashFunctions>
#include <QtCore/QTemporaryDir>

namespace {

using namespace OrvReference;
using OrvTest::brokenPromises;

class Repairs : public OrvTest::GLTest
{
protected:
    void SetUp() override
    {
        qSetGlobalQHashSeed(0); // a failing seed shall fail again
        // Each output is brought to the disk before it gets its name: in memory that takes no time.
        const QFileInfo memory(QStringLiteral("/dev/shm"));
        if (memory.isDir() && memory.isWritable())
            qputenv("TMPDIR", "/dev/shm");
        GLTest::SetUp();
    }
};

/// A model repaired into its own folder, and into another one; and what the loader makes of it.
std::vector<std::string> troubleWith(const ModelFiles &model)
{
    const WrittenModel written(model);
    const QTemporaryDir elsewhere;
    std::vector<std::string> trouble =
        brokenPromises(written.objPath(), elsewhere.filePath(QStringLiteral("fixed.obj")));
    for (const std::string &line :
         OrvTest::disagreements(elsewhere.filePath(QStringLiteral("fixed.obj"))))
        trouble.push_back("the loader disagrees: " + line);
    const QString beside =
        QFileInfo(written.objPath()).dir().filePath(QStringLiteral("fixed output.obj"));
    for (const std::string &line : brokenPromises(written.objPath(), beside))
        trouble.push_back("beside the input: " + line);
    return trouble;
}

void reportFailure(quint32 seed, const ModelFiles &model)
{
    const auto fails = [](const ModelFiles &candidate) { return !troubleWith(candidate).empty(); };
    const ModelFiles small = shrunk(model, fails, 3000);
    std::string text = "seed " + std::to_string(seed) + ", shrunk to:\n" + printable(small);
    for (const std::string &line : troubleWith(small))
        text += line + '\n';
    ADD_FAILURE() << text;
}

/// Long runs: ORV_RANDOM_MODELS_FIRST and ORV_RANDOM_MODELS_COUNT.
TEST_F(Repairs, KeepTheirPromisesOnRandomModels)
{
    bool ok = false;
    const uint given = qEnvironmentVariable("ORV_RANDOM_MODELS_COUNT").toUInt(&ok);
    const quint32 count = ok ? given : ORV_RANDOM_MODELS;
    const uint start = qEnvironmentVariable("ORV_RANDOM_MODELS_FIRST").toUInt(&ok);
    const quint32 first = ok ? start : 1;
    int failuresLeft = 5; // a broken build fails everywhere: a few tell enough
    for (quint32 seed = first; seed - first < count && failuresLeft > 0; ++seed) {
        const ModelFiles model = generateModel(seed);
        if (troubleWith(model).empty())
            continue;
        reportFailure(seed, model);
        --failuresLeft;
    }
}

/// \return how many models the folder holds.
int expectPromises(const char *folder)
{
    int models = 0;
    for (const QString &file : OrvTest::modelsBelow(QString::fromUtf8(folder))) {
        const QTemporaryDir elsewhere;
        const QString output = elsewhere.filePath(QStringLiteral("fixed.obj"));
        for (const std::string &line : brokenPromises(file, output))
            ADD_FAILURE() << file.toStdString() << ": " << line;
        for (const std::string &line : OrvTest::disagreements(output))
            ADD_FAILURE() << file.toStdString() << ": " << line;
        Halvard::Orv::ModelFindings left;
        QString reason;
        Halvard::Orv::checkModel(output, left, reason);
        // Every face is drawn that has three corners and an area, and can be triangulated.
        for (const Halvard::Orv::Finding &finding : left.findings) {
            if (finding.faces == 0)
                continue;
            EXPECT_EQ(finding.code, QStringLiteral("face-not-triangulable"))
                << file.toStdString() << ": " << finding.message.toStdString();
        }
        ++models;
    }
    return models;
}

TEST_F(Repairs, KeepTheirPromisesOnTheSamples)
{
    EXPECT_GT(expectPromises(ORV_SAMPLES_DIR), 0);
}

TEST_F(Repairs, KeepTheirPromisesOnRealModels)
{
    if (expectPromises(ORV_SHARED_MODELS_DIR) == 0)
        GTEST_SKIP() << "no folder of real models beside the repository";
}

TEST_F(Repairs, KeepTheirPromisesOnTestModelsOfAnotherLibrary)
{
    if (expectPromises("/usr/share/assimp/models/OBJ") == 0)
        GTEST_SKIP() << "the package assimp-testmodels is not installed";
}

} // namespace
