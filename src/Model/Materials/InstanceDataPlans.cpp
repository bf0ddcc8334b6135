#include <OrvModel/InstanceDataPlans.h>

#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>

namespace Halvard::Orv {

namespace {

// The data types by the numbers that records rely on.
constexpr auto Texture = static_cast<InstanceDataPlan::DataType>(0);
constexpr auto Float = static_cast<InstanceDataPlan::DataType>(13);
constexpr auto Float3 = static_cast<InstanceDataPlan::DataType>(15);
constexpr auto Matrix4 = static_cast<InstanceDataPlan::DataType>(17);

} // namespace

void registerInstanceInfo()
{
    auto *plan = new InstanceDataPlan(QStringLiteral("InstanceInfo"));
    plan->addMember(Matrix4, QStringLiteral("ModelMatrix"));
    plan->addMember(Matrix4, QStringLiteral("ModelNormalMatrix"));
    InstanceDataRegistry::Instance().registerPlan(plan);
}

void registerOBJMaterial()
{
    auto *plan = new InstanceDataPlan(QStringLiteral("OBJMaterial"));
    plan->addMember(Float, QStringLiteral("Ns"));
    plan->addMember(Float, QStringLiteral("d"));
    plan->addMember(Float3, QStringLiteral("Kd"));
    plan->addMember(Float3, QStringLiteral("Ks"));
    plan->addMember(Float3, QStringLiteral("Ke"));
    plan->addMember(Texture, QStringLiteral("map_Ns"));
    plan->addMember(Texture, QStringLiteral("map_Kd"));
    plan->addMember(Texture, QStringLiteral("map_Ks"));
    plan->addMember(Texture, QStringLiteral("map_Ke"));
    InstanceDataRegistry::Instance().registerPlan(plan);
}

} // namespace Halvard::Orv
