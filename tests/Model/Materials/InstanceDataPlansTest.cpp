#include "support/QtPrinting.h"

#include <OrvCore/InstanceData.h>
#include <OrvCore/InstanceDataCollection.h>
#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvModel/InstanceDataPlans.h>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace OrvTest {
namespace {

using Halvard::Orv::InstanceData;
using Halvard::Orv::InstanceDataCollection;
using Halvard::Orv::InstanceDataPlan;
using Halvard::Orv::InstanceDataRegistry;
using ::testing::ElementsAre;
using ::testing::Pair;

const QString instanceInfo = QStringLiteral("InstanceInfo");
const QString objMaterial = QStringLiteral("OBJMaterial");

/// Names and numbers of the types of a registered plan's members, in order.
std::vector<std::pair<std::string, int>> membersOf(const QString &planName)
{
    const InstanceDataPlan *plan = InstanceDataRegistry::Instance().plan(planName);
    std::vector<std::pair<std::string, int>> members;
    if (!plan)
        return members;
    for (const InstanceDataPlan::Member &member : plan->members())
        members.emplace_back(member.name.toStdString(), static_cast<int>(member.type));
    return members;
}

// 0 is a texture, 13 a float, 15 three floats, 17 a 4x4 matrix of floats.
TEST(InstanceDataPlansTest, InstanceInfoHasTwoMatrices)
{
    Halvard::Orv::registerInstanceInfo();
    EXPECT_THAT(membersOf(instanceInfo),
                ElementsAre(Pair("ModelMatrix", 17), Pair("ModelNormalMatrix", 17)));
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(instanceInfo)->name(), instanceInfo);
}

TEST(InstanceDataPlansTest, ObjMaterialHasNineMembersInOrder)
{
    Halvard::Orv::registerOBJMaterial();
    EXPECT_THAT(membersOf(objMaterial),
                ElementsAre(Pair("Ns", 13), Pair("d", 13), Pair("Kd", 15), Pair("Ks", 15),
                            Pair("Ke", 15), Pair("map_Ns", 0), Pair("map_Kd", 0), Pair("map_Ks", 0),
                            Pair("map_Ke", 0)));
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(objMaterial)->name(), objMaterial);
}

TEST(InstanceDataPlansTest, EveryExplicitCallRegistersAnotherPlan)
{
    const InstanceDataRegistry &registry = InstanceDataRegistry::Instance();
    const struct
    {
        const QString &name;
        void (*registerPlan)();
    } rows[] = {{instanceInfo, &Halvard::Orv::registerInstanceInfo},
                {objMaterial, &Halvard::Orv::registerOBJMaterial}};
    for (const auto &row : rows) {
        row.registerPlan();
        const InstanceDataPlan *first = registry.plan(row.name);
        const int count = registry.planCount(row.name);
        row.registerPlan();
        EXPECT_EQ(registry.planCount(row.name), count + 1) << row.name.toStdString();
        EXPECT_EQ(registry.plan(row.name), first) << row.name.toStdString();
    }
}

// What a shader reads of a material, by the std430 rules:
//   Ns 0, d 4, Kd 16, Ks 32, Ke 48, then four texture marks from 60 on, up to 76;
//   the next record begins at 80.
// "Ka" is set by those who make materials, but not declared: it is left out.
TEST(InstanceDataPlansTest, MaterialsArePackedInTheOrderOfThePlan)
{
    Halvard::Orv::registerOBJMaterial();
    InstanceData record(objMaterial);
    const float ka[] = {9, 9, 9};
    const float kd[] = {0.25f, 0.5f, 0.75f};
    const float ns = 10;
    record.set(QStringLiteral("Ka"), ka, sizeof ka);
    record.set(QStringLiteral("Kd"), kd, sizeof kd);
    record.set(QStringLiteral("Ns"), &ns, sizeof ns);
    record.setTexture(QStringLiteral("map_Kd"), QStringLiteral("wood.png"));

    const QByteArray packed = InstanceDataCollection(objMaterial, {record, record}).pack();

    ASSERT_EQ(packed.size(), 2 * 80);
    QByteArray expected(80, '\0');
    expected.replace(0, 4, QByteArray::fromHex("00002041"));                   // 10.0f
    expected.replace(16, 12, QByteArray::fromHex("0000803e0000003f0000403f")); // Kd
    expected.replace(64, 4, QByteArray::fromHex("01000000"));                  // map_Kd
    EXPECT_EQ(packed.left(80), expected);
    EXPECT_EQ(packed.mid(80), expected);
}

} // namespace
} // namespace OrvTest
