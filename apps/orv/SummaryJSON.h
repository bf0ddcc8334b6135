/// \file
/// What `orv info` tells, as JSON.
#pragma once

#include "UndrawnFaces.h"

#include <common/ModelSummary.h>

#include <vector>

class QIODevice;

namespace Halvard::Orv::Cli {

/// For programs. \return whether all of it reached the device.
bool writeSummaryJSON(QIODevice &device, const Apps::ModelSummary &summary,
                      const std::vector<UndrawnFaces> &undrawnFaces);

} // namespace Halvard::Orv::Cli
