#include <OrvCore/InstanceDataRegistry.h>

#include <OrvCore/InstanceDataPlan.h>

#include "support/QtPrinting.h"

#include <gmock/gmock.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

using namespace Halvard::Orv;

namespace {

// Plans stay registered until the process ends: every test has names of its own.

InstanceDataPlan *registered(const QString &name)
{
    auto *plan = new InstanceDataPlan(name);
    InstanceDataRegistry::Instance().registerPlan(plan);
    return plan;
}

TEST(InstanceDataRegistry, IsTheSameForEverybody)
{
    EXPECT_EQ(&InstanceDataRegistry::Instance(), &InstanceDataRegistry::Instance());
}

TEST(InstanceDataRegistry, AnswersNullForAnUnknownName)
{
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(QStringLiteral("registry, nobody's")), nullptr);
    EXPECT_EQ(InstanceDataRegistry::Instance().planCount(QStringLiteral("registry, nobody's")), 0);
}

TEST(InstanceDataRegistry, FindsAPlanByItsName)
{
    const InstanceDataPlan *first = registered(QStringLiteral("registry, first"));
    const InstanceDataPlan *second = registered(QStringLiteral("registry, second"));
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(QStringLiteral("registry, first")), first);
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(QStringLiteral("registry, second")), second);
}

TEST(InstanceDataRegistry, KeepsASecondPlanOfANameAndAnswersWithTheFirst)
{
    const QString name = QStringLiteral("registry, twice");
    const InstanceDataPlan *first = registered(name);
    registered(name);
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(name), first);
    EXPECT_EQ(InstanceDataRegistry::Instance().planCount(name), 2);
}

TEST(InstanceDataRegistry, TakesAPlanOnlyOnce)
{
    const QString name = QStringLiteral("registry, again");
    InstanceDataPlan *plan = registered(name);
    InstanceDataRegistry::Instance().registerPlan(plan);
    EXPECT_EQ(InstanceDataRegistry::Instance().planCount(name), 1);
}

TEST(InstanceDataRegistry, IgnoresANullPlan)
{
    InstanceDataRegistry::Instance().registerPlan(nullptr);
    EXPECT_EQ(InstanceDataRegistry::Instance().plan(QString()), nullptr);
}

TEST(InstanceDataRegistry, ServesSeveralThreadsAtOnce)
{
    constexpr int ThreadCount = 4;
    constexpr int PlansPerThread = 100;
    const QString name = QStringLiteral("registry, threads");
    std::vector<const InstanceDataPlan *> seen(ThreadCount * PlansPerThread, nullptr);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < ThreadCount; ++thread) {
        threads.emplace_back([thread, name, &seen] {
            for (int i = 0; i < PlansPerThread; ++i) {
                registered(name);
                seen[static_cast<size_t>(thread * PlansPerThread + i)] =
                    InstanceDataRegistry::Instance().plan(name);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(InstanceDataRegistry::Instance().planCount(name), ThreadCount * PlansPerThread);
    const std::set<const InstanceDataPlan *> answers(seen.begin(), seen.end());
    EXPECT_EQ(answers.size(), 1u) << "the answer changed";
    EXPECT_EQ(answers.count(nullptr), 0u);
}

} // namespace
