#include <OrvCore/InstanceDataRegistry.h>

#include <OrvCore/InstanceDataPlan.h>

#include <algorithm>

namespace Halvard::Orv {

InstanceDataRegistry &InstanceDataRegistry::Instance()
{
    static InstanceDataRegistry registry;
    return registry;
}

InstanceDataRegistry::InstanceDataRegistry() = default;
InstanceDataRegistry::~InstanceDataRegistry() = default;

void InstanceDataRegistry::registerPlan(InstanceDataPlan *plan)
{
    if (!plan)
        return;
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto isThisPlan = [plan](const auto &kept) { return kept.get() == plan; };
    if (std::any_of(_plans.begin(), _plans.end(), isThisPlan))
        return;
    _plans.emplace_back(plan);
    if (!_firstOfName.contains(plan->name()))
        _firstOfName.insert(plan->name(), plan);
}

const InstanceDataPlan *InstanceDataRegistry::plan(const QString &name) const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _firstOfName.value(name, nullptr);
}

int InstanceDataRegistry::planCount(const QString &name) const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto hasName = [&name](const auto &kept) { return kept->name() == name; };
    return static_cast<int>(std::count_if(_plans.begin(), _plans.end(), hasName));
}

} // namespace Halvard::Orv
