/// \file
/// Checks within the directory of --within.
#pragma once

#include <OrvCheck/ModelCheck.h>

namespace Halvard::Orv::Cli {

/// How a model is checked: its libraries and textures are looked at only where they may be.
CheckOptions confinedCheckOptions();

} // namespace Halvard::Orv::Cli
