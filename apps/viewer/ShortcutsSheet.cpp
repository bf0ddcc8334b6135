#include "ShortcutsSheet.h"

#include "WindowActions.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include <utility>
#include <vector>

namespace Halvard::Orv::Viewer {

namespace {

using Row = std::pair<QString, QString>; // keys, and what they do

Row rowOf(const QAction *action)
{
    return {action->shortcut().toString(QKeySequence::NativeText), action->statusTip()};
}

QLayout *columnOf(const QString &title, const std::vector<Row> &rows, QWidget *parent)
{
    auto *const grid = new QGridLayout;
    auto *const heading = new QLabel(QStringLiteral("<b>%1</b>").arg(title), parent);
    grid->addWidget(heading, 0, 0, 1, 2);
    grid->setHorizontalSpacing(18);
    int line = 1;
    for (const auto &[keys, text] : rows) {
        grid->addWidget(new QLabel(keys, parent), line, 0);
        grid->addWidget(new QLabel(text, parent), line++, 1);
    }
    grid->setRowStretch(line, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

} // namespace

ShortcutsSheet::ShortcutsSheet(const WindowActions &actions, QWidget *parent) : QDialog(parent)
{
    setWindowTitle(tr("Keys and Mouse"));
    const std::vector<Row> mouse = {
        {tr("Drag"), tr("Turn the model")},
        {tr("Shift+drag, middle or right button"), tr("Move the model")},
        {tr("Wheel, Ctrl+drag, pinch"), tr("Come nearer to the pointer")},
        {tr("Arrow keys"), tr("Turn the model by 10 degrees")},
        {tr("Shift+arrow keys"), tr("Move the model")},
        {tr("+ and -"), tr("Come nearer, go away")},
        {tr("Esc"), tr("Cancel loading; leave the full screen")}};
    std::vector<Row> shadings;
    for (const auto &[shading, action] : actions.shadings)
        shadings.push_back(rowOf(action));
    std::vector<Row> view;
    for (const QAction *action : {actions.frame, actions.front, actions.side, actions.top,
                                  actions.upY, actions.upZ, actions.fullScreen})
        view.push_back(rowOf(action));
    std::vector<Row> extras;
    for (const QAction *action : {actions.wireframe, actions.grid, actions.axes})
        extras.push_back(rowOf(action));
    std::vector<Row> files;
    for (const QAction *action : {actions.open, actions.reload, actions.savePicture,
                                  actions.copyPicture, actions.copyCommand, actions.quit})
        files.push_back(rowOf(action));

    auto *const grid = new QGridLayout;
    grid->setHorizontalSpacing(40);
    grid->setVerticalSpacing(20);
    grid->addLayout(columnOf(tr("Mouse and camera"), mouse, this), 0, 0);
    grid->addLayout(columnOf(tr("View"), view, this), 0, 1);
    grid->addLayout(columnOf(tr("Shading"), shadings, this), 1, 0);
    grid->addLayout(columnOf(tr("Files and pictures"), files, this), 1, 1);
    grid->addLayout(columnOf(tr("On top"), extras, this), 2, 0);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->addLayout(grid);
    layout->addWidget(buttons);
}

} // namespace Halvard::Orv::Viewer
