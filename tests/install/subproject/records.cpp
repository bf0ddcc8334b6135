// The smallest of the libraries, and a program that uses it.
#include <OrvCore/InstanceDataPlan.h>

#include <cstdio>

int main()
{
    Halvard::Orv::InstanceDataPlan plan(QStringLiteral("Lamp"));
    plan.addMember(Halvard::Orv::InstanceDataPlan::Vec3, QStringLiteral("position"));
    std::printf("%d member\n", int(plan.members().size()));
}
