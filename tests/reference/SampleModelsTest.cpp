// The committed samples, and real models where there are any, against the reference implementation.
#include "reference/Reference.h"
#include "support/GLTest.h"
#include "support/ModelDifferences.h"
#include "support/ModelFolders.h"
#include "support/ModelReadBack.h"

#include <QtCore/QDir>

namespace {

using namespace OrvReference;
using namespace OrvTest;

class SampleModels : public GLTest
{
protected:
    /// \return how many models the folder holds.
    static int expectReference(const char *folder)
    {
        int models = 0;
        for (const QString &file : modelsBelow(QString::fromUtf8(folder))) {
            for (const std::string &line :
                 differences(loadByReference(file), loadWithLibrary(file)))
                ADD_FAILURE() << file.toStdString() << ": " << line;
            ++models;
        }
        return models;
    }
};

TEST_F(SampleModels, AreLoadedAsByTheReference)
{
    EXPECT_GT(expectReference(ORV_SAMPLES_DIR), 0);
}

TEST_F(SampleModels, SoAreRealModels)
{
    if (expectReference(ORV_SHARED_MODELS_DIR) == 0)
        GTEST_SKIP() << "no folder of real models beside the repository";
}

} // namespace
