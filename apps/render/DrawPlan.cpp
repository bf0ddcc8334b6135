#include "DrawPlan.h"

namespace Halvard::Orv::Render {

namespace {

/// Only textures must be bound between calls; everything else of a material is in
/// the array of records.
bool continues(const DrawRun &run, const PlannedCommand &command)
{
    return run.bundle == command.bundle && run.firstCommand + run.commandCount == command.command &&
           run.diffuseMap == command.diffuseMap && run.specularMap == command.specularMap;
}

} // namespace

DrawPlan planDraws(const std::vector<PlannedCommand> &commands, bool canJoin)
{
    DrawPlan plan;
    for (const PlannedCommand &command : commands) {
        if (command.isOpaque && canJoin && !plan.opaque.empty() &&
            continues(plan.opaque.back(), command)) {
            ++plan.opaque.back().commandCount;
            continue;
        }
        std::vector<DrawRun> &runs = command.isOpaque ? plan.opaque : plan.blended;
        runs.push_back(
            {command.bundle, command.command, 1, command.diffuseMap, command.specularMap});
    }
    return plan;
}

} // namespace Halvard::Orv::Render
