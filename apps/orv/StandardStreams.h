/// \file
/// The descriptors 0, 1 and 2.
#pragma once

namespace Halvard::Orv::Cli {

/// Opens the null device on those of the three that are closed, so that no file that is
/// opened later takes their place, and what is meant for a terminal its contents. They are
/// opened the wrong way round: results that nobody gets are an error, not a success.
///
/// Call it before anything is opened.
void holdStandardStreams();

} // namespace Halvard::Orv::Cli
