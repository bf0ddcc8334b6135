/// \file
/// What can be done in the window: menus, tool bar and shortcuts.
#pragma once

#include <render/Shading.h>

#include <QtCore/QString>

#include <map>

class QAction;
class QActionGroup;
class QMainWindow;
class QMenu;

namespace Halvard::Orv::Viewer {

/// The actions of a window, in its menu bar and its tool bar, with shortcuts and tooltips; what they
/// do is the window's. Owned by the window.
struct WindowActions
{
    /// \param recent the menu of recent files.
    WindowActions(QMainWindow &window, QMenu &recent);

    QAction *open;
    QAction *reload;
    QAction *savePicture;
    QAction *copyPicture;
    QAction *copyCommand;
    QAction *quit;

    QAction *frame;
    QAction *front;
    QAction *side;
    QAction *top;
    QAction *upY;
    QAction *upZ;

    std::map<Render::Shading, QAction *> shadings;
    QAction *wireframe;
    QAction *grid;
    QAction *axes;
    QAction *fullScreen;

    QAction *shortcuts;
    QAction *about;

    /// Where panels add the actions that show and hide them.
    QMenu *panels;

private:
    QAction *add(QMenu &menu, const QString &text, const QString &shortcut, const QString &help);
    void addFileMenu(QMenu &recent);
    void addViewMenu();
    void addShadingMenu();
    void addHelpMenu();
    void addToolBar();

    QMainWindow &_window;
};

} // namespace Halvard::Orv::Viewer
