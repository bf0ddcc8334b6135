/// \file
/// The panels of a window.
#pragma once

namespace Halvard::Orv::Viewer {

class MainWindow;

/// Adds the panels to a window, and has them follow the model that it shows. The window owns them.
void addPanels(MainWindow &window);

} // namespace Halvard::Orv::Viewer
