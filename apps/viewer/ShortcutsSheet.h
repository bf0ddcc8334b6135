/// \file
/// What keys and mouse do.
#pragma once

#include <QtWidgets/QDialog>

namespace Halvard::Orv::Viewer {

struct WindowActions;

/// Lists the actions of the window with their keys, and what the mouse does.
class ShortcutsSheet : public QDialog
{
    Q_OBJECT

public:
    ShortcutsSheet(const WindowActions &actions, QWidget *parent = nullptr);
};

} // namespace Halvard::Orv::Viewer
