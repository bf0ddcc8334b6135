#include "WindowActions.h"

#include <QtGui/QKeySequence>
#include <QtWidgets/QAction>
#include <QtWidgets/QActionGroup>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>

namespace Halvard::Orv::Viewer {

namespace {

QString tr(const char *text)
{
    return QMainWindow::tr(text);
}

struct ShadingText
{
    Render::Shading shading;
    const char *text;
    const char *shortcut;
    const char *help;
};

constexpr ShadingText Shadings[] = {
    {Render::Shading::Material, "&Material", "M", "The materials and textures, lit"},
    {Render::Shading::Flat, "F&lat", "L", "The materials, each face lit by itself"},
    {Render::Shading::Normals, "&Normals", "N", "The normals as colours"},
    {Render::Shading::TextureCoordinates, "&Texture Coordinates", "T",
     "A checker that shows how textures lie on the surface"},
    {Render::Shading::Groups, "Material &Groups", "C", "A colour for each material"},
    {Render::Shading::BackFaces, "&Back Faces", "B", "Faces that are seen from behind, in red"}};

} // namespace

WindowActions::WindowActions(QMainWindow &window, QMenu &recent) : _window(window)
{
    addFileMenu(recent);
    addViewMenu();
    addShadingMenu();
    panels = window.menuBar()->addMenu(tr("&Panels"));
    addHelpMenu();
    addToolBar();
}

QAction *WindowActions::add(QMenu &menu, const QString &text, const QString &shortcut,
                            const QString &help)
{
    auto *const action = new QAction(text, &_window);
    action->setShortcut(QKeySequence(shortcut));
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    action->setStatusTip(help);
    action->setToolTip(keys.isEmpty() ? help : QStringLiteral("%1 (%2)").arg(help, keys));
    menu.addAction(action);
    _window.addAction(action); // so that keys work while the menu bar is hidden
    return action;
}

void WindowActions::addFileMenu(QMenu &recent)
{
    QMenu &menu = *_window.menuBar()->addMenu(tr("&File"));
    open = add(menu, tr("&Open ..."), QStringLiteral("Ctrl+O"), tr("Open a model"));
    menu.addMenu(&recent);
    reload = add(menu, tr("Re&load"), QStringLiteral("F5"),
                 tr("Read the model again, from the same camera"));
    menu.addSeparator();
    savePicture = add(menu, tr("&Save Picture ..."), QStringLiteral("Ctrl+S"),
                      tr("Save what is seen as an image"));
    copyPicture = add(menu, tr("&Copy Picture"), QStringLiteral("Ctrl+C"),
                      tr("Copy what is seen to the clipboard"));
    copyCommand = add(menu, tr("Copy &Command"), QStringLiteral("Ctrl+Shift+C"),
                      tr("Copy the command line of 'orv render' that draws this picture"));
    menu.addSeparator();
    quit = add(menu, tr("&Quit"), QStringLiteral("Ctrl+Q"), tr("Close the window"));
}

void WindowActions::addViewMenu()
{
    QMenu &menu = *_window.menuBar()->addMenu(tr("&View"));
    frame = add(menu, tr("&Fit"), QStringLiteral("F"), tr("Show the whole model"));
    menu.addSeparator();
    front = add(menu, tr("F&ront"), QStringLiteral("1"), tr("Look from the front"));
    side = add(menu, tr("&Side"), QStringLiteral("3"), tr("Look from the right"));
    top = add(menu, tr("&Top"), QStringLiteral("7"), tr("Look from above"));
    menu.addSeparator();
    upY = add(menu, tr("&Y Points Up"), QStringLiteral("Y"), tr("The model's y axis points up"));
    upZ = add(menu, tr("&Z Points Up"), QStringLiteral("Z"), tr("The model's z axis points up"));
    auto *const axis = new QActionGroup(&_window);
    for (QAction *action : {upY, upZ}) {
        action->setCheckable(true);
        axis->addAction(action);
    }
    menu.addSeparator();
    wireframe = add(menu, tr("&Wireframe"), QStringLiteral("W"),
                    tr("Draw the edges of the triangles on top"));
    grid = add(menu, tr("&Grid"), QStringLiteral("G"), tr("Draw a grid on the ground"));
    axes = add(menu, tr("&Axes"), QStringLiteral("A"), tr("Draw the directions of x, y and z"));
    fullScreen = add(menu, tr("F&ull Screen"), QStringLiteral("F11"), tr("Use the whole screen"));
    for (QAction *action : {wireframe, grid, axes, fullScreen})
        action->setCheckable(true);
}

void WindowActions::addShadingMenu()
{
    QMenu &menu = *_window.menuBar()->addMenu(tr("&Shading"));
    auto *const group = new QActionGroup(&_window);
    for (const ShadingText &text : Shadings) {
        QAction *const action =
            add(menu, tr(text.text), QLatin1String(text.shortcut), tr(text.help));
        action->setCheckable(true);
        group->addAction(action);
        shadings[text.shading] = action;
    }
}

void WindowActions::addHelpMenu()
{
    QMenu &menu = *_window.menuBar()->addMenu(tr("&Help"));
    shortcuts =
        add(menu, tr("&Keys and Mouse"), QStringLiteral("?"), tr("List what keys and mouse do"));
    about = add(menu, tr("&About"), QString(), tr("Say which version this is"));
}

void WindowActions::addToolBar()
{
    QToolBar &bar = *_window.addToolBar(tr("Tools"));
    bar.setObjectName(QStringLiteral("tools"));
    bar.setMovable(false);
    bar.setToolButtonStyle(Qt::ToolButtonTextOnly);
    bar.addAction(open);
    bar.addSeparator();
    for (QAction *action : {frame, front, side, top})
        bar.addAction(action);
    bar.addSeparator();
    for (const ShadingText &text : Shadings)
        bar.addAction(shadings[text.shading]);
    shadings[Render::Shading::TextureCoordinates]->setIconText(tr("UV"));
    shadings[Render::Shading::Groups]->setIconText(tr("Groups"));
    bar.addSeparator();
    for (QAction *action : {wireframe, grid, axes})
        bar.addAction(action);
    open->setIconText(tr("Open"));
}

} // namespace Halvard::Orv::Viewer
