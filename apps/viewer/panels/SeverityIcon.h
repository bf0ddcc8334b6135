/// \file
/// The signs of findings.
#pragma once

#include <OrvCheck/ModelCheck.h>

#include <QtGui/QIcon>

namespace Halvard::Orv::Viewer {

/// A sign that is sharp at any size, and told from the others by its shape as well as by its colour,
/// on light and on dark.
QIcon severityIcon(FindingSeverity severity);

} // namespace Halvard::Orv::Viewer
