#include "Panels.h"

#include "FindingsPanel.h"
#include "MaterialsPanel.h"
#include "StatisticsPanel.h"

#include "../MainWindow.h"
#include "../Viewport.h"
#include "../WindowActions.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMenu>

namespace Halvard::Orv::Viewer {

namespace {

/// An entry of the menu of panels.
template <typename Action>
void addAction(MainWindow &window, const QString &text, const QString &shortcut,
               const QString &help, Action action)
{
    QAction *const entry = window.actions().panels->addAction(text);
    entry->setShortcut(QKeySequence(shortcut));
    entry->setStatusTip(help);
    window.addAction(entry); // so that keys work while the menu bar is hidden
    QObject::connect(entry, &QAction::triggered, &window, action);
}

void addFindings(MainWindow &window)
{
    auto *const panel = new FindingsPanel;
    QDockWidget *const dock =
        window.addPanel(panel, MainWindow::tr("Findings"), QStringLiteral("findingsDock"),
                        Qt::BottomDockWidgetArea);
    QObject::connect(&window, &MainWindow::modelShown, panel,
                     [panel](const std::shared_ptr<const ModelDetails> &details) {
                         panel->setModelFile(details->path, true);
                     });
    // What cannot be shown needs a check most of all.
    QObject::connect(&window, &MainWindow::loadFailed, panel,
                     [panel, &window] { panel->setModelFile(window.path(), false); });
    QObject::connect(panel, &FindingsPanel::openRequested, &window, &MainWindow::open);
    QObject::connect(panel, &FindingsPanel::cornersChosen, &window.viewport(), &Viewport::mark);
    QObject::connect(panel, &FindingsPanel::flightWanted, &window.viewport(), &Viewport::flyTo);
    window.actions().panels->addSeparator();
    const auto shown = [dock](auto action) {
        return [dock, action] {
            dock->show();
            dock->raise();
            action();
        };
    };
    addAction(window, MainWindow::tr("&Next Finding"), QStringLiteral("F8"),
              MainWindow::tr("Fly to the next finding in the list"),
              shown([panel] { panel->chooseNext(); }));
    addAction(window, MainWindow::tr("&Previous Finding"), QStringLiteral("Shift+F8"),
              MainWindow::tr("Fly to the finding before in the list"),
              shown([panel] { panel->choosePrevious(); }));
}

QDockWidget *addMaterials(MainWindow &window)
{
    auto *const panel = new MaterialsPanel;
    QObject::connect(&window, &MainWindow::modelShown, panel, &MaterialsPanel::setDetails);
    QObject::connect(panel, &MaterialsPanel::materialChosen, &window.viewport(),
                     &Viewport::highlightMaterial);
    return window.addPanel(panel, MainWindow::tr("Materials"), QStringLiteral("materialsDock"));
}

QDockWidget *addStatistics(MainWindow &window)
{
    auto *const panel = new StatisticsPanel;
    QObject::connect(&window, &MainWindow::modelShown, panel,
                     [panel](const std::shared_ptr<const ModelDetails> &details) {
                         panel->setSummary(details->summary);
                     });
    return window.addPanel(panel, MainWindow::tr("Statistics"), QStringLiteral("statisticsDock"));
}

} // namespace

void addPanels(MainWindow &window)
{
    QDockWidget *const materials = addMaterials(window);
    QDockWidget *const statistics = addStatistics(window);
    window.tabifyDockWidget(materials, statistics);
    materials->raise();
    addFindings(window);
}

} // namespace Halvard::Orv::Viewer
