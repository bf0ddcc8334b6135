/// \file
/// Whether there is room for an OpenGL driver, which may crash or wait for ever where there is none.
#pragma once

#include <QtCore/QSize>

namespace Halvard::Orv::Cli {

/// Whether a context can be made. Where there are too few threads, or there is no memory for their
/// stacks, Mesa's software driver is told to draw without: it would wait for those that cannot be
/// started.
bool hasRoomForContext();

/// Whether a picture can be drawn in the context that there is.
bool hasRoomForPicture(const QSize &size);

} // namespace Halvard::Orv::Cli
