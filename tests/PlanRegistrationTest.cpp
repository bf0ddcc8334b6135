// Whether and when the plans are registered can be seen only once per process:
// this program has nothing but these tests, and they rely on their order.
#include "support/GLTest.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvModel/DefaultMaterial.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvGL/GPUModel.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

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

/// Runs `task` on several threads that start at nearly the same moment.
template <typename Task>
void runAtOnce(Task task)
{
    std::atomic<int> waiting{8};
    std::vector<std::thread> threads;
    for (int i = waiting; i > 0; --i) {
        threads.emplace_back([&] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            task();
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

class PlanRegistrationTest : public GLTest
{};

TEST_F(PlanRegistrationTest, _1_nothingIsRegisteredAtTheStart)
{
    EXPECT_EQ(planCount("InstanceInfo"), 0);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, _2_theDefaultMaterialRegistersNothing)
{
    EXPECT_EQ(Halvard::Orv::makeDefaultMaterial().name(), QStringLiteral("OBJMaterial"));
    EXPECT_EQ(planCount("InstanceInfo"), 0);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, _3_theFirstBuildersRegisterInstanceInfoOnce)
{
    runAtOnce([] { const ModelBuilder builder({}, 0); });
    ASSERT_EQ(planCount("InstanceInfo"), 1);
    EXPECT_EQ(
        InstanceDataRegistry::Instance().plan(QStringLiteral("InstanceInfo"))->members().size(), 2);

    ModelBuilder later({}, 0);
    later.clear();
    EXPECT_EQ(planCount("InstanceInfo"), 1);
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, _4_aModelWithoutALibraryDoesNotRegisterOBJMaterial)
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

TEST_F(PlanRegistrationTest, _5_aLibraryThatCannotBeOpenedDoesNotRegisterOBJMaterial)
{
    const TemporaryModel files;
    ModelBuilder builder({}, 0);
    EXPECT_FALSE(loadMaterialsFromMTLFile(files.path(QStringLiteral("missing.mtl")), builder));
    EXPECT_EQ(planCount("OBJMaterial"), 0);
}

TEST_F(PlanRegistrationTest, _6_theFirstLibrariesRegisterOBJMaterialOnce)
{
    const TemporaryModel files;
    const QString path = files.write(QStringLiteral("empty.mtl"), QByteArray());
    runAtOnce([&path] {
        ModelBuilder builder({}, 0);
        EXPECT_TRUE(loadMaterialsFromMTLFile(path, builder));
    });
    EXPECT_EQ(planCount("OBJMaterial"), 1);
    EXPECT_EQ(planCount("InstanceInfo"), 1);
}

} // namespace
} // namespace OrvTest
