// The committed samples, and real models where there are any, as the judge says.
#include "reference/Differences.h"
#include "reference/LoadedModel.h"
#include "reference/Reference.h"

#include "support/GLTest.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>

namespace {

using namespace OrvReference;

class SampleModels : public OrvTest::GLTest
{
protected:
    /// \return how many models the folder holds.
    static int expectJudgement(const char *folder)
    {
        int models = 0;
        QDirIterator found(QString::fromUtf8(folder), {QStringLiteral("*.obj")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (found.hasNext()) {
            const QString file = found.next();
            for (const std::string &line : differences(judge(file), loadWithLibrary(file)))
                ADD_FAILURE() << file.toStdString() << ": " << line;
            ++models;
        }
        return models;
    }
};

TEST_F(SampleModels, AreLoadedAsTheJudgeSays)
{
    EXPECT_GT(expectJudgement(ORV_SAMPLES_DIR), 0);
}

TEST_F(SampleModels, SoAreRealModels)
{
    if (expectJudgement(ORV_SHARED_MODELS_DIR) == 0)
        GTEST_SKIP() << "no folder of real models beside the repository";
}

} // namespace
