/// \file
/// Registration of an instance-data plan by whoever needs it first.
#pragma once

namespace Halvard::Orv {

/// Calls `registerPlan` the first time that it is asked for, also when several threads ask
/// at once: the others wait. Each function has a guard of its own.
template <void (*registerPlan)()>
void registerPlanOnce()
{
    [[maybe_unused]] static const bool IsRegistered = (registerPlan(), true);
}

} // namespace Halvard::Orv
