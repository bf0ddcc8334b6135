/// \file
/// In which runs a model's commands are drawn.
#pragma once

#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {
class Texture;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

/// One draw command of a model, as far as the order of drawing depends on it.
struct PlannedCommand
{
    int bundle = 0;
    int command = 0;
    bool isOpaque = true;
    Texture *diffuseMap = nullptr;
    Texture *specularMap = nullptr;
};

/// Consecutive commands of one bundle that are drawn by one call.
struct DrawRun
{
    int bundle = 0;
    int firstCommand = 0;
    int commandCount = 0;
    Texture *diffuseMap = nullptr;
    Texture *specularMap = nullptr;
};

struct DrawPlan
{
    /// Drawn first, in any order.
    std::vector<DrawRun> opaque;
    /// Of one command each, so that they can be sorted by distance.
    std::vector<DrawRun> blended;
};

/// \param commands in the order of bundles and commands.
/// \param canJoin whether the shader can tell the commands of one call apart.
///        Otherwise every run is of one command.
DrawPlan planDraws(const std::vector<PlannedCommand> &commands, bool canJoin);

} // namespace Halvard::Orv::Render
