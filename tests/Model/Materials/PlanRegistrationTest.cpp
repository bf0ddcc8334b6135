// Whether and when the plans are registered can be seen only once per process:
// this program has nothing but these tests, and they rely on their order.
#include "support/AtOnce.h"
#include "support/GLTest.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvGL/GPUModel.h>
#include <OrvModel/DefaultMaterial.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include <memory>

namespace OrvTest {
namespace {

using Halvard::Orv::GPUModel;
using Halvard::Orv::InstanceDataRegistry;
using Halvard::Orv::loadMaterialsFromMTLFile;
using Halvard::Orv::loadModelFromOBJFile;
using Halvard::Orv::ModelBuilder;

int planCount(const char *name)
{
    return InstanceDataRegistry::Instance().planCount(QLatin1String(name));
}

class PlanRegistrationTest : public GLTest
{};

TEST_F(PlanRegistrationTest, Step1NothingIsRegisteredAtTheStart)
{
    EXPECT_EQ(planCount("InstanceInfo"), 0);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, Step2TheDefaultMaterialRegistersNothing)
{
    EXPECT_EQ(Halvard::Orv::makeDefaultMaterial().name(), QStringLiteral("OBJMaterial"));
    EXPECT_EQ(planCount("InstanceInfo"), 0);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, Step3TheFirstBuildersRegisterInstanceInfoOnce)
{
    runAtOnce([](int) { const ModelBuilder builder({}, 0); });
    ASSERT_EQ(planCount("InstanceInfo"), 1);
    EXPECT_EQ(
        InstanceDataRegistry::Instance().plan(QStringLiteral("InstanceInfo"))->members().size(), 2);

    ModelBuilder later({}, 0);
    later.clear();
    EXPECT_EQ(planCount("InstanceInfo"), 1);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, Step4AModelWithoutALibraryDoesNotRegisterOBJMaterial)
{
    const MessageCapture silence;
    const TemporaryModel files;
    const QString path =
        files.write(QStringLiteral("triangle.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    QString error;
    const std::unique_ptr<GPUModel> model(loadModelFromOBJFile(path, error));
    ASSERT_TRUE(model) << error.toStdString();
    EXPECT_EQ(model->bundleCount(), 1);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, Step5ALibraryThatCannotBeOpenedDoesNotRegisterOBJMaterial)
{
    const TemporaryModel files;
    ModelBuilder builder({}, 0);
    EXPECT_FALSE(loadMaterialsFromMTLFile(files.path(QStringLiteral("missing.mtl")), builder));
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, Step6TheFirstLibrariesRegisterOBJMaterialOnce)
{
    const TemporaryModel files;
    const QString path = files.write(QStringLiteral("empty.mtl"), QByteArray());
    runAtOnce([&path](int) {
        ModelBuilder builder({}, 0);
        EXPECT_TRUE(loadMaterialsFromMTLFile(path, builder));
    });
    EXPECT_EQ(planCount("OBJMaterial"), 1);
    EXPECT_EQ(planCount("InstanceInfo"), 1);
}

} // namespace
} // namespace OrvTest
